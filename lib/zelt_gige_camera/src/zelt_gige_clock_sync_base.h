/// What all time-stamp generators share.
#pragma once

#include <cstdint>

#include "zelt_gige_camera_api.h"
#include "zelt_gige_rational.h"
#include "zelt_gige_running_fit.h"

namespace zelt_gige_camera {

/// Turns the camera time of frames into host time, for the duration of one acquisition. A frame's time stamp
/// is signed 64-bit in units of the host's time base (fixed rate) or a pulse index (triggered).
///
/// [frame] All operations but isSynchronized and estimate are called by one thread at a time, under the
/// channel's mutex.
class ClockSyncBase {
  public:
    /// `tickFrequency`: the camera clock's ticks per second. `rate`: host time units per second as far as the
    /// generator is concerned.
    ClockSyncBase(Rational tickFrequency, double rate);
    virtual ~ClockSyncBase() = default;
    ClockSyncBase(const ClockSyncBase&) = delete;
    ClockSyncBase& operator=(const ClockSyncBase&) = delete;

    virtual double getRate() const = 0;
    /// Time stamp of a frame, given that the host's clock read `hostTime` (0: not known) when the camera's
    /// read `cameraTime`.
    virtual std::int64_t computeTimestamp(const zelt_gige_api::CameraFrame& frame, std::int64_t cameraTime,
                                          std::int64_t hostTime);
    /// Time stamp of a frame from what earlier synchronization points told.
    virtual std::int64_t timestampFromSync(const zelt_gige_api::CameraFrame& frame) = 0;
    /// Whether a synchronization point should be taken with this frame.
    virtual bool needsSyncPoint(const zelt_gige_api::CameraFrame& frame) const;
    /// The camera's clock read `cameraTime` when the host's read `hostTime`; 0 adds nothing. `quality` 0 is
    /// best, from +-0.99 on a point has the least weight.
    virtual void addSyncPoint(std::int64_t cameraTime, std::int64_t hostTime, double quality);

    /// Camera time and frame id of the camera's acquisition-start event; both 0 until it came.
    void setReference(std::uint64_t timestamp, std::uint64_t frameid);
    Rational getTickFrequency() const { return m_tick_frequency; }
    std::uint64_t getStartFrameId() const { return m_start_frame_id; }
    bool isSynchronized() const { return m_fit.isSynchronized(); }
    /// Host time at a camera time.
    double estimate(std::uint64_t cameraTime) const {
        return m_fit.estimate(static_cast<std::int64_t>(cameraTime));
    }
    /// Camera time of the acquisition-start event.
    std::uint64_t getReferenceTimestamp() const { return m_reference_timestamp; }

  protected:
    static constexpr std::uint32_t kHistoryLength = 20;

    const Rational m_tick_frequency;
    const double m_rate;

  private:
    std::uint64_t m_reference_timestamp = 0;
    std::uint64_t m_start_frame_id = 0;
    RunningFit m_fit{kHistoryLength};
};

/// Truncates toward zero. A value that is not finite or beyond 64 bits gives the most negative integer, so
/// that its frame counts as running backwards.
std::int64_t truncateToTimestamp(double value);

/// a - b in wrapping 64-bit arithmetic, read as signed.
inline std::int64_t signedDifference(std::uint64_t a, std::uint64_t b) {
    return static_cast<std::int64_t>(a - b);
}

}  // namespace zelt_gige_camera
