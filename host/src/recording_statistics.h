#pragma once

#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "frame_ring.h"
#include "recording_report.h"
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

    std::uint64_t frames() const { return m_frames; }
    /// Frames missing so far; `lostInHost` as counted now. What the host refused behind the last frame shows
    /// in no gap and is added.
    std::uint64_t lost(std::uint64_t lostInHost) const { return m_lost + (lostInHost - m_lost_in_host); }
    /// The channel's report; `lostInHost` as counted now.
    ChannelReport report(std::uint64_t lostInHost) const;

  private:
    std::uint64_t addStamp(const RingFrame& frame, const StampReading& reading);
    void addTimes(const RingFrame& frame, const VmbSimFrameStamp& stamp);
    std::uint64_t timeGap(std::int64_t time) const;
    std::optional<TimeError> timeError() const;

    bool m_stamped;
    std::optional<double> m_rate;
    TimeBase m_time_base;
    PulseStatistics m_pulses;
    std::uint64_t m_frames = 0;
    std::uint64_t m_lost = 0;
    std::uint64_t m_lost_in_host = 0;
    std::uint64_t m_doubled = 0;
    std::uint64_t m_matches = 0;
    std::optional<std::uint64_t> m_last_id;
    std::int64_t m_last_time = 0;
    std::vector<std::int64_t> m_errors;
    std::vector<std::int64_t> m_ways;
    std::vector<std::int64_t> m_delays;
};

}  // namespace host
