/// Judges each frame of an acquisition as it comes.
#pragma once

#include "accuracy_judgement.h"
#include "long_run_fixture.h"
#include "stamp_model.h"

namespace test_support {

/// The last place of a time that was a double once, at least one nanosecond.
std::int64_t resolution(std::int64_t time);

class FrameJudge final : public zelt::IfChannelSink {
  public:
    FrameJudge(const AccuracyCase& conditions, const WaitingHostClock& host)
        : m_case(conditions), m_host(host), m_model(conditions.clock.tickFrequency) {}

    void addSample(std::int64_t time, const void* data, std::uint64_t size) override;
    /// What follows belongs to another acquisition.
    void beginAcquisition() { m_model = StampModel(m_case.clock.tickFrequency); }

    TimeErrors seen;
    TimeErrors expected;  ///< of the model's stamps
    std::uint64_t againstModel = 0;
    std::uint64_t beyondLimit = 0;
    std::uint64_t dropped = 0;  ///< frames whose times ran backwards
    double highestLimit = 0;
    std::int64_t coarsest = 1;  ///< resolution of the stamps

  private:
    /// The time of a frame by the model; it was called back at virtual time `calledBack`.
    std::int64_t modelled(std::uint64_t ticks, std::uint64_t calledBack) {
        return m_model.stamp(ticks, m_host.readingAt(calledBack), m_host.waitAt(calledBack));
    }
    void judgeDropped(const VmbSimFrameStamp& next);
    double limit(const VmbSimFrameStamp& truth) const;

    const AccuracyCase& m_case;
    const WaitingHostClock& m_host;
    StampModel m_model;
    double m_longest_request = 0;
    std::uint64_t m_last_id = 0;
    std::int64_t m_last_time = 0;
};

}  // namespace test_support
