#include "event_dispatcher.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "feature_table.h"

namespace simulator {
namespace {

thread_local const EventDispatcher* t_ownDispatcher = nullptr;

}  // namespace

EventDispatcher::EventDispatcher(SimulatorClock& clock, ThreadRole role, std::function<void()> delivered)
    : m_clock(clock),
      m_role(role),
      m_delivered(std::move(delivered)),
      m_changed(clock),
      m_done(clock),
      m_thread(clock) {}

EventDispatcher::~EventDispatcher() {
    stop();
}

void EventDispatcher::start(void* owner) {
    const Lock lock(m_mutex);
    m_owner = owner;
    m_stop = false;
    m_thread.start(m_role, [this] { run(); });
}

void EventDispatcher::stop() {
    {
        const Lock lock(m_mutex);
        m_stop = true;
        m_pending.clear();
        m_registrations.clear();
    }
    m_changed.notify();
    m_done.notify();
    m_thread.join();
}

bool EventDispatcher::isOwnThread() const {
    return t_ownDispatcher == this;
}

bool EventDispatcher::isInvalidating(const char* feature) const {
    // Only the own thread changes what is read here.
    return isOwnThread() && m_running != nullptr && std::strcmp(m_running->feature, feature) == 0;
}

bool EventDispatcher::add(const char* feature, InvalidationCallback callback, void* context) {
    const Lock lock(m_mutex);
    const auto found = find(feature, callback);
    const bool known = found != m_registrations.end();
    if (known) {
        found->context = context;
    } else {
        m_registrations.push_back({keptText(feature), callback, context});
    }
    return known;
}

Result EventDispatcher::remove(const char* feature, InvalidationCallback callback) {
    Lock lock(m_mutex);
    const auto runs = [&] {
        return m_running != nullptr && m_running->callback == callback &&
               std::strcmp(m_running->feature, feature) == 0;
    };
    const auto found = find(feature, callback);
    const Result result = found != m_registrations.end() ? Result::Success : Result::NotFound;
    if (result == Result::Success) m_registrations.erase(found);
    const std::uint64_t event = m_inDelivery;
    while (!isOwnThread() && runs() && m_inDelivery == event) m_done.wait(lock);
    return result;
}

std::uint32_t EventDispatcher::registrationCount() const {
    const Lock lock(m_mutex);
    return static_cast<std::uint32_t>(m_registrations.size());
}

std::uint64_t EventDispatcher::post(Event event) {
    const Lock lock(m_mutex);
    const std::uint64_t number = ++m_posted;
    if (!m_stop && isWanted(event)) {
        // Behind what is due already, should the thread be late.
        event.dueAt = std::max(event.dueAt, m_clock.now());
        m_pending.push_back({number, std::move(event)});
        m_changed.notify();
    }
    return number;
}

void EventDispatcher::dropLater() {
    const Lock lock(m_mutex);
    const Nanoseconds now = m_clock.now();
    std::erase_if(m_pending, [=](const Pending& pending) { return pending.event.dueAt > now; });
}

bool EventDispatcher::isWanted(const Event& event) const {
    if (event.apply) return true;
    return std::any_of(m_registrations.begin(), m_registrations.end(), [&](const Registration& known) {
        return std::any_of(event.features.begin(), event.features.end(),
                           [&](const char* name) { return std::strcmp(known.feature, name) == 0; });
    });
}

bool EventDispatcher::isDelivered(std::uint64_t number) const {
    const Lock lock(m_mutex);
    if (m_inDelivery == number) return number == 0;
    return std::none_of(m_pending.begin(), m_pending.end(),
                        [&](const Pending& pending) { return pending.number == number; });
}

bool EventDispatcher::waitUntilIdle(Nanoseconds deadline) {
    Lock lock(m_mutex);
    while (!m_pending.empty() || m_inDelivery != 0) {
        if (m_clock.now() >= deadline) return false;
        m_done.waitUntil(lock, deadline);
    }
    return true;
}

std::deque<EventDispatcher::Pending>::iterator EventDispatcher::nextDue() {
    return std::min_element(m_pending.begin(), m_pending.end(),
                            [](const Pending& a, const Pending& b) { return a.event.dueAt < b.event.dueAt; });
}

std::vector<EventDispatcher::Registration>::iterator EventDispatcher::find(const char* feature,
                                                                           InvalidationCallback callback) {
    return std::find_if(m_registrations.begin(), m_registrations.end(), [&](const Registration& known) {
        return known.callback == callback && std::strcmp(known.feature, feature) == 0;
    });
}

void EventDispatcher::run() {
    t_ownDispatcher = this;
    Lock lock(m_mutex);
    while (!m_stop) {
        const auto next = nextDue();
        if (next == m_pending.end()) {
            m_changed.rest(lock);
        } else if (next->event.dueAt > m_clock.now()) {
            m_changed.waitUntil(lock, next->event.dueAt);
        } else {
            const Pending pending = std::move(*next);
            m_pending.erase(next);
            m_inDelivery = pending.number;
            deliver(lock, pending.event);
            m_inDelivery = 0;
            lock.unlock();
            m_done.notify();
            m_delivered();
            lock.lock();
        }
    }
}

void EventDispatcher::deliver(Lock& lock, const Event& event) {
    if (event.apply) {
        lock.unlock();
        event.apply();
        lock.lock();
    }
    for (const char* feature : event.features) invalidate(lock, feature);
}

void EventDispatcher::invalidate(Lock& lock, const char* feature) {
    const std::vector<Registration> known = m_registrations;
    for (const Registration& candidate : known) {
        if (std::strcmp(candidate.feature, feature) != 0) continue;
        // Registrations may have changed while an earlier callback ran.
        const auto found = find(feature, candidate.callback);
        if (found == m_registrations.end()) continue;
        const Registration call = *found;
        m_running = &call;
        lock.unlock();
        call.callback(m_owner, call.feature, call.context);
        lock.lock();
        m_running = nullptr;
        m_done.notify();
    }
}

}  // namespace simulator
