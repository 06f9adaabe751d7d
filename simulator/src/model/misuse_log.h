/// What a client did that no client should do, whether the library put up with it or not. [any thread]
#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "journal.h"

namespace simulator {

/// The call of the vendor's interface that runs on this thread, for reports.
class CurrentCall {
  public:
    /// "[host] VmbCaptureEnd(DEV_000F31A10001)"
    virtual std::string text() const = 0;

    /// Null outside of calls; the innermost one in a call from a callback.
    static const CurrentCall* get() { return t_current; }

  protected:
    ~CurrentCall() = default;
    static thread_local const CurrentCall* t_current;
};

inline constexpr const char* kWaitInCallback = "a wait inside a callback";
inline constexpr const char* kBufferGone = "the memory of an announced or queued frame is gone";

class MisuseLog {
  public:
    explicit MisuseLog(Journal& journal) : m_journal(journal) {}

    /// Adds a line of the call, or of `subject` outside of calls, and the sentence.
    void add(std::string_view sentence, std::string_view subject = "");
    void clear();
    /// The lines, each with its end.
    std::string text() const;

  private:
    Journal& m_journal;
    mutable std::mutex m_mutex;
    std::string m_text;
};

}  // namespace simulator
