#include "virtual_clock.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "watchdog.h"

namespace simulator {

namespace {

constexpr std::uint64_t kTurnsInARow = 4096;

}  // namespace

thread_local VirtualClock::Member* VirtualClock::t_self = nullptr;

void VirtualClock::waitUntil(Condition& condition, std::unique_lock<std::mutex>& lock, Nanoseconds deadline) {
    if (t_self != nullptr) {
        waitAsMember(*t_self, condition, lock, deadline);
        return;
    }
    Guest guest;
    {
        Lock own(m_mutex);
        guest.on = &condition;
        guest.due = deadline;
        lock.unlock();
        drive(own, guest);
    }
    lock.lock();
}

void VirtualClock::waitAsMember(Member& self, Condition& condition, Lock& outer, Nanoseconds due) {
    Lock own(m_mutex);
    self.on = &condition;
    self.due = due;
    if (isNext(self)) {
        if (due > now()) m_now.store(due, std::memory_order_relaxed);
        self.on = nullptr;
        if (++m_turns % kTurnsInARow != 0) return;
        // Clients want the lock too, and a mutex alone would not let them have it.
        own.unlock();
        outer.unlock();
        std::this_thread::sleep_for(std::chrono::microseconds(50));
        outer.lock();
        return;
    }
    m_turn = nullptr;
    dispatch();
    outer.unlock();
    self.called.wait(own, [&] { return m_turn == &self; });
    own.unlock();
    outer.lock();
}

void VirtualClock::notify(Condition& condition) {
    const Lock own(m_mutex);
    bool any = false;
    for (Member* member : m_members) {
        if (member->on != &condition) continue;
        member->on = nullptr;
        member->due = now();
        any = true;
    }
    for (Guest* guest : m_guests) {
        if (guest->on != &condition) continue;
        guest->done = true;
        // A thread of the library may keep its turn for long.
        guest->called.notify_one();
        any = true;
    }
    if (any && m_turn == nullptr) dispatch();
}

std::unique_ptr<Turn> VirtualClock::admit() {
    auto member = std::make_unique<Member>(*this);
    const Lock own(m_mutex);
    member->due = now();
    m_members.push_back(member.get());
    return member;
}

VirtualClock::Member::~Member() {
    // A thread that the system refused was admitted all the same.
    const Lock own(clock.m_mutex);
    std::erase(clock.m_members, this);
    if (clock.m_turn != this) return;
    clock.m_turn = nullptr;
    clock.dispatch();
}

void VirtualClock::begin(Turn& turn) {
    auto& self = static_cast<Member&>(turn);
    Lock own(m_mutex);
    self.called.wait(own, [&] { return m_turn == &self; });
    t_self = &self;
}

void VirtualClock::end(Turn& turn) {
    auto& self = static_cast<Member&>(turn);
    {
        const Lock own(m_mutex);
        std::erase(m_members, &self);
        self.ended = true;
    }
    notify(m_ended);
    const Lock own(m_mutex);
    t_self = nullptr;
    m_turn = nullptr;
    dispatch();
}

void VirtualClock::join(Turn& turn) {
    const auto& member = static_cast<Member&>(turn);
    if (t_self != nullptr) {
        // The condition's own lock is the clock's; a thread of the library needs another one to wait with.
        std::mutex mutex;
        Lock lock(mutex);
        const auto isOver = [&] {
            const Lock own(m_mutex);
            return member.ended;
        };
        while (!isOver()) waitAsMember(*t_self, m_ended, lock, kNever);
        return;
    }
    Lock own(m_mutex);
    while (!member.ended) {
        Guest guest;
        guest.on = &m_ended;
        guest.due = kNever;
        drive(own, guest);
    }
}

void VirtualClock::advance(Nanoseconds span) {
    Guest guest;
    Lock own(m_mutex);
    guest.due = span < kNever - now() ? now() + span : kNever - 1;
    drive(own, guest);
}

bool VirtualClock::runUntilIdle(Nanoseconds span) {
    Guest guest;
    Lock own(m_mutex);
    guest.due = span < kNever - now() ? now() + span : kNever - 1;
    guest.endsWhenIdle = true;
    drive(own, guest);
    return guest.idle;
}

void VirtualClock::drive(Lock& lock, Guest& guest) {
    m_guests.push_back(&guest);
    if (m_turn == nullptr) dispatch();
    // As long as others drive, turns go on; a lone client's thread runs only when no other does.
    const auto isOver = [&] { return guest.done && (m_turn == nullptr || isAnyoneDriving()); };
    while (!isOver()) {
        const std::chrono::milliseconds limit = Watchdog::limit();
        const std::uint64_t turns = m_turns;
        if (limit.count() == 0) {
            guest.called.wait(lock);
        } else if (guest.called.wait_for(lock, limit) == std::cv_status::timeout) {
            if (turns == m_turns && !isOver()) Watchdog::bark();
        }
    }
    std::erase(m_guests, &guest);
}

void VirtualClock::dispatch() {
    for (;;) {
        for (Guest* guest : m_guests) {
            if (guest->done) guest->called.notify_one();
        }
        if (!isAnyoneDriving()) return;
        Member* next = earliest();
        const Nanoseconds at = next != nullptr ? std::max(next->due, now()) : kNever;
        if (at != kNever && at <= horizon()) {
            m_now.store(at, std::memory_order_relaxed);
            next->on = nullptr;
            m_turn = next;
            ++m_turns;
            next->called.notify_one();
            return;
        }
        if (at == kNever && endIdleCalls()) continue;
        if (horizon() == kNever) return;
        m_now.store(horizon(), std::memory_order_relaxed);
        endCalls(now());
    }
}

bool VirtualClock::isNext(const Member& self) const {
    return self.due != kNever && isAnyoneDriving() && self.due <= horizon() && earliest() == &self;
}

VirtualClock::Member* VirtualClock::earliest() const {
    const auto first = std::min_element(m_members.begin(), m_members.end(),
                                        [](const Member* a, const Member* b) { return a->due < b->due; });
    return first != m_members.end() ? *first : nullptr;
}

bool VirtualClock::isAnyoneDriving() const {
    return std::any_of(m_guests.begin(), m_guests.end(), [](const Guest* guest) { return !guest->done; });
}

Nanoseconds VirtualClock::horizon() const {
    Nanoseconds first = kNever;
    for (const Guest* guest : m_guests) {
        if (!guest->done) first = std::min(first, guest->due);
    }
    return std::max(first, now());
}

void VirtualClock::endCalls(Nanoseconds at) {
    for (Guest* guest : m_guests) {
        if (guest->due <= at) guest->done = true;
    }
}

bool VirtualClock::endIdleCalls() {
    bool any = false;
    for (Guest* guest : m_guests) {
        if (guest->done || !guest->endsWhenIdle) continue;
        guest->idle = true;
        guest->done = true;
        any = true;
    }
    return any;
}

}  // namespace simulator
