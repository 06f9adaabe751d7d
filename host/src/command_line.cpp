#include "command_line.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>
#include <vector>

#include <CLI/CLI.hpp>

#include "exit_codes.h"
#include "host_failure.h"
#include "host_platform.h"

namespace host {
namespace {

constexpr double kLongestSeconds = 1e8;

struct Texts {
    std::string plugin;
    std::string logLevel = "warning";
    std::string seconds;
    std::string out;
    std::vector<std::string> channels;
};

HostFailure bad(const std::string& sentence) {
    return {ExitCode::CommandLine, sentence};
}

template <class Number>
bool parseWhole(const std::string& text, Number& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

double parseSeconds(const std::string& text) {
    double seconds = 0;
    if (!parseWhole(text, seconds) || !(seconds > 0)) {
        throw bad("--seconds takes a number greater than 0, such as 5 or 0.5, not \"" + text + "\".");
    }
    if (seconds > kLongestSeconds) {
        throw bad("--seconds takes 100000000 (three years) at most, not \"" + text + "\".");
    }
    return seconds;
}

std::set<std::uint32_t> parseChannels(const std::vector<std::string>& texts) {
    std::set<std::uint32_t> channels;
    for (const std::string& text : texts) {
        std::uint32_t id = 0;
        if (!parseWhole(text, id)) {
            throw bad("--channel takes the id of a channel, such as 0, not \"" + text +
                      "\"; zelt_host devices lists them.");
        }
        channels.insert(id);
    }
    return channels;
}

LogLevel parseLevel(const std::string& text) {
    if (const auto level = parseLogLevel(text)) return *level;
    std::string names;
    for (const char* name : kLogLevelNames) names += (names.empty() ? "" : ", ") + std::string(name);
    throw bad("--log-level takes one of " + names + ", not \"" + text + "\".");
}

void addOptions(CLI::App& app, CommandLine& line, Texts& texts) {
    app.footer(exitCodeHelp());
    app.set_version_flag("--version", std::string("zelt_host ") + ZELT_HOST_VERSION);
    app.add_option("--plugin", texts.plugin, "plug-in library (default: the one beside this program)")
        ->type_name("FILE");
    app.add_option("--log-level", texts.logLevel,
                   "least severity shown: trace, debug, detail, info, notice, warning, error, off")
        ->type_name("LEVEL")
        ->default_str("warning");
    app.add_flag("--json", line.json, "result for programs, as JSON");
    app.fallthrough();
    app.require_subcommand(0, 1);
}

void addCommands(CLI::App& app, Texts& texts) {
    const std::string footer =
        "Options of every command: --plugin FILE, --log-level LEVEL, --json; see zelt_host --help.\n\n" +
        exitCodeHelp();
    app.add_subcommand("devices", "list the cameras that are there")->footer(footer);
    CLI::App* record = app.add_subcommand("record", "record pictures of the cameras with their times");
    record->footer(footer);
    record->add_option("--seconds", texts.seconds, "length of the recording")->required()->type_name("N");
    record->add_option("--out", texts.out, "new directory for the recording")->required()->type_name("DIR");
    record->add_option("--channel", texts.channels, "ids of the channels to record (default: all)")
        ->type_name("ID");
}

std::string oneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    while (!text.empty() && (text.back() == ' ' || text.back() == '.')) text.pop_back();
    return text;
}

CommandLine help(const CLI::App& app, const CLI::Error& request) {
    std::ostringstream out;
    std::ostringstream ignored;
    app.exit(request, out, ignored);
    CommandLine line;
    line.helpText = out.str();
    return line;
}

void interpret(const CLI::App& app, const Texts& texts, CommandLine& line) {
    line.command = app.got_subcommand("record") ? Command::Record : Command::Devices;
    line.logLevel = parseLevel(texts.logLevel);
    line.plugin = texts.plugin.empty() ? platform::executableDirectory() / platform::kPluginFileName
                                       : std::filesystem::path(texts.plugin);
    if (line.command != Command::Record) return;
    line.seconds = parseSeconds(texts.seconds);
    line.out = texts.out;
    if (line.out.empty()) throw bad("--out takes a directory, not an empty text.");
    line.channels = parseChannels(texts.channels);
}

}  // namespace

CommandLine parseCommandLine(int argc, const char* const* argv) {
    CLI::App app("Reference host: drives the camera plug-in, lists cameras and records their pictures.",
                 "zelt_host");
    CommandLine line;
    Texts texts;
    addOptions(app, line, texts);
    addCommands(app, texts);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        return help(app, request);
    } catch (const CLI::ParseError& error) {
        throw bad(oneLine(error.what()) + "; zelt_host --help lists what is possible.");
    }
    if (app.get_subcommands().empty()) {
        throw bad("Say what to do: devices or record; zelt_host --help explains both.");
    }
    interpret(app, texts, line);
    return line;
}

}  // namespace host
