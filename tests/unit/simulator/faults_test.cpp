// Failures to order, and frames that get lost or damaged.
#include "simulator_fixture.h"

namespace {

using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kSystem;
using test_support::ReceivedFrame;
using test_support::run;
using test_support::SimulatorTest;
using test_support::Stream;
using test_support::StreamTest;
using ::testing::ElementsAre;

VmbError_t get(VmbHandle_t camera, const char* name) {
    VmbInt64_t value = 0;
    return VmbFeatureIntGet(camera, name, &value);
}

TEST_F(SimulatorTest, TheNthCallFailsOnceAndWithoutEffect) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(VmbSimFailCall("VmbFeatureIntSet", nullptr, 2, VmbErrorIO), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 320), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 328), VmbErrorIO);
    EXPECT_EQ(intOf(camera, "Width"), 320);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 328), VmbErrorSuccess);
}

TEST_F(SimulatorTest, AFaultMayCountOnlyCallsWithItsArgument) {
    const VmbHandle_t camera = open();
    VmbSimFailCall("VmbFeatureIntGet", "Height", 2, VmbErrorTimeout);
    EXPECT_EQ(get(camera, "Width"), VmbErrorSuccess);
    EXPECT_EQ(get(camera, "Height"), VmbErrorSuccess);
    EXPECT_EQ(get(camera, "Width"), VmbErrorSuccess);
    EXPECT_EQ(get(camera, "Height"), VmbErrorTimeout);
    EXPECT_EQ(get(camera, "Height"), VmbErrorSuccess);
    VmbSimFailCall("VmbCameraOpen", kMonochromeCamera, 1, VmbErrorResources);
    VmbHandle_t other = nullptr;
    EXPECT_EQ(VmbCameraOpen(kMonochromeCamera, VmbAccessModeFull, &other), VmbErrorResources);
    // The text argument that counts is the first one, not the value.
    VmbSimFailCall("VmbFeatureEnumSet", "Off", 1, VmbErrorTimeout);
    EXPECT_EQ(VmbFeatureEnumSet(camera, "GainAuto", "Off"), VmbErrorSuccess);
}

TEST_F(SimulatorTest, ANegativeCountFailsFromThereOn) {
    const VmbHandle_t camera = open();
    VmbSimFailCall("VmbFeatureIntGet", nullptr, -2, VmbErrorOther);
    EXPECT_EQ(get(camera, "Width"), VmbErrorSuccess);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(get(camera, "Width"), VmbErrorOther);
    VmbSimClearFaults();
    EXPECT_EQ(get(camera, "Width"), VmbErrorSuccess);
    EXPECT_EQ(VmbSimFailCall("VmbFeatureIntGet", nullptr, INT32_MIN, VmbErrorOther), VmbErrorSuccess);
    EXPECT_EQ(get(camera, "Width"), VmbErrorSuccess);
}

TEST_F(SimulatorTest, FaultsAddUp) {
    const VmbHandle_t camera = open();
    VmbSimFailCall("VmbFeatureIntGet", nullptr, 1, VmbErrorOther);
    VmbSimFailCall("VmbFeatureIntGet", nullptr, 1, VmbErrorTimeout);
    VmbSimFailCall("VmbFeatureIntGet", nullptr, 3, VmbErrorIO);
    EXPECT_EQ(get(camera, "Width"), VmbErrorOther);
    EXPECT_EQ(get(camera, "Width"), VmbErrorTimeout);
    EXPECT_EQ(get(camera, "Width"), VmbErrorIO);
    EXPECT_EQ(get(camera, "Width"), VmbErrorSuccess);
}

TEST_F(SimulatorTest, AFaultComesBeforeEveryCheck) {
    VmbSimFailCall("VmbCaptureEnd", nullptr, 1, VmbErrorTimeout);
    EXPECT_EQ(VmbCaptureEnd(nullptr), VmbErrorTimeout);
    VmbSimFailCall("VmbShutdown", nullptr, 1, VmbErrorTimeout);
    VmbShutdown();
    EXPECT_EQ(intOf(open(), "Width"), 656);
    VmbShutdown();
    VmbSimFailCall("VmbStartup", nullptr, 1, VmbErrorNoTL);
    EXPECT_EQ(VmbStartup(), VmbErrorNoTL);
    EXPECT_EQ(VmbCaptureEnd(nullptr), VmbErrorApiNotStarted);
}

TEST_F(SimulatorTest, FaultsAreForTheVendorsFunctionsOnly) {
    EXPECT_EQ(VmbSimFailCall("VmbFeatureIntegerGet", nullptr, 1, VmbErrorOther), VmbErrorNotFound);
    EXPECT_EQ(VmbSimFailCall("VmbSimTime", nullptr, 1, VmbErrorOther), VmbErrorNotFound);
    EXPECT_EQ(VmbSimFailCall("VmbMemoryRead", nullptr, 1, VmbErrorOther), VmbErrorSuccess);
    EXPECT_EQ(VmbSimFailCall(nullptr, nullptr, 1, VmbErrorOther), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimFailCall("VmbStartup", nullptr, 0, VmbErrorOther), VmbErrorBadParameter);
}

