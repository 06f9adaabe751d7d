#pragma once

#include <chrono>

#include "if_master_clock.h"

namespace host {

/// Nanoseconds of the system's monotonic clock. [any thread]
inline std::int64_t steadyNanoseconds() {
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

/// The host's time base: nanoseconds of the system's monotonic clock.
class SteadyMasterClock final : public zelt::IfMasterClock {
  public:
    double getRate() override { return 1e9; }
    std::uint64_t getTime() override { return static_cast<std::uint64_t>(steadyNanoseconds()); }
};

}  // namespace host
