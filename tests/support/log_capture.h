/// Captures the records of the process's logging core while it lives.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <boost/smart_ptr/shared_ptr.hpp>

#include "logging.h"

namespace test_support {

struct LogLine {
    unsigned severity = 0;
    std::string channel;
    std::string text;
    bool operator==(const LogLine&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const LogLine& line);

/// Installs a synchronous sink and switches logging on; the destructor undoes both.
class LogCapture {
  public:
    /// Records below `least` are filtered out by the core.
    explicit LogCapture(UniLogSeverityLevel::T least = UniLogSeverityLevel::Trace);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> lines() const;
    /// Texts of one severity, in order.
    std::vector<std::string> texts(UniLogSeverityLevel::T severity) const;
    void clear();

  private:
    struct Sink;
    std::unique_ptr<Sink> m_sink;
};

}  // namespace test_support
