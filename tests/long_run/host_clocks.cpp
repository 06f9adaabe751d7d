#include "host_clocks.h"

#include <utility>

#include "vimba_simulator.h"

namespace test_support {

std::int64_t VirtualCounter::now() noexcept {
    const std::uint64_t time = VmbSimTime();
    return static_cast<std::int64_t>(time + (time == m_delayed_at ? m_delay : 0));
}

void VirtualCounter::delay(std::uint64_t ns) {
    m_delayed_at = VmbSimTime();
    m_delay = ns;
}

VirtualCounter& virtualCounter() {
    static VirtualCounter counter;
    return counter;
}

std::uint64_t BusyHostClock::getTime() {
    const bool isLong = m_random() % 50 == 0;
    const std::uint64_t waited = isLong ? 1'000'000 : m_random() % 40'000;
    virtualCounter().delay(waited);
    m_reading = {m_origin + VmbSimTime() + waited, waited};
    return m_reading->time;
}

std::optional<BusyHostClock::Reading> BusyHostClock::takeReading() {
    return std::exchange(m_reading, std::nullopt);
}

}  // namespace test_support

namespace platform {

// Found before the library's own, which the linker then leaves in its archive.
PerformanceCounter& systemPerformanceCounter() {
    return test_support::virtualCounter();
}

}  // namespace platform
