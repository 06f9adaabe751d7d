/// A camera's settings in an XML file: every streamable feature, under each entry of its selector.
#pragma once

#include <cstdint>

#include "feature_module.h"

namespace simulator {

struct PersistSettings {
    std::uint32_t persistType = 2;  ///< written into the file; there is no table that it could leave out
    std::uint32_t iterations = 5;
};

/// Other when the file cannot be written.
Result saveSettings(FeatureModule& module, const char* file, const PersistSettings& settings);

/// Sets what the file says, pass by pass, since one value may permit another, until nothing is left, a pass
/// brings nothing, or `iterations` passes are over. Incomplete when something could not be set; the rest is.
/// Other, without any effect, when the file is missing or is none of these.
Result loadSettings(FeatureModule& module, const char* file, const PersistSettings& settings);

}  // namespace simulator
