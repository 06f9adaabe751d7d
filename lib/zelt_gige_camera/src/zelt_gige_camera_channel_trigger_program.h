/// The writes that put a camera into a trigger mode.
#pragma once

#include "zelt_gige_camera_api.h"

namespace zelt_gige_camera {

/// Programs the mode in which every rising edge on the trigger input exposes a frame. Throws CameraApiError
/// at the first step that fails.
void programAux(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera);

/// Programs fixed-rate mode, step by step in the order the camera needs. Returns the frame rate that the
/// camera really took, frames per second. Throws CameraApiError at the first step that fails.
double programFixedRate(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera, double frameRate);

}  // namespace zelt_gige_camera
