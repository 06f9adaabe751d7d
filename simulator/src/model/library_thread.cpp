#include "library_thread.h"

namespace simulator {

void LibraryThread::start(ThreadRole role, std::function<void()> body) {
    m_turn = m_clock.admit();
    try {
        m_thread = std::thread([this, role, body = std::move(body)] {
            enterThread(role);
            m_clock.begin(*m_turn);
            body();
            m_clock.end(*m_turn);
        });
    } catch (...) {
        // Nobody may wait for the turn of a thread that there is not.
        m_turn.reset();
        throw;
    }
}

void LibraryThread::join() {
    const std::lock_guard lock(m_joining);
    if (!m_thread.joinable()) return;
    m_clock.join(*m_turn);
    m_thread.join();
}

}  // namespace simulator
