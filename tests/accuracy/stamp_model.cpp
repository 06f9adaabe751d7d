#include "stamp_model.h"

namespace test_support {

std::int64_t StampModel::stamp(std::uint64_t ticks, std::uint64_t host, std::uint64_t waited) {
    const auto since = static_cast<std::int64_t>(ticks - m_newest);
    const bool isDue = !hasLine() || since > static_cast<std::int64_t>(m_tick_frequency);
    if (isDue) {
        const std::uint64_t microseconds = waited / 1'000;
        const std::uint64_t age = microseconds * m_tick_frequency / 1'000'000;
        m_newest = ticks + age;
        m_line.add(m_newest, host, static_cast<double>(microseconds) / 100.0);
        // Until there is a line, a tick counts as a nanosecond.
        if (!hasLine()) return static_cast<std::int64_t>(host - age);
    }
    return m_line.at(ticks);
}

}  // namespace test_support
