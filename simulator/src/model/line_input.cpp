#include "line_input.h"

#include <algorithm>
#include <utility>

#include "noise.h"

namespace simulator {
namespace {

constexpr std::uint64_t kLargest = 1'000'000'000;
constexpr std::uint64_t kHighestRate = 1'000'000;
constexpr Nanoseconds kLongestBounce = 5 * kMicrosecond;

}  // namespace

bool PulseFaultRow::hits(std::uint64_t pulse) const {
    if (pulse < first) return false;
    const std::uint64_t since = pulse - first;
    return (every > 0 ? since % every : since) < count;
}

Result LineInput::drive(const LineRhythm& rhythm, Nanoseconds first, Nanoseconds now) {
    const bool inRange = rhythm.numerator >= 1 && rhythm.numerator <= kLargest && rhythm.denominator >= 1 &&
                         rhythm.denominator <= kLargest &&
                         rhythm.numerator <= rhythm.denominator * kHighestRate;
    if (!inRange) return Result::BadParameter;
    const auto period = static_cast<Nanoseconds>(rhythm.denominator * 1'000'000'000 / rhythm.numerator);
    const bool fits = rhythm.width >= 1 && rhythm.width <= period / 4 && rhythm.jitter >= 0 &&
                      rhythm.jitter <= period / 16 && first - rhythm.jitter >= now;
    if (!fits) return Result::BadParameter;
    const std::lock_guard lock(m_mutex);
    clear(now);
    m_rhythm = rhythm;
    m_first = first;
    return Result::Success;
}

Result LineInput::add(const std::vector<Nanoseconds>& rises, Nanoseconds width, Nanoseconds now) {
    if (width < 1) return Result::BadParameter;
    const std::lock_guard lock(m_mutex);
    Nanoseconds earliest = m_rhythm ? now : std::max(now, m_earliest);
    for (const Nanoseconds at : rises) {
        if (at < earliest) return Result::BadParameter;
        earliest = at + 4 * width;
    }
    if (m_rhythm) clear(now);
    for (const Nanoseconds at : rises) m_pulses.push_back({at, width});
    m_earliest = earliest;
    return Result::Success;
}

void LineInput::silence(Nanoseconds now) {
    const std::lock_guard lock(m_mutex);
    clear(now);
}

void LineInput::clear(Nanoseconds now) {
    m_rhythm.reset();
    m_pulses.clear();
    m_pulseCount = 0;
    m_earliest = 0;
    m_faults.clear();
    m_edgeCount = m_edgesTaken = 0;
    if (m_high) push(now, false);
}

void LineInput::disturb(const PulseFaultRow& fault) {
    const std::lock_guard lock(m_mutex);
    m_faults.push_back(fault);
}

void LineInput::disturbAlways(std::vector<PulseFaultRow> faults) {
    const std::lock_guard lock(m_mutex);
    m_lastingFaults = std::move(faults);
}

void LineInput::setSeed(std::uint64_t seed) {
    const std::lock_guard lock(m_mutex);
    m_seed = seed;
}

std::optional<LineEdge> LineInput::next() {
    const std::lock_guard lock(m_mutex);
    return fill() ? std::optional(m_edges[m_edgesTaken]) : std::nullopt;
}

std::optional<LineEdge> LineInput::take(Nanoseconds now) {
    const std::lock_guard lock(m_mutex);
    if (!fill() || m_edges[m_edgesTaken].at > now) return std::nullopt;
    const LineEdge edge = m_edges[m_edgesTaken++];
    m_high = edge.rising;
    return edge;
}

void LineInput::skipTo(Nanoseconds now) {
    const std::lock_guard lock(m_mutex);
    skipRhythmTo(now);
    while (fill() && m_edges[m_edgesTaken].at < now) m_high = m_edges[m_edgesTaken++].rising;
}

bool LineInput::isHigh() const {
    const std::lock_guard lock(m_mutex);
    return m_high;
}

bool LineInput::fill() {
    Pulse pulse{};
    while (m_edgesTaken == m_edgeCount && nextPulse(pulse)) {
        m_edgeCount = m_edgesTaken = 0;
        expand(pulse);
    }
    return m_edgesTaken < m_edgeCount;
}

bool LineInput::nextPulse(Pulse& pulse) {
    if (m_rhythm) {
        const Nanoseconds jitter =
            m_rhythm->jitter > 0 ? noiseWithin(m_rhythm->jitter, m_seed, m_pulseCount) : 0;
        pulse = {riseOf(m_pulseCount) + jitter, m_rhythm->width};
    } else if (!m_pulses.empty()) {
        pulse = m_pulses.front();
        m_pulses.pop_front();
    } else {
        return false;
    }
    ++m_pulseCount;
    return true;
}

void LineInput::expand(const Pulse& pulse) {
    if (suffers(PulseFault::Missing)) return;
    const Nanoseconds bounce = std::min(kLongestBounce, pulse.width / 32);
    push(pulse.at, true);
    if (suffers(PulseFault::Bouncing) && bounce > 0) {
        push(pulse.at + bounce, false);
        push(pulse.at + 2 * bounce, true);
        push(pulse.at + 3 * bounce, false);
        push(pulse.at + 4 * bounce, true);
    }
    push(pulse.at + pulse.width, false);
    if (suffers(PulseFault::Doubled)) {
        push(pulse.at + 2 * pulse.width, true);
        push(pulse.at + 3 * pulse.width, false);
    }
}

bool LineInput::suffers(PulseFault fault) const {
    const auto spoils = [&](const PulseFaultRow& known) {
        return known.fault == fault && known.hits(m_pulseCount);
    };
    return std::any_of(m_faults.begin(), m_faults.end(), spoils) ||
           std::any_of(m_lastingFaults.begin(), m_lastingFaults.end(), spoils);
}

Nanoseconds LineInput::riseOf(std::uint64_t pulse) const {
    // In seconds and their remainder, since the whole product leaves 64 bits.
    const std::uint64_t parts = pulse * m_rhythm->denominator;
    const std::uint64_t seconds = parts / m_rhythm->numerator;
    const std::uint64_t rest = parts % m_rhythm->numerator;
    return m_first +
           static_cast<Nanoseconds>(seconds * 1'000'000'000 + rest * 1'000'000'000 / m_rhythm->numerator);
}

void LineInput::skipRhythmTo(Nanoseconds now) {
    if (!m_rhythm || now <= m_first) return;
    if (m_edgesTaken < m_edgeCount && m_edges[m_edgeCount - 1].at >= now) return;
    m_high = m_edgesTaken == m_edgeCount && m_high;
    m_edgesTaken = m_edgeCount;
    const double rate = static_cast<double>(m_rhythm->numerator) / static_cast<double>(m_rhythm->denominator);
    const double passed = static_cast<double>(now - m_first) * 1e-9 * rate;
    // Two pulses early: the estimate is not exact, and the last one before may still be high.
    const auto sure = passed > 2 ? static_cast<std::uint64_t>(passed) - 2 : 0;
    m_pulseCount = std::max(m_pulseCount, sure);
}

}  // namespace simulator
