/// Time that stands still until somebody drives it.
///
/// The library's threads take turns: never do two of them run at once, and none runs unless a client's
/// thread lets time go on, by `advance`, by `runUntilIdle`, or by a call that waits. Among those whose time
/// has come, the earliest goes first, then the one admitted first. With one client thread the order of
/// everything is therefore the same in every run. A thread whose next event is the next of all keeps its
/// turn, so that the frames of a single camera cost no change of threads.
///
/// A client's waiting call ends when it is notified or when its own time has come, and then only when no
/// thread of the library runs. While it waits, time goes on as far as it is ready to wait.
#pragma once

#include <atomic>
#include <vector>

#include "clock.h"

namespace simulator {

class VirtualClock : public SimulatorClock {
  public:
    Nanoseconds now() const override { return m_now.load(std::memory_order_relaxed); }
    void wait(Condition& condition, std::unique_lock<std::mutex>& lock) override {
        waitUntil(condition, lock, kNever);
    }
    void waitUntil(Condition& condition, std::unique_lock<std::mutex>& lock, Nanoseconds deadline) override;
    void waitPrecisely(Condition& condition, std::unique_lock<std::mutex>& lock,
                       Nanoseconds deadline) override {
        waitUntil(condition, lock, deadline);
    }
    void notify(Condition& condition) override;
    std::unique_ptr<Turn> admit() override;
    void begin(Turn& turn) override;
    void end(Turn& turn) override;
    void join(Turn& turn) override;

    /// Makes it zero o'clock. No thread may run or wait by this clock.
    void restart() { m_now = 0; }
    /// Lets `span` pass, with everything that is due until then, its end included. Not on a thread of the
    /// library.
    void advance(Nanoseconds span);
    /// Lets time pass until nothing is due any more; false when that took more than `span`.
    bool runUntilIdle(Nanoseconds span);

  private:
    struct Member : Turn {
        explicit Member(VirtualClock& its) : clock(its) {}
        ~Member() override;
        VirtualClock& clock;
        const Condition* on = nullptr;
        Nanoseconds due = 0;
        bool ended = false;
        std::condition_variable called;
    };
    struct Guest {
        const Condition* on = nullptr;
        Nanoseconds due = 0;
        bool endsWhenIdle = false;
        bool idle = false;
        bool done = false;
        std::condition_variable called;
    };
    using Lock = std::unique_lock<std::mutex>;

    void waitAsMember(Member& self, Condition& condition, Lock& outer, Nanoseconds due);
    void drive(Lock& lock, Guest& guest);
    /// Gives the free turn to whoever is next, after letting the time pass that lies before it.
    void dispatch();
    /// Is the one that has the turn also the next one?
    bool isNext(const Member& self) const;
    Member* earliest() const;
    bool isAnyoneDriving() const;
    /// Until when time may go on before a client's call ends.
    Nanoseconds horizon() const;
    void endCalls(Nanoseconds at);
    bool endIdleCalls();

    static thread_local Member* t_self;

    mutable std::mutex m_mutex;
    std::atomic<Nanoseconds> m_now{0};
    std::vector<Member*> m_members;  // in order of admission
    std::vector<Guest*> m_guests;    // calls of clients that wait
    Member* m_turn = nullptr;
    std::uint64_t m_turns = 0;  // given or kept so far
    Condition m_ended{*this};
};

}  // namespace simulator
