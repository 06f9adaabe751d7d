/// Types of the camera vendor's C library `VimbaC` 1.x: our own declarations of its published binary
/// interface, usable from C11 and C++20. Every size and offset is asserted below.
///
/// Ownership: texts handed out belong to the library and stay valid until VmbShutdown. Frame records and
/// their buffers belong to the caller and must stay in place from announcement to revocation; the library
/// writes the fields marked "out" although it takes the record as pointer to const.
#pragma once

// NOLINTBEGIN: a C header, its names and idioms are the vendor's
#include <assert.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

typedef int8_t VmbInt8_t;
typedef uint8_t VmbUint8_t;
typedef int16_t VmbInt16_t;
typedef uint16_t VmbUint16_t;
typedef int32_t VmbInt32_t;
typedef uint32_t VmbUint32_t;
typedef int64_t VmbInt64_t;
typedef uint64_t VmbUint64_t;
typedef bool VmbBool_t;
typedef char VmbUchar_t;

/// A camera, an interface, ancillary data, or the library itself; 0 is never valid.
typedef void* VmbHandle_t;

/// The library's own "system" object, which carries the system-wide features.
#define gVimbaHandle ((VmbHandle_t)1)

/// Time-out in milliseconds that never runs out.
#define VMBINFINITE 0xFFFFFFFFu

/// 0 is success, errors are negative.
typedef VmbInt32_t VmbError_t;
enum {
    VmbErrorSuccess = 0,
    VmbErrorInternalFault = -1,
    VmbErrorApiNotStarted = -2,
    VmbErrorNotFound = -3,
    VmbErrorBadHandle = -4,
    VmbErrorDeviceNotOpen = -5,
    VmbErrorInvalidAccess = -6,
    VmbErrorBadParameter = -7,
    VmbErrorStructSize = -8,
    VmbErrorMoreData = -9,
    VmbErrorWrongType = -10,
    VmbErrorInvalidValue = -11,
    VmbErrorTimeout = -12,
    VmbErrorOther = -13,
    VmbErrorResources = -14,
    VmbErrorInvalidCall = -15,
    VmbErrorNoTL = -16,
    VmbErrorNotImplemented = -17,
    VmbErrorNotSupported = -18,
    VmbErrorIncomplete = -19,
    VmbErrorIO = -20
};

/// Bits in the info records; exactly one of them in the open call.
typedef VmbUint32_t VmbAccessMode_t;
enum {
    VmbAccessModeNone = 0,
    VmbAccessModeFull = 1,
    VmbAccessModeRead = 2,
    VmbAccessModeConfig = 4,
    VmbAccessModeLite = 8
};

typedef VmbUint32_t VmbInterface_t;
enum {
    VmbInterfaceUnknown = 0,
    VmbInterfaceFirewire = 1,
    VmbInterfaceEthernet = 2,
    VmbInterfaceUsb = 3,
    VmbInterfaceCL = 4,
    VmbInterfaceCSI2 = 5
};

typedef VmbUint32_t VmbFeatureData_t;
enum {
    VmbFeatureDataUnknown = 0,
    VmbFeatureDataInt = 1,
    VmbFeatureDataFloat = 2,
    VmbFeatureDataEnum = 3,
    VmbFeatureDataString = 4,
    VmbFeatureDataBool = 5,
    VmbFeatureDataCommand = 6,
    VmbFeatureDataRaw = 7,
    VmbFeatureDataNone = 8
};

/// What a feature can do in principle; what it permits now comes from VmbFeatureAccessQuery.
typedef VmbUint32_t VmbFeatureFlags_t;
enum {
    VmbFeatureFlagsNone = 0,
    VmbFeatureFlagsRead = 1,
    VmbFeatureFlagsWrite = 2,
    VmbFeatureFlagsVolatile = 8,
    VmbFeatureFlagsModifyWrite = 16
};

typedef VmbUint32_t VmbFeatureVisibility_t;
enum {
    VmbFeatureVisibilityUnknown = 0,
    VmbFeatureVisibilityBeginner = 1,
    VmbFeatureVisibilityExpert = 2,
    VmbFeatureVisibilityGuru = 3,
    VmbFeatureVisibilityInvisible = 4
};

typedef VmbInt32_t VmbFrameStatus_t;
enum {
    VmbFrameStatusComplete = 0,
    VmbFrameStatusIncomplete = -1,
    VmbFrameStatusTooSmall = -2,
    VmbFrameStatusInvalid = -3
};

/// Which of a received frame's fields the library filled.
typedef VmbUint32_t VmbFrameFlags_t;
enum {
    VmbFrameFlagsNone = 0,
    VmbFrameFlagsDimension = 1,
    VmbFrameFlagsOffset = 2,
    VmbFrameFlagsFrameID = 4,
    VmbFrameFlagsTimestamp = 8
};