TEST_F(SimulatorTest, AFaultLeavesOutputsAlone) {
    VmbSimFailCall("VmbFeatureIntGet", nullptr, 1, VmbErrorSuccess);
    VmbInt64_t value = 4711;
    VmbSimJournalStart();
    EXPECT_EQ(VmbFeatureIntGet(kSystem, "GeVDiscoveryAllDuration", &value), VmbErrorSuccess);
    EXPECT_EQ(value, 4711);
    EXPECT_THAT(test_support::Simulator::journal(),
                ElementsAre("VmbFeatureIntGet(system, \"GeVDiscoveryAllDuration\") = 0"));
}

TEST_F(StreamTest, LostFramesLeaveAGapAndNoBufferBehind) {
    const VmbHandle_t camera = openFast();
    VmbSimHoldSensor(kColourCamera, true);
    Stream stream(camera, 2);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimLoseFrames(kColourCamera, 2), VmbErrorSuccess);
    VmbSimHoldSensor(kColourCamera, false);
    waitForFrames(2);
    stream.endCapture();
    EXPECT_EQ(stream.ids()[0], 3u);
    EXPECT_EQ(stream.ids()[1], 4u);
    EXPECT_EQ(VmbSimLoseFrames("DEV_1", 1), VmbErrorNotFound);
    EXPECT_EQ(VmbSimLoseFrames(nullptr, 1), VmbErrorBadParameter);
}

TEST_F(StreamTest, DamagedFramesComeWithTheirStatusAndTooFewBytes) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    EXPECT_EQ(VmbSimBreakFrames(kColourCamera, 2, VmbFrameStatusIncomplete), VmbErrorSuccess);
    EXPECT_EQ(VmbSimBreakFrames(kColourCamera, 1, VmbFrameStatusInvalid), VmbErrorSuccess);
    EXPECT_EQ(VmbSimBreakFrames(kColourCamera, 1, -4), VmbErrorSuccess);
    EXPECT_EQ(VmbSimBreakFrames("DEV_1", 1, -1), VmbErrorNotFound);
    run(camera, "AcquisitionStart");
    waitForFrames(5);
    stream.endCapture();
    const std::vector<ReceivedFrame> frames = stream.received();
    const VmbFrameStatus_t statuses[] = {-1, -1, -3, -4, 0};
    for (std::size_t i = 0; i < 5; ++i) {
        const VmbFrame_t& frame = frames[i].record;
        EXPECT_EQ(frame.receiveStatus, statuses[i]);
        EXPECT_EQ(frame.frameID, i + 1);
        // One packet of 1464 bytes is missing.
        EXPECT_EQ(frame.imageSize, i < 4 ? 322'752u - 1'464u : 322'752u);
        EXPECT_EQ(frames[i].verdict, i < 4 ? VmbErrorIncomplete : VmbErrorSuccess);
    }
}

TEST_F(StreamTest, TheBytesOfADamagedFrameAreNotThePicture) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    VmbSimBreakFrames(kColourCamera, 1, VmbFrameStatusIncomplete);
    VmbError_t whole = VmbErrorSuccess;
    stream.hook = [&](VmbFrame_t& frame) {
        VmbSimFrameStamp stamp;
        if (frame.frameID == 1) whole = VmbSimReadStamp(frame.buffer, frame.bufferSize, &stamp);
    };
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    stream.endCapture();
    EXPECT_EQ(whole, VmbErrorIncomplete);
}

TEST_F(StreamTest, ABufferThatIsTooSmallIsFilledToItsEnd) {
    const VmbHandle_t camera = openFast();
    VmbSimForceFeature(kColourCamera, "PayloadSize", "1000");
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    stream.endCapture();
    const ReceivedFrame frame = stream.received().front();
    EXPECT_EQ(frame.record.receiveStatus, VmbFrameStatusTooSmall);
    EXPECT_EQ(frame.record.imageSize, 1000u);
    EXPECT_EQ(frame.verdict, VmbErrorIncomplete);
    EXPECT_EQ(frame.stamp.frameId, 1u);
}

TEST_F(StreamTest, OrderedFrameFaultsCanBeCalledOff) {
    const VmbHandle_t camera = openFast();
    VmbSimLoseFrames(kColourCamera, 1000);
    VmbSimBreakFrames(kColourCamera, 1000, VmbFrameStatusIncomplete);
    VmbSimClearFaults();
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    stream.endCapture();
    EXPECT_EQ(stream.ids().front(), 1u);
    EXPECT_EQ(stream.received().front().verdict, VmbErrorSuccess);
}

}  // namespace
