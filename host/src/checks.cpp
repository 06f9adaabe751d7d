#include "checks.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "quantity_text.h"
#include "time_checks.h"

namespace host {
namespace {

/// How far a camera's oscillator may be off, as a share.
constexpr double kOscillatorError = 100e-6;

std::string label(const ChannelReport& channel) {
    return "channel " + std::to_string(channel.channel.id) + ": ";
}

std::uint64_t pulsesWithout(const PulseReport& pulses) {
    return pulseCount(pulses.skipped) + pulseCount(pulses.lost) + pulseCount(pulses.unclear);
}

/// Every pulse is known by its number, so nothing is left to a tolerance.
Check pulseTotal(const ChannelReport& channel, double expected) {
    const std::uint64_t with = channel.frames - channel.pulses->extra;
    const std::uint64_t without = pulsesWithout(*channel.pulses);
    return {static_cast<double>(with + without) == expected,
            label(channel) + std::to_string(with) + " pulses with a frame and " + std::to_string(without) +
                " without make " + std::to_string(with + without) + " of " + decimals(expected, 0) +
                " pulses"};
}

void checkCount(const ChannelReport& channel, double seconds, std::vector<Check>& checks) {
    if (channel.frames == 0) checks.push_back({false, label(channel) + "no frame was recorded"});
    const std::optional<double> expected = expectedFrames(channel, seconds);
    if (!expected) return;
    if (channel.pulses) {
        checks.push_back(pulseTotal(channel, *expected));
        return;
    }
    // A whole frame to either side: the recording's ends fall between frames.
    const double allowed = 1.0 + kOscillatorError * *expected;
    const bool passed = std::abs(static_cast<double>(channel.frames) - *expected) <= allowed;
    checks.push_back({passed, label(channel) + frameCount(channel.frames) + " of " + decimals(*expected, 1) +
                                  " expected (within one frame and 100 ppm of the camera's clock)"});
}

std::string refusedText(const ChannelReport& channel) {
    const std::uint64_t tooSlow = channel.lostInHost - channel.tooLarge;
    std::string text;
    if (tooSlow != 0) text += ", " + std::to_string(tooSlow) + " of them because the disk was too slow";
    if (channel.tooLarge != 0) {
        text += ", " + std::to_string(channel.tooLarge) + " of them because they were larger than expected";
    }
    return text;
}

void checkOrder(const ChannelReport& channel, std::vector<Check>& checks) {
    std::string lost = label(channel) + frameCount(channel.lost) + " lost" +
                       (lossesAreCertain(channel) ? "" : ", or their pulses skipped") + refusedText(channel);
    if (!channel.stamped && !channel.pulses) lost += ", told by gaps in time";
    if (channel.lost != 0 && channel.underruns.value_or(0) != 0) {
        lost += "; " + frameCount(*channel.underruns) +
                " came when all buffers were in use, as on a machine that is too slow";
    }
    if (channel.tooSmall) lost += " (the pictures are too small to carry a stamp)";
    checks.push_back({channel.lost == 0, lost});
    if (channel.stamped) {
        checks.push_back({channel.doubled == 0, label(channel) + frameCount(channel.doubled) + " doubled"});
    }
    if (channel.restarts != 0) {
        checks.push_back({false, label(channel) + "the camera began to count its frames anew " +
                                     std::to_string(channel.restarts) +
                                     (channel.restarts == 1 ? " time" : " times") +
                                     ", and what was lost there is not known"});
    }
}

void checkPulses(const ChannelReport& channel, std::vector<Check>& checks) {
    if (!channel.pulses) return;
    const auto check = [&](const std::vector<PulseSpan>& spans, const char* what,
                           const std::string& cause = {}) {
        const std::uint64_t count = pulseCount(spans);
        checks.push_back({count == 0, label(channel) + std::to_string(count) +
                                          (count == 1 ? " pulse " : " pulses ") + what +
                                          (count == 0 ? "" : cause)});
    };
    const std::string cause = channel.warnedTooFast ? ", as the frequency is too fast for the camera" : "";
    check(channel.pulses->skipped, "skipped", cause);
    check(channel.pulses->lost, "lost");
    if (!channel.pulses->unclear.empty()) check(channel.pulses->unclear, "skipped or lost", cause);
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
    const std::uint64_t came = channel.frames + channel.lostInHost;
    const bool agrees =
        counters.received == came && counters.sent == counters.received + own + channel.lostBehindEnd;
    checks.push_back(
        {agrees && counters.unusable == 0,
         label(channel) + "counters say " + std::to_string(counters.sent) + " sent and " +
             std::to_string(counters.received) + " received, the host got " + frameCount(came) +
             " and found " + frameCount(own) + " lost on the way" +
             (counters.unusable == 0 ? ""
                                     : "; " + std::to_string(counters.unusable) + " counts are missing")});
}

void checkPictures(const ChannelReport& channel, std::vector<Check>& checks) {
    if (!channel.stamped) return;
    checks.push_back({channel.mismatches == 0, label(channel) + std::to_string(channel.mismatches) + " of " +
                                                   std::to_string(channel.frames) +
                                                   " pictures differ from what the camera sent"});
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
    if (channel.pulses) return static_cast<double>(pulsesIn(seconds, *channel.channel.rate));
    return seconds * *channel.channel.rate;
}

bool lossesAreCertain(const ChannelReport& channel) {
    return !channel.pulses || channel.pulses->unclear.empty();
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
        checkPictures(channel, checks);
        checkTimes(report, channel, checks);
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
