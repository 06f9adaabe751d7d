#include "frame_queue.h"

#include <algorithm>
#include <utility>

#include "native_memory.h"

namespace simulator {

bool isAccessible(const FrameMemory& memory) {
    return isWritableMemory(memory.record, 1) && isWritableMemory(memory.buffer, memory.size);
}

// One place more than can be queued: a frame that was taken can always be put back.
FrameQueue::FrameQueue() : m_ring(kMostQueued + 1) {}

Result FrameQueue::announce(FrameMemory& memory) {
    if (announced(memory.record) != nullptr) return Result::BadParameter;
    if (m_announced.size() >= kMostAnnounced) return Result::Other;
    if (m_announced.empty()) m_lastNumber = 0;
    AnnouncedFrame frame;
    if (memory.buffer == nullptr) {
        frame.owned = std::make_unique<std::uint8_t[]>(memory.size);
        memory.buffer = frame.owned.get();
    }
    frame.memory = memory;
    frame.number = ++m_lastNumber;
    m_announced.push_back(std::move(frame));
    return Result::Success;
}

Result FrameQueue::revoke(const void* record, AnnouncedFrame& revoked) {
    const auto found = std::find_if(m_announced.begin(), m_announced.end(), [=](const AnnouncedFrame& known) {
        return known.memory.record == record;
    });
    if (found == m_announced.end()) return Result::BadParameter;
    revoked = std::move(*found);
    m_announced.erase(found);
    drop(record);
    return Result::Success;
}

std::vector<AnnouncedFrame> FrameQueue::revokeAll() {
    flush();
    return std::exchange(m_announced, {});
}

const AnnouncedFrame* FrameQueue::find(const void* record) const {
    for (const AnnouncedFrame& known : m_announced) {
        if (known.memory.record == record) return &known;
    }
    return nullptr;
}

const FrameMemory* FrameQueue::announced(const void* record) const {
    const AnnouncedFrame* known = find(record);
    return known != nullptr ? &known->memory : nullptr;
}

std::uint32_t FrameQueue::number(const void* record) const {
    const AnnouncedFrame* known = find(record);
    return known != nullptr ? known->number : 0;
}

bool FrameQueue::isFilled(const void* record) const {
    const AnnouncedFrame* known = find(record);
    return known != nullptr && known->filled;
}

void FrameQueue::setFilled(const void* record, bool filled) {
    for (AnnouncedFrame& known : m_announced) {
        if (known.memory.record == record) known.filled = filled;
    }
}

Result FrameQueue::queue(const QueuedFrame& frame) {
    if (isQueued(frame.memory.record)) return Result::InvalidCall;
    if (m_count >= kMostQueued) return Result::Resources;
    setFilled(frame.memory.record, false);
    slot(m_count++) = frame;
    return Result::Success;
}

bool FrameQueue::isQueued(const void* record) const {
    for (std::size_t i = 0; i < m_count; ++i) {
        if (slot(i).memory.record == record) return true;
    }
    return false;
}

bool FrameQueue::take(Nanoseconds now, QueuedFrame& frame) {
    if (m_count == 0 || slot(0).queuedAt > now) return false;
    frame = slot(0);
    m_first = (m_first + 1) % m_ring.size();
    --m_count;
    return true;
}

void FrameQueue::putBack(const QueuedFrame& frame) {
    m_first = (m_first + m_ring.size() - 1) % m_ring.size();
    ++m_count;
    slot(0) = frame;
}

void FrameQueue::drop(const void* record) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_count; ++i) {
        if (slot(i).memory.record != record) slot(kept++) = slot(i);
    }
    m_count = kept;
}

}  // namespace simulator
