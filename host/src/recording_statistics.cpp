#include "recording_statistics.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

/// Of the frames missing between two times, taken as evenly spaced, those before the end.
std::uint64_t withinRecording(std::uint64_t gap, std::int64_t last, std::int64_t next, std::int64_t end) {
    if (gap == 0 || next <= end) return gap;
    const double places =
        static_cast<double>(end - last) / static_cast<double>(next - last) * static_cast<double>(gap + 1);
    return std::min(gap, static_cast<std::uint64_t>(std::max(std::ceil(places) - 1, 0.0)));
}

}  // namespace

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
    const std::optional<std::uint64_t> missing = missingBefore(reading);
    const std::uint64_t gap = gapBefore(frame.time, missing);
    noteLosses(gap, frame);
    if (!m_stamped && m_time_base == TimeBase::Nanoseconds) addNumber(frame.time, gap);
    if (m_time_base == TimeBase::Pulses) m_pulses.add(frame.time, missing);
    if (reading.hasStamp()) addTruth(frame, reading.stamp);
    if (reading.result == VmbErrorSuccess) ++m_matches;
    ++m_frames;
    m_last_time = frame.time;
}

void RecordingStatistics::noteLosses(std::uint64_t gap, const RingFrame& frame) {
    const std::uint64_t refused = frame.lostBefore - std::exchange(m_lost_in_host, frame.lostBefore);
    const bool isUnclear = !m_stamped && m_time_base == TimeBase::Pulses;
    // What the host refused is part of the gap, unless no gap can be told.
    m_lost += isUnclear ? refused : std::max(gap, refused);
    if (isUnclear) m_unclear += gap - std::min(gap, refused);
}

void RecordingStatistics::addEnd(const RingFrame& frame, const StampReading& reading, std::int64_t end) {
    std::optional<std::uint64_t> missing = missingBefore(reading);
    if (m_stamped && !reading.hasStamp()) missing = timeGap(frame.time);
    const std::uint64_t gap = gapBefore(frame.time, missing);
    const std::uint64_t within = withinRecording(gap, m_last_time, frame.time, end);
    noteLosses(within, frame);
    m_lost_behind_end = gap - within;
    if (m_time_base == TimeBase::Pulses) m_pulses.addEnd(std::min(frame.time, end), missing);
}

std::optional<std::uint64_t> RecordingStatistics::missingBefore(const StampReading& reading) {
    if (!m_stamped) return {};
    if (!reading.hasStamp()) {
        ++m_unread;
        return {};
    }
    const std::uint64_t number = reading.stamp.frameId;
    std::optional<std::uint64_t> missing = m_numbers.add(number);
    // A camera counts from 1, and a triggered one is recorded from its first pulse on.
    const bool isFirst = !std::exchange(m_has_number, true);
    if (isFirst && m_time_base == TimeBase::Pulses) missing = std::max<std::uint64_t>(number, 1) - 1;
    const std::uint64_t unread = std::exchange(m_unread, 0);
    if (missing) missing = *missing - std::min(*missing, unread);
    return missing;
}

std::uint64_t RecordingStatistics::gapBefore(std::int64_t time, std::optional<std::uint64_t> missing) const {
    if (!m_stamped) return timeGap(time);
    // Numbers that do not begin with 1 say nothing of this recording.
    const bool isFirst = m_frames == 0;
    const auto pulses = static_cast<std::uint64_t>(std::max<std::int64_t>(time, 0));
    return isFirst ? std::min(missing.value_or(0), pulses) : missing.value_or(0);
}

void RecordingStatistics::addTruth(const RingFrame& frame, const VmbSimFrameStamp& stamp) {
    if (m_time_base == TimeBase::Pulses) {
        m_pulses.addTruth(stamp.exposureStartNs);
    } else {
        addTimes(frame, stamp);
    }
}

void RecordingStatistics::addNumber(std::int64_t time, std::uint64_t gap) {
    if (m_frames == 0) m_first_time = time;
    m_number += gap + 1;
    m_slope.add(static_cast<double>(m_number), static_cast<double>(time - m_first_time));
}

void RecordingStatistics::addTimes(const RingFrame& frame, const VmbSimFrameStamp& stamp) {
    const auto exposure = static_cast<std::int64_t>(stamp.exposureStartNs);
    const auto way = static_cast<std::int64_t>(stamp.wayNs);
    if (m_errors.empty()) {
        m_first_time = frame.time;
        m_first_exposure = exposure;
    }
    m_slope.add(static_cast<double>(exposure - m_first_exposure),
                static_cast<double>(frame.time - m_first_time));
    m_errors.push_back(frame.time - exposure);
    m_ways.push_back(way);
    m_delays.push_back(frame.arrival - exposure - way);
}

std::uint64_t RecordingStatistics::timeGap(std::int64_t time) const {
    if (m_time_base == TimeBase::Pulses) {
        return static_cast<std::uint64_t>(std::max<std::int64_t>(time - m_last_time - 1, 0));
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
    for (std::size_t i = 0; i < m_errors.size(); ++i) {
        if (m_errors[i] < m_ways[i] - kLateThreadNs) ++error.early;
    }
    error.spreadMaxNs = *std::max_element(distances.begin(), distances.end());
    error.spreadP99Ns = percentile(std::move(distances), 99);
    return error;
}

std::optional<double> RecordingStatistics::slopePpm() const {
    const std::optional<double> slope = m_slope.slope();
    if (!slope || (!m_stamped && !m_rate)) return std::nullopt;
    return ((m_stamped ? *slope : *slope * *m_rate / 1e9) - 1) * 1e6;
}

ChannelReport RecordingStatistics::report(std::uint64_t lostInHost,
                                          const std::optional<PulseStart>& start) const {
    ChannelReport report;
    report.frames = m_frames;
    report.lost = lost(lostInHost) + m_unclear;
    report.lostInHost = lostInHost;
    report.lostBehindEnd = m_lost_behind_end;
    report.doubled = m_numbers.doubled();
    report.restarts = m_numbers.restarts();
    report.stamped = m_stamped;
    report.matches = m_matches;
    report.mismatches = m_stamped ? m_frames - m_matches : 0;
    if (m_stamped) report.timeError = timeError();
    report.slopePpm = slopePpm();
    if (m_time_base == TimeBase::Pulses) report.pulses = m_pulses.report(start);
    return report;
}

}  // namespace host
