// What the frame handler does with one frame.
#include <atomic>
#include <stdexcept>
#include <thread>

#include "capture_fixture.h"
#include "latch.h"
#include "throwing_log.h"

namespace {

using test_support::AssertionCapture;
using test_support::CameraCall;
using test_support::Capture;
using test_support::kColourCamera;
using test_support::LogCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Frames in the hands of the test: the sensor is held, the test calls the registered callback itself.
class FrameByHand : public Capture {
  protected:
    FrameByHand() {
        VmbSimHoldSensor(kColourCamera, true);
        api.startCapture(camera, 2);
        VmbSimTakeQueuedFrame(kColourCamera, &handle, &frame, &registered);
        frame->receiveStatus = VmbFrameStatusComplete;
        frame->receiveFlags =
            VmbFrameFlagsDimension | VmbFrameFlagsOffset | VmbFrameFlagsFrameID | VmbFrameFlagsTimestamp;
        frame->timestamp = 1000;
        frame->frameID = 7;
        frame->width = 64;
        frame->height = 48;
        frame->offsetX = 3;
        frame->offsetY = 4;
        frame->imageSize = 3072;
    }
    ~FrameByHand() override { api.endCapture(camera); }

    VmbHandle_t handle = nullptr;
    VmbFrame_t* frame = nullptr;
    VmbFrameCallback registered = nullptr;
};

TEST_F(FrameByHand, CarriesTheApiAndTheCallbackInItsContext) {
    EXPECT_EQ(frame->context[0], &api);
    EXPECT_EQ(frame->context[1], static_cast<zelt_gige_api::IfCameraCallback*>(&callback));
    EXPECT_EQ(frame->context[2], nullptr);
    EXPECT_EQ(frame->bufferSize, 656u * 492u);
}

TEST_F(FrameByHand, BecomesACameraFrameAndIsQueuedAgain) {
    EXPECT_EQ(queued(), 1u);
    registered(handle, frame);
    EXPECT_EQ(queued(), 2u);
    const zelt_gige_api::CameraFrame& got = callback.lastFrame;
    EXPECT_EQ(got.timestamp, 1000u);
    EXPECT_EQ(got.frameid, 7u);
    EXPECT_EQ(got.width, 64u);
    EXPECT_EQ(got.height, 48u);
    EXPECT_EQ(got.offsetX, 3u);
    EXPECT_EQ(got.offsetY, 4u);
    EXPECT_EQ(got.reserved, 0u);
    EXPECT_EQ(got.buffer, frame->buffer);
    EXPECT_EQ(got.imageSize, 3072u);
}

TEST_F(FrameByHand, IsQueuedOnlyAfterTheCallbackReturned) {
    std::uint32_t during = 99;
    callback.beforeReturn = [&](const CameraCall&) { during = queued(); };
    registered(handle, frame);
    EXPECT_EQ(during, 1u);
    EXPECT_EQ(queued(), 2u);
}

TEST_F(FrameByHand, IsQueuedAgainWhenTheCallbackThrows) {
    callback.beforeReturn = [](const CameraCall&) { throw std::runtime_error("host trouble"); };
    EXPECT_THROW(zelt_gige_api::VimbaCameraApi::handleFrame(camera, frame), std::runtime_error);
    EXPECT_EQ(queued(), 2u);
}

TEST_F(FrameByHand, WhatItsCallbackThrowsIsLoggedAndGoesNoFurther) {
    const LogCapture log(UniLogSeverityLevel::Error);
    callback.beforeReturn = [](const CameraCall&) { throw std::runtime_error("host trouble"); };
    registered(handle, frame);
    EXPECT_EQ(queued(), 2u);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Exception in the frame handler: host trouble"));
}

TEST_F(FrameByHand, WhatItsCallbackThrowsWithoutAReasonIsLoggedToo) {
    const LogCapture log(UniLogSeverityLevel::Error);
    callback.beforeReturn = [](const CameraCall&) { throw 42; };
    registered(handle, frame);
    EXPECT_EQ(queued(), 2u);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre("Unknown exception in the frame handler"));
}

TEST_F(FrameByHand, IsQueuedAgainWhenNotEvenTheLogTakesWhatItsCallbackThrows) {
    const test_support::ThrowingLog log("in the frame handler");
    callback.beforeReturn = [](const CameraCall&) { throw std::runtime_error("host trouble"); };
    registered(handle, frame);
    EXPECT_EQ(queued(), 2u);
}

TEST_F(FrameByHand, KeepsItsMemoryWhileItsCallbackRunsAlthoughCaptureEnds) {
    test_support::Latch entered(1);
    std::atomic<bool> ended{false};
    std::atomic<bool> outlived{false};
    callback.beforeReturn = [&](const CameraCall&) {
        entered.count_down();
        for (int turn = 0; turn < 20'000; ++turn) std::this_thread::yield();
        outlived = ended.load();
    };
    std::thread frames([&] { registered(handle, frame); });
    entered.wait();
    api.endCapture(camera);
    ended = true;
    frames.join();
    EXPECT_FALSE(outlived);
    EXPECT_EQ(pages.held, 0);
}

TEST_F(FrameByHand, WithAnotherStatusIsOnlyQueuedAgain) {
    for (const VmbFrameStatus_t status : {-1, -2, -3, -4, 1}) {
        frame->receiveStatus = status;
        registered(handle, frame);
        EXPECT_EQ(queued(), 2u);
        VmbSimTakeQueuedFrame(kColourCamera, &handle, &frame, &registered);
    }
    EXPECT_THAT(callback.calls("frame"), IsEmpty());
}

TEST_F(FrameByHand, WithoutIdAndTimestampIsAProgrammingError) {
    const AssertionCapture assertions;
    frame->receiveFlags = VmbFrameFlagsDimension;
    registered(handle, frame);
    EXPECT_THAT(assertions.expressions(),
                ElementsAre("frame->receiveFlags & (VmbFrameFlagsFrameID | VmbFrameFlagsTimestamp)"));
    EXPECT_EQ(callback.calls("frame").size(), 1u);
}

TEST_F(FrameByHand, WithEitherIdOrTimestampIsFine) {
    misuses.reasons = {"the frame is queued already"};  // it is handled twice here
    const AssertionCapture assertions;
    frame->receiveFlags = VmbFrameFlagsFrameID;
    zelt_gige_api::VimbaCameraApi::handleFrame(camera, frame);
    frame->receiveFlags = VmbFrameFlagsTimestamp;
    zelt_gige_api::VimbaCameraApi::handleFrame(camera, frame);
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

}  // namespace
