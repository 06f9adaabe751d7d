#include "commands.h"
#include "message_teller.h"
#include "report_json.h"
#include "report_text.h"
#include "session.h"

namespace host {

ExitCode runDevices(const CommandLine& line, Console& console, const AssertionMonitor&) {
    Session session(loadPlugin(line.plugin), patientOptions());
    const MessageTeller messages(session.messages(),
                                 [&](const std::string& sentence) { console.tell(sentence); });
    const auto channels = session.readChannels();
    const VendorProbe& vendor = session.vendor();
    console.print(line.json
                      ? devicesJson(session.plugin().name(), {vendor.version(), vendor.scenario()}, channels)
                      : session.title() + '\n' + devicesText(channels));
    return ExitCode::Ok;
}

}  // namespace host
