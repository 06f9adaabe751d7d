/// Makes a scenario of a file's text.
#pragma once

#include <string>

#include "scenario.h"
#include "scenario_error.h"

namespace simulator {

/// Throws ScenarioError. `name` is the scenario's from then on and stays valid.
Scenario readScenario(const std::string& text, const char* name);

}  // namespace simulator
