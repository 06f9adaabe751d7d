#include "zelt_gige_camera_channel_feature_reader.h"

#include <cmath>

#include "feature_fixture.h"

namespace {

using namespace zelt_gige_camera;
using test_support::inWords;
using test_support::OnFakeCamera;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using zelt_gige_api::CameraApiError;
using zelt_gige_api::FeatureType;
using zelt_gige_api::UnsupportedFeature;

const std::vector<std::string> kCacheCalls{
    "getInt OffsetX",
    "getInt OffsetY",
    "getInt Width",
    "getInt Height",
    "getFloat AcquisitionFrameRateAbs",
    "getInt StreamBytesPerSecond",
    "getEnum TriggerSource",
    "getFloat ExposureTimeAbs",
    "getEnum ExposureAuto",
    "getInt ExposureAutoMax",
    "getFloat Gain",
    "getEnum GainAuto",
    "getInt GainAutoAdjustTol",
    "getInt GainAutoRate",
    "getFloat Gamma",
    "getFloat Saturation",
    "getEnum BalanceWhiteAuto",
    "setEnum BalanceRatioSelector Red",
    "getFloat BalanceRatioAbs[Red]",
    "setEnum BalanceRatioSelector Blue",
    "getFloat BalanceRatioAbs[Blue]",
    "entries PixelFormat",
};

class FeatureReader : public OnFakeCamera {
  protected:
    void cache() { readCache(work); }
};

TEST_F(FeatureReader, ReadsTheCacheInItsOrder) {
    EXPECT_EQ(callsOf([&] { cache(); }), kCacheCalls);
}

TEST_F(FeatureReader, TakesEveryValueOfTheCache) {
    cache();
    EXPECT_EQ(state.frameOffsetX.value, 8.0);
    EXPECT_EQ(state.frameOffsetY.value, 4.0);
    EXPECT_EQ(state.frameWidth.value, 640.0);
    EXPECT_EQ(state.frameHeight.value, 480.0);
    EXPECT_EQ(state.frameRate.value, 25.0);
    EXPECT_EQ(state.streamBytesPerSecond, 115'000'000);
    EXPECT_FALSE(state.triggerModeIsAux);
    EXPECT_EQ(state.exposure.value, 15'000.0);
    EXPECT_EQ(state.exposureAuto.value, "Off");
    EXPECT_EQ(state.exposureAutoMax.value, 500'000.0);
    EXPECT_EQ(state.gain.value, 2.5);
    EXPECT_EQ(state.gainAuto.value, "Once");
    EXPECT_EQ(state.gainAutoAdjustTol.value, 5.0);
    EXPECT_EQ(state.gainAutoRate.value, 99.0);
    EXPECT_EQ(state.gamma.value, 0.75);
    EXPECT_EQ(state.saturation.value, 1.25);
    EXPECT_EQ(state.whitebalanceAuto.value, "Continuous");
    EXPECT_EQ(state.whitebalanceRed.value, 1.5);
    EXPECT_EQ(state.whitebalanceBlue.value, 1.75);
    EXPECT_THAT(state.pixelFormatEntries, ElementsAre("Mono8", "RGB8Packed", "YUV422Packed"));
    EXPECT_EQ(state.pixelFormat, "");
    EXPECT_EQ(state.hue.value, 0.0);
}

TEST_F(FeatureReader, TakesTheFirstLineAndNoOtherSourceAsExternalTrigger) {
    for (const char* source : {"Line1", "Line2", "FixedRate", "line1", ""}) {
        camera.features["TriggerSource"].text = source;
        cache();
        EXPECT_EQ(state.triggerModeIsAux, std::string(source) == "Line1") << source;
    }
}

TEST_F(FeatureReader, KeepsEveryOldValueWhenAnyAccessFails) {
    state.gamma.value = 0.5;
    state.pixelFormatEntries = {"Mono8"};
    const auto before = inWords(state);
    for (const std::string& call : kCacheCalls) {
        if (call == "entries PixelFormat") continue;  // never fails
        camera.forgive();
        camera.lose(call);
        EXPECT_EQ(failureOf([&] { cache(); }), "The camera is gone") << call;
        EXPECT_EQ(inWords(state), before) << call;
        EXPECT_THAT(news.keys(), IsEmpty()) << call;
    }
}

TEST_F(FeatureReader, RefusesToDoWithoutWhatEveryCameraHas) {
    for (const char* feature : {"OffsetX", "OffsetY", "Width", "Height", "AcquisitionFrameRateAbs",
                                "StreamBytesPerSecond", "TriggerSource", "ExposureTimeAbs", "Gain"}) {
        const auto features = camera.features;
        const auto before = inWords(state);
        camera.features.erase(feature);
        EXPECT_THROW(cache(), UnsupportedFeature) << feature;
        EXPECT_EQ(inWords(state), before) << feature;
        camera.features = features;
    }
}

/// What a camera may lack, with the read of it.
struct Optional {
    Setting setting;
    const char* read;
    const char* feature;
};

constexpr Optional kOptionals[] = {
    {Setting::ExposureAutoMax, "getInt", "ExposureAutoMax"},
    {Setting::GainAutoAdjustTol, "getInt", "GainAutoAdjustTol"},
    {Setting::GainAutoRate, "getInt", "GainAutoRate"},
    {Setting::Gamma, "getFloat", "Gamma"},
    {Setting::Saturation, "getFloat", "Saturation"},
    {Setting::WhitebalanceRed, "getFloat", "BalanceRatioAbs[Red]"},
    {Setting::WhitebalanceBlue, "getFloat", "BalanceRatioAbs[Blue]"},
};

TEST_F(FeatureReader, DoesWithoutNumbersThatTheCameraDoesNotHaveAndDoesNotAskAgain) {
    for (const Optional& each : kOptionals) {
        const std::string read = std::string(each.read) + " " + each.feature;
        camera.features.erase(each.feature);
        NumberValue& value = state.*numberRow(each.setting).value;
        value.value = 42.0;
        EXPECT_THAT(callsOf([&] { cache(); }), Contains(read));
        EXPECT_EQ(value.presence, Presence::Absent) << read;
        EXPECT_EQ(value.value, 42.0) << read;
        EXPECT_THAT(callsOf([&] { cache(); }), Not(Contains(read)));
        EXPECT_EQ(value.presence, Presence::Absent) << read;
    }
}

TEST_F(FeatureReader, AsksAgainForNumbersThatCannotBeReadNow) {
    for (const Optional& each : kOptionals) {
        const std::string read = std::string(each.read) + " " + each.feature;
        NumberValue& value = state.*numberRow(each.setting).value;
        value.value = 42.0;
        camera.refuse(read);
        cache();
        EXPECT_EQ(value.presence, Presence::Unreadable) << read;
        EXPECT_EQ(value.value, 42.0) << read;
        camera.forgive();
        cache();
        EXPECT_EQ(value.presence, Presence::Present) << read;
        EXPECT_EQ(value.value, camera.features[each.feature].number) << read;
    }
}

TEST_F(FeatureReader, TakesAnAutomaticFunctionThatTheCameraDoesNotHaveAsOff) {
    for (const AutoRow& row : autoRows()) {
        const std::string read = std::string("getEnum ") + row.feature;
        camera.features.erase(row.feature);
        AutoValue& value = state.*row.value;
        value.value = "Continuous";
        cache();
        EXPECT_EQ(value.presence, Presence::Absent) << read;
        EXPECT_EQ(value.value, "Off") << read;
        EXPECT_THAT(callsOf([&] { cache(); }), Not(Contains(read)));
    }
}

TEST_F(FeatureReader, AsksAgainForAnAutomaticFunctionThatCannotBeReadNow) {
    for (const AutoRow& row : autoRows()) {
        const std::string read = std::string("getEnum ") + row.feature;
        AutoValue& value = state.*row.value;
        value.value = "as it was";
        camera.refuse(read);
        cache();
        EXPECT_EQ(value.presence, Presence::Unreadable) << read;
        EXPECT_EQ(value.value, "as it was") << read;
        camera.forgive();
        cache();
        EXPECT_EQ(value.presence, Presence::Present) << read;
        EXPECT_EQ(value.value, camera.features[row.feature].text) << read;
    }
}

TEST_F(FeatureReader, AsksForAHueThatCouldNotBeReadAndForNoOther) {
    camera.features["Hue"].number = 12;
    for (const Presence presence : {Presence::Present, Presence::Absent}) {
        state.hue.presence = presence;
        EXPECT_THAT(callsOf([&] { cache(); }), Not(Contains("getFloat Hue")));
    }
    state.hue.presence = Presence::Unreadable;
    EXPECT_THAT(callsOf([&] { cache(); }), Contains("getFloat Hue"));
    EXPECT_EQ(state.hue.presence, Presence::Present);
    EXPECT_EQ(state.hue.value, 12.0);
}

TEST_F(FeatureReader, LeavesValuesThatTheCameraHasNotGotYet) {
    for (const NumberRow& row : numberRows()) (state.*row.value).value = 42.0;
    for (const AutoRow& row : autoRows()) (state.*row.value).value = "Once more";
    state.triggerModeIsAux = true;
    state.hue.presence = Presence::Unreadable;
    state.pending.set();
    EXPECT_EQ(callsOf([&] { cache(); }).size(), kCacheCalls.size() + 1);  // with the hue
    for (const NumberRow& row : numberRows()) EXPECT_EQ((state.*row.value).value, 42.0) << row.feature;
    for (const AutoRow& row : autoRows()) EXPECT_EQ((state.*row.value).value, "Once more") << row.feature;
    EXPECT_TRUE(state.triggerModeIsAux);
    EXPECT_EQ(state.hue.presence, Presence::Present);
    EXPECT_TRUE(state.pending.all());
    EXPECT_THAT(news.keys(), ElementsAre("FrameFormat"));  // its entries
}

TEST_F(FeatureReader, TellsEverySettingThatChangedAndNoOther) {
    cache();
    EXPECT_THAT(news.keys(),
                ElementsAre("FrameOffsetX", "FrameOffsetY", "FrameWidth", "FrameHeight", "CAMERA/Exposure",
                            "CAMERA/Gain", "CAMERA/GainAutoAdjustTol", "CAMERA/GainAutoRate", "CAMERA/Gamma",
                            "CAMERA/Saturation", "CAMERA/WhitebalanceRed", "CAMERA/WhitebalanceBlue",
                            "CAMERA/GainAuto", "CAMERA/WhitebalanceAuto", "FrameFormat",
                            "CAMERA/FrameSetting", "SampleRate"));
}

TEST_F(FeatureReader, TellsNothingWhenNothingChanged) {
    cache();
    ChannelNews second;
    ChannelWork again{camera, 7, state, second};
    readCache(again);
    EXPECT_THAT(second.keys(), IsEmpty());
}

struct Change {
    const char* feature;
    double number;
    const char* text;
    std::vector<std::string> keys;
};

TEST_F(FeatureReader, TellsAChangeUnderTheKeysOfItsSettings) {
    const std::vector<Change> changes{
        {"Width", 320, "", {"FrameWidth"}},
        {"ExposureAutoMax", 100, "", {}},
        {"StreamBytesPerSecond", 1000, "", {}},
        {"ExposureAuto", 0, "Once", {"CAMERA/ExposureAuto"}},
        {"AcquisitionFrameRateAbs", 26, "", {"CAMERA/FrameSetting", "SampleRate"}},
        {"TriggerSource", 0, "Line1", {"CAMERA/TriggerMode", "CAMERA/FrameSetting", "SampleRate"}},
        // With external trigger the host sees the trigger's frequency.
        {"AcquisitionFrameRateAbs", 27, "", {}},
    };
    cache();
    for (const Change& change : changes) {
        camera.features[change.feature].number = change.number;
        camera.features[change.feature].text = change.text;
        ChannelNews fresh;
        ChannelWork again{camera, 7, state, fresh};
        readCache(again);
        EXPECT_EQ(fresh.keys(), change.keys) << change.feature;
        EXPECT_THAT(fresh.messages(), IsEmpty());
    }
    EXPECT_EQ(state.frameRate.value, 27.0);
}

}  // namespace
