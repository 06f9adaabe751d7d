// Cables that are pulled and put back, also in the middle of anything.
#include "simulator_fixture.h"

namespace {

using test_support::Door;
using test_support::enumOf;
using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::run;
using test_support::setInt;
using test_support::Stream;
using test_support::StreamTest;

TEST_F(StreamTest, AfterUnpluggingEveryCallWithTheHandleFails) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    EXPECT_EQ(VmbSimUnplugCamera(kColourCamera), VmbErrorSuccess);
    VmbInt64_t value = 0;
    VmbUint32_t found = 0;
    VmbFeatureInfo_t info;
    EXPECT_EQ(VmbFeatureIntGet(camera, "Width", &value), VmbErrorBadHandle);
    EXPECT_EQ(VmbFeatureIntGet(camera, nullptr, nullptr), VmbErrorBadHandle);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 320), VmbErrorBadHandle);
    EXPECT_EQ(VmbFeatureCommandRun(camera, "AcquisitionStart"), VmbErrorBadHandle);
    EXPECT_EQ(VmbFeaturesList(camera, nullptr, 0, &found, 0), VmbErrorBadHandle);
    EXPECT_EQ(VmbFeatureInfoQuery(camera, "Width", &info, sizeof info), VmbErrorBadHandle);
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorBadHandle);
    EXPECT_EQ(VmbFrameAnnounce(camera, &stream.frames[0], sizeof(VmbFrame_t)), VmbErrorBadHandle);
    EXPECT_EQ(VmbFrameAnnounce(camera, nullptr, 0), VmbErrorBadHandle);
    EXPECT_EQ(stream.queue(0), VmbErrorBadHandle);
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorBadHandle);
    EXPECT_EQ(VmbCaptureQueueFlush(camera), VmbErrorBadHandle);
    EXPECT_EQ(VmbFrameRevoke(camera, &stream.frames[0]), VmbErrorBadHandle);
    EXPECT_EQ(VmbFrameRevoke(camera, nullptr), VmbErrorBadHandle);
    EXPECT_EQ(VmbFrameRevokeAll(camera), VmbErrorBadHandle);
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorBadHandle);
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, 0), VmbErrorDeviceNotOpen);
}

TEST_F(StreamTest, StreamingStopsWithoutACallbackWhenTheCableIsPulled) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    VmbSimUnplugCamera(kColourCamera);
    // The end of capture waits for a callback that may just run; none follows.
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorBadHandle);
    const std::size_t count = stream.received().size();
    VmbSimPlugCamera(kColourCamera);
    const VmbHandle_t again = openFast();
    Stream other(again);
    other.startCapture();
    run(again, "AcquisitionStart");
    waitForFrames(3);
    other.endCapture();
    EXPECT_EQ(stream.received().size(), count);
}

TEST_F(StreamTest, AWaitForFramesEndsWhenTheCableIsPulled) {
    openFast();
    std::thread puller([] { VmbSimUnplugCamera(kColourCamera); });
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, kPatienceMs), VmbErrorDeviceNotOpen);
    puller.join();
}

TEST_F(StreamTest, AReplaceableCameraComesBackAsItPowersUp) {
    const VmbHandle_t first = openFast();
    setInt(first, "Width", 320);
    run(first, "AcquisitionStart");
    VmbSimUnplugCamera(kColourCamera);
    VmbHandle_t second = nullptr;
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull, &second), VmbErrorNotFound);
    const VmbUint64_t replugged = VmbSimTime();
    VmbSimPlugCamera(kColourCamera);
    second = open();
    EXPECT_NE(first, second);
    EXPECT_EQ(intOf(second, "Width"), 656);
    EXPECT_EQ(enumOf(second, "PixelFormat"), "BayerRG8");
    setInt(second, "Width", 640);
    run(second, "GevTimestampControlLatch");
    EXPECT_LE(static_cast<double>(intOf(second, "GevTimestampValue")),
              static_cast<double>(VmbSimTime() - replugged) * (1 + 12e-6) + 1);
    VmbInt64_t value = 0;
    EXPECT_EQ(VmbFeatureIntGet(first, "Width", &value), VmbErrorBadHandle);
    EXPECT_EQ(VmbCameraClose(first), VmbErrorBadHandle);
    EXPECT_EQ(intOf(second, "Width"), 640);
}

