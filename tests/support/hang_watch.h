/// Turns a test that hangs into the stacks of all its threads and a failure.
#pragma once

#include <string>

namespace test_support {

/// From now on every test of the program may last so long.
void limitEveryTest(unsigned seconds);

/// Ends the process, with the stacks, when `endLimit` does not come within `seconds`.
void beginLimit(const std::string& name, unsigned seconds);
void endLimit();

}  // namespace test_support
