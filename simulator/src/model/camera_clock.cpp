#include "camera_clock.h"

#include <cmath>
#include <numbers>

#include "noise.h"

namespace simulator {
namespace {

/// span * parts / 10^9; split, since the plain product leaves 64 bits after some days.
Nanoseconds scaled(Nanoseconds span, std::int64_t parts) {
    return span / kSecond * parts + span % kSecond * parts / kSecond;
}

}  // namespace

CameraClock::CameraClock(Nanoseconds powerUp, const OscillatorRow& oscillator)
    : m_powerUp(powerUp), m_oscillator(oscillator), m_ticksAtZero(oscillator.startTicks) {}

void CameraClock::reset(Nanoseconds now) {
    m_zero = ownTime(now);
    m_ticksAtZero = 0;
}

Nanoseconds CameraClock::ownTime(Nanoseconds now) const {
    const Nanoseconds span = now - m_powerUp;
    Nanoseconds own = span + scaled(span, m_oscillator.errorPpb);
    if (m_oscillator.driftPpb != 0) {
        // The integral of driftPpb * sin(2 pi t / period).
        const double turn = 2 * std::numbers::pi / static_cast<double>(m_oscillator.driftPeriod);
        const double swing = static_cast<double>(m_oscillator.driftPpb) * 1e-9 / turn;
        own += std::llround(swing * (1 - std::cos(turn * static_cast<double>(span))));
    }
    return own;
}

Nanoseconds CameraClock::trueTime(Nanoseconds own) const {
    // Each round makes the error smaller by the error of the oscillator, a thousandth at most.
    Nanoseconds now = m_powerUp + own;
    for (int round = 0; round < 8; ++round) {
        const Nanoseconds off = ownTime(now) - own;
        if (off == 0) break;
        now -= off;
    }
    return now;
}

std::uint64_t CameraClock::ticksOf(Nanoseconds own) const {
    const Nanoseconds span = own > m_zero ? own - m_zero : 0;
    return m_ticksAtZero + static_cast<std::uint64_t>(scaled(span, m_oscillator.tickFrequency));
}

std::uint64_t CameraClock::stamp(Nanoseconds at, std::uint64_t position) const {
    const Nanoseconds jitter =
        m_oscillator.stampJitter > 0 ? noiseWithin(m_oscillator.stampJitter, m_oscillator.seed, position) : 0;
    return ticksOf(ownTime(at) + jitter);
}

}  // namespace simulator
