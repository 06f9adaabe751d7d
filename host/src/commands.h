#pragma once

#include "assertion_monitor.h"
#include "command_line.h"
#include "console.h"
#include "exit_codes.h"

namespace host {

// Each runs one command and throws HostFailure when it comes to nothing.
ExitCode runDevices(const CommandLine& line, Console& console, const AssertionMonitor& assertions);
ExitCode runSettings(const CommandLine& line, Console& console, const AssertionMonitor& assertions);
ExitCode runCheck(const CommandLine& line, Console& console, const AssertionMonitor& assertions);
ExitCode runRecord(const CommandLine& line, Console& console, const AssertionMonitor& assertions);
ExitCode runWatch(const CommandLine& line, Console& console, const AssertionMonitor& assertions);
ExitCode runTopology(const CommandLine& line, Console& console, const AssertionMonitor& assertions);

/// The whole program.
int runProgram(int argc, const char* const* argv);

}  // namespace host
