/// The link of one interface: what the packets of its cameras meet on their way to the host.
#pragma once

#include <cstdint>
#include <mutex>

#include "clock.h"

namespace simulator {

/// Chances are in parts of 10^6. At first a link harms nothing.
struct LinkRow {
    std::int64_t largestPacket = 8999;  ///< bytes of the largest packet that passes
    std::int64_t lossPpm = 0;           ///< of a packet, and of one that is sent again
    std::int64_t burstPpm = 0;          ///< of a packet: a burst of lost ones begins with it
    std::int64_t burstPackets = 0;      ///< length of a burst

    bool operator==(const LinkRow&) const = default;
};

/// [any thread] Its mutex is taken last of all.
class NetworkLink {
  public:
    explicit NetworkLink(const LinkRow& row) : m_row(row) {}

    LinkRow row() const;
    void set(const LinkRow& row);

  private:
    mutable std::mutex m_mutex;
    LinkRow m_row;
};

}  // namespace simulator
