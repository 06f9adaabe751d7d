/// The packets of one frame, and what becomes of each on the link. All of it is a function of a few numbers,
/// so that nothing has to be kept per packet: a frame's packets may be walked again and again.
#pragma once

#include <cstdint>

#include "clock.h"
#include "network_link.h"

namespace simulator {

/// Bytes of a packet that are not the picture's: headers of network, datagram and stream.
inline constexpr std::uint64_t kPacketOverhead = 20 + 8 + 8;

/// By how much a frame comes later for each round of requests for what it lacks.
inline constexpr Nanoseconds kRequestRound = kMillisecond;

/// What the camera's features say about packets.
struct StreamSettings {
    std::int64_t packet = 0;    ///< bytes, headers included
    std::int64_t requests = 0;  ///< for one packet, at most
    std::int64_t tilting = 0;   ///< packets that may overtake one before it is requested
};

struct FramePackets {
    StreamSettings stream;
    LinkRow link;
    std::uint64_t seed = 0;      ///< of this frame
    std::uint64_t image = 0;     ///< bytes of the picture
    std::uint64_t trailer = 0;   ///< bytes behind it, which follow in the same packets
    std::uint64_t overflow = 0;  ///< packets, the last ones, for which the link's buffer had no room

    /// Bytes of the frame in each packet but the last.
    std::uint64_t perPacket() const;
    std::uint64_t count() const { return (image + trailer + perPacket() - 1) / perPacket(); }
    /// With all headers.
    std::uint64_t wireBytes() const { return image + trailer + count() * kPacketOverhead; }
    /// Bytes of the picture in one packet.
    std::uint64_t imageBytes(std::uint64_t packet) const;
    bool passes() const { return stream.packet <= link.largestPacket; }
    /// Can anything happen to a packet?
    bool isEndangered() const {
        return !passes() || overflow > 0 || link.lossPpm > 0 || link.burstPpm > 0 || link.reorderPpm > 0;
    }
    /// By how much the whole frame comes late.
    Nanoseconds lateness() const;
};

struct PacketFate {
    bool missed = false;        ///< did not come when it was sent
    bool arrived = true;        ///< then, or upon a request
    std::int64_t requests = 0;  ///< for it, also needless ones
};

/// Goes through the packets of a frame, the first one first.
class PacketWalk {
  public:
    explicit PacketWalk(const FramePackets& frame) : m_frame(frame), m_count(frame.count()) {}

    bool isOver() const { return m_next == m_count; }
    /// Number of the next packet, from 0.
    std::uint64_t number() const { return m_next; }
    PacketFate next();

  private:
    bool isMissed(std::uint64_t packet);
    bool isAnswered(std::uint64_t packet, std::int64_t request) const;
    /// By more than the library puts up with?
    bool isOvertaken(std::uint64_t packet) const;

    const FramePackets& m_frame;
    const std::uint64_t m_count;
    std::uint64_t m_next = 0;
    std::int64_t m_burst = 0;  // packets that the burst under way still takes
};

/// Sums over a frame: sent = received + missed - resent.
struct PacketTally {
    std::int64_t sent = 0;
    std::int64_t missed = 0;        ///< did not come when they were sent
    std::int64_t requested = 0;     ///< requests, also needless ones
    std::int64_t resent = 0;        ///< came upon a request
    std::int64_t rounds = 0;        ///< of requests, one after the other
    std::uint64_t absentImage = 0;  ///< bytes of the picture that never came

    std::int64_t absent() const { return missed - resent; }
    std::int64_t received() const { return sent - absent(); }
};

PacketTally tally(const FramePackets& frame);

/// Puts noise wherever a packet of the picture never came.
void spoil(const FramePackets& frame, std::uint8_t* image);
/// Puts noise in the place of `count` bytes: what did not come is whatever was there.
void spoil(std::uint8_t* bytes, std::uint64_t count, std::uint64_t seed);

}  // namespace simulator
