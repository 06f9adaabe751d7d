#include "clock.h"

#include <chrono>

namespace simulator {
namespace {

/// A sleeping thread is late by up to about this much on an idle machine.
constexpr Nanoseconds kWakeUpLatency = 150 * kMicrosecond;

}  // namespace

Nanoseconds RealClock::now() const {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void RealClock::waitUntil(Condition& condition, std::unique_lock<std::mutex>& lock, Nanoseconds deadline) {
    if (deadline == kNever) {
        condition.m_variable.wait(lock);
    } else {
        condition.m_variable.wait_until(
            lock, std::chrono::steady_clock::time_point(std::chrono::nanoseconds(deadline)));
    }
}

void RealClock::waitPrecisely(Condition& condition, std::unique_lock<std::mutex>& lock,
                              Nanoseconds deadline) {
    if (deadline - now() > kWakeUpLatency) {
        waitUntil(condition, lock, deadline - kWakeUpLatency);
        return;
    }
    lock.unlock();
    while (now() < deadline) continue;
    lock.lock();
}

}  // namespace simulator
