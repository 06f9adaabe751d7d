/// The link of one interface: what its cameras share, and what packets meet on their way to the host.
#pragma once

#include <cstdint>
#include <mutex>

#include "clock.h"

namespace simulator {

/// Chances are in parts of 10^6. At first a link harms nothing.
struct LinkRow {
    std::int64_t bytesPerSecond = 0;    ///< capacity that the cameras share; 0 for no limit
    std::int64_t bufferBytes = 0;       ///< what may wait for it outside of the cameras; 0 for no limit
    std::int64_t largestPacket = 8999;  ///< bytes of the largest packet that passes
    std::int64_t lossPpm = 0;           ///< of a packet, and of one that is sent again
    std::int64_t burstPpm = 0;          ///< of a packet: a burst of lost ones begins with it
    std::int64_t burstPackets = 0;      ///< length of a burst
    std::int64_t reorderPpm = 0;        ///< of a packet: others of its frame overtake it
    std::int64_t reorderPackets = 0;    ///< so many
    std::int64_t latePpm = 0;           ///< of a frame: it comes late
    Nanoseconds late = 0;               ///< by 1 to so much

    bool operator==(const LinkRow&) const = default;
};

/// A frame on the wire.
struct Transmission {
    Nanoseconds begin = 0;
    Nanoseconds own = 0;      ///< length at the camera's own rate
    std::int64_t packet = 0;  ///< bytes of each packet but the last
    std::uint64_t bytes = 0;  ///< in all
};

struct Passage {
    LinkRow link;  ///< as it was
    Nanoseconds end = 0;
    std::uint64_t overflow = 0;  ///< packets, the last ones, for which the buffer had no room
};

/// [any thread] Its mutex is taken last of all.
class NetworkLink {
  public:
    explicit NetworkLink(const LinkRow& row) : m_row(row) {}

    LinkRow row() const;
    void set(const LinkRow& row);

    /// Takes capacity for a frame that begins now; those that began before it are served before it.
    Passage pass(const Transmission& frame);

  private:
    mutable std::mutex m_mutex;
    LinkRow m_row;
    Nanoseconds m_freeAt = 0;  // when all that was booked has passed
};

}  // namespace simulator
