#include "network_link.h"

#include <algorithm>
#include <cmath>

#include "sensor.h"

namespace simulator {
namespace {

/// The sum of all that waits leaves 64 bits after some centuries.
constexpr Nanoseconds kLongestQueue = kNever / 4;

/// Packets that find no room in the buffer while `ahead` of the link's time is left to be sent.
std::uint64_t overflowing(const LinkRow& link, const Transmission& frame, Nanoseconds ahead) {
    const double seconds = static_cast<double>(ahead) / static_cast<double>(kSecond);
    const double waiting = seconds * static_cast<double>(link.bytesPerSecond);
    const auto over = std::llround(waiting) - link.bufferBytes;
    const std::int64_t packet = std::max<std::int64_t>(1, frame.packet);
    return over > 0 ? static_cast<std::uint64_t>((over + packet - 1) / packet) : 0;
}

}  // namespace

LinkRow NetworkLink::row() const {
    const std::lock_guard lock(m_mutex);
    return m_row;
}

void NetworkLink::set(const LinkRow& row) {
    const std::lock_guard lock(m_mutex);
    m_row = row;
}

Passage NetworkLink::pass(const Transmission& frame) {
    const std::lock_guard lock(m_mutex);
    const Nanoseconds sent = frame.begin + frame.own;
    Passage passage{m_row, sent, 0};
    // Packets that are too large never come as far as the part that is shared.
    if (m_row.bytesPerSecond == 0 || frame.packet > m_row.largestPacket) return passage;
    m_freeAt = std::max(m_freeAt, frame.begin) + transferTime(frame.bytes, m_row.bytesPerSecond);
    m_freeAt = std::min(m_freeAt, kLongestQueue);
    if (m_row.bufferBytes > 0) {
        // The buffer is fullest when the camera's last byte comes.
        passage.overflow = overflowing(m_row, frame, m_freeAt - sent);
        const std::uint64_t lost =
            std::min(frame.bytes, passage.overflow * static_cast<std::uint64_t>(frame.packet));
        if (lost > 0) m_freeAt -= transferTime(lost, m_row.bytesPerSecond);
    }
    passage.end = std::max(sent, m_freeAt);
    return passage;
}

}  // namespace simulator
