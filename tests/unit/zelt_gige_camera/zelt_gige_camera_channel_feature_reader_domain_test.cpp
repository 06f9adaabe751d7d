
#include "feature_fixture.h"
#include "special_numbers.h"
#include "zelt_gige_camera_channel_feature_reader.h"

namespace {

using namespace zelt_gige_camera;
using test_support::inWords;
using test_support::kNan;
using test_support::OnFakeCamera;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using zelt_gige_api::FeatureType;

const std::vector<std::string> kDomainCalls{
    "floatRange Gain",
    "floatRange ExposureTimeAbs",
    "setEnum BalanceRatioSelector Red",
    "floatRange BalanceRatioAbs[Red]",
    "setEnum BalanceRatioSelector Blue",
    "floatRange BalanceRatioAbs[Blue]",
    "intRange GainAutoAdjustTol",
    "intRange GainAutoRate",
    "floatRange Gamma",
    "floatRange Hue",
    "floatRange Saturation",
    "floatRange AcquisitionFrameRateAbs",
    "intRange Width",
    "intRange Height",
    "getInt WidthMax",
    "getInt HeightMax",
    "entries ExposureAuto",
    "entries GainAuto",
    "entries BalanceWhiteAuto",
};

class DomainReader : public OnFakeCamera {
  protected:
    void domain() { readDomainCache(work); }

