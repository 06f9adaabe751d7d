/// Functions of the camera vendor's C library `VimbaC` 1.x: our own declarations of its published binary
/// interface (58 functions, undecorated names, the platform's ordinary C calling convention).
///
/// All return 0 or a negative error code, except VmbShutdown. Features are addressed by their names.
#pragma once

#include "vimba_c_types.h"

// NOLINTBEGIN: a C header, its names and idioms are the vendor's
#if defined(_WIN32)
#if defined(VIMBAC_EXPORTS)
#define IMEXPORTC __declspec(dllexport)
#else
#define IMEXPORTC __declspec(dllimport)
#endif
#else
#define IMEXPORTC __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

// Start and stop. VmbVersionQuery works at any time; everything else answers VmbErrorApiNotStarted before
// VmbStartup. VmbShutdown waits for running callbacks, closes cameras and drops registrations.
IMEXPORTC VmbError_t VmbVersionQuery(VmbVersionInfo_t* info, VmbUint32_t sizeofInfo);
IMEXPORTC VmbError_t VmbStartup(void);
IMEXPORTC void VmbShutdown(void);

// Cameras. Lists are asked for twice: with a null array for the count, then with room for it. A short array
// is filled as far as it goes, with the total in `found` and the result VmbErrorMoreData.
IMEXPORTC VmbError_t VmbCamerasList(VmbCameraInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                                    VmbUint32_t sizeofInfo);
IMEXPORTC VmbError_t VmbCameraInfoQuery(const char* id, VmbCameraInfo_t* info, VmbUint32_t sizeofInfo);
IMEXPORTC VmbError_t VmbCameraOpen(const char* id, VmbAccessMode_t accessMode, VmbHandle_t* handle);
IMEXPORTC VmbError_t VmbCameraClose(const VmbHandle_t handle);

// Features, by name, of a camera or of the system handle.
IMEXPORTC VmbError_t VmbFeaturesList(const VmbHandle_t handle, VmbFeatureInfo_t* array, VmbUint32_t length,
                                     VmbUint32_t* found, VmbUint32_t sizeofInfo);
IMEXPORTC VmbError_t VmbFeatureInfoQuery(const VmbHandle_t handle, const char* name, VmbFeatureInfo_t* info,
                                         VmbUint32_t sizeofInfo);
IMEXPORTC VmbError_t VmbFeatureListAffected(const VmbHandle_t handle, const char* name,
                                            VmbFeatureInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                                            VmbUint32_t sizeofInfo);
IMEXPORTC VmbError_t VmbFeatureListSelected(const VmbHandle_t handle, const char* name,
                                            VmbFeatureInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                                            VmbUint32_t sizeofInfo);
IMEXPORTC VmbError_t VmbFeatureAccessQuery(const VmbHandle_t handle, const char* name, VmbBool_t* readable,
                                           VmbBool_t* writeable);
IMEXPORTC VmbError_t VmbFeatureIntGet(const VmbHandle_t handle, const char* name, VmbInt64_t* value);
IMEXPORTC VmbError_t VmbFeatureIntSet(const VmbHandle_t handle, const char* name, VmbInt64_t value);
IMEXPORTC VmbError_t VmbFeatureIntRangeQuery(const VmbHandle_t handle, const char* name, VmbInt64_t* min,
                                             VmbInt64_t* max);
IMEXPORTC VmbError_t VmbFeatureIntIncrementQuery(const VmbHandle_t handle, const char* name,
                                                 VmbInt64_t* increment);
IMEXPORTC VmbError_t VmbFeatureFloatGet(const VmbHandle_t handle, const char* name, double* value);
IMEXPORTC VmbError_t VmbFeatureFloatSet(const VmbHandle_t handle, const char* name, double value);
IMEXPORTC VmbError_t VmbFeatureFloatRangeQuery(const VmbHandle_t handle, const char* name, double* min,
                                               double* max);
IMEXPORTC VmbError_t VmbFeatureFloatIncrementQuery(const VmbHandle_t handle, const char* name,
                                                   VmbBool_t* hasIncrement, double* increment);
IMEXPORTC VmbError_t VmbFeatureEnumGet(const VmbHandle_t handle, const char* name, const char** value);
IMEXPORTC VmbError_t VmbFeatureEnumSet(const VmbHandle_t handle, const char* name, const char* value);
IMEXPORTC VmbError_t VmbFeatureEnumRangeQuery(const VmbHandle_t handle, const char* name, const char** array,
                                              VmbUint32_t length, VmbUint32_t* filled);
IMEXPORTC VmbError_t VmbFeatureEnumIsAvailable(const VmbHandle_t handle, const char* name, const char* value,
                                               VmbBool_t* available);
IMEXPORTC VmbError_t VmbFeatureEnumAsInt(const VmbHandle_t handle, const char* name, const char* value,
                                         VmbInt64_t* number);
IMEXPORTC VmbError_t VmbFeatureEnumAsString(const VmbHandle_t handle, const char* name, VmbInt64_t number,
                                            const char** value);
IMEXPORTC VmbError_t VmbFeatureEnumEntryGet(const VmbHandle_t handle, const char* name, const char* entryName,
                                            VmbFeatureEnumEntry_t* entry, VmbUint32_t sizeofEntry);
