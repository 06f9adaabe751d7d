/// Figures that compare times, each with its counterpart in the same run.
#pragma once

#include "figure.h"

namespace bench {

/// By Google Benchmark, whose repetitions are interleaved: the path of a frame, a log statement that is
/// switched off, a second enumeration. The log must be switched off.
Figures timedFigures();

}  // namespace bench
