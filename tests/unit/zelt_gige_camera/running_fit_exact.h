/// Lines of the running fit in rational arithmetic, and the points that they are laid through.
#pragma once

#include <cstdint>

namespace test_support {

struct ExactLine {
    std::int64_t camera;
    std::uint64_t host;
    int points;
    double slope;
    std::uint64_t atNewest;  ///< host time at the newest camera time: whole units ...
    double atNewestFraction;
};

inline constexpr ExactLine kExactLines[] = {
#include "running_fit_exact.inc"
};

struct ExactPoint {
    std::int64_t camera;
    std::uint64_t host;
    double quality;
};

inline constexpr std::int64_t kExactCameraStep = 1'000'012'000;

/// The same points as in running_fit_exact.py, with its pseudo-random integers.
inline ExactPoint exactPoint(const ExactLine& line, int index) {
    constexpr std::uint64_t kHostStep = 1'000'000'000;
    constexpr double kQualities[] = {0.0, 0.0, 0.5, 1.0};
    const auto number = static_cast<std::uint64_t>(index);
    const std::uint64_t state = number * 6364136223846793005u + 1442695040888963407u;
    const std::int64_t noise = static_cast<std::int64_t>((state >> 33) % 100001) - 50000;
    return {line.camera + index * kExactCameraStep,
            line.host + number * kHostStep + static_cast<std::uint64_t>(noise), kQualities[index % 4]};
}

}  // namespace test_support
