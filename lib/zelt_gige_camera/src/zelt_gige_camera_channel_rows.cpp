#include "zelt_gige_camera_channel_rows.h"

#include <algorithm>
#include <stdexcept>

#include "config_keys.h"

namespace zelt_gige_camera {
namespace {

using S = Setting;
using C = ChannelState;

constexpr bool kWhole = true;
constexpr bool kReal = false;
constexpr bool kOptional = true;
constexpr bool kAlways = false;

constexpr const char* kPixels = "pixel";
constexpr const char* kDegrees = "\xC2\xB0";  // the degree sign in UTF-8
constexpr const char* kNoUnit = "";

// clang-format off
constexpr std::array<NumberRow, 15> kNumbers{{
    {S::FrameOffsetX, config_keys::kFrameOffsetX, kPixels, "OffsetX", nullptr, kWhole, kAlways, &C::frameOffsetX},
    {S::FrameOffsetY, config_keys::kFrameOffsetY, kPixels, "OffsetY", nullptr, kWhole, kAlways, &C::frameOffsetY},
    {S::FrameWidth, config_keys::kFrameWidth, kPixels, "Width", nullptr, kWhole, kAlways, &C::frameWidth},
    {S::FrameHeight, config_keys::kFrameHeight, kPixels, "Height", nullptr, kWhole, kAlways, &C::frameHeight},
    {S::Exposure, config_keys::kCameraExposure, kNoUnit, "ExposureTimeAbs", nullptr, kReal, kAlways, &C::exposure},
    {S::Gain, config_keys::kCameraGain, kNoUnit, "Gain", nullptr, kReal, kAlways, &C::gain},
    {S::GainAutoAdjustTol, config_keys::kCameraGainAutoAdjustTol, kNoUnit, "GainAutoAdjustTol", nullptr, kWhole, kOptional, &C::gainAutoAdjustTol},
    {S::GainAutoRate, config_keys::kCameraGainAutoRate, kNoUnit, "GainAutoRate", nullptr, kWhole, kOptional, &C::gainAutoRate},
    {S::Gamma, config_keys::kCameraGamma, kNoUnit, "Gamma", nullptr, kReal, kOptional, &C::gamma},
    {S::Hue, config_keys::kCameraHue, kDegrees, "Hue", nullptr, kReal, kOptional, &C::hue},
    {S::Saturation, config_keys::kCameraSaturation, kNoUnit, "Saturation", nullptr, kReal, kOptional, &C::saturation},
    {S::WhitebalanceRed, config_keys::kCameraWhitebalanceRed, kNoUnit, "BalanceRatioAbs", "Red", kReal, kOptional, &C::whitebalanceRed},
    {S::WhitebalanceBlue, config_keys::kCameraWhitebalanceBlue, kNoUnit, "BalanceRatioAbs", "Blue", kReal, kOptional, &C::whitebalanceBlue},
    {S::FrameRate, config_keys::kCameraFrameSetting, "fps", "AcquisitionFrameRateAbs", nullptr, kReal, kAlways, &C::frameRate},
    {S::ExposureAutoMax, nullptr, kNoUnit, "ExposureAutoMax", nullptr, kWhole, kOptional, &C::exposureAutoMax},
}};

constexpr std::array<AutoRow, 3> kAutos{{
    {S::ExposureAuto, config_keys::kCameraExposureAuto, config_keys::kActionCameraAutoExposure, "ExposureAuto", &C::exposureAuto},
    {S::GainAuto, config_keys::kCameraGainAuto, config_keys::kActionCameraAutoGain, "GainAuto", &C::gainAuto},
    {S::WhitebalanceAuto, config_keys::kCameraWhitebalanceAuto, config_keys::kActionCameraAutoWhitebalance, "BalanceWhiteAuto", &C::whitebalanceAuto},
}};
// clang-format on

template <class Rows>
const auto* findRow(const Rows& rows, Setting setting) {
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&](const auto& each) { return each.setting == setting; });
    return row != rows.end() ? &*row : nullptr;
}

template <class Rows>
const auto& rowOf(const Rows& rows, Setting setting) {
    const auto* const row = findRow(rows, setting);
    if (row == nullptr) throw std::logic_error("This setting has no row of that kind");
    return *row;
}

}  // namespace

const std::array<NumberRow, 15>& numberRows() {
    return kNumbers;
}

const std::array<AutoRow, 3>& autoRows() {
    return kAutos;
}

const NumberRow& numberRow(Setting setting) {
    return rowOf(kNumbers, setting);
}

const AutoRow& autoRow(Setting setting) {
    return rowOf(kAutos, setting);
}

bool isGeometry(Setting setting) {
    return setting <= Setting::FrameHeight;
}

const char* settingKey(Setting setting) {
    if (setting == Setting::TriggerMode) return config_keys::kCameraTriggerMode;
    if (setting == Setting::FrameFormat) return config_keys::kFrameFormat;
    if (const NumberRow* const row = findRow(kNumbers, setting)) return row->key;
    return rowOf(kAutos, setting).key;
}

}  // namespace zelt_gige_camera
