#include "zelt_gige_aux_frequency.h"

#include <limits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using zelt_gige_camera::magnitude;
using zelt_gige_camera::normalisedFraction;
using zelt_gige_camera::Rational;

__extension__ using Wide = __int128;

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

/// "-5/2", or the text of the error.
std::string made(std::int64_t num, std::int64_t den) {
    try {
        const Rational fraction = normalisedFraction(num, den);
        return std::to_string(fraction.numerator()) + "/" + std::to_string(fraction.denominator());
    } catch (const boost::bad_rational& error) {
        return error.what();
    }
}

/// The same by the schoolbook in 128 bits, where nothing overflows.
std::string expected(std::int64_t num, std::int64_t den) {
    if (den == 0) return "bad rational: zero denominator";
    Wide a = num < 0 ? -Wide{num} : Wide{num};
    Wide b = den < 0 ? -Wide{den} : Wide{den};
    while (b != 0) {
        const Wide rest = a % b;
        a = b;
        b = rest;
    }
    const Wide sign = den < 0 ? -1 : 1;
    const Wide reducedNum = sign * num / a;
    const Wide reducedDen = sign * den / a;
    if (reducedNum > kMax || reducedNum < kMin || reducedDen > kMax) {
        return "bad rational: non-zero singular denominator";
    }
    return std::to_string(static_cast<std::int64_t>(reducedNum)) + "/" +
           std::to_string(static_cast<std::int64_t>(reducedDen));
}

TEST(Magnitude, IsTheDistanceFromZero) {
    EXPECT_EQ(magnitude(0), 0u);
    EXPECT_EQ(magnitude(7), 7u);
    EXPECT_EQ(magnitude(-7), 7u);
    EXPECT_EQ(magnitude(kMax), 9223372036854775807u);
    EXPECT_EQ(magnitude(kMin), 9223372036854775808u);
}

TEST(NormalisedFraction, IsInLowestTermsWithTheSignInTheNumerator) {
    EXPECT_EQ(made(10, 4), "5/2");
    EXPECT_EQ(made(10, -4), "-5/2");
    EXPECT_EQ(made(-10, 4), "-5/2");
    EXPECT_EQ(made(-10, -4), "5/2");
    EXPECT_EQ(made(30'000, 1001), "30000/1001");
}

TEST(NormalisedFraction, OfAZeroNumeratorIsZeroOverOne) {
    for (const std::int64_t den : {std::int64_t{5}, std::int64_t{-5}, kMin, kMax}) {
        EXPECT_EQ(made(0, den), "0/1") << den;
    }
}

TEST(NormalisedFraction, HasNoZeroDenominator) {
    for (const std::int64_t num : {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, kMin, kMax}) {
        EXPECT_EQ(made(num, 0), "bad rational: zero denominator") << num;
    }
}

TEST(NormalisedFraction, TakesTheMostNegativeNumberWhereTheResultFits) {
    EXPECT_EQ(made(kMin, kMin), "1/1");
    EXPECT_EQ(made(kMin, 1), "-9223372036854775808/1");
    EXPECT_EQ(made(kMin, 3), "-9223372036854775808/3");
    EXPECT_EQ(made(kMin, kMax), "-9223372036854775808/9223372036854775807");
    EXPECT_EQ(made(kMin, -2), "4611686018427387904/1");
    EXPECT_EQ(made(2, kMin), "-1/4611686018427387904");
    EXPECT_EQ(made(-6, kMin), "3/4611686018427387904");
}

TEST(NormalisedFraction, RefusesTheMostNegativeNumberWhereTheResultDoesNotFit) {
    const char* const kSingular = "bad rational: non-zero singular denominator";
    EXPECT_EQ(made(-1, kMin), kSingular);
    EXPECT_EQ(made(1, kMin), kSingular);
    EXPECT_EQ(made(kMax, kMin), kSingular);
    EXPECT_EQ(made(kMin, -1), kSingular);
    EXPECT_EQ(made(kMin, -3), kSingular);
}

TEST(NormalisedFraction, IsTheExactOneForAllPairsOfExtremes) {
    const std::int64_t extremes[] = {kMin, kMin + 1, kMin + 2, kMin / 2, -3,       -2,       -1,  0,
                                     1,    2,        3,        kMax / 2, kMax - 1, kMax / 7, kMax};
    for (const std::int64_t num : extremes) {
        for (const std::int64_t den : extremes) {
            EXPECT_EQ(made(num, den), expected(num, den)) << num << " / " << den;
        }
    }
}

}  // namespace
