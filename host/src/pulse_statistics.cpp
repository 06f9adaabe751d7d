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

void PulseStatistics::add(std::int64_t pulse, std::optional<std::uint64_t> frameId) {
    if (m_last && pulse == m_last->pulse) {
        append(m_report.doubled, {pulse, pulse});
    } else if (m_last && pulse > m_last->pulse + 1) {
        const bool isConsecutive = frameId && m_last->id && *frameId == *m_last->id + 1;
        append(isConsecutive ? m_report.skipped : m_report.lost, {m_last->pulse + 1, pulse - 1});
    }
    m_last = Frame{pulse, frameId};
}

void PulseStatistics::addTruth(std::uint64_t exposureNs) {
    if (!m_first_truth) m_first_truth = Truth{m_last->pulse, exposureNs};
    const double seconds = static_cast<double>(exposureNs - m_first_truth->exposureNs) * 1e-9;
    const auto pulses = static_cast<double>(m_last->pulse - m_first_truth->pulse);
    if (std::abs(seconds * m_frequency - pulses) > 0.5) ++m_report.misplaced;
}

}  // namespace host
