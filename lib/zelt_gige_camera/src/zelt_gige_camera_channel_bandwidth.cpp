#include "zelt_gige_camera_channel_bandwidth.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelt_gige_camera {

std::uint64_t requiredBandwidth(std::uint64_t payload, double frameRate, std::int64_t fixedBandwidth) {
    const double required = std::ceil(static_cast<double>(payload) * frameRate);
    constexpr double kTwoToThe64th = 18446744073709551616.0;
    const bool fits = required > 0.0 && required < kTwoToThe64th;
    return std::max(fits ? static_cast<std::uint64_t>(required) : 0,
                    fixedBandwidth > 0 ? static_cast<std::uint64_t>(fixedBandwidth) : 0);
}

std::int64_t bandwidthShare(std::uint64_t required, std::uint64_t totalRequired) {
    if (totalRequired == 0) return 0;
    const double fraction = static_cast<double>(required) / static_cast<double>(totalRequired);
    return static_cast<std::int64_t>(std::floor(fraction * kLinkCapacity));
}

double bandwidthLimitedFrameRate(std::int64_t streamBytesPerSecond, std::uint64_t payload) {
    if (payload == 0) return std::numeric_limits<double>::infinity();
    return static_cast<double>(streamBytesPerSecond) / static_cast<double>(payload);
}

}  // namespace zelt_gige_camera
