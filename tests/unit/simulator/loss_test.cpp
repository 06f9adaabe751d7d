// Frames that get lost or damaged, and cables that go in the middle of something.
#include <thread>

#include "far_pages.h"
#include "latch.h"
#include "virtual_fixture.h"

namespace {

using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::kSystem;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::Stream;

class Loss : public test_support::VirtualTimeTest {
  protected:
    static void during(const char* function, bool plugged = false, const char* argument = nullptr,
                       int nth = 1) {
        ASSERT_EQ(VmbSimCableDuring(kColourCamera, plugged, function, argument, nth), VmbErrorSuccess);
    }
    static void plugAgain() { ASSERT_EQ(VmbSimPlugCamera(kColourCamera), VmbErrorSuccess); }
};

TEST_F(Loss, NothingQueuedIsAGapInTheIdsAndCountsAsUnderrun) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 2);
    stream.requeue = false;
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(55 * kMillisecond);
    EXPECT_THAT(stream.ids(), ::testing::ElementsAre(1, 2));
    EXPECT_EQ(intOf(camera, "StatFrameUnderrun"), 4);
    VmbUint64_t underruns = 0;
    EXPECT_EQ(VmbSimCountUnderruns(kColourCamera, &underruns), VmbErrorSuccess);
    EXPECT_EQ(underruns, 4u);
    EXPECT_EQ(intOf(camera, "StatFrameDelivered"), 2);
    stream.requeue = true;
    stream.queueAll();
    advance(20 * kMillisecond);
    EXPECT_THAT(stream.ids(), ::testing::ElementsAre(1, 2, 7, 8));
    stream.endCapture();
}

TEST_F(Loss, AnIncompleteFrameHasAShortImageAndItsIdAndStamp) {
    const VmbHandle_t camera = openFast();
    setFloat(camera, "AcquisitionFrameRateAbs", 100);
    EXPECT_EQ(VmbSimBreakFrames(kColourCamera, 1, VmbFrameStatusIncomplete), VmbErrorSuccess);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(25 * kMillisecond);
    const auto frames = stream.received();
    ASSERT_GE(frames.size(), 2u);
    EXPECT_EQ(frames[0].record.receiveStatus, VmbFrameStatusIncomplete);
    EXPECT_LT(frames[0].record.imageSize, 64u * 16u);
    EXPECT_EQ(frames[0].record.frameID, 1u);
    EXPECT_EQ(frames[1].record.timestamp - frames[0].record.timestamp, 10'000'000u);
    EXPECT_EQ(frames[1].record.receiveStatus, VmbFrameStatusComplete);
    EXPECT_EQ(intOf(camera, "StatFrameDropped"), 1);
    stream.endCapture();
}

TEST_F(Loss, AHeldStreamWaitsInTheCamerasMemoryUntilThatIsFull) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "StreamHoldEnable", "On");
    Stream stream(camera, 10);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(kSecond);
    EXPECT_TRUE(stream.ids().empty());
    run(camera, "AcquisitionStop");
    setEnum(camera, "StreamHoldEnable", "Off");
    advance(kSecond);
    const auto ids = stream.ids();
    ASSERT_EQ(ids.size(), static_cast<std::size_t>(intOf(camera, "StreamHoldCapacity")));
    for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ids[i], i + 1);
    stream.endCapture();
}

TEST_F(Loss, ACableGoesInTheMiddleOfACall) {
    const VmbHandle_t camera = openFast();
    during("VmbFeatureFloatGet", false, "Gain", 2);
    double value = 0;
    EXPECT_EQ(VmbFeatureFloatGet(camera, "Gain", &value), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureFloatGet(camera, "Gamma", &value), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureFloatGet(camera, "Gain", &value), VmbErrorBadHandle);
    EXPECT_EQ(VmbFeatureFloatGet(camera, "Gamma", &value), VmbErrorBadHandle);
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorBadHandle);
    plugAgain();
    const VmbHandle_t again = openFast();
    EXPECT_EQ(VmbFeatureFloatGet(again, "Gain", &value), VmbErrorSuccess);
}

/// Every call of a client's way from opening to closing, the cable gone in its middle: nothing hangs, and a
/// replugged camera records as ever.
class CableDuring : public Loss, public ::testing::WithParamInterface<const char*> {};

