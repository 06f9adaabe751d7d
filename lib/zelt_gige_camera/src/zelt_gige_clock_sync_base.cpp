#include "zelt_gige_clock_sync_base.h"

#include <limits>

namespace zelt_gige_camera {

ClockSyncBase::ClockSyncBase(Rational tickFrequency, double rate)
    : m_tick_frequency(tickFrequency), m_rate(rate) {}

std::int64_t ClockSyncBase::computeTimestamp(const zelt_gige_api::CameraFrame& frame, std::int64_t,
                                             std::int64_t) {
    return timestampFromSync(frame);
}

bool ClockSyncBase::needsSyncPoint(const zelt_gige_api::CameraFrame&) const {
    return false;
}

void ClockSyncBase::addSyncPoint(std::int64_t cameraTime, std::int64_t hostTime, double quality) {
    if (hostTime != 0) m_fit.add(cameraTime, static_cast<std::uint64_t>(hostTime), quality);
}

void ClockSyncBase::setReference(std::uint64_t timestamp, std::uint64_t frameid) {
    m_reference_timestamp = timestamp;
    m_start_frame_id = frameid;
}

std::int64_t truncateToTimestamp(double value) {
    constexpr double kTwoToThe63rd = 9223372036854775808.0;
    // Written so that NaN fails it.
    const bool fits = value >= -kTwoToThe63rd && value < kTwoToThe63rd;
    return fits ? static_cast<std::int64_t>(value) : std::numeric_limits<std::int64_t>::min();
}

}  // namespace zelt_gige_camera
