#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "if_channel_config.h"

namespace host {

/// A message of a channel as a sentence.
struct ChannelMessage {
    std::uint32_t channel = 0;
    std::string sentence;

    bool operator==(const ChannelMessage&) const = default;
    /// "channel 0: Selected frame rate is too fast for the camera"
    std::string text() const { return "channel " + std::to_string(channel) + ": " + sentence; }
};

/// Collects the channels' messages as sentences. Vendor threads only store here; the main thread takes the
/// sentences out and shows them.
class MessageBoard {
  public:
    /// Listens to a channel's messages until the board is destroyed or unsubscribes; a channel without any
    /// is left alone. [host]
    void subscribe(std::uint32_t id, const std::shared_ptr<channel_config::IfChannelConfig>& channel);
    /// Ends all listening and lets go of the channels. [host]
    void unsubscribeAll();

    /// The messages that came since the last call, in order. [any thread]
    std::vector<ChannelMessage> take();
    /// Messages that came in all. [any thread]
    std::uint64_t count() const;
    /// Takes out the sentences of one channel that came behind the first `earlier` messages. [any thread]
    std::vector<std::string> takeFrom(std::uint32_t channel, std::uint64_t earlier);
    /// The latest sentence of every channel that said anything. [any thread]
    std::map<std::uint32_t, std::string> latest() const;

    MessageBoard() = default;
    ~MessageBoard() { unsubscribeAll(); }
    MessageBoard(const MessageBoard&) = delete;
    MessageBoard& operator=(const MessageBoard&) = delete;

  private:
    struct Entry {
        std::uint64_t number = 0;
        ChannelMessage message;
    };

    void add(std::uint32_t channel, std::string sentence, bool onlyFirst);

    mutable std::mutex m_mutex;
    std::vector<Entry> m_entries;
    std::uint64_t m_count = 0;
    std::map<std::uint32_t, std::string> m_latest;
    std::vector<std::shared_ptr<channel_config::IfChannelConfig>> m_channels;
};

}  // namespace host
