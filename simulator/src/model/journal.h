/// The journal of calls. [any thread]
#pragma once

#include <atomic>
#include <mutex>
#include <string>

namespace simulator {

class Journal {
  public:
    bool isOn() const { return m_on.load(std::memory_order_relaxed); }
    /// Starts with an empty journal.
    void start();
    void stop();
    /// Empty and off.
    void reset();
    /// Adds a line; the line end is added here.
    void append(const std::string& line);
    std::string text() const;

  private:
    std::atomic<bool> m_on{false};
    mutable std::mutex m_mutex;
    std::string m_text;
};

}  // namespace simulator
