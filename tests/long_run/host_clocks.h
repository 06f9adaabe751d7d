/// The host's clocks in virtual time: the simulator's true time, and what the handling of a frame adds to it.
#pragma once

#include <cstdint>
#include <optional>
#include <random>

#include "clocks.h"
#include "if_master_clock.h"

namespace test_support {

/// Takes the place of the operating system's counter in this program, so that a frame that waits for the
/// plug-in waits as long in every run. One thread at a time, as all threads in virtual time.
class VirtualCounter final : public platform::PerformanceCounter {
  public:
    std::int64_t frequency() noexcept override { return 1'000'000'000; }
    std::int64_t now() noexcept override;
    /// Counts `ns` more, until virtual time goes on.
    void delay(std::uint64_t ns);

  private:
    std::uint64_t m_delayed_at = 0;
    std::uint64_t m_delay = 0;
};

/// The one that the plug-in uses.
VirtualCounter& virtualCounter();

/// A host's clock in nanoseconds. A frame whose synchronization point reads it has waited for less than 40
/// microseconds, and once in fifty for a millisecond.
class BusyHostClock final : public zelt::IfMasterClock {
  public:
    struct Reading {
        std::uint64_t time = 0;
        std::uint64_t waited = 0;
    };

    /// `origin`: the clock's reading at virtual time 0.
    explicit BusyHostClock(std::uint64_t origin) : m_origin(origin) {}

    double getRate() override { return 1e9; }
    std::uint64_t getTime() override;
    /// The clock's reading since this was called last, if there was one.
    std::optional<Reading> takeReading();
    std::uint64_t origin() const { return m_origin; }

  private:
    const std::uint64_t m_origin;
    std::mt19937_64 m_random{99};
    std::optional<Reading> m_reading;
};

}  // namespace test_support
