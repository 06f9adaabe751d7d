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
void addLevelRows(FeatureRows& rows);
void addColourRows(FeatureRows& rows);
void addSubregionRows(FeatureRows& rows, const SensorRow& sensor);
void addTimestampRows(FeatureRows& rows, const CameraRow& camera);
void addPtpRows(FeatureRows& rows);
void addEventRows(FeatureRows& rows);
void addNetworkRows(FeatureRows& rows, const CameraRow& camera);
void addStatisticsRows(FeatureRows& rows);
void addLineRows(FeatureRows& rows);
void addStatusRows(FeatureRows& rows);
void addUserSetRows(FeatureRows& rows);

}  // namespace simulator
