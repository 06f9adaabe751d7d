// Data behind the picture.
#include "simulator_fixture.h"

namespace {

using test_support::floatOf;
using test_support::intOf;
using test_support::kColourCamera;
using test_support::run;
using test_support::setFloat;
using test_support::setInt;
using test_support::Stream;
using test_support::StreamTest;

class Chunk : public StreamTest {
  protected:
    Chunk() {
        setFloat(camera, "ExposureTimeAbs", 1234);
        setFloat(camera, "Gain", 7.4);
        setInt(camera, "SyncOutLevels", 0x0203);
        activate();
    }
    void activate() { EXPECT_EQ(VmbFeatureBoolSet(camera, "ChunkModeActive", true), VmbErrorSuccess); }
    /// Number with the highest byte first, at a place counted from the end of the picture.
    static unsigned long numberAt(const VmbFrame_t& frame, std::size_t at, std::size_t bytes) {
        const auto* from = static_cast<const unsigned char*>(frame.buffer) + frame.imageSize + at;
        unsigned long number = 0;
        for (std::size_t i = 0; i < bytes; ++i) number = number * 256 + from[i];
        return number;
    }
    const VmbHandle_t camera = openFast();
};

TEST_F(Chunk, ModeMakesThePayloadLarger) {
    EXPECT_EQ(intOf(camera, "ImageSize"), 656 * 492);
    EXPECT_EQ(intOf(camera, "NonImagePayloadSize"), 40);
    EXPECT_EQ(intOf(camera, "PayloadSize"), 656 * 492 + 48);
    setInt(camera, "StreamBytesPerSecond", 10 * (656 * 492 + 48));
    EXPECT_NEAR(floatOf(camera, "AcquisitionFrameRateLimit"), 10.0, 1e-9);
    EXPECT_EQ(VmbFeatureBoolSet(camera, "ChunkModeActive", false), VmbErrorSuccess);
    EXPECT_EQ(intOf(camera, "NonImagePayloadSize"), 0);
    EXPECT_EQ(intOf(camera, "PayloadSize"), 656 * 492);
}

TEST_F(Chunk, TrailerStandsBehindThePicture) {
    Stream stream(camera, 2);
    stream.requeue = false;
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    run(camera, "AcquisitionStop");
    const auto frames = stream.received();
    ASSERT_EQ(frames.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        const VmbFrame_t& frame = frames[i].record;
        EXPECT_EQ(frames[i].verdict, VmbErrorSuccess);
        EXPECT_EQ(frame.receiveStatus, VmbFrameStatusComplete);
        EXPECT_EQ(frame.imageSize, 656u * 492);
        EXPECT_EQ(frame.ancillarySize, 48u);
        EXPECT_EQ(numberAt(frame, 0, 4), i + 1);
        EXPECT_EQ(numberAt(frame, 4, 4), 0u);
        EXPECT_EQ(numberAt(frame, 8, 4), 1234u);
        EXPECT_EQ(numberAt(frame, 12, 4), 7u);
        EXPECT_EQ(numberAt(frame, 16, 2), 0u);
        EXPECT_EQ(numberAt(frame, 18, 2), 0x0203u);
        for (std::size_t at = 20; at < 40; at += 4) EXPECT_EQ(numberAt(frame, at, 4), 0u) << at;
        EXPECT_EQ(numberAt(frame, 40, 4), 1000u);
        EXPECT_EQ(numberAt(frame, 44, 4), 40u);
    }
    stream.endCapture();
}

TEST_F(Chunk, IsReadThroughFeatures) {
    Stream stream(camera, 1);
    VmbHandle_t chunk = nullptr;
    VmbError_t opened = VmbErrorOther;
    stream.requeue = false;
    stream.hook = [&](VmbFrame_t& frame) { opened = VmbAncillaryDataOpen(&frame, &chunk); };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    stream.endCapture();
    ASSERT_EQ(opened, VmbErrorSuccess);
    // A copy: the picture's memory may be used for another one meanwhile.
    std::fill_n(static_cast<char*>(stream.frames[0].buffer), stream.frames[0].bufferSize, '\x55');
    EXPECT_EQ(intOf(chunk, "ChunkAcquisitionFrameCount"), 1);
    EXPECT_EQ(intOf(chunk, "ChunkExposureTime"), 1234);
    EXPECT_EQ(intOf(chunk, "ChunkGain"), 7);
    EXPECT_EQ(intOf(chunk, "ChunkSyncInLevels"), 0);
    EXPECT_EQ(intOf(chunk, "ChunkSyncOutLevels"), 0x0203);
    EXPECT_EQ(VmbFeatureIntSet(chunk, "ChunkGain", 1), VmbErrorInvalidAccess);
    VmbUint32_t count = 0;
    EXPECT_EQ(VmbFeaturesList(chunk, nullptr, 0, &count, 0), VmbErrorSuccess);
    EXPECT_EQ(count, 5u);
    EXPECT_EQ(VmbCaptureEnd(chunk), VmbErrorBadHandle);
    EXPECT_EQ(VmbAncillaryDataClose(chunk), VmbErrorSuccess);
    VmbInt64_t value = 0;
    EXPECT_EQ(VmbFeatureIntGet(chunk, "ChunkGain", &value), VmbErrorBadHandle);
    EXPECT_EQ(VmbAncillaryDataClose(chunk), VmbErrorBadHandle);
}

TEST_F(Chunk, CountRestartsWithEachAcquisition) {
    Stream stream(camera, 1);
    std::vector<unsigned long> counts;
    stream.hook = [&](VmbFrame_t& frame) { counts.push_back(numberAt(frame, 0, 4)); };
    test_support::setEnum(camera, "AcquisitionMode", "MultiFrame");
    setInt(camera, "AcquisitionFrameCount", 2);
    stream.startCapture();
    for (std::uint64_t frames = 2; frames <= 4; frames += 2) {
        run(camera, "AcquisitionStart");
        waitForFrames(frames);
        waitForEvents();
    }
    stream.endCapture();
    EXPECT_THAT(counts, ::testing::ElementsAre(1, 2, 1, 2));
    EXPECT_THAT(stream.ids(), ::testing::ElementsAre(1, 2, 3, 4));
}

TEST_F(Chunk, ABufferForThePictureAloneIsTooSmall) {
    Stream stream(camera, 1);
    stream.requeue = false;
    stream.frames[0].bufferSize = 656 * 492 + 47;
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    stream.endCapture();
    const auto received = stream.received();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].record.receiveStatus, VmbFrameStatusTooSmall);
    EXPECT_EQ(received[0].record.imageSize, 656u * 492);
    EXPECT_EQ(received[0].record.ancillarySize, 0u);
    VmbHandle_t chunk = this;
    VmbFrame_t frame = received[0].record;
    EXPECT_EQ(VmbAncillaryDataOpen(&frame, &chunk), VmbErrorBadHandle);
    EXPECT_EQ(chunk, this);
}

TEST_F(Chunk, IsNotThereWithoutTheMode) {
    VmbFrame_t never{};
    VmbHandle_t chunk = nullptr;
    EXPECT_EQ(VmbAncillaryDataOpen(&never, &chunk), VmbErrorBadHandle);
    EXPECT_EQ(VmbFeatureBoolSet(camera, "ChunkModeActive", false), VmbErrorSuccess);
    Stream stream(camera, 1);
    stream.requeue = false;
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    stream.endCapture();
    EXPECT_EQ(stream.received().at(0).record.ancillarySize, 0u);
    EXPECT_EQ(VmbAncillaryDataOpen(&stream.frames[0], &chunk), VmbErrorBadHandle);
    EXPECT_EQ(chunk, nullptr);
}

}  // namespace
