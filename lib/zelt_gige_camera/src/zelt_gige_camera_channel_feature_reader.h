/// Reads a camera's features into a channel's state.
#pragma once

#include <string>
#include <vector>

#include "zelt_gige_camera_api.h"
#include "zelt_gige_camera_channel_state.h"

namespace zelt_gige_camera {

/// Reads the values that may change while the camera is open. All or nothing: a failure throws and leaves
/// `state` as it was. Values chosen here and not yet written are kept. Returns the keys of the settings that
/// changed.
std::vector<std::string> readCaches(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera,
                                    ChannelState& state);

/// Reads what holds for as long as the camera is open, and chooses the frame format. Throws CameraApiError.
void readConfiguration(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera,
                       const std::string& cameraName, ChannelState& state);

/// Writes one log line per feature of the camera; a failure is logged.
void dumpFeatures(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera);

}  // namespace zelt_gige_camera
