/// What a client did that no client should do, whether the library put up with it or not. [any thread]
#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "journal.h"

namespace simulator {

/// The call of the vendor's interface that runs on this thread. It reports its misuses when it ends, since
/// its text is written with locks that may be held while a misuse is found.
class CurrentCall {
  public:
    void note(const char* sentence) { m_misuses.push_back(sentence); }
    const char* function() const { return m_function; }

    /// Null outside of calls; the innermost one in a call from a callback.
    static CurrentCall* get() { return t_current; }

  protected:
    explicit CurrentCall(const char* function) : m_function(function), m_outer(t_current) {
        t_current = this;
    }
    ~CurrentCall() { t_current = m_outer; }
    CurrentCall(const CurrentCall&) = delete;
    CurrentCall& operator=(const CurrentCall&) = delete;

    const std::vector<const char*>& misuses() const { return m_misuses; }

  private:
    static thread_local CurrentCall* t_current;

    const char* const m_function;
    CurrentCall* const m_outer;
    std::vector<const char*> m_misuses;
};

inline constexpr const char* kWaitInCallback = "a wait inside a callback";
inline constexpr const char* kSetInCallback = "a set inside a callback";
inline constexpr const char* kBufferGone = "the memory of an announced or queued frame is gone";

class MisuseLog {
  public:
    explicit MisuseLog(Journal& journal) : m_journal(journal) {}

    /// Within a call it is the call's misuse; else a line of the thread, the subject and the sentence is
    /// added.
    void add(const char* sentence, std::string_view subject = "");
    /// Adds a line of `who`, such as "[host] VmbCaptureEnd(DEV_000F31A10001)", and the sentence.
    void append(const std::string& who, const char* sentence);
    void clear();
    /// The lines, each with its end.
    std::string text() const;

  private:
    Journal& m_journal;
    mutable std::mutex m_mutex;
    std::string m_text;
};

}  // namespace simulator
