// Each thing that an event of a scenario can do.
#include "scenario_fixture.h"

namespace {

using test_support::floatOf;
using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::ReceivedFrame;
using test_support::run;
using test_support::ScenarioTest;
using test_support::setEnum;
using testing::Each;
using testing::ElementsAre;

class ScenarioActions : public ScenarioTest {
  protected:
    /// An event after one second.
    void startWithEvent(const std::string& action) const {
        start(R"("events": [{"at": 1, "do": {)" + action + "}}]");
    }
    static VmbError_t openingOf(const char* id) {
        VmbHandle_t camera = nullptr;
        const VmbError_t result = VmbCameraOpen(id, VmbAccessModeFull, &camera);
        if (result == VmbErrorSuccess) VmbCameraClose(camera);
        return result;
    }
    static std::vector<VmbFrameStatus_t> statuses(const test_support::Stream& stream) {
        std::vector<VmbFrameStatus_t> all;
        for (const ReceivedFrame& frame : stream.received()) all.push_back(frame.record.receiveStatus);
        return all;
    }
    static std::vector<std::uint64_t> exposures(const test_support::Stream& stream) {
        std::vector<std::uint64_t> all;
        for (const ReceivedFrame& frame : stream.received()) all.push_back(frame.stamp.exposureStartNs);
        return all;
    }
};

TEST_F(ScenarioActions, PullAndPlugAnInterface) {
    start(R"("events": [{"at": 1, "do": {"unplugInterface": {"interface": "SimulatedNetwork0"}}},
                        {"at": 2, "do": {"plugInterface": {"interface": "SimulatedNetwork0"}}}])");
    advance(kSecond);
    EXPECT_FALSE(isThere(kColourCamera) || isThere(kMonochromeCamera));
    advance(kSecond);
    EXPECT_TRUE(isThere(kColourCamera) && isThere(kMonochromeCamera));
}

TEST_F(ScenarioActions, TakeAndReturnControl) {
    start(R"("events": [{"at": 1, "do": {"takeControl": {"camera": "DEV_000F31A10002"}}},
                        {"at": 2, "do": {"returnControl": {"camera": "DEV_000F31A10002"}}}])");
    EXPECT_EQ(openingOf(kMonochromeCamera), VmbErrorSuccess);
    advance(kSecond);
    EXPECT_EQ(openingOf(kMonochromeCamera), VmbErrorInvalidAccess);
    EXPECT_EQ(openingOf(kColourCamera), VmbErrorSuccess);
    advance(kSecond);
    EXPECT_EQ(openingOf(kMonochromeCamera), VmbErrorSuccess);
}

TEST_F(ScenarioActions, LoseFrames) {
    start(R"("events": [{"at": 0.025, "after": "DEV_000F31A10001",
                         "do": {"loseFrames": {"camera": "DEV_000F31A10001", "count": 2}}}])");
    const auto stream = acquire(openFast());
    advance(75 * kMillisecond);
    EXPECT_THAT(stream->ids(), ElementsAre(1, 2, 3, 6, 7, 8)) << "exposed every 10 ms from 0 on";
    stream->endCapture();
}

TEST_F(ScenarioActions, BreakFrames) {
    const auto event = [](const char* at, const char* status) {
        return std::string(R"({"at": )") + at + R"(, "after": "DEV_000F31A10001", "do": {"breakFrames": )" +
               R"({"camera": "DEV_000F31A10001", "count": 1, "status": ")" + status + "\"}}}";
    };
    start(R"("events": [)" + event("0.005", "Incomplete") + "," + event("0.015", "TooSmall") + "," +
          event("0.025", "Invalid") + "]");
    const auto stream = acquire(openFast());
    advance(45 * kMillisecond);
    EXPECT_THAT(statuses(*stream),
                ElementsAre(VmbFrameStatusComplete, VmbFrameStatusIncomplete, VmbFrameStatusTooSmall,
                            VmbFrameStatusInvalid, VmbFrameStatusComplete));
    stream->endCapture();
}

TEST_F(ScenarioActions, FailTheNextCall) {
    startWithEvent(R"("failCall": {"function": "VmbCameraOpen", "code": "VmbErrorTimeout"})");
    EXPECT_EQ(openingOf(kColourCamera), VmbErrorSuccess);
    advance(kSecond);
    EXPECT_EQ(openingOf(kColourCamera), VmbErrorTimeout);
    EXPECT_EQ(openingOf(kColourCamera), VmbErrorSuccess);
}

TEST_F(ScenarioActions, FailCallsByNumberAndArgument) {
    startWithEvent(R"("failCall": {"function": "VmbCameraOpen", "argument": "DEV_000F31A10002", "nth": -2,
                                   "code": "VmbErrorIO"})");
    advance(kSecond);
    EXPECT_EQ(openingOf(kMonochromeCamera), VmbErrorSuccess);
    EXPECT_EQ(openingOf(kColourCamera), VmbErrorSuccess);
    EXPECT_EQ(openingOf(kMonochromeCamera), VmbErrorIO);
    EXPECT_EQ(openingOf(kColourCamera), VmbErrorSuccess);
    EXPECT_EQ(openingOf(kMonochromeCamera), VmbErrorIO);
}

