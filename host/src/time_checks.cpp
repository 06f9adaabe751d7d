#include "time_checks.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "quantity_text.h"

namespace host {
namespace {

/// How far recorded time may run fast or slow, and how long a recording has to be for that to be told from
/// the scatter of single frames.
constexpr double kSlopeErrorPpm = 200;
constexpr double kShortestSlope = 2;

void add(std::vector<Check>& checks, const ChannelReport& channel, bool passed, const std::string& text) {
    checks.push_back({passed, "channel " + std::to_string(channel.channel.id) + ": " + text, true});
}

void checkSlope(const RecordingReport& report, const ChannelReport& channel, std::vector<Check>& checks) {
    if (!channel.slopePpm || std::min(report.seconds, report.recordedSeconds) < kShortestSlope) return;
    const bool passed = std::abs(*channel.slopePpm) <= kSlopeErrorPpm;
    add(checks, channel, passed,
        "slope of recorded time over " +
            std::string(channel.stamped ? "true time" : "frame numbers at the nominal rate") + " is " +
            decimals(*channel.slopePpm, 1) + " ppm off (least squares over all frames, " +
            decimals(kSlopeErrorPpm, 0) + " ppm allowed)");
}

bool checkSpread(const RecordingReport& report, const ChannelReport& channel, std::vector<Check>& checks) {
    const TimeError& error = *channel.timeError;
    const bool isSmall = error.spreadP99Ns < report.maxSpreadNs;
    add(checks, channel, isSmall,
        "spread of the time error of 99 % of the frames " + duration(error.spreadP99Ns) +
            (isSmall ? " is below " : " is not below ") + duration(report.maxSpreadNs) + " (--max-spread)");
    if (!isSmall || !channel.channel.rate) return isSmall;
    const std::int64_t halfPeriod = std::llround(0.5e9 / *channel.channel.rate);
    const bool isOwn = error.spreadMaxNs < halfPeriod;
    add(checks, channel, isOwn,
        "spread of the time error of all frames " + duration(error.spreadMaxNs) +
            (isOwn ? " is below" : " is not below") + " half a frame period of " + duration(halfPeriod));
    return true;
}

void checkConstant(const ChannelReport& channel, std::vector<Check>& checks) {
    const TimeError& error = *channel.timeError;
    const bool isWay = std::abs(error.constantNs - error.wayNs) <= kLateThreadNs;
    add(checks, channel, isWay,
        "constant part of the time error " + duration(error.constantNs) +
            (isWay ? " equals" : " differs from") + " the way of " + duration(error.wayNs) + " within " +
            duration(kLateThreadNs));
}

void checkEarliness(const ChannelReport& channel, std::vector<Check>& checks) {
    const std::uint64_t early = channel.timeError->early;
    add(checks, channel, early * 100 <= channel.frames,
        std::to_string(early) + " of " + std::to_string(channel.frames) + " frames have times more than " +
            duration(kLateThreadNs) + " earlier than their pictures can have arrived (1 % allowed)");
}

}  // namespace

void checkTimes(const RecordingReport& report, const ChannelReport& channel, std::vector<Check>& checks) {
    if (channel.timeError) {
        // A constant part says nothing when the frames scatter about it.
        if (checkSpread(report, channel, checks)) checkConstant(channel, checks);
        checkEarliness(channel, checks);
    }
    checkSlope(report, channel, checks);
}

std::optional<std::int64_t> worstSpread(const RecordingReport& report) {
    std::optional<std::int64_t> worst;
    for (const ChannelReport& channel : report.channels) {
        if (channel.timeError) worst = std::max(worst.value_or(0), channel.timeError->spreadP99Ns);
    }
    return worst;
}

std::string timeQualityText(const RecordingReport& report, const std::vector<Check>& checks) {
    std::string text;
    const bool areGood = std::all_of(checks.begin(), checks.end(),
                                     [](const Check& check) { return check.passed || !check.ofTimes; });
    if (const auto spread = worstSpread(report)) {
        const std::string size = duration(*spread);
        text += areGood ? "times are good to " + size + " (spread of 99 % of the frames)\n"
                        : "times are not good (spread of 99 % of the frames: " + size + ")\n";
    } else if (!areGood) {
        text += "times are not good\n";
    }
    for (const ChannelReport& channel : report.channels) {
        const auto id = std::to_string(channel.channel.id);
        if (channel.pulses && channel.channel.rate) {
            text += "channel " + id + ": times are pulse numbers; pulse n came n \u00d7 " +
                    decimals(1 / *channel.channel.rate, 9) + " s after pulse 0\n";
        } else if (!channel.timeError) {
            text +=
                "channel " + id + ": how good times are is not known, no picture says when it was exposed\n";
        }
    }
    return text;
}

}  // namespace host
