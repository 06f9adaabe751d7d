/// The vendor's library loaded at run time: nothing is linked, every function is looked up by its name.
#pragma once

#include <stdbool.h>

#include "vimba_simulator.h"

/// What this client calls: the vendor's functions, then the simulator's own.
#define LOADED_FUNCTIONS(ROW)             \
    ROW(VmbVersionQuery)                  \
    ROW(VmbStartup)                       \
    ROW(VmbShutdown)                      \
    ROW(VmbCamerasList)                   \
    ROW(VmbCameraInfoQuery)               \
    ROW(VmbCameraOpen)                    \
    ROW(VmbCameraClose)                   \
    ROW(VmbFeatureInfoQuery)              \
    ROW(VmbFeatureAccessQuery)            \
    ROW(VmbFeatureIntGet)                 \
    ROW(VmbFeatureIntSet)                 \
    ROW(VmbFeatureIntRangeQuery)          \
    ROW(VmbFeatureIntIncrementQuery)      \
    ROW(VmbFeatureFloatGet)               \
    ROW(VmbFeatureFloatSet)               \
    ROW(VmbFeatureFloatRangeQuery)        \
    ROW(VmbFeatureEnumGet)                \
    ROW(VmbFeatureEnumSet)                \
    ROW(VmbFeatureEnumRangeQuery)         \
    ROW(VmbFeatureEnumAsInt)              \
    ROW(VmbFeatureStringGet)              \
    ROW(VmbFeatureStringSet)              \
    ROW(VmbFeatureStringMaxlengthQuery)   \
    ROW(VmbFeatureBoolGet)                \
    ROW(VmbFeatureBoolSet)                \
    ROW(VmbFeatureCommandRun)             \
    ROW(VmbFeatureCommandIsDone)          \
    ROW(VmbFeatureRawGet)                 \
    ROW(VmbFeatureRawSet)                 \
    ROW(VmbFeatureRawLengthQuery)         \
    ROW(VmbFeatureInvalidationRegister)   \
    ROW(VmbFeatureInvalidationUnregister) \
    ROW(VmbFrameAnnounce)                 \
    ROW(VmbFrameRevokeAll)                \
    ROW(VmbCaptureStart)                  \
    ROW(VmbCaptureEnd)                    \
    ROW(VmbCaptureFrameQueue)             \
    ROW(VmbCaptureFrameWait)              \
    ROW(VmbCaptureQueueFlush)             \
    ROW(VmbSimLoadScenario)               \
    ROW(VmbSimFailCall)                   \
    ROW(VmbSimUnplugCamera)               \
    ROW(VmbSimPlugCamera)                 \
    ROW(VmbSimWaitForFrames)              \
    ROW(VmbSimWaitForEvents)              \
    ROW(VmbSimSetOscillator)              \
    ROW(VmbSimReadStamp)

typedef struct LoadedLibrary {
#define LOADED_MEMBER(name) __typeof__(name)* name;
    LOADED_FUNCTIONS(LOADED_MEMBER)
#undef LOADED_MEMBER
} LoadedLibrary;

/// The functions, once loadLibrary was successful.
extern LoadedLibrary api;

/// The file name of the library on this system.
extern const char* const kLibraryName;

/// Loads a library, for good; says on the standard output what is missing.
bool loadLibrary(const char* path);
