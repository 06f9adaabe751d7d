/// As std::latch, whose wait may miss its wake-up in g++ 12 for Windows and never end.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace test_support {

class Latch {
  public:
    explicit Latch(std::ptrdiff_t count) : m_count(count) {}
    Latch(const Latch&) = delete;
    Latch& operator=(const Latch&) = delete;

    void count_down() {
        const std::lock_guard lock(m_mutex);
        --m_count;
        m_changed.notify_all();
    }
    bool try_wait() const {
        const std::lock_guard lock(m_mutex);
        return m_count <= 0;
    }
    void wait() const {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_count <= 0; });
    }
    void arrive_and_wait() {
        count_down();
        wait();
    }

  private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::ptrdiff_t m_count;
};

}  // namespace test_support
