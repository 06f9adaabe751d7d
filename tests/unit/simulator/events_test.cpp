// Start and end of acquisitions as the camera tells them.
#include "simulator_fixture.h"

namespace {

using test_support::Door;
using test_support::intOf;
using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::ReceivedFrame;
using test_support::run;
using test_support::setEnum;
using test_support::Stream;
using test_support::StreamTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Told {
    std::string name;
    std::uint64_t ticks;
    std::uint64_t id;
    std::size_t framesBefore;
};

class AcquisitionEvents : public StreamTest {
  protected:
    AcquisitionEvents() {
        setEnum(camera, "EventNotification", "On");
        setEnum(camera, "EventSelector", "AcquisitionEnd");
        setEnum(camera, "EventNotification", "On");
        notes.hook = [this](VmbHandle_t handle, const char* name) {
            const std::string event = name;
            const auto value = [&](const char* of) {
                return static_cast<std::uint64_t>(intOf(handle, (event + of).c_str()));
            };
            told.push_back({event, value("Timestamp"), value("FrameID"), stream.received().size()});
        };
        notes.registerOn(camera, "EventAcquisitionStart");
        notes.registerOn(camera, "EventAcquisitionEnd");
    }
    ~AcquisitionEvents() override {
        // The hook reads features, which it cannot once the library stops.
        VmbSimWaitForEvents(test_support::kPatienceMs);
        VmbShutdown();
    }

    VmbHandle_t camera = openFast();
    Stream stream{camera};
    Invalidations notes;
    std::vector<Told> told;
};

TEST_F(AcquisitionEvents, TellTheFirstFrameAndTheLast) {
    // Periods of 12.5 ms are shorter than the way of a frame: there is always one under way.
    test_support::setFloat(camera, "AcquisitionFrameRateAbs", 80);
    stream.hook = [this](VmbFrame_t& frame) {
        if (frame.frameID == 3) run(camera, "AcquisitionStop");
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(3);
    waitForEvents();
    const std::vector<ReceivedFrame> frames = stream.received();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_GE(frames.size(), 4u);
    EXPECT_EQ(told[0].name, "EventAcquisitionStart");
    EXPECT_EQ(told[0].id, 1u);
    EXPECT_EQ(told[0].framesBefore, 0u);
    // The first exposure follows the start by 4.2 us.
    EXPECT_NEAR(static_cast<double>(frames.front().record.timestamp - told[0].ticks), 4'200, 1);
    EXPECT_EQ(told[1].name, "EventAcquisitionEnd");
    EXPECT_EQ(told[1].id, frames.back().record.frameID);
    EXPECT_EQ(told[1].framesBefore, frames.size());
    const ReceivedFrame& last = frames.back();
    const double wayTicks = static_cast<double>(last.stamp.wayNs) * (1 + 12e-6);
    EXPECT_NEAR(static_cast<double>(told[1].ticks - last.record.timestamp), wayTicks, 2);
}

TEST_F(AcquisitionEvents, AStopWithoutAFrameUnderWayEndsAtOnce) {
    VmbSimHoldSensor(kColourCamera, true);
    run(camera, "AcquisitionStart");
    run(camera, "AcquisitionStop");
    run(camera, "GevTimestampControlLatch");
    const VmbInt64_t after = intOf(camera, "GevTimestampValue");
    waitForEvents();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_GT(told[1].ticks, told[0].ticks);
    EXPECT_LE(told[1].ticks, static_cast<std::uint64_t>(after));
}

TEST_F(AcquisitionEvents, AnEndWithoutAFrameNamesTheLastOneOfTheCapture) {
    for (const std::uint64_t frames : {2u, 0u}) {
        stream.startCapture();
        run(camera, "AcquisitionStart");
        waitForFrames(frames);
        if (frames > 0) {
            run(camera, "AcquisitionStop");
            waitForEvents();
            told.clear();
            VmbSimHoldSensor(kColourCamera, true);
            run(camera, "AcquisitionStart");
        }
        run(camera, "AcquisitionStop");
        waitForEvents();
        ASSERT_EQ(told.size(), 2u);
        EXPECT_EQ(told[0].id, told[1].id + 1);
        if (frames == 0) {
            EXPECT_EQ(told[1].id, 0u);
        } else {
            EXPECT_EQ(told[1].id, stream.ids().back());
        }
        told.clear();
        stream.endCapture();
    }
}

TEST_F(AcquisitionEvents, GoOnWithTheIdsOfTheCapture) {
    stream.startCapture();
    for (const std::uint64_t count : {2u, 4u}) {
        run(camera, "AcquisitionStart");
        waitForFrames(count);
        run(camera, "AcquisitionStop");
        waitForEvents();
    }
    ASSERT_EQ(told.size(), 4u);
    EXPECT_EQ(told[2].name, "EventAcquisitionStart");
    EXPECT_EQ(told[2].id, told[1].id + 1);
    EXPECT_EQ(told[2].framesBefore, told[1].id);
}

TEST_F(AcquisitionEvents, TheFirstFrameWaitsForTheStartEvent) {
    Door release;
    notes.hook = [&](VmbHandle_t, const char*) { release.wait(); };
    // No later exposure wakes the camera: the event itself must.
    setEnum(camera, "AcquisitionMode", "SingleFrame");
    stream.startCapture();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, 100), VmbErrorTimeout);
    EXPECT_THAT(stream.received(), IsEmpty());
    release.open();
    waitForFrames(1);
    stream.endCapture();
    waitForEvents();
}

TEST_F(AcquisitionEvents, CaptureCanBeEndedFromTheStartEvent) {
    VmbError_t ended = 1;
    notes.hook = [&](VmbHandle_t handle, const char*) { ended = VmbCaptureEnd(handle); };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForEvents();
    EXPECT_EQ(ended, VmbErrorSuccess);
    EXPECT_THAT(stream.received(), IsEmpty());
}

TEST_F(AcquisitionEvents, EachOfTheThreeFeaturesFires) {
    Invalidations all;
    for (const char* name :
         {"EventAcquisitionStart", "EventAcquisitionStartTimestamp", "EventAcquisitionStartFrameID",
          "EventAcquisitionEndTimestamp", "EventAcquisitionEndFrameID", "EventAcquisitionEnd"}) {
        all.registerOn(camera, name);
    }
    run(camera, "AcquisitionStart");
    waitForEvents();
    EXPECT_THAT(all.names(), ElementsAre("EventAcquisitionStartTimestamp", "EventAcquisitionStartFrameID",
                                         "EventAcquisitionStart"));
    all.clear();
    run(camera, "AcquisitionStop");
    waitForEvents();
    EXPECT_THAT(all.names(), ElementsAre("EventAcquisitionEndTimestamp", "EventAcquisitionEndFrameID",
                                         "EventAcquisitionEnd"));
}

TEST_F(AcquisitionEvents, ComeOnlyWhenTheirNotificationIsOn) {
    setEnum(camera, "EventSelector", "AcquisitionStart");
    setEnum(camera, "EventNotification", "Off");
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    run(camera, "AcquisitionStop");
    waitForEvents();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].name, "EventAcquisitionEnd");
    EXPECT_EQ(intOf(camera, "EventAcquisitionStartTimestamp"), 0);
}

