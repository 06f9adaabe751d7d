#pragma once

#include <vector>

#include "console.h"
#include "message_teller.h"
#include "setting_changes.h"

namespace host {

/// Keeps what became of changes, and shows each with the messages that it brought about. [main thread]
class ChangeLog {
  public:
    /// `shown` false: only keeps.
    ChangeLog(Console& console, MessageTeller& messages, bool shown)
        : m_console(console), m_messages(messages), m_shown(shown) {}

    void operator()(const SettingChange& change) {
        if (m_shown) m_console.print(changeText(change) + '\n');
        m_messages.tell();
        m_changes.push_back(change);
    }
    const std::vector<SettingChange>& changes() const { return m_changes; }

  private:
    Console& m_console;
    MessageTeller& m_messages;
    bool m_shown;
    std::vector<SettingChange> m_changes;
};

}  // namespace host
