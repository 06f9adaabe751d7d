/// The camera settings that generated sequences use: key, feature, and values to set.
#pragma once

#include <string>
#include <vector>

#include "config_item_variant.h"
#include "zelt_gige_camera_api.h"

namespace property_tests {

struct SettingRow {
    enum class Kind { Whole, Real, Automatic, Mode, Format, Rate };

    Kind kind;
    const char* key;
    const char* feature;
    const char* unit;
    /// Values of which the first `safe` are ones that every camera takes as they are, whatever else is set.
    std::size_t safe;
    std::vector<config_items::ConfigItemVariant> values;
    const char* automatic = nullptr;  ///< key of the function that may change the value
    const char* selector = nullptr;   ///< entry of "BalanceRatioSelector"
};

const std::vector<SettingRow>& settingRows();
const SettingRow* findRow(const std::string& key);

/// What an open camera holds for a setting, as the host's item would show it.
std::string cameraText(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera,
                       const SettingRow& row);

inline const char* const kOff = "GIGE/AutoSettingOff";
inline const char* const kOnce = "GIGE/AutoSettingOnce";
inline const char* const kAux = "GIGE/TriggerModeAux";

}  // namespace property_tests
