#pragma once

#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "frame_numbers.h"
#include "frame_ring.h"
#include "recording_report.h"
#include "slope_fit.h"
#include "vendor_probe.h"

namespace host {

/// Middle value; with an even number of values the mean of the two in the middle, towards the smaller. 0 for
/// none.
std::int64_t median(std::vector<std::int64_t> values);

/// Smallest value that at least `percent` of 100 of the values do not exceed. 0 for none.
std::int64_t percentile(std::vector<std::int64_t> values, unsigned percent);

/// What a picture says of itself.
struct StampReading {
    VmbError_t result = VmbErrorNotFound;
    VmbSimFrameStamp stamp{};

    bool hasStamp() const { return result == VmbErrorSuccess || result == VmbErrorIncomplete; }
};

/// Follows the frames of one channel. [one thread]
class RecordingStatistics {
  public:
    /// `stamped`: the pictures carry stamps. `rate`: nominal frames per second, if known; losses are told
    /// from it when there are no stamps. Times that are pulses tell of no time error, but of every pulse.
    RecordingStatistics(bool stamped, std::optional<double> rate, TimeBase timeBase = TimeBase::Nanoseconds)
        : m_stamped(stamped), m_rate(rate), m_time_base(timeBase), m_pulses(rate.value_or(NAN)) {}

    /// A frame that was recorded, and what its picture says.
    void add(const RingFrame& frame, const StampReading& reading);
    /// The first frame behind the recording, which ended before `end`: tells what is missing before it.
    void addEnd(const RingFrame& frame, const StampReading& reading, std::int64_t end);

    std::uint64_t frames() const { return m_frames; }
    /// Frames lost so far for certain; `lostInHost` as counted now. What the host refused behind the last
    /// frame shows in no gap and is added.
    std::uint64_t lost(std::uint64_t lostInHost) const { return m_lost + (lostInHost - m_lost_in_host); }
    /// The channel's report; `lostInHost` as counted now. `start`: of the pulses, where it is known.
    ChannelReport report(std::uint64_t lostInHost, const std::optional<PulseStart>& start = {}) const;

  private:
    std::optional<std::uint64_t> missingBefore(const StampReading& reading);
    void noteLosses(std::uint64_t gap, const RingFrame& frame);
    std::uint64_t gapBefore(std::int64_t time, std::optional<std::uint64_t> missing) const;
    void addTruth(const RingFrame& frame, const VmbSimFrameStamp& stamp);
    void addNumber(std::int64_t time, std::uint64_t gap);
    void addTimes(const RingFrame& frame, const VmbSimFrameStamp& stamp);
    std::uint64_t timeGap(std::int64_t time) const;
    std::optional<TimeError> timeError() const;
    std::optional<double> slopePpm() const;

    bool m_stamped;
    std::optional<double> m_rate;
    TimeBase m_time_base;
    PulseStatistics m_pulses;
    std::uint64_t m_frames = 0;
    std::uint64_t m_lost = 0;
    std::uint64_t m_lost_in_host = 0;
    std::uint64_t m_unclear = 0;  ///< frames lost or their pulses skipped
    std::uint64_t m_lost_behind_end = 0;
    std::uint64_t m_matches = 0;
    FrameNumbers m_numbers;
    std::uint64_t m_unread = 0;  ///< frames without a readable stamp since the last one with it
    bool m_has_number = false;
    std::int64_t m_last_time = -1;
    std::int64_t m_first_time = 0;
    std::int64_t m_first_exposure = 0;
    std::uint64_t m_number = 0;  ///< of the frame, counting those that are missing
    SlopeFit m_slope;
    std::vector<std::int64_t> m_errors;
    std::vector<std::int64_t> m_ways;
    std::vector<std::int64_t> m_delays;
};

}  // namespace host
