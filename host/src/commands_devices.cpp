#include "commands.h"
#include "report_json.h"
#include "report_text.h"
#include "session.h"

namespace host {

ExitCode runDevices(const CommandLine& line, Console& console) {
    Session session(loadPlugin(line.plugin), patientOptions());
    for (const std::string& message : session.messages().take()) console.tell(message);
    const auto channels = session.readChannels();
    const VendorProbe& vendor = session.vendor();
    console.print(line.json
                      ? devicesJson(session.plugin().name(), {vendor.version(), vendor.scenario()}, channels)
                      : session.title() + '\n' + devicesText(channels));
    return ExitCode::Ok;
}

}  // namespace host
