/// The settings of a camera channel as options of its configuration.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "channel_config_types.h"
#include "zelt_gige_camera_channel_state.h"
#include "zeltpu_simple_channel_config_options.h"

namespace zelt_gige_camera {

/// Texts and values that never change in a channel's life.
struct ChannelIdentity {
    channel_config::ChannelID id;
    std::string cameraId;
    std::string name;  ///< unique among the cameras of a host, for messages
    std::string path;
};

/// A value that the host sets: a number, or a text in the host's words.
using SettingValue = std::variant<double, std::string>;

/// What the options call; none may be empty. [host] With no lock held.
struct SettingActions {
    /// True when the value was accepted.
    std::function<bool(Setting, const SettingValue&)> set;
    /// Starts an automatic function once; true when it was started.
    std::function<bool(Setting)> runOnce;
    /// The used switch was turned; it has its new value already.
    std::function<void()> usedChanged;
};

/// All options of a camera channel, in the order in which the host lists them. `state` and `used` must
/// outlive them. [host] The options take the state's mutex for the time of reading a value.
std::vector<std::shared_ptr<zelt::plugin_util::ChannelConfigOption>> makeChannelOptions(
    const ChannelIdentity& identity, GuardedState& state, std::atomic<bool>& used,
    const SettingActions& actions);

}  // namespace zelt_gige_camera
