#include "message_teller.h"

#include <algorithm>
#include <utility>

namespace host {

MessageTeller::MessageTeller(MessageBoard& board, std::function<void(const std::string&)> tell,
                             Repetitions repetitions)
    : m_board(board), m_tell(std::move(tell)), m_repetitions(repetitions) {
    this->tell();
}

MessageTeller::~MessageTeller() {
    try {
        tell();
    } catch (...) {
        // On the way out of a failure nothing may be thrown, and the failure matters more.
    }
}

void MessageTeller::tell() {
    for (ChannelMessage& message : m_board.take()) {
        const bool isKnown = std::find(m_told.begin(), m_told.end(), message) != m_told.end();
        if (isKnown && m_repetitions == Repetitions::Drop) continue;
        m_tell(message.text());
        m_told.push_back(std::move(message));
    }
}

}  // namespace host
