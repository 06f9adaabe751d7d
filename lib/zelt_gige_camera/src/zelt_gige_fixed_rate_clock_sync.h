/// Time stamps of a free-running camera.
#pragma once

#include "interference.h"
#include "zelt_gige_clock_sync_base.h"

namespace zelt_gige_camera {

/// Before the 20th synchronization point a frame is dated back from the host time of its point by its age on
/// the camera clock, or counted from the acquisition-start event; from then on the fit tells its time, and
/// one point per second of camera time keeps the fit fresh.
class alignas(platform::kInterferenceSize) FixedRateClockSync final : public ClockSyncBase {
  public:
    /// As the channel uses it, `rate` is the tick frequency as a double; then a tick counts as one unit of
    /// host time until the fit takes over.
    FixedRateClockSync(Rational tickFrequency, double rate);

    double getRate() const override { return m_rate; }
    std::int64_t computeTimestamp(const zelt_gige_api::CameraFrame& frame, std::int64_t cameraTime,
                                  std::int64_t hostTime) override;
    std::int64_t timestampFromSync(const zelt_gige_api::CameraFrame& frame) override;
    bool needsSyncPoint(const zelt_gige_api::CameraFrame& frame) const override;
    void addSyncPoint(std::int64_t cameraTime, std::int64_t hostTime, double quality) override;

    /// Camera ticks in one second, rounded to the nearest integer, halves away from zero.
    std::int64_t getResyncInterval() const { return m_resync_interval; }

  private:
    std::uint64_t m_last_sync_timestamp = 0;
    const std::int64_t m_resync_interval;
};

}  // namespace zelt_gige_camera
