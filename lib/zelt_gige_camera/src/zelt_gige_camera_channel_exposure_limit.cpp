#include "zelt_gige_camera_channel_exposure_limit.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

#include "assertion.h"

namespace zelt_gige_camera {

double framePeriod(double frameRate) {
    const double period = static_cast<double>(kMicrosecondsPerSecond) / frameRate;
    return std::isfinite(period) ? period : 0.0;
}

double framePeriod(const Rational& frequency) {
    ZELT_ASSERT(frequency.numerator() != 0);
    ZELT_ASSERT(frequency.denominator() != 0);
    if (frequency.numerator() == 0) return 0.0;
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    const std::uint64_t common =
        std::gcd(std::uint64_t{kMicrosecondsPerSecond}, magnitude(frequency.numerator()));
    const std::int64_t factor = kMicrosecondsPerSecond / static_cast<std::int64_t>(common);
    if (frequency.denominator() > kMost / factor || frequency.numerator() < -kMost) {
        // No fraction of 64-bit numbers; the double is off by less than the rounding to microseconds.
        return static_cast<double>(kMicrosecondsPerSecond) / toDouble(frequency);
    }
    return toDouble(Rational(kMicrosecondsPerSecond) / frequency);
}

double limitedExposureMaximum(double min, double max, double period) {
    if (period == 0.0) return max;
    return std::min(max, std::max(std::round(period) - min, min));
}

double toDouble(const Rational& rat) {
    ZELT_ASSERT(rat.denominator() != 0);
    return static_cast<double>(rat.numerator()) / static_cast<double>(rat.denominator());
}

}  // namespace zelt_gige_camera
