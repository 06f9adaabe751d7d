#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace host {

/// A frame in a ring; the bytes are valid until the slot is released.
struct RingFrame {
    std::int64_t time = 0;
    std::int64_t arrival = 0;      ///< host time at which it was handed over
    std::uint64_t lostBefore = 0;  ///< frames that were refused, up to this one
    std::span<const std::byte> bytes;
    bool isEnd = false;  ///< not part of what is kept: tells of its end
};

/// Frames on their way from one producing to one consuming thread. All memory is taken at construction;
/// neither side ever waits for the other.
class FrameRing {
  public:
    /// Room for `slots` frames (at least one) of up to `slotBytes` bytes.
    FrameRing(std::size_t slots, std::size_t slotBytes);

    /// Copies a frame in; false, and counted as lost, when the ring is full or the frame too large.
    /// [producer]
    bool push(std::int64_t time, std::int64_t arrival, const void* data, std::uint64_t size) noexcept;
    /// The last one, for which there is always room; without its bytes when it is too large. [producer]
    void pushEnd(std::int64_t time, std::int64_t arrival, const void* data, std::uint64_t size) noexcept;
    /// The oldest frame; false when there is none. [consumer]
    bool front(RingFrame& frame) const noexcept;
    /// Gives the oldest frame's slot back. [consumer]
    void pop() noexcept;
    /// Frames refused so far. [any thread]
    std::uint64_t lost() const noexcept { return m_lost.load(std::memory_order_relaxed); }
    /// Those of them that were too large. [any thread]
    std::uint64_t tooLarge() const noexcept { return m_too_large.load(std::memory_order_relaxed); }

  private:
    struct Slot {
        std::int64_t time = 0;
        std::int64_t arrival = 0;
        std::uint64_t lostBefore = 0;
        std::size_t size = 0;
        bool isEnd = false;
    };

    void store(const Slot& slot, const void* data) noexcept;

    std::byte* memory(std::uint64_t index) noexcept {
        return m_memory.data() + (index % m_slots.size()) * m_slot_bytes;
    }
    const std::byte* memory(std::uint64_t index) const noexcept {
        return m_memory.data() + (index % m_slots.size()) * m_slot_bytes;
    }

    std::size_t m_slot_bytes;
    std::vector<Slot> m_slots;
    std::vector<std::byte> m_memory;
    std::atomic<std::uint64_t> m_pushed{0};
    std::atomic<std::uint64_t> m_popped{0};
    std::atomic<std::uint64_t> m_lost{0};
    std::atomic<std::uint64_t> m_too_large{0};
};

/// Slots for two seconds of frames at `rate`, within `budget` bytes and at least two.
std::size_t ringSlots(double rate, std::uint64_t frameBytes, std::uint64_t budget = 64u << 20u);

}  // namespace host
