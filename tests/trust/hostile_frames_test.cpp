// Frames that are not what was announced, and calls at times and on threads that nobody promised.
#include "allocation_counter.h"
#include "hostile_fixture.h"
#include "throwing_log.h"

namespace {

using test_support::AllocationCounter;
using test_support::AssertionCapture;
using test_support::HostileRecording;
using test_support::HostileVendor;
using test_support::isFeature;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::LogCapture;
using test_support::RecordingSink;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::uint32_t kBuffers = 5;
/// 32 x 4 pixels of a byte.
constexpr std::uint32_t kPicture = 128;

/// Frames by hand: the sensor exposes nothing.
class HostileFrames : public HostileRecording {
  protected:
    HostileFrames() {
        VmbSimHoldSensor(kMonochromeCamera, true);
        plugin->setChannelSink(0, &sink);
    }
    ~HostileFrames() override {
        if (plugin != nullptr) plugin->clearChannelSinks();
    }

    struct Taken {
        VmbHandle_t handle = nullptr;
        VmbFrame_t* frame = nullptr;
        VmbFrameCallback callback = nullptr;
    };
    /// A queued buffer as a complete frame.
    Taken take(std::uint64_t id) {
        Taken taken;
        EXPECT_EQ(VmbSimTakeQueuedFrame(kMonochromeCamera, &taken.handle, &taken.frame, &taken.callback),
                  VmbErrorSuccess);
        fill(*taken.frame, id);
        return taken;
    }
    /// The host's time goes on with the frames: one that took longer than its predecessor must not seem
    /// earlier.
    void fill(VmbFrame_t& frame, std::uint64_t id) {
        clock->fixed = kSecond + id * kMillisecond;
        frame.receiveStatus = VmbFrameStatusComplete;
        frame.receiveFlags = VmbFrameFlagsFrameID | VmbFrameFlagsTimestamp;
        frame.frameID = id;
        frame.timestamp = id * kMillisecond;
        frame.imageSize = kPicture;
    }
    static std::uint32_t queued() {
        std::uint32_t announced = 0;
        std::uint32_t count = 0;
        EXPECT_EQ(VmbSimFrameCounts(kMonochromeCamera, &announced, &count), VmbErrorSuccess);
        return count;
    }
    /// From now on each frame comes back within the call that queues it.
    void giveBackWithoutEnd(std::uint64_t& rounds) {
        vendor.captureFrameQueue.instead = [this, &rounds](VmbHandle_t handle, const VmbFrame_t* frame,
                                                           VmbFrameCallback callback) {
            auto& given = const_cast<VmbFrame_t&>(*frame);
            fill(given, 100 + ++rounds);
            // A library without an end, but for this test.
            if (rounds < 10'000) callback(handle, &given);
            return VmbError_t{VmbErrorSuccess};
        };
    }
    /// A run of the honest camera after all that.
    void expectHonestFrames() {
        vendor = HostileVendor();
        clock->fixed = 0;
        plugin->setChannelSink(0, &m_afterwards);
        VmbSimHoldSensor(kMonochromeCamera, false);
        set(config_keys::kCameraFrameSetting, 20);
        start();
        advance(kSecond);
        stop();
        plugin->clearChannelSinks();
        EXPECT_THAT(m_afterwards.samples(), SizeIs(20));
    }

    RecordingSink sink;

  private:
    RecordingSink m_afterwards;
};

TEST_F(HostileFrames, APictureLargerThanItsBufferIsDroppedByName) {
    start();
    const LogCapture log(UniLogSeverityLevel::Error);
    for (const std::uint32_t size : {kPicture + 1, 4'294'967'295u}) {
        const Taken taken = take(7);
        taken.frame->imageSize = size;
        taken.callback(taken.handle, taken.frame);
    }
    EXPECT_THAT(sink.samples(), IsEmpty());
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Error),
        ElementsAre("Frame #7 was dropped: its picture of 129 bytes is not within its buffer of 128",
                    "Frame #7 was dropped: its picture of 4294967295 bytes is not within its buffer of 128"));
    EXPECT_EQ(queued(), kBuffers);
    stop();
    expectHonestFrames();
}

TEST_F(HostileFrames, ABufferSizeThatTheLibraryRaisesMakesNoRoom) {
    start();
    const Taken taken = take(7);
    taken.frame->bufferSize = 1'000'000;
    taken.frame->imageSize = 1'000'000;
    taken.callback(taken.handle, taken.frame);
    EXPECT_THAT(sink.samples(), IsEmpty());
    stop();
}

TEST_F(HostileFrames, ABufferThatTheLibraryExchangesIsNeitherReadNorFreed) {
    start();
    const Taken taken = take(7);
    std::vector<char> foreign(kPicture);
    taken.frame->buffer = foreign.data();
    taken.callback(taken.handle, taken.frame);
    EXPECT_THAT(sink.samples(), IsEmpty());
    stop();
}

TEST_F(HostileFrames, APictureOfNoBytesIsPassedOnAsThat) {
    start();
    const Taken taken = take(7);
    taken.frame->imageSize = 0;
    taken.callback(taken.handle, taken.frame);
    const auto samples = sink.samples();
    ASSERT_THAT(samples, SizeIs(1));
    EXPECT_EQ(samples[0].size, 0u);
    stop();
}

TEST_F(HostileFrames, AnIrregularFrameAllocatesNothingButItsRecord) {
    start();
    const Taken taken = take(7);
    taken.frame->imageSize = kPicture + 1;
    const AllocationCounter counter;
    taken.callback(taken.handle, taken.frame);
    EXPECT_LE(counter.count(), 1u);
    stop();
}

TEST_F(HostileFrames, NoneIsNoFrame) {
    start();
    const Taken taken = take(7);
    taken.callback(taken.handle, nullptr);
    EXPECT_THAT(sink.samples(), IsEmpty());
    stop();
}

TEST_F(HostileFrames, AFrameThatComesAfterTheEndOfCaptureIsForgotten) {
    start();
    const Taken taken = take(7);
    stop();
    std::uint32_t queueings = 0;
    vendor.captureFrameQueue.instead = [&](VmbHandle_t handle, const VmbFrame_t* frame,
                                           VmbFrameCallback callback) {
        ++queueings;
        return vendor.captureFrameQueue.honest(handle, frame, callback);
    };
    taken.callback(taken.handle, taken.frame);
    EXPECT_THAT(sink.samples(), IsEmpty());
    EXPECT_EQ(queueings, 0u);
    expectHonestFrames();
}

TEST_F(HostileFrames, AFrameOfTheRunBeforeIsForgottenInTheNext) {
    start();
    const Taken taken = take(7);
    stop();
    start();
    taken.callback(taken.handle, taken.frame);
    EXPECT_THAT(sink.samples(), IsEmpty());
    EXPECT_EQ(queued(), kBuffers);
    stop();
}

TEST_F(HostileFrames, AFrameThatComesAfterTheCameraWasClosedIsForgotten) {
    start();
    const Taken taken = take(7);
    stop();
    plugin->terminate();
    taken.callback(taken.handle, taken.frame);
    EXPECT_THAT(sink.samples(), IsEmpty());
}

/// The library gives each frame back within the call that queues it, `rounds` times in all.
TEST_F(HostileFrames, FramesThatComeBackWithinTheCallThatQueuesThemAreAllDelivered) {
    constexpr std::uint64_t kRounds = 40;
    std::uint64_t rounds = 0;
    unsigned depth = 0;
    unsigned deepest = 0;
    start();
    vendor.captureFrameQueue.instead = [&](VmbHandle_t handle, const VmbFrame_t* frame,
                                           VmbFrameCallback callback) {
        if (rounds == kRounds) return vendor.captureFrameQueue.honest(handle, frame, callback);
        auto& given = const_cast<VmbFrame_t&>(*frame);
        fill(given, 100 + ++rounds);
        deepest = std::max(deepest, ++depth);
        callback(handle, &given);
        --depth;
        return VmbError_t{VmbErrorSuccess};
    };
    const Taken taken = take(100);
    taken.callback(taken.handle, taken.frame);
    EXPECT_THAT(sink.samples(), SizeIs(kRounds + 1));
    EXPECT_EQ(deepest, 1u);
    EXPECT_EQ(queued(), kBuffers);
    stop();
    expectHonestFrames();
}

/// Within the call that queues one of two frames the library gives the other one back, `kRounds` times in
/// all.
TEST_F(HostileFrames, TwoFramesThatBringEachOtherBackAreDeliveredWithoutGoingDeeper) {
    constexpr std::uint64_t kRounds = 40;
    std::uint64_t rounds = 0;
    unsigned depth = 0;
    unsigned deepest = 0;
    start();
    const Taken first = take(100);
    const Taken second = take(100);
    vendor.captureFrameQueue.instead = [&](VmbHandle_t handle, const VmbFrame_t* frame,
                                           VmbFrameCallback callback) {
        if (rounds == kRounds) return vendor.captureFrameQueue.honest(handle, frame, callback);
        VmbFrame_t* const other = frame == first.frame ? second.frame : first.frame;
        fill(*other, 100 + ++rounds);
        deepest = std::max(deepest, ++depth);
        callback(handle, other);
        --depth;
        return VmbError_t{VmbErrorSuccess};
    };
    first.callback(first.handle, first.frame);
    EXPECT_THAT(sink.samples(), SizeIs(kRounds + 1));
    EXPECT_EQ(deepest, 2u);
    // The library keeps the second one, which it did not queue the last time.
    EXPECT_EQ(queued(), kBuffers - 1);
    vendor = HostileVendor();
    stop();
    expectHonestFrames();
}

TEST_F(HostileFrames, AFrameThatComesBackWithoutEndIsLeftOutByName) {
    std::uint64_t rounds = 0;
    start();
    giveBackWithoutEnd(rounds);
    const LogCapture log(UniLogSeverityLevel::Error);
    const Taken taken = take(100);
    taken.callback(taken.handle, taken.frame);
    EXPECT_EQ(rounds, 100u);
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Error),
        ElementsAre("The buffer of frame #200 came back while it was queued, each of 100 times, and is left "
                    "out"));
    EXPECT_EQ(queued(), kBuffers - 1);
    vendor = HostileVendor();
    stop();
    expectHonestFrames();
}

