/// JSON without what makes a file mean something else than it seems to.
#pragma once

#include <string>

#include "scenario_error.h"

namespace simulator {

/// Refuses wrong syntax (with line and column), a key that is there twice, and nesting that no scenario has.
Json parseStrictly(const std::string& text);

}  // namespace simulator
