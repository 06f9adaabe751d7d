// Frames from announcement to revocation.
#include "simulator_fixture.h"

namespace {

using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::ReceivedFrame;
using test_support::run;
using test_support::setEnum;
using test_support::setInt;
using test_support::Stream;
using test_support::StreamTest;
using ::testing::ElementsAre;

using Counts = std::pair<VmbUint32_t, VmbUint32_t>;

TEST_F(StreamTest, DeliversFramesWithAllTheirFields) {
    const VmbHandle_t camera = openFast();
    setInt(camera, "Width", 320);
    setInt(camera, "Height", 240);
    setInt(camera, "OffsetX", 16);
    setInt(camera, "OffsetY", 8);
    setEnum(camera, "PixelFormat", "YUV422Packed");
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(12);
    stream.endCapture();
    const std::vector<ReceivedFrame> frames = stream.received();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const VmbFrame_t& frame = frames[i].record;
        EXPECT_EQ(frame.receiveStatus, VmbFrameStatusComplete);
        EXPECT_EQ(frame.receiveFlags, 15u);
        EXPECT_EQ(frame.imageSize, 153'600u);
        EXPECT_EQ(frame.ancillarySize, 0u);
        EXPECT_EQ(frame.pixelFormat, static_cast<VmbPixelFormat_t>(VmbPixelFormatYuv422));
        EXPECT_EQ(frame.width, 320u);
        EXPECT_EQ(frame.height, 240u);
        EXPECT_EQ(frame.offsetX, 16u);
        EXPECT_EQ(frame.offsetY, 8u);
        EXPECT_EQ(frame.frameID, i + 1);
        EXPECT_EQ(frames[i].verdict, VmbErrorSuccess);
        EXPECT_EQ(frames[i].stamp.frameId, frame.frameID);
        EXPECT_EQ(frames[i].stamp.cameraTicks, frame.timestamp);
        EXPECT_EQ(frames[i].stamp.width, 320u);
        EXPECT_EQ(frames[i].stamp.height, 240u);
    }
}

TEST_F(StreamTest, FillsFramesInTheOrderOfQueueing) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 3);
    stream.announceAll();
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    for (const std::size_t index : {2u, 0u, 1u}) EXPECT_EQ(stream.queue(index), VmbErrorSuccess);
    run(camera, "AcquisitionStart");
    waitForFrames(6);
    stream.endCapture();
    const std::vector<ReceivedFrame> frames = stream.received();
    for (std::size_t i = 0; i < 6; ++i) {
        const std::size_t index = std::vector<std::size_t>{2, 0, 1}[i % 3];
        EXPECT_EQ(frames[i].record.buffer, stream.frames[index].buffer);
    }
}

TEST_F(StreamTest, QueueingMayComeBeforeCaptureStartsOrAfterAcquisition) {
    for (const bool before : {true, false}) {
        const VmbHandle_t camera = openFast();
        Stream stream(camera);
        stream.announceAll();
        if (before) stream.queueAll();
        EXPECT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
        run(camera, "AcquisitionStart");
        if (!before) stream.queueAll();
        waitForFrames(3);
        stream.endCapture();
        VmbCameraClose(camera);
    }
}

TEST_F(StreamTest, FlushMayComeBeforeTheEndOfCapture) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    stream.requeue = false;
    run(camera, "AcquisitionStop");
    EXPECT_EQ(VmbCaptureQueueFlush(camera), VmbErrorSuccess);
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorSuccess);
    EXPECT_EQ(VmbFrameRevokeAll(camera), VmbErrorSuccess);
    EXPECT_EQ(counts(), Counts(0, 0));
}

TEST_F(StreamTest, CountsWhatIsAnnouncedAndQueued) {
    const VmbHandle_t camera = openFast();
    EXPECT_EQ(counts(), Counts(0, 0));
    Stream stream(camera);
    stream.announceAll();
    EXPECT_EQ(counts(), Counts(5, 0));
    stream.queue(0);
    stream.queue(3);
    EXPECT_EQ(counts(), Counts(5, 2));
    EXPECT_EQ(VmbCaptureQueueFlush(camera), VmbErrorSuccess);
    EXPECT_EQ(counts(), Counts(5, 0));
    stream.queueAll();
    EXPECT_EQ(VmbFrameRevoke(camera, &stream.frames[2]), VmbErrorSuccess);
    EXPECT_EQ(counts(), Counts(4, 4));
    EXPECT_EQ(VmbFrameRevokeAll(camera), VmbErrorSuccess);
    EXPECT_EQ(counts(), Counts(0, 0));
    VmbUint32_t count = 0;
    EXPECT_EQ(VmbSimFrameCounts("DEV_1", &count, &count), VmbErrorNotFound);
    EXPECT_EQ(VmbSimFrameCounts(kMonochromeCamera, &count, &count), VmbErrorDeviceNotOpen);
    EXPECT_EQ(VmbSimFrameCounts(kColourCamera, nullptr, &count), VmbErrorBadParameter);
    VmbUint64_t underruns = 0;
    EXPECT_EQ(VmbSimCountUnderruns("DEV_1", &underruns), VmbErrorNotFound);
    EXPECT_EQ(VmbSimCountUnderruns(kMonochromeCamera, &underruns), VmbErrorDeviceNotOpen);
    EXPECT_EQ(VmbSimCountUnderruns(kColourCamera, nullptr), VmbErrorBadParameter);
}

