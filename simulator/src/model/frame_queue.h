/// The frames that a client announced and queued. Not synchronised. Queueing never allocates.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "clock.h"
#include "result.h"

namespace simulator {

/// A callback of any type; whoever queued the frame knows which.
using OpaqueCallback = void (*)();

/// A client's frame record, known by its address, with the memory for its image.
struct FrameMemory {
    void* record = nullptr;
    std::uint8_t* buffer = nullptr;
    std::uint32_t size = 0;
};

/// False when the client has freed it, as far as the system can tell.
bool isAccessible(const FrameMemory& memory);

struct QueuedFrame {
    FrameMemory memory;
    OpaqueCallback callback = nullptr;  ///< may be null
    Nanoseconds queuedAt = 0;
};

struct AnnouncedFrame {
    FrameMemory memory;
    std::uint32_t number = 0;               ///< position in the order of announcement, from 1
    bool filled = false;                    ///< since it was queued last
    std::unique_ptr<std::uint8_t[]> owned;  ///< the image's memory when the client brought none
};

class FrameQueue {
  public:
    FrameQueue();

    /// Allocates the image's memory and names it when there is none.
    Result announce(FrameMemory& memory);
    /// Moves what was announced to `revoked`; the frame also leaves the queue. BadParameter when it was not
    /// announced.
    Result revoke(const void* record, AnnouncedFrame& revoked);
    /// Everything leaves, also frames that were queued without announcement.
    std::vector<AnnouncedFrame> revokeAll();

    /// What was announced for the record, if anything.
    const FrameMemory* announced(const void* record) const;
    const std::vector<AnnouncedFrame>& allAnnounced() const { return m_announced; }
    std::size_t announcedCount() const { return m_announced.size(); }
    /// Was an announced frame filled since it was queued last?
    bool isFilled(const void* record) const;
    void markFilled(const void* record) { setFilled(record, true); }
    /// 0 for a record that was not announced.
    std::uint32_t number(const void* record) const;

    /// Resources when the queue is full.
    Result queue(const QueuedFrame& frame);
    bool isQueued(const void* record) const;
    std::size_t queuedCount() const { return m_count; }
    /// Takes the oldest frame if it was queued at or before `now`.
    bool take(Nanoseconds now, QueuedFrame& frame);
    /// Makes a frame that was taken the oldest again.
    void putBack(const QueuedFrame& frame);
    void flush() { m_count = 0; }

  private:
    static constexpr std::size_t kMostAnnounced = 512;
    static constexpr std::size_t kMostQueued = 1024;

    QueuedFrame& slot(std::size_t index) { return m_ring[(m_first + index) % m_ring.size()]; }
    const QueuedFrame& slot(std::size_t index) const { return m_ring[(m_first + index) % m_ring.size()]; }
    const AnnouncedFrame* find(const void* record) const;
    void setFilled(const void* record, bool filled);
    void drop(const void* record);

    std::vector<AnnouncedFrame> m_announced;
    std::uint32_t m_lastNumber = 0;
    std::vector<QueuedFrame> m_ring;
    std::size_t m_first = 0;
    std::size_t m_count = 0;
};

}  // namespace simulator
