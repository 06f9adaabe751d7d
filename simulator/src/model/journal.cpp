#include "journal.h"

namespace simulator {

void Journal::start() {
    const std::lock_guard lock(m_mutex);
    m_text.clear();
    m_on = true;
}

void Journal::stop() {
    m_on = false;
}

void Journal::reset() {
    const std::lock_guard lock(m_mutex);
    m_on = false;
    m_text.clear();
}

void Journal::append(const std::string& line) {
    const std::lock_guard lock(m_mutex);
    m_text += line;
    m_text += '\n';
}

std::string Journal::text() const {
    const std::lock_guard lock(m_mutex);
    return m_text;
}

}  // namespace simulator
