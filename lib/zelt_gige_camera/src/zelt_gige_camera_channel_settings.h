/// The settings of a camera channel as options of its configuration.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "channel_config_types.h"
#include "mutex.h"
#include "zelt_gige_camera_channel_state.h"
#include "zeltpu_simple_channel_config_options.h"

namespace zelt_gige_camera {

/// A channel's state and the mutex that guards it.
struct GuardedState {
    platform::Mutex mutex;
    ChannelState values ZELT_GUARDED_BY(mutex);
};

/// Texts and values that never change in a channel's life.
struct ChannelIdentity {
    channel_config::ChannelID id;
    std::string cameraId;
    std::string name;  ///< unique among the cameras of a host, for messages
    std::string path;
};

/// All options of a camera channel, in the order in which the host lists them. `state` and `used` must
/// outlive them; `onUsedChanged` is told of a change of the used switch. [host] The options take the state's
/// mutex for the time of reading a value.
std::vector<std::shared_ptr<zelt::plugin_util::ChannelConfigOption>> makeChannelOptions(
    const ChannelIdentity& identity, GuardedState& state, std::atomic<bool>& used,
    std::function<void(bool)> onUsedChanged);

}  // namespace zelt_gige_camera
