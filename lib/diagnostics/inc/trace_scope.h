/// Entry and exit trace of an operation.
#pragma once

#include "logging.h"

namespace diagnostics {

/// Writes "Entering <operation> ..." at Trace when made and "... exiting <operation>." when it goes out of
/// scope, also when an exception leaves the scope. Never throws.
class ZELT_BASE_API TraceScope {
  public:
    /// `operation` must outlive the scope (a literal).
    TraceScope(Logger& logger, const char* operation) noexcept;
    ~TraceScope();
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;

  private:
    Logger& m_logger;
    const char* m_operation;
};

}  // namespace diagnostics
