/// Control interface of the VimbaC simulator: a few C functions beside the vendor's 58, exported by the same
/// library. A program that wants them looks them up at run time in the loaded vendor library; when they are
/// absent, the library is the vendor's own.
///
/// [any thread] All functions may be called from any thread. They return the vendor's error codes:
/// VmbErrorNotFound for an unknown name or camera id, VmbErrorBadParameter for a null pointer,
/// VmbErrorDeviceNotOpen for what concerns an open camera when it is not open.
#pragma once

#include "vimba_c.h"

// NOLINTBEGIN: a C header
#ifdef __cplusplus
extern "C" {
#endif

// Scenarios ---------------------------------------------------------------------------------------------

/// Environment variable that names the scenario to start with; without it "two-cameras".
#define VMBSIM_SCENARIO_VARIABLE "VIMBAC_SIMULATOR_SCENARIO"

/// Name of the scenario that is loaded.
IMEXPORTC const char* VmbSimScenarioName(void);

/// Loads a scenario: "two-cameras" or "zero-cameras". Everything starts afresh: cameras and their settings,
/// faults, the journal. VmbErrorInvalidCall while the library is started.
IMEXPORTC VmbError_t VmbSimLoadScenario(const char* name);

// Cameras -----------------------------------------------------------------------------------------------

/// Pulls a camera's cable, or plugs it in again. Answers at once; with automatic discovery on, the event
/// follows on the discovery thread. A camera that was unplugged comes back with its power-up settings.
IMEXPORTC VmbError_t VmbSimUnplugCamera(const char* cameraId);
IMEXPORTC VmbError_t VmbSimPlugCamera(const char* cameraId);

/// Pulls an interface's cable, or plugs it in again. The interface's cameras are powered through it: they go
/// and come as with their own cables.
IMEXPORTC VmbError_t VmbSimUnplugInterface(const char* interfaceId);
IMEXPORTC VmbError_t VmbSimPlugInterface(const char* interfaceId);

/// Another program takes control of a camera, or gives it back; meanwhile it can only be opened for reading.
/// VmbErrorInvalidAccess while this program has it open with full access.
IMEXPORTC VmbError_t VmbSimTakeControl(const char* cameraId, VmbBool_t taken);

/// Raises "DiscoveryCameraEvent" on the discovery thread with any texts, whether they make sense or not.
IMEXPORTC VmbError_t VmbSimRaiseDiscoveryEvent(const char* event, const char* ident);

/// Takes a feature away from a camera, as if its firmware never had it, until the next scenario. A null
/// camera id here and in the next function means the library's own features.
IMEXPORTC VmbError_t VmbSimRemoveFeature(const char* cameraId, const char* feature);

/// Sets a feature's value past all access rights, ranges and events, from its text form; the model then
/// leaves the value alone until a client sets it or an event brings another.
IMEXPORTC VmbError_t VmbSimForceFeature(const char* cameraId, const char* feature, const char* text);

// Faults ------------------------------------------------------------------------------------------------

/// Makes the `nth` call (1 is the next) of a vendor function fail with a code, without any other effect.
/// With `argument` not null only calls count whose first text argument (feature name or camera id) equals
/// it. Faults add up; each strikes once. A negative `nth` makes every call from the -nth on fail.
IMEXPORTC VmbError_t VmbSimFailCall(const char* function, const char* argument, VmbInt32_t nth,
                                    VmbError_t code);

/// The camera's next frames are exposed and numbered, but never arrive / arrive incomplete (status -1, short
/// image size) / arrive in a callback with this receive status.
IMEXPORTC VmbError_t VmbSimLoseFrames(const char* cameraId, VmbUint32_t count);
IMEXPORTC VmbError_t VmbSimBreakFrames(const char* cameraId, VmbUint32_t count, VmbFrameStatus_t status);

/// Drops every fault that has not struck yet.
IMEXPORTC void VmbSimClearFaults(void);

// Observing and driving -----------------------------------------------------------------------------------

/// Waits until the camera has called the frame callback `count` times since its capture started;
/// VmbErrorTimeout after `timeoutMs` milliseconds. A call counts when it has returned.
IMEXPORTC VmbError_t VmbSimWaitForFrames(const char* cameraId, VmbUint64_t count, VmbUint32_t timeoutMs);

/// Waits until every event raised so far (discovery, features) has been delivered and its callback returned;
/// also for a round of discovery and a stop of acquisition that are under way. Not from a callback.
IMEXPORTC VmbError_t VmbSimWaitForEvents(VmbUint32_t timeoutMs);

/// While held, an acquiring camera exposes nothing; everything else goes on.
IMEXPORTC VmbError_t VmbSimHoldSensor(const char* cameraId, VmbBool_t hold);

/// Takes the camera's oldest queued frame away from it together with its callback, so that a test can call
/// the callback itself, on its own thread: `callback(handle, frame)`. VmbErrorNotFound when none is queued.
IMEXPORTC VmbError_t VmbSimTakeQueuedFrame(const char* cameraId, VmbHandle_t* handle, VmbFrame_t** frame,
                                           VmbFrameCallback* callback);

/// Counts of what the camera holds now: announced and queued frames.
IMEXPORTC VmbError_t VmbSimFrameCounts(const char* cameraId, VmbUint32_t* announced, VmbUint32_t* queued);

// Journal -------------------------------------------------------------------------------------------------

/// Switches the journal of vendor calls on (empty) or off. Off by default, and then without cost.
IMEXPORTC void VmbSimJournalStart(void);
IMEXPORTC void VmbSimJournalStop(void);

/// Copies the journal as text and returns the size needed with its terminating zero; `buffer` may be null.
/// One line per call, in the order in which the calls returned:
///   [host] VmbFeatureEnumSet(DEV_000F31A10001, "EventSelector", "AcquisitionStart") = 0
/// The bracket names the calling thread: host, or the library's own frame, event or discovery. Handles are
/// written as the camera's or interface's id ("system" for the library's own, "ancillary data" for a
/// frame's, "bad handle" otherwise), frames as "frame N" in order of announcement, texts in quotes, numbers
/// plainly, callbacks, contexts and memory not at all. A successful get has its value behind the result:
/// `= 0, 656`. A fault leaves its code as the result.
IMEXPORTC size_t VmbSimJournalText(char* buffer, size_t size);

// Time and truth --------------------------------------------------------------------------------------------

/// The simulator's true time: nanoseconds of the system's monotonic clock.
IMEXPORTC VmbUint64_t VmbSimTime(void);

/// What every complete frame carries in its first bytes.
typedef struct VmbSimFrameStamp {
    VmbUint64_t frameId;
    VmbUint64_t cameraTicks;      ///< camera clock at the start of exposure, as in the frame record
    VmbUint64_t exposureStartNs;  ///< true start of exposure, VmbSimTime
    VmbUint64_t wayNs;            ///< nominal time from there to the callback: exposure, readout, transfer
    VmbUint32_t width;
    VmbUint32_t height;
} VmbSimFrameStamp;

/// Reads the stamp of a recorded image and checks the whole picture against it; `size` is the frame's
/// imageSize, without what chunk mode puts behind the picture. VmbErrorNotFound: no stamp.
/// VmbErrorIncomplete: the stamp is there, but the picture is not the one that the camera sent with it.
IMEXPORTC VmbError_t VmbSimReadStamp(const void* image, VmbUint64_t size, VmbSimFrameStamp* stamp);

#ifdef __cplusplus
}
#endif
// NOLINTEND
