/// Checks a scenario against its schema, the file that editors read too.
#pragma once

#include "scenario_error.h"

namespace simulator {

/// Throws for the first thing that the schema does not allow. Knows the keywords that the schema uses; a
/// new one throws std::logic_error.
void checkSchema(const Json& schema, const Json& value);

}  // namespace simulator
