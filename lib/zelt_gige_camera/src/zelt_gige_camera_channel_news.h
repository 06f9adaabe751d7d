/// What a host operation has to tell the host, collected under the channel's mutex and told without it.
#pragma once

#include <algorithm>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "zelt_gige_camera_channel_validation.h"

namespace zelt_gige_camera {

/// A message for the host's user.
struct ChannelMessage {
    std::string logLine;      ///< written ahead of the message's own; may be empty
    std::string text;         ///< with "%1" for the camera's name and "%2" for the detail
    std::string detail = {};  ///< empty for none
    bool named = true;        ///< the message is about this camera and carries its name
};

inline constexpr const char* kCannotConfigure = "Cannot configure the camera. Error: ";

/// The camera, or the value, is the reason why the settings are not the camera's. Ahead of the message goes
/// a log line of `logPrefix` and the reason, without a prefix none.
inline ChannelMessage notConfigured(const std::string& logPrefix, const std::exception& error) {
    return {logPrefix.empty() ? logPrefix : logPrefix + error.what(), "Cannot configure camera '%1': %2",
            error.what()};
}

class ChannelNews {
  public:
    /// A setting changed; told once, however often it is said.
    void changed(const std::string& key) {
        if (std::find(m_keys.begin(), m_keys.end(), key) == m_keys.end()) m_keys.push_back(key);
    }
    /// A failure of the camera.
    void add(ChannelMessage message) {
        m_messages.push_back(std::move(message));
        m_failed = true;
    }
    /// The outcome of a validation; the same outcome again is no news.
    void add(const Verdict& verdict) {
        const bool known = m_validated && m_last_verdict.code == verdict.code &&
                           std::string(m_last_verdict.message) == verdict.message;
        m_last_verdict = verdict;
        m_validated = true;
        if (verdict.code == kValid || known) return;
        m_messages.push_back({{}, verdict.message, {}, /*named=*/false});
    }

    /// Whether the camera failed in something, unlike a validation that did.
    bool hasFailure() const { return m_failed; }

    const std::vector<std::string>& keys() const { return m_keys; }
    const std::vector<ChannelMessage>& messages() const { return m_messages; }

  private:
    std::vector<std::string> m_keys;
    std::vector<ChannelMessage> m_messages;
    Verdict m_last_verdict;
    bool m_validated = false;
    bool m_failed = false;
};

}  // namespace zelt_gige_camera