typedef VmbUint32_t VmbFeaturePersist_t;
enum { VmbFeaturePersistAll = 0, VmbFeaturePersistStreamable = 1, VmbFeaturePersistNoLUT = 2 };

/// Family, bits per pixel shifted left by 16, and a running number; also the integer value of the entry
/// of the camera's "PixelFormat" feature.
typedef VmbUint32_t VmbPixelFormat_t;
enum {
    VmbPixelFormatMono8 = 0x01080001,
    VmbPixelFormatMono12 = 0x01100005,
    VmbPixelFormatMono12Packed = 0x010C0006,
    VmbPixelFormatRgb8 = 0x02180014,
    VmbPixelFormatBgr8 = 0x02180015,
    VmbPixelFormatYuv411 = 0x020C001E,
    VmbPixelFormatYuv422 = 0x0210001F,
    VmbPixelFormatYuv444 = 0x02180020
};

typedef struct VmbVersionInfo_t {
    VmbUint32_t major;
    VmbUint32_t minor;
    VmbUint32_t patch;
} VmbVersionInfo_t;

typedef struct VmbInterfaceInfo_t {
    const char* interfaceIdString;
    VmbInterface_t interfaceType;
    const char* interfaceName;
    const char* serialString;
    VmbAccessMode_t permittedAccess;
} VmbInterfaceInfo_t;

typedef struct VmbCameraInfo_t {
    const char* cameraIdString;  ///< "DEV_" and the twelve hexadecimal digits of the hardware address
    const char* cameraName;
    const char* modelName;
    const char* serialString;
    VmbAccessMode_t permittedAccess;
    const char* interfaceIdString;
} VmbCameraInfo_t;

typedef struct VmbFeatureInfo_t {
    const char* name;
    VmbFeatureData_t featureDataType;
    VmbFeatureFlags_t featureFlags;
    const char* category;  ///< begins with '/', levels split by '/'
    const char* displayName;
    VmbUint32_t pollingTime;  ///< milliseconds, 0 for none
    const char* unit;         ///< null or empty when the feature has none; so are the next and the tooltip
    const char* representation;
    VmbFeatureVisibility_t visibility;
    const char* tooltip;
    const char* description;
    const char* sfncNamespace;  ///< "Standard" or "Custom"
    VmbBool_t isStreamable;
    VmbBool_t hasAffectedFeatures;
    VmbBool_t hasSelectedFeatures;
} VmbFeatureInfo_t;

typedef struct VmbFeatureEnumEntry_t {
    const char* name;
    const char* displayName;
    VmbFeatureVisibility_t visibility;
    const char* tooltip;
    const char* description;
    const char* sfncNamespace;
    VmbInt64_t intValue;
} VmbFeatureEnumEntry_t;

typedef struct VmbFrame_t {
    void* buffer;                    ///< in
    VmbUint32_t bufferSize;          ///< in, bytes
    void* context[4];                ///< in, never touched by the library
    VmbFrameStatus_t receiveStatus;  ///< out, as all that follow
    VmbFrameFlags_t receiveFlags;
    VmbUint32_t imageSize;      ///< bytes received
    VmbUint32_t ancillarySize;  ///< bytes, 0 unless chunk mode is on
    VmbPixelFormat_t pixelFormat;
    VmbUint32_t width;
    VmbUint32_t height;
    VmbUint32_t offsetX;
    VmbUint32_t offsetY;
    VmbUint64_t frameID;
    VmbUint64_t timestamp;  ///< camera clock ticks
} VmbFrame_t;

typedef struct VmbFeaturePersistSettings_t {
    VmbFeaturePersist_t persistType;
    VmbUint32_t maxIterations;
    VmbUint32_t loggingLevel;  ///< 0 to 4, 4 logs everything
} VmbFeaturePersistSettings_t;

/// Called on one thread of the library per camera; the calls of one camera never overlap.
typedef void (*VmbFrameCallback)(const VmbHandle_t cameraHandle, VmbFrame_t* frame);

/// Called on a thread of the library when a feature's value or state may have changed.
typedef void (*VmbInvalidationCallback)(const VmbHandle_t handle, const char* name, void* userContext);

