/// Random numbers that are a function of a seed and a position, so that a run repeats whatever its threads
/// do.
#pragma once

#include <cstdint>

namespace simulator {

/// 64 bits, evenly distributed: the finaliser of splitmix64 over the position.
inline std::uint64_t noise(std::uint64_t seed, std::uint64_t position) {
    std::uint64_t bits = seed + (position + 1) * 0x9E37'79B9'7F4A'7C15U;
    bits = (bits ^ bits >> 30) * 0xBF58'476D'1CE4'E5B9U;
    bits = (bits ^ bits >> 27) * 0x94D0'49BB'1331'11EBU;
    return bits ^ bits >> 31;
}

/// A whole number from -most to +most.
inline std::int64_t noiseWithin(std::int64_t most, std::uint64_t seed, std::uint64_t position) {
    const auto values = 2 * static_cast<std::uint64_t>(most) + 1;
    return static_cast<std::int64_t>(noise(seed, position) % values) - most;
}

}  // namespace simulator