/// Cameras, interfaces, registrations, announced frames.
std::vector<VmbUint32_t> held() {
    VmbSimHoldings holdings{99, 99, 99, 99};
    EXPECT_EQ(VmbSimCountHoldings(&holdings), VmbErrorSuccess);
    return {holdings.cameras, holdings.interfaces, holdings.registrations, holdings.announced};
}

void ignore(const VmbHandle_t, const char*, void*) {}

TEST_F(StreamTest, CountsWhatTheClientHolds) {
    EXPECT_THAT(held(), ElementsAre(0, 0, 0, 0));
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.announceAll();
    EXPECT_THAT(held(), ElementsAre(1, 0, 0, 5));
    EXPECT_EQ(VmbFeatureInvalidationRegister(camera, "Width", &ignore, nullptr), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureInvalidationRegister(test_support::kSystem, "DiscoveryCameraEvent", &ignore, nullptr),
              VmbErrorSuccess);
    EXPECT_THAT(held(), ElementsAre(1, 0, 2, 5));
    VmbInterfaceInfo_t info{};
    VmbUint32_t found = 0;
    ASSERT_EQ(VmbInterfacesList(&info, 1, &found, sizeof info), VmbErrorSuccess);
    VmbHandle_t opened = nullptr;
    ASSERT_EQ(VmbInterfaceOpen(info.interfaceIdString, &opened), VmbErrorSuccess);
    EXPECT_THAT(held(), ElementsAre(1, 1, 2, 5));
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess);
    EXPECT_THAT(held(), ElementsAre(0, 1, 1, 0));
    VmbShutdown();
    EXPECT_THAT(held(), ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(VmbSimCountHoldings(nullptr), VmbErrorBadParameter);
}

TEST_F(StreamTest, TheEndOfCaptureEmptiesTheQueueAndKeepsWhatIsAnnounced) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorSuccess);
    EXPECT_EQ(counts(), Counts(5, 0));
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorSuccess);
}

TEST_F(StreamTest, AnnouncementAndQueueRefuseMisuse) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    VmbFrame_t empty{};
    EXPECT_EQ(VmbFrameAnnounce(camera, &empty, sizeof empty), VmbErrorBadParameter);
    stream.announceAll();
    EXPECT_EQ(VmbFrameAnnounce(camera, &stream.frames[0], sizeof(VmbFrame_t)), VmbErrorBadParameter);
    EXPECT_EQ(VmbFrameRevoke(camera, &empty), VmbErrorBadParameter);
    EXPECT_EQ(VmbCaptureFrameQueue(camera, &empty, nullptr), VmbErrorBadHandle);
    EXPECT_EQ(VmbCaptureFrameQueue(camera, nullptr, nullptr), VmbErrorBadHandle);
    EXPECT_EQ(stream.queue(1), VmbErrorSuccess);
    EXPECT_EQ(stream.queue(1), VmbErrorInvalidCall);
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorInvalidAccess);
}

TEST_F(StreamTest, AFrameNeedsNoAnnouncementToBeFilled) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    stream.queueAll();
    run(camera, "AcquisitionStart");
    waitForFrames(3);
    stream.endCapture();
    EXPECT_EQ(stream.received().front().verdict, VmbErrorSuccess);
}

TEST_F(StreamTest, TheLibraryLendsMemoryToAFrameWithout) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 2);
    for (VmbFrame_t& frame : stream.frames) frame.buffer = nullptr;
    stream.announceAll();
    for (const VmbFrame_t& frame : stream.frames) EXPECT_NE(frame.buffer, nullptr);
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    stream.queueAll();
    run(camera, "AcquisitionStart");
    waitForFrames(3);
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorSuccess);
    EXPECT_EQ(stream.received().front().verdict, VmbErrorSuccess);
    EXPECT_EQ(VmbFrameRevoke(camera, &stream.frames[0]), VmbErrorSuccess);
    EXPECT_EQ(VmbFrameRevokeAll(camera), VmbErrorSuccess);
    for (const VmbFrame_t& frame : stream.frames) EXPECT_EQ(frame.buffer, nullptr);
}

