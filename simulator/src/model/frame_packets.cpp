#include "frame_packets.h"

#include <algorithm>

#include "noise.h"

namespace simulator {
namespace {

constexpr std::uint64_t kMillion = 1'000'000;
/// More requests than any setting permits.
constexpr std::uint64_t kMostRequests = 1024;

enum Draw : std::uint64_t { kLoss, kBurst, kAnswer, kReorder, kLate, kLateness };

/// Does something of this chance happen? One draw for each kind and position of a frame.
bool happens(std::uint64_t seed, Draw draw, std::uint64_t position, std::int64_t ppm) {
    if (ppm <= 0) return false;
    return noise(noise(seed, draw), position) % kMillion < static_cast<std::uint64_t>(ppm);
}

}  // namespace

std::uint64_t FramePackets::perPacket() const {
    return static_cast<std::uint64_t>(
        std::max<std::int64_t>(1, stream.packet - static_cast<std::int64_t>(kPacketOverhead)));
}

std::uint64_t FramePackets::imageBytes(std::uint64_t packet) const {
    const std::uint64_t first = std::min(image, packet * perPacket());
    return std::min(image - first, perPacket());
}

Nanoseconds FramePackets::lateness() const {
    if (link.late == 0 || !happens(seed, kLate, 0, link.latePpm)) return 0;
    return static_cast<Nanoseconds>(noise(noise(seed, kLateness), 0) %
                                    static_cast<std::uint64_t>(link.late)) +
           1;
}

PacketFate PacketWalk::next() {
    const std::uint64_t packet = m_next++;
    PacketFate fate;
    if (!isMissed(packet)) {
        fate.requests = isOvertaken(packet) ? 1 : 0;
        return fate;
    }
    fate.missed = true;
    fate.arrived = false;
    while (!fate.arrived && fate.requests < m_frame.stream.requests) {
        fate.arrived = isAnswered(packet, fate.requests++);
    }
    return fate;
}

bool PacketWalk::isMissed(std::uint64_t packet) {
    if (m_burst == 0 && happens(m_frame.seed, kBurst, packet, m_frame.link.burstPpm)) {
        m_burst = m_frame.link.burstPackets;
    }
    const bool inBurst = m_burst > 0;
    if (inBurst) --m_burst;
    return inBurst || !m_frame.passes() || packet + m_frame.overflow >= m_count ||
           happens(m_frame.seed, kLoss, packet, m_frame.link.lossPpm);
}

bool PacketWalk::isAnswered(std::uint64_t packet, std::int64_t request) const {
    const std::uint64_t position = packet * kMostRequests + static_cast<std::uint64_t>(request);
    return m_frame.passes() && !happens(m_frame.seed, kAnswer, position, m_frame.link.lossPpm);
}

bool PacketWalk::isOvertaken(std::uint64_t packet) const {
    const auto behind = static_cast<std::int64_t>(m_count - 1 - packet);
    return std::min(behind, m_frame.link.reorderPackets) > m_frame.stream.tilting &&
           happens(m_frame.seed, kReorder, packet, m_frame.link.reorderPpm);
}

PacketTally tally(const FramePackets& frame) {
    PacketTally sums;
    sums.sent = static_cast<std::int64_t>(frame.count());
    if (!frame.isEndangered()) return sums;
    for (PacketWalk walk(frame); !walk.isOver();) {
        const std::uint64_t packet = walk.number();
        const PacketFate fate = walk.next();
        sums.requested += fate.requests;
        if (!fate.missed) continue;
        ++sums.missed;
        sums.resent += fate.arrived ? 1 : 0;
        sums.rounds = std::max(sums.rounds, fate.requests);
        if (!fate.arrived) sums.absentImage += frame.imageBytes(packet);
    }
    return sums;
}

void spoil(const FramePackets& frame, std::uint8_t* image) {
    for (PacketWalk walk(frame); !walk.isOver();) {
        const std::uint64_t packet = walk.number();
        const std::uint64_t bytes = frame.imageBytes(packet);
        if (!walk.next().arrived) spoil(image + packet * frame.perPacket(), bytes, frame.seed + packet);
    }
}

void spoil(std::uint8_t* bytes, std::uint64_t count, std::uint64_t seed) {
    for (std::uint64_t i = 0; i < count; ++i) {
        seed = seed * 6'364'136'223'846'793'005U + 1'442'695'040'888'963'407U;
        bytes[i] = static_cast<std::uint8_t>(seed >> 56);
    }
}

}  // namespace simulator
