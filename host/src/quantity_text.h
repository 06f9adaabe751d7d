#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace host {

/// "1.50": fixed number of decimals, with a point in every locale.
std::string decimals(double value, int digits);

/// "37.02 ms", "41 µs", "1.500 s": a time in nanoseconds in the unit that suits it.
std::string duration(std::int64_t nanoseconds);

/// "2026-11-21T03:36:35.123Z"
std::string utcText(std::chrono::system_clock::time_point time);

/// "1 frame", "250 frames"
std::string frameCount(std::uint64_t count);

}  // namespace host
