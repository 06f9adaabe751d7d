/// The settings of a camera channel as rows: what the host calls each, the camera's feature behind it, and
/// where its value is kept.
#pragma once

#include <array>

#include "zelt_gige_camera_channel_state.h"

namespace zelt_gige_camera {

struct NumberRow {
    Setting setting;
    const char* key;      ///< null when the host does not see it
    const char* unit;     ///< of the host's item
    const char* feature;  ///< the camera's
    /// Entry that "BalanceRatioSelector" must have, or null.
    const char* selector;
    bool whole;     ///< the feature is an integer
    bool optional;  ///< not every camera has it
    NumberValue ChannelState::*value;
};

struct AutoRow {
    Setting setting;
    const char* key;
    const char* actionKey;  ///< starts the function once
    const char* feature;
    AutoValue ChannelState::*value;
};

/// In the order of Setting. Geometry first.
const std::array<NumberRow, 15>& numberRows();
const std::array<AutoRow, 3>& autoRows();

/// Row of a setting that is a number; another one is a programming error.
const NumberRow& numberRow(Setting setting);
/// Row of a setting that is an automatic function; another one is a programming error.
const AutoRow& autoRow(Setting setting);

bool isGeometry(Setting setting);

/// Key under which the host knows a setting; null for one that it does not see.
const char* settingKey(Setting setting);

}  // namespace zelt_gige_camera
