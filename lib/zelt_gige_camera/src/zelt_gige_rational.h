/// Exact fractions.
#pragma once

#include <cstdint>

#include <boost/rational.hpp>

namespace zelt_gige_camera {

/// A fraction in lowest terms with a positive denominator. Its arithmetic is exact as long as the results fit
/// 64 bits and undefined beyond; also undefined are operations with the most negative numerator.
using Rational = boost::rational<std::int64_t>;

inline constexpr std::int64_t kMicrosecondsPerSecond = 1'000'000;

/// Distance from zero; 2^63 for the most negative number.
constexpr std::uint64_t magnitude(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    return value < 0 ? 0 - bits : bits;
}

}  // namespace zelt_gige_camera
