#include "trigger_output.h"

#include <gmock/gmock.h>

#include "host_failure.h"
#include "steady_master_clock.h"

using host::Fraction;
using host::TriggerOutput;

namespace {

class FakeLine : public host::IfTriggerLine {
  public:
    VmbError_t drive(const VmbSimRhythm& rhythm) const override {
        m_rhythms.push_back(rhythm);
        return m_answer;
    }
    void silence() const override { ++m_silences; }

    VmbError_t m_answer = VmbErrorSuccess;
    mutable std::vector<VmbSimRhythm> m_rhythms;
    mutable int m_silences = 0;
};

TEST(TriggerOutput, DrivesTheLineInTheRhythmAskedForUntilItIsStopped) {
    const FakeLine line;
    {
        TriggerOutput output(&line, Fraction{30000, 1001});
        EXPECT_TRUE(line.m_rhythms.empty());
        output.start();
        ASSERT_EQ(line.m_rhythms.size(), 1u);
        EXPECT_EQ(line.m_rhythms[0].numerator, 30000u);
        EXPECT_EQ(line.m_rhythms[0].denominator, 1001u);
        EXPECT_EQ(line.m_rhythms[0].phaseNs, 33'366'667u);  // 10^9 * 1001 / 30000 = 33366666.67
        EXPECT_EQ(line.m_rhythms[0].widthNs, 6'673'333u);   // a fifth, cut to nanoseconds
        EXPECT_EQ(line.m_rhythms[0].jitterNs, 0u);
        output.stop();
        EXPECT_EQ(line.m_silences, 1);
    }
    EXPECT_EQ(line.m_silences, 1);
}

TEST(TriggerOutput, KnowsWhenItsFirstPulseCame) {
    const FakeLine line;
    TriggerOutput output(&line, Fraction{50, 1});
    EXPECT_FALSE(output.pulseStart());
    const std::int64_t before = host::steadyNanoseconds();
    output.start();
    const std::int64_t after = host::steadyNanoseconds();
    ASSERT_TRUE(output.pulseStart());
    EXPECT_GE(output.pulseStart()->earliestNs, before + 20'000'000);
    EXPECT_GE(output.pulseStart()->latestNs, output.pulseStart()->earliestNs);
    EXPECT_LE(output.pulseStart()->latestNs, after + 20'000'000);
}

TEST(TriggerOutput, IsStoppedAtItsEnd) {
    const FakeLine line;
    TriggerOutput(&line, Fraction{1000, 1}).start();
    EXPECT_EQ(line.m_silences, 1);
}

TEST(TriggerOutput, LeavesTheLineAloneWithoutAFrequency) {
    const FakeLine line;
    TriggerOutput none(&line, std::nullopt);
    none.start();
    EXPECT_FALSE(none.pulseStart());
    EXPECT_TRUE(line.m_rhythms.empty());
    EXPECT_EQ(line.m_silences, 0);
    TriggerOutput(nullptr, Fraction{1, 1}).start();
}

TEST(TriggerOutput, SaysThatTheLineCannotPulseSoFast) {
    FakeLine line;
    line.m_answer = VmbErrorInvalidValue;
    TriggerOutput output(&line, Fraction{2'000'000, 1});
    EXPECT_THROW(output.start(), host::HostFailure);
    EXPECT_EQ(line.m_silences, 0);
}

}  // namespace
