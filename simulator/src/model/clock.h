/// True time of the simulation and the only door through which its threads wait, so that time can be
/// driven from outside.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace simulator {

/// Nanoseconds of true time.
using Nanoseconds = std::int64_t;

inline constexpr Nanoseconds kSecond = 1'000'000'000;
inline constexpr Nanoseconds kMillisecond = 1'000'000;
inline constexpr Nanoseconds kMicrosecond = 1'000;

/// [any thread]
class SimulatorClock {
  public:
    virtual ~SimulatorClock() = default;
    virtual Nanoseconds now() const = 0;
    /// Waits on the condition, at most until `deadline`; may wake early. The caller holds the lock.
    virtual void waitUntil(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                           Nanoseconds deadline) = 0;
    /// As waitUntil, but ends on time to the microsecond: the last stretch is spent without the lock and
    /// without giving the processor away.
    virtual void waitPrecisely(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                               Nanoseconds deadline) = 0;
    /// Waits on the condition without a limit; may wake early.
    virtual void wait(std::condition_variable& condition, std::unique_lock<std::mutex>& lock) = 0;
};

/// The system's monotonic clock.
class RealClock : public SimulatorClock {
  public:
    Nanoseconds now() const override;
    void waitUntil(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                   Nanoseconds deadline) override;
    void waitPrecisely(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                       Nanoseconds deadline) override;
    void wait(std::condition_variable& condition, std::unique_lock<std::mutex>& lock) override;
};

}  // namespace simulator
