#include "zelt_gige_triggered_clock_sync.h"

#include <cmath>
#include <limits>
#include <numeric>
#include <optional>

#include "assertion.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();

bool fits(std::uint64_t factor, std::uint64_t other) {
    return factor == 0 || other <= kMost / factor;
}

/// Whether n1/d1 * n2/d2 stays within 64 bits when common factors are cancelled crosswise first, as the
/// fraction library does. 2^63 is refused also where it would cancel: the library cannot negate it.
bool productFits(std::uint64_t n1, std::uint64_t d1, std::uint64_t n2, std::uint64_t d2) {
    if (n1 > kMost || n2 > kMost || d2 > kMost) return false;
    const std::uint64_t first = std::gcd(n1, d2);
    const std::uint64_t second = std::gcd(n2, d1);
    return fits(n1 / first, n2 / second) && fits(d1 / second, d2 / first);
}

std::uint64_t magnitudeOfNumerator(const Rational& value) {
    return magnitude(value.numerator());
}

std::uint64_t denominator(const Rational& value) {
    return static_cast<std::uint64_t>(value.denominator());
}

/// Pulse periods in `ticks` of the camera's clock; empty when the fraction does not fit 64 bits. The tick
/// frequency is not 0.
std::optional<Rational> exactPeriods(std::int64_t ticks, const Rational& tickFrequency,
                                     const Rational& auxClockFrequency) {
    if (!productFits(magnitude(ticks), 1, denominator(tickFrequency), magnitudeOfNumerator(tickFrequency))) {
        return {};
    }
    const Rational seconds = Rational(ticks) / tickFrequency;
    if (!productFits(magnitudeOfNumerator(seconds), denominator(seconds),
                     magnitudeOfNumerator(auxClockFrequency), denominator(auxClockFrequency))) {
        return {};
    }
    return seconds * auxClockFrequency;
}

/// Pulse periods in `ticks`, less the one that a frame after its predecessor takes: exact before it is
/// rounded to a double, in doubles throughout where the fraction is too large.
double skippedPulses(std::int64_t ticks, const Rational& tickFrequency, const Rational& auxClockFrequency) {
    if (tickFrequency.numerator() == 0) throw boost::bad_rational();
    const std::optional<Rational> periods = exactPeriods(ticks, tickFrequency, auxClockFrequency);
    if (!periods) {
        return static_cast<double>(ticks) / boost::rational_cast<double>(tickFrequency) *
                   boost::rational_cast<double>(auxClockFrequency) -
               1.0;
    }
    const std::int64_t num = periods->numerator();
    const std::int64_t den = periods->denominator();
    const double difference =
        num >= 0 ? static_cast<double>(num - den) : static_cast<double>(num) - static_cast<double>(den);
    return difference / static_cast<double>(den);
}

}  // namespace

TriggeredClockSync::TriggeredClockSync(Rational tickFrequency, double rate, Rational auxClockFrequency)
    : ClockSyncBase(tickFrequency, rate),
      m_aux_clock_frequency(auxClockFrequency),
      m_one_pulse(ticksOfOnePulse(tickFrequency, auxClockFrequency)) {}

TriggeredClockSync::TickRange TriggeredClockSync::ticksOfOnePulse(const Rational& tickFrequency,
                                                                  const Rational& auxClockFrequency) {
    const double period =
        boost::rational_cast<double>(tickFrequency) / boost::rational_cast<double>(auxClockFrequency);
    constexpr double kLongest = 1e18;
    if (!(period > 0.0 && period < kLongest)) return {};
    // Far more than what doubles are off by; what lies between is worked out exactly.
    constexpr double kMargin = 1e-9;
    return {static_cast<std::int64_t>(std::ceil(0.5 * period * (1.0 + kMargin))),
            static_cast<std::int64_t>(std::floor(1.5 * period * (1.0 - kMargin)))};
}

std::int64_t TriggeredClockSync::timestampFromSync(const zelt_gige_api::CameraFrame& frame) {
    checkPlausibility(frame);
    m_frame_id_fit.add(static_cast<std::int64_t>(frame.timestamp), frame.frameid, 0.0);
    if (m_last_frame_timestamp >= 0) correctOffset(frame);
    m_last_frame_timestamp = static_cast<std::int64_t>(frame.timestamp);
    m_last_frame_id = static_cast<std::int64_t>(frame.frameid);
    return static_cast<std::int64_t>(m_frame_id_offset - getStartFrameId() + frame.frameid);
}

void TriggeredClockSync::checkPlausibility(const zelt_gige_api::CameraFrame& frame) const {
    if (!m_frame_id_fit.isSynchronized()) return;
    const double expected = m_frame_id_fit.estimate(static_cast<std::int64_t>(frame.timestamp));
    // As doubles: an id that no double expresses is not implausible, and an estimate may be not finite.
    if (std::round(expected) != static_cast<double>(frame.frameid)) {
        GIGE_LOG(Warning) << "Frame #" << frame.frameid << " was expected to be " << expected;
    }
}

void TriggeredClockSync::correctOffset(const zelt_gige_api::CameraFrame& frame) {
    ZELT_ASSERT_AS(m_last_frame_timestamp < static_cast<std::int64_t>(frame.timestamp),
                   "m_last_frame_timestamp < frame.timestamp");
    ZELT_ASSERT_AS(m_last_frame_id < static_cast<std::int64_t>(frame.frameid),
                   "m_last_frame_id < frame.frameid");
    const std::int64_t ticks =
        signedDifference(frame.timestamp, static_cast<std::uint64_t>(m_last_frame_timestamp));
    const std::int64_t dropped =
        signedDifference(frame.frameid, static_cast<std::uint64_t>(m_last_frame_id) + 1);
    // No pulse without a frame: nothing to correct, and no need of fractions.
    if (dropped >= 0 && ticks >= m_one_pulse.least && ticks <= m_one_pulse.most) return;
    const double skipped = skippedPulses(ticks, m_tick_frequency, m_aux_clock_frequency);
    const std::int64_t wholeSkipped = truncateToTimestamp(std::round(skipped));
    // Logged before corrected: when a log fails, the next frame meets the same gap again.
    if (wholeSkipped > dropped) {
        GIGE_LOG(Detail) << "Detected " << skipped << " skipped and " << dropped << " dropped frames at #"
                         << frame.frameid;
        m_frame_id_offset += static_cast<std::uint64_t>(wholeSkipped) - static_cast<std::uint64_t>(dropped);
    } else if (wholeSkipped < 0) {
        ZELT_ASSERT_AS(dropped == 0, "dropped_frameids == 0", "dropped_frameids != 0 (%lld != 0)",
                       static_cast<long long>(dropped));
        GIGE_LOG(Detail) << "Detected " << -skipped << " multi-triggered frames at #" << frame.frameid;
        m_frame_id_offset += static_cast<std::uint64_t>(wholeSkipped);
    }
}

}  // namespace zelt_gige_camera
