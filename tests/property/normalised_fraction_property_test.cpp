#include <limits>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "generators.h"
#include "zelt_gige_aux_frequency.h"

namespace {

using property_tests::anyNumber;
using zelt_gige_camera::normalisedFraction;
using zelt_gige_camera::Rational;

__extension__ using Wide = __int128;

constexpr Wide kMin = std::numeric_limits<std::int64_t>::min();
constexpr Wide kMax = std::numeric_limits<std::int64_t>::max();

std::pair<std::optional<Rational>, std::string> made(std::int64_t num, std::int64_t den) {
    try {
        return {normalisedFraction(num, den), ""};
    } catch (const boost::bad_rational& error) {
        return {std::nullopt, error.what()};
    }
}

/// The greatest common divisor, positive unless both are 0.
Wide divisorOf(Wide a, Wide b) {
    while (b != 0) a = std::exchange(b, a % b);
    return a < 0 ? -a : a;
}

/// Numbers of all sizes; products of a few small factors and powers of two, so that much cancels.
rc::Gen<std::int64_t> anyTerm() {
    const auto scaled = rc::gen::map(
        rc::gen::pair(rc::gen::inRange<std::int64_t>(-12, 13), rc::gen::inRange(0, 64)),
        [](const auto& parts) {
            return static_cast<std::int64_t>(static_cast<std::uint64_t>(parts.first) << parts.second);
        });
    return rc::gen::oneOf(anyNumber<std::int64_t>(), scaled, rc::gen::inRange<std::int64_t>(-30, 31));
}

RC_GTEST_PROP(NormalisedFractionProperty, IsTheReducedFractionOrTheErrorThatFits, ()) {
    const std::int64_t num = *anyTerm();
    const std::int64_t den = *anyTerm();
    const auto [fraction, error] = made(num, den);
    RC_CLASSIFY(fraction.has_value());
    if (den == 0) {
        RC_ASSERT(error == "bad rational: zero denominator");
        return;
    }
    const Wide divisor = den < 0 ? -divisorOf(num, den) : divisorOf(num, den);
    const Wide reducedNum = num / divisor;
    const Wide reducedDen = den / divisor;
    if (reducedNum < kMin || reducedNum > kMax || reducedDen > kMax) {
        RC_ASSERT(error == "bad rational: non-zero singular denominator");
    } else {
        RC_ASSERT(fraction.has_value());
        RC_ASSERT(fraction->numerator() == static_cast<std::int64_t>(reducedNum));
        RC_ASSERT(fraction->denominator() == static_cast<std::int64_t>(reducedDen));
    }
}

RC_GTEST_PROP(NormalisedFractionProperty, StaysAsItIsWhenMadeAgain, ()) {
    const auto once = made(*anyTerm(), *anyTerm()).first;
    RC_PRE(once.has_value());
    RC_ASSERT(made(once->numerator(), once->denominator()).first == once);
}

}  // namespace
