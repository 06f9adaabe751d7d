#include "change_log.h"
#include "commands.h"
#include "host_failure.h"
#include "session.h"
#include "settings_report.h"

namespace host {
namespace {

bool isRight(Session& session, const std::set<std::uint32_t>& chosen) {
    try {
        return session.plugin().checkChannelSettings({chosen.begin(), chosen.end()});
    } catch (const PluginError& failure) {
        throw HostFailure(ExitCode::CameraFailed, std::string("The cameras could not be checked: ") +
                                                      failure.what() +
                                                      "; check the camera, --log-level info tells more.");
    }
}

}  // namespace

ExitCode runCheck(const CommandLine& line, Console& console, const AssertionMonitor&) {
    const std::vector<SettingOrder> orders = allOrders(line.cameras);
    Session session(loadPlugin(line.plugin), patientOptions(line.cameras.channels));
    // Every change looks at the settings, and so does the check.
    MessageTeller messages(
        session.messages(), [&](const std::string& text) { console.tell(text); }, Repetitions::Drop);
    ChangeLog changes(console, messages, !line.json);

    const auto chosen = setUpCameras(session, line.cameras, orders, std::ref(changes));
    CheckResult result;
    result.passed = isRight(session, chosen);
    result.channels = chosen.size();
    messages.tell();
    result.messages = messages.told();
    console.print(line.json ? checkJson(result, changes.changes()) : checkText(result));
    const std::string sentence = checkFailure(result);
    if (!sentence.empty()) console.tell("zelt_host: " + sentence);
    return result.passed ? ExitCode::Ok : ExitCode::CheckFailed;
}

}  // namespace host
