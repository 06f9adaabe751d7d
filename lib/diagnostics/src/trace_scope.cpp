#include "trace_scope.h"

namespace diagnostics {

// A trace must not change what the traced operation does, so its own failures end here.
TraceScope::TraceScope(Logger& logger, const char* operation) noexcept
    : m_logger(logger), m_operation(operation) {
    try {
        ZELT_LOG(m_logger, Trace) << "Entering " << m_operation << " ...";
    } catch (...) {
    }
}

TraceScope::~TraceScope() {
    try {
        ZELT_LOG(m_logger, Trace) << "... exiting " << m_operation << ".";
    } catch (...) {
    }
}

}  // namespace diagnostics
