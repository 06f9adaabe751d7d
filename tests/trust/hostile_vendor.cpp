#include "hostile_vendor.h"

using test_support::hostileVendor;

namespace test_support {

HostileVendor& hostileVendor() {
    static HostileVendor s_vendor;
    return s_vendor;
}

HonestAfterwards::~HonestAfterwards() {
    hostileVendor() = HostileVendor();
}

}  // namespace test_support

// The plug-in's core is linked into this program and finds these functions ahead of the library's. On Windows
// it calls through the pointers that otherwise the import library holds.
#if defined(_WIN32)
#define HOSTILE_CALL(name, member, parameters, arguments)   \
    namespace {                                             \
    VmbError_t hostile##name parameters {                   \
        return hostileVendor().member arguments;            \
    }                                                       \
    }                                                       \
    extern "C" {                                            \
    extern decltype(&hostile##name) __imp_##name;           \
    decltype(&hostile##name) __imp_##name = &hostile##name; \
    }
#else
#define HOSTILE_CALL(name, member, parameters, arguments) \
    extern "C" VmbError_t name parameters {               \
        return hostileVendor().member arguments;          \
    }
#endif

HOSTILE_CALL(VmbCamerasList, camerasList,
             (VmbCameraInfo_t * array, VmbUint32_t length, VmbUint32_t* found, VmbUint32_t size),
             (array, length, found, size))
HOSTILE_CALL(VmbCameraOpen, cameraOpen, (const char* id, VmbAccessMode_t mode, VmbHandle_t* handle),
             (id, mode, handle))
HOSTILE_CALL(VmbFeaturesList, featuresList,
             (const VmbHandle_t handle, VmbFeatureInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
              VmbUint32_t size),
             (handle, array, length, found, size))
HOSTILE_CALL(VmbFeatureInfoQuery, featureInfoQuery,
             (const VmbHandle_t handle, const char* name, VmbFeatureInfo_t* info, VmbUint32_t size),
             (handle, name, info, size))
HOSTILE_CALL(VmbFeatureIntGet, intGet, (const VmbHandle_t handle, const char* name, VmbInt64_t* value),
             (handle, name, value))
HOSTILE_CALL(VmbFeatureIntRangeQuery, intRangeQuery,
             (const VmbHandle_t handle, const char* name, VmbInt64_t* min, VmbInt64_t* max),
             (handle, name, min, max))
HOSTILE_CALL(VmbFeatureFloatGet, floatGet, (const VmbHandle_t handle, const char* name, double* value),
             (handle, name, value))
HOSTILE_CALL(VmbFeatureFloatSet, floatSet, (const VmbHandle_t handle, const char* name, double value),
             (handle, name, value))
HOSTILE_CALL(VmbFeatureFloatRangeQuery, floatRangeQuery,
             (const VmbHandle_t handle, const char* name, double* min, double* max), (handle, name, min, max))
HOSTILE_CALL(VmbFeatureEnumGet, enumGet, (const VmbHandle_t handle, const char* name, const char** value),
             (handle, name, value))
HOSTILE_CALL(VmbFeatureEnumRangeQuery, enumRangeQuery,
             (const VmbHandle_t handle, const char* name, const char** array, VmbUint32_t length,
              VmbUint32_t* filled),
             (handle, name, array, length, filled))
HOSTILE_CALL(VmbFeatureStringGet, stringGet,
             (const VmbHandle_t handle, const char* name, char* buffer, VmbUint32_t size,
              VmbUint32_t* filled),
             (handle, name, buffer, size, filled))
HOSTILE_CALL(VmbFeatureCommandRun, commandRun, (const VmbHandle_t handle, const char* name), (handle, name))
HOSTILE_CALL(VmbFeatureInvalidationRegister, invalidationRegister,
             (const VmbHandle_t handle, const char* name, VmbInvalidationCallback callback, void* context),
             (handle, name, callback, context))
HOSTILE_CALL(VmbFrameAnnounce, frameAnnounce,
             (const VmbHandle_t handle, const VmbFrame_t* frame, VmbUint32_t size), (handle, frame, size))
HOSTILE_CALL(VmbCaptureFrameQueue, captureFrameQueue,
             (const VmbHandle_t handle, const VmbFrame_t* frame, VmbFrameCallback callback),
             (handle, frame, callback))
HOSTILE_CALL(VmbCaptureEnd, captureEnd, (const VmbHandle_t handle), (handle))
