#include "camera_feature_rows.h"

#include "user_sets.h"

namespace simulator {

std::vector<FeatureRow> cameraFeatureRows(const CameraRow& camera) {
    FeatureRows rows;
    addImageRows(rows, camera);
    addAcquisitionRows(rows, camera);
    addTriggerRows(rows);
    addExposureRows(rows, camera);
    addGainRows(rows, camera);
    addLevelRows(rows);
    if (camera.colour) addColourRows(rows);
    addSubregionRows(rows, camera.sensor);
    addTimestampRows(rows, camera);
    addPtpRows(rows);
    addEventRows(rows);
    addNetworkRows(rows, camera);
    addStatisticsRows(rows);
    addLineRows(rows);
    addStatusRows(rows);
    addUserSetRows(rows);

    std::vector<const char*> saved;
    for (const FeatureRow& row : rows) {
        if (isInUserSets(row)) saved.push_back(row.name);
    }
    for (FeatureRow& row : rows) {
        if (row.name == std::string_view("UserSetLoad")) row.affects = saved;
    }
    return rows;
}

}  // namespace simulator
