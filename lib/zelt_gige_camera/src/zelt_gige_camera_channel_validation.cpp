#include "zelt_gige_camera_channel_validation.h"

#include <cmath>

#include "zelt_gige_camera_channel_bandwidth.h"
#include "zelt_gige_camera_channel_exposure_limit.h"

namespace zelt_gige_camera {
namespace {

/// What a rate that is too high is told, by its limit.
struct RateMessages {
    const char* camera;
    const char* bandwidth;
    const char* exposure;
};

constexpr RateMessages kAuxMessages{
    "Sync Out AUX frequency is too fast for the camera",
    "Not sufficient network bandwidth for selected AUX frequency",
    "Camera exposure is too long for external frame trigger rate",
};
constexpr RateMessages kFixedMessages{
    "Selected frame rate is too fast for the camera",
    "Not sufficient network bandwidth for selected framerate",
    "Camera exposure is too long for selected frame rate",
};

/// Null when the rate is within all limits.
const char* rateTooHigh(double rate, const ValidationInput& input, const RateMessages& messages) {
    const double cameraLimit =
        std::isfinite(input.modelFrameRate) ? input.modelFrameRate : input.bandwidthLimitedFrameRate;
    if (rate > cameraLimit) return messages.camera;
    if (rate > input.bandwidthLimitedFrameRate) return messages.bandwidth;
    // A camera that exposes automatically shortens its exposure by itself.
    const bool exposureIsFixed = input.exposureAuto != "Continuous";
    if (exposureIsFixed && rate > exposureLimitedFrameRate(input.exposureMinimum, input.exposure)) {
        return messages.exposure;
    }
    return nullptr;
}

bool exceedsShare(const ValidationInput& input) {
    if (input.totalRequiredBandwidth == 0) return false;
    const std::int64_t share = bandwidthShare(input.requiredBandwidth, input.totalRequiredBandwidth);
    return input.requiredBandwidth >= static_cast<std::uint64_t>(share);
}

}  // namespace

Verdict validate(const ValidationInput& input) {
    if (!input.used) return {};
    if (input.triggerModeIsAux && !input.auxFrequency) {
        return {kNoAuxFrequency, "Sync Out AUX is not configured properly"};
    }
    const char* const message = input.triggerModeIsAux
                                    ? rateTooHigh(toDouble(*input.auxFrequency), input, kAuxMessages)
                                    : rateTooHigh(input.frameRate, input, kFixedMessages);
    if (message != nullptr) return {kLimitExceeded, message};
    if (exceedsShare(input)) {
        return {kLimitExceeded, "Available network bandwidth not sufficient for current camera settings"};
    }
    return {};
}

double exposureLimitedFrameRate(double exposureMinimum, double exposure) {
    return 1.0 / ((exposureMinimum + exposure) * 1e-6);
}

}  // namespace zelt_gige_camera
