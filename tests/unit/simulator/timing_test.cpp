// When things happen, in true time and in the camera's.
#include <cmath>

#include "simulator_fixture.h"

namespace {

using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::ReceivedFrame;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::Stream;
using test_support::StreamTest;

class Timing : public StreamTest {
  protected:
    /// Frames of one acquisition with the camera's settings of now.
    static std::vector<ReceivedFrame> record(VmbHandle_t camera, const char* id, std::uint64_t count) {
        Stream stream(camera);
        stream.startCapture();
        run(camera, "AcquisitionStart");
        waitForFrames(count, id);
        stream.endCapture();
        return stream.received();
    }
    static std::uint64_t periods(const std::vector<ReceivedFrame>& frames) {
        return frames.back().record.frameID - frames.front().record.frameID;
    }
};

TEST_F(Timing, FixedRatePeriodsAreExactInCameraTicks) {
    const std::pair<const char*, std::uint64_t> cameras[] = {{kColourCamera, 20'000'000},
                                                             {kMonochromeCamera, 25'000'000}};
    for (const auto& [id, period] : cameras) {
        const VmbHandle_t camera = openFast(id);
        const std::vector<ReceivedFrame> frames = record(camera, id, 5);
        for (std::size_t i = 1; i < frames.size(); ++i) {
            const std::uint64_t passed = frames[i].record.frameID - frames[i - 1].record.frameID;
            EXPECT_NEAR(static_cast<double>(frames[i].record.timestamp - frames[i - 1].record.timestamp),
                        static_cast<double>(passed * period), 1.0);
        }
    }
}

TEST_F(Timing, OscillatorsAreOffByTwelveAndMinusEightPartsPerMillion) {
    const std::pair<const char*, double> cameras[] = {{kColourCamera, 12e-6}, {kMonochromeCamera, -8e-6}};
    for (const auto& [id, error] : cameras) {
        const VmbHandle_t camera = openFast(id);
        const std::vector<ReceivedFrame> frames = record(camera, id, 12);
        const auto ticks =
            static_cast<double>(frames.back().stamp.cameraTicks - frames.front().stamp.cameraTicks);
        const auto truth =
            static_cast<double>(frames.back().stamp.exposureStartNs - frames.front().stamp.exposureStartNs);
        // The two readings are whole nanoseconds each; 200 ms make 2400 or 1600 of difference.
        EXPECT_GT(truth, 2e8);
        EXPECT_NEAR(ticks - truth, truth * error, 2.0) << id;
    }
}

TEST_F(Timing, AFrameNeverComesBeforeItsWayIsOver) {
    const VmbHandle_t camera = openFast();
    for (const ReceivedFrame& frame : record(camera, kColourCamera, 5)) {
        // Exposure 1 ms, 492 rows of readout, 322752 bytes at 115000000 per second.
        EXPECT_EQ(frame.stamp.wayNs, 1'000'000u + 11'263'480u + 2'806'539u);
        EXPECT_GE(frame.at, frame.stamp.exposureStartNs + frame.stamp.wayNs);
    }
}

TEST_F(Timing, TheRateFollowsTheSettingInTheMiddleOfAnAcquisition) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    setFloat(camera, "AcquisitionFrameRateAbs", 80);
    const std::size_t changed = stream.received().size() + 2;
    waitForFrames(changed + 3);
    stream.endCapture();
    const std::vector<ReceivedFrame> frames = stream.received();
    const ReceivedFrame& before = frames[changed];
    const ReceivedFrame& after = frames[changed + 1];
    EXPECT_NEAR(static_cast<double>(after.record.timestamp - before.record.timestamp),
                12'500'000.0 * static_cast<double>(after.record.frameID - before.record.frameID), 1.0);
}

TEST_F(Timing, AnExposureThatIsTooLongSlowsTheCamera) {
    const VmbHandle_t camera = openFast();
    setFloat(camera, "ExposureTimeAbs", 30'000);
    const std::vector<ReceivedFrame> frames = record(camera, kColourCamera, 3);
    // 30 ms and the shortest exposure of 30 us.
    EXPECT_NEAR(static_cast<double>(frames.back().record.timestamp - frames.front().record.timestamp),
                30'030'000.0 * static_cast<double>(periods(frames)), 3.0);
}

TEST_F(Timing, FreerunIsAsFastAsTheCameraCan) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "TriggerMode", "On");
    setEnum(camera, "TriggerSource", "Freerun");
    setFloat(camera, "AcquisitionFrameRateAbs", 1);
    const std::vector<ReceivedFrame> frames = record(camera, kColourCamera, 3);
    EXPECT_NEAR(static_cast<double>(frames.back().record.timestamp - frames.front().record.timestamp),
                11'263'480.0 * static_cast<double>(periods(frames)), 5.0);
}

TEST_F(Timing, FixedRateAsSourceRunsAtTheRate) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "TriggerMode", "On");
    setEnum(camera, "TriggerSource", "FixedRate");
    const std::vector<ReceivedFrame> frames = record(camera, kColourCamera, 3);
    EXPECT_NEAR(static_cast<double>(frames.back().record.timestamp - frames.front().record.timestamp),
                20'000'000.0 * static_cast<double>(periods(frames)), 2.0);
}

TEST_F(Timing, WithoutConstraintFramesWaitForTheLink) {
    const VmbHandle_t camera = openFast();
    setInt(camera, "StreamBytesPerSecond", 8'068'800);
    EXPECT_EQ(VmbFeatureBoolSet(camera, "StreamFrameRateConstrain", false), VmbErrorSuccess);
    // 322752 bytes now take 40 ms, and one frame is exposed every 20 ms.
    const std::vector<ReceivedFrame> frames = record(camera, kColourCamera, 4);
    EXPECT_EQ(frames[0].stamp.wayNs, 1'000'000u + 11'263'480u + 40'000'000u);
    for (std::size_t i = 1; i < 4; ++i) {
        EXPECT_NEAR(static_cast<double>(frames[i].stamp.wayNs - frames[i - 1].stamp.wayNs), 20'000'240.0,
                    1.0);
    }
}

TEST_F(Timing, TheClockIsResetAndLatchedByCommand) {
    const VmbHandle_t camera = openFast();
    EXPECT_EQ(intOf(camera, "GevTimestampValue"), 0);
    run(camera, "GevTimestampControlLatch");
    const VmbInt64_t sincePowerUp = intOf(camera, "GevTimestampValue");
    EXPECT_GT(sincePowerUp, 0);
    EXPECT_EQ(intOf(camera, "GevTimestampValue"), sincePowerUp);
    const VmbUint64_t before = VmbSimTime();
    run(camera, "GevTimestampControlReset");
    run(camera, "GevTimestampControlLatch");
    const VmbUint64_t after = VmbSimTime();
    EXPECT_GE(intOf(camera, "GevTimestampValue"), 0);
    EXPECT_LE(static_cast<double>(intOf(camera, "GevTimestampValue")),
              static_cast<double>(after - before) * (1 + 12e-6) + 1);
}

TEST_F(Timing, TrueTimeIsTheSystemsMonotonicClock) {
    const auto now = [] {
        return static_cast<VmbUint64_t>(
            std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count());
    };
    const VmbUint64_t before = now();
    const VmbUint64_t time = VmbSimTime();
    EXPECT_GE(time, before);
    EXPECT_LE(time, now());
}

}  // namespace
