#include "zelt_gige_camera_channel_rows.h"

#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "feature_fixture.h"

namespace {

using namespace zelt_gige_camera;
using S = Setting;
using C = ChannelState;

struct ExpectedNumber {
    S setting;
    const char* key;
    const char* unit;
    const char* feature;
    const char* selector;
    const char* kind;
    NumberValue C::*value;
};

// "may lack": not every camera has it.
constexpr ExpectedNumber kNumbers[] = {
    {S::FrameOffsetX, "FrameOffsetX", "pixel", "OffsetX", nullptr, "whole", &C::frameOffsetX},
    {S::FrameOffsetY, "FrameOffsetY", "pixel", "OffsetY", nullptr, "whole", &C::frameOffsetY},
    {S::FrameWidth, "FrameWidth", "pixel", "Width", nullptr, "whole", &C::frameWidth},
    {S::FrameHeight, "FrameHeight", "pixel", "Height", nullptr, "whole", &C::frameHeight},
    {S::Exposure, "CAMERA/Exposure", "", "ExposureTimeAbs", nullptr, "real", &C::exposure},
    {S::Gain, "CAMERA/Gain", "", "Gain", nullptr, "real", &C::gain},
    {S::GainAutoAdjustTol, "CAMERA/GainAutoAdjustTol", "", "GainAutoAdjustTol", nullptr, "whole, may lack",
     &C::gainAutoAdjustTol},
    {S::GainAutoRate, "CAMERA/GainAutoRate", "", "GainAutoRate", nullptr, "whole, may lack",
     &C::gainAutoRate},
    {S::Gamma, "CAMERA/Gamma", "", "Gamma", nullptr, "real, may lack", &C::gamma},
    {S::Hue, "CAMERA/Hue", "\xC2\xB0", "Hue", nullptr, "real, may lack", &C::hue},
    {S::Saturation, "CAMERA/Saturation", "", "Saturation", nullptr, "real, may lack", &C::saturation},
    {S::WhitebalanceRed, "CAMERA/WhitebalanceRed", "", "BalanceRatioAbs", "Red", "real, may lack",
     &C::whitebalanceRed},
    {S::WhitebalanceBlue, "CAMERA/WhitebalanceBlue", "", "BalanceRatioAbs", "Blue", "real, may lack",
     &C::whitebalanceBlue},
    {S::FrameRate, "CAMERA/FrameSetting", "fps", "AcquisitionFrameRateAbs", nullptr, "real", &C::frameRate},
    {S::ExposureAutoMax, nullptr, "", "ExposureAutoMax", nullptr, "whole, may lack", &C::exposureAutoMax},
};

struct ExpectedAuto {
    S setting;
    const char* key;
    const char* actionKey;
    const char* feature;
    AutoValue C::*value;
};

constexpr ExpectedAuto kAutos[] = {
    {S::ExposureAuto, "CAMERA/ExposureAuto", "ACTION:Camera/AutoExposure", "ExposureAuto", &C::exposureAuto},
    {S::GainAuto, "CAMERA/GainAuto", "ACTION:Camera/AutoGain", "GainAuto", &C::gainAuto},
    {S::WhitebalanceAuto, "CAMERA/WhitebalanceAuto", "ACTION:Camera/AutoWhitebalance", "BalanceWhiteAuto",
     &C::whitebalanceAuto},
};

TEST(NumberRows, AreTheseInTheOrderOfTheSettings) {
    ASSERT_EQ(numberRows().size(), std::size(kNumbers));
    for (std::size_t at = 0; at < std::size(kNumbers); ++at) {
        const NumberRow& row = numberRows()[at];
        const ExpectedNumber& expected = kNumbers[at];
        SCOPED_TRACE(expected.feature);
        EXPECT_EQ(row.setting, expected.setting);
        EXPECT_STREQ(row.key, expected.key);
        EXPECT_STREQ(row.unit, expected.unit);
        EXPECT_STREQ(row.feature, expected.feature);
        EXPECT_STREQ(row.selector, expected.selector);
        EXPECT_EQ(std::string(row.whole ? "whole" : "real") + (row.optional ? ", may lack" : ""),
                  expected.kind);
        EXPECT_EQ(row.value, expected.value);
    }
}

TEST(FakeCamera, HasTheFeatureOfEveryRow) {
    test_support::FakeCameraApi camera;
    test_support::addEveryFeature(camera);
    for (const NumberRow& row : numberRows()) {
        const std::string selector = row.selector != nullptr ? "[" + std::string(row.selector) + "]" : "";
        EXPECT_TRUE(camera.features.count(row.feature + selector) == 1)
            << row.feature << ": add it to addEveryFeature";
    }
    for (const AutoRow& row : autoRows()) {
        EXPECT_TRUE(camera.features.count(row.feature) == 1) << row.feature << ": add it to addEveryFeature";
    }
}

TEST(AutoRows, AreTheseInTheOrderOfTheSettings) {
    ASSERT_EQ(autoRows().size(), std::size(kAutos));
    for (std::size_t at = 0; at < std::size(kAutos); ++at) {
        const AutoRow& row = autoRows()[at];
        const ExpectedAuto& expected = kAutos[at];
        SCOPED_TRACE(expected.feature);
        EXPECT_EQ(row.setting, expected.setting);
        EXPECT_STREQ(row.key, expected.key);
        EXPECT_STREQ(row.actionKey, expected.actionKey);
        EXPECT_STREQ(row.feature, expected.feature);
        EXPECT_EQ(row.value, expected.value);
    }
}

TEST(Rows, AreFoundByTheirSetting) {
    for (const ExpectedNumber& each : kNumbers) EXPECT_EQ(numberRow(each.setting).value, each.value);
    for (const ExpectedAuto& each : kAutos) EXPECT_EQ(autoRow(each.setting).value, each.value);
}

TEST(Rows, OfAnotherKindAreAProgrammingError) {
    for (const S setting :
         {S::ExposureAuto, S::GainAuto, S::WhitebalanceAuto, S::TriggerMode, S::FrameFormat}) {
        EXPECT_THROW(numberRow(setting), std::logic_error);
    }
    for (const S setting : {S::Exposure, S::FrameRate, S::TriggerMode, S::FrameFormat}) {
        EXPECT_THROW(autoRow(setting), std::logic_error);
    }
}

TEST(SettingKeys, AreTheHostsForEverySettingThatItSees) {
    const std::vector<const char*> keys{
        "FrameOffsetX",
        "FrameOffsetY",
        "FrameWidth",
        "FrameHeight",
        "CAMERA/Exposure",
        "CAMERA/ExposureAuto",
        "CAMERA/Gain",
        "CAMERA/GainAutoAdjustTol",
        "CAMERA/GainAutoRate",
        "CAMERA/GainAuto",
        "CAMERA/Gamma",
        "CAMERA/Hue",
        "CAMERA/Saturation",
        "CAMERA/WhitebalanceAuto",
        "CAMERA/WhitebalanceRed",
        "CAMERA/WhitebalanceBlue",
        "CAMERA/TriggerMode",
        "FrameFormat",
        "CAMERA/FrameSetting",
        nullptr,
    };
    ASSERT_EQ(keys.size(), static_cast<std::size_t>(S::Count));
    for (std::size_t at = 0; at < keys.size(); ++at) {
        EXPECT_STREQ(settingKey(static_cast<S>(at)), keys[at]) << at;
    }
}

TEST(Geometry, IsTheFirstFourSettings) {
    for (unsigned at = 0; at < static_cast<unsigned>(S::Count); ++at) {
        EXPECT_EQ(isGeometry(static_cast<S>(at)), at < 4) << at;
    }
}

}  // namespace
