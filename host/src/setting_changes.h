/// Changing settings as a user asks for it.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace host {

class Session;

/// One wish of the user's.
struct SettingOrder {
    enum class Kind { Set, RunAction };

    std::string origin;   ///< "--set", or file and line: what an error names
    std::string channel;  ///< id of a channel or of its camera; empty for all that were chosen
    std::string key;
    std::string value;  ///< not with an action
    Kind kind = Kind::Set;
    bool ofFile = false;  ///< of a settings file, which may hold cameras that are not chosen
};

/// What became of it at one channel.
struct SettingChange {
    std::uint32_t channel = 0;
    std::string key;
    std::string asked;    ///< empty with an action
    std::string became;   ///< with unit; empty with an action and when it was left out
    std::string leftOut;  ///< why it was left out, origin first; empty when it was carried out
};

/// Carries out orders one after the other at those of the `chosen` channels that they name. Settings depend
/// on each other, so one that is out of range, read-only, not there or refused is tried again when the others
/// are set. Throws HostFailure for the first that cannot be carried out; those that were are told to
/// `changed`.
void carryOut(Session& session, const std::vector<SettingOrder>& orders,
              const std::set<std::uint32_t>& chosen,
              const std::function<void(const SettingChange&)>& changed);

/// Tells for every channel concerned that these orders are not carried out, and why.
void leaveOut(Session& session, const std::vector<SettingOrder>& orders,
              const std::set<std::uint32_t>& chosen, const std::string& why,
              const std::function<void(const SettingChange&)>& changed);

/// "channel 0: FrameWidth is 640 pixel now (asked for 643)"
std::string changeText(const SettingChange& change);

/// Up to three keys that a user who wrote `key` may have meant, the nearest first.
std::vector<std::string> nearestKeys(const std::string& key, const std::vector<std::string>& known);

}  // namespace host
