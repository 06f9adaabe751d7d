// docs/HOST.md against the program's own help.
#include <regex>
#include <set>
#include <sstream>

#include <gmock/gmock.h>

#include "command_line.h"
#include "exit_codes.h"
#include "markdown.h"
#include "program_run.h"

namespace {

namespace fs = std::filesystem;

using docs_check::codeIn;
using docs_check::codesIn;
using docs_check::Document;
using docs_check::Row;
using ::testing::ContainerEq;

using Commands = std::map<std::string, std::string>;
/// Name and what stands for its value, empty for a switch.
using Options = std::set<std::pair<std::string, std::string>>;

std::vector<Row> hostRows(const char* section) {
    return Document("docs/HOST.md").rowsOf(section);
}

std::vector<std::string> helpOf(const std::vector<const char*>& command) {
    std::vector<const char*> arguments{"zelt_host"};
    arguments.insert(arguments.end(), command.begin(), command.end());
    arguments.push_back("--help");
    const host::CommandLine line =
        host::parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
    std::istringstream stream(line.helpText);
    std::vector<std::string> lines;
    for (std::string each; std::getline(stream, each);) lines.push_back(each);
    return lines;
}

/// Indented lines of a help text below a heading.
std::vector<std::smatch> matchesBelow(const std::vector<std::string>& lines, const std::string& heading,
                                      const std::regex& pattern) {
    std::vector<std::smatch> matches;
    bool isBelow = false;
    for (const std::string& line : lines) {
        if (!line.empty() && line.front() != ' ') isBelow = line == heading;
        std::smatch match;
        if (isBelow && std::regex_match(line, match, pattern)) matches.push_back(match);
    }
    return matches;
}

Commands commandsOfProgram() {
    static const std::vector<std::string> lines = helpOf({});
    Commands commands;
    for (const auto& match : matchesBelow(lines, "Subcommands:", std::regex(" +([a-z]+) +(.+)"))) {
        commands.emplace(match[1], match[2]);
    }
    return commands;
}

Options optionsOfProgram(const std::vector<const char*>& command) {
    const std::vector<std::string> lines = helpOf(command);
    const std::regex pattern(" +(?:-h,)?(--[a-z-]+)(?: ([A-Z]+(?:=[A-Z]+)?)[^ ]*)?(?: .*)?");
    Options options;
    for (const auto& match : matchesBelow(lines, "Options:", pattern)) options.emplace(match[1], match[2]);
    return options;
}

/// Options whose row names the command.
Options documentedOptions(const std::string& command) {
    Options options;
    for (const Row& row : hostRows("Options")) {
        const std::string named = ", " + row.at("Commands") + ",";
        if (named.find(", " + command + ",") == std::string::npos) continue;
        const std::vector<std::string> value = codesIn(row.at("Value"));
        EXPECT_TRUE(options.emplace(codeIn(row.at("Option")), value.empty() ? "" : value.front()).second);
    }
    return options;
}

TEST(HostDocument, NamesTheCommands) {
    Commands documented;
    for (const Row& row : hostRows("Commands")) {
        documented.emplace(codeIn(row.at("Command")), row.at("What it does"));
    }
    EXPECT_THAT(documented, ContainerEq(commandsOfProgram()));
}

TEST(HostDocument, NamesTheOptionsOfEveryCommand) {
    EXPECT_THAT(documentedOptions("all"), ContainerEq(optionsOfProgram({})));
    for (const auto& [command, description] : commandsOfProgram()) {
        SCOPED_TRACE(command);
        Options found = optionsOfProgram({command.c_str()});
        EXPECT_EQ(found.erase({"--help", ""}), 1u);
        EXPECT_THAT(documentedOptions(command), ContainerEq(found));
    }
}

TEST(HostDocument, NamesNoCommandThatDoesNotExist) {
    Commands known = commandsOfProgram();
    known.emplace("all", "");
    for (const Row& row : hostRows("Options")) {
        std::istringstream stream(row.at("Commands"));
        for (std::string command; std::getline(stream >> std::ws, command, ',');) {
            EXPECT_TRUE(known.contains(command)) << command;
        }
    }
}

TEST(HostDocument, HasTheExitCodes) {
    std::map<std::string, std::string> known;
    for (const auto& row : host::kExitCodes)
        known.emplace(std::to_string(static_cast<int>(row.code)), row.meaning);
    std::map<std::string, std::string> documented;
    for (const Row& row : hostRows("Exit codes")) documented.emplace(row.at("Code"), row.at("Meaning"));
    EXPECT_THAT(documented, ContainerEq(known));
}

/// "<id>" for every number.
std::string withoutNumbers(const std::string& name) {
    return std::regex_replace(name, std::regex("[0-9]+"), "<id>");
}

TEST(HostDocument, NamesTheFilesOfARecording) {
    const scenario::TemporaryDirectory directory;
    const fs::path out = directory.path() / "recording";
    // Whether the recording can be trusted does not matter here.
    scenario::runProgram({"record", "--seconds", "0.3", "--out", out.string(), "--counters"});
    std::set<std::string> found;
    for (const auto& entry : fs::directory_iterator(out))
        found.insert(withoutNumbers(entry.path().filename().string()));
    std::set<std::string> documented;
    for (const Row& row : hostRows("A recording")) {
        if (!row.contains("File")) continue;
        for (const std::string& name : codesIn(row.at("File"))) documented.insert(name);
    }
    EXPECT_THAT(documented, ContainerEq(found));
}

}  // namespace
