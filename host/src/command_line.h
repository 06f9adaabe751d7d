#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>

#include "log_console.h"

namespace host {

enum class Command { Help, Devices, Record };

/// What the user asked for.
struct CommandLine {
    Command command = Command::Help;
    std::string helpText;  ///< to be shown, with Command::Help
    std::filesystem::path plugin;
    LogLevel logLevel;
    bool json = false;
    double seconds = 0;
    std::filesystem::path out;
    std::set<std::uint32_t> channels;  ///< empty for all
};

/// Reads the command line. Throws HostFailure with a sentence that names what is wrong.
CommandLine parseCommandLine(int argc, const char* const* argv);

}  // namespace host
