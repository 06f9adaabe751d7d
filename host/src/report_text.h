/// Results for people.
#pragma once

#include <map>
#include <set>
#include <string>

#include "checks.h"

namespace host {

/// Table of the channels.
std::string devicesText(const std::map<std::uint32_t, ChannelInfo>& channels);
/// The same; all but the used ones are switched off.
std::string devicesText(const std::map<std::uint32_t, ChannelInfo>& channels,
                        const std::set<std::uint32_t>& used);

/// Table of a recording, what was written, whether it can be trusted, and how good its times are.
std::string recordingText(const RecordingReport& report, const std::vector<Check>& checks);

}  // namespace host
