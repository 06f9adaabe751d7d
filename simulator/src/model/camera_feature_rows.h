/// Groups of feature rows, each appended to a camera's table.
#pragma once

#include <vector>

#include "camera_row.h"
#include "feature_row.h"

namespace simulator {

using FeatureRows = std::vector<FeatureRow>;

inline constexpr std::int64_t kUnlimited = INT64_MAX;

void addImageRows(FeatureRows& rows, const CameraRow& camera);
void addAcquisitionRows(FeatureRows& rows, const CameraRow& camera);
void addTriggerRows(FeatureRows& rows);
void addExposureRows(FeatureRows& rows, const CameraRow& camera);
void addGainRows(FeatureRows& rows, const CameraRow& camera);
void addColourRows(FeatureRows& rows);
void addTimestampRows(FeatureRows& rows);
void addEventRows(FeatureRows& rows);
void addStreamRows(FeatureRows& rows);
void addStatisticsRows(FeatureRows& rows);

}  // namespace simulator
