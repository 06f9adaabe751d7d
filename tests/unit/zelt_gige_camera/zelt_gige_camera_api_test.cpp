#include "zelt_gige_camera_api.h"

#include <type_traits>

#include <gtest/gtest.h>

namespace {

using zelt_gige_api::CameraApiError;
using zelt_gige_api::CameraFrame;
using zelt_gige_api::errorText;
using zelt_gige_api::FeatureType;
using zelt_gige_api::UnsupportedFeature;

TEST(ErrorText, NamesTheCodesOfTheTable) {
    EXPECT_EQ(errorText(0), "Success");
    EXPECT_EQ(errorText(-1), "Unexpected fault in VimbaC or driver");
    EXPECT_EQ(errorText(-2), "VmbStartup() was not called before the current command");
    EXPECT_EQ(errorText(-3), "The designated instance (camera, feature etc.) cannot be found");
    EXPECT_EQ(errorText(-6), "Operation is invalid with the current access mode");
    EXPECT_EQ(errorText(-12), "Timeout during wait");
    EXPECT_EQ(errorText(-13), "Other error");
    EXPECT_EQ(errorText(-16), "No transport layers are found");
}

TEST(ErrorText, GivesEveryOtherCodeAsANumber) {
    for (const int code : {-4, -5, -7, -8, -9, -10, -11, -14, -15, -17, -18, -19, -20, 7, 1}) {
        EXPECT_EQ(errorText(code), "Error code " + std::to_string(code));
    }
    EXPECT_EQ(errorText(-9), "Error code -9");
}

TEST(CameraApiErrorType, CarriesTextAndCodeAndIsARuntimeError) {
    const CameraApiError error("Could not open camera: Other error", -13);
    EXPECT_STREQ(error.what(), "Could not open camera: Other error");
    EXPECT_EQ(error.errorCode, -13);
    EXPECT_EQ(CameraApiError("API not initialized").errorCode, 0);
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, CameraApiError>));
}

TEST(UnsupportedFeatureType, NamesTheFeatureKeepsTheCodeAndIsACameraApiError) {
    try {
        throw UnsupportedFeature("Gamma", -6);
    } catch (const CameraApiError& error) {
        EXPECT_STREQ(error.what(), "The feature 'Gamma' is not supported");
        EXPECT_EQ(error.errorCode, -6);
    }
}

TEST(FeatureTypes, HaveTheirOwnNumbering) {
    EXPECT_EQ(static_cast<unsigned>(FeatureType::None), 0u);
    EXPECT_EQ(static_cast<unsigned>(FeatureType::Bool), 1u);
    EXPECT_EQ(static_cast<unsigned>(FeatureType::Int), 2u);
    EXPECT_EQ(static_cast<unsigned>(FeatureType::Float), 3u);
    EXPECT_EQ(static_cast<unsigned>(FeatureType::String), 4u);
    EXPECT_EQ(static_cast<unsigned>(FeatureType::Enum), 5u);
    EXPECT_EQ(static_cast<unsigned>(FeatureType::Command), 6u);
    EXPECT_EQ(static_cast<unsigned>(FeatureType::Other), 7u);
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<FeatureType>, unsigned>));
    EXPECT_EQ(zelt_gige_api::FeatureInfo().type, FeatureType::Other);
}

TEST(DeviceId, IsTheHexadecimalNumberOfACameraId) {
    EXPECT_EQ(zelt_gige_api::deviceIdOf("DEV_000F31A10001"), 0x000F31A10001u);
    EXPECT_EQ(zelt_gige_api::deviceIdOf("DEV_000f31a10001"), 0x000F31A10001u);
}

TEST(DeviceId, EndsAtTheFirstOtherCharacter) {
    EXPECT_EQ(zelt_gige_api::deviceIdOf("DEV_12G4"), 0x12u);
}

TEST(DeviceId, IsZeroForAnotherForm) {
    EXPECT_EQ(zelt_gige_api::deviceIdOf("000F31A10001"), 0u);
    EXPECT_EQ(zelt_gige_api::deviceIdOf("dev_12"), 0u);
    EXPECT_EQ(zelt_gige_api::deviceIdOf("DEV_"), 0u);
    EXPECT_EQ(zelt_gige_api::deviceIdOf(""), 0u);
}

TEST(CameraFrameRecord, StartsAllZero) {
    const CameraFrame frame;
    EXPECT_EQ(frame.timestamp + frame.frameid + frame.reserved + frame.imageSize, 0u);
    EXPECT_EQ(frame.width + frame.height + frame.offsetX + frame.offsetY, 0u);
    EXPECT_EQ(frame.buffer, nullptr);
}

}  // namespace
