#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "camera_setup.h"
#include "log_console.h"
#include "recording_report.h"

namespace host {

enum class Command { Help, Devices, Settings, Check, Record, Watch, Topology };

/// What the user asked for.
struct CommandLine {
    Command command = Command::Help;
    std::string helpText;  ///< to be shown, with Command::Help
    std::filesystem::path plugin;
    LogLevel logLevel;
    bool json = false;
    std::optional<double> seconds;
    std::filesystem::path out;  ///< directory of a recording, file of a topology
    std::filesystem::path to;   ///< settings file to write; empty for none
    bool counters = false;
    std::int64_t maxSpreadNs = kMaxSpreadNs;
    CameraSetup cameras;
    std::vector<OptionTexts> options;  ///< all of the command
};

/// Reads the command line. Throws HostFailure with a sentence that names what is wrong.
CommandLine parseCommandLine(int argc, const char* const* argv);

}  // namespace host
