/// One feature of a camera by its row.
#pragma once

#include "zelt_gige_camera_api.h"
#include "zelt_gige_camera_channel_rows.h"

namespace zelt_gige_camera {

/// The feature that tells which colour's ratio is meant.
inline constexpr const char* kSelector = "BalanceRatioSelector";

/// A camera that has a selector answers for the entry selected last, so that every access selects anew.
inline void select(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera, const NumberRow& row) {
    if (row.selector != nullptr) api.setEnumFeature(camera, kSelector, row.selector);
}

/// Of a feature that was selected just before. Throws CameraApiError.
inline double getSelected(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera,
                          const NumberRow& row) {
    return row.whole ? static_cast<double>(api.getIntFeature(camera, row.feature))
                     : api.getFloatFeature(camera, row.feature);
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
