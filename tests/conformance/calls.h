/// Stands between the tests and the library: every call is counted by its outcome, so that main can tell
/// which functions were never seen to succeed or to fail. A test includes this instead of vimba_c.h;
/// what only prepares or clears up includes vimba_c.h and stays uncounted.
#pragma once

#include "vimba_c.h"

/// Which outcomes the tests must have met. A start that fails cannot be provoked. Not every camera has a raw
/// feature or a text that can be written: there success is asked for unless a test says it is impossible.
typedef enum { SUCCEEDS_AND_FAILS, NEVER_FAILS, SUCCEEDS_IF_OFFERED } Outcomes;

// clang-format off
#define VMB_FUNCTIONS(X) \
    X(VmbVersionQuery, SUCCEEDS_AND_FAILS) \
    X(VmbStartup, NEVER_FAILS) \
    X(VmbShutdown, NEVER_FAILS) \
    X(VmbCamerasList, SUCCEEDS_AND_FAILS) \
    X(VmbCameraInfoQuery, SUCCEEDS_AND_FAILS) \
    X(VmbCameraOpen, SUCCEEDS_AND_FAILS) \
    X(VmbCameraClose, SUCCEEDS_AND_FAILS) \
    X(VmbFeaturesList, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureInfoQuery, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureListAffected, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureListSelected, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureAccessQuery, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureIntGet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureIntSet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureIntRangeQuery, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureIntIncrementQuery, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureFloatGet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureFloatSet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureFloatRangeQuery, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureFloatIncrementQuery, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureEnumGet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureEnumSet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureEnumRangeQuery, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureEnumIsAvailable, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureEnumAsInt, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureEnumAsString, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureEnumEntryGet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureStringGet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureStringSet, SUCCEEDS_IF_OFFERED) \
    X(VmbFeatureStringMaxlengthQuery, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureBoolGet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureBoolSet, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureCommandRun, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureCommandIsDone, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureRawGet, SUCCEEDS_IF_OFFERED) \
    X(VmbFeatureRawSet, SUCCEEDS_IF_OFFERED) \
    X(VmbFeatureRawLengthQuery, SUCCEEDS_IF_OFFERED) \
    X(VmbFeatureInvalidationRegister, SUCCEEDS_AND_FAILS) \
    X(VmbFeatureInvalidationUnregister, SUCCEEDS_AND_FAILS) \
    X(VmbFrameAnnounce, SUCCEEDS_AND_FAILS) \
    X(VmbFrameRevoke, SUCCEEDS_AND_FAILS) \
    X(VmbFrameRevokeAll, SUCCEEDS_AND_FAILS) \
    X(VmbCaptureStart, SUCCEEDS_AND_FAILS) \
    X(VmbCaptureEnd, SUCCEEDS_AND_FAILS) \
    X(VmbCaptureFrameQueue, SUCCEEDS_AND_FAILS) \
    X(VmbCaptureFrameWait, SUCCEEDS_AND_FAILS) \
    X(VmbCaptureQueueFlush, SUCCEEDS_AND_FAILS) \
    X(VmbInterfacesList, SUCCEEDS_AND_FAILS) \
    X(VmbInterfaceOpen, SUCCEEDS_AND_FAILS) \
    X(VmbInterfaceClose, SUCCEEDS_AND_FAILS) \
    X(VmbAncillaryDataOpen, SUCCEEDS_AND_FAILS) \
    X(VmbAncillaryDataClose, SUCCEEDS_AND_FAILS) \
    X(VmbMemoryRead, SUCCEEDS_AND_FAILS) \
    X(VmbMemoryWrite, SUCCEEDS_AND_FAILS) \
    X(VmbRegistersRead, SUCCEEDS_AND_FAILS) \
    X(VmbRegistersWrite, SUCCEEDS_AND_FAILS) \
    X(VmbCameraSettingsSave, SUCCEEDS_AND_FAILS) \
    X(VmbCameraSettingsLoad, SUCCEEDS_AND_FAILS)
