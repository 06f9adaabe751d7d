#include "zelt_gige_aux_frequency.h"

#include <limits>
#include <numeric>

namespace zelt_gige_camera {

// The library's own constructor divides and negates as signed: some pairs with the most negative number end
// the process in it. Coprime values with a positive denominator pass through it unchanged.
Rational normalisedFraction(std::int64_t num, std::int64_t den) {
    if (den == 0) throw boost::bad_rational();
    const std::uint64_t divisor = std::gcd(magnitude(num), magnitude(den));
    const std::uint64_t reducedNum = magnitude(num) / divisor;
    const std::uint64_t reducedDen = magnitude(den) / divisor;
    const bool negative = (num < 0) != (den < 0);
    constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
    if (reducedDen > kMost || reducedNum > (negative ? kMost + 1 : kMost)) {
        throw boost::bad_rational("bad rational: non-zero singular denominator");
    }
    return {static_cast<std::int64_t>(negative ? 0 - reducedNum : reducedNum),
            static_cast<std::int64_t>(reducedDen)};
}

}  // namespace zelt_gige_camera
