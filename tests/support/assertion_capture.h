/// Captures failed assertions while it lives, in place of the process-wide hook.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "assertion.h"

namespace test_support {

struct FailedAssertion {
    std::string expression;
    std::optional<std::string> message;
    std::string file;
    int line = 0;
};

class AssertionCapture {
  public:
    /// The hook answers `result` (0 would stop the program).
    explicit AssertionCapture(int result = 1);
    ~AssertionCapture();
    AssertionCapture(const AssertionCapture&) = delete;
    AssertionCapture& operator=(const AssertionCapture&) = delete;

    std::vector<FailedAssertion> failures() const;
    /// Expressions of the failures, in order.
    std::vector<std::string> expressions() const;

  private:
    diagnostics::AssertionHook m_previous;
};

}  // namespace test_support
