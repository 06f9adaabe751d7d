// A camera's settings in files.
#include "settings_file.h"
#include "vendor_call.h"

using namespace simulator;

namespace {

using SettingsAction = Result (*)(FeatureModule&, const char*, const PersistSettings&);

VmbError_t withSettings(VmbHandle_t handle, const char* file, const VmbFeaturePersistSettings_t* settings,
                        VmbUint32_t sizeofSettings, SettingsAction action) {
    const Given given{file != nullptr, settings == nullptr || sizeofSettings == sizeof *settings};
    return withCamera(handle, given, [&](CameraSession& camera) {
        if (!camera.isAlive()) return Result::BadHandle;
        PersistSettings wanted;
        if (settings != nullptr) wanted = {settings->persistType, settings->maxIterations};
        if (wanted.persistType > VmbFeaturePersistNoLUT) return Result::BadParameter;
        return action(camera, file, wanted);
    });
}

Result load(FeatureModule& camera, const char* file, const PersistSettings& settings) {
    if (currentThreadRole() == ThreadRole::Frame) {
        simulation().misuses().add(kSetInCallback);
        return Result::InvalidCall;
    }
    return camera.isWritable() ? loadSettings(camera, file, settings) : Result::InvalidAccess;
}

}  // namespace

VmbError_t VmbCameraSettingsSave(const VmbHandle_t handle, const char* file,
                                 const VmbFeaturePersistSettings_t* settings, VmbUint32_t sizeofSettings) {
    return vendorCall("VmbCameraSettingsSave", {handle, file, sizeofSettings}, {},
                      [&] { return withSettings(handle, file, settings, sizeofSettings, saveSettings); });
}

VmbError_t VmbCameraSettingsLoad(const VmbHandle_t handle, const char* file,
                                 const VmbFeaturePersistSettings_t* settings, VmbUint32_t sizeofSettings) {
    return vendorCall("VmbCameraSettingsLoad", {handle, file, sizeofSettings}, {},
                      [&] { return withSettings(handle, file, settings, sizeofSettings, load); });
}
