#include "message_board.h"

#include <utility>

#include "if_channel_messages.h"

namespace host {

void MessageBoard::subscribe(std::uint32_t id,
                             const std::shared_ptr<channel_config::IfChannelConfig>& channel) {
    auto* messages = dynamic_cast<zelt::IfChannelMessages*>(channel.get());
    if (messages == nullptr) return;
    messages->setMessageListener([this, id](const exception_manager::Exception& message) {
        add(id, exception_manager::fillPlaceholders(message), false);
    });
    m_channels.push_back(channel);
    // A camera that could not be opened has said so before anybody could listen. The latest message is no
    // earlier one when the listener has been told of any by now.
    exception_manager::Exception earlier;
    if (messages->getLastMessage(earlier)) add(id, exception_manager::fillPlaceholders(earlier), true);
}

void MessageBoard::unsubscribeAll() {
    for (const auto& channel : m_channels) {
        dynamic_cast<zelt::IfChannelMessages&>(*channel).setMessageListener({});
    }
    m_channels.clear();
}

void MessageBoard::add(std::uint32_t channel, std::string sentence, bool onlyFirst) {
    const std::lock_guard lock(m_mutex);
    if (onlyFirst && m_latest.contains(channel)) return;
    m_latest[channel] = sentence;
    m_entries.push_back({m_count++, {channel, std::move(sentence)}});
}

std::vector<ChannelMessage> MessageBoard::take() {
    const std::lock_guard lock(m_mutex);
    std::vector<ChannelMessage> messages;
    for (Entry& entry : m_entries) messages.push_back(std::move(entry.message));
    m_entries.clear();
    return messages;
}

std::uint64_t MessageBoard::count() const {
    const std::lock_guard lock(m_mutex);
    return m_count;
}

std::vector<std::string> MessageBoard::takeFrom(std::uint32_t channel, std::uint64_t earlier) {
    const std::lock_guard lock(m_mutex);
    std::vector<std::string> sentences;
    std::erase_if(m_entries, [&](Entry& entry) {
        if (entry.message.channel != channel || entry.number < earlier) return false;
        sentences.push_back(std::move(entry.message.sentence));
        return true;
    });
    return sentences;
}

std::map<std::uint32_t, std::string> MessageBoard::latest() const {
    const std::lock_guard lock(m_mutex);
    return m_latest;
}

}  // namespace host