TEST_F(HostileFrames, AFrameThatComesBackWithoutEndIsLeftOutAlthoughTheLogFails) {
    std::uint64_t rounds = 0;
    start();
    giveBackWithoutEnd(rounds);
    {
        const test_support::ThrowingLog log("came back while it was queued");
        const Taken taken = take(100);
        taken.callback(taken.handle, taken.frame);
    }
    EXPECT_EQ(rounds, 100u);
    EXPECT_EQ(queued(), kBuffers - 1);
    vendor = HostileVendor();
    stop();
    expectHonestFrames();
}

TEST_F(HostileFrames, FramesThatComeWhileTheFirstBuffersAreQueuedAreDelivered) {
    std::uint64_t given = 0;
    vendor.captureFrameQueue.instead = [&](VmbHandle_t handle, const VmbFrame_t* frame,
                                           VmbFrameCallback callback) {
        const VmbError_t result = vendor.captureFrameQueue.honest(handle, frame, callback);
        if (++given > kBuffers) return result;
        // At once, on the thread that prepares.
        const Taken taken = take(given);
        taken.callback(taken.handle, taken.frame);
        return result;
    };
    start();
    // No acquisition runs yet, so that they are none of the recording.
    EXPECT_THAT(sink.samples(), IsEmpty());
    EXPECT_EQ(queued(), kBuffers);
    stop();
    expectHonestFrames();
}

TEST_F(HostileFrames, AFrameOnTheThreadThatStopsTheCameraIsDelivered) {
    start();
    vendor.commandRun.instead = [&](VmbHandle_t handle, const char* name) {
        if (isFeature(name, "AcquisitionStop")) {
            const Taken taken = take(7);
            taken.callback(taken.handle, taken.frame);
        }
        return vendor.commandRun.honest(handle, name);
    };
    stop();
    EXPECT_THAT(sink.samples(), SizeIs(1));
    expectHonestFrames();
}

TEST_F(HostileFrames, AFrameOnTheThreadThatEndsCaptureIsDelivered) {
    start();
    vendor.captureEnd.instead = [&](VmbHandle_t handle) {
        const Taken taken = take(7);
        taken.callback(taken.handle, taken.frame);
        return vendor.captureEnd.honest(handle);
    };
    stop();
    EXPECT_THAT(sink.samples(), SizeIs(1));
    expectHonestFrames();
}

}  // namespace
