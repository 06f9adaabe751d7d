#include "frame_ring.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace host {

// One slot more, for the end.
FrameRing::FrameRing(std::size_t slots, std::size_t slotBytes)
    : m_slot_bytes(slotBytes),
      m_slots(std::max<std::size_t>(slots, 1) + 1),
      m_memory(m_slots.size() * slotBytes) {}

bool FrameRing::push(std::int64_t time, std::int64_t arrival, const void* data, std::uint64_t size) noexcept {
    const std::uint64_t index = m_pushed.load(std::memory_order_relaxed);
    const bool isFull = index - m_popped.load(std::memory_order_acquire) + 1 >= m_slots.size();
    const bool isTooLarge = size > m_slot_bytes;
    if (isTooLarge) m_too_large.fetch_add(1, std::memory_order_relaxed);
    if (isFull || isTooLarge) {
        m_lost.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    store({time, arrival, lost(), static_cast<std::size_t>(size), false}, data);
    return true;
}

void FrameRing::pushEnd(std::int64_t time, std::int64_t arrival, const void* data,
                        std::uint64_t size) noexcept {
    const std::size_t kept = size > m_slot_bytes ? 0 : static_cast<std::size_t>(size);
    store({time, arrival, lost(), kept, true}, data);
}

void FrameRing::store(const Slot& slot, const void* data) noexcept {
    const std::uint64_t index = m_pushed.load(std::memory_order_relaxed);
    m_slots[index % m_slots.size()] = slot;
    if (slot.size != 0) std::memcpy(memory(index), data, slot.size);
    m_pushed.store(index + 1, std::memory_order_release);
}

bool FrameRing::front(RingFrame& frame) const noexcept {
    const std::uint64_t index = m_popped.load(std::memory_order_relaxed);
    if (index == m_pushed.load(std::memory_order_acquire)) return false;
    const Slot& slot = m_slots[index % m_slots.size()];
    frame = {slot.time, slot.arrival, slot.lostBefore, {memory(index), slot.size}, slot.isEnd};
    return true;
}

void FrameRing::pop() noexcept {
    m_popped.store(m_popped.load(std::memory_order_relaxed) + 1, std::memory_order_release);
}

std::size_t ringSlots(double rate, std::uint64_t frameBytes, std::uint64_t budget) {
    const double wanted = std::ceil(2 * std::clamp(rate, 1.0, 100'000.0));
    const std::uint64_t fitting = budget / std::max<std::uint64_t>(frameBytes, 1);
    return static_cast<std::size_t>(
        std::max<std::uint64_t>(2, std::min<std::uint64_t>(static_cast<std::uint64_t>(wanted), fitting)));
}

}  // namespace host
