/// Errors of time stamps, and whether they are as good as stated.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "accuracy_cases.h"

namespace test_support {

/// How far the stamps of an acquisition lie behind the true starts of exposure, in nanoseconds.
struct TimeErrors {
    std::vector<std::int64_t> values;
    std::int64_t way = 0;  ///< nominal, of the first frame

    std::int64_t constant() const;
    /// The spread that so many of a thousand frames do not exceed.
    std::int64_t spread(std::uint64_t perMille) const;
};

/// Their figures, each `more` larger; in nanoseconds.
AccuracyBounds measured(const TimeErrors& errors, double more);

/// Fails the test when `seen` is beyond `stated`, or `stated` is not what is `needed`, the figures of the
/// stamps that the rules demand. Prints a line. Only `stated` is in microseconds.
void judge(const std::string& name, const AccuracyBounds& seen, const AccuracyBounds& needed,
           const AccuracyBounds& stated);

}  // namespace test_support
