/// Log sinks that misbehave or act, for as long as they live.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace test_support {

/// Runs an action inside the log call of every record whose text contains `part`.
class LogAction {
  public:
    LogAction(std::string part, std::function<void()> action);
    ~LogAction();
    LogAction(const LogAction&) = delete;
    LogAction& operator=(const LogAction&) = delete;

  private:
    struct Sink;
    std::unique_ptr<Sink> m_sink;
};

/// Throws std::runtime_error from the log call of every record whose text contains `part`.
class ThrowingLog : public LogAction {
  public:
    explicit ThrowingLog(std::string part = {});
};

}  // namespace test_support
