#include "commands.h"
#include "host_platform.h"
#include "watch_report.h"

namespace host {
namespace {

WatchHooks makeHooks(const CommandLine& line, Console& console) {
    WatchHooks hooks;
    hooks.isInterrupted = [] { return platform::interruptRequested(); };
    hooks.tell = [&console](const std::string& sentence) { console.tell(sentence); };
    if (line.json) return hooks;
    hooks.changed = [&console](const SettingChange& change) { console.print(changeText(change) + '\n'); };
    hooks.show = [&console](const WatchReport& report) { console.print(watchLine(report) + '\n'); };
    return hooks;
}

}  // namespace

ExitCode runWatch(const CommandLine& line, Console& console, const AssertionMonitor&) {
    platform::catchInterrupts();
    WatchOptions options{line.cameras, allOrders(line.cameras), line.seconds};
    Session session(loadPlugin(line.plugin), patientOptions(true));
    if (!line.json) console.print(session.title() + '\n');
    const WatchReport report = Watch(session, std::move(options), makeHooks(line, console)).run();
    console.print(line.json ? watchJson(report) : watchText(report));
    if (report.stopFailure.empty()) return ExitCode::Ok;
    console.tell("zelt_host: The cameras did not stop properly (" + report.stopFailure +
                 "); check the camera, --log-level info tells more.");
    return ExitCode::CameraFailed;
}

}  // namespace host
