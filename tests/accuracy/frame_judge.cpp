// How far may a stamp be from exposure plus way, whatever numbers were drawn? A point's host time is off by
// what its frame was called back late and by what its way was longer for packets that were requested again;
// by the jitter of its frame's stamp, and a tick; by the part of a microsecond that its waiting was rounded
// down by; and by the camera's pace during the waiting. The line's value is the sum of the points' host
// times, each times a factor that follows from the camera times alone, so that the errors count by the
// factors' magnitudes. A clock that swings bends the true line by no more than its drift times its angular
// frequency. The frame's own stamp jitters once more.
#include "frame_judge.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace test_support {

std::int64_t resolution(std::int64_t time) {
    const auto value = static_cast<double>(time);
    return std::max<std::int64_t>(1, std::llround(std::nextafter(value, HUGE_VAL) - value));
}

void FrameJudge::addSample(std::int64_t time, const void* data, std::uint64_t size) {
    const VmbSimFrameStamp truth = readFrame(time, data, size).truth;
    if (m_case.incident == Incident::ClockReset) judgeDropped(truth);
    const std::int64_t stamp = modelled(truth.cameraTicks, VmbSimTime());
    const auto exposed = static_cast<std::int64_t>(m_host.origin() + truth.exposureStartNs);
    const auto way = static_cast<std::int64_t>(truth.wayNs);
    if (seen.values.empty()) seen.way = expected.way = way;
    seen.values.push_back(time - exposed);
    expected.values.push_back(stamp - exposed);
    coarsest = std::max(coarsest, resolution(stamp));
    if (std::abs(time - stamp) > resolution(stamp)) ++againstModel;
    m_longest_request = std::max(m_longest_request, std::fabs(static_cast<double>(way - seen.way)));
    const double most = limit(truth) + static_cast<double>(resolution(stamp));
    highestLimit = std::max(highestLimit, most);
    const double ofLine = m_model.hasLine() ? static_cast<double>(way - seen.way) : 0.0;
    if (std::fabs(static_cast<double>(time - exposed - way) + ofLine) > most) ++beyondLimit;
    m_last_id = truth.frameId;
    m_last_time = time;
}

void FrameJudge::judgeDropped(const VmbSimFrameStamp& next) {
    // Nobody but the plug-in saw them, but under a steady clock all follow from the next one.
    constexpr std::uint64_t kPeriod = 50'000'000;
    for (std::uint64_t id = m_last_id + 1; m_last_id != 0 && id < next.frameId; ++id) {
        const std::uint64_t before = (next.frameId - id) * kPeriod;
        if (modelled(next.cameraTicks - before, VmbSimTime() - before) >= m_last_time) ++againstModel;
        ++dropped;
    }
}

double FrameJudge::limit(const VmbSimFrameStamp& truth) const {
    constexpr double kRoundedDown = 1'000;
    constexpr double kPart = 1e-9;
    const VmbSimOscillator& clock = m_case.clock;
    const double tick = std::ceil(1e9 / static_cast<double>(clock.tickFrequency));
    const double late = static_cast<double>(m_case.link.lateNs);
    const auto wait = static_cast<double>(m_host.longest());
    if (!m_model.hasLine()) {
        // The waiting is taken off in ticks, each of which counts as a nanosecond.
        const double perTick = static_cast<double>(clock.tickFrequency) / 1e9;
        return late + kRoundedDown + tick + wait * (1 - perTick);
    }
    const double pace = (std::abs(clock.errorPpb) + clock.driftPpb) * kPart;
    const double own = clock.jitterNs + tick;
    const double ofPoint = late + m_longest_request + own + kRoundedDown + tick + pace * wait;
    const double bend = clock.driftPpb * 2 * std::numbers::pi / clock.driftPeriodS;
    const auto [onErrors, onBend] = m_model.line().dependence(truth.cameraTicks);
    return own + onErrors * ofPoint + bend / 2 * onBend;
}

}  // namespace test_support
