#include "misuse_log.h"

#include "thread_role.h"

namespace simulator {

thread_local CurrentCall* CurrentCall::t_current = nullptr;

void MisuseLog::add(const char* sentence, std::string_view subject) {
    if (CurrentCall* call = CurrentCall::get()) {
        call->note(sentence);
    } else {
        append("[" + std::string(threadRoleName(currentThreadRole())) + "] " + std::string(subject),
               sentence);
    }
}

void MisuseLog::append(const std::string& who, const char* sentence) {
    const std::string line = who + ": misuse: " + sentence;
    if (m_journal.isOn()) m_journal.append(line);
    const std::lock_guard lock(m_mutex);
    m_text += line;
    m_text += '\n';
}

void MisuseLog::clear() {
    const std::lock_guard lock(m_mutex);
    m_text.clear();
}

std::string MisuseLog::text() const {
    const std::lock_guard lock(m_mutex);
    return m_text;
}

}  // namespace simulator
