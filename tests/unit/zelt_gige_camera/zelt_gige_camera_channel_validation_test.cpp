#include "zelt_gige_camera_channel_validation.h"

#include <cmath>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "special_numbers.h"

namespace {

using test_support::kNan;

using namespace zelt_gige_camera;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Everything within its limits, alone on the link.
ValidationInput good() {
    ValidationInput input;
    input.frameRate = 25.0;
    input.modelFrameRate = 100.0;
    input.bandwidthLimitedFrameRate = 80.0;
    input.exposure = 15'000.0;
    input.exposureMinimum = 30.0;
    input.exposureAuto = "Off";
    input.requiredBandwidth = 20'000'000;
    input.totalRequiredBandwidth = 20'000'000;
    return input;
}

/// The same by external trigger, with a selected rate that no camera could do.
ValidationInput goodAux() {
    ValidationInput input = good();
    input.triggerModeIsAux = true;
    input.auxFrequency = Rational(25);
    input.frameRate = 1e9;
    return input;
}

void exceedEverything(ValidationInput& input) {
    input.frameRate = 1000.0;
    if (input.auxFrequency) input.auxFrequency = Rational(1000);
    input.exposure = 1e6;
    input.requiredBandwidth = input.totalRequiredBandwidth = 200'000'000;
}

struct Case {
    const char* name;
    std::function<void(ValidationInput&)> change;
    int code;
    const char* message;
};

void PrintTo(const Case& each, std::ostream* stream) {
    *stream << each.name;
}

using Input = ValidationInput;

class FixedRateCheck : public ::testing::TestWithParam<Case> {};
class TriggeredCheck : public ::testing::TestWithParam<Case> {};

void expect(Input input, const Case& each) {
    each.change(input);
    const Verdict verdict = validate(input);
    EXPECT_EQ(verdict.code, each.code);
    EXPECT_STREQ(verdict.message, each.message);
}

TEST_P(FixedRateCheck, GivesItsCodeAndMessage) {
    expect(good(), GetParam());
}

TEST_P(TriggeredCheck, GivesItsCodeAndMessage) {
    expect(goodAux(), GetParam());
}

std::string caseName(const ::testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

constexpr const char* kTooFast = "Selected frame rate is too fast for the camera";
constexpr const char* kNoBandwidth = "Not sufficient network bandwidth for selected framerate";
constexpr const char* kTooLong = "Camera exposure is too long for selected frame rate";
constexpr const char* kAuxTooFast = "Sync Out AUX frequency is too fast for the camera";
constexpr const char* kAuxNoBandwidth = "Not sufficient network bandwidth for selected AUX frequency";
constexpr const char* kAuxTooLong = "Camera exposure is too long for external frame trigger rate";
constexpr const char* kLinkFull = "Available network bandwidth not sufficient for current camera settings";

void exposeTwentyFiveTimes(Input& input) {
    input.exposure = 39'970.0;
}

INSTANTIATE_TEST_SUITE_P(
    Each, FixedRateCheck,
    ::testing::Values(
        Case{"AllWithinLimits", [](Input&) {}, 0, ""},
        Case{"AnAuxFrequencyDoesNotMatter", [](Input& i) { i.auxFrequency = Rational(1000); }, 0, ""},
        Case{"AsFastAsTheModel", [](Input& i) { i.modelFrameRate = 25.0; }, 0, ""},
        Case{"FasterThanTheModel", [](Input& i) { i.modelFrameRate = std::nextafter(25.0, 0.0); }, 1,
             kTooFast},
        Case{"AsFastAsTheStream", [](Input& i) { i.bandwidthLimitedFrameRate = 25.0; }, 0, ""},
        Case{"FasterThanTheStream", [](Input& i) { i.bandwidthLimitedFrameRate = std::nextafter(25.0, 0.0); },
             1, kNoBandwidth},
        Case{"AnUnknownModelAsFastAsTheStream",
             [](Input& i) {
                 i.modelFrameRate = kNan;
                 i.bandwidthLimitedFrameRate = 25.0;
             },
             0, ""},
        Case{"AnUnknownModelFasterThanTheStream",
             [](Input& i) {
                 i.modelFrameRate = kNan;
                 i.bandwidthLimitedFrameRate = 24.0;
             },
             1, kTooFast},
        Case{"AnInfiniteModelRateIsUnknown",
             [](Input& i) {
                 i.modelFrameRate = kInfinity;
                 i.bandwidthLimitedFrameRate = 24.0;
             },
             1, kTooFast},
        Case{"NoLimitFromAModelOrAStream",
             [](Input& i) {
                 i.modelFrameRate = kNan;
                 i.bandwidthLimitedFrameRate = kInfinity;
             },
             0, ""},
        Case{"ExactlyAsLongAsTheRateAllows", exposeTwentyFiveTimes, 0, ""},
        Case{"LongerThanTheRateAllows",
             [](Input& i) {
                 exposeTwentyFiveTimes(i);
                 i.frameRate = 25.001;
             },
             1, kTooLong},
        Case{"ContinuousExposureMayBeTooLong",
             [](Input& i) {
                 exposeTwentyFiveTimes(i);
                 i.frameRate = 25.001;
                 i.exposureAuto = "Continuous";
             },
             0, ""},
        Case{"ExposureSetOnceMayNotBeTooLong",
             [](Input& i) {
                 exposeTwentyFiveTimes(i);
                 i.frameRate = 25.001;
                 i.exposureAuto = "Once";
             },
             1, kTooLong},
        Case{"ContinuousExposureExemptsFromNothingElse",
             [](Input& i) {
                 exceedEverything(i);
                 i.frameRate = 1.0;
                 i.exposureAuto = "Continuous";
             },
             1, kLinkFull},
        Case{"RateZero", [](Input& i) { i.frameRate = 0.0; }, 0, ""},
        Case{"NegativeRate", [](Input& i) { i.frameRate = -25.0; }, 0, ""},
        Case{"OneByteBelowTheLink",
             [](Input& i) { i.requiredBandwidth = i.totalRequiredBandwidth = 114'999'999; }, 0, ""},
        Case{"AllOfTheLink", [](Input& i) { i.requiredBandwidth = i.totalRequiredBandwidth = 115'000'000; },
             1, kLinkFull},
        Case{"TwoCamerasOfHalfTheLink",
             [](Input& i) {
                 i.requiredBandwidth = 57'500'000;
                 i.totalRequiredBandwidth = 115'000'000;
             },
             1, kLinkFull},
        Case{"TwoCamerasOfOneByteLess",
             [](Input& i) {
                 i.requiredBandwidth = 57'499'999;
                 i.totalRequiredBandwidth = 114'999'998;
             },
             0, ""},
        Case{"TwoCamerasOfSixtyMillion",
             [](Input& i) {
                 i.requiredBandwidth = 60'000'000;
                 i.totalRequiredBandwidth = 120'000'000;
             },
             1, kLinkFull},
        // Together one byte below the link, but each share is rounded down to what is required.
        Case{"TheLargerOfTwoThatLeaveOneByte",
             [](Input& i) {
                 i.requiredBandwidth = 100'000'000;
                 i.totalRequiredBandwidth = 114'999'999;
             },
             1, kLinkFull},
        Case{"TheSmallerOfTwoThatLeaveOneByte",
             [](Input& i) {
                 i.requiredBandwidth = 14'999'999;
                 i.totalRequiredBandwidth = 114'999'999;
             },
             1, kLinkFull},
        Case{"NobodyNeedsAnything", [](Input& i) { i.requiredBandwidth = i.totalRequiredBandwidth = 0; }, 0,
             ""},
        Case{"NothingBesideACameraThatNeedsSomething",
             [](Input& i) {
                 i.requiredBandwidth = 0;
                 i.totalRequiredBandwidth = 1;
             },
             1, kLinkFull},
        Case{"AnUnusedChannel",
             [](Input& i) {
                 exceedEverything(i);
                 i.used = false;
             },
             0, ""}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    Each, TriggeredCheck,
    ::testing::Values(Case{"AllWithinLimits", [](Input&) {}, 0, ""},
                      Case{"NoFrequency", [](Input& i) { i.auxFrequency.reset(); }, 2,
                           "Sync Out AUX is not configured properly"},
                      Case{"NoFrequencyComesBeforeAllOtherLimits",
                           [](Input& i) {
                               exceedEverything(i);
                               i.auxFrequency.reset();
                           },
                           2, "Sync Out AUX is not configured properly"},
                      Case{"AnUnusedChannelWithoutFrequency",
                           [](Input& i) {
                               i.auxFrequency.reset();
                               i.used = false;
                           },
                           0, ""},
                      Case{"AsFastAsTheModel",
                           [](Input& i) {
                               i.auxFrequency = Rational(30'000, 1001);
                               i.modelFrameRate = 30'000.0 / 1001.0;
                           },
                           0, ""},
                      Case{"FasterThanTheModel",
                           [](Input& i) {
                               i.auxFrequency = Rational(30'000, 1001);
                               i.modelFrameRate = std::nextafter(30'000.0 / 1001.0, 0.0);
                           },
                           1, kAuxTooFast},
                      Case{"AsFastAsTheStream", [](Input& i) { i.bandwidthLimitedFrameRate = 25.0; }, 0, ""},
                      Case{"FasterThanTheStream",
                           [](Input& i) { i.bandwidthLimitedFrameRate = std::nextafter(25.0, 0.0); }, 1,
                           kAuxNoBandwidth},
                      Case{"AnUnknownModelFasterThanTheStream",
                           [](Input& i) {
                               i.modelFrameRate = kNan;
                               i.bandwidthLimitedFrameRate = 24.0;
                           },
                           1, kAuxTooFast},
                      Case{"ExactlyAsLongAsTheFrequencyAllows", exposeTwentyFiveTimes, 0, ""},
                      Case{"LongerThanTheFrequencyAllows",
                           [](Input& i) {
                               exposeTwentyFiveTimes(i);
                               i.auxFrequency = Rational(25'001, 1000);
                           },
                           1, kAuxTooLong},
                      Case{"ContinuousExposureMayBeTooLong",
                           [](Input& i) {
                               exposeTwentyFiveTimes(i);
                               i.auxFrequency = Rational(25'001, 1000);
                               i.exposureAuto = "Continuous";
                           },
                           0, ""},
                      Case{"FrequencyZero", [](Input& i) { i.auxFrequency = Rational(0); }, 0, ""},
                      Case{"NegativeFrequency", [](Input& i) { i.auxFrequency = Rational(-25); }, 0, ""},
                      Case{"FrequencyZeroBesideAnotherCamera",
                           [](Input& i) {
                               i.auxFrequency = Rational(0);
                               i.requiredBandwidth = 0;
                           },
                           1, kLinkFull},
                      Case{"AllOfTheLink",
                           [](Input& i) { i.requiredBandwidth = i.totalRequiredBandwidth = 115'000'000; }, 1,
                           kLinkFull}),
    caseName);

/// Exceeds every limit, then takes one after the other away: what is told each time.
std::vector<std::string> messagesInOrder(Input input) {
    std::vector<std::string> messages;
    const auto check = [&] { messages.emplace_back(validate(input).message); };
    exceedEverything(input);
    check();
    input.modelFrameRate = 1000.0;
    check();
    input.bandwidthLimitedFrameRate = 1000.0;
    check();
    input.exposure = 970.0;
    check();
    input.requiredBandwidth = input.totalRequiredBandwidth = 1;
    check();
    return messages;
}

TEST(Validation, TheFirstLimitThatIsExceededIsTold) {
    EXPECT_EQ(messagesInOrder(good()),
              (std::vector<std::string>{kTooFast, kNoBandwidth, kTooLong, kLinkFull, ""}));
    EXPECT_EQ(messagesInOrder(goodAux()),
              (std::vector<std::string>{kAuxTooFast, kAuxNoBandwidth, kAuxTooLong, kLinkFull, ""}));
}

TEST(ExposureLimitedRate, AddsTheShortestExposureForTheReadout) {
    EXPECT_EQ(exposureLimitedFrameRate(30.0, 39'970.0), 25.0);
    EXPECT_DOUBLE_EQ(exposureLimitedFrameRate(50.0, 50.0), 10'000.0);
    EXPECT_EQ(exposureLimitedFrameRate(0.0, 0.0), kInfinity);
}

}  // namespace
