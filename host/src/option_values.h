/// Values of command-line options. All throw HostFailure with a sentence that names option and text.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "log_console.h"
#include "setting_changes.h"
#include "setting_text.h"

namespace host {

/// From a millisecond to three years.
double parseSeconds(const std::string& text);
std::set<std::uint32_t> parseChannels(const std::vector<std::string>& texts);
LogLevel parseLevel(const std::string& text);
/// Microseconds, from a nanosecond to a second; in nanoseconds.
std::int64_t parseMaxSpread(const std::string& text);
/// "KEY=VALUE" each, or "ID/KEY=VALUE" with the id of a channel or of its camera.
std::vector<SettingOrder> parseSets(const std::vector<std::string>& texts);
/// Keys of actions.
std::vector<SettingOrder> parseActions(const std::vector<std::string>& texts);
/// A frequency in Hz, greater than 0 and with numerator and denominator of at most 10^9.
Fraction parseFrequency(const std::string& text);

}  // namespace host
