// How a run begins and ends, and what of it the time stamps cannot know, through the whole plug-in.
#include <initializer_list>

#include "assertion_capture.h"
#include "long_run_fixture.h"
#include "zelt_gige_vmb_call.h"

namespace {

using test_support::AssertionCapture;
using test_support::FrameSink;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::LogCapture;
using test_support::LongRun;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint64_t kWidth = kMillisecond;

/// A camera on a trigger output of 100 Hz, whose clock is exact unless a test says otherwise.
class EdgesOfARun : public LongRun {
  protected:
    EdgesOfARun() {
        useTrigger(100);
        plugin->setChannelSink(0, &sink);
    }

    /// Pulses so many milliseconds after now; then time passes until the last frame has come.
    void pulse(std::initializer_list<std::uint64_t> milliseconds) {
        const std::uint64_t now = VmbSimTime();
        std::vector<std::uint64_t> times;
        for (const std::uint64_t at : milliseconds) times.push_back(now + at * kMillisecond);
        ASSERT_EQ(VmbSimPulseLine(kMonochromeCamera, times.data(), static_cast<std::uint32_t>(times.size()),
                                  kWidth),
                  VmbErrorSuccess);
        advanceTo(times.back() + 5 * kMillisecond);
    }
    void startExact() { startWith({1'000'000'000, 0, 0, 0, 86'400, 0}); }

    /// Starts so that the camera tells nothing of the start; events are then the test's.
    void startWithoutEvent() {
        ASSERT_TRUE(plugin->prepareAcquisition());
        handle = cameraHandle();
        ASSERT_EQ(VmbFeatureEnumSet(handle, "EventSelector", "AcquisitionStart"), VmbErrorSuccess);
        ASSERT_EQ(VmbFeatureEnumSet(handle, "EventNotification", "Off"), VmbErrorSuccess);
        ASSERT_TRUE(plugin->onAcquisitionPrepared());
        ASSERT_TRUE(plugin->startAcquisition());
    }
    void startEvent(std::uint64_t frame) {
        events().onAcquisitionStarted(zelt_gige_api::fromVmb(handle), 0, frame);
    }
    void endEvent() { events().onAcquisitionEnded(zelt_gige_api::fromVmb(handle), 0, 0); }

    FrameSink sink;
    VmbHandle_t handle = nullptr;