TEST_F(ScenarioActions, DriveDisturbAndSilenceTheLineOfOneCamera) {
    start(R"("events": [
        {"at": 1, "do": {"driveLine": {"camera": "DEV_000F31A10001",
            "rhythm": {"numerator": 30, "denominator": 3, "phaseNs": 7, "widthNs": 1000}}}},
        {"at": 1, "do": {"disturbLine": {"camera": "DEV_000F31A10001", "fault": "missing", "first": 2}}},
        {"at": 1.45, "do": {"silenceLine": {"camera": "DEV_000F31A10001"}}}])");
    const auto colour = acquire(openTriggered(kColourCamera));
    const auto grey = acquire(openTriggered(kMonochromeCamera));
    advance(3 * kSecond);
    const std::uint64_t first = kSecond + 7;
    EXPECT_THAT(exposures(*colour), ElementsAre(first, first + 200 * kMillisecond, first + 300 * kMillisecond,
                                                first + 400 * kMillisecond));
    EXPECT_THAT(exposures(*grey), ElementsAre());
    colour->endCapture();
    grey->endCapture();
}

TEST_F(ScenarioActions, DriveAllLinesWithoutACamera) {
    start(R"("events": [
        {"at": 1, "do": {"driveLine": {"rhythm": {"numerator": 10, "widthNs": 1000}}}},
        {"at": 1, "do": {"disturbLine": {"fault": "missing", "first": 1}}},
        {"at": 1.25, "do": {"silenceLine": {}}}])");
    const auto colour = acquire(openTriggered(kColourCamera));
    const auto grey = acquire(openTriggered(kMonochromeCamera));
    advance(3 * kSecond);
    EXPECT_THAT(exposures(*colour), ElementsAre(1100 * kMillisecond, 1200 * kMillisecond));
    EXPECT_EQ(exposures(*colour), exposures(*grey));
    colour->endCapture();
    grey->endCapture();
}

TEST_F(ScenarioActions, HoldAndReleaseTheSensor) {
    start(R"("events": [
        {"at": 0.025, "after": "DEV_000F31A10001", "do": {"holdSensor": {"camera": "DEV_000F31A10001"}}},
        {"at": 0.5, "after": "DEV_000F31A10001", "do": {"releaseSensor": {"camera": "DEV_000F31A10001"}}}])");
    const auto stream = acquire(openFast());
    advance(490 * kMillisecond);
    EXPECT_EQ(stream->received().size(), 3u);
    advance(kSecond);
    EXPECT_GT(stream->received().size(), 90u);
    stream->endCapture();
}

TEST_F(ScenarioActions, ForceFeatures) {
    start(R"("events": [
        {"at": 1, "do": {"forceFeature": {"camera": "DEV_000F31A10001", "feature": "Width", "value": 7}}},
        {"at": 1, "do": {"forceFeature": {"camera": "DEV_000F31A10001", "feature": "Gain", "value": 99.5}}},
        {"at": 1, "do": {"forceFeature": {"camera": "DEV_000F31A10001", "feature": "TriggerMode",
                                          "value": "Sometimes"}}},
        {"at": 1, "do": {"forceFeature": {"feature": "GeVTLIsPresent", "value": false}}}])");
    const VmbHandle_t camera = open();
    advance(kSecond);
    EXPECT_EQ(intOf(camera, "Width"), 7);
    EXPECT_EQ(floatOf(camera, "Gain"), 99.5);
    EXPECT_EQ(test_support::enumOf(camera, "TriggerMode"), "Sometimes");
    bool present = true;
    VmbFeatureBoolGet(test_support::kSystem, "GeVTLIsPresent", &present);
    EXPECT_FALSE(present);
}

TEST_F(ScenarioActions, ChangeTheLight) {
    // Half of the highest level at 15 ms, then at 1 ms; within the tolerance of the automatic function.
    startWithEvent(R"("setScene": {"camera": "DEV_000F31A10001", "scene": {"percentPerMillisecond": 50}})");
    const VmbHandle_t camera = open();
    setEnum(camera, "TriggerMode", "Off");
    setEnum(camera, "ExposureAuto", "Continuous");
    const auto stream = acquire(camera);
    advanceTo(kSecond - 1);
    const double before = floatOf(camera, "ExposureTimeAbs");
    EXPECT_NEAR(before, 15'000, 1'500);
    advance(5 * kSecond);
    EXPECT_NEAR(floatOf(camera, "ExposureTimeAbs"), 1'000, 100);
    stream->endCapture();
}

TEST_F(ScenarioActions, SetTheClock) {
    startWithEvent(R"("setOscillator": {"camera": "DEV_000F31A10001",
        "oscillator": {"tickFrequency": 1000, "startTicks": 5000, "errorPpb": 0}})");
    const VmbHandle_t camera = open();
    advance(3 * kSecond);
    run(camera, "GevTimestampControlLatch");
    EXPECT_EQ(intOf(camera, "GevTimestampValue"), 7000) << "5000 at one second, 1000 a second since";
}

}  // namespace
