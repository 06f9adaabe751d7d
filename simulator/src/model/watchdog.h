/// Ends a process whose client waits in a call of the library for good, as it does with a lock that a
/// callback needs: with the call, and the stacks of all threads, on the standard error stream. [any thread]
#pragma once

#include <chrono>

namespace simulator {

class Watchdog {
  public:
    /// How long a call may wait in real time without anything happening; zero, as at first, for ever.
    static void setLimit(std::chrono::milliseconds limit);
    static std::chrono::milliseconds limit();

    /// The call that runs on this thread has waited too long.
    [[noreturn]] static void bark();
};

}  // namespace simulator
