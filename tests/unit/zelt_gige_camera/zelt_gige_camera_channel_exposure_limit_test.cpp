#include "zelt_gige_camera_channel_exposure_limit.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "special_numbers.h"

namespace {

using namespace zelt_gige_camera;
using test_support::AssertionCapture;
using test_support::kNan;
using ::testing::IsEmpty;

__extension__ using Wide = __int128;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

TEST(FixedFramePeriod, IsAMillionMicrosecondsOverTheRate) {
    EXPECT_EQ(framePeriod(25.0), 40'000.0);
    EXPECT_EQ(framePeriod(0.5), 2'000'000.0);
    EXPECT_EQ(framePeriod(3.0), 1'000'000.0 / 3.0);
    EXPECT_EQ(framePeriod(-25.0), -40'000.0);
}

TEST(FixedFramePeriod, IsZeroForARateThatGivesNone) {
    for (const double rate : {0.0, -0.0, kInfinity, -kInfinity, kNan, 1e-310}) {
        EXPECT_EQ(framePeriod(rate), 0.0) << rate;
    }
}

TEST(TriggerPeriod, IsAMillionMicrosecondsOverTheFrequency) {
    const AssertionCapture assertions;
    EXPECT_EQ(framePeriod(Rational(25)), 40'000.0);
    EXPECT_EQ(framePeriod(Rational(1, 3)), 3'000'000.0);
    EXPECT_EQ(framePeriod(Rational(-25)), -40'000.0);
    // 1001 / 30000 of a million, in lowest terms.
    EXPECT_EQ(framePeriod(Rational(30'000, 1001)), 100'100.0 / 3.0);
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST(TriggerPeriod, HoldsForTheLargestNumbers) {
    const AssertionCapture assertions;
    // 2^63 - 1 and 2^63 are the same double, and so are what they give with a million.
    EXPECT_EQ(framePeriod(Rational(kMost)), std::ldexp(1e6, -63));
    EXPECT_EQ(framePeriod(Rational(kLeast)), -std::ldexp(1e6, -63));
    EXPECT_EQ(framePeriod(Rational(-kMost)), -std::ldexp(1e6, -63));
    EXPECT_EQ(framePeriod(Rational(1, kMost)), std::ldexp(1e6, 63));
    EXPECT_EQ(framePeriod(Rational(1'000'000, kMost)), std::ldexp(1.0, 63));
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST(TriggerPeriod, OfNoFrequencyIsAProgrammingErrorAndZero) {
    const AssertionCapture assertions;
    EXPECT_EQ(framePeriod(Rational(0)), 0.0);
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].expression, "frequency.numerator() != 0");
    EXPECT_EQ(assertions.failures()[0].file,
              "lib/zelt_gige_camera/src/zelt_gige_camera_channel_exposure_limit");
}

TEST(FractionAsDouble, IsTheNearestOne) {
    EXPECT_EQ(toDouble(Rational(1, 3)), 1.0 / 3.0);
    EXPECT_EQ(toDouble(Rational(-30'000, 1001)), -30'000.0 / 1001.0);
    EXPECT_EQ(toDouble(Rational(kLeast)), -std::ldexp(1.0, 63));
}

TEST(ExposureMaximum, IsTheRestOfThePeriodAfterTheShortestExposure) {
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, framePeriod(25.0)), 39'970.0);
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, framePeriod(Rational(25))), 39'970.0);
    EXPECT_EQ(limitedExposureMaximum(30.5, 6e7, 40'000.0), 39'969.5);
    EXPECT_EQ(limitedExposureMaximum(0.0, 6e7, 40'000.0), 40'000.0);
}

TEST(ExposureMaximum, IsNeverMoreThanTheCameras) {
    EXPECT_EQ(limitedExposureMaximum(30.0, 39'970.0, 40'000.0), 39'970.0);
    EXPECT_EQ(limitedExposureMaximum(30.0, 1000.0, 40'000.0), 1000.0);
}

TEST(ExposureMaximum, IsNeverLessThanTheShortestExposure) {
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, 61.0), 31.0);
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, 60.0), 30.0);
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, 59.0), 30.0);
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, 0.1), 30.0);
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, framePeriod(-25.0)), 30.0);
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, framePeriod(Rational(kMost))), 30.0);
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, framePeriod(Rational(kLeast))), 30.0);
}

TEST(ExposureMaximum, IsTheCamerasWhenThePeriodLimitsNothing) {
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, 0.0), 6e7);
    for (const double rate : {0.0, kInfinity, kNan}) {
        EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, framePeriod(rate)), 6e7) << rate;
    }
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, framePeriod(Rational(1, kMost))), 6e7);
}

TEST(ExposureMaximum, RoundsHalvesOfThePeriodAwayFromZero) {
    // 1000000 / 128 = 7812.5 and 1000000 / 640 = 1562.5; the even neighbour of both is the smaller one.
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, framePeriod(128.0)), 7783.0);
    EXPECT_EQ(limitedExposureMaximum(30.0, 6e7, framePeriod(Rational(640))), 1533.0);
    EXPECT_EQ(limitedExposureMaximum(0.0, 6e7, 2.5), 3.0);
    EXPECT_EQ(limitedExposureMaximum(0.0, 6e7, 2.4999), 2.0);
    EXPECT_EQ(limitedExposureMaximum(-10'000.0, 6e7, -7812.5), 2187.0);
}

TEST(ExposureMaximum, AgreesWithExactArithmetic) {
    for (std::int64_t numerator = 1; numerator <= 200; ++numerator) {
        for (const std::int64_t denominator : {1, 3, 7, 1001, 999'983}) {
            const Wide twice = Wide{2'000'000} * denominator;
            const auto nearest = static_cast<double>((twice + numerator) / (Wide{2} * numerator));
            EXPECT_EQ(limitedExposureMaximum(0.0, 1e18, framePeriod(Rational(numerator, denominator))),
                      nearest)
                << numerator << "/" << denominator;
        }
    }
}

}  // namespace
