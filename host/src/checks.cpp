#include "checks.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "quantity_text.h"

namespace host {
namespace {

/// A clock fit has only the moment of a frame's callback to go by, and a system that is not a real-time one
/// calls back late: steadily so, hence not seen in the spread. Far below what any part of the way takes.
constexpr std::int64_t kThreadLatencyNs = 500'000;

std::string label(const ChannelReport& channel) {
    return "channel " + std::to_string(channel.channel.id) + ": ";
}

void checkCount(const ChannelReport& channel, double seconds, std::vector<Check>& checks) {
    const std::optional<double> expected = expectedFrames(channel, seconds);
    if (!expected) return;
    // A whole frame to either side: the recording's ends fall between frames.
    const bool passed = std::abs(static_cast<double>(channel.frames) - *expected) <= 1.0;
    checks.push_back({passed, label(channel) + frameCount(channel.frames) + " of " + decimals(*expected, 1) +
                                  " expected (within one frame)"});
}

void checkOrder(const ChannelReport& channel, std::vector<Check>& checks) {
    std::string lost = label(channel) + frameCount(channel.lost) + " lost";
    if (channel.lostInHost != 0) {
        lost += ", " + std::to_string(channel.lostInHost) + " of them because the disk was too slow";
    }
    checks.push_back({channel.lost == 0, lost});
    if (channel.stamped) {
        checks.push_back({channel.doubled == 0, label(channel) + frameCount(channel.doubled) + " doubled"});
    }
}

void checkPulses(const ChannelReport& channel, std::vector<Check>& checks) {
    if (!channel.pulses) return;
    const auto check = [&](const std::vector<PulseSpan>& spans, const char* what) {
        const std::uint64_t count = pulseCount(spans);
        checks.push_back({count == 0, label(channel) + std::to_string(count) +
                                          (count == 1 ? " pulse " : " pulses ") + what +
                                          (count == 0 ? "" : " (" + pulseText(spans) + ")")});
    };
    check(channel.pulses->skipped, "skipped");
    check(channel.pulses->lost, "lost");
    check(channel.pulses->doubled, "doubled");
    if (!channel.stamped) return;
    const std::uint64_t misplaced = channel.pulses->misplaced;
    checks.push_back({misplaced == 0, label(channel) + frameCount(misplaced) +
                                          " with the number of another pulse than the one that exposed"});
}

void checkCounters(const ChannelReport& channel, std::vector<Check>& checks) {
    if (!channel.counters) return;
    const CounterReport& counters = *channel.counters;
    // What the host itself could not take the camera's counters know nothing of.
    const std::uint64_t own = channel.lost - std::min(channel.lost, channel.lostInHost);
    const bool agrees = counters.received <= counters.sent && counters.sent - counters.received == own;
    checks.push_back(
        {agrees && counters.unusable == 0,
         label(channel) + "counters say " + std::to_string(counters.sent) + " sent and " +
             std::to_string(counters.received) + " received, the host found " + frameCount(own) +
             " lost on the way" +
             (counters.unusable == 0 ? ""
                                     : "; " + std::to_string(counters.unusable) + " counts are missing")});
}

void checkTruth(const ChannelReport& channel, std::vector<Check>& checks) {
    if (!channel.stamped) return;
    checks.push_back({channel.mismatches == 0, label(channel) + std::to_string(channel.mismatches) + " of " +
                                                   std::to_string(channel.frames) +
                                                   " pictures differ from what the camera sent"});
    if (!channel.timeError) return;
    const TimeError& error = *channel.timeError;
    const bool passed = std::abs(error.constantNs - error.wayNs) <= error.spreadMaxNs + kThreadLatencyNs;
    checks.push_back({passed, label(channel) + "constant part of the time error " +
                                  duration(error.constantNs) + (passed ? " equals" : " differs from") +
                                  " the way of " + duration(error.wayNs) + " within the spread of " +
                                  duration(error.spreadMaxNs) + " and the " + duration(kThreadLatencyNs) +
                                  " that a thread may wake up late"});
}

std::string failedOnes(const std::vector<Check>& checks) {
    std::string text;
    for (const Check& check : checks) {
        if (!check.passed) text += (text.empty() ? "" : "; ") + check.sentence;
    }
    return text;
}

}  // namespace

std::uint64_t totalFrames(const RecordingReport& report) {
    return std::accumulate(report.channels.begin(), report.channels.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const ChannelReport& c) { return sum + c.frames; });
}

std::uint64_t totalLost(const RecordingReport& report) {
    return std::accumulate(report.channels.begin(), report.channels.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const ChannelReport& c) { return sum + c.lost; });
}

std::optional<double> expectedFrames(const ChannelReport& channel, double seconds) {
    if (!channel.channel.rate) return std::nullopt;
    return seconds * *channel.channel.rate;
}

std::vector<Check> makeChecks(const RecordingReport& report) {
    std::vector<Check> checks;
    for (const ChannelReport& channel : report.channels) {
        if (report.outcome == Outcome::Complete) {
            if (channel.silent) checks.push_back({false, label(channel) + "fell silent before the end"});
            checkCount(channel, report.seconds, checks);
        }
        checkOrder(channel, checks);
        checkPulses(channel, checks);
        checkCounters(channel, checks);
        checkTruth(channel, checks);
    }
    if (report.assertionFailures != 0) {
        checks.push_back(
            {false, std::to_string(report.assertionFailures) + " assertions of the plug-in failed"});
    }
    if (!report.stopFailure.empty()) {
        checks.push_back({false, "the cameras did not stop properly (" + report.stopFailure + ")"});
    }
    return checks;
}

bool allPassed(const std::vector<Check>& checks) {
    return std::all_of(checks.begin(), checks.end(), [](const Check& check) { return check.passed; });
}

ExitCode exitCode(const RecordingReport& report, const std::vector<Check>& checks) {
    switch (report.outcome) {
        case Outcome::WriteFailed:
            return ExitCode::WriteFailed;
        case Outcome::Interrupted:
            return ExitCode::Interrupted;
        case Outcome::Complete:
            break;
    }
    return allPassed(checks) ? ExitCode::Ok : ExitCode::CheckFailed;
}

std::string failureSentence(const RecordingReport& report, const std::vector<Check>& checks) {
    const std::string frames = frameCount(totalFrames(report));
    switch (report.outcome) {
        case Outcome::WriteFailed:
            return "Writing to " + report.directory + " failed after " + frames + " (" + report.writeFailure +
                   "); what is there is intact, make room and record again into another directory.";
        case Outcome::Interrupted:
            return "Interrupted after " + decimals(report.recordedSeconds, 1) + " s of " +
                   decimals(report.seconds, 1) + " s; the " + frames + " in " + report.directory +
                   " are intact.";
        case Outcome::Complete:
            break;
    }
    if (allPassed(checks)) return {};
    return "The recording in " + report.directory + " cannot be trusted: " + failedOnes(checks) +
           "; find the cause and record again.";
}

}  // namespace host