#define VMB_LAYOUT_SIZE(type, size) static_assert(sizeof(type) == (size), #type " has another size")
#define VMB_LAYOUT_FIELD(type, field, offset) \
    static_assert(offsetof(type, field) == (offset), #type "." #field " has another offset")

VMB_LAYOUT_SIZE(VmbHandle_t, 8);
VMB_LAYOUT_SIZE(VmbBool_t, 1);
VMB_LAYOUT_SIZE(VmbVersionInfo_t, 12);
VMB_LAYOUT_FIELD(VmbVersionInfo_t, major, 0);
VMB_LAYOUT_FIELD(VmbVersionInfo_t, minor, 4);
VMB_LAYOUT_FIELD(VmbVersionInfo_t, patch, 8);

VMB_LAYOUT_SIZE(VmbInterfaceInfo_t, 40);
VMB_LAYOUT_FIELD(VmbInterfaceInfo_t, interfaceIdString, 0);
VMB_LAYOUT_FIELD(VmbInterfaceInfo_t, interfaceType, 8);
VMB_LAYOUT_FIELD(VmbInterfaceInfo_t, interfaceName, 16);
VMB_LAYOUT_FIELD(VmbInterfaceInfo_t, serialString, 24);
VMB_LAYOUT_FIELD(VmbInterfaceInfo_t, permittedAccess, 32);

VMB_LAYOUT_SIZE(VmbCameraInfo_t, 48);
VMB_LAYOUT_FIELD(VmbCameraInfo_t, cameraIdString, 0);
VMB_LAYOUT_FIELD(VmbCameraInfo_t, cameraName, 8);
VMB_LAYOUT_FIELD(VmbCameraInfo_t, modelName, 16);
VMB_LAYOUT_FIELD(VmbCameraInfo_t, serialString, 24);
VMB_LAYOUT_FIELD(VmbCameraInfo_t, permittedAccess, 32);
VMB_LAYOUT_FIELD(VmbCameraInfo_t, interfaceIdString, 40);

VMB_LAYOUT_SIZE(VmbFeatureInfo_t, 96);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, name, 0);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, featureDataType, 8);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, featureFlags, 12);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, category, 16);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, displayName, 24);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, pollingTime, 32);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, unit, 40);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, representation, 48);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, visibility, 56);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, tooltip, 64);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, description, 72);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, sfncNamespace, 80);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, isStreamable, 88);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, hasAffectedFeatures, 89);
VMB_LAYOUT_FIELD(VmbFeatureInfo_t, hasSelectedFeatures, 90);

VMB_LAYOUT_SIZE(VmbFeatureEnumEntry_t, 56);
VMB_LAYOUT_FIELD(VmbFeatureEnumEntry_t, name, 0);
VMB_LAYOUT_FIELD(VmbFeatureEnumEntry_t, displayName, 8);
VMB_LAYOUT_FIELD(VmbFeatureEnumEntry_t, visibility, 16);
VMB_LAYOUT_FIELD(VmbFeatureEnumEntry_t, tooltip, 24);
VMB_LAYOUT_FIELD(VmbFeatureEnumEntry_t, description, 32);
VMB_LAYOUT_FIELD(VmbFeatureEnumEntry_t, sfncNamespace, 40);
VMB_LAYOUT_FIELD(VmbFeatureEnumEntry_t, intValue, 48);

VMB_LAYOUT_SIZE(VmbFrame_t, 104);
VMB_LAYOUT_FIELD(VmbFrame_t, buffer, 0);
VMB_LAYOUT_FIELD(VmbFrame_t, bufferSize, 8);
VMB_LAYOUT_FIELD(VmbFrame_t, context, 16);
VMB_LAYOUT_FIELD(VmbFrame_t, receiveStatus, 48);
VMB_LAYOUT_FIELD(VmbFrame_t, receiveFlags, 52);
VMB_LAYOUT_FIELD(VmbFrame_t, imageSize, 56);
VMB_LAYOUT_FIELD(VmbFrame_t, ancillarySize, 60);
VMB_LAYOUT_FIELD(VmbFrame_t, pixelFormat, 64);
VMB_LAYOUT_FIELD(VmbFrame_t, width, 68);
VMB_LAYOUT_FIELD(VmbFrame_t, height, 72);
VMB_LAYOUT_FIELD(VmbFrame_t, offsetX, 76);
VMB_LAYOUT_FIELD(VmbFrame_t, offsetY, 80);
VMB_LAYOUT_FIELD(VmbFrame_t, frameID, 88);
VMB_LAYOUT_FIELD(VmbFrame_t, timestamp, 96);

VMB_LAYOUT_SIZE(VmbFeaturePersistSettings_t, 12);
VMB_LAYOUT_FIELD(VmbFeaturePersistSettings_t, persistType, 0);
VMB_LAYOUT_FIELD(VmbFeaturePersistSettings_t, maxIterations, 4);
VMB_LAYOUT_FIELD(VmbFeaturePersistSettings_t, loggingLevel, 8);

#undef VMB_LAYOUT_SIZE
#undef VMB_LAYOUT_FIELD
// NOLINTEND
