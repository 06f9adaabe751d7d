/// A mutex whose use clang checks at compile time, and the annotations for it.
#pragma once

#include <mutex>

#if defined(__clang__)
#define ZELT_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define ZELT_THREAD_ANNOTATION(x)
#endif

/// Data that may only be touched with the mutex held.
#define ZELT_GUARDED_BY(mutex) ZELT_THREAD_ANNOTATION(guarded_by(mutex))
/// The caller must hold the mutex.
#define ZELT_REQUIRES(...) ZELT_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// The caller must not hold the mutex.
#define ZELT_EXCLUDES(...) ZELT_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

namespace platform {

class ZELT_THREAD_ANNOTATION(capability("mutex")) Mutex {
  public:
    void lock() ZELT_THREAD_ANNOTATION(acquire_capability()) { m_mutex.lock(); }
    void unlock() ZELT_THREAD_ANNOTATION(release_capability()) { m_mutex.unlock(); }
    /// True when the mutex was free and is the caller's now.
    bool tryLock() ZELT_THREAD_ANNOTATION(try_acquire_capability(true)) { return m_mutex.try_lock(); }

  private:
    std::mutex m_mutex;
};

/// A mutex that its holder may lock again. For what code of others may call back while it was called with the
/// mutex held, on the same thread.
class ZELT_THREAD_ANNOTATION(capability("mutex")) ReentrantMutex {
  public:
    void lock() ZELT_THREAD_ANNOTATION(acquire_capability()) { m_mutex.lock(); }
    void unlock() ZELT_THREAD_ANNOTATION(release_capability()) { m_mutex.unlock(); }
    /// True when no other thread had it, and it is the caller's now.
    bool tryLock() ZELT_THREAD_ANNOTATION(try_acquire_capability(true)) { return m_mutex.try_lock(); }

  private:
    std::recursive_mutex m_mutex;
};

/// Holds a mutex for a scope.
template <class AnyMutex>
class ZELT_THREAD_ANNOTATION(scoped_lockable) MutexLock {
  public:
    explicit MutexLock(AnyMutex& mutex) ZELT_THREAD_ANNOTATION(acquire_capability(mutex)) : m_mutex(mutex) {
        m_mutex.lock();
    }
    /// Calls `beforeWaiting` first when the mutex is not free at once.
    template <typename Action>
    MutexLock(AnyMutex& mutex, const Action& beforeWaiting) ZELT_THREAD_ANNOTATION(acquire_capability(mutex))
        : m_mutex(mutex) {
        if (m_mutex.tryLock()) return;
        beforeWaiting();
        m_mutex.lock();
    }
    ~MutexLock() ZELT_THREAD_ANNOTATION(release_capability()) { m_mutex.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

  private:
    AnyMutex& m_mutex;
};

}  // namespace platform
