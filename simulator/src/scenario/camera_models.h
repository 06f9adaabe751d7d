/// The cameras that scenarios are made of.
#pragma once

#include <string_view>

#include "camera_row.h"

namespace simulator {

/// Everything but identifier, serial text, interface and address; null for an unknown name.
const CameraRow* findCameraModel(std::string_view name);

}  // namespace simulator
