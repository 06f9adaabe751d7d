// Time that stands still until it is driven.
#include <thread>

#include "virtual_fixture.h"

namespace {

using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kSystem;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::Stream;

using test_support::kMillisecond;
using test_support::kSecond;

class VirtualTime : public test_support::VirtualTimeTest {};

TEST_F(VirtualTime, StandsStillUntilItIsDriven) {
    const std::uint64_t before = VmbSimTime();
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimTime(), before);
    EXPECT_TRUE(stream.ids().empty());
    advance(95 * kMillisecond);
    EXPECT_EQ(VmbSimTime(), before + 95 * kMillisecond);
    EXPECT_EQ(stream.ids().size(), 10u);  // at 0, 10, ... 90 ms and their way
    stream.endCapture();
}

TEST_F(VirtualTime, AnEventAtTheEndOfASpanHasHappened) {
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(50 * kMillisecond);
    const auto frames = stream.received();
    ASSERT_FALSE(frames.empty());
    const std::uint64_t due =
        frames.back().stamp.exposureStartNs + frames.back().stamp.wayNs + 10 * kMillisecond;
    // The oscillator is 12 ppm fast: 120 ns of 10 ms.
    advance(due - 120 - VmbSimTime() - 1);
    EXPECT_EQ(stream.ids().size(), frames.size());
    advance(1);
    EXPECT_EQ(stream.ids().size(), frames.size() + 1);
    stream.endCapture();
}

TEST_F(VirtualTime, EveryCallbackComesAtItsTimeToTheNanosecond) {
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(kSecond);
    const auto frames = stream.received();
    ASSERT_EQ(frames.size(), 100u);
    for (const auto& frame : frames) {
        EXPECT_EQ(frame.at, frame.stamp.exposureStartNs + frame.stamp.wayNs);
    }
    stream.endCapture();
}

TEST_F(VirtualTime, CallbacksComeOnThreadsOfTheLibrary) {
    const VmbHandle_t colour = openFast(kColourCamera, 100);
    const VmbHandle_t monochrome = openFast(kMonochromeCamera, 100);
    Stream first(colour);
    Stream second(monochrome);
    std::thread::id threads[2];
    first.hook = [&](VmbFrame_t&) { threads[0] = std::this_thread::get_id(); };
    second.hook = [&](VmbFrame_t&) { threads[1] = std::this_thread::get_id(); };
    for (Stream* stream : {&first, &second}) stream->startCapture();
    run(colour, "AcquisitionStart");
    run(monochrome, "AcquisitionStart");
    advance(30 * kMillisecond);
    EXPECT_NE(threads[0], std::thread::id());
    EXPECT_NE(threads[0], threads[1]);
    EXPECT_NE(threads[0], std::this_thread::get_id());
    EXPECT_NE(threads[1], std::this_thread::get_id());
    first.endCapture();
    second.endCapture();
}

TEST_F(VirtualTime, InvalidationsWaitUntilTimeIsDriven) {
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    Invalidations seen;
    seen.registerOn(camera, "Gain");
    setFloat(camera, "Gain", 3);
    EXPECT_TRUE(seen.names().empty());
    advance(0);
    EXPECT_EQ(seen.names(), std::vector<std::string>{"Gain"});
}

TEST_F(VirtualTime, ACallThatWaitsLetsTimePass) {
    const std::uint64_t before = VmbSimTime();
    run(kSystem, "GeVDiscoveryAllOnce");
    EXPECT_EQ(VmbSimTime(), before + 150 * kMillisecond);
    VmbUint32_t found = 0;
    EXPECT_EQ(VmbCamerasList(nullptr, 0, &found, 0), VmbErrorSuccess);
    EXPECT_EQ(found, 2u);
}

TEST_F(VirtualTime, WaitingForFramesEndsWithTheFrameThatWasAwaited) {
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1000, 20'000), VmbErrorSuccess);
    EXPECT_EQ(stream.ids().size(), 1000u);
    EXPECT_EQ(VmbSimTime(), stream.received().back().at);
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 2000, 9'000), VmbErrorTimeout);
    EXPECT_EQ(stream.ids().size(), 1900u);
    stream.endCapture();
}

TEST_F(VirtualTime, IsIdleWhenNothingIsDueAnyMore) {
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    setEnum(camera, "AcquisitionMode", "MultiFrame");
    setInt(camera, "AcquisitionFrameCount", 7);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimRunUntilIdle(30 * kMillisecond), VmbErrorTimeout);
    EXPECT_EQ(VmbSimTime(), 30 * kMillisecond);
    EXPECT_EQ(VmbSimRunUntilIdle(kSecond), VmbErrorSuccess);
    EXPECT_EQ(stream.ids().size(), 7u);
    EXPECT_EQ(VmbSimTime(), stream.received().back().at);
    stream.endCapture();
}

