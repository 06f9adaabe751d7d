// What a camera counts.
#include <cmath>

#include "camera.h"

namespace simulator {
namespace {

constexpr const char* kCounts[] = {
    "StatFrameDelivered", "StatFrameDropped", "StatFrameUnderrun", "StatFrameRescued",    "StatFrameShoved",
    "StatPacketReceived", "StatPacketMissed", "StatPacketErrors",  "StatPacketRequested", "StatPacketResent"};

double seconds(Nanoseconds span) {
    return static_cast<double>(span) / static_cast<double>(kSecond);
}

}  // namespace

void Camera::resetStatistics(Nanoseconds now) {
    for (const char* name : kCounts) m_features.compute(name, std::int64_t{0});
    m_features.compute("StatFrameRate", 0.0);
    m_features.compute("StatLocalRate", 0.0);
    m_lastTicks = 0;
    m_lastFrameAt = 0;
    m_acquiringSince = now;
}

void Camera::count(const char* statistic, std::int64_t times) {
    if (times != 0) m_features.compute(statistic, m_features.integer(statistic) + times);
}

void Camera::noteFrame(std::uint64_t ticks, Nanoseconds now, const PacketTally& packets, bool complete) {
    count(complete ? "StatFrameDelivered" : "StatFrameDropped");
    if (complete && packets.missed > 0) count("StatFrameRescued");
    count("StatPacketReceived", packets.received());
    count("StatPacketMissed", packets.missed);
    count("StatPacketRequested", packets.requested);
    count("StatPacketResent", packets.resent);

    if (m_lastTicks != 0 && ticks > m_lastTicks) {
        m_features.compute("StatFrameRate", static_cast<double>(m_clock.tickFrequency()) /
                                                static_cast<double>(ticks - m_lastTicks));
    }
    if (m_lastFrameAt != 0 && now > m_lastFrameAt) {
        m_features.compute("StatLocalRate", 1 / seconds(now - m_lastFrameAt));
    }
    m_lastTicks = ticks;
    m_lastFrameAt = now;
}

void Camera::noteElapsed(Nanoseconds now) {
    m_features.compute("StatTimeElapsed", m_acquiringSince ? seconds(now - *m_acquiringSince) : 0.0);
}

}  // namespace simulator
