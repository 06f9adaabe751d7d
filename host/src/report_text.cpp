#include "report_text.h"

#include <algorithm>

#include "quantity_text.h"
#include "text_table.h"
#include "time_checks.h"

namespace host {
namespace {

std::string orUnknown(const std::string& text) {
    return text.empty() ? "n/a" : text;
}

std::string timeErrorText(const ChannelReport& channel) {
    if (channel.pulses) return "times are pulse numbers";
    if (!channel.timeError) return "n/a";
    const TimeError& error = *channel.timeError;
    return duration(error.constantNs) + " (" + duration(error.wayNs) + ") / " + duration(error.spreadP99Ns) +
           " / " + duration(error.spreadMaxNs);
}

std::string sizeText(const ChannelInfo& channel) {
    if (!channel.isOpen()) return "not open";
    return std::to_string(channel.width) + "\u00d7" + std::to_string(channel.height);
}

std::vector<std::string> recordingRow(const ChannelReport& channel) {
    const std::string matches =
        channel.stamped ? std::to_string(channel.matches) + " of " + std::to_string(channel.frames) : "n/a";
    const std::string lost = (lossesAreCertain(channel) ? "" : "up to ") + std::to_string(channel.lost);
    return {std::to_string(channel.channel.id), std::to_string(channel.frames), lost, matches,
            timeErrorText(channel)};
}

std::string counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + ' ' + what;
}

std::string filesText(const RecordingReport& report) {
    const auto cameras = std::count_if(report.channels.begin(), report.channels.end(),
                                       [](const ChannelReport& channel) { return channel.counters; });
    const auto counters = static_cast<std::size_t>(2 * cameras);
    return "wrote " + counted(report.channels.size(), "raw + CSV") + ", " +
           (counters == 0 ? "" : counted(counters, "counter CSV") + ", ") +
           counted(report.pictureFiles.size(), "PNG") + ", summary.json\n";
}

std::string pulsesText(const RecordingReport& report) {
    std::string text;
    for (const ChannelReport& channel : report.channels) {
        if (!channel.pulses) continue;
        text +=
            "channel " + std::to_string(channel.channel.id) +
            ": pulses skipped: " + pulseText(channel.pulses->skipped) +
            "; lost: " + pulseText(channel.pulses->lost) +
            (lossesAreCertain(channel) ? "" : "; skipped or lost: " + pulseText(channel.pulses->unclear)) +
            "; doubled: " + pulseText(channel.pulses->doubled) + '\n';
    }
    return text;
}

std::string countersText(const RecordingReport& report) {
    std::string text;
    for (const ChannelReport& channel : report.channels) {
        if (!channel.counters) continue;
        text += "channel " + std::to_string(channel.channel.id) +
                ": counters: " + std::to_string(channel.counters->sent) + " sent, " +
                std::to_string(channel.counters->received) + " received\n";
    }
    return text;
}

std::string verdict(const RecordingReport& report, const std::vector<Check>& checks) {
    const auto failed = static_cast<std::size_t>(
        std::count_if(checks.begin(), checks.end(), [](const Check& check) { return !check.passed; }));
    std::string text;
    for (const Check& check : checks) {
        if (!check.passed) text += "check failed: " + check.sentence + '\n';
    }
    if (failed != 0) {
        if (report.outcome != Outcome::Complete) text += "the recording was cut short; ";
        return text + std::to_string(failed) + " of " + std::to_string(checks.size()) +
               " checks failed: the recording cannot be trusted\n";
    }
    if (report.outcome != Outcome::Complete) {
        return "the recording was cut short; what is there passed all " + std::to_string(checks.size()) +
               " checks\n";
    }
    return "all " + std::to_string(checks.size()) + " checks passed: the recording can be trusted\n";
}

}  // namespace

std::string devicesText(const std::map<std::uint32_t, ChannelInfo>& channels) {
    std::set<std::uint32_t> all;
    for (const auto& [id, channel] : channels) all.insert(id);
    return devicesText(channels, all);
}

std::string devicesText(const std::map<std::uint32_t, ChannelInfo>& channels,
                        const std::set<std::uint32_t>& used) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(channels.size());
    for (const auto& [id, channel] : channels) {
        const bool isUsed = used.contains(id);
        rows.push_back({std::to_string(id), channel.name, orUnknown(channel.type),
                        isUsed ? orUnknown(channel.format) : "", isUsed ? sizeText(channel) : "switched off",
                        !isUsed        ? ""
                        : channel.rate ? decimals(*channel.rate, 2) + " fps"
                                       : "n/a"});
    }
    return formatTable({{"id", true}, {"camera"}, {"type"}, {"format"}, {"size"}, {"rate", true}}, rows);
}

std::string recordingText(const RecordingReport& report, const std::vector<Check>& checks) {
    std::vector<std::vector<std::string>> rows(report.channels.size());
    std::transform(report.channels.begin(), report.channels.end(), rows.begin(), &recordingRow);
    std::string text = formatTable({{"id", true},
                                    {"frames", true},
                                    {"lost", true},
                                    {"pictures intact"},
                                    {"time error: constant (way) / spread p99 / spread max"}},
                                   rows);
    text += pulsesText(report) + countersText(report) + filesText(report);
    return text + verdict(report, checks) + timeQualityText(report, checks);
}

}  // namespace host
