#pragma once

#include <cstdint>

#include "assertion.h"
#include "console.h"

namespace host {

/// Counts the process's failed assertions while it lives and shows the first one of every place. One at a
/// time; the program always goes on.
class AssertionMonitor {
  public:
    explicit AssertionMonitor(Console& console);
    ~AssertionMonitor();
    AssertionMonitor(const AssertionMonitor&) = delete;
    AssertionMonitor& operator=(const AssertionMonitor&) = delete;

    /// Failures so far, shown or not. [any thread]
    std::uint64_t count() const;

  private:
    diagnostics::AssertionHook m_previous;
};

}  // namespace host
