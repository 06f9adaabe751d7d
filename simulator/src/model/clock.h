/// True time of the simulation, and the only door through which threads wait for it or for each other, so
/// that time can be driven from outside.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>

namespace simulator {

/// Nanoseconds of true time.
using Nanoseconds = std::int64_t;

inline constexpr Nanoseconds kSecond = 1'000'000'000;
inline constexpr Nanoseconds kMillisecond = 1'000'000;
inline constexpr Nanoseconds kMicrosecond = 1'000;
inline constexpr Nanoseconds kNever = INT64_MAX;

/// The library's thread as its clock knows it.
class Turn {
  public:
    virtual ~Turn() = default;
};

class SimulatorClock;

/// A change that threads wait for. [any thread]
class Condition {
  public:
    explicit Condition(SimulatorClock& clock) : m_clock(clock) {}
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

    /// Waits without a limit, or at most until `deadline`; may wake early. The caller holds the lock.
    void wait(std::unique_lock<std::mutex>& lock);
    void waitUntil(std::unique_lock<std::mutex>& lock, Nanoseconds deadline);
    /// As waitUntil, but ends on time to the microsecond: the last stretch may be spent without the lock and
    /// without giving the processor away.
    void waitPrecisely(std::unique_lock<std::mutex>& lock, Nanoseconds deadline);
    /// As wait, for a thread of the library that has nothing to do: the watchdog leaves it alone.
    void rest(std::unique_lock<std::mutex>& lock) { waitUntil(lock, kNever); }
    void notify();

  private:
    friend class RealClock;

    SimulatorClock& m_clock;
    std::condition_variable m_variable;  // of real time
};

/// [any thread]
class SimulatorClock {
  public:
    virtual ~SimulatorClock() = default;
    virtual Nanoseconds now() const = 0;

    virtual void wait(Condition& condition, std::unique_lock<std::mutex>& lock) = 0;
    virtual void waitUntil(Condition& condition, std::unique_lock<std::mutex>& lock,
                           Nanoseconds deadline) = 0;
    virtual void waitPrecisely(Condition& condition, std::unique_lock<std::mutex>& lock,
                               Nanoseconds deadline) = 0;
    virtual void notify(Condition& condition) = 0;

    /// Threads of the library: admitted by whoever starts them; `begin` and `end` are the first and the last
    /// thing on the thread itself, `join` waits until `end` was called.
    virtual std::unique_ptr<Turn> admit() = 0;
    virtual void begin(Turn& turn) = 0;
    virtual void end(Turn& turn) = 0;
    virtual void join(Turn& turn) = 0;
};

/// The system's monotonic clock.
class RealClock : public SimulatorClock {
  public:
    Nanoseconds now() const override;
    void wait(Condition& condition, std::unique_lock<std::mutex>& lock) override;
    void waitUntil(Condition& condition, std::unique_lock<std::mutex>& lock, Nanoseconds deadline) override;
    void waitPrecisely(Condition& condition, std::unique_lock<std::mutex>& lock,
                       Nanoseconds deadline) override;
    void notify(Condition& condition) override { condition.m_variable.notify_all(); }
    std::unique_ptr<Turn> admit() override;
    void begin(Turn&) override {}
    void end(Turn& turn) override;
    void join(Turn& turn) override;

  private:
    struct Thread;
};

inline void Condition::wait(std::unique_lock<std::mutex>& lock) {
    m_clock.wait(*this, lock);
}

inline void Condition::waitUntil(std::unique_lock<std::mutex>& lock, Nanoseconds deadline) {
    m_clock.waitUntil(*this, lock, deadline);
}

inline void Condition::waitPrecisely(std::unique_lock<std::mutex>& lock, Nanoseconds deadline) {
    m_clock.waitPrecisely(*this, lock, deadline);
}

inline void Condition::notify() {
    m_clock.notify(*this);
}

}  // namespace simulator
