/// Whether the times of a recording are right, and how good they are.
#pragma once

#include <string>
#include <vector>

#include "checks.h"

namespace host {

/// Adds the checks of one channel's times. Without the pictures' own word only the slope is checked.
void checkTimes(const RecordingReport& report, const ChannelReport& channel, std::vector<Check>& checks);

/// The spread of 99 % of the frames of the worst channel; empty when no picture says when it was exposed.
std::optional<std::int64_t> worstSpread(const RecordingReport& report);

/// Lines that say how good the recording's times are.
std::string timeQualityText(const RecordingReport& report, const std::vector<Check>& checks);

}  // namespace host
