// What is written in groups when a camera is configured, and the limit of its exposure.
#include <cmath>

#include "log_capture.h"
#include "read_camera_fixture.h"
#include "zelt_gige_camera_channel_feature_writer.h"

namespace {

using namespace zelt_gige_camera;
using namespace test_support;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_api::UnsupportedFeature;

class FeatureGroups : public OnReadCamera {};

TEST_F(FeatureGroups, OfExposureAndGainAreWrittenInTheirOrder) {
    EXPECT_EQ(callsOf([&] { EXPECT_FALSE(writeExposureAndGain(work)); }),
              chained({{"type ExposureMode", "setEnum ExposureMode Timed"},
                       kExposureWrites,
                       {"setInt ExposureAutoMax 39970"},
                       kGainWrites}));
    EXPECT_THAT(news.keys(), IsEmpty());
}

TEST_F(FeatureGroups, OfExposureLeaveAModeOutThatTheCameraDoesNotHave) {
    camera.features.erase("ExposureMode");
    EXPECT_EQ(
        callsOf([&] { writeExposureAndGain(work); }),
        chained({{"type ExposureMode"}, kExposureWrites, {"setInt ExposureAutoMax 39970"}, kGainWrites}));
}

TEST_F(FeatureGroups, OfColoursAreWrittenInTheirOrder) {
    EXPECT_EQ(callsOf([&] { writeColours(work); }), kColourWrites);
    EXPECT_THAT(news.keys(), IsEmpty());
}

TEST_F(FeatureGroups, LeaveOutWhatTheCameraDoesNotHave) {
    for (const NumberRow& row : numberRows()) {
        if (row.optional) (state.*row.value).presence = Presence::Absent;
    }
    for (const AutoRow& row : autoRows()) (state.*row.value).presence = Presence::Absent;
    EXPECT_EQ(callsOf([&] { writeExposureAndGain(work); }),
              chained({{"type ExposureMode", "setEnum ExposureMode Timed"},
                       kExposureWrites,
                       {"setFloat Gain 2.5", "getFloat Gain"}}));
    EXPECT_THAT(callsOf([&] { writeColours(work); }), IsEmpty());
}

TEST_F(FeatureGroups, TellWhatTheCameraMadeOfTheNumbers) {
    for (const char* feature : {"ExposureTimeAbs", "Gain", "GainAutoAdjustTol", "GainAutoRate", "Gamma",
                                "Saturation", "BalanceRatioAbs[Red]", "BalanceRatioAbs[Blue]"}) {
        camera.features[feature].rounding = [](double value) { return value + 1.0; };
    }
    EXPECT_FALSE(writeExposureAndGain(work));
    EXPECT_THAT(news.keys(), ElementsAre("CAMERA/Exposure", "CAMERA/Gain", "CAMERA/GainAutoAdjustTol",
                                         "CAMERA/GainAutoRate", "CAMERA/Gamma"));
    EXPECT_EQ(state.gainAutoRate.value, 100.0);
    news = {};
    writeColours(work);
    EXPECT_THAT(news.keys(),
                ElementsAre("CAMERA/Saturation", "CAMERA/WhitebalanceRed", "CAMERA/WhitebalanceBlue"));
}

TEST_F(FeatureGroups, EndWithTheStepThatFails) {
    camera.refuse("setFloat Gain");
    const Calls calls = callsOf([&] { EXPECT_THROW(writeExposureAndGain(work), UnsupportedFeature); });
    EXPECT_EQ(calls.back(), "setFloat Gain 2.5");
    camera.refuse("setEnum BalanceRatioSelector Blue");
    const Calls colours = callsOf([&] { EXPECT_THROW(writeColours(work), UnsupportedFeature); });
    EXPECT_EQ(colours.back(), "setEnum BalanceRatioSelector Blue");
}

class ExposureLimit : public OnReadCamera {
  protected:
    Calls limit(bool changesTheExposure = false) {
        return callsOf([&] { EXPECT_EQ(writeExposureLimit(work), changesTheExposure); });
    }
    const Calls kLongest{"setInt ExposureAutoMax 39970"};
};

TEST_F(ExposureLimit, OfAutomaticExposuresIsWrittenWholeAndLogged) {
    const LogCapture log;
    EXPECT_EQ(limit(), kLongest);
    EXPECT_EQ(state.exposureAutoMax.value, 39'970.0);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].severity, 2u);
    EXPECT_EQ(log.lines()[0].text, "Limiting auto exposure to 39970");
    EXPECT_THAT(news.keys(), IsEmpty());
}

TEST_F(ExposureLimit, IsRoundedDownToWholeMicroseconds) {
    state.exposure.min = 30.25;
    EXPECT_EQ(limit(), Calls{"setInt ExposureAutoMax 39969"});
    state.exposure.max = 1000.75;
    EXPECT_EQ(limit(), Calls{"setInt ExposureAutoMax 1000"});
}

TEST_F(ExposureLimit, FollowsTheTriggersFrequency) {
    state.triggerModeIsAux = true;
    EXPECT_EQ(limit(), kLongest);
    state.auxFrequency = Rational(30'000, 1001);  // 33366.67 microseconds
    EXPECT_EQ(limit(), Calls{"setInt ExposureAutoMax 33337"});
}

TEST_F(ExposureLimit, ShortensAnExposureThatIsContinuous) {
    state.exposure.value = 50'000.0;
    state.exposureAuto.value = "Continuous";
    EXPECT_EQ(limit(/*changesTheExposure=*/true),
              chained({{"setFloat ExposureTimeAbs 39970", "getFloat ExposureTimeAbs"}, kLongest}));
    EXPECT_EQ(state.exposure.value, 39'970.0);
}

TEST_F(ExposureLimit, TakesOverWhatTheCameraMadeOfTheShorterExposure) {
    camera.features["ExposureTimeAbs"].rounding = [](double value) { return value - 0.5; };
    state.exposure.value = 50'000.0;
    state.exposureAuto.value = "Continuous";
    EXPECT_EQ(limit(/*changesTheExposure=*/true).size(), 3u);
    EXPECT_EQ(state.exposure.value, 39'969.5);
}

TEST_F(ExposureLimit, LeavesAnExposureThatFits) {
    state.exposure.value = 39'970.0;
    state.exposureAuto.value = "Continuous";
    EXPECT_EQ(limit(), kLongest);
}

TEST_F(ExposureLimit, LeavesAnExposureThatIsNotContinuous) {
    state.exposure.value = 50'000.0;
    for (const char* entry : {"Off", "Once"}) {
        state.exposureAuto.value = entry;
        EXPECT_EQ(limit(), kLongest) << entry;
        EXPECT_EQ(state.exposure.value, 50'000.0) << entry;
    }
}

TEST_F(ExposureLimit, KeepsTheExposureWhenTheCameraRefusesAShorterOne) {
    state.exposure.value = 50'000.0;
    state.exposureAuto.value = "Continuous";
    camera.refuse("setFloat ExposureTimeAbs");
    EXPECT_THROW(writeExposureLimit(work), UnsupportedFeature);
    EXPECT_EQ(state.exposure.value, 50'000.0);
    EXPECT_FALSE(isPending(Setting::Exposure));
}

TEST_F(ExposureLimit, IsNotWrittenToACameraWithoutOne) {
    state.exposureAutoMax.presence = Presence::Absent;
    EXPECT_THAT(limit(), IsEmpty());
    state.exposureAutoMax.presence = Presence::Unreadable;
    EXPECT_THAT(limit(), IsEmpty());
}

TEST_F(ExposureLimit, IsUnknownWithoutTheCamerasRange) {
    state.exposure.hasRange = false;
    EXPECT_THAT(limit(), IsEmpty());
}

TEST_F(ExposureLimit, ThatNoIntegerHoldsIsNotWritten) {
    state.frameRate.value = 0.0;
    for (const double max : {HUGE_VAL, 1e300}) {
        state.exposure.max = max;
        EXPECT_THAT(limit(), IsEmpty()) << max;
    }
}

}  // namespace
