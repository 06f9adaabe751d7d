#include "zelt_gige_camera_model.h"

#include <cmath>

#include <gtest/gtest.h>

namespace {

using zelt_gige_api::cameraModelKind;
using zelt_gige_api::CameraModelKind;
using zelt_gige_api::maximumFrameRate;

TEST(CameraModel, IsToldByTheBeginningOfItsName) {
    EXPECT_EQ(cameraModelKind("MANTA_G-031"), CameraModelKind::MantaG031);
    EXPECT_EQ(cameraModelKind("MANTA_G-032B"), CameraModelKind::MantaG032);
    EXPECT_EQ(cameraModelKind("MANTA_G-033C (E0020004)"), CameraModelKind::MantaG033);
}

TEST(CameraModel, IgnoresUpperAndLowerCase) {
    EXPECT_EQ(cameraModelKind("Manta_G-032B"), CameraModelKind::MantaG032);
    EXPECT_EQ(cameraModelKind("mAnTa_g-032"), CameraModelKind::MantaG032);
}

TEST(CameraModel, IsOtherForEveryOtherName) {
    for (const char* name :
         {"", "MANTA G-032B", "MANTA_G-03", "MANTA_G-035", "XMANTA_G-031", "{ANTA_G-031", "Mako G-319C"}) {
        EXPECT_EQ(cameraModelKind(name), CameraModelKind::Other) << name;
    }
}

TEST(CameraModel, KindsHaveTheFixedNumbers) {
    EXPECT_EQ(static_cast<unsigned>(CameraModelKind::Other), 0u);
    EXPECT_EQ(static_cast<unsigned>(CameraModelKind::MantaG031), 1u);
    EXPECT_EQ(static_cast<unsigned>(CameraModelKind::MantaG032), 2u);
    EXPECT_EQ(static_cast<unsigned>(CameraModelKind::MantaG033), 3u);
}

// Worked out with 40 decimal digits.
TEST(MaximumFrameRate, FollowsTheModelsFormula) {
    EXPECT_NEAR(maximumFrameRate(CameraModelKind::MantaG031, 492), 125.3582110881845, 1e-9);
    EXPECT_NEAR(maximumFrameRate(CameraModelKind::MantaG031, 246), 211.0898144942710, 1e-9);
    EXPECT_NEAR(maximumFrameRate(CameraModelKind::MantaG032, 492), 80.18744617417676, 1e-9);
    EXPECT_NEAR(maximumFrameRate(CameraModelKind::MantaG032, 246), 138.4351292984108, 1e-9);
    EXPECT_NEAR(maximumFrameRate(CameraModelKind::MantaG033, 492), 88.78250771519992, 1e-9);
    EXPECT_NEAR(maximumFrameRate(CameraModelKind::MantaG033, 1), 1039.176971838304, 1e-9);
}

TEST(MaximumFrameRate, IsNearZeroAboveTheSensorsHeight) {
    EXPECT_NEAR(maximumFrameRate(CameraModelKind::MantaG031, 493), 0.00009202785472184156, 1e-15);
}

TEST(MaximumFrameRate, IsNotKnownForAnotherModel) {
    EXPECT_TRUE(std::isnan(maximumFrameRate(CameraModelKind::Other, 492)));
}

}  // namespace
