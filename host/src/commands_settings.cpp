#include "camera_trouble.h"
#include "change_log.h"
#include "commands.h"
#include "host_failure.h"
#include "output_directory.h"
#include "session.h"
#include "settings_file.h"
#include "settings_report.h"

namespace host {
namespace {

std::vector<ChannelSettings> readAll(Session& session, const std::set<std::uint32_t>& chosen) {
    std::vector<ChannelSettings> all;
    for (const auto& [id, channel] : session.readChannels()) {
        if (!chosen.contains(id)) continue;
        // What a camera that is not open is said to be set to is nothing that it ever said.
        all.push_back({channel, {}});
        if (channel.isOpen()) all.back().settings = readSettings(*session.config(id));
    }
    return all;
}

/// Returns of how many cameras.
std::size_t writeFile(const std::filesystem::path& file, const std::vector<ChannelSettings>& channels) {
    std::string text;
    std::size_t cameras = 0;
    for (const ChannelSettings& each : channels) {
        if (!each.channel.isOpen()) continue;
        text += settingsFilePart(each.channel, each.settings);
        ++cameras;
    }
    const std::string reason = writeTextFile(file, text);
    if (reason.empty()) return cameras;
    throw HostFailure(ExitCode::SettingsFile, "Cannot write the settings file " + file.string() + " (" +
                                                  reason + "); name another one with --to.");
}

}  // namespace

ExitCode runSettings(const CommandLine& line, Console& console, const AssertionMonitor&) {
    const std::vector<SettingOrder> orders = allOrders(line.cameras);
    Session session(loadPlugin(line.plugin), patientOptions(line.cameras.channels));
    MessageTeller messages(session.messages(), [&](const std::string& text) { console.tell(text); });
    ChangeLog changes(console, messages, !line.json);
    const std::set<std::uint32_t> chosen = session.chooseChannels(line.cameras.channels);

    carryOut(session, orders, chosen, std::ref(changes));
    messages.tell();
    const std::vector<ChannelSettings> channels = readAll(session, chosen);
    const std::string closed = notOpenSentence(session, chosen, messages.told());
    const std::size_t written = line.to.empty() ? 0 : writeFile(line.to, channels);
    if (line.json) {
        console.print(settingsJson(changes.changes(), channels, messages.told(), closed));
    } else if (!line.to.empty()) {
        console.print("wrote the settings of " + std::to_string(written) +
                      (written == 1 ? " camera to " : " cameras to ") + line.to.string() + '\n');
    } else if (changes.changes().empty()) {
        console.print(session.title() + '\n' + settingsText(channels));
    }
    if (closed.empty()) return ExitCode::Ok;
    console.tell("zelt_host: " + closed);
    return ExitCode::CameraFailed;
}

}  // namespace host
