/// What the host shows of a channel's settings.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "if_channel_config.h"

namespace host {

/// When the user may change a setting.
enum class Changeable {
    Always,
    BetweenRecordings,  ///< not while the cameras acquire
    ByChannelOption,    ///< the host does, when it is told which channels to use
    AsAction,           ///< starting something instead of storing a value
    Never,
};

struct SettingRange {
    double least = 0;
    double greatest = 0;
};

struct SettingInfo {
    std::string key;
    bool hasValue = true;
    std::string value;  ///< without unit; the reason when there is no value
    std::string unit;
    std::optional<SettingRange> range;
    std::vector<std::string> choices;
    Changeable changeable = Changeable::Always;

    /// "640 pixel"
    std::string valueWithUnit() const { return unit.empty() ? value : value + ' ' + unit; }
    /// "0 .. 656" or the choices; empty when anything goes.
    std::string allowed() const;
};

/// A setting that is available now.
SettingInfo readSetting(channel_config::IfChannelConfig& config, const std::string& key);
/// All that are, in the channel's order.
std::vector<SettingInfo> readSettings(channel_config::IfChannelConfig& config);

/// "yes", "between recordings", ...
const char* changeableText(Changeable changeable);

/// Whether a settings file holds it.
bool isStored(const SettingInfo& setting);

}  // namespace host