TEST_F(StreamTest, AnnouncingWithoutEndFails) {
    const VmbHandle_t camera = openFast();
    std::vector<VmbFrame_t> frames(600);
    std::uint8_t byte = 0;
    VmbError_t last = VmbErrorSuccess;
    for (VmbFrame_t& frame : frames) {
        frame = VmbFrame_t{};
        frame.buffer = &byte;
        frame.bufferSize = 1;
        last = VmbFrameAnnounce(camera, &frame, sizeof frame);
    }
    EXPECT_EQ(last, VmbErrorOther);
    EXPECT_EQ(counts().first, 512u);
}

TEST_F(StreamTest, WithoutABufferTheIdGoesOn) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 2);
    stream.requeue = false;
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    EXPECT_TRUE(test_support::eventually([&] { return intOf(camera, "StatFrameUnderrun") >= 3; }));
    stream.queue(0);
    waitForFrames(3);
    stream.endCapture();
    const std::vector<std::uint64_t> ids = stream.ids();
    EXPECT_EQ(ids[0], 1u);
    EXPECT_EQ(ids[1], 2u);
    EXPECT_GE(ids[2], 6u);
}

TEST_F(StreamTest, ABufferThatComesLateIsNotFilledWithAnEarlierFrame) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 1);
    std::uint64_t queuedAt = 0;
    stream.hook = [&](VmbFrame_t& frame) {
        if (frame.frameID != 1) return;
        // Keeps the only buffer, and the frame thread with it, for ten frames.
        const std::uint64_t until = VmbSimTime() + 200'000'000;
        while (VmbSimTime() < until) std::this_thread::yield();
        queuedAt = until;
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    stream.endCapture();
    const ReceivedFrame second = stream.received()[1];
    EXPECT_GE(second.record.frameID, 10u);
    // 1 ms exposure and 492 rows of readout.
    EXPECT_GE(second.stamp.exposureStartNs + 1'000'000 + 11'263'480, queuedAt);
}

TEST_F(StreamTest, AQueuedFrameCanBeTakenAwayWithItsCallback) {
    const VmbHandle_t camera = openFast();
    VmbSimHoldSensor(kColourCamera, true);
    Stream stream(camera, 2);
    stream.startCapture();
    VmbHandle_t handle = nullptr;
    VmbFrame_t* frame = nullptr;
    VmbFrameCallback callback = nullptr;
    ASSERT_EQ(VmbSimTakeQueuedFrame(kColourCamera, &handle, &frame, &callback), VmbErrorSuccess);
    EXPECT_EQ(handle, camera);
    EXPECT_EQ(frame, &stream.frames[0]);
    EXPECT_EQ(counts(), Counts(2, 1));
    frame->frameID = 4711;
    callback(handle, frame);
    EXPECT_THAT(stream.ids(), ElementsAre(4711u));
    EXPECT_EQ(counts(), Counts(2, 2));
    VmbCaptureQueueFlush(camera);
    EXPECT_EQ(VmbSimTakeQueuedFrame(kColourCamera, &handle, &frame, &callback), VmbErrorNotFound);
    EXPECT_EQ(VmbSimTakeQueuedFrame(kColourCamera, &handle, nullptr, &callback), VmbErrorBadParameter);
}

TEST_F(StreamTest, FramesWithoutACallbackAreFilledAllTheSame) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 1);
    stream.announceAll();
    VmbCaptureStart(camera);
    EXPECT_EQ(VmbCaptureFrameQueue(camera, &stream.frames[0], nullptr), VmbErrorSuccess);
    run(camera, "AcquisitionStart");
    EXPECT_TRUE(test_support::eventually([&] { return intOf(camera, "StatFrameDelivered") == 1; }));
    stream.endCapture();
    VmbSimFrameStamp stamp{};
    EXPECT_EQ(VmbSimReadStamp(stream.frames[0].buffer, stream.frames[0].imageSize, &stamp), VmbErrorSuccess);
    EXPECT_EQ(stream.frames[0].frameID, 1u);
}

TEST_F(StreamTest, WaitingForFramesNeedsAnOpenCamera) {
    EXPECT_EQ(VmbSimWaitForFrames("DEV_1", 1, 0), VmbErrorNotFound);
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, 0), VmbErrorDeviceNotOpen);
    EXPECT_EQ(VmbSimWaitForFrames(nullptr, 1, 0), VmbErrorBadParameter);
    open();
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 0, 0), VmbErrorSuccess);
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, 1), VmbErrorTimeout);
}

}  // namespace
