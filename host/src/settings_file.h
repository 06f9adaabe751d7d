/// Settings as a file: "KEY = VALUE" lines under "[channel ID]" lines, with '#' before comments.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "channel_info.h"
#include "setting_changes.h"
#include "setting_info.h"

namespace host {

/// The orders in a text, each with `name` and its line as origin. Throws HostFailure for the first line that
/// is none of the above, stands before the first channel or repeats a key.
std::vector<SettingOrder> parseSettingsFile(const std::string& text, const std::string& name);

/// The same from a file. Throws HostFailure.
std::vector<SettingOrder> readSettingsFile(const std::filesystem::path& file);

/// The part of one channel: everything that can be set.
std::string settingsFilePart(const ChannelInfo& channel, const std::vector<SettingInfo>& settings);

}  // namespace host
