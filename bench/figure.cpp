#include "figure.h"

#include <algorithm>
#include <cmath>

namespace bench {

double medianOf(std::vector<double> values) {
    if (values.empty()) return 0.0;
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

double quantileOf(std::vector<double> values, double part) {
    if (values.empty()) return 0.0;
    const double rank = std::ceil(part * static_cast<double>(values.size()));
    const auto position = static_cast<std::ptrdiff_t>(std::max(rank, 1.0)) - 1;
    std::nth_element(values.begin(), values.begin() + position, values.end());
    return values[static_cast<std::size_t>(position)];
}

}  // namespace bench
