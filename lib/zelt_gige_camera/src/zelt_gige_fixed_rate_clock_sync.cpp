#include "zelt_gige_fixed_rate_clock_sync.h"

#include <cstdlib>

#include "assertion.h"

namespace zelt_gige_camera {
namespace {

std::int64_t roundToNearest(const Rational& value) {
    const std::int64_t whole = value.numerator() / value.denominator();
    const std::int64_t rest = std::abs(value.numerator() % value.denominator());
    const bool nearerToNext = rest >= value.denominator() - rest;
    if (!nearerToNext) return whole;
    return value.numerator() < 0 ? whole - 1 : whole + 1;
}

}  // namespace

FixedRateClockSync::FixedRateClockSync(Rational tickFrequency, double rate)
    : ClockSyncBase(tickFrequency, rate), m_resync_interval(roundToNearest(tickFrequency)) {}

std::int64_t FixedRateClockSync::computeTimestamp(const zelt_gige_api::CameraFrame& frame,
                                                  std::int64_t cameraTime, std::int64_t hostTime) {
    ZELT_ASSERT_AS(cameraTime >= static_cast<std::int64_t>(frame.timestamp),
                   "camera_time >= frame.timestamp");
    if (isSynchronized()) return timestampFromSync(frame);
    const double unitsPerTick = m_rate / boost::rational_cast<double>(m_tick_frequency);
    if (hostTime != 0) {
        const auto age = signedDifference(static_cast<std::uint64_t>(cameraTime), frame.timestamp);
        return truncateToTimestamp(static_cast<double>(static_cast<std::uint64_t>(hostTime)) -
                                   static_cast<double>(age) * unitsPerTick);
    }
    const auto sinceStart = signedDifference(frame.timestamp, getReferenceTimestamp());
    return truncateToTimestamp(static_cast<double>(sinceStart) * unitsPerTick);
}

std::int64_t FixedRateClockSync::timestampFromSync(const zelt_gige_api::CameraFrame& frame) {
    if (isSynchronized()) return truncateToTimestamp(estimate(frame.timestamp));
    ZELT_ASSERT_AS(false, "isSynchronized()",
                   "Cannot compute timestamp without reference before synchronization");
    return 0;
}

bool FixedRateClockSync::needsSyncPoint(const zelt_gige_api::CameraFrame& frame) const {
    return !isSynchronized() || signedDifference(frame.timestamp, m_last_sync_timestamp) > m_resync_interval;
}

void FixedRateClockSync::addSyncPoint(std::int64_t cameraTime, std::int64_t hostTime, double quality) {
    ClockSyncBase::addSyncPoint(cameraTime, hostTime, quality);
    m_last_sync_timestamp = static_cast<std::uint64_t>(cameraTime);
}

}  // namespace zelt_gige_camera
