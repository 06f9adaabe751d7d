/// How long a camera may expose within one frame: pure functions. All times in microseconds.
#pragma once

#include "zelt_gige_rational.h"

namespace zelt_gige_camera {

/// Time between two frames at a fixed rate in frames per second; 0 when the rate gives none.
double framePeriod(double frameRate);

/// Time between two triggers; asserts that the frequency, in triggers per second, is not 0, which gives 0.
double framePeriod(const Rational& frequency);

/// Greatest exposure: what is left of the frame period, rounded to whole microseconds, after `min` was taken
/// off for the readout, but not less than `min` and not more than `max`. A period of 0 limits nothing.
double limitedExposureMaximum(double min, double max, double period);

/// A fraction as a double; asserts that its denominator is not 0.
double toDouble(const Rational& rat);

}  // namespace zelt_gige_camera
