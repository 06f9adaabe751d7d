#include "zelt_gige_camera_api.h"

#include <cstdio>

namespace zelt_gige_api {

UnsupportedFeature::UnsupportedFeature(const std::string& feature, std::int32_t code)
    : CameraApiError("The feature '" + feature + "' is not supported", code) {}

UnusableValue::UnusableValue(const std::string& feature, const std::string& value)
    : CameraApiError("The feature '" + feature + "' reads " + value + ", which is no possible value") {}

std::string errorText(std::int32_t code) {
    switch (code) {
        case 0:
            return "Success";
        case -1:
            return "Unexpected fault in VimbaC or driver";
        case -2:
            return "VmbStartup() was not called before the current command";
        case -3:
            return "The designated instance (camera, feature etc.) cannot be found";
        case -6:
            return "Operation is invalid with the current access mode";
        case -12:
            return "Timeout during wait";
        case -13:
            return "Other error";
        case -16:
            return "No transport layers are found";
        default:
            return "Error code " + std::to_string(code);
    }
}

std::uint64_t deviceIdOf(const std::string& cameraId) {
    unsigned long long number = 0;
    return std::sscanf(cameraId.c_str(), "DEV_%llX", &number) == 1 ? number : 0;
}

std::shared_ptr<const std::vector<CameraInfo>> CameraApi::currentCameras() {
    return std::make_shared<const std::vector<CameraInfo>>(listCameras());
}

}  // namespace zelt_gige_api
