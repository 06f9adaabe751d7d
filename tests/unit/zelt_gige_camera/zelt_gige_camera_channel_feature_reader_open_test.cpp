// What is read of a camera just opened, and what the camera changes by itself.
#include "assertion_capture.h"
#include "feature_fixture.h"
#include "log_capture.h"
#include "zelt_gige_camera_channel_feature_reader.h"

namespace {

using namespace zelt_gige_camera;
using test_support::AssertionCapture;
using test_support::inWords;
using test_support::LogCapture;
using test_support::OnFakeCamera;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_api::CameraModelKind;
using zelt_gige_api::FeatureType;

const std::vector<std::string> kConfigurationCalls{
    "getInt GevTimestampTickFrequency",
    "entries PixelFormat",
    "getFloat AcquisitionFrameRateAbs",
    "getFloat ExposureTimeAbs",
    "getEnum ExposureAuto",
    "getFloat Gain",
    "getEnum GainAuto",
    "getInt GainAutoAdjustTol",
    "getInt GainAutoRate",
    "getFloat Gamma",
    "getFloat Hue",
    "getFloat Saturation",
    "getEnum BalanceWhiteAuto",
    "setEnum BalanceRatioSelector Red",
    "getFloat BalanceRatioAbs[Red]",
    "setEnum BalanceRatioSelector Blue",
    "getFloat BalanceRatioAbs[Blue]",
    "getEnum TriggerMode",
    "getEnum TriggerSource",
    "getString DeviceModelName",
};

class OpenedCamera : public OnFakeCamera {
  protected:
    void configuration() { readConfiguration(work, "the camera"); }
    void list(const std::vector<std::string>& entries) { camera.features["PixelFormat"].entries = entries; }
};

TEST_F(OpenedCamera, IsReadInItsOrder) {
    EXPECT_EQ(callsOf([&] { configuration(); }), kConfigurationCalls);
}

TEST_F(OpenedCamera, GivesEverySettingItsValue) {
    camera.features["TriggerSource"].text = "Line1";
    configuration();
    EXPECT_EQ(state.tickFrequency, 79'861'111);
    EXPECT_EQ(state.frameRate.value, 25.0);
    EXPECT_EQ(state.exposure.value, 15'000.0);
    EXPECT_EQ(state.exposureAuto.value, "Off");
    EXPECT_EQ(state.gain.value, 2.5);
    EXPECT_EQ(state.gainAuto.value, "Once");
    EXPECT_EQ(state.gainAutoAdjustTol.value, 5.0);
    EXPECT_EQ(state.gainAutoRate.value, 99.0);
    EXPECT_EQ(state.gamma.value, 0.75);
    EXPECT_EQ(state.hue.value, 10.0);
    EXPECT_EQ(state.saturation.value, 1.25);
    EXPECT_EQ(state.whitebalanceAuto.value, "Continuous");
    EXPECT_EQ(state.whitebalanceRed.value, 1.5);
    EXPECT_EQ(state.whitebalanceBlue.value, 1.75);
    EXPECT_TRUE(state.triggerModeIsAux);
    EXPECT_EQ(state.modelKind, CameraModelKind::MantaG032);
    EXPECT_TRUE(state.wasOpened);
}

TEST_F(OpenedCamera, KeepsNothingWhenAnyAccessFails) {
    const auto before = inWords(state);
    for (const std::string& call : kConfigurationCalls) {
        if (call == "entries PixelFormat" || call == "getString DeviceModelName") continue;
        camera.forgive();
        camera.lose(call);
        EXPECT_EQ(failureOf([&] { configuration(); }), "The camera is gone") << call;
        EXPECT_EQ(inWords(state), before) << call;
        EXPECT_THAT(news.keys(), IsEmpty()) << call;
    }
}

TEST_F(OpenedCamera, WithoutAReadableModelNameIsAnyModel) {
    const LogCapture log(UniLogSeverityLevel::Warning);
    state.modelKind = CameraModelKind::MantaG033;
    camera.lose("getString DeviceModelName");
    configuration();
    EXPECT_EQ(state.modelKind, CameraModelKind::Other);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                ElementsAre("Camera the camera model name unreadable: The camera is gone"));
}

TEST_F(OpenedCamera, DoesWithoutColours) {
    for (const char* feature : {"Hue", "Saturation", "Gamma", "BalanceWhiteAuto", "BalanceRatioSelector",
                                "BalanceRatioAbs[Red]", "BalanceRatioAbs[Blue]"}) {
        camera.features.erase(feature);
    }
    configuration();
    EXPECT_EQ(state.hue.presence, Presence::Absent);
    EXPECT_EQ(state.saturation.presence, Presence::Absent);
    EXPECT_EQ(state.gamma.presence, Presence::Absent);
    EXPECT_EQ(state.whitebalanceAuto.presence, Presence::Absent);
    EXPECT_EQ(state.whitebalanceRed.presence, Presence::Absent);
    EXPECT_EQ(state.whitebalanceBlue.presence, Presence::Absent);
    EXPECT_TRUE(state.wasOpened);
}

TEST_F(OpenedCamera, UsesTheBestFormatThatItListsAndHasStillToBeToldSo) {
    const AssertionCapture assertions;
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"Mono8", "RGB8Packed", "YUV422Packed"}, "YUV422Packed"},
        {{"Mono8", "RGB8Packed", "BayerRG8"}, "RGB8Packed"},
        {{"Mono12", "Mono8"}, "Mono8"},
    };
    for (const auto& [entries, expected] : cases) {
        list(entries);
        erase(state.pending, Setting::FrameFormat);
        configuration();
        EXPECT_EQ(state.pixelFormat, expected);
        EXPECT_EQ(state.pixelFormatEntries, entries);
        EXPECT_TRUE(isPending(Setting::FrameFormat));
    }
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST_F(OpenedCamera, UsesTheFormatsThatItListedBeforeWhenItDoesNotListThemNow) {
    const AssertionCapture assertions;
    state.pixelFormatEntries = {"Mono8", "RGB8Packed"};
    list({});
    configuration();
    EXPECT_EQ(state.pixelFormat, "RGB8Packed");
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST_F(OpenedCamera, GetsItsFormatLaterWhenItDidNotListAny) {
    const AssertionCapture assertions;
    list({});
    configuration();
    EXPECT_EQ(state.pixelFormat, "");
    list({"Mono8"});
    chooseMissingFormat(work);
    EXPECT_EQ(state.pixelFormat, "Mono8");
    EXPECT_TRUE(isPending(Setting::FrameFormat));
    EXPECT_THAT(assertions.expressions(), ElementsAre("frame_format_found"));
}

TEST_F(OpenedCamera, KeepsTheFormatThatTheHostHasChosen) {
    state.pixelFormat = "Mono8";
    insert(state.chosen, Setting::FrameFormat);
    configuration();
    EXPECT_EQ(state.pixelFormat, "Mono8");
    EXPECT_FALSE(isPending(Setting::FrameFormat));
}

TEST_F(OpenedCamera, WithoutAKnownFormatIsAProgrammingErrorAndHasNone) {
    const AssertionCapture assertions;
    configuration();
    list({"Mono12", "BayerRG8"});
    configuration();
    EXPECT_THAT(assertions.expressions(), ElementsAre("frame_format_found"));
    EXPECT_EQ(state.pixelFormat, "");
    EXPECT_EQ(state.payload(), 0u);
    EXPECT_FALSE(isPending(Setting::FrameFormat));
}

TEST_F(OpenedCamera, DoesNotOverwriteWhatItHasNotGotYet) {
    state.hue.value = 42.0;
    state.gainAuto.value = "Off";
    state.triggerModeIsAux = true;
    insert(state.pending, Setting::Hue);
    insert(state.pending, Setting::GainAuto);
    insert(state.pending, Setting::TriggerMode);
    configuration();
    EXPECT_EQ(state.hue.value, 42.0);
    EXPECT_EQ(state.gainAuto.value, "Off");
    EXPECT_TRUE(state.triggerModeIsAux);
}

TEST_F(OpenedCamera, IsWrittenToTheLogFeatureByFeature) {
    camera.features = {{"A", {FeatureType::Bool}},  {"B", {FeatureType::Int}},
                       {"C", {FeatureType::Float}}, {"D", {FeatureType::String}},
                       {"E", {FeatureType::Enum}},  {"F", {FeatureType::Command}},
                       {"G", {FeatureType::Other}}, {"H", {FeatureType::None}}};
    const LogCapture log;
    dumpFeatures(camera, 7);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Debug),
                ElementsAre("feature: A Type: Bool", "feature: B Type: Int64", "feature: C Type: Float64",
                            "feature: D Type: String", "feature: E Type: Enum", "feature: F Type: Command",
                            "feature: G Type: Unknown", "feature: H Type: Unknown"));
}

