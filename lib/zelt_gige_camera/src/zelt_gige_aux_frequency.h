/// Frequency of the host's trigger output.
#pragma once

#include <optional>

#include "zelt_gige_rational.h"

namespace zelt_gige_camera {

/// Trigger pulses per second; empty when the host has not told.
using AuxFrequency = std::optional<Rational>;

/// `num` / `den` in lowest terms, the sign in the numerator. Throws boost::bad_rational: "bad rational: zero
/// denominator" when `den` is 0, "bad rational: non-zero singular denominator" when the result does not fit.
Rational normalisedFraction(std::int64_t num, std::int64_t den);

}  // namespace zelt_gige_camera