    void expectRange(Setting setting, double min, double max) const {
        const NumberValue& value = state.*numberRow(setting).value;
        EXPECT_TRUE(value.hasRange) << numberRow(setting).feature;
        EXPECT_EQ(value.min, min) << numberRow(setting).feature;
        EXPECT_EQ(value.max, max) << numberRow(setting).feature;
    }
    void expectNoRange(Setting setting) const {
        const NumberValue& value = state.*numberRow(setting).value;
        EXPECT_FALSE(value.hasRange);
        EXPECT_EQ(value.min, 0.0);
        EXPECT_EQ(value.max, 0.0);
    }
};

TEST_F(DomainReader, ReadsInItsOrder) {
    EXPECT_EQ(callsOf([&] { domain(); }), kDomainCalls);
}

TEST_F(DomainReader, TakesEveryRange) {
    domain();
    expectRange(Setting::Gain, 0.0, 32.0);
    expectRange(Setting::Exposure, 30.0, 6e7);
    expectRange(Setting::WhitebalanceRed, 0.8, 3.0);
    expectRange(Setting::WhitebalanceBlue, 0.9, 3.5);
    expectRange(Setting::GainAutoAdjustTol, 1.0, 50.0);
    expectRange(Setting::GainAutoRate, 2.0, 100.0);
    expectRange(Setting::Gamma, 0.45, 1.0);
    expectRange(Setting::Hue, -40.0, 41.0);
    expectRange(Setting::Saturation, 0.1, 2.0);
    expectRange(Setting::FrameRate, 0.5, 90.0);
    expectRange(Setting::FrameWidth, 16.0, 650.0);
    expectRange(Setting::FrameHeight, 12.0, 490.0);
}

TEST_F(DomainReader, TakesNoValuesAndTellsNothing) {
    state.pending.set();
    domain();
    for (const NumberRow& row : numberRows()) EXPECT_EQ((state.*row.value).value, 0.0) << row.feature;
    EXPECT_TRUE(state.pending.all());
    EXPECT_THAT(news.keys(), IsEmpty());
}

TEST_F(DomainReader, TakesTheEntriesOfTheAutomaticFunctions) {
    domain();
    EXPECT_THAT(state.exposureAuto.entries, ElementsAre("Off", "Once", "Continuous"));
    EXPECT_THAT(state.gainAuto.entries, ElementsAre("Off", "Once"));
    EXPECT_THAT(state.whitebalanceAuto.entries, ElementsAre("Continuous", "Off"));
}

TEST_F(DomainReader, ForgetsARangeThatIsGone) {
    domain();
    camera.features["Gain"].hasRange = false;
    camera.features["Width"].hasRange = false;
    domain();
    expectNoRange(Setting::Gain);
    expectNoRange(Setting::FrameWidth);
    expectRange(Setting::FrameHeight, 12.0, 490.0);
}

TEST_F(DomainReader, TakesARangeWithAnEndThatIsNoNumberAsNone) {
    domain();
    camera.number("Gain", FeatureType::Float, 2.5, kNan, 32);
    camera.number("Gamma", FeatureType::Float, 0.75, 0, kNan);
    domain();
    expectNoRange(Setting::Gain);
    expectNoRange(Setting::Gamma);
}

TEST_F(DomainReader, AsksForNothingThatTheCameraDoesNotHave) {
    domain();
    for (const NumberRow& row : numberRows()) {
        if (row.optional) (state.*row.value).presence = Presence::Absent;
    }
    for (const AutoRow& row : autoRows()) (state.*row.value).presence = Presence::Absent;
    EXPECT_THAT(
        callsOf([&] { domain(); }),
        ElementsAre("floatRange Gain", "floatRange ExposureTimeAbs", "floatRange AcquisitionFrameRateAbs",
                    "intRange Width", "intRange Height", "getInt WidthMax", "getInt HeightMax"));
    expectNoRange(Setting::Hue);
    EXPECT_THAT(state.gainAuto.entries, IsEmpty());
}

TEST_F(DomainReader, SelectsNoColourThatCannotBeReadNow) {
    state.whitebalanceRed.presence = Presence::Unreadable;
    state.gamma.presence = Presence::Unreadable;
    const auto calls = callsOf([&] { domain(); });
    EXPECT_THAT(calls, Not(Contains("setEnum BalanceRatioSelector Red")));
    EXPECT_THAT(calls, Contains("setEnum BalanceRatioSelector Blue"));
    EXPECT_THAT(calls, Contains("floatRange Gamma"));
    expectNoRange(Setting::WhitebalanceRed);
}

TEST_F(DomainReader, TakesTheSensorsSizeFromItsOwnFeatures) {
    domain();
    EXPECT_EQ(state.sensorWidth, 656.0);
    EXPECT_EQ(state.sensorHeight, 492.0);
}

TEST_F(DomainReader, TakesTheGreatestPictureAsTheSensorWhenTheCameraTellsNone) {
    camera.features.erase("WidthMax");
    camera.refuse("getInt HeightMax");
    domain();
    EXPECT_EQ(state.sensorWidth, 650.0);
    EXPECT_EQ(state.sensorHeight, 490.0);
    camera.features["Width"].hasRange = false;
    domain();
    EXPECT_EQ(state.sensorWidth, 0.0);
}

TEST_F(DomainReader, FindsOutForItselfThatTheCameraHasNoColours) {
    camera.features.erase("BalanceRatioSelector");
    domain();
    expectNoRange(Setting::WhitebalanceRed);
    EXPECT_EQ(state.whitebalanceRed.presence, Presence::Absent);
    EXPECT_EQ(state.whitebalanceBlue.presence, Presence::Absent);
    EXPECT_TRUE(state.gain.hasRange);
}

TEST_F(DomainReader, KeepsTheEntriesThatWereListedBeforeWhenTheCameraDoesNotTell) {
    domain();
    const std::vector<std::string> before = state.gainAuto.entries;
    ASSERT_FALSE(before.empty());
    camera.features["GainAuto"].entries.clear();
    domain();
    EXPECT_EQ(state.gainAuto.entries, before);
}

TEST_F(DomainReader, KeepsEveryOldRangeWhenAnyAccessFails) {
    state.gain = {1.0, 2.0, 3.0, true};
    state.hue = {4.0, 5.0, 6.0, true};
    state.exposureAuto.entries = {"Off"};
    const auto before = inWords(state);
    for (const char* call : {"setEnum BalanceRatioSelector Red", "setEnum BalanceRatioSelector Blue",
                             "getInt WidthMax", "getInt HeightMax"}) {
        camera.forgive();
        camera.lose(call);
        EXPECT_EQ(failureOf([&] { domain(); }), "The camera is gone") << call;
        EXPECT_EQ(inWords(state), before) << call;
    }
}

}  // namespace
