#include "recording_statistics.h"

#include <algorithm>
#include <cmath>

namespace host {

std::int64_t median(std::vector<std::int64_t> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1) return *middle;
    const std::int64_t below = *std::max_element(values.begin(), middle);
    return below + (*middle - below) / 2;
}

std::int64_t percentile(std::vector<std::int64_t> values, unsigned percent) {
    if (values.empty()) return 0;
    const std::size_t rank = (values.size() * percent + 99) / 100;
    const auto place = values.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(rank, 1) - 1);
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

void RecordingStatistics::add(const RingFrame& frame, const StampReading& reading) {
    const std::uint64_t gap = m_stamped ? addStamp(frame, reading) : timeGap(frame.time);
    // What the host refused is part of the gap, unless no gap can be told.
    m_lost += std::max(gap, frame.lostBefore - m_lost_in_host);
    if (m_time_base == TimeBase::Pulses) {
        m_pulses.add(frame.time, reading.hasStamp() ? std::optional(reading.stamp.frameId) : std::nullopt);
        if (reading.hasStamp()) m_pulses.addTruth(reading.stamp.exposureStartNs);
    }
    ++m_frames;
    m_last_time = frame.time;
    m_lost_in_host = frame.lostBefore;
}

std::uint64_t RecordingStatistics::addStamp(const RingFrame& frame, const StampReading& reading) {
    if (reading.result == VmbErrorSuccess) ++m_matches;
    if (!reading.hasStamp()) return 0;
    const VmbSimFrameStamp& stamp = reading.stamp;
    if (m_time_base == TimeBase::Nanoseconds) addTimes(frame, stamp);
    if (m_last_id && stamp.frameId <= *m_last_id) {
        ++m_doubled;
        return 0;
    }
    const std::uint64_t gap = m_last_id ? stamp.frameId - *m_last_id - 1 : 0;
    m_last_id = stamp.frameId;
    return gap;
}

void RecordingStatistics::addTimes(const RingFrame& frame, const VmbSimFrameStamp& stamp) {
    const auto exposure = static_cast<std::int64_t>(stamp.exposureStartNs);
    const auto way = static_cast<std::int64_t>(stamp.wayNs);
    m_errors.push_back(frame.time - exposure);
    m_ways.push_back(way);
    m_delays.push_back(frame.arrival - exposure - way);
}

std::uint64_t RecordingStatistics::timeGap(std::int64_t time) const {
    if (m_time_base == TimeBase::Pulses) {
        const bool isGap = m_frames != 0 && time > m_last_time + 1;
        return isGap ? static_cast<std::uint64_t>(time - m_last_time) - 1 : 0;
    }
    if (!m_rate || m_frames == 0) return 0;
    const double periods = static_cast<double>(time - m_last_time) * *m_rate / 1e9;
    return periods > 1.5 ? static_cast<std::uint64_t>(std::llround(periods)) - 1 : 0;
}

std::optional<TimeError> RecordingStatistics::timeError() const {
    if (m_errors.empty()) return std::nullopt;
    TimeError error;
    error.constantNs = median(m_errors);
    error.wayNs = median(m_ways);
    error.delayP99Ns = percentile(m_delays, 99);
    std::vector<std::int64_t> distances;
    distances.reserve(m_errors.size());
    for (const std::int64_t value : m_errors) distances.push_back(std::abs(value - error.constantNs));
    error.spreadMaxNs = *std::max_element(distances.begin(), distances.end());
    error.spreadP99Ns = percentile(std::move(distances), 99);
    return error;
}

ChannelReport RecordingStatistics::report(std::uint64_t lostInHost) const {
    ChannelReport report;
    report.frames = m_frames;
    report.lost = lost(lostInHost);
    report.lostInHost = lostInHost;
    report.doubled = m_doubled;
    report.stamped = m_stamped;
    report.matches = m_matches;
    report.mismatches = m_stamped ? m_frames - m_matches : 0;
    if (m_stamped) report.timeError = timeError();
    if (m_time_base == TimeBase::Pulses) report.pulses = m_pulses.report();
    return report;
}

}  // namespace host
