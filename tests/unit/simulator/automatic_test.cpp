// Automatic exposure, gain and white balance, and the light that they settle on.
#include <cmath>

#include "virtual_fixture.h"

namespace {

using test_support::enumOf;
using test_support::floatOf;
using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;

class Automatic : public test_support::VirtualTimeTest {
  protected:
    /// `percent` of the highest level per millisecond at gain 0.
    static void light(double percent, double red = 1, double blue = 1, const char* id = kColourCamera) {
        const VmbSimScene scene{percent, red, blue};
        ASSERT_EQ(VmbSimSetScene(id, &scene), VmbErrorSuccess);
    }
    /// 40 frames a second; the exposure stays below their period.
    static VmbHandle_t acquire(const char* id = kColourCamera) {
        const VmbHandle_t camera = openFast(id, 40);
        run(camera, "AcquisitionStart");
        return camera;
    }
    static void frames(std::uint64_t count) { advance(count * 25 * kMillisecond); }
    static double balance(VmbHandle_t camera, const char* colour) {
        setEnum(camera, "BalanceRatioSelector", colour);
        return floatOf(camera, "BalanceRatioAbs");
    }
};

TEST_F(Automatic, ExposureSettlesOnTheTargetAndOnceFallsBackToOff) {
    light(10);
    const VmbHandle_t camera = acquire();
    setEnum(camera, "ExposureAuto", "Once");
    EXPECT_EQ(enumOf(camera, "ExposureAuto"), "Once");
    frames(1);
    EXPECT_EQ(enumOf(camera, "ExposureAuto"), "Once");
    frames(4);
    EXPECT_EQ(enumOf(camera, "ExposureAuto"), "Off");
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 5'000);  // 50 percent at 10 per millisecond
    light(20);
    frames(5);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 5'000);
}

TEST_F(Automatic, ContinuousExposureFollowsTheLight) {
    light(10);
    const VmbHandle_t camera = acquire();
    setInt(camera, "ExposureAutoTarget", 40);
    setEnum(camera, "ExposureAuto", "Continuous");
    frames(5);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 4'000);
    light(5);
    frames(5);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 8'000);
    EXPECT_EQ(enumOf(camera, "ExposureAuto"), "Continuous");
}

TEST_F(Automatic, NothingMovesWithoutAnAcquisition) {
    light(10);
    const VmbHandle_t camera = openFast(kColourCamera, 40);
    setEnum(camera, "ExposureAuto", "Once");
    frames(10);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 1'000);
    EXPECT_EQ(enumOf(camera, "ExposureAuto"), "Once");
}

TEST_F(Automatic, ExposureStaysWithinItsLimits) {
    const VmbHandle_t camera = acquire();
    setInt(camera, "ExposureAutoMin", 2'000);
    setInt(camera, "ExposureAutoMax", 6'000);
    setEnum(camera, "ExposureAuto", "Continuous");
    light(0.5);
    frames(5);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 6'000);
    light(1'000);
    frames(5);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 2'000);
    light(0);
    frames(5);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 6'000);
}

TEST_F(Automatic, ALowRateGoesItsShareOfTheWayPerFrame) {
    light(10);
    const VmbHandle_t camera = openFast(kColourCamera, 40);
    setInt(camera, "ExposureAutoRate", 50);
    setEnum(camera, "ExposureAuto", "Continuous");
    run(camera, "AcquisitionStart");
    advance(5 * kMillisecond);  // one exposure: from 1000 half of the way to 5000
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 3'000);
    frames(1);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 4'000);
}

TEST_F(Automatic, WithinTheToleranceNothingMoves) {
    const VmbHandle_t camera = acquire();
    setInt(camera, "ExposureAutoAdjustTol", 10);
    setEnum(camera, "ExposureAuto", "Continuous");
    light(45.1);  // at 1 ms, for a target of 50
    frames(5);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 1'000);
    light(44.9);
    frames(5);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 1'114);  // 50 / 44.9
}

TEST_F(Automatic, GainSettlesWhenTheExposureIsFixed) {
    light(5);
    const VmbHandle_t camera = acquire();
    setEnum(camera, "GainAuto", "Once");
    frames(5);
    EXPECT_DOUBLE_EQ(floatOf(camera, "Gain"), 20.0);  // from 5 to 50 percent at 1 ms
    EXPECT_EQ(enumOf(camera, "GainAuto"), "Off");
}

TEST_F(Automatic, GainComesAfterTheLongestExposure) {
    light(10);
    const VmbHandle_t camera = acquire();
    setInt(camera, "ExposureAutoMax", 10'000);
    setEnum(camera, "ExposureAuto", "Continuous");
    setEnum(camera, "GainAuto", "Continuous");
    frames(6);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 5'000);
    EXPECT_EQ(floatOf(camera, "Gain"), 0);
    light(0.5);  // 5 percent at the longest exposure
    frames(6);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 10'000);
    EXPECT_NEAR(floatOf(camera, "Gain"), 20.0, 1e-9);
}

TEST_F(Automatic, GainInModeOnceWaitsForTheExposure) {
    light(0.5);
    const VmbHandle_t camera = openFast(kColourCamera, 40);
    setInt(camera, "ExposureAutoMax", 10'000);
    setInt(camera, "ExposureAutoRate", 30);
    setEnum(camera, "ExposureAuto", "Once");
    setEnum(camera, "GainAuto", "Once");
    run(camera, "AcquisitionStart");
    frames(100);
    EXPECT_EQ(enumOf(camera, "ExposureAuto"), "Off");
    EXPECT_EQ(enumOf(camera, "GainAuto"), "Off");
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 10'000);
    EXPECT_NEAR(floatOf(camera, "Gain"), 20.0, 0.5);  // 5 percent of tolerance are 0.4 dB
}

TEST_F(Automatic, TheSlowestRateArrivesAllTheSame) {
    light(5, 2, 2);
    const VmbHandle_t camera = openFast(kColourCamera, 40);
    setInt(camera, "GainAutoRate", 1);
    setInt(camera, "BalanceWhiteAutoRate", 1);
    setEnum(camera, "GainAuto", "Once");
    setEnum(camera, "BalanceWhiteAuto", "Once");
    run(camera, "AcquisitionStart");
    frames(50);
    EXPECT_EQ(enumOf(camera, "GainAuto"), "Once");
    frames(500);
    EXPECT_EQ(enumOf(camera, "GainAuto"), "Off");
    EXPECT_EQ(enumOf(camera, "BalanceWhiteAuto"), "Off");
    EXPECT_NEAR(floatOf(camera, "Gain"), 20.0, 0.5);
    EXPECT_NEAR(balance(camera, "Red"), 2.0, 0.1);
}

TEST_F(Automatic, GainStaysWithinLimitsThatAreBetweenItsSteps) {
    const VmbHandle_t camera = acquire();
    setFloat(camera, "GainAutoMin", 3.04);
    setFloat(camera, "GainAutoMax", 12.36);
    setEnum(camera, "GainAuto", "Continuous");
    light(0.5);
    frames(5);
    EXPECT_NEAR(floatOf(camera, "Gain"), 12.3, 1e-9);
    light(1'000);
    frames(5);
    EXPECT_NEAR(floatOf(camera, "Gain"), 3.1, 1e-9);
    // Limits that are steps are reached.
    setFloat(camera, "GainAutoMax", 12.4);
    setFloat(camera, "GainAutoMin", 0.3);
    frames(5);
    EXPECT_NEAR(floatOf(camera, "Gain"), 0.3, 1e-9);
    light(0.5);
    frames(5);
    EXPECT_NEAR(floatOf(camera, "Gain"), 12.4, 1e-9);
}

TEST_F(Automatic, WhiteBalanceSettlesOnBothRatios) {
    light(10, 1.73, 2.41);
    const VmbHandle_t camera = acquire();
    setEnum(camera, "BalanceWhiteAuto", "Once");
    frames(5);
    EXPECT_EQ(enumOf(camera, "BalanceWhiteAuto"), "Off");
    EXPECT_NEAR(balance(camera, "Red"), 1.73, 1e-9);
    EXPECT_NEAR(balance(camera, "Blue"), 2.41, 1e-9);
    light(10, 9, 0.1);
    setEnum(camera, "BalanceWhiteAuto", "Continuous");
    frames(5);
    EXPECT_NEAR(balance(camera, "Red"), 3.0, 1e-9);  // the range's ends
    EXPECT_NEAR(balance(camera, "Blue"), 0.8, 1e-9);
}

TEST_F(Automatic, ChangesAreInvalidated) {
    light(10, 2, 2);
    const VmbHandle_t camera = acquire();
    Invalidations seen;
    for (const char* name : {"ExposureTimeAbs", "ExposureAuto", "BalanceRatioAbs"}) {
        seen.registerOn(camera, name);
    }
    setEnum(camera, "ExposureAuto", "Once");
    setEnum(camera, "BalanceWhiteAuto", "Continuous");
    frames(6);
    // The sets themselves affect ExposureTimeAbs and BalanceRatioAbs; then come the first frame's changes and
    // the end of Once.
    EXPECT_THAT(seen.names(), ::testing::ElementsAre("ExposureAuto", "ExposureTimeAbs", "BalanceRatioAbs",
                                                     "ExposureTimeAbs", "BalanceRatioAbs", "ExposureAuto"));
}

TEST_F(Automatic, TheMonochromeCameraHasNoWhiteBalance) {
    light(10, 2, 2, kMonochromeCamera);
    const VmbHandle_t camera = acquire(kMonochromeCamera);
    EXPECT_EQ(VmbFeatureEnumSet(camera, "BalanceWhiteAuto", "Once"), VmbErrorNotFound);
    setEnum(camera, "ExposureAuto", "Once");
    frames(5);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 5'000);
}

TEST_F(Automatic, ImpossibleLightIsRefused) {
    const auto result = [](double percent, double red, double blue) {
        const VmbSimScene scene{percent, red, blue};
        return VmbSimSetScene(kColourCamera, &scene);
    };
    EXPECT_EQ(result(-1, 1, 1), VmbErrorInvalidValue);
    EXPECT_EQ(result(std::nan(""), 1, 1), VmbErrorInvalidValue);
    EXPECT_EQ(result(1, 0, 1), VmbErrorInvalidValue);
    EXPECT_EQ(result(1, 1, INFINITY), VmbErrorInvalidValue);
    const VmbSimScene good{1, 1, 1};
    EXPECT_EQ(VmbSimSetScene("DEV_1", &good), VmbErrorNotFound);
    EXPECT_EQ(VmbSimSetScene(nullptr, &good), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimSetScene(kColourCamera, nullptr), VmbErrorBadParameter);
}

}  // namespace
