/// A camera's own clock: true time since power-up or the last reset, seen through its oscillator.
#pragma once

#include <cstdint>

#include "clock.h"

namespace simulator {

struct OscillatorRow {
    std::int64_t tickFrequency = kSecond;  ///< Hz, 1 to 10^9
    std::uint64_t startTicks = 0;          ///< at power-up
    std::int64_t errorPpb = 0;             ///< how much too fast it is, within 10^6
    /// The error swings slowly between plus and minus this much, as with the temperature of a room.
    std::int64_t driftPpb = 0;
    Nanoseconds driftPeriod = 3600 * kSecond;
    Nanoseconds stampJitter = 0;  ///< stamps are off by up to this much, either way
    std::uint64_t seed = 0;       ///< of the jitter
};

/// Not synchronised.
class CameraClock {
  public:
    CameraClock(Nanoseconds powerUp, const OscillatorRow& oscillator);

    /// Makes the counter zero at true time `now`.
    void reset(Nanoseconds now);

    /// The counter at a true time.
    std::uint64_t ticks(Nanoseconds now) const { return ticksOf(ownTime(now)); }
    /// The stamp of what happened then; `position` picks its error.
    std::uint64_t stamp(Nanoseconds at, std::uint64_t position) const;

    /// Nanoseconds that the oscillator has counted since power-up, at a true time, and back.
    Nanoseconds ownTime(Nanoseconds now) const;
    Nanoseconds trueTime(Nanoseconds own) const;

    void setSeed(std::uint64_t seed) { m_oscillator.seed = seed; }
    std::uint64_t seed() const { return m_oscillator.seed; }
    std::int64_t tickFrequency() const { return m_oscillator.tickFrequency; }

  private:
    std::uint64_t ticksOf(Nanoseconds own) const;

    Nanoseconds m_powerUp;
    OscillatorRow m_oscillator;
    Nanoseconds m_zero = 0;  // own time of the last reset
    std::uint64_t m_ticksAtZero;
};

}  // namespace simulator
