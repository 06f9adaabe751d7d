/// The binary interface as the library has it: sizes, offsets, signs and numbers, checked by the compiler.
#include <stddef.h>
#include <stdint.h>

#include "vimba_c_types.h"

#define SIZE(type, size) _Static_assert(sizeof(type) == (size), "size of " #type)
#define FIELD(type, field, offset) _Static_assert(offsetof(type, field) == (offset), #type "." #field)
#define NUMBER(name, number) _Static_assert((long long)(name) == (number), #name)
#define IS_SIGNED(type) _Static_assert((type)-1 < (type)0, #type " is signed")
#define IS_UNSIGNED(type) _Static_assert((type)-1 > (type)0, #type " is unsigned")

SIZE(VmbInt8_t, 1);
SIZE(VmbUint8_t, 1);
SIZE(VmbInt16_t, 2);
SIZE(VmbUint16_t, 2);
SIZE(VmbInt32_t, 4);
SIZE(VmbUint32_t, 4);
SIZE(VmbInt64_t, 8);
SIZE(VmbUint64_t, 8);
SIZE(VmbBool_t, 1);
SIZE(VmbHandle_t, 8);
SIZE(VmbError_t, 4);
SIZE(VmbAccessMode_t, 4);
SIZE(VmbInterface_t, 4);
SIZE(VmbFeatureData_t, 4);
SIZE(VmbFeatureFlags_t, 4);
SIZE(VmbFeatureVisibility_t, 4);
SIZE(VmbFrameStatus_t, 4);
SIZE(VmbFrameFlags_t, 4);
SIZE(VmbFeaturePersist_t, 4);
SIZE(VmbPixelFormat_t, 4);
SIZE(VmbFrameCallback, 8);
SIZE(VmbInvalidationCallback, 8);
IS_SIGNED(VmbInt8_t);
IS_SIGNED(VmbInt16_t);
IS_SIGNED(VmbInt32_t);
IS_SIGNED(VmbInt64_t);
IS_SIGNED(VmbError_t);
IS_SIGNED(VmbFrameStatus_t);
IS_UNSIGNED(VmbUint8_t);
IS_UNSIGNED(VmbUint16_t);
IS_UNSIGNED(VmbUint32_t);
IS_UNSIGNED(VmbUint64_t);
IS_UNSIGNED(VmbAccessMode_t);
IS_UNSIGNED(VmbInterface_t);
IS_UNSIGNED(VmbFeatureData_t);
IS_UNSIGNED(VmbFeatureFlags_t);
IS_UNSIGNED(VmbFeatureVisibility_t);
IS_UNSIGNED(VmbFrameFlags_t);
IS_UNSIGNED(VmbFeaturePersist_t);
IS_UNSIGNED(VmbPixelFormat_t);
NUMBER(VMBINFINITE, 0xFFFFFFFFLL);

SIZE(VmbVersionInfo_t, 12);
FIELD(VmbVersionInfo_t, major, 0);
FIELD(VmbVersionInfo_t, minor, 4);
FIELD(VmbVersionInfo_t, patch, 8);

SIZE(VmbInterfaceInfo_t, 40);
FIELD(VmbInterfaceInfo_t, interfaceIdString, 0);
FIELD(VmbInterfaceInfo_t, interfaceType, 8);
FIELD(VmbInterfaceInfo_t, interfaceName, 16);
FIELD(VmbInterfaceInfo_t, serialString, 24);
FIELD(VmbInterfaceInfo_t, permittedAccess, 32);

SIZE(VmbCameraInfo_t, 48);
FIELD(VmbCameraInfo_t, cameraIdString, 0);
FIELD(VmbCameraInfo_t, cameraName, 8);
FIELD(VmbCameraInfo_t, modelName, 16);
FIELD(VmbCameraInfo_t, serialString, 24);
FIELD(VmbCameraInfo_t, permittedAccess, 32);
FIELD(VmbCameraInfo_t, interfaceIdString, 40);

SIZE(VmbFeatureInfo_t, 96);
FIELD(VmbFeatureInfo_t, name, 0);
FIELD(VmbFeatureInfo_t, featureDataType, 8);
FIELD(VmbFeatureInfo_t, featureFlags, 12);
FIELD(VmbFeatureInfo_t, category, 16);
FIELD(VmbFeatureInfo_t, displayName, 24);
FIELD(VmbFeatureInfo_t, pollingTime, 32);
FIELD(VmbFeatureInfo_t, unit, 40);
FIELD(VmbFeatureInfo_t, representation, 48);
FIELD(VmbFeatureInfo_t, visibility, 56);
FIELD(VmbFeatureInfo_t, tooltip, 64);
FIELD(VmbFeatureInfo_t, description, 72);
FIELD(VmbFeatureInfo_t, sfncNamespace, 80);
FIELD(VmbFeatureInfo_t, isStreamable, 88);
FIELD(VmbFeatureInfo_t, hasAffectedFeatures, 89);
FIELD(VmbFeatureInfo_t, hasSelectedFeatures, 90);

SIZE(VmbFeatureEnumEntry_t, 56);
FIELD(VmbFeatureEnumEntry_t, name, 0);
FIELD(VmbFeatureEnumEntry_t, displayName, 8);
FIELD(VmbFeatureEnumEntry_t, visibility, 16);
FIELD(VmbFeatureEnumEntry_t, tooltip, 24);
FIELD(VmbFeatureEnumEntry_t, description, 32);
FIELD(VmbFeatureEnumEntry_t, sfncNamespace, 40);
FIELD(VmbFeatureEnumEntry_t, intValue, 48);

