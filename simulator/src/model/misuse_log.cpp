#include "misuse_log.h"

#include "thread_role.h"

namespace simulator {

thread_local const CurrentCall* CurrentCall::t_current = nullptr;

void MisuseLog::add(std::string_view sentence, std::string_view subject) {
    const CurrentCall* call = CurrentCall::get();
    std::string line = call != nullptr ? call->text()
                                       : "[" + std::string(threadRoleName(currentThreadRole())) + "] " +
                                             std::string(subject);
    line += ": misuse: ";
    line += sentence;
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
