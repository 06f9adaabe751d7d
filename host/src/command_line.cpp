#include "command_line.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <vector>

#include <CLI/CLI.hpp>

#include "exit_codes.h"
#include "host_failure.h"
#include "host_platform.h"
#include "option_values.h"

namespace host {
namespace {

struct Texts {
    std::string plugin;
    std::string logLevel = "warning";
    std::string seconds;
    std::string out;
    std::string from;
    std::string to;
    std::string aux;
    std::string maxSpread = "1000";
    std::vector<std::string> channels;
    std::vector<std::string> sets;
    std::vector<std::string> actions;
    bool counters = false;
};

HostFailure bad(const std::string& sentence) {
    return {ExitCode::CommandLine, sentence};
}

enum Options : unsigned {
    kSeconds = 1u << 0u,
    kSecondsNeeded = 1u << 1u,
    kOutDirectory = 1u << 2u,
    kOutFile = 1u << 3u,
    kChannels = 1u << 4u,
    kChanges = 1u << 5u,
    kActions = 1u << 6u,
    kTo = 1u << 7u,
    kAux = 1u << 8u,
    kCounters = 1u << 9u,
    kMaxSpread = 1u << 10u,
};

struct CommandRow {
    Command command;
    const char* name;
    const char* description;
    unsigned options;
};

constexpr std::array<CommandRow, 6> kCommands{{
    {Command::Devices, "devices", "list the cameras that are there", 0},
    {Command::Settings, "settings", "list, change, store and load the settings of the cameras",
     kChannels | kChanges | kActions | kTo},
    {Command::Check, "check", "tell whether the cameras can record together as they are set",
     kChannels | kChanges | kAux},
    {Command::Record, "record", "record pictures of the cameras with their times",
     kSecondsNeeded | kOutDirectory | kChannels | kChanges | kAux | kCounters | kMaxSpread},
    {Command::Watch, "watch", "run the cameras without recording and show how they do",
     kSeconds | kChannels | kChanges | kAux},
    {Command::Topology, "topology", "print the description of the measurement hardware", kOutFile},
}};

const CommandRow& rowOf(Command command) {
    return *std::find_if(kCommands.begin(), kCommands.end(),
                         [&](const CommandRow& row) { return row.command == command; });
}

struct TextRow {
    unsigned option;
    const char* name;
    const char* type;
    std::string Texts::*text;
    bool needed;
    const char* description;
};

const std::array<TextRow, 8> kTexts{{
    {kSecondsNeeded, "--seconds", "N", &Texts::seconds, true, "length of the recording (required)"},
    {kSeconds, "--seconds", "N", &Texts::seconds, false, "how long to watch (default: until Ctrl-C)"},
    {kOutDirectory, "--out", "DIR", &Texts::out, true, "new directory for the recording (required)"},
    {kOutFile, "--out", "FILE", &Texts::out, false, "write it to this file instead"},
    {kChanges, "--from", "FILE", &Texts::from, false, "settings file to apply, before --set"},
    {kTo, "--to", "FILE", &Texts::to, false, "write what can be changed to this settings file"},
    {kAux, "--aux", "HZ", &Texts::aux, false,
     "the cameras follow a trigger output of this frequency, such as 100 or 30000/1001"},
    {kMaxSpread, "--max-spread", "US", &Texts::maxSpread, false,
     "microseconds within which the times of 99 % of the frames must lie (default: 1000)"},
}};

struct ListRow {
    unsigned option;
    const char* name;
    const char* type;
    std::vector<std::string> Texts::*texts;
    const char* description;
};

const std::array<ListRow, 3> kLists{{
    {kChannels, "--channel", "ID", &Texts::channels, "ids of the channels to use (default: all)"},
    {kChanges, "--set", "KEY=VALUE", &Texts::sets,
     "change a setting of these channels; ID/KEY=VALUE for one, such as 0/FrameWidth=320"},
    {kActions, "--action", "KEY", &Texts::actions, "run an action of these channels, after --set"},
}};

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

void addCommand(CLI::App& app, const CommandRow& row, Texts& texts) {
    CLI::App* command = app.add_subcommand(row.name, row.description);
    command->footer(
        "Options of every command: --plugin FILE, --log-level LEVEL, --json; see zelt_host --help.\n\n" +
        exitCodeHelp());
    for (const TextRow& text : kTexts) {
        if ((row.options & text.option) == 0) continue;
        command->add_option(text.name, texts.*text.text, text.description)->type_name(text.type);
    }
    for (const ListRow& list : kLists) {
        if ((row.options & list.option) == 0) continue;
        command->add_option(list.name, texts.*list.texts, list.description)->type_name(list.type);
    }
    if ((row.options & kCounters) != 0) {
        command->add_flag("--counters", texts.counters,
                          "record what the cameras count as sent and received, and compare");
    }
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

Command chosenCommand(const CLI::App& app) {
    std::string names;
    for (const CommandRow& row : kCommands) {
        if (app.got_subcommand(row.name)) return row.command;
        const bool isLast = &row == &kCommands.back();
        names += (names.empty() ? "" : isLast ? " or " : ", ") + std::string(row.name);
    }
    throw bad("Say what to do: " + names + "; zelt_host --help explains them.");
}

bool isGiven(const CLI::App& app, const char* name) {
    const CLI::Option* option = app.get_subcommands().front()->get_option_no_throw(name);
    return option != nullptr && !option->empty();
}

// Here and not by the parser, which would miss an option before it names the misspelt one.
void demandNeeded(const CLI::App& app, Command command) {
    for (const TextRow& text : kTexts) {
        if (!text.needed || (rowOf(command).options & text.option) == 0 || isGiven(app, text.name)) continue;
        throw bad(std::string(text.name) + " is required; zelt_host --help lists what is possible.");
    }
}

// Made of chars, a path would follow the C locale on Windows instead of the program's UTF-8.
std::filesystem::path pathOf(const std::string& text) {
    return std::u8string(text.begin(), text.end());
}

// An empty path would be taken for an option that was left out.
void refuseEmptyPaths(const CLI::App& app) {
    const CLI::App* command = app.get_subcommands().front();
    for (const char* name : {"--out", "--from", "--to"}) {
        if (!isGiven(app, name)) continue;
        const CLI::Option* option = command->get_option_no_throw(name);
        if (!option->results().front().empty()) continue;
        throw bad(std::string(name) + " takes a " +
                  (option->get_type_name() == "DIR" ? "directory" : "file") + ", not an empty text.");
    }
}

std::vector<OptionTexts> optionTexts(const CommandRow& row, const Texts& texts, const CommandLine& line) {
    const auto flag = [](bool on) { return std::vector<std::string>{on ? "true" : "false"}; };
    std::vector<OptionTexts> options{
        {"--plugin", {line.plugin.string()}}, {"--log-level", {texts.logLevel}}, {"--json", flag(line.json)}};
    for (const TextRow& text : kTexts) {
        if ((row.options & text.option) == 0) continue;
        const std::string& value = texts.*text.text;
        options.push_back({text.name, value.empty() ? std::vector<std::string>() : std::vector{value}});
    }
    for (const ListRow& list : kLists) {
        if ((row.options & list.option) != 0) options.push_back({list.name, texts.*list.texts});
    }
    if ((row.options & kCounters) != 0) options.push_back({"--counters", flag(texts.counters)});
    return options;
}

void interpret(const CLI::App& app, const Texts& texts, CommandLine& line) {
    line.command = chosenCommand(app);
    line.logLevel = parseLevel(texts.logLevel);
    line.plugin = texts.plugin.empty() ? platform::executableDirectory() / platform::kPluginFileName
                                       : pathOf(texts.plugin);
    demandNeeded(app, line.command);
    refuseEmptyPaths(app);
    if (isGiven(app, "--seconds")) line.seconds = parseSeconds(texts.seconds);
    line.out = pathOf(texts.out);
    line.to = pathOf(texts.to);
    line.counters = texts.counters;
    line.cameras.from = pathOf(texts.from);
    line.cameras.channels = parseChannels(texts.channels);
    line.cameras.orders = parseSets(texts.sets);
    const auto actions = parseActions(texts.actions);
    line.cameras.orders.insert(line.cameras.orders.end(), actions.begin(), actions.end());
    if (isGiven(app, "--aux")) line.cameras.aux = parseFrequency(texts.aux);
    if (isGiven(app, "--max-spread")) line.maxSpreadNs = parseMaxSpread(texts.maxSpread);
    line.options = optionTexts(rowOf(line.command), texts, line);
    refuseContradictions(line.cameras);
}

}  // namespace

CommandLine parseCommandLine(int argc, const char* const* argv) {
    CLI::App app("Reference host: drives the camera plug-in as a data-acquisition host does.", "zelt_host");
    CommandLine line;
    Texts texts;
    addOptions(app, line, texts);
    for (const CommandRow& row : kCommands) addCommand(app, row, texts);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        return help(app, request);
    } catch (const CLI::ParseError& error) {
        throw bad(oneLine(error.what()) + "; zelt_host --help lists what is possible.");
    }
    interpret(app, texts, line);
    return line;
}

}  // namespace host
