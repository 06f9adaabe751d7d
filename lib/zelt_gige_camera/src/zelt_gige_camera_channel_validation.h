/// Whether a channel's settings can work: a pure function.
#pragma once

#include <cstdint>
#include <string>

#include "zelt_gige_aux_frequency.h"

namespace zelt_gige_camera {

/// What the check looks at. Rates in frames per second, times in microseconds, bandwidths in bytes per
/// second.
struct ValidationInput {
    bool used = true;
    bool triggerModeIsAux = false;
    AuxFrequency auxFrequency;
    double frameRate = 0.0;  ///< selected for fixed-rate mode
    /// By the camera's model and frame size; not finite when the model is not known.
    double modelFrameRate = 0.0;
    double bandwidthLimitedFrameRate = 0.0;
    double exposure = 0.0;
    double exposureMinimum = 0.0;
    std::string exposureAuto;  ///< in the camera's words
    std::uint64_t requiredBandwidth = 0;
    std::uint64_t totalRequiredBandwidth = 0;  ///< of all used channels, this one included
};

enum ValidationCode : int { kValid = 0, kLimitExceeded = 1, kNoAuxFrequency = 2 };

struct Verdict {
    int code = kValid;
    const char* message = "";  ///< for the host's user, empty when valid
};

/// The first limit that is exceeded, or kValid; a channel that is not used is always valid. Rates may equal
/// their limit, the required bandwidth must stay below the channel's share of the link.
Verdict validate(const ValidationInput& input);

/// Highest rate that an exposure allows; the shortest exposure counts twice, as an allowance for the readout.
double exposureLimitedFrameRate(double exposureMinimum, double exposure);

}  // namespace zelt_gige_camera
