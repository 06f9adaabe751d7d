/// Lets the events of a scenario happen when they are due. [any thread]
#pragma once

#include <functional>
#include <mutex>
#include <string_view>
#include <vector>

#include "library_thread.h"
#include "scenario.h"

namespace simulator {

class EventPlayer {
  public:
    using Act = std::function<void(const ScenarioEvent&)>;

    /// `events` must outlive the player. `act` is called without any lock, one event after the other.
    EventPlayer(SimulatorClock& clock, const std::vector<ScenarioEvent>& events, Act act);
    ~EventPlayer();
    EventPlayer(const EventPlayer&) = delete;
    EventPlayer& operator=(const EventPlayer&) = delete;

    /// It is zero o'clock: what is due at once has happened when this returns, on the calling thread; the
    /// rest happens on a thread of its own, which is there only when there is a rest. Throws when the system
    /// refuses the thread.
    void start();
    /// Waits for an event that is happening; none happens afterwards.
    void stop();
    /// The camera starts to acquire; its first time since `start` counts.
    void noteStart(std::string_view camera);

  private:
    struct Planned {
        const ScenarioEvent* event;
        Nanoseconds due;
        std::uint64_t left;  ///< 0 for ever; while due is not kNever
        bool waits;          ///< for the start of its camera
    };
    using Lock = std::unique_lock<std::mutex>;

    void run();
    /// Of those of the same time the first of the file; null when there is none any more, or none yet.
    Planned* next();
    void perform(Lock& lock, Planned& planned);

    SimulatorClock& m_clock;
    const std::vector<ScenarioEvent>& m_events;
    const Act m_act;
    std::mutex m_mutex;
    Condition m_changed;
    std::vector<Planned> m_planned;
    bool m_stop = true;
    LibraryThread m_thread;
};

}  // namespace simulator
