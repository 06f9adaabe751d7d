#pragma once

#include "assertion_monitor.h"
#include "command_line.h"
#include "console.h"
#include "exit_codes.h"

namespace host {

/// Lists the channels. Throws HostFailure.
ExitCode runDevices(const CommandLine& line, Console& console);

/// Records. Throws HostFailure when nothing was recorded.
ExitCode runRecord(const CommandLine& line, Console& console, const AssertionMonitor& assertions);

/// The whole program.
int runProgram(int argc, const char* const* argv);

}  // namespace host
