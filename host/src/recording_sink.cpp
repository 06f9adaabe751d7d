#include "recording_sink.h"

#include "steady_master_clock.h"

namespace host {

void RecordingSink::addSample(std::int64_t time, const void* data, std::uint64_t size) {
    const std::int64_t arrival = steadyNanoseconds();
    if (!m_ring || m_closed.load(std::memory_order_relaxed)) return;
    if (isPastEnd()) return;
    if (!m_begin) m_begin = time;
    if (time - *m_begin < m_length) {
        m_ring->push(time, arrival, data, size);
    } else {
        m_ring->pushEnd(time, arrival, data, size);
        m_past_end.store(true, std::memory_order_release);
    }
    m_wake();
}

}  // namespace host
