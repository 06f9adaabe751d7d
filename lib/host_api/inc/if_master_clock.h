#pragma once

#include <cstdint>

namespace zelt {

/// The host's time base. Shared with every channel; no destructor slot, so it is held by shared_ptr only.
class IfMasterClock {
  public:
    /// Units per second, greater than 0, always the same. [any thread]
    virtual double getRate() = 0;
    /// Now, in units; 0 while the clock does not run. [any thread] Called on the frame path: must be quick.
    virtual std::uint64_t getTime() = 0;

  protected:
    ~IfMasterClock() = default;
};

}  // namespace zelt
