/// The doubles that are no ordinary numbers.
#pragma once

#include <limits>

namespace test_support {

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();

}  // namespace test_support
