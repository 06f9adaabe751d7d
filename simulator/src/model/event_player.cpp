#include "event_player.h"

#include <algorithm>
#include <utility>

namespace simulator {

EventPlayer::EventPlayer(SimulatorClock& clock, const std::vector<ScenarioEvent>& events, Act act)
    : m_clock(clock), m_events(events), m_act(std::move(act)), m_changed(clock), m_thread(clock) {}

EventPlayer::~EventPlayer() {
    stop();
}

void EventPlayer::start() {
    Lock lock(m_mutex);
    const Nanoseconds zero = m_clock.now();
    m_stop = false;
    m_planned.clear();
    for (const ScenarioEvent& event : m_events) {
        const bool waits = !event.after.empty();
        m_planned.push_back({&event, waits ? kNever : zero + event.at, event.times, waits});
    }
    for (Planned& planned : m_planned) {
        if (planned.due == zero) perform(lock, planned);
    }
    const bool isOver = std::all_of(m_planned.begin(), m_planned.end(), [](const Planned& planned) {
        return planned.due == kNever && !planned.waits;
    });
    if (!isOver) m_thread.start(ThreadRole::Scenario, [this] { run(); });
}

void EventPlayer::stop() {
    {
        const Lock lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify();
    m_thread.join();
}

void EventPlayer::noteStart(std::string_view camera) {
    const Lock lock(m_mutex);
    const Nanoseconds zero = m_clock.now();
    bool any = false;
    for (Planned& planned : m_planned) {
        if (!planned.waits || planned.event->after != camera) continue;
        planned.waits = false;
        planned.due = zero + planned.event->at;
        any = true;
    }
    if (any) m_changed.notify();
}

void EventPlayer::run() {
    Lock lock(m_mutex);
    while (!m_stop) {
        Planned* const planned = next();
        if (planned == nullptr) {
            m_changed.rest(lock);
        } else if (planned->due > m_clock.now()) {
            m_changed.waitUntil(lock, planned->due);
        } else {
            perform(lock, *planned);
        }
    }
}

EventPlayer::Planned* EventPlayer::next() {
    const auto first = std::min_element(m_planned.begin(), m_planned.end(),
                                        [](const Planned& a, const Planned& b) { return a.due < b.due; });
    return first != m_planned.end() && first->due != kNever ? &*first : nullptr;
}

void EventPlayer::perform(Lock& lock, Planned& planned) {
    const bool isLast = planned.left == 1;
    if (planned.left > 0) --planned.left;
    planned.due = isLast ? kNever : planned.due + planned.event->every;
    lock.unlock();
    m_act(*planned.event);
    lock.lock();
}

}  // namespace simulator
