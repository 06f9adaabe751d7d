/// Which interfaces and cameras there are.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "camera_row.h"

namespace simulator {

struct Scenario {
    const char* name;
    std::vector<InterfaceRow> interfaces;
    std::vector<CameraRow> cameras;  ///< each on one of the interfaces
};

/// Null for an unknown name.
const Scenario* findScenario(std::string_view name);

/// The names, separated by a comma and a blank.
std::string scenarioNames();

inline constexpr const char* kDefaultScenario = "two-cameras";

}  // namespace simulator
