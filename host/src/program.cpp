#include <algorithm>
#include <array>
#include <string>

#include "commands.h"
#include "host_failure.h"
#include "host_platform.h"
#include "plugin_handle.h"
#include "report_json.h"

namespace host {
namespace {

struct Runner {
    Command command;
    ExitCode (*run)(const CommandLine& line, Console& console, const AssertionMonitor& assertions);
};

constexpr std::array<Runner, 6> kRunners{{
    {Command::Devices, &runDevices},
    {Command::Settings, &runSettings},
    {Command::Check, &runCheck},
    {Command::Record, &runRecord},
    {Command::Watch, &runWatch},
    {Command::Topology, &runTopology},
}};

ExitCode fail(Console& console, bool json, ExitCode code, const std::string& sentence) {
    console.tell("zelt_host: " + sentence);
    if (!json) return code;
    try {
        console.print(failureJson(code, sentence));
        return code;
    } catch (const HostFailure& unwritable) {
        // The failure may have been this one.
        if (sentence != unwritable.what()) console.tell(std::string("zelt_host: ") + unwritable.what());
        return unwritable.code();
    }
}

ExitCode runCommand(const CommandLine& line, Console& console) {
    if (line.command == Command::Help) {
        console.print(line.helpText);
        return ExitCode::Ok;
    }
    if (!line.json && platform::isTerminal(platform::Stream::Out)) console.setProgressStream(stdout);
    if (!line.json && !platform::isTerminal(platform::Stream::Out) &&
        platform::isTerminal(platform::Stream::Error)) {
        console.setProgressStream(stderr);
    }
    const LogConsole log(console, line.logLevel);
    const AssertionMonitor assertions(console);
    const auto row = std::find_if(kRunners.begin(), kRunners.end(),
                                  [&](const Runner& each) { return each.command == line.command; });
    return row->run(line, console, assertions);
}

ExitCode runGuarded(int argc, const char* const* argv, Console& console) {
    // Looked for by hand, so that a program gets its answer to a wrong command line too.
    const bool json =
        std::any_of(argv, argv + argc, [](const char* arg) { return arg == std::string("--json"); });
    if (json) console.printForPrograms();
    try {
        return runCommand(parseCommandLine(argc, argv), console);
    } catch (const HostFailure& failure) {
        return fail(console, json, failure.code(), failure.what());
    } catch (const std::exception& failure) {
        return fail(console, json, ExitCode::Unexpected,
                    std::string("Unexpected failure: ") + failure.what() +
                        "; run again with --log-level info and report what it shows.");
    }
}

}  // namespace

int runProgram(int argc, const char* const* argv) {
    platform::makeWriteErrorsReturn();
    Console console(stdout, stderr, platform::showsUtf8());
    return static_cast<int>(runGuarded(argc, argv, console));
}

}  // namespace host
