/// One feature of a camera by its row.
#pragma once

#include <cmath>
#include <limits>

#include "config_items.h"
#include "zelt_gige_camera_api.h"
#include "zelt_gige_camera_channel_rows.h"

namespace zelt_gige_camera {

/// The feature that tells which colour's ratio is meant.
inline constexpr const char* kSelector = "BalanceRatioSelector";

/// A camera that has a selector answers for the entry selected last, so that every access selects anew.
inline void select(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera, const NumberRow& row) {
    if (row.selector != nullptr) api.setEnumFeature(camera, kSelector, row.selector);
}

/// Whether the feature's type can hold a value at all, whatever its range is.
inline bool canHold(const NumberRow& row, double value) {
    constexpr double kTwoToThe63rd = 9223372036854775808.0;
    constexpr double kMostPixels = std::numeric_limits<std::uint32_t>::max();
    if (isGeometry(row.setting)) return value >= 0.0 && value <= kMostPixels;
    if (row.whole) return value >= -kTwoToThe63rd && value < kTwoToThe63rd;
    return std::isfinite(value);
}

/// Of a feature that was selected just before. Throws CameraApiError, UnusableValue for what is no value of
/// the feature's.
inline double getSelected(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera,
                          const NumberRow& row) {
    const double value = row.whole ? static_cast<double>(api.getIntFeature(camera, row.feature))
                                   : api.getFloatFeature(camera, row.feature);
    // The greatest 64-bit integers round to 2^63 as doubles, and are none of a setting's.
    if (canHold(row, value)) return value;
    throw zelt_gige_api::UnusableValue(row.feature, config_items::ScalarConfigItem(value, {}).toString());
}

/// Throws CameraApiError.
inline double getNumber(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera,
                        const NumberRow& row) {
    select(api, camera, row);
    return getSelected(api, camera, row);
}

/// `value` is within 64 bits if the feature is an integer. Throws CameraApiError.
inline void setNumber(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera, const NumberRow& row,
                      double value) {
    select(api, camera, row);
    if (row.whole) {
        api.setIntFeature(camera, row.feature, static_cast<std::int64_t>(value));
    } else {
        api.setFloatFeature(camera, row.feature, value);
    }
}

}  // namespace zelt_gige_camera