TEST_P(CableDuring, LeavesNothingBehind) {
    during(GetParam());
    {
        VmbHandle_t camera = nullptr;
        run(kSystem, "GeVDiscoveryAllOnce");
        VmbUint32_t found = 0;
        VmbCameraInfo_t infos[4];
        VmbCamerasList(infos, 4, &found, sizeof infos[0]);
        VmbCameraInfoQuery(kColourCamera, infos, sizeof infos[0]);
        VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera);
        const char* text = nullptr;
        VmbInt64_t payload = 0;
        bool writable = false;
        VmbFeatureEnumGet(camera, "PixelFormat", &text);
        VmbFeatureEnumSet(camera, "TriggerMode", "Off");
        VmbFeatureFloatSet(camera, "ExposureTimeAbs", 1000);
        VmbFeatureIntGet(camera, "PayloadSize", &payload);
        VmbFeatureAccessQuery(camera, "Width", nullptr, &writable);
        VmbFeatureInvalidationRegister(
            camera, "Gain", [](VmbHandle_t, const char*, void*) {}, nullptr);
        std::vector<std::uint8_t> image(656 * 492 * 3);
        VmbFrame_t frame{};
        frame.buffer = image.data();
        frame.bufferSize = static_cast<VmbUint32_t>(image.size());
        VmbFrameAnnounce(camera, &frame, sizeof frame);
        VmbCaptureStart(camera);
        VmbCaptureFrameQueue(camera, &frame, nullptr);
        VmbFeatureCommandRun(camera, "AcquisitionStart");
        VmbCaptureFrameWait(camera, &frame, 1000);
        VmbFeatureCommandRun(camera, "AcquisitionStop");
        VmbCaptureEnd(camera);
        VmbCaptureQueueFlush(camera);
        VmbFrameRevokeAll(camera);
        VmbFeatureInvalidationUnregister(camera, "Gain", [](VmbHandle_t, const char*, void*) {});
        VmbCameraClose(camera);
    }
    VmbUint32_t announced = 0;
    EXPECT_EQ(VmbSimFrameCounts(kColourCamera, &announced, &announced), VmbErrorDeviceNotOpen)
        << "the order never struck";
    plugAgain();
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(25 * kMillisecond);
    EXPECT_EQ(stream.ids().size(), 3u);
    stream.endCapture();
}

INSTANTIATE_TEST_SUITE_P(Every, CableDuring,
                         ::testing::Values("VmbFeatureCommandRun", "VmbCamerasList", "VmbCameraInfoQuery",
                                           "VmbCameraOpen", "VmbFeatureEnumGet", "VmbFeatureEnumSet",
                                           "VmbFeatureFloatSet", "VmbFeatureIntGet", "VmbFeatureAccessQuery",
                                           "VmbFeatureInvalidationRegister", "VmbFrameAnnounce",
                                           "VmbCaptureStart", "VmbCaptureFrameQueue", "VmbCaptureFrameWait",
                                           "VmbCaptureEnd", "VmbCaptureQueueFlush", "VmbFrameRevokeAll",
                                           "VmbFeatureInvalidationUnregister", "VmbCameraClose"),
                         [](const auto& instance) { return std::string(instance.param); });

TEST_F(Loss, ACableGoesAndComesInAFrameCallback) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.hook = [](VmbFrame_t& frame) {
        if (frame.frameID != 3) return;
        EXPECT_EQ(VmbSimUnplugCamera(kColourCamera), VmbErrorSuccess);
        EXPECT_EQ(VmbSimPlugCamera(kColourCamera), VmbErrorSuccess);
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(kSecond);
    EXPECT_THAT(stream.ids(), ::testing::ElementsAre(1, 2, 3));
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorBadHandle);
    EXPECT_EQ(VmbCameraClose(open()), VmbErrorSuccess);
}

TEST_F(Loss, OrdersForCablesAreChecked) {
    EXPECT_EQ(VmbSimCableDuring("DEV_1", false, "VmbCameraOpen", nullptr, 1), VmbErrorNotFound);
    EXPECT_EQ(VmbSimCableDuring(kColourCamera, false, "VmbCameraOpens", nullptr, 1), VmbErrorNotFound);
    EXPECT_EQ(VmbSimCableDuring(kColourCamera, false, "VmbCameraOpen", nullptr, 0), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimCableDuring(nullptr, false, "VmbCameraOpen", nullptr, 1), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimCableDuring(kColourCamera, false, nullptr, nullptr, 1), VmbErrorBadParameter);
    for (const char* function : {"VmbVersionQuery", "VmbStartup", "VmbShutdown"}) {
        EXPECT_EQ(VmbSimCableDuring(kColourCamera, false, function, nullptr, 1), VmbErrorNotFound);
    }
    during("VmbCameraOpen");
    VmbSimClearFaults();
    EXPECT_NE(open(), nullptr);
}

