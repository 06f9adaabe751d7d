/// What a watch found, for people and programs.
#pragma once

#include <string>

#include "exit_codes.h"
#include "watch.h"

namespace host {

/// "   3 s   channel 0: 150 frames, 0 lost, 50.0 fps   channel 1: ..." for every second.
std::string watchLine(const WatchReport& report);
/// A table for its end.
std::string watchText(const WatchReport& report);
std::string watchJson(const WatchReport& report);

ExitCode watchCode(const WatchReport& report);
/// The sentence for the error stream; empty when there is nothing to complain about.
std::string watchFailure(const WatchReport& report);

}  // namespace host