IMEXPORTC VmbError_t VmbFeatureStringGet(const VmbHandle_t handle, const char* name, char* buffer,
                                         VmbUint32_t size, VmbUint32_t* filled);
IMEXPORTC VmbError_t VmbFeatureStringSet(const VmbHandle_t handle, const char* name, const char* value);
IMEXPORTC VmbError_t VmbFeatureStringMaxlengthQuery(const VmbHandle_t handle, const char* name,
                                                    VmbUint32_t* maxLength);
IMEXPORTC VmbError_t VmbFeatureBoolGet(const VmbHandle_t handle, const char* name, VmbBool_t* value);
IMEXPORTC VmbError_t VmbFeatureBoolSet(const VmbHandle_t handle, const char* name, VmbBool_t value);
IMEXPORTC VmbError_t VmbFeatureCommandRun(const VmbHandle_t handle, const char* name);
IMEXPORTC VmbError_t VmbFeatureCommandIsDone(const VmbHandle_t handle, const char* name, VmbBool_t* done);
IMEXPORTC VmbError_t VmbFeatureRawGet(const VmbHandle_t handle, const char* name, char* buffer,
                                      VmbUint32_t size, VmbUint32_t* filled);
IMEXPORTC VmbError_t VmbFeatureRawSet(const VmbHandle_t handle, const char* name, const char* buffer,
                                      VmbUint32_t size);
IMEXPORTC VmbError_t VmbFeatureRawLengthQuery(const VmbHandle_t handle, const char* name,
                                              VmbUint32_t* length);

// Notification that a feature's value or state may have changed.
IMEXPORTC VmbError_t VmbFeatureInvalidationRegister(const VmbHandle_t handle, const char* name,
                                                    VmbInvalidationCallback callback, void* userContext);
IMEXPORTC VmbError_t VmbFeatureInvalidationUnregister(const VmbHandle_t handle, const char* name,
                                                      VmbInvalidationCallback callback);

// Frames: announced, queued in order, returned by one callback per queueing, revoked.
IMEXPORTC VmbError_t VmbFrameAnnounce(const VmbHandle_t handle, const VmbFrame_t* frame,
                                      VmbUint32_t sizeofFrame);
IMEXPORTC VmbError_t VmbFrameRevoke(const VmbHandle_t handle, const VmbFrame_t* frame);
IMEXPORTC VmbError_t VmbFrameRevokeAll(const VmbHandle_t handle);
IMEXPORTC VmbError_t VmbCaptureStart(const VmbHandle_t handle);
IMEXPORTC VmbError_t VmbCaptureEnd(const VmbHandle_t handle);
IMEXPORTC VmbError_t VmbCaptureFrameQueue(const VmbHandle_t handle, const VmbFrame_t* frame,
                                          VmbFrameCallback callback);
IMEXPORTC VmbError_t VmbCaptureFrameWait(const VmbHandle_t handle, const VmbFrame_t* frame,
                                         VmbUint32_t timeoutMs);
IMEXPORTC VmbError_t VmbCaptureQueueFlush(const VmbHandle_t handle);

// Interfaces, ancillary data, registers, settings files.
IMEXPORTC VmbError_t VmbInterfacesList(VmbInterfaceInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                                       VmbUint32_t sizeofInfo);
IMEXPORTC VmbError_t VmbInterfaceOpen(const char* id, VmbHandle_t* handle);
IMEXPORTC VmbError_t VmbInterfaceClose(const VmbHandle_t handle);
IMEXPORTC VmbError_t VmbAncillaryDataOpen(VmbFrame_t* frame, VmbHandle_t* ancillaryHandle);
IMEXPORTC VmbError_t VmbAncillaryDataClose(const VmbHandle_t ancillaryHandle);
IMEXPORTC VmbError_t VmbMemoryRead(const VmbHandle_t handle, VmbUint64_t address, VmbUint32_t size,
                                   char* buffer, VmbUint32_t* done);
IMEXPORTC VmbError_t VmbMemoryWrite(const VmbHandle_t handle, VmbUint64_t address, VmbUint32_t size,
                                    const char* buffer, VmbUint32_t* done);
IMEXPORTC VmbError_t VmbRegistersRead(const VmbHandle_t handle, VmbUint32_t count,
                                      const VmbUint64_t* addresses, VmbUint64_t* data, VmbUint32_t* done);
IMEXPORTC VmbError_t VmbRegistersWrite(const VmbHandle_t handle, VmbUint32_t count,
                                       const VmbUint64_t* addresses, const VmbUint64_t* data,
                                       VmbUint32_t* done);
IMEXPORTC VmbError_t VmbCameraSettingsSave(const VmbHandle_t handle, const char* file,
                                           const VmbFeaturePersistSettings_t* settings,
                                           VmbUint32_t sizeofSettings);
IMEXPORTC VmbError_t VmbCameraSettingsLoad(const VmbHandle_t handle, const char* file,
                                           const VmbFeaturePersistSettings_t* settings,
                                           VmbUint32_t sizeofSettings);

#ifdef __cplusplus
}
#endif
// NOLINTEND