TEST_F(Loss, ABufferThatIsGoneEndsTheWaitForItsFrame) {
    const VmbHandle_t camera = openFast();
    const std::size_t size = 64 * 16;
    test_support::FarPages memory(size);
    VmbFrame_t frame{};
    frame.buffer = memory.get();
    frame.bufferSize = size;
    ASSERT_EQ(VmbFrameAnnounce(camera, &frame, sizeof frame), VmbErrorSuccess);
    ASSERT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    ASSERT_EQ(VmbCaptureFrameQueue(camera, &frame, nullptr), VmbErrorSuccess);
    memory.release();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbCaptureFrameWait(camera, &frame, VMBINFINITE), VmbErrorTimeout);
}

class FrameWait : public Loss {
  protected:
    static VmbError_t wait(const Stream& stream, std::size_t frame, VmbUint32_t timeoutMs) {
        return VmbCaptureFrameWait(stream.camera, &stream.frames[frame], timeoutMs);
    }
    static VmbError_t queueSilently(Stream& stream, std::size_t frame) {
        return VmbCaptureFrameQueue(stream.camera, &stream.frames[frame], nullptr);
    }
};

TEST_F(FrameWait, EndsWhenTheFrameIsFilled) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 2);
    stream.announceAll();
    ASSERT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    queueSilently(stream, 0);
    queueSilently(stream, 1);
    run(camera, "AcquisitionStart");
    EXPECT_EQ(wait(stream, 1, VMBINFINITE), VmbErrorSuccess);
    EXPECT_EQ(stream.frames[1].frameID, 2u);
    EXPECT_GT(VmbSimTime(), 11 * kMillisecond);
    EXPECT_LT(VmbSimTime(), 15 * kMillisecond);
    // Filled since it was queued last: no need to wait.
    EXPECT_EQ(wait(stream, 0, 0), VmbErrorSuccess);
    stream.endCapture();
}

TEST_F(FrameWait, RunsIntoItsTimeLimit) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 2);
    stream.announceAll();
    queueSilently(stream, 0);
    const std::uint64_t before = VmbSimTime();
    EXPECT_EQ(wait(stream, 0, 70), VmbErrorTimeout);
    EXPECT_EQ(VmbSimTime(), before + 70 * kMillisecond);
    EXPECT_EQ(wait(stream, 1, 5), VmbErrorTimeout);
    EXPECT_EQ(VmbSimTime(), before + 75 * kMillisecond);
    stream.endCapture();
}

TEST_F(FrameWait, KnowsOnlyFramesThatWereAnnouncedOrQueued) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 1);
    EXPECT_EQ(wait(stream, 0, 5), VmbErrorBadHandle);
    EXPECT_EQ(VmbCaptureFrameWait(camera, nullptr, 5), VmbErrorBadParameter);
}

TEST_F(FrameWait, ComesBehindTheCallback) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 1);
    stream.requeue = false;
    stream.startCapture();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(wait(stream, 0, 1000), VmbErrorSuccess);
    EXPECT_EQ(stream.ids().size(), 1u);
    stream.endCapture();
}

TEST_F(FrameWait, EndsWhenTheFrameLeavesTheQueueUnfilledOrTheCameraIsGone) {
    const struct {
        std::function<void(Stream&)> event;
        VmbError_t result;
    } cases[] = {{[](Stream& stream) { VmbCaptureQueueFlush(stream.camera); }, VmbErrorTimeout},
                 {[](Stream& stream) { VmbCaptureEnd(stream.camera); }, VmbErrorTimeout},
                 {[](Stream& stream) { VmbFrameRevokeAll(stream.camera); }, VmbErrorTimeout},
                 {[](Stream&) { VmbSimUnplugCamera(kColourCamera); }, VmbErrorBadHandle},
                 {[](Stream& stream) { VmbCameraClose(stream.camera); }, VmbErrorBadHandle}};
    for (const auto& [event, result] : cases) {
        VmbSimPlugCamera(kColourCamera);
        const VmbHandle_t camera = openFast();
        const VmbHandle_t other = openFast(kMonochromeCamera);
        Stream stream(camera, 1);
        stream.announceAll();
        queueSilently(stream, 0);
        // The other camera's first frame brings the event while this thread waits.
        Stream trigger(other, 1);
        trigger.requeue = false;
        std::thread client;
        test_support::Latch hasClient(1);
        trigger.hook = [&, &event = event](VmbFrame_t&) {
            client = std::thread([&] { event(stream); });
            hasClient.count_down();
        };
        trigger.startCapture();
        run(other, "AcquisitionStart");
        EXPECT_EQ(wait(stream, 0, VMBINFINITE), result);
        // The event may have ended the wait before its thread was stored.
        hasClient.wait();
        client.join();
        trigger.endCapture();
        VmbCameraClose(camera);
        VmbCameraClose(other);
    }
}

}  // namespace