// clang-format on

#define CALL_NUMBER(name, outcomes) CALL_##name,
enum { VMB_FUNCTIONS(CALL_NUMBER) CALL_COUNT };
#undef CALL_NUMBER

/// Counts one call by its result and passes the result on; for any thread.
VmbError_t countCall(int function, VmbError_t result);

/// The cameras at hand have nothing on which this function could succeed.
void noteNotOffered(int function);

/// One check for every outcome that had to be met.
void checkThatEveryFunctionWasCovered(void);

// A macro does not expand within itself: the inner name is the library's function.
#define COUNTED(name, arguments) countCall(CALL_##name, name arguments)

// clang-format off
#define VmbShutdown() (VmbShutdown(), (void)countCall(CALL_VmbShutdown, VmbErrorSuccess))
#define VmbVersionQuery(...) COUNTED(VmbVersionQuery, (__VA_ARGS__))
#define VmbStartup(...) COUNTED(VmbStartup, (__VA_ARGS__))
#define VmbCamerasList(...) COUNTED(VmbCamerasList, (__VA_ARGS__))
#define VmbCameraInfoQuery(...) COUNTED(VmbCameraInfoQuery, (__VA_ARGS__))
#define VmbCameraOpen(...) COUNTED(VmbCameraOpen, (__VA_ARGS__))
#define VmbCameraClose(...) COUNTED(VmbCameraClose, (__VA_ARGS__))
#define VmbFeaturesList(...) COUNTED(VmbFeaturesList, (__VA_ARGS__))
#define VmbFeatureInfoQuery(...) COUNTED(VmbFeatureInfoQuery, (__VA_ARGS__))
#define VmbFeatureListAffected(...) COUNTED(VmbFeatureListAffected, (__VA_ARGS__))
#define VmbFeatureListSelected(...) COUNTED(VmbFeatureListSelected, (__VA_ARGS__))
#define VmbFeatureAccessQuery(...) COUNTED(VmbFeatureAccessQuery, (__VA_ARGS__))
#define VmbFeatureIntGet(...) COUNTED(VmbFeatureIntGet, (__VA_ARGS__))
#define VmbFeatureIntSet(...) COUNTED(VmbFeatureIntSet, (__VA_ARGS__))
#define VmbFeatureIntRangeQuery(...) COUNTED(VmbFeatureIntRangeQuery, (__VA_ARGS__))
#define VmbFeatureIntIncrementQuery(...) COUNTED(VmbFeatureIntIncrementQuery, (__VA_ARGS__))
#define VmbFeatureFloatGet(...) COUNTED(VmbFeatureFloatGet, (__VA_ARGS__))
#define VmbFeatureFloatSet(...) COUNTED(VmbFeatureFloatSet, (__VA_ARGS__))
#define VmbFeatureFloatRangeQuery(...) COUNTED(VmbFeatureFloatRangeQuery, (__VA_ARGS__))
#define VmbFeatureFloatIncrementQuery(...) COUNTED(VmbFeatureFloatIncrementQuery, (__VA_ARGS__))
#define VmbFeatureEnumGet(...) COUNTED(VmbFeatureEnumGet, (__VA_ARGS__))
#define VmbFeatureEnumSet(...) COUNTED(VmbFeatureEnumSet, (__VA_ARGS__))
#define VmbFeatureEnumRangeQuery(...) COUNTED(VmbFeatureEnumRangeQuery, (__VA_ARGS__))
#define VmbFeatureEnumIsAvailable(...) COUNTED(VmbFeatureEnumIsAvailable, (__VA_ARGS__))
#define VmbFeatureEnumAsInt(...) COUNTED(VmbFeatureEnumAsInt, (__VA_ARGS__))
#define VmbFeatureEnumAsString(...) COUNTED(VmbFeatureEnumAsString, (__VA_ARGS__))
#define VmbFeatureEnumEntryGet(...) COUNTED(VmbFeatureEnumEntryGet, (__VA_ARGS__))
#define VmbFeatureStringGet(...) COUNTED(VmbFeatureStringGet, (__VA_ARGS__))
#define VmbFeatureStringSet(...) COUNTED(VmbFeatureStringSet, (__VA_ARGS__))
#define VmbFeatureStringMaxlengthQuery(...) COUNTED(VmbFeatureStringMaxlengthQuery, (__VA_ARGS__))
#define VmbFeatureBoolGet(...) COUNTED(VmbFeatureBoolGet, (__VA_ARGS__))
#define VmbFeatureBoolSet(...) COUNTED(VmbFeatureBoolSet, (__VA_ARGS__))
#define VmbFeatureCommandRun(...) COUNTED(VmbFeatureCommandRun, (__VA_ARGS__))
#define VmbFeatureCommandIsDone(...) COUNTED(VmbFeatureCommandIsDone, (__VA_ARGS__))
#define VmbFeatureRawGet(...) COUNTED(VmbFeatureRawGet, (__VA_ARGS__))
#define VmbFeatureRawSet(...) COUNTED(VmbFeatureRawSet, (__VA_ARGS__))
#define VmbFeatureRawLengthQuery(...) COUNTED(VmbFeatureRawLengthQuery, (__VA_ARGS__))
#define VmbFeatureInvalidationRegister(...) COUNTED(VmbFeatureInvalidationRegister, (__VA_ARGS__))
#define VmbFeatureInvalidationUnregister(...) COUNTED(VmbFeatureInvalidationUnregister, (__VA_ARGS__))
#define VmbFrameAnnounce(...) COUNTED(VmbFrameAnnounce, (__VA_ARGS__))
#define VmbFrameRevoke(...) COUNTED(VmbFrameRevoke, (__VA_ARGS__))
#define VmbFrameRevokeAll(...) COUNTED(VmbFrameRevokeAll, (__VA_ARGS__))
#define VmbCaptureStart(...) COUNTED(VmbCaptureStart, (__VA_ARGS__))
#define VmbCaptureEnd(...) COUNTED(VmbCaptureEnd, (__VA_ARGS__))
#define VmbCaptureFrameQueue(...) COUNTED(VmbCaptureFrameQueue, (__VA_ARGS__))
#define VmbCaptureFrameWait(...) COUNTED(VmbCaptureFrameWait, (__VA_ARGS__))
#define VmbCaptureQueueFlush(...) COUNTED(VmbCaptureQueueFlush, (__VA_ARGS__))
#define VmbInterfacesList(...) COUNTED(VmbInterfacesList, (__VA_ARGS__))
#define VmbInterfaceOpen(...) COUNTED(VmbInterfaceOpen, (__VA_ARGS__))
#define VmbInterfaceClose(...) COUNTED(VmbInterfaceClose, (__VA_ARGS__))
#define VmbAncillaryDataOpen(...) COUNTED(VmbAncillaryDataOpen, (__VA_ARGS__))
#define VmbAncillaryDataClose(...) COUNTED(VmbAncillaryDataClose, (__VA_ARGS__))
#define VmbMemoryRead(...) COUNTED(VmbMemoryRead, (__VA_ARGS__))
#define VmbMemoryWrite(...) COUNTED(VmbMemoryWrite, (__VA_ARGS__))
#define VmbRegistersRead(...) COUNTED(VmbRegistersRead, (__VA_ARGS__))
#define VmbRegistersWrite(...) COUNTED(VmbRegistersWrite, (__VA_ARGS__))
#define VmbCameraSettingsSave(...) COUNTED(VmbCameraSettingsSave, (__VA_ARGS__))
#define VmbCameraSettingsLoad(...) COUNTED(VmbCameraSettingsLoad, (__VA_ARGS__))
// clang-format on
