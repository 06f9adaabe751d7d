#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "message_teller.h"
#include "session.h"
#include "trigger_output.h"

namespace host {

/// One acquisition of the cameras that are switched on, from preparing them to stopping them, with the
/// trigger output that they may follow. Whatever happens, the plug-in holds no sinks afterwards. [main
/// thread]
class Acquisition {
  public:
    using Tell = std::function<void(const std::string&)>;

    /// `tell` gets what goes wrong on the way without ending it.
    Acquisition(Session& session, MessageTeller& messages, std::optional<Fraction> aux, Tell tell);
    ~Acquisition() { cancel(); }
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;

    /// Both throw HostFailure with the cameras' messages as reasons.
    void prepare();
    void start();
    /// To be called often while the cameras run: tells their messages and lets the plug-in work.
    void process();
    /// When the first trigger pulse came, where the host made it.
    const std::optional<PulseStart>& pulseStart() const { return m_trigger.pulseStart(); }
    /// Empty when the cameras stopped properly, else why not.
    std::string stop();

  private:
    using Clock = std::chrono::steady_clock;

    void cancel();
    [[noreturn]] void fail(const std::string& what, const std::string& reason);

    Session& m_session;
    MessageTeller& m_messages;
    TriggerOutput m_trigger;
    Tell m_tell;
    Clock::time_point m_next_process;
};

}  // namespace host
