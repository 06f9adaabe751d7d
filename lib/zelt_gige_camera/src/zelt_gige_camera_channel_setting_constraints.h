/// What the values of a channel's settings must satisfy: pure functions.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zelt_gige_camera_channel_rows.h"
#include "zeltpu_simple_channel_config_options.h"

namespace zelt_gige_camera {

using Constraints = zelt::plugin_util::ChannelConfigOption::Constraints;

/// The range of a number, if it has one, and whether it may be changed. A setting's range follows from the
/// camera's and from the other settings; it is never upside down.
Constraints numberConstraints(const ChannelState& state, const NumberRow& row);

/// One constraint for each choice.
Constraints choiceConstraints(const std::vector<std::string>& choices);

Constraints readOnlyConstraints();

}  // namespace zelt_gige_camera
