#include "report_json.h"

#include "json_text.h"
#include "time_checks.h"

namespace host {
namespace {

ordered_json vendorJson(const std::string& version, const std::string& scenario) {
    return {{"version", orNull(version)}, {"simulator", orNull(scenario)}};
}

ordered_json channelJson(const ChannelInfo& channel) {
    return {{"id", channel.id},
            {"name", channel.name},
            {"short_id", channel.shortId},
            {"type", orNull(channel.type)},
            {"format", orNull(channel.format)},
            {"open", channel.isOpen()},
            {"width", channel.width},
            {"height", channel.height},
            {"rate_fps", orNull(channel.rate)}};
}

ordered_json timeErrorJson(const std::optional<TimeError>& error) {
    if (!error) return nullptr;
    return {{"constant_ns", error->constantNs},    {"way_ns", error->wayNs},
            {"delay_p99_ns", error->delayP99Ns},   {"spread_p99_ns", error->spreadP99Ns},
            {"spread_max_ns", error->spreadMaxNs}, {"early", error->early}};
}

ordered_json spansJson(const std::vector<PulseSpan>& spans) {
    ordered_json list = ordered_json::array();
    for (const PulseSpan& span : spans) list.push_back({span.first, span.last});
    return list;
}

ordered_json pulsesJson(const ChannelReport& channel) {
    const std::optional<PulseReport>& pulses = channel.pulses;
    if (!pulses) return nullptr;
    return {{"skipped", spansJson(pulses->skipped)},
            {"lost", spansJson(pulses->lost)},
            {"skipped_or_lost", spansJson(pulses->unclear)},
            {"doubled", spansJson(pulses->doubled)},
            {"misplaced", channel.stamped ? ordered_json(pulses->misplaced) : ordered_json(nullptr)}};
}

ordered_json countersJson(const std::optional<CounterReport>& counters) {
    if (!counters) return nullptr;
    return {{"sent", counters->sent}, {"received", counters->received}, {"unusable", counters->unusable}};
}

ordered_json settingsJson(const ChannelReport& channel) {
    ordered_json json = ordered_json::object();
    for (const auto& [key, text] : channel.settings) json[key] = text;
    return json;
}

ordered_json optionsJson(const RecordingReport& report) {
    ordered_json json = ordered_json::object();
    for (const OptionTexts& option : report.options) json[option.name] = option.texts;
    return json;
}

ordered_json recordedJson(const ChannelReport& channel, double seconds) {
    ordered_json json = channelJson(channel.channel);
    json["frames"] = channel.frames;
    json["frames_expected"] = orNull(expectedFrames(channel, seconds));
    json["lost"] = channel.lost;
    json["lost_is_certain"] = lossesAreCertain(channel);
    json["lost_in_host"] = channel.lostInHost;
    json["too_large"] = channel.tooLarge;
    json["underruns"] = orNull(channel.underruns);
    json["silent"] = channel.silent;
    json["doubled"] = channel.stamped ? ordered_json(channel.doubled) : ordered_json(nullptr);
    json["restarts"] = channel.stamped ? ordered_json(channel.restarts) : ordered_json(nullptr);
    json["matches"] = channel.stamped ? ordered_json(channel.matches) : ordered_json(nullptr);
    json["mismatches"] = channel.stamped ? ordered_json(channel.mismatches) : ordered_json(nullptr);
    json["time_error"] = timeErrorJson(channel.timeError);
    json["slope_ppm"] = orNull(channel.slopePpm);
    json["pulses"] = pulsesJson(channel);
    json["counters"] = countersJson(channel.counters);
    json["settings"] = settingsJson(channel);
    return json;
}

const char* outcomeText(Outcome outcome) {
    switch (outcome) {
        case Outcome::Complete:
            return "complete";
        case Outcome::Interrupted:
            return "interrupted";
        case Outcome::WriteFailed:
            return "write failed";
    }
    return "";
}

}  // namespace

std::string devicesJson(const std::string& plugin, const VendorDescription& vendor,
                        const std::map<std::uint32_t, ChannelInfo>& channels) {
    ordered_json list = ordered_json::array();
    for (const auto& [id, channel] : channels) list.push_back(channelJson(channel));
    return dumpJson({{"exit_code", 0},
                     {"plugin", plugin},
                     {"vendor_library", vendorJson(vendor.version, vendor.scenario)},
                     {"channels", list}});
}

std::string recordingJson(const RecordingReport& report, const std::vector<Check>& checks) {
    ordered_json channels = ordered_json::array();
    for (const ChannelReport& channel : report.channels) {
        channels.push_back(recordedJson(channel, report.seconds));
    }
    ordered_json list = ordered_json::array();
    for (const Check& check : checks) list.push_back({{"passed", check.passed}, {"text", check.sentence}});
    const std::string sentence = failureSentence(report, checks);
    const std::optional<std::int64_t> spread = worstSpread(report);
    return dumpJson({{"exit_code", static_cast<int>(exitCode(report, checks))},
                     {"error", orNull(sentence)},
                     {"plugin", report.plugin},
                     {"vendor_library", vendorJson(report.vendorVersion, report.scenario)},
                     {"directory", report.directory},
                     {"started_utc", orNull(report.startedUtc)},
                     {"trigger", orNull(report.trigger)},
                     {"options", optionsJson(report)},
                     {"seconds", report.seconds},
                     {"outcome", outcomeText(report.outcome)},
                     {"trusted", report.outcome == Outcome::Complete && allPassed(checks)},
                     {"times_spread_ns", orNull(spread)},
                     {"channels", channels},
                     {"checks", list},
                     {"assertion_failures", report.assertionFailures},
                     {"messages", report.messages},
                     {"pictures", report.pictureFiles},
                     {"pictures_failed", report.failedPictures}});
}

std::string failureJson(ExitCode code, const std::string& sentence) {
    return dumpJson({{"exit_code", static_cast<int>(code)}, {"error", sentence}});
}

}  // namespace host
