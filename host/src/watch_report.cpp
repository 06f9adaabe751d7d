#include "watch_report.h"

#include "json_text.h"
#include "quantity_text.h"
#include "text_table.h"

namespace host {

std::string watchLine(const WatchReport& report) {
    std::string time = decimals(report.seconds, 0) + " s";
    time.insert(0, time.size() < 6 ? 6 - time.size() : 0, ' ');
    std::string text = time;
    for (const WatchedChannel& row : report.channels) {
        text += "   channel " + std::to_string(row.channel.id) + ": " + frameCount(row.frames) + ", " +
                std::to_string(row.lost) + " lost, " + decimals(row.rate, 1) + " fps";
    }
    return text;
}

std::string watchText(const WatchReport& report) {
    std::vector<std::vector<std::string>> rows;
    for (const WatchedChannel& row : report.channels) {
        rows.push_back({std::to_string(row.channel.id), row.channel.name, std::to_string(row.frames),
                        std::to_string(row.lost), decimals(row.rate, 2) + " fps",
                        row.lastMessage.empty() ? "none" : row.lastMessage});
    }
    return formatTable(
        {{"id", true}, {"camera"}, {"frames", true}, {"lost", true}, {"rate", true}, {"last message"}}, rows);
}

std::string watchJson(const WatchReport& report) {
    ordered_json list = ordered_json::array();
    for (const WatchedChannel& row : report.channels) {
        list.push_back({{"id", row.channel.id},
                        {"name", row.channel.name},
                        {"frames", row.frames},
                        {"lost", row.lost},
                        {"rate_fps", row.rate},
                        {"last_message", orNull(row.lastMessage)}});
    }
    const std::string sentence = watchFailure(report);
    return dumpJson({{"exit_code", static_cast<int>(watchCode(report))},
                     {"error", orNull(sentence)},
                     {"seconds", report.seconds},
                     {"channels", list}});
}

ExitCode watchCode(const WatchReport& report) {
    if (!report.stopFailure.empty()) return ExitCode::CameraFailed;
    return report.cutShort ? ExitCode::Interrupted : ExitCode::Ok;
}

std::string watchFailure(const WatchReport& report) {
    if (!report.stopFailure.empty()) {
        return "The cameras did not stop properly (" + report.stopFailure +
               "); check the camera, --log-level info tells more.";
    }
    return report.cutShort ? "Interrupted after " + decimals(report.seconds, 1) + " s." : std::string();
}

}  // namespace host