TEST_F(OpenedCamera, WhoseFeaturesCannotBeListedIsWorthALine) {
    const LogCapture log;
    camera.lose("list features");
    dumpFeatures(camera, 7);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].severity, 6u);
    EXPECT_EQ(log.lines()[0].text, "Cannot gather camera features");
}

/// What the camera may have changed by itself since it was read.
class AutomaticValues : public OnFakeCamera {
  protected:
    AutomaticValues() {
        readCache(work);
        for (const char* feature :
             {"Gain", "ExposureTimeAbs", "BalanceRatioAbs[Red]", "BalanceRatioAbs[Blue]"}) {
            camera.features[feature].number += 1.0;
        }
        automatic("Continuous");
    }
    void automatic(const std::string& entry) {
        for (const AutoRow& row : autoRows()) (state.*row.value).value = entry;
    }
    bool track() {
        ChannelWork now{camera, 7, state, changes};
        return trackAutomaticValues(now);
    }

    ChannelNews changes;
};

TEST_F(AutomaticValues, AreReadAndTold) {
    for (const std::string entry : {"Continuous", "Once"}) {
        automatic(entry);
        EXPECT_THAT(callsOf([&] { track(); }),
                    ElementsAre("getFloat Gain", "getFloat ExposureTimeAbs",
                                "setEnum BalanceRatioSelector Red", "getFloat BalanceRatioAbs[Red]",
                                "setEnum BalanceRatioSelector Blue", "getFloat BalanceRatioAbs[Blue]"));
    }
    EXPECT_EQ(state.gain.value, 3.5);
    EXPECT_EQ(state.exposure.value, 15'001.0);
    EXPECT_EQ(state.whitebalanceRed.value, 2.5);
    EXPECT_EQ(state.whitebalanceBlue.value, 2.75);
    EXPECT_THAT(changes.keys(), ElementsAre("CAMERA/Gain", "CAMERA/Exposure", "CAMERA/WhitebalanceRed",
                                            "CAMERA/WhitebalanceBlue"));
}

TEST_F(AutomaticValues, AreNoneWhileTheirFunctionIsOff) {
    automatic("Off");
    EXPECT_THAT(callsOf([&] { EXPECT_FALSE(track()); }), IsEmpty());
    state.gainAuto.value = "Once";
    EXPECT_THAT(callsOf([&] { track(); }), ElementsAre("getFloat Gain"));
    state.gainAuto.value = "Off";
    state.exposureAuto.value = "Once";
    EXPECT_THAT(callsOf([&] { track(); }), ElementsAre("getFloat ExposureTimeAbs"));
}

TEST_F(AutomaticValues, TellWhetherTheExposureIsAmongThem) {
    EXPECT_TRUE(track());
    EXPECT_FALSE(track());
    camera.features["Gain"].number = 9.0;
    EXPECT_FALSE(track());
}

TEST_F(AutomaticValues, ThatStayedAsTheyWereAreNoNews) {
    track();
    changes = {};
    track();
    EXPECT_THAT(changes.keys(), IsEmpty());
}

TEST_F(AutomaticValues, ThatCannotBeReadAreLeftOut) {
    camera.lose("getFloat Gain");
    camera.refuse("setEnum BalanceRatioSelector Red");
    EXPECT_TRUE(track());
    EXPECT_EQ(state.gain.value, 2.5);
    EXPECT_EQ(state.whitebalanceRed.value, 1.5);
    EXPECT_THAT(changes.keys(), ElementsAre("CAMERA/Exposure", "CAMERA/WhitebalanceBlue"));
}

TEST_F(AutomaticValues, ThatTheCameraHasNotGotYetAreLeftOut) {
    for (const Setting setting : {Setting::Gain, Setting::Exposure, Setting::WhitebalanceBlue}) {
        insert(state.pending, setting);
    }
    EXPECT_THAT(callsOf([&] { EXPECT_FALSE(track()); }),
                ElementsAre("setEnum BalanceRatioSelector Red", "getFloat BalanceRatioAbs[Red]"));
    EXPECT_EQ(state.gain.value, 2.5);
    EXPECT_EQ(state.exposure.value, 15'000.0);
}

TEST_F(AutomaticValues, ThatTheCameraDoesNotHaveAreLeftOut) {
    state.whitebalanceRed.presence = state.whitebalanceBlue.presence = Presence::Absent;
    EXPECT_THAT(callsOf([&] { track(); }), ElementsAre("getFloat Gain", "getFloat ExposureTimeAbs"));
}

}  // namespace
