#include "acquisition.h"

#include <algorithm>
#include <utility>

#include "camera_trouble.h"
#include "host_failure.h"

namespace host {
namespace {

constexpr auto kProcess = std::chrono::seconds(1);
constexpr const char* kNotPrepared = "The cameras could not be prepared";
constexpr const char* kNotStarted = "The cameras could not be started";

}  // namespace

Acquisition::Acquisition(Session& session, MessageTeller& messages, std::optional<Fraction> aux, Tell tell)
    : m_session(session),
      m_messages(messages),
      m_trigger(session.vendor().triggerLine(), aux),
      m_tell(std::move(tell)) {}

void Acquisition::fail(const std::string& what, const std::string& reason) {
    const std::vector<ChannelMessage> latest = m_session.messages().take();
    std::vector<ChannelMessage> messages = m_messages.told();
    messages.insert(messages.end(), latest.begin(), latest.end());
    const std::string closed = notOpenSentence(m_session, m_session.usedChannels(), messages);
    if (!closed.empty()) throw HostFailure(ExitCode::CameraFailed, closed);
    std::vector<std::string> reasons;
    reasons.reserve(latest.size() + 1);
    for (const ChannelMessage& message : latest) reasons.push_back(message.sentence);
    // What a camera throws it has usually reported too.
    if (!reason.empty() && std::find(reasons.begin(), reasons.end(), reason) == reasons.end()) {
        reasons.push_back(reason);
    }
    std::string sentence = what;
    for (std::size_t i = 0; i < reasons.size(); ++i) sentence += (i == 0 ? ": " : "; ") + reasons[i];
    while (sentence.ends_with('.')) sentence.pop_back();
    throw HostFailure(ExitCode::CameraFailed,
                      sentence + "; check the camera and its settings, --log-level info tells more.");
}

void Acquisition::prepare() {
    try {
        if (!m_session.plugin().prepareAcquisition()) fail(kNotPrepared, "");
    } catch (const PluginError& failure) {
        fail(kNotPrepared, failure.what());
    }
    m_messages.tell();
}

void Acquisition::start() {
    try {
        m_session.plugin().onAcquisitionPrepared();
        m_next_process = Clock::now() + kProcess;
        if (!m_session.plugin().startAcquisition()) fail(kNotStarted, "");
    } catch (const PluginError& failure) {
        fail(kNotStarted, failure.what());
    }
    m_trigger.start();
}

void Acquisition::process() {
    m_messages.tell();
    if (Clock::now() < m_next_process) return;
    m_next_process += kProcess;
    try {
        m_session.plugin().processAcquisition();
    } catch (const PluginError& failure) {
        m_tell(failure.what());
    }
}

std::string Acquisition::stop() {
    std::string reason;
    try {
        m_session.plugin().stopAcquisition();
    } catch (const PluginError& failure) {
        reason = failure.what();
    }
    cancel();
    m_messages.tell();
    return reason;
}

void Acquisition::cancel() {
    m_trigger.stop();
    m_session.plugin().cancelAcquisition();
}

}  // namespace host