TEST_F(VirtualTime, CannotBeDrivenFromACallback) {
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    Stream stream(camera);
    VmbError_t results[2] = {};
    stream.hook = [&](VmbFrame_t&) {
        results[0] = VmbSimAdvance(1);
        results[1] = VmbSimRunUntilIdle(1);
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(20 * kMillisecond);
    EXPECT_EQ(results[0], VmbErrorInvalidCall);
    EXPECT_EQ(results[1], VmbErrorInvalidCall);
    stream.endCapture();
}

TEST_F(VirtualTime, IsChosenWhileTheLibraryIsStopped) {
    EXPECT_EQ(VmbSimUseVirtualTime(false), VmbErrorInvalidCall);
    advance(5);
    VmbShutdown();
    EXPECT_EQ(VmbSimUseVirtualTime(true), VmbErrorSuccess);
    EXPECT_EQ(VmbSimTime(), 0u);
    EXPECT_EQ(VmbSimUseVirtualTime(false), VmbErrorSuccess);
    EXPECT_EQ(VmbSimAdvance(1), VmbErrorInvalidCall);
    EXPECT_EQ(VmbSimRunUntilIdle(1), VmbErrorInvalidCall);
}

TEST_F(VirtualTime, FourThreadsMayWaitAtOnce) {
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([=] {
            for (int j = 0; j < 20; ++j) {
                EXPECT_EQ(VmbSimAdvance(kMillisecond), VmbErrorSuccess);
                EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, static_cast<VmbUint64_t>(i + j), 60'000),
                          VmbErrorSuccess);
                run(kSystem, "GeVDiscoveryAllOnce");
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GE(VmbSimTime(), 20 * 151 * kMillisecond);
    stream.endCapture();
}

TEST_F(VirtualTime, AShortWaitEndsWhileALongOneGoesOn) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "AcquisitionMode", "Continuous");
    Stream stream(camera, 1);
    stream.announceAll();
    ASSERT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    // Nothing is queued, so that this waits, and drives time, until the other thread does something.
    std::thread other(
        [&] { EXPECT_EQ(VmbCaptureFrameWait(camera, stream.frames.data(), VMBINFINITE), VmbErrorSuccess); });
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimAdvance(20 * kMillisecond), VmbErrorSuccess);
    EXPECT_EQ(VmbCaptureFrameQueue(camera, stream.frames.data(), nullptr), VmbErrorSuccess);
    other.join();
    run(camera, "AcquisitionStop");
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorSuccess);
    EXPECT_EQ(VmbFrameRevokeAll(camera), VmbErrorSuccess);
}

TEST_F(VirtualTime, WaitingForFramesEndsWhileAnotherDrivesOn) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    VmbFrame_t never{};
    std::uint8_t image[1];
    never.buffer = image;
    never.bufferSize = 1;
    const VmbHandle_t other = open(kMonochromeCamera);
    ASSERT_EQ(VmbFrameAnnounce(other, &never, sizeof never), VmbErrorSuccess);
    run(camera, "AcquisitionStart");
    std::thread driver(
        [&] { EXPECT_EQ(VmbCaptureFrameWait(other, &never, VMBINFINITE), VmbErrorBadHandle); });
    EXPECT_TRUE(test_support::eventually([] { return VmbSimTime() > kSecond; }));
    // Far enough ahead that this has to wait.
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, stream.ids().size() + 20'000, 1'000'000), VmbErrorSuccess);
    EXPECT_EQ(VmbCameraClose(other), VmbErrorSuccess);
    driver.join();
    stream.endCapture();
}

/// Counts and queues again, and nothing else.
void countFrame(const VmbHandle_t camera, VmbFrame_t* frame) {
    auto& count = *static_cast<std::uint64_t*>(frame->context[0]);
    if (frame->frameID == count + 1) ++count;
    VmbCaptureFrameQueue(camera, frame, &countFrame);
}

TEST_F(VirtualTime, AThousandSecondsGiveAHundredThousandFramesWithoutAGap) {
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    std::uint64_t count = 0;
    std::vector<std::uint8_t> image(64 * 16);
    VmbFrame_t frame{};
    frame.buffer = image.data();
    frame.bufferSize = static_cast<VmbUint32_t>(image.size());
    frame.context[0] = &count;
    ASSERT_EQ(VmbFrameAnnounce(camera, &frame, sizeof frame), VmbErrorSuccess);
    ASSERT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    ASSERT_EQ(VmbCaptureFrameQueue(camera, &frame, &countFrame), VmbErrorSuccess);
    run(camera, "AcquisitionStart");
    advance(1000 * kSecond + 3 * kMillisecond);
    // Frame k is exposed at k * 10 ms of a clock that is 12 ms ahead by then, and has a way of 1.6 to 2.3 ms.
    EXPECT_EQ(count, 100'002u);
    ASSERT_EQ(VmbCaptureEnd(camera), VmbErrorSuccess);
    ASSERT_EQ(VmbFrameRevokeAll(camera), VmbErrorSuccess);
}

}  // namespace
