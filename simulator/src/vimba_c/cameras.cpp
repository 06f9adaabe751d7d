// Listing, opening and closing cameras.
#include "vendor_call.h"

using namespace simulator;

namespace {

VmbCameraInfo_t cameraInfo(const CameraListing& camera) {
    VmbCameraInfo_t info{};
    info.cameraIdString = camera.row->id;
    info.cameraName = camera.name;
    info.modelName = camera.row->model;
    info.serialString = camera.row->serial;
    info.permittedAccess = camera.mayControl ? VmbAccessModeFull | VmbAccessModeRead : VmbAccessModeRead;
    info.interfaceIdString = camera.row->interfaceId;
    return info;
}

Result open(Simulation& all, const char* id, VmbAccessMode_t mode, VmbHandle_t* handle) {
    if (currentThreadRole() == ThreadRole::Frame) return Result::InvalidCall;
    const bool oneBit = mode != 0 && (mode & (mode - 1)) == 0 && mode <= VmbAccessModeLite;
    if (!oneBit) return Result::BadParameter;
    if (mode != VmbAccessModeFull && mode != VmbAccessModeRead) return Result::InvalidAccess;
    return all.open(id, mode == VmbAccessModeFull ? OpenMode::Full : OpenMode::Read, *handle);
}

}  // namespace

VmbError_t VmbCamerasList(VmbCameraInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                          VmbUint32_t sizeofInfo) {
    return vendorCall("VmbCamerasList", {length, sizeofInfo}, {found}, [&] {
        const Given given{found != nullptr, array == nullptr || sizeofInfo == sizeof *array};
        return withLibrary(given, [&](Simulation& all) {
            return fillList(all.foundCameras(), array, length, found, cameraInfo);
        });
    });
}

VmbError_t VmbCameraInfoQuery(const char* id, VmbCameraInfo_t* info, VmbUint32_t sizeofInfo) {
    return vendorCall("VmbCameraInfoQuery", {id, sizeofInfo}, {}, [&] {
        const Given given{id != nullptr && info != nullptr, sizeofInfo == sizeof *info};
        return withLibrary(given, [&](Simulation& all) {
            CameraListing camera;
            const Result described = all.describe(id, camera);
            if (described == Result::Success) *info = cameraInfo(camera);
            return described;
        });
    });
}

VmbError_t VmbCameraOpen(const char* id, VmbAccessMode_t accessMode, VmbHandle_t* handle) {
    return vendorCall("VmbCameraOpen", {id, accessMode}, {handle}, [&] {
        return withLibrary({id != nullptr && handle != nullptr},
                           [&](Simulation& all) { return open(all, id, accessMode, handle); });
    });
}

VmbError_t VmbCameraClose(const VmbHandle_t handle) {
    return vendorCall("VmbCameraClose", {handle}, {}, [&] {
        reportWaitInCallback();
        return withLibrary({}, [&](Simulation& all) { return all.close(handle); });
    });
}
