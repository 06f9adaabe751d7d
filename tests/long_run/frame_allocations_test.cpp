// What the path of a frame allocates: nothing, however irregular the frame, unless a log takes a record of
// it.
#include <algorithm>
#include <vector>

#include "allocation_counter.h"
#include "assertion_capture.h"
#include "long_run_fixture.h"

namespace {

using test_support::AllocationCounter;
using test_support::AssertionCapture;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kReceivedFrames;
using test_support::kSentFrames;
using test_support::LogCapture;
using test_support::LongRun;
using ::testing::Contains;
using ::testing::Each;
using ::testing::IsEmpty;

constexpr std::uint64_t kFrames = 50'000;
constexpr std::uint64_t kCycle = 200;

class CountingSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t, const void*, std::uint64_t) override { ++count; }
    std::uint64_t count = 0;
};

/// One cycle of frames has one of each irregularity.
struct Arrival {
    std::uint64_t frames = 1;  ///< numbers since the frame before
    std::int64_t milliseconds = 10;
};
Arrival arrival(std::uint64_t number, bool triggered) {
    switch (number % kCycle) {
        case 50:
            return {2, 20};  // the frame before got lost
        case 100:
            return {1, 20};  // a missing pulse
        case 150:
            return {1, triggered ? 4 : -5};  // a second frame of a pulse, or a time that runs backwards
        case 151:
            return {1, triggered ? 6 : 25};
        default:
            return {};
    }
}

/// Deliveries of the same frames, by hand.
class FrameAllocations : public LongRun, public ::testing::WithParamInterface<bool> {
  protected:
    FrameAllocations() {
        if (isTriggered) useTrigger(100);
        VmbSimHoldSensor(kMonochromeCamera, true);
        plugin->setChannelSink(0, &m_sink);
        plugin->setChannelSink(kSentFrames, &m_counters);
        plugin->setChannelSink(kReceivedFrames, &m_counters);
    }

    /// What each frame's callback allocates.
    std::vector<std::size_t> allocations() {
        std::vector<std::size_t> found;
        begin();
        forEachFrame([&](std::size_t allocated) { found.push_back(allocated); });
        return found;
    }
    /// How many records each frame offers to the log.
    std::vector<std::size_t> records() {
        begin();
        LogCapture log(UniLogSeverityLevel::Detail);
        std::vector<std::size_t> found;
        forEachFrame([&](std::size_t) {
            found.push_back(log.lines().size());
            if (found.back() > 0) log.clear();
        });
        return found;
    }

    const bool isTriggered = GetParam();

  private:
    /// Starts a run; from here on only frames have records.
    void begin() {
        start();
        advance(kMillisecond);
    }
    /// Delivers all of them to a run that began, and stops it.
    template <typename Delivered>
    void forEachFrame(const Delivered& delivered) {
        const AssertionCapture assertions;
        const std::uint64_t before = m_sink.count;
        std::uint64_t id = 0;
        std::uint64_t ticks = 1'000'000'000;
        for (std::uint64_t number = 1; number <= kFrames; ++number) {
            const Arrival next = arrival(number, isTriggered);
            id += next.frames;
            ticks += static_cast<std::uint64_t>(next.milliseconds * std::int64_t{kMillisecond});
            clock->fixed = 1'000'000'000'000 + ticks;
            delivered(deliver(id, ticks));
        }
        stop();
        EXPECT_THAT(assertions.failures(), IsEmpty());
        const std::uint64_t backwards = isTriggered ? 0 : kFrames / kCycle;
        EXPECT_EQ(m_sink.count - before, kFrames - backwards);
        EXPECT_EQ(m_counters.count, 2 * m_sink.count);
    }
    /// Allocations of one call of the callback that the plug-in registered.
    static std::size_t deliver(std::uint64_t id, std::uint64_t ticks) {
        VmbHandle_t handle = nullptr;
        VmbFrame_t* frame = nullptr;
        VmbFrameCallback callback = nullptr;
        EXPECT_EQ(VmbSimTakeQueuedFrame(kMonochromeCamera, &handle, &frame, &callback), VmbErrorSuccess);
        frame->receiveStatus = VmbFrameStatusComplete;
        frame->receiveFlags = VmbFrameFlagsFrameID | VmbFrameFlagsTimestamp;
        frame->frameID = id;
        frame->timestamp = ticks;
        frame->imageSize = 128;
        const AllocationCounter counter;
        callback(handle, frame);
        return counter.count();
    }

    CountingSink m_sink;
    CountingSink m_counters;
};

TEST_P(FrameAllocations, ThereAreNoneWithoutALog) {
    EXPECT_THAT(allocations(), Each(0u));
}

TEST_P(FrameAllocations, ARecordThatTheLogRefusesCostsOneAndNothingElseDoes) {
    const std::vector<std::size_t> offered = records();
    EXPECT_THAT(offered, Contains(1u));
    EXPECT_GT(std::count(offered.begin(), offered.end(), 0u), kFrames * 9 / 10);
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_EQ(allocations(), offered);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_P(FrameAllocations, AFrameWithoutARecordCostsNoneWithALogFromInfoOn) {
    const std::vector<std::size_t> offered = records();
    const LogCapture log(UniLogSeverityLevel::Info);
    const std::vector<std::size_t> allocated = allocations();
    ASSERT_EQ(allocated.size(), offered.size());
    std::size_t plain = 0;
    for (std::size_t frame = 0; frame < offered.size(); ++frame) {
        if (offered[frame] == 0) plain += allocated[frame];
    }
    EXPECT_EQ(plain, 0u);
    // A frame at the wrong time is warned of, on a trigger.
    EXPECT_EQ(!log.lines().empty(), isTriggered);
}

INSTANTIATE_TEST_SUITE_P(InEachMode, FrameAllocations, ::testing::Bool(),
                         [](const auto& mode) { return mode.param ? "Triggered" : "FixedRate"; });

}  // namespace
