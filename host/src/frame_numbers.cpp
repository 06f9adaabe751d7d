#include "frame_numbers.h"

namespace host {
namespace {

constexpr std::uint64_t kGreatest16 = 65535;

/// More frames than these are not lost in a row where 16-bit numbers begin again.
constexpr std::uint64_t kMostAcrossWrap = 1000;

/// From a number on to a later one; 0 when it is not later.
std::uint64_t stepsForward(std::uint64_t from, std::uint64_t to) {
    if (to > from) return to - from;
    if (from > kGreatest16 || to == 0) return 0;
    const std::uint64_t across = to + kGreatest16 - from;
    return across <= kMostAcrossWrap ? across : 0;
}

}  // namespace

std::optional<std::uint64_t> FrameNumbers::add(std::uint64_t number) {
    if (!m_last) {
        m_last = number;
        return {};
    }
    if (const std::uint64_t steps = stepsForward(*m_last, number); steps != 0) {
        m_last = number;
        m_lower.reset();
        return steps - 1;
    }
    if (m_lower && number > *m_lower) {
        const std::uint64_t missing = number - *m_lower - 1;
        --m_doubled;
        ++m_restarts;
        m_last = number;
        m_lower.reset();
        return missing;
    }
    ++m_doubled;
    if (number < *m_last) m_lower = number;
    return {};
}

}  // namespace host
