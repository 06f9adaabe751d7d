#pragma once

#include <optional>
#include <string>
#include <vector>

#include "exit_codes.h"
#include "recording_report.h"

namespace host {

/// One condition of a trustworthy recording, worded as it turned out.
struct Check {
    bool passed = true;
    std::string sentence;
    bool ofTimes = false;  ///< whether it is about times
};

/// Frames that a channel should have recorded, exact with a triggered camera; empty when its rate is not
/// known.
std::optional<double> expectedFrames(const ChannelReport& channel, double seconds);

/// False when some of the frames counted as lost may never have been made.
bool lossesAreCertain(const ChannelReport& channel);

/// All checks of a recording. One that was cut short is not asked for its number of frames.
std::vector<Check> makeChecks(const RecordingReport& report);

bool allPassed(const std::vector<Check>& checks);

ExitCode exitCode(const RecordingReport& report, const std::vector<Check>& checks);

/// The sentence for the error stream; empty when there is nothing to complain about.
std::string failureSentence(const RecordingReport& report, const std::vector<Check>& checks);

}  // namespace host
