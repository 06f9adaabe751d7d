#include "message_board.h"

#include <utility>

#include "if_channel_messages.h"

namespace host {

void MessageBoard::subscribe(const std::shared_ptr<channel_config::IfChannelConfig>& channel) {
    auto* messages = dynamic_cast<zelt::IfChannelMessages*>(channel.get());
    if (messages == nullptr) return;
    // A camera that could not be opened has said so before anybody could listen.
    exception_manager::Exception earlier;
    if (messages->getLastMessage(earlier)) add(exception_manager::fillPlaceholders(earlier));
    messages->setMessageListener([this](const exception_manager::Exception& message) {
        add(exception_manager::fillPlaceholders(message));
    });
    m_channels.push_back(channel);
}

void MessageBoard::unsubscribeAll() {
    for (const auto& channel : m_channels) {
        dynamic_cast<zelt::IfChannelMessages&>(*channel).setMessageListener({});
    }
    m_channels.clear();
}

void MessageBoard::add(std::string sentence) {
    const std::lock_guard lock(m_mutex);
    m_sentences.push_back(std::move(sentence));
}

std::vector<std::string> MessageBoard::take() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_sentences, {});
}

}  // namespace host
