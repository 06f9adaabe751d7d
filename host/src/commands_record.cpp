#include "commands.h"
#include "output_directory.h"
#include "recording.h"
#include "report_json.h"
#include "report_text.h"

namespace host {
namespace {

constexpr std::size_t kPlainWidth = 1000;

std::size_t progressColumns() {
    const auto stream =
        platform::isTerminal(platform::Stream::Out) ? platform::Stream::Out : platform::Stream::Error;
    // The last column stays free: writing there wraps some terminals.
    return static_cast<std::size_t>(platform::terminalWidth(stream) - 1);
}

RecordingHooks makeHooks(Console& console, bool json, Progress& last) {
    RecordingHooks hooks;
    hooks.isInterrupted = [] { return platform::interruptRequested(); };
    hooks.tell = [&console](const std::string& sentence) { console.tell(sentence); };
    hooks.changed = [&console, json](const SettingChange& change) {
        if (!json) console.print(changeText(change) + '\n');
    };
    hooks.chosen = [&console, json](const auto& channels, const auto& chosen) {
        if (!json) console.print(devicesText(channels, chosen));
    };
    hooks.showProgress = [&console, &last](const Progress& progress) {
        last = progress;
        if (console.hasProgressLine()) {
            console.drawProgress(progressLine(progress, progressColumns(), console.utf8()));
        }
    };
    return hooks;
}

RecordingReport record(const CommandLine& line, Console& console, Progress& last) {
    RecordingOptions options{line.seconds.value(),    line.out,         line.cameras,
                             allOrders(line.cameras), line.maxSpreadNs, line.options};
    Session session(loadPlugin(line.plugin), patientOptions(line.cameras.channels, line.counters));
    if (!line.json) console.print(session.title() + '\n');
    Recording recording(session, std::move(options), makeHooks(console, line.json, last));
    return recording.run();
}

void writeSummary(const CommandLine& line, RecordingReport& report) {
    const std::string reason =
        writeTextFile(line.out / "summary.json", recordingJson(report, makeChecks(report)));
    if (reason.empty()) return;
    report.outcome = Outcome::WriteFailed;
    report.writeFailure = reason;
}

}  // namespace

ExitCode runRecord(const CommandLine& line, Console& console, const AssertionMonitor& assertions) {
    platform::catchInterrupts();
    Progress last;
    RecordingReport report = record(line, console, last);
    report.assertionFailures = assertions.count();
    writeSummary(line, report);

    const std::vector<Check> checks = makeChecks(report);
    console.clearProgress();
    console.print(line.json ? recordingJson(report, checks)
                            : progressLine(last, kPlainWidth, false) + '\n' + recordingText(report, checks));
    const std::string sentence = failureSentence(report, checks);
    if (!sentence.empty()) console.tell("zelt_host: " + sentence);
    return exitCode(report, checks);
}

}  // namespace host
