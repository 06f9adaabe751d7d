/// The logging core of the process: one line per record on the error stream.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "console.h"
#include "logging.h"

namespace host {

/// Names that a user may give for the least severity shown, in rising order; "off" shows nothing.
inline constexpr const char* kLogLevelNames[] = {"trace",  "debug",   "detail", "info",
                                                 "notice", "warning", "error",  "off"};

struct LogLevel {
    /// Empty for "off".
    std::optional<UniLogSeverityLevel::T> least;
};

/// Empty for an unknown name.
std::optional<LogLevel> parseLogLevel(const std::string& name);

/// Installs the program's log sink while it lives. To be made on the main thread before any other runs.
class LogConsole {
  public:
    LogConsole(Console& console, LogLevel level);
    ~LogConsole();
    LogConsole(const LogConsole&) = delete;
    LogConsole& operator=(const LogConsole&) = delete;

  private:
    struct Sink;
    std::unique_ptr<Sink> m_sink;
};

}  // namespace host
