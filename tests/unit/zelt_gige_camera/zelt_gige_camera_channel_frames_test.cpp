// Frames through the plug-in: time stamps, sinks, the acquisition events, the cost per frame.
#include <array>
#include <cstdlib>
#include <thread>

#include "allocation_counter.h"
#include "channel_fixture.h"
#include "frames_by_hand_fixture.h"
#include "latch.h"
#include "zelt_gige_vmb_call.h"

namespace {

using test_support::AllocationCounter;
using test_support::AssertionCapture;
using test_support::FramesByHand;
using test_support::kColourCamera;
using test_support::kName;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::PluginTest;
using test_support::RecordingSink;
using test_support::Sample;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST_F(PluginTest, DeliversTheFramesOfEachCameraToItsSink) {
    RecordingSink colour;
    RecordingSink mono;
    enumerate();
    plugin->setChannelSink(0, &colour);
    plugin->setChannelSink(1, &mono);
    start();
    EXPECT_TRUE(plugin->isAcquiring());
    EXPECT_TRUE(plugin->processAcquisition());
    EXPECT_TRUE(colour.waitFor(10));
    EXPECT_TRUE(mono.waitFor(10));
    stop();
    plugin->clearChannelSinks();
    for (const Sample& sample : colour.samples()) EXPECT_EQ(sample.size, 645'504u);
    for (const Sample& sample : mono.samples()) EXPECT_EQ(sample.size, 322'752u);
}

TEST_F(PluginTest, RecordsASecondAcquisitionAsWellAsTheFirst) {
    RecordingSink sink;
    enumerate();
    plugin->setChannelSink(0, &sink);
    for (int acquisition = 1; acquisition <= 2; ++acquisition) {
        const std::size_t before = sink.samples().size();
        start();
        EXPECT_TRUE(sink.waitFor(before + 5));
        stop();
    }
    plugin->clearChannelSinks();
}

TEST_F(PluginTest, CallsNoSinkOnceItWasCleared) {
    enumerate();
    start();
    for (int round = 0; round < 20; ++round) {
        auto sink = std::make_unique<RecordingSink>();
        plugin->setChannelSink(0, sink.get());
        EXPECT_TRUE(sink->waitFor(1));
        plugin->clearChannelSinks();
    }
    stop();
}

TEST_F(PluginTest, LogsTheAcquisitionEvents) {
    RecordingSink sink;
    enumerate();
    use(1, false);
    plugin->setChannelSink(0, &sink);
    const LogCapture log(UniLogSeverityLevel::Debug);
    start();
    EXPECT_TRUE(sink.waitFor(1));
    plugin->clearChannelSinks();
    stop();
    std::vector<std::string> started = log.texts(UniLogSeverityLevel::Detail);
    std::erase_if(started,
                  [](const std::string& line) { return line.find("received") == std::string::npos; });
    ASSERT_THAT(started, SizeIs(1));
    EXPECT_EQ(started[0].rfind("Camera " + kName + " received onAcquisitionStarted at ", 0), 0u);
    EXPECT_EQ(started[0].substr(started[0].size() - 14), " with frame #1");
}

TEST_F(FramesByHand, EndWithAnEventThatIsLogged) {
    auto& callback = dynamic_cast<zelt_gige_api::IfCameraCallback&>(*plugin->getChannel(0));
    const LogCapture log(UniLogSeverityLevel::Debug);
    callback.onAcquisitionEnded({}, 4711, 9);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Debug),
                ElementsAre("Camera " + kName + " received onAcquisitionEnded at 4711"));
}

TEST_F(FramesByHand, BeginWithAnEventOfTheirOwnCamera) {
    auto& callback = dynamic_cast<zelt_gige_api::IfCameraCallback&>(*plugin->getChannel(0));
    const AssertionCapture assertions;
    callback.onAcquisitionStarted(0x4711, 0, 5);
    ASSERT_THAT(assertions.failures(), SizeIs(1));
    EXPECT_EQ(assertions.failures()[0].expression, "handle == m_device_handle");
    EXPECT_EQ(assertions.failures()[0].message, "handle !=m_device_handle");
    // The event counts all the same.
    deliver(4, 1000);
    EXPECT_EQ(assertions.expressions().back(), "frame.frameid >= m_timestamp_generator->getStartFrameId()");
}

TEST_F(FramesByHand, ReachTheSinkWithBufferAndSize) {
    deliver(1, 1000);
    ASSERT_THAT(sink.samples(), SizeIs(1));
    EXPECT_EQ(sink.samples()[0].data, last);
    EXPECT_EQ(sink.samples()[0].size, 645'504u);
}

TEST_F(FramesByHand, AreStampedWithTheHostTimeLessTheirWaitBeforeSynchronization) {
    deliver(1, 1'000'000);
    ASSERT_THAT(times(), SizeIs(1));
    EXPECT_LE(times()[0], 1'000'000'000'000);
    EXPECT_GT(times()[0], 999'000'000'000);
}

TEST_F(FramesByHand, AreDroppedWhenTheirTimeRunsBackwards) {
    deliver(1, 1000);
    clock->fixed = 500'000'000'000;
    const LogCapture log(UniLogSeverityLevel::Detail);
    deliver(2, 2000);
    EXPECT_THAT(times(), SizeIs(1));
    const auto lines = log.texts(UniLogSeverityLevel::Detail);
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0].rfind("Frame 2 with timestamp 4999", 0) == 0 ||
                  lines[0].rfind("Frame 2 with timestamp 500000000000", 0) == 0,
              true)
        << lines[0];
    EXPECT_EQ(lines[0].substr(lines[0].find(" was dropped")),
              " was dropped (prev. timestamp: " + std::to_string(times()[0]) + ")");
    clock->fixed = 1'000'100'000'000;
    deliver(3, 3000);
    EXPECT_THAT(times(), SizeIs(2));
}

TEST_F(FramesByHand, FollowTheFitOnceSynchronized) {
    // 21 frames, 20 ms apart on both clocks: from the 20th on the fit tells the time.
    for (std::uint64_t frame = 1; frame <= 21; ++frame) {
        clock->fixed = 1'000'000'000'000 + frame * 20'000'000;
        deliver(frame, frame * 20'000'000);
    }
    clock->fixed = 7;
    deliver(22, 22 * 20'000'000);
    ASSERT_THAT(times(), SizeIs(22));
    EXPECT_NEAR(static_cast<double>(times()[21]), 1'000'000'000'000.0 + 22 * 20'000'000.0, 1e6);
}

TEST_F(FramesByHand, AreCountedFromTheStartEventWhileTheHostsClockStandsStill) {
    std::int64_t start = 0;
    clock->fixed = 0;
    // The start event of the simulator is not ours to know: take its effect from two frames.
    plugin->setSharedAcquisitionObject(nullptr);
    deliver(1, 5'000'000'000);
    start = times().at(0);
    deliver(2, 5'020'000'000);
    EXPECT_EQ(times().at(1) - start, 20'000'000);
    EXPECT_LT(start, 5'000'000'000);
}

TEST_F(FramesByHand, BelowTheStartFrameAreAProgrammingError) {
    const AssertionCapture assertions;
    deliver(0, 1000);
    EXPECT_THAT(assertions.expressions(),
                ElementsAre("frame.frameid >= m_timestamp_generator->getStartFrameId()"));
}

TEST_F(FramesByHand, AfterTheEndEventAreIgnored) {
    deliver(1, 1000);
    VmbHandle_t handle = nullptr;
    VmbFrame_t* frame = nullptr;
    VmbFrameCallback callback = nullptr;
    VmbSimTakeQueuedFrame(kColourCamera, &handle, &frame, &callback);
    VmbCaptureFrameQueue(handle, frame, callback);
    VmbFeatureCommandRun(handle, "AcquisitionStop");
    VmbSimWaitForEvents(kPatienceMs);
    deliver(2, 2000);
    EXPECT_THAT(times(), SizeIs(1));
}

TEST_F(FramesByHand, WithoutASinkAreStampedAllTheSame) {
    plugin->clearChannelSinks();
    deliver(1, 1000);
    plugin->setChannelSink(0, &sink);
    clock->fixed = 500'000'000'000;
    deliver(2, 2000);
    EXPECT_THAT(times(), IsEmpty());
}

TEST_F(FramesByHand, MayComeTogetherWithTheStartEvent) {
    auto& callback = dynamic_cast<zelt_gige_api::IfCameraCallback&>(*plugin->getChannel(0));
    VmbHandle_t handle = nullptr;
    VmbFrame_t* frame = nullptr;
    VmbFrameCallback registered = nullptr;
    VmbSimTakeQueuedFrame(kColourCamera, &handle, &frame, &registered);
    VmbCaptureFrameQueue(handle, frame, registered);
    std::atomic<bool> done{false};
    std::thread events([&] {
        while (!done) callback.onAcquisitionStarted(zelt_gige_api::fromVmb(handle), 500, 1);
    });
    for (std::uint64_t number = 1; number <= 300; ++number) {
        clock->fixed = 1'000'000'000'000 + number * 20'000'000;
        deliver(number, number * 20'000'000);
    }
    done = true;
    events.join();
    EXPECT_THAT(times(), SizeIs(300));
}

TEST_F(FramesByHand, MayComeTogetherWithTheEndEvent) {
    auto& callback = dynamic_cast<zelt_gige_api::IfCameraCallback&>(*plugin->getChannel(0));
    test_support::Latch delivered(1);
    std::thread events([&] {
        delivered.wait();
        for (int i = 0; i < 100; ++i) callback.onAcquisitionEnded({}, 500, 1);
    });
    for (std::uint64_t number = 1; number <= 300; ++number) {
        clock->fixed = 1'000'000'000'000 + number * 20'000'000;
        deliver(number, number * 20'000'000);
        if (number == 1) delivered.count_down();
    }
    events.join();
    const std::size_t atTheEnd = times().size();
    EXPECT_GE(atTheEnd, 1u);
    deliver(301, 301 * 20'000'000ull);
    EXPECT_THAT(times(), SizeIs(atTheEnd));
}

/// A sink that fails as a host's might.
class ThrowingSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t, const void*, std::uint64_t) override {
        throw std::runtime_error("disk full");
    }
};

TEST_F(FramesByHand, SurviveASinkThatThrows) {
    ThrowingSink throwing;
    plugin->setChannelSink(0, &throwing);
    const LogCapture log(UniLogSeverityLevel::Error);
    for (std::uint64_t frame = 1; frame <= 7; ++frame) deliver(frame, frame * 1000);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                Contains("Camera " + kName + " lost frame #7: disk full"));
    plugin->setChannelSink(0, &sink);
    deliver(8, 8000);
    EXPECT_THAT(times(), SizeIs(1));
}

class SinkWithoutAReason final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t, const void*, std::uint64_t) override { throw 42; }
};

