/// Clocks of the operating system, replaceable from outside.
#pragma once

#include <cstdint>

namespace platform {

/// A monotonic counter of high resolution.
class PerformanceCounter {
  public:
    virtual ~PerformanceCounter() = default;
    /// Counts per second, constant. [any thread]
    virtual std::int64_t frequency() noexcept = 0;
    /// Counts since an arbitrary origin. [any thread] Never blocks.
    virtual std::int64_t now() noexcept = 0;
};

/// The operating system's counter.
PerformanceCounter& systemPerformanceCounter();

/// The time of day, which may be set back.
class WallClock {
  public:
    virtual ~WallClock() = default;
    /// Seconds since 1970. [any thread]
    virtual double now() noexcept = 0;
};

/// The operating system's time of day.
WallClock& systemWallClock();

}  // namespace platform
