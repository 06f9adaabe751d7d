#include "camera_trouble.h"

namespace host {
namespace {

/// How the vendor's library says that a camera is not ours.
constexpr const char* kHeldByAnother = "Operation is invalid with the current access mode";

std::string lastOf(std::uint32_t channel, const std::vector<ChannelMessage>& messages) {
    std::string last;
    for (const ChannelMessage& message : messages) {
        if (message.channel == channel) last = message.sentence;
    }
    while (last.ends_with('.')) last.pop_back();
    return last;
}

struct Advice {
    bool isHeld = false;
    bool isGone = false;

    std::string text() const {
        std::string all = isHeld ? "close that program" : "";
        if (isGone) all += std::string(isHeld ? ", " : "") + "check power, cable and network";
        return all;
    }
};

std::string withoutThem(const std::string& others) {
    return others.empty() ? "." : ", or record without the camera: --channel" + others + '.';
}

}  // namespace

std::string notOpenSentence(Session& session, const std::set<std::uint32_t>& concerned,
                            const std::vector<ChannelMessage>& messages) {
    std::string closed;
    std::string others;
    Advice advice;
    for (const auto& [id, channel] : session.readChannels()) {
        if (channel.isOpen()) others += ' ' + std::to_string(id);
        if (channel.isOpen() || !concerned.contains(id)) continue;
        const std::string reason = lastOf(id, messages);
        const bool isHeld = reason.ends_with(kHeldByAnother);
        (isHeld ? advice.isHeld : advice.isGone) = true;
        closed += (closed.empty() ? "" : "; ") + std::string("Camera ") + std::to_string(id) + ' ' +
                  channel.name +
                  (isHeld           ? " is held by another program"
                   : reason.empty() ? " is not open"
                                    : " is not open (" + reason + ')');
    }
    if (closed.empty()) return {};
    return closed + ": " + advice.text() + withoutThem(others);
}

}  // namespace host
