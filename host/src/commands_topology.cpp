#include "commands.h"
#include "host_failure.h"
#include "json_text.h"
#include "message_teller.h"
#include "output_directory.h"
#include "session.h"

namespace host {
namespace {

std::string readTopology(Session& session) {
    std::optional<std::string> document;
    try {
        document = session.plugin().getTopology();
    } catch (const PluginError& failure) {
        throw HostFailure(ExitCode::Unexpected, std::string("The plug-in could not describe its hardware: ") +
                                                    failure.what() + "; --log-level info tells more.");
    }
    if (document) return *document;
    throw HostFailure(ExitCode::NoService,
                      "This plug-in does not describe its hardware; zelt_host devices lists the cameras.");
}

void writeFile(const std::filesystem::path& file, const std::string& document) {
    const std::string reason = writeTextFile(file, document);
    if (reason.empty()) return;
    throw HostFailure(ExitCode::WriteFailed,
                      "Cannot write " + file.string() + " (" + reason + "); name another file with --out.");
}

}  // namespace

ExitCode runTopology(const CommandLine& line, Console& console, const AssertionMonitor&) {
    Session session(loadPlugin(line.plugin), patientOptions());
    const MessageTeller messages(session.messages(),
                                 [&](const std::string& sentence) { console.tell(sentence); });
    const std::string document = readTopology(session);
    if (!line.out.empty()) writeFile(line.out, document);
    if (line.json) {
        console.print(dumpJson({{"exit_code", 0}, {"topology", document}}));
    } else if (line.out.empty()) {
        console.printForPrograms();
        console.print(document);
    } else {
        console.print("wrote " + line.out.string() + '\n');
    }
    return ExitCode::Ok;
}

}  // namespace host
