#pragma once

#include <functional>
#include <vector>

#include "message_board.h"

namespace host {

/// Whether a message whose text a channel has told before is told again: it may be news, as of a camera that
/// is gone once more, or what another look at the same settings finds.
enum class Repetitions { Tell, Drop };

/// Tells the messages of a board to the user, each once: whenever asked, and what is left at its end.
/// [main thread]
class MessageTeller {
  public:
    MessageTeller(MessageBoard& board, std::function<void(const std::string&)> tell,
                  Repetitions repetitions = Repetitions::Tell);
    ~MessageTeller();
    MessageTeller(const MessageTeller&) = delete;
    MessageTeller& operator=(const MessageTeller&) = delete;

    /// Tells what came since.
    void tell();
    /// Everything told so far.
    const std::vector<ChannelMessage>& told() const { return m_told; }

  private:
    MessageBoard& m_board;
    std::function<void(const std::string&)> m_tell;
    Repetitions m_repetitions;
    std::vector<ChannelMessage> m_told;
};

}  // namespace host