TEST_F(AcquisitionEvents, TellAnAbortWithTheLastFrameThatWasSent) {
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    run(camera, "AcquisitionAbort");
    waitForEvents();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_GE(told[1].id, 2u);
    EXPECT_LE(told[1].id, stream.ids().back() + 1);
    EXPECT_EQ(told[1].framesBefore, stream.received().size());
}

TEST_F(AcquisitionEvents, CommandsWithoutEffectTellNothing) {
    run(camera, "AcquisitionStop");
    run(camera, "AcquisitionAbort");
    waitForEvents();
    EXPECT_THAT(told, IsEmpty());
    run(camera, "AcquisitionStart");
    run(camera, "AcquisitionStart");
    waitForEvents();
    EXPECT_EQ(told.size(), 1u);
}

TEST_F(AcquisitionEvents, WithATriggerLineNothingIsExposed) {
    setEnum(camera, "TriggerMode", "On");
    setEnum(camera, "TriggerSource", "Line1");
    // What is selected now does not matter.
    setEnum(camera, "TriggerSelector", "AcquisitionEnd");
    stream.startCapture();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, 60), VmbErrorTimeout);
    run(camera, "AcquisitionStop");
    waitForEvents();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told[1].id, 0u);
    stream.endCapture();
}

TEST_F(AcquisitionEvents, ASoftwareTriggerExposesOneFrame) {
    setEnum(camera, "TriggerMode", "On");
    setEnum(camera, "TriggerSource", "Software");
    stream.startCapture();
    run(camera, "TriggerSoftware");
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, 60), VmbErrorTimeout);
    run(camera, "TriggerSoftware");
    waitForFrames(1);
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 2, 60), VmbErrorTimeout);
    stream.endCapture();
}

TEST_F(AcquisitionEvents, ATriggerOfAnEarlierAcquisitionIsForgotten) {
    setEnum(camera, "TriggerMode", "On");
    setEnum(camera, "TriggerSource", "Software");
    stream.startCapture();
    VmbSimHoldSensor(kColourCamera, true);
    run(camera, "AcquisitionStart");
    run(camera, "TriggerSoftware");
    run(camera, "AcquisitionStop");
    waitForEvents();
    VmbSimHoldSensor(kColourCamera, false);
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, 60), VmbErrorTimeout);
    stream.endCapture();
}

}  // namespace
