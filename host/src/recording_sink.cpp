#include "recording_sink.h"

#include "steady_master_clock.h"

namespace host {

void RecordingSink::addSample(std::int64_t time, const void* data, std::uint64_t size) {
    const std::int64_t arrival = steadyNanoseconds();
    if (!m_ring || m_closed.load(std::memory_order_relaxed)) return;
    if (m_first == kNone) m_first = time;
    if (time - m_first >= m_length) {
        m_past_end.store(true, std::memory_order_release);
    } else if (!isPastEnd()) {
        m_ring->push(time, arrival, data, size);
    }
    m_wake();
}

}  // namespace host