TEST_F(StreamTest, FrameFaultsAndAHeldSensorOutliveTheCable) {
    VmbSimLoseFrames(kColourCamera, 1);
    VmbSimHoldSensor(kColourCamera, true);
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kColourCamera);
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, 60), VmbErrorTimeout);
    VmbSimHoldSensor(kColourCamera, false);
    waitForFrames(1);
    stream.endCapture();
    EXPECT_EQ(stream.ids().front(), 2u);
}

TEST_F(StreamTest, TheCableMayBePulledInACallback) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    Door done;
    stream.hook = [&](VmbFrame_t&) {
        VmbSimUnplugCamera(kColourCamera);
        done.open();
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    done.wait();
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorBadHandle);
    EXPECT_EQ(stream.received().size(), 1u);
}

/// One thread pulls and plugs the cables of both cameras while another does all that clients do.
TEST_F(StreamTest, CablesMayBePulledInTheMiddleOfAnything) {
    setInt(test_support::kSystem, "GeVDiscoveryAllDuration", 1);
    test_support::Invalidations news;
    news.hook = [](VmbHandle_t handle, const char*) {
        const char* event = nullptr;
        char ident[32];
        VmbFeatureEnumGet(handle, "DiscoveryCameraEvent", &event);
        VmbFeatureStringGet(handle, "DiscoveryCameraIdent", ident, sizeof ident, nullptr);
    };
    news.registerOn(test_support::kSystem, "DiscoveryCameraEvent");
    run(test_support::kSystem, "GeVDiscoveryAllAuto");
    std::atomic<bool> stop{false};
    std::thread puller([&] {
        for (int turn = 0; !stop; ++turn) {
            const char* id = turn % 2 == 0 ? kColourCamera : kMonochromeCamera;
            VmbSimUnplugCamera(id);
            VmbSimWaitForEvents(kPatienceMs);
            VmbSimPlugCamera(id);
            // Pulled again at once, while it is open, with its first frame, or some time after that.
            VmbUint32_t count = 0;
            const auto isOpen = [&] {
                return stop || VmbSimFrameCounts(id, &count, &count) == VmbErrorSuccess;
            };
            if (turn % 5 != 0) test_support::eventually(isOpen);
            if (turn % 5 > 1) VmbSimWaitForFrames(id, static_cast<VmbUint64_t>(turn % 3), 40);
        }
    });
    std::vector<std::uint8_t> memory(656 * 492);
    int frames = 0;
    for (int round = 0; round < 150; ++round) {
        VmbHandle_t camera = nullptr;
        const char* id = round % 3 == 0 ? kMonochromeCamera : kColourCamera;
        if (VmbCameraOpen(id, VmbAccessModeFull, &camera) != VmbErrorSuccess) continue;
        VmbFrame_t frame{};
        frame.buffer = memory.data();
        frame.bufferSize = static_cast<VmbUint32_t>(memory.size());
        frame.context[0] = &frames;
        const auto onFrame = [](const VmbHandle_t, VmbFrame_t* got) {
            ++*static_cast<int*>(got->context[0]);
        };
        VmbFeatureEnumSet(camera, "PixelFormat", "Mono8");
        VmbFeatureFloatSet(camera, "ExposureTimeAbs", 100);
        VmbFeatureInvalidationRegister(camera, "EventAcquisitionStart", &test_support::Invalidations::on,
                                       &news);
        VmbFeatureEnumSet(camera, "EventNotification", "On");
        VmbFrameAnnounce(camera, &frame, sizeof frame);
        VmbCaptureStart(camera);
        VmbCaptureFrameQueue(camera, &frame, onFrame);
        VmbFeatureCommandRun(camera, "AcquisitionStart");
        VmbSimWaitForFrames(id, 1, 30);
        VmbFeatureCommandRun(camera, "AcquisitionStop");
        if (round % 2 == 0) VmbCaptureEnd(camera);
        VmbFrameRevokeAll(camera);
        VmbCameraClose(camera);
    }
    stop = true;
    puller.join();
    VmbShutdown();
    EXPECT_GT(frames, 0);
}

}  // namespace
