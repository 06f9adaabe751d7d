#include "library_thread.h"

namespace simulator {

void LibraryThread::start(ThreadRole role, std::function<void()> body) {
    m_turn = m_clock.admit();
    m_thread = std::thread([this, role, body = std::move(body)] {
        enterThread(role);
        m_clock.begin(*m_turn);
        body();
        m_clock.end(*m_turn);
    });
}

void LibraryThread::join() {
    if (!m_thread.joinable()) return;
    m_clock.join(*m_turn);
    m_thread.join();
}

}  // namespace simulator
