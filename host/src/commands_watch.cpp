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
    Session session(loadPlugin(line.plugin), patientOptions(line.cameras.channels, true));
    if (!line.json) console.print(session.title() + '\n');
    const WatchReport report = Watch(session, std::move(options), makeHooks(line, console)).run();
    console.print(line.json ? watchJson(report) : watchText(report));
    const std::string sentence = watchFailure(report);
    if (!sentence.empty()) console.tell("zelt_host: " + sentence);
    return watchCode(report);
}

}  // namespace host
