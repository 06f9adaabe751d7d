/// Settings, what became of changes, and the verdict on them, for people and programs.
#pragma once

#include <string>
#include <vector>

#include "channel_info.h"
#include "message_board.h"
#include "setting_changes.h"
#include "setting_info.h"

namespace host {

struct ChannelSettings {
    ChannelInfo channel;
    std::vector<SettingInfo> settings;  ///< none of a camera that is not open
};

/// A table for every channel whose camera is open.
std::string settingsText(const std::vector<ChannelSettings>& channels);
/// `closed`: what is wrong with cameras that are not open; empty when all are.
std::string settingsJson(const std::vector<SettingChange>& changes,
                         const std::vector<ChannelSettings>& channels,
                         const std::vector<ChannelMessage>& messages, const std::string& closed);

/// What came of a check of several channels together.
struct CheckResult {
    bool passed = false;
    std::size_t channels = 0;
    std::vector<ChannelMessage> messages;
};

std::string checkText(const CheckResult& result);
std::string checkJson(const CheckResult& result, const std::vector<SettingChange>& changes);

/// Empty when there is nothing to complain about.
std::string checkFailure(const CheckResult& result);

}  // namespace host
