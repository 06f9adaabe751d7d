/// Exit codes of the program, for scripts: one per kind of trouble.
#pragma once

#include <array>
#include <string>

namespace host {

enum class ExitCode : int {
    Ok = 0,
    Unexpected = 1,
    CommandLine = 2,
    PluginMissing = 3,
    NotAPlugin = 4,
    VendorMissing = 5,
    VendorWrong = 6,
    CameraLibrary = 7,
    NoCamera = 8,
    UnknownChannel = 9,
    OutputDirectory = 10,
    WriteFailed = 11,
    CameraFailed = 12,
    CheckFailed = 13,
    SettingWrong = 14,
    SettingsFile = 15,
    NoService = 16,
    Interrupted = 130,
};

struct ExitCodeMeaning {
    ExitCode code;
    const char* meaning;
};

/// Every exit code with its meaning, ascending.
inline constexpr std::array<ExitCodeMeaning, 18> kExitCodes{{
    {ExitCode::Ok, "done; a recording or check passed every check"},
    {ExitCode::Unexpected, "unexpected failure"},
    {ExitCode::CommandLine, "command line not understood"},
    {ExitCode::PluginMissing, "plug-in library missing or not loadable"},
    {ExitCode::NotAPlugin, "library is no camera plug-in, or refuses to create one"},
    {ExitCode::VendorMissing, "camera vendor's library missing"},
    {ExitCode::VendorWrong, "camera vendor's library lacks functions or is no such library"},
    {ExitCode::CameraLibrary, "camera library could not start"},
    {ExitCode::NoCamera, "no camera found"},
    {ExitCode::UnknownChannel, "no channel with the id asked for"},
    {ExitCode::OutputDirectory, "output directory unwritable or already holding a recording"},
    {ExitCode::WriteFailed, "disk full, or a file could not be written"},
    {ExitCode::CameraFailed, "a camera could not be prepared or started"},
    {ExitCode::CheckFailed, "a check of the settings or of what was recorded failed"},
    {ExitCode::SettingWrong, "a setting was not accepted: unknown, malformed, out of range or refused"},
    {ExitCode::SettingsFile, "settings file unreadable, unwritable or with a bad line"},
    {ExitCode::NoService, "the plug-in does not offer what was asked for"},
    {ExitCode::Interrupted, "interrupted by Ctrl-C; what was recorded is intact"},
}};

/// The table as lines of text for the help.
std::string exitCodeHelp();

}  // namespace host
