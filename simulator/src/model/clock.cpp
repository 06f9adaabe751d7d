#include "clock.h"

#include <chrono>

#include "native_thread.h"
#include "watchdog.h"

namespace simulator {
namespace {

void watchedWait(std::condition_variable& condition, std::unique_lock<std::mutex>& lock) {
    const std::chrono::milliseconds limit = Watchdog::limit();
    if (limit.count() == 0) {
        condition.wait(lock);
    } else if (condition.wait_for(lock, limit) == std::cv_status::timeout) {
        Watchdog::bark();
    }
}

}  // namespace

struct RealClock::Thread : Turn {
    std::mutex mutex;
    std::condition_variable change;
    bool ended = false;
};

Nanoseconds RealClock::now() const {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void RealClock::wait(Condition& condition, std::unique_lock<std::mutex>& lock) {
    watchedWait(condition.m_variable, lock);
}

std::unique_ptr<Turn> RealClock::admit() {
    return std::make_unique<Thread>();
}

void RealClock::end(Turn& turn) {
    auto& thread = static_cast<Thread&>(turn);
    const std::lock_guard lock(thread.mutex);
    thread.ended = true;
    thread.change.notify_all();
}

void RealClock::join(Turn& turn) {
    auto& thread = static_cast<Thread&>(turn);
    std::unique_lock lock(thread.mutex);
    while (!thread.ended) watchedWait(thread.change, lock);
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
