/// Time stamps of a camera that the host's trigger output exposes.
#pragma once

#include "interference.h"
#include "zelt_gige_clock_sync_base.h"

namespace zelt_gige_camera {

/// A frame's time stamp is the number of its trigger pulse since the acquisition-start event. It is counted
/// by frame ids; where the camera's clock tells that pulses passed without a frame, or that a frame came
/// sooner than a pulse could, the count is corrected and the log told. Ids that are missing while the clock
/// agrees belong to frames lost on the way, and keep their pulses.
class alignas(platform::kInterferenceSize) TriggeredClockSync final : public ClockSyncBase {
  public:
    /// `auxClockFrequency`: pulses per second. `rate` has no effect on this generator.
    TriggeredClockSync(Rational tickFrequency, double rate, Rational auxClockFrequency);

    /// Pulses per second.
    double getRate() const override { return boost::rational_cast<double>(m_aux_clock_frequency); }
    /// Asserts that camera time and frame id grow. Throws boost::bad_rational when the tick frequency is 0,
    /// from the second frame on.
    std::int64_t timestampFromSync(const zelt_gige_api::CameraFrame& frame) override;

  private:
    void checkPlausibility(const zelt_gige_api::CameraFrame& frame) const;
    void correctOffset(const zelt_gige_api::CameraFrame& frame);

    /// Camera ticks between two frames, from least to most; none when most is less.
    struct TickRange {
        std::int64_t least = 1;
        std::int64_t most = 0;
    };
    static TickRange ticksOfOnePulse(const Rational& tickFrequency, const Rational& auxClockFrequency);

    const Rational m_aux_clock_frequency;
    /// Ticks that are surely nearer to one period than to none or two.
    const TickRange m_one_pulse;
    // Both -1 before the first frame.
    std::int64_t m_last_frame_timestamp = -1;
    std::int64_t m_last_frame_id = -1;
    // Signed; kept modulo 2^64, as it is only added.
    std::uint64_t m_frame_id_offset = 0;
    RunningFit m_frame_id_fit{kHistoryLength};
};

}  // namespace zelt_gige_camera
