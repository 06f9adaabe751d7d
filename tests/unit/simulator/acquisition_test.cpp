// Starts, stops and aborts, and the frames between them.
#include "simulator_fixture.h"

namespace {

using test_support::floatOf;
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
using ::testing::Gt;
using ::testing::SizeIs;

using Counts = std::pair<VmbUint32_t, VmbUint32_t>;

TEST_F(StreamTest, IdsCountThroughStopsAndRestartWithCapture) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    for (int acquisition = 0; acquisition < 3; ++acquisition) {
        const std::size_t before = stream.received().size();
        run(camera, "AcquisitionStart");
        waitForFrames(before + 2);
        run(camera, "AcquisitionStop");
        waitForEvents();
    }
    const std::vector<std::uint64_t> ids = stream.ids();
    for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ids[i], i + 1);
    stream.endCapture();
    const std::size_t before = stream.received().size();
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    stream.endCapture();
    EXPECT_EQ(stream.ids()[before], 1u);
}

TEST_F(StreamTest, AStartWhileAStopIsUnderWayFollowsIt) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    run(camera, "AcquisitionStop");
    run(camera, "AcquisitionStart");
    waitForFrames(6);
    stream.endCapture();
}

TEST_F(StreamTest, AFrameOfAnEarlierCaptureIsNotDeliveredInALaterOne) {
    const VmbHandle_t camera = openFast();
    setFloat(camera, "ExposureTimeAbs", 100'000);
    for (int round = 0; round < 3; ++round) {
        Stream stream(camera);
        stream.startCapture();
        run(camera, "AcquisitionStart");
        if (round == 1) waitForFrames(1);
        // Ends the capture with a frame under way, which the next capture must not see.
        stream.endCapture();
        if (round == 1) {
            EXPECT_EQ(stream.ids().front(), 1u);
        }
    }
}

TEST_F(StreamTest, AfterTheStopNoFrameFollows) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    run(camera, "AcquisitionStop");
    waitForEvents();
    const std::size_t count = stream.received().size();
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, count + 1, 100), VmbErrorTimeout);
    EXPECT_EQ(counts(), Counts(5, 5));
}

TEST_F(StreamTest, ModesForSingleAndSeveralFramesStopByThemselves) {
    const VmbHandle_t camera = openFast();
    setInt(camera, "AcquisitionFrameCount", 3);
    const std::pair<const char*, std::size_t> modes[] = {{"SingleFrame", 1}, {"MultiFrame", 3}};
    for (const auto& [mode, expected] : modes) {
        setEnum(camera, "AcquisitionMode", mode);
        Stream stream(camera);
        stream.startCapture();
        run(camera, "AcquisitionStart");
        waitForFrames(expected);
        EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, expected + 1, 60), VmbErrorTimeout);
        setInt(camera, "Width", 656);
        EXPECT_THAT(stream.received(), SizeIs(expected));
        stream.endCapture();
    }
}

TEST_F(StreamTest, AbortDropsTheFrameUnderWayAndKeepsItsBufferQueued) {
    const VmbHandle_t camera = openFast();
    setFloat(camera, "ExposureTimeAbs", 500'000);
    setFloat(camera, "AcquisitionFrameRateAbs", 1);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    run(camera, "AcquisitionAbort");
    waitForEvents();
    EXPECT_EQ(counts(), Counts(5, 5));
    setFloat(camera, "ExposureTimeAbs", 1000);
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    stream.endCapture();
    EXPECT_THAT(stream.received(), SizeIs(Gt(0u)));
}

TEST_F(StreamTest, AnAbortedTransferGivesItsBufferBackAsTheOldest) {
    const VmbHandle_t camera = openFast();
    // 322752 bytes take a third of a second.
    setInt(camera, "StreamBytesPerSecond", 1'000'000);
    Stream stream(camera, 3);
    stream.requeue = false;
    stream.startCapture();
    const std::uint64_t start = VmbSimTime();
    run(camera, "AcquisitionStart");
    // 1 ms exposure and 11.3 ms readout are over, the transfer is under way.
    EXPECT_TRUE(test_support::eventually([&] { return VmbSimTime() > start + 60'000'000; }));
    run(camera, "AcquisitionAbort");
    waitForEvents();
    EXPECT_EQ(counts(), Counts(3, 3));
    setInt(camera, "StreamBytesPerSecond", 115'000'000);
    run(camera, "AcquisitionStart");
    waitForFrames(3);
    stream.endCapture();
    const std::vector<ReceivedFrame> frames = stream.received();
    ASSERT_THAT(frames, SizeIs(3));
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(frames[i].record.buffer, stream.frames[i].buffer);
}

TEST_F(StreamTest, AHeldSensorExposesNothingUntilItIsReleased) {
    const VmbHandle_t camera = openFast();
    EXPECT_EQ(VmbSimHoldSensor(kColourCamera, true), VmbErrorSuccess);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 1, 60), VmbErrorTimeout);
    const std::uint64_t released = VmbSimTime();
    EXPECT_EQ(VmbSimHoldSensor(kColourCamera, false), VmbErrorSuccess);
    waitForFrames(1);
    stream.endCapture();
    EXPECT_EQ(stream.ids().front(), 1u);
    EXPECT_GE(stream.received().front().stamp.exposureStartNs, released);
    EXPECT_EQ(VmbSimHoldSensor("DEV_1", true), VmbErrorNotFound);
}

TEST_F(StreamTest, BothCamerasStreamAtOnce) {
    const VmbHandle_t colour = openFast();
    const VmbHandle_t mono = openFast(kMonochromeCamera);
    Stream first(colour);
    Stream second(mono);
    first.startCapture();
    second.startCapture();
    run(colour, "AcquisitionStart");
    run(mono, "AcquisitionStart");
    waitForFrames(5);
    waitForFrames(5, kMonochromeCamera);
    first.endCapture();
    second.endCapture();
    for (const Stream* stream : {&first, &second}) {
        for (const ReceivedFrame& frame : stream->received()) EXPECT_EQ(frame.verdict, VmbErrorSuccess);
    }
}

TEST_F(StreamTest, StatisticsCountAndRestartWithTheAcquisition) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    VmbSimBreakFrames(kColourCamera, 2, VmbFrameStatusIncomplete);
    run(camera, "AcquisitionStart");
    waitForFrames(6);
    run(camera, "AcquisitionStop");
    waitForEvents();
    EXPECT_EQ(intOf(camera, "StatFrameDropped"), 2);
    EXPECT_EQ(intOf(camera, "StatFrameDelivered"), static_cast<VmbInt64_t>(stream.received().size()) - 2);
    EXPECT_NEAR(floatOf(camera, "StatFrameRate"), 50.0, 1e-5);
    VmbSimHoldSensor(kColourCamera, true);
    run(camera, "AcquisitionStart");
    EXPECT_EQ(intOf(camera, "StatFrameDelivered"), 0);
    EXPECT_EQ(intOf(camera, "StatFrameDropped"), 0);
    stream.endCapture();
}

}  // namespace
