/// A one-byte lock for a few instructions' work.
#pragma once

#include <atomic>

#include "mutex.h"

namespace zelt_gige_camera {

/// Usable with std::lock_guard. Spins first, then yields, then sleeps: see waitBefore.
class ZELT_THREAD_ANNOTATION(capability("mutex")) SpinLock {
  public:
    enum class Wait { None, Yield, Millisecond };

    /// How to wait before the given attempt (0 is the first): the first 16 spin, attempts 16 to 31 yield the
    /// time slice, all later ones sleep a millisecond.
    static constexpr Wait waitBefore(unsigned attempt) {
        if (attempt < 16) return Wait::None;
        return attempt < 32 ? Wait::Yield : Wait::Millisecond;
    }

    void lock() ZELT_THREAD_ANNOTATION(acquire_capability());
    void unlock() ZELT_THREAD_ANNOTATION(release_capability());

  private:
    std::atomic<bool> m_taken{false};
};

/// Holds a spin lock for a scope.
class ZELT_THREAD_ANNOTATION(scoped_lockable) SpinLockGuard {
  public:
    explicit SpinLockGuard(SpinLock& lock) ZELT_THREAD_ANNOTATION(acquire_capability(lock)) : m_lock(lock) {
        m_lock.lock();
    }
    ~SpinLockGuard() ZELT_THREAD_ANNOTATION(release_capability()) { m_lock.unlock(); }
    SpinLockGuard(const SpinLockGuard&) = delete;
    SpinLockGuard& operator=(const SpinLockGuard&) = delete;

  private:
    SpinLock& m_lock;
};

}  // namespace zelt_gige_camera
