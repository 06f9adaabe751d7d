/// Network bandwidth of camera channels: pure functions.
#pragma once

#include <cstdint>

namespace zelt_gige_camera {

/// Usable capacity of one gigabit link, bytes per second.
inline constexpr double kLinkCapacity = 115'000'000.0;

/// Bytes per second that a stream needs, rounded up; 0 for a rate that is negative or not finite.
/// `payload`: bytes per frame; `frameRate`: frames per second. `fixedBandwidth`: what the stream was given in
/// any case; 0 for none.
std::uint64_t requiredBandwidth(std::uint64_t payload, double frameRate, std::int64_t fixedBandwidth = 0);

/// A channel's share of the link, bytes per second, rounded down: required / total * capacity. 0 when the
/// total is 0.
std::int64_t bandwidthShare(std::uint64_t required, std::uint64_t totalRequired);

/// Highest frame rate that a stream limit allows, frames per second; infinite without a payload.
double bandwidthLimitedFrameRate(std::int64_t streamBytesPerSecond, std::uint64_t payload);

}  // namespace zelt_gige_camera