SIZE(VmbFrame_t, 104);
FIELD(VmbFrame_t, buffer, 0);
FIELD(VmbFrame_t, bufferSize, 8);
FIELD(VmbFrame_t, context, 16);
FIELD(VmbFrame_t, receiveStatus, 48);
FIELD(VmbFrame_t, receiveFlags, 52);
FIELD(VmbFrame_t, imageSize, 56);
FIELD(VmbFrame_t, ancillarySize, 60);
FIELD(VmbFrame_t, pixelFormat, 64);
FIELD(VmbFrame_t, width, 68);
FIELD(VmbFrame_t, height, 72);
FIELD(VmbFrame_t, offsetX, 76);
FIELD(VmbFrame_t, offsetY, 80);
FIELD(VmbFrame_t, frameID, 88);
FIELD(VmbFrame_t, timestamp, 96);

SIZE(VmbFeaturePersistSettings_t, 12);
FIELD(VmbFeaturePersistSettings_t, persistType, 0);
FIELD(VmbFeaturePersistSettings_t, maxIterations, 4);
FIELD(VmbFeaturePersistSettings_t, loggingLevel, 8);

NUMBER(VmbErrorSuccess, 0);
NUMBER(VmbErrorInternalFault, -1);
NUMBER(VmbErrorApiNotStarted, -2);
NUMBER(VmbErrorNotFound, -3);
NUMBER(VmbErrorBadHandle, -4);
NUMBER(VmbErrorDeviceNotOpen, -5);
NUMBER(VmbErrorInvalidAccess, -6);
NUMBER(VmbErrorBadParameter, -7);
NUMBER(VmbErrorStructSize, -8);
NUMBER(VmbErrorMoreData, -9);
NUMBER(VmbErrorWrongType, -10);
NUMBER(VmbErrorInvalidValue, -11);
NUMBER(VmbErrorTimeout, -12);
NUMBER(VmbErrorOther, -13);
NUMBER(VmbErrorResources, -14);
NUMBER(VmbErrorInvalidCall, -15);
NUMBER(VmbErrorNoTL, -16);
NUMBER(VmbErrorNotImplemented, -17);
NUMBER(VmbErrorNotSupported, -18);
NUMBER(VmbErrorIncomplete, -19);
NUMBER(VmbErrorIO, -20);

NUMBER(VmbAccessModeNone, 0);
NUMBER(VmbAccessModeFull, 1);
NUMBER(VmbAccessModeRead, 2);
NUMBER(VmbAccessModeConfig, 4);
NUMBER(VmbAccessModeLite, 8);
NUMBER(VmbFeatureDataUnknown, 0);
NUMBER(VmbFeatureDataInt, 1);
NUMBER(VmbFeatureDataFloat, 2);
NUMBER(VmbFeatureDataEnum, 3);
NUMBER(VmbFeatureDataString, 4);
NUMBER(VmbFeatureDataBool, 5);
NUMBER(VmbFeatureDataCommand, 6);
NUMBER(VmbFeatureDataRaw, 7);
NUMBER(VmbFeatureDataNone, 8);
NUMBER(VmbFeatureFlagsNone, 0);
NUMBER(VmbFeatureFlagsRead, 1);
NUMBER(VmbFeatureFlagsWrite, 2);
NUMBER(VmbFeatureFlagsVolatile, 8);
NUMBER(VmbFeatureFlagsModifyWrite, 16);
NUMBER(VmbFeatureVisibilityUnknown, 0);
NUMBER(VmbFeatureVisibilityBeginner, 1);
NUMBER(VmbFeatureVisibilityExpert, 2);
NUMBER(VmbFeatureVisibilityGuru, 3);
NUMBER(VmbFeatureVisibilityInvisible, 4);
NUMBER(VmbInterfaceUnknown, 0);
NUMBER(VmbInterfaceFirewire, 1);
NUMBER(VmbInterfaceEthernet, 2);
NUMBER(VmbInterfaceUsb, 3);
NUMBER(VmbInterfaceCL, 4);
NUMBER(VmbInterfaceCSI2, 5);
NUMBER(VmbFrameStatusComplete, 0);
NUMBER(VmbFrameStatusIncomplete, -1);
NUMBER(VmbFrameStatusTooSmall, -2);
NUMBER(VmbFrameStatusInvalid, -3);
NUMBER(VmbFrameFlagsNone, 0);
NUMBER(VmbFrameFlagsDimension, 1);
NUMBER(VmbFrameFlagsOffset, 2);
NUMBER(VmbFrameFlagsFrameID, 4);
NUMBER(VmbFrameFlagsTimestamp, 8);
NUMBER(VmbFeaturePersistAll, 0);
NUMBER(VmbFeaturePersistStreamable, 1);
NUMBER(VmbFeaturePersistNoLUT, 2);

NUMBER(VmbPixelFormatMono8, 0x01080001);
NUMBER(VmbPixelFormatMono12, 0x01100005);
NUMBER(VmbPixelFormatMono12Packed, 0x010C0006);
NUMBER(VmbPixelFormatRgb8, 0x02180014);
NUMBER(VmbPixelFormatBgr8, 0x02180015);
NUMBER(VmbPixelFormatYuv411, 0x020C001E);
NUMBER(VmbPixelFormatYuv422, 0x0210001F);
NUMBER(VmbPixelFormatYuv444, 0x02180020);
