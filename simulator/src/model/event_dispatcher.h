/// Delivers the events of one owner (a camera, or the library itself) on a thread of its own: first the
/// values that the event brings, then one call per registration on each of its features.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "clock.h"
#include "library_thread.h"
#include "result.h"
#include "thread_role.h"

namespace simulator {

using InvalidationCallback = void (*)(void* owner, const char* feature, void* context);

struct Event {
    std::vector<const char*> features;  ///< literals, in order of invalidation
    std::function<void()> apply;  ///< sets the values; runs without any lock, may post more; may be empty
    Nanoseconds dueAt = 0;        ///< delivered at this true time, or at once when that is over
};

class EventDispatcher {
  public:
    /// `delivered` runs on the dispatcher's thread, without any lock, after each event.
    EventDispatcher(SimulatorClock& clock, ThreadRole role, std::function<void()> delivered);
    ~EventDispatcher();

    /// Starts the thread; `owner` is what callbacks get. Throws when the system refuses a thread.
    void start(void* owner);
    /// Forgets events and registrations, waits for a running callback and ends the thread. Not on that
    /// thread.
    void stop();
    bool isOwnThread() const;
    /// Is the caller in a callback for this feature?
    bool isInvalidating(const char* feature) const;

    /// The same feature and callback again: replaces the context, and is true.
    bool add(const char* feature, InvalidationCallback callback, void* context);
    /// When it returns no call of this registration runs or will start. It does not wait on the own thread.
    /// NotFound when there is no such registration.
    Result remove(const char* feature, InvalidationCallback callback);

    std::uint32_t registrationCount() const;

    /// Returns the event's number. An event that nobody is registered for and that brings no values is
    /// dropped.
    std::uint64_t post(Event event);
    /// Forgets what is not due yet.
    void dropLater();
    bool isDelivered(std::uint64_t number) const;
    /// False when events were left at true time `deadline`.
    bool waitUntilIdle(Nanoseconds deadline);

  private:
    struct Registration {
        const char* feature;
        InvalidationCallback callback;
        void* context;
    };
    struct Pending {
        std::uint64_t number;
        Event event;
    };
    using Lock = std::unique_lock<std::mutex>;

    void run();
    void deliver(Lock& lock, const Event& event);
    void invalidate(Lock& lock, const char* feature);
    bool isWanted(const Event& event) const;
    std::deque<Pending>::iterator nextDue();
    std::vector<Registration>::iterator find(const char* feature, InvalidationCallback callback);

    SimulatorClock& m_clock;
    const ThreadRole m_role;
    const std::function<void()> m_delivered;
    void* m_owner = nullptr;
    mutable std::mutex m_mutex;
    Condition m_changed;  // an event came or must stop
    Condition m_done;     // a callback or an event is through
    std::vector<Registration> m_registrations;
    std::deque<Pending> m_pending;
    std::uint64_t m_posted = 0;
    std::uint64_t m_inDelivery = 0;  // number of the event under way, 0 for none
    const Registration* m_running = nullptr;
    bool m_stop = false;
    LibraryThread m_thread;
};

}  // namespace simulator
