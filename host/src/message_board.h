#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "if_channel_config.h"

namespace host {

/// Collects the channels' messages as sentences. Vendor threads only store here; the main thread takes the
/// sentences out and shows them.
class MessageBoard {
  public:
    /// Listens to a channel's messages until the board is destroyed or unsubscribes; a channel without any
    /// is left alone. [host]
    void subscribe(const std::shared_ptr<channel_config::IfChannelConfig>& channel);
    /// Ends all listening and lets go of the channels. [host]
    void unsubscribeAll();

    void add(std::string sentence);  ///< [any thread]
    /// The sentences that came since the last call, in order. [any thread]
    std::vector<std::string> take();

    MessageBoard() = default;
    ~MessageBoard() { unsubscribeAll(); }
    MessageBoard(const MessageBoard&) = delete;
    MessageBoard& operator=(const MessageBoard&) = delete;

  private:
    std::mutex m_mutex;
    std::vector<std::string> m_sentences;
    std::vector<std::shared_ptr<channel_config::IfChannelConfig>> m_channels;
};

}  // namespace host
