/// Stacks of the running process. One source per system.
#pragma once

namespace simulator {

/// Writes the stack of every thread of the process to the standard error stream, as far as the system can.
void printStacks();

}  // namespace simulator
