/// What a camera's automatic functions make of the light.
#pragma once

#include "feature_table.h"

namespace simulator {

/// What the camera looks at.
struct Scene {
    /// Mean level of the picture, in percent of the highest, that a millisecond of exposure gives at gain 0.
    double percentPerMillisecond = 50.0 / 15;
    /// Ratios of the white balance that make its grey grey.
    double red = 1;
    double blue = 1;
};

/// Bits of what an exposure's evaluation changed.
enum AutomaticChange : unsigned {
    kExposureMoved = 1,
    kGainMoved = 2,
    kBalanceMoved = 4,
    kExposureAutoEnded = 8,
    kGainAutoEnded = 16,
    kBalanceAutoEnded = 32,
};

/// Exposure first, gain only with the exposure at its limit; each goes its rate's share of the way and stays
/// within its tolerance. A function in mode Once that has settled, after at least three exposures, is Off.
class AutoFunctions {
  public:
    /// To be called once per exposure. Bits of AutomaticChange.
    unsigned evaluate(FeatureTable& features, const Scene& scene);

  private:
    struct Function;

    unsigned runExposure(FeatureTable& features, const Scene& scene, bool& settled);
    unsigned runGain(FeatureTable& features, const Scene& scene, bool& settled);
    unsigned runBalance(FeatureTable& features, const Scene& scene, bool& settled);

    int m_exposuresInOnce[3] = {};
    bool m_exposureMoved = false;  // in the evaluation that is under way
};

}  // namespace simulator
