/// A thread of the library, run by the simulation's clock.
#pragma once

#include <functional>
#include <memory>
#include <thread>

#include "clock.h"
#include "thread_role.h"

namespace simulator {

class LibraryThread {
  public:
    explicit LibraryThread(SimulatorClock& clock) : m_clock(clock) {}
    ~LibraryThread() { join(); }
    LibraryThread(const LibraryThread&) = delete;
    LibraryThread& operator=(const LibraryThread&) = delete;

    /// Throws std::system_error when the system refuses a thread.
    void start(ThreadRole role, std::function<void()> body);
    /// Waits for the thread's end; several may. Not on that thread.
    void join();

  private:
    SimulatorClock& m_clock;
    std::mutex m_joining;
    std::unique_ptr<Turn> m_turn;
    std::thread m_thread;
};

}  // namespace simulator
