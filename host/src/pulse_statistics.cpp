#include "pulse_statistics.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

std::uint64_t length(const PulseSpan& span) {
    return static_cast<std::uint64_t>(span.last - span.first) + 1;
}

void append(std::vector<PulseSpan>& spans, PulseSpan span) {
    if (!spans.empty() && span.first <= spans.back().last + 1) {
        spans.back().last = span.last;
    } else {
        spans.push_back(span);
    }
}

}  // namespace

std::uint64_t pulseCount(const std::vector<PulseSpan>& spans) {
    std::uint64_t count = 0;
    for (const PulseSpan& span : spans) count += length(span);
    return count;
}

std::string pulseText(const std::vector<PulseSpan>& spans, std::size_t most) {
    if (spans.empty()) return "none";
    std::string text;
    const std::size_t shown = std::min(most, spans.size());
    for (std::size_t i = 0; i < shown; ++i) {
        text += (i == 0 ? "" : ", ") + std::to_string(spans[i].first);
        if (spans[i].last != spans[i].first) text += '-' + std::to_string(spans[i].last);
    }
    const std::uint64_t more = pulseCount({spans.begin() + static_cast<std::ptrdiff_t>(shown), spans.end()});
    return more == 0 ? text : text + " and " + std::to_string(more) + " more";
}

std::int64_t pulsesIn(double seconds, double frequency) {
    // A product that is a whole number but for its rounding counts as one.
    constexpr double kRounding = 1e-12;
    return std::llround(std::ceil(seconds * frequency * (1 - kRounding)));
}

std::vector<PulseSpan> without(const std::vector<PulseSpan>& spans, const std::vector<PulseSpan>& others) {
    std::vector<PulseSpan> rest;
    for (PulseSpan span : spans) {
        for (const PulseSpan& other : others) {
            if (other.last < span.first || other.first > span.last) continue;
            if (other.first > span.first) rest.push_back({span.first, other.first - 1});
            span.first = other.last + 1;
        }
        if (span.first <= span.last) rest.push_back(span);
    }
    return rest;
}

void PulseStatistics::noteGap(std::int64_t pulse, std::optional<std::uint64_t> missing) {
    if (pulse <= m_last + 1) return;
    std::vector<PulseSpan>& spans = !missing        ? m_report.unclear
                                    : *missing == 0 ? m_report.skipped
                                                    : m_report.lost;
    append(spans, {m_last + 1, pulse - 1});
}

void PulseStatistics::add(std::int64_t pulse, std::optional<std::uint64_t> missing) {
    noteGap(pulse, missing);
    if (pulse == m_last) {
        append(m_report.doubled, {pulse, pulse});
        ++m_report.extra;
    }
    m_last = pulse;
}

void PulseStatistics::addEnd(std::int64_t pulse, std::optional<std::uint64_t> missing) {
    noteGap(pulse, missing);
}

void PulseStatistics::addTruth(std::uint64_t exposureNs) {
    m_starts.push_back(static_cast<double>(exposureNs) - static_cast<double>(m_last) * 1e9 / m_frequency);
}

std::uint64_t PulseStatistics::misplaced(const std::optional<PulseStart>& start) const {
    if (m_starts.empty()) return 0;
    const double half = 0.5e9 / m_frequency;
    const double earliest = (start ? static_cast<double>(start->earliestNs) : m_starts.front()) - half;
    const double latest = (start ? static_cast<double>(start->latestNs) : m_starts.front()) + half;
    return static_cast<std::uint64_t>(std::count_if(
        m_starts.begin(), m_starts.end(), [&](double found) { return found < earliest || found > latest; }));
}

PulseReport PulseStatistics::report(const std::optional<PulseStart>& start) const {
    PulseReport report = m_report;
    report.misplaced = misplaced(start);
    return report;
}

}  // namespace host
