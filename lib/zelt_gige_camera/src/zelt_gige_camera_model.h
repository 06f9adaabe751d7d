/// Camera models whose frame-rate limit has to be computed, because they do not report one that holds for
/// the configured image height.
#pragma once

#include <cstdint>
#include <string_view>

namespace zelt_gige_api {

enum class CameraModelKind : unsigned { Other = 0, MantaG031 = 1, MantaG032 = 2, MantaG033 = 3 };

/// The kind of a "DeviceModelName", told by its beginning; upper and lower case are alike (ASCII only).
CameraModelKind cameraModelKind(std::string_view modelName);

/// Highest frame rate in Hz with `height` image rows; NaN for CameraModelKind::Other. The sensors have 492
/// rows; a greater height deliberately gives a rate near zero.
double maximumFrameRate(CameraModelKind kind, std::uint32_t height);

}  // namespace zelt_gige_api
