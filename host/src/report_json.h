/// Results for programs.
#pragma once

#include <map>
#include <string>

#include "checks.h"

namespace host {

struct VendorDescription {
    std::string version;
    std::string scenario;
};

std::string devicesJson(const std::string& plugin, const VendorDescription& vendor,
                        const std::map<std::uint32_t, ChannelInfo>& channels);

/// The content of summary.json.
std::string recordingJson(const RecordingReport& report, const std::vector<Check>& checks);

/// What a command gives that came to nothing.
std::string failureJson(ExitCode code, const std::string& sentence);

}  // namespace host
