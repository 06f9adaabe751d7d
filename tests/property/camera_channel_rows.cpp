#include "camera_channel_rows.h"

#include <algorithm>

#include "config_items.h"
#include "config_keys.h"
#include "special_numbers.h"

namespace property_tests {
namespace {

using namespace config_keys;
using config_items::ConfigItemVariant;
using config_items::ScalarConfigItem;
using config_items::SingleValueConfigItem;
using test_support::kInf;
using test_support::kNan;
using Kind = SettingRow::Kind;
using Values = std::vector<ConfigItemVariant>;

constexpr const char* kDegrees = "\xC2\xB0";

/// Beside the numbers two items of other types.
Values numbers(const char* unit, std::initializer_list<double> list) {
    Values values;
    for (const double number : list) values.emplace_back(ScalarConfigItem(number, unit));
    values.emplace_back(SingleValueConfigItem<std::string>("3"));
    values.emplace_back(SingleValueConfigItem<int>(3));
    return values;
}

Values texts(std::initializer_list<const char*> list) {
    Values values;
    for (const char* text : list) values.emplace_back(SingleValueConfigItem<std::string>(text));
    values.emplace_back(SingleValueConfigItem<std::string>(""));
    values.emplace_back(ScalarConfigItem(1, ""));
    return values;
}

std::vector<SettingRow> makeRows() {
    const char* const pixel = "pixel";
    const Values autos = texts({kOff, "GIGE/AutoSettingContinuous", kOnce, "Off", "GIGE/AutoSetting"});
    const Values offsets = numbers(pixel, {0, 8, 103, 12.4, 336, 500, -1, 5e9, kNan});
    const Values sizes = numbers(pixel, {320, 64, 656, 492, 321, 12.6, 664, 0, -8, kInf});
    const Values ratios = numbers("", {1, 2, 1.234, 0.1, 9, kNan});
    return {
        {Kind::Whole, kFrameOffsetX, "OffsetX", pixel, 0, offsets},
        {Kind::Whole, kFrameOffsetY, "OffsetY", pixel, 0, offsets},
        {Kind::Whole, kFrameWidth, "Width", pixel, 0, sizes},
        {Kind::Whole, kFrameHeight, "Height", pixel, 0, sizes},
        {Kind::Real, kCameraExposure, "ExposureTimeAbs", "", 2,
         numbers("", {1000, 2000, 40'000, 39'970, 200'000, 123.456, 0, -1, 1e9, kNan, kInf}),
         kCameraExposureAuto},
        {Kind::Automatic, kCameraExposureAuto, "ExposureAuto", "", 2, autos},
        {Kind::Real, kCameraGain, "Gain", "", 3, numbers("", {0, 3, 6, 6.04, -1, 99, kNan}), kCameraGainAuto},
        {Kind::Whole, kCameraGainAutoAdjustTol, "GainAutoAdjustTol", "", 2,
         numbers("", {5, 10, 7.4, 51, -1, 1e300, -kInf})},
        {Kind::Whole, kCameraGainAutoRate, "GainAutoRate", "", 2, numbers("", {50, 100, 12.5, 0, 101, kNan})},
        {Kind::Automatic, kCameraGainAuto, "GainAuto", "", 2, autos},
        {Kind::Real, kCameraGamma, "Gamma", "", 2, numbers("", {1, 0.5, 0.1, 2, kNan})},
        {Kind::Real, kCameraHue, "Hue", kDegrees, 2, numbers(kDegrees, {0, 10, -41, kNan})},
        {Kind::Real, kCameraSaturation, "Saturation", "", 2, numbers("", {1, 0.5, 3, -1})},
        {Kind::Automatic, kCameraWhitebalanceAuto, "BalanceWhiteAuto", "", 2, autos},
        {Kind::Real, kCameraWhitebalanceRed, "BalanceRatioAbs", "", 2, ratios, kCameraWhitebalanceAuto,
         "Red"},
        {Kind::Real, kCameraWhitebalanceBlue, "BalanceRatioAbs", "", 2, ratios, kCameraWhitebalanceAuto,
         "Blue"},
        {Kind::Mode, kCameraTriggerMode, "TriggerSource", "", 2,
         texts({kAux, "GIGE/TriggerModeFixed", "GIGE/TriggerMode"})},
        {Kind::Format, kFrameFormat, "PixelFormat", "", 1, texts({"Y800", "Y422", "RGB", "y800", "I420"})},
        {Kind::Rate, kCameraFrameSetting, "AcquisitionFrameRateAbs", "fps", 2,
         numbers("fps", {4, 2, 25, 10, 33.3, 90, 1e6, 0, -5, 0.001, kNan})},
    };
}

std::string hostText(const SettingRow& row, const std::string& camera) {
    if (row.kind == Kind::Automatic) return "GIGE/AutoSetting" + camera;
    if (row.kind == Kind::Mode) return camera == "Line1" ? kAux : "GIGE/TriggerModeFixed";
    if (camera == "YUV422Packed") return "Y422";
    if (camera == "RGB8Packed") return "RGB";
    return camera == "Mono8" ? "Y800" : "";
}

}  // namespace

const std::vector<SettingRow>& settingRows() {
    static const std::vector<SettingRow> rows = makeRows();
    return rows;
}

const SettingRow* findRow(const std::string& key) {
    const auto& rows = settingRows();
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&](const auto& each) { return each.key == key; });
    return row != rows.end() ? &*row : nullptr;
}

std::string cameraText(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera,
                       const SettingRow& row) {
    if (row.selector != nullptr) api.setEnumFeature(camera, "BalanceRatioSelector", row.selector);
    switch (row.kind) {
        case Kind::Whole:
            return ScalarConfigItem(static_cast<double>(api.getIntFeature(camera, row.feature)), row.unit)
                .toString();
        case Kind::Real:
        case Kind::Rate:
            return ScalarConfigItem(api.getFloatFeature(camera, row.feature), row.unit).toString();
        default:
            return hostText(row, api.getEnumFeature(camera, row.feature));
    }
}

}  // namespace property_tests
