/// A camera's own clock: true time since power-up or the last reset, seen through its oscillator.
#pragma once

#include <cstdint>

#include "clock.h"

namespace simulator {

class CameraClock {
  public:
    static constexpr std::int64_t kTickFrequency = 1'000'000'000;

    /// Starts at zero at true time `powerUp`; the oscillator is `ppb` parts in 10^9 too fast.
    CameraClock(Nanoseconds powerUp, std::int64_t ppb) : m_powerUp(powerUp), m_ppb(ppb) {}

    /// Makes the counter zero at true time `now`.
    void reset(Nanoseconds now) { m_zero = ownTime(now); }

    std::uint64_t ticks(Nanoseconds now) const {
        const std::int64_t ticks = ownTime(now) - m_zero;
        return ticks > 0 ? static_cast<std::uint64_t>(ticks) : 0;
    }

    /// True length of a span that this clock measures as `own` nanoseconds.
    Nanoseconds trueSpan(Nanoseconds own) const {
        // Second order is below a nanosecond for every span and error that occurs here.
        return own - scaled(own) + scaled(scaled(own));
    }

  private:
    std::int64_t ownTime(Nanoseconds now) const {
        const Nanoseconds span = now - m_powerUp;
        return span + scaled(span);
    }
    // Split, since the plain product leaves 64 bits after some days.
    std::int64_t scaled(Nanoseconds span) const {
        return span / kSecond * m_ppb + span % kSecond * m_ppb / kSecond;
    }

    Nanoseconds m_powerUp;
    std::int64_t m_ppb;
    std::int64_t m_zero = 0;
};

}  // namespace simulator
