// The same with external trigger: a stamp is the number of a pulse, and a host that knows when pulse 0 rose
// knows when each of them was due. What remains is how far the pulses themselves are off, and the second
// frame of a doubled pulse, which comes when the line rises again.
#include <cstdio>

#include "accuracy_judgement.h"
#include "disturbed_pulses.h"

namespace {

using test_support::AccuracyBounds;
using test_support::AssertionCapture;
using test_support::DisturbedPulses;
using test_support::judge;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kTriggeredCase;
using test_support::LongRun;
using test_support::measured;
using test_support::readFrame;
using test_support::TimeErrors;
using test_support::triggeredBounds;
using test_support::Trouble;
using ::testing::IsEmpty;

constexpr auto kPulsePeriod = static_cast<std::int64_t>(DisturbedPulses::kPeriod);

class PulseJudge final : public zelt::IfChannelSink {
  public:
    PulseJudge(const DisturbedPulses& pulses, std::uint64_t firstPulse)
        : m_pulses(pulses), m_first(static_cast<std::int64_t>(firstPulse)) {}

    void addSample(std::int64_t time, const void* data, std::uint64_t size) override {
        const auto exposed = static_cast<std::int64_t>(readFrame(time, data, size).truth.exposureStartNs);
        const auto pulse = static_cast<std::int64_t>(m_pulses.pulseOf(static_cast<std::uint64_t>(exposed)));
        seen.values.push_back(m_first + time * kPulsePeriod - exposed);
        expected.values.push_back(m_first + pulse * kPulsePeriod - exposed);
    }

    TimeErrors seen;
    TimeErrors expected;  ///< of the pulses that exposed the frames

  private:
    const DisturbedPulses& m_pulses;
    const std::int64_t m_first;
};

class TriggeredAccuracy : public LongRun {};

TEST_F(TriggeredAccuracy, IsThatOfThePulses) {
    useTrigger(100);
    const AssertionCapture assertions;
    VmbSimSeed(20'261'122);
    startWith({1'000'000'000, 0, 12'000, 5'000, 120, 2'000});
    DisturbedPulses pulses(kMonochromeCamera, 7);
    PulseJudge frames(pulses, VmbSimTime() + DisturbedPulses::kPeriod / 2);
    plugin->setChannelSink(0, &frames);
    pulses.run(50, /*ambiguous=*/false);
    stop();
    plugin->clearChannelSinks();
    judge(kTriggeredCase, measured(frames.seen, 0), measured(frames.expected, 0), triggeredBounds());
    EXPECT_EQ(frames.seen.values, frames.expected.values);
    EXPECT_EQ(frames.seen.values.size(),
              pulses.pulses() + pulses.doubled - pulses.missing - pulses.lost - pulses.broken);
    for (const Trouble trouble : {Trouble::Missing, Trouble::Doubled, Trouble::Lost, Trouble::Broken}) {
        EXPECT_GT(pulses.count(trouble), 0u);
    }
    // Pulses jitter by 0.1 ms; a doubled one comes again twice its width later.
    EXPECT_LE(frames.seen.spread(990), static_cast<std::int64_t>(2 * DisturbedPulses::kJitter));
    EXPECT_LE(frames.seen.spread(1000),
              static_cast<std::int64_t>(2 * DisturbedPulses::kWidth + 2 * DisturbedPulses::kJitter));
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

}  // namespace