  private:
    zelt_gige_api::IfCameraCallback& events() {
        return dynamic_cast<zelt_gige_api::IfCameraCallback&>(*plugin->getChannel(0));
    }
};

std::vector<std::string> startingWith(const char* begin, std::vector<std::string> lines) {
    std::erase_if(lines, [&](const std::string& line) { return line.rfind(begin, 0) != 0; });
    return lines;
}

TEST_F(EdgesOfARun, SkippedLostAndDoubledPulsesAreToldApart) {
    startExact();
    const LogCapture log(UniLogSeverityLevel::Detail);
    // Periods 0, 1, 3 and 4: the third pulse is missing.
    pulse({5, 15, 35, 45});
    // Periods 5, 6 and 7, that of period 6 twice; the first of these frames gets lost.
    EXPECT_EQ(VmbSimLoseFrames(kMonochromeCamera, 1), VmbErrorSuccess);
    pulse({5, 15, 19, 25});
    // Periods 8 and 10: a lost frame, and a missing pulse behind it.
    EXPECT_EQ(VmbSimLoseFrames(kMonochromeCamera, 1), VmbErrorSuccess);
    pulse({5, 25});
    EXPECT_THAT(sink.ids(), ElementsAre(1, 2, 3, 4, 6, 7, 8, 10));
    EXPECT_THAT(sink.times(), ElementsAre(0, 1, 3, 4, 6, 6, 7, 10));
    EXPECT_THAT(startingWith("Detected", log.texts(UniLogSeverityLevel::Detail)),
                ElementsAre("Detected 1 skipped and 0 dropped frames at #3",
                            "Detected 0.6 multi-triggered frames at #7",
                            "Detected 2 skipped and 1 dropped frames at #10"));
    stop();
}

TEST_F(EdgesOfARun, PulsesBeforeTheFirstFrameCannotBeKnown) {
    startExact();
    const VmbSimRhythm rhythm{100, 1, 5 * kMillisecond, kWidth, 0};
    ASSERT_EQ(VmbSimDriveLine(kMonochromeCamera, &rhythm), VmbErrorSuccess);
    ASSERT_EQ(VmbSimDisturbLine(kMonochromeCamera, VmbSimPulseMissing, 1, 3), VmbErrorSuccess);
    advance(60 * kMillisecond);
    // Pulses 3, 4 and 5 of the line.
    EXPECT_THAT(sink.times(), ElementsAre(0, 1, 2));
    stop();
}

TEST_F(EdgesOfARun, AFirstFrameThatGetsLostKeepsItsPulse) {
    startExact();
    EXPECT_EQ(VmbSimLoseFrames(kMonochromeCamera, 2), VmbErrorSuccess);
    pulse({5, 15, 25, 35});
    EXPECT_THAT(sink.times(), ElementsAre(2, 3));
    stop();
}

TEST_F(EdgesOfARun, ASilenceIsMeasuredByTheCamerasClockAsFarAsThatIsRight) {
    // 12 millionths fast: 40000 periods look like 40000.48, but 50000 like 50000.6, one too many.
    startWith({1'000'000'000, 0, 12'000, 0, 86'400, 0});
    pulse({5, 15, 15 + 400'000, 25 + 400'000, 25 + 900'000});
    EXPECT_THAT(sink.times(), ElementsAre(0, 1, 40'001, 40'002, 90'003));
    stop();
}

TEST_F(EdgesOfARun, WithoutAStartEventFramesCountFromTheirOwnNumbers) {
    startWithoutEvent();
    pulse({5, 15, 25});
    EXPECT_THAT(sink.times(), ElementsAre(1, 2, 3));
    stop();
}

TEST_F(EdgesOfARun, FramesBeforeALateStartEventAreOneAheadOfThoseBehindIt) {
    startWithoutEvent();
    pulse({5, 15, 25});
    startEvent(1);
    pulse({5, 15});
    EXPECT_THAT(sink.ids(), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_THAT(sink.times(), ElementsAre(1, 2, 3, 3, 4));
    stop();
}

TEST_F(EdgesOfARun, AFrameWhosePulseRunsBackwardsIsDroppedAndLogged) {
    startWithoutEvent();
    pulse({5, 15, 25});
    startEvent(3);
    const LogCapture log(UniLogSeverityLevel::Detail);
    pulse({5, 15, 25});
    EXPECT_THAT(sink.times(), ElementsAre(1, 2, 3, 3));
    EXPECT_THAT(sink.ids(), ElementsAre(1, 2, 3, 6));
    EXPECT_THAT(startingWith("Frame ", log.texts(UniLogSeverityLevel::Detail)),
                ElementsAre("Frame 4 with timestamp 1 was dropped (prev. timestamp: 3)",
                            "Frame 5 with timestamp 2 was dropped (prev. timestamp: 3)"));
    stop();
}

TEST_F(EdgesOfARun, AFrameBelowTheStartFrameIsAProgrammingError) {
    const AssertionCapture assertions;
    startWithoutEvent();
    startEvent(3);
    pulse({5, 15, 25});
    EXPECT_THAT(sink.times(), ElementsAre(-2, -1, 0));
    EXPECT_THAT(assertions.expressions(),
                ElementsAre("frame.frameid >= m_timestamp_generator->getStartFrameId()",
                            "frame.frameid >= m_timestamp_generator->getStartFrameId()"));
    stop();
}

TEST_F(EdgesOfARun, FramesBehindTheEndEventAreNotDelivered) {
    startWithoutEvent();
    startEvent(1);
    pulse({5, 15});
    endEvent();
    pulse({5, 15});
    EXPECT_THAT(sink.ids(), ElementsAre(1, 2));
    stop();
}

TEST_F(EdgesOfARun, AnEndEventOfTheRunBeforeSilencesOnlyUntilTheStartEvent) {
    startExact();
    pulse({5, 15});
    stop();
    sink.frames.clear();
    startWithoutEvent();
    endEvent();
    pulse({5});
    EXPECT_THAT(sink.ids(), IsEmpty());
    startEvent(1);
    pulse({5, 15});
    EXPECT_THAT(sink.ids(), ElementsAre(2, 3));
    EXPECT_THAT(sink.times(), ElementsAre(1, 2));
    stop();
}

}  // namespace
