/// What the benches find, and what they must find.
#pragma once

#include <string>
#include <vector>

namespace bench {

/// A figure and the line that it must reach.
struct Figure {
    std::string name;
    double value = 0.0;
    double limit = 0.0;
    bool atLeast = false;     ///< the value must be at least the limit, not at most
    std::string explanation;  ///< where the value comes from, in a few words
    bool excused = false;     ///< reached all the same, for the reason in the explanation

    bool isReached() const { return excused || (atLeast ? value >= limit : value <= limit); }
};

using Figures = std::vector<Figure>;

/// The middle one, or the mean of the two in the middle; 0 of none.
double medianOf(std::vector<double> values);
/// The smallest value that is not exceeded by more than that part of all; 0 of none.
double quantileOf(std::vector<double> values, double part);

}  // namespace bench