TEST_F(FramesByHand, SurviveASinkThatThrowsWithoutAReason) {
    SinkWithoutAReason throwing;
    plugin->setChannelSink(0, &throwing);
    const LogCapture log(UniLogSeverityLevel::Error);
    deliver(7, 7000);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre("Camera " + kName + " lost frame #7"));
    plugin->setChannelSink(0, &sink);
    deliver(8, 8000);
    EXPECT_THAT(times(), SizeIs(1));
}

/// Copies as a real host's sink does, into memory of its own.
class CopyingSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t, const void* data, std::uint64_t size) override {
        std::memcpy(m_copy.data(), data, std::min<std::size_t>(size, m_copy.size()));
        ++count;
    }
    std::size_t count = 0;

  private:
    std::array<char, 4096> m_copy{};
};

TEST_F(FramesByHand, CostNoAllocationWithLoggingOnAtInfo) {
    const LogCapture log(UniLogSeverityLevel::Info);
    CopyingSink copying;
    plugin->setChannelSink(0, &copying);
    constexpr std::uint64_t kFrames = 100'000;
    std::size_t allocations = 0;
    for (std::uint64_t number = 1; number <= kFrames; ++number) {
        clock->fixed = 1'000'000'000'000 + number * 10'000'000;
        allocations += deliver(number, number * 10'000'000);
    }
    plugin->clearChannelSinks();
    EXPECT_EQ(allocations, 0u);
    EXPECT_EQ(copying.count, kFrames);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(AllocationCounterItself, CountsMallocAndNew) {
    const AllocationCounter counter;
    void* volatile raw = std::malloc(10);
    auto* volatile object = new int(3);
    EXPECT_EQ(counter.count(), 2u);
    std::free(raw);
    delete object;
}

}  // namespace
