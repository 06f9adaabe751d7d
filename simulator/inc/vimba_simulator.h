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

/// Environment variable that names the scenario to start with; without it "two-cameras". When there is none
/// of that name, or its file is wrong, VmbStartup answers VmbErrorOther, and the first time a sentence on the
/// standard error stream says why.
#define VMBSIM_SCENARIO_VARIABLE "VIMBAC_SIMULATOR_SCENARIO"

/// Name of the scenario that is loaded, as it was given: that of a ready one, or a path.
IMEXPORTC const char* VmbSimScenarioName(void);

/// Loads a scenario: a ready one by its name, as "two-cameras", or a file: a name with '/' or '\\' or with
/// the ending ".json" is a path. simulator/README.md lists the ready ones, simulator/docs/SCENARIOS.md says
/// what a file contains.
/// Everything starts afresh: cameras and their settings, faults, the journal. VmbErrorNotFound when there is
/// no such scenario or file, VmbErrorBadParameter for a file that is wrong; then the former scenario stays.
/// VmbErrorInvalidCall while the library is started.
///
/// Events of a scenario happen from VmbStartup to VmbShutdown. Those at 0 seconds have happened when
/// VmbStartup returns; of what happens at the same time, events come first. The next VmbStartup begins the
/// events again; what they did to cameras, cables and lines before stays.
IMEXPORTC VmbError_t VmbSimLoadScenario(const char* name);

/// Says what was wrong with the scenario that was named last, by VmbSimLoadScenario or by the environment,
/// and where; empty when nothing was. Copies the text as VmbSimJournalText does.
IMEXPORTC size_t VmbSimScenarioError(char* buffer, size_t size);

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

/// What the camera looks at; its automatic exposure, gain and white balance settle on it.
typedef struct VmbSimScene {
    double percentPerMillisecond;  ///< mean level, in percent of the highest, per millisecond at gain 0 dB
    double red;                    ///< ratios of the white balance that make its grey grey
    double blue;                   ///< likewise
} VmbSimScene;

/// At power-up: half of the highest level at 15 ms, both ratios 1.
IMEXPORTC VmbError_t VmbSimSetScene(const char* cameraId, const VmbSimScene* scene);

/// What the vendor's documentation leaves open. The options are numbered in the order in which they are
/// named here; the first holds for every scenario that was just loaded.
typedef enum VmbSimChoice {
    VmbSimChoiceFrameIdAfterRestart,  ///< of capture: 0 starts at 1, 1 goes on
    VmbSimChoiceFrameIdWidth,         ///< 0 has 64 bits, 1 has 16: 65535 is followed by 1
    VmbSimChoiceQueueBeforeStart,     ///< of capture: 0 accepts, 1 answers VmbErrorInvalidCall
    VmbSimChoiceRepeatedStartup,  ///< 0 is not counted, 1 needs as many shutdowns, 2 is VmbErrorInvalidCall
    VmbSimChoiceSetInCallback     ///< 0 is refused in frame callbacks and for a feature in its own
                                  ///< invalidation callback, 1 only in frame callbacks, 2 nowhere
} VmbSimChoice;

/// VmbErrorNotFound for an unknown choice, VmbErrorInvalidValue for an option that it does not have.
IMEXPORTC VmbError_t VmbSimChoose(VmbSimChoice choice, VmbUint32_t option);

// Network -------------------------------------------------------------------------------------------------

/// The link between an interface's cameras and the host. Chances are in parts of 10^6, up to 10^6. All zero,
/// as at first: each camera has a path of its own, on which nothing happens.
typedef struct VmbSimLink {
    VmbUint64_t bytesPerSecond;  ///< capacity for all cameras, headers included; to 10^12; 0: no limit
    VmbUint64_t bufferBytes;     ///< what may wait for the capacity outside of the cameras, up to 10^12:
                                 ///< packets beyond it are lost; 0: no limit
    VmbUint64_t lateNs;          ///< late frames come by 1 to so many nanoseconds later, up to 10^9
    VmbUint32_t latePpm;         ///< chance of each frame to come late, and those behind it no earlier
    VmbUint32_t largestPacket;   ///< bytes of the largest packet that passes, 500 to 16384; 0 means 8999
    VmbUint32_t lossPpm;         ///< chance of each packet to get lost, also of one that was requested
    VmbUint32_t burstPpm;        ///< chance of each packet that a burst of lost ones begins with it
    VmbUint32_t burstPackets;    ///< length of a burst, which ends with its frame; up to 10^6
    VmbUint32_t reorderPpm;      ///< chance of each packet to be overtaken by others of its frame
    VmbUint32_t reorderPackets;  ///< by so many, up to 10^6
} VmbSimLink;

/// From now on the cameras of an interface send over this link; transfers that have begun stay as they are.
/// The random numbers follow from the seed, the camera and the frame's id. VmbErrorNotFound for an unknown
/// interface, VmbErrorInvalidValue for what is out of range.
IMEXPORTC VmbError_t VmbSimSetLink(const char* interfaceId, const VmbSimLink* link);

/// The camera cannot be reached for so long, 1 to 10^15 nanoseconds from now, and is as before then: with
/// automatic discovery on the events Missing and Detected come, meanwhile it is neither found nor opened, and
/// frames are lost whose transfer falls into that time. It keeps power and settings, calls with open handles
/// go on working. Without effect on a camera without its cable. VmbErrorApiNotStarted before VmbStartup;
/// VmbShutdown ends it.
IMEXPORTC VmbError_t VmbSimHiccup(const char* cameraId, VmbUint64_t ns);

// Clocks and lines ----------------------------------------------------------------------------------------

/// Picks the random numbers of jitter. The same seed gives the same ones; a fresh scenario has 0.
IMEXPORTC void VmbSimSeed(VmbUint64_t seed);

/// A camera's clock.
typedef struct VmbSimOscillator {
    VmbUint64_t tickFrequency;  ///< Hz, 1 to 10^9
    VmbUint64_t startTicks;     ///< of the counter
    VmbInt32_t errorPpb;        ///< how much too fast it is, in parts of 10^9, within 10^6
    VmbInt32_t driftPpb;        ///< the error swings by this much either way, within 10^6 ...
    VmbUint32_t driftPeriodS;   ///< ... once in so many seconds, not 0
    VmbUint32_t jitterNs;       ///< stamps are off by up to so much, evenly spread, either way
} VmbSimOscillator;

/// The camera's clock becomes this one and starts now; so it does whenever the camera is plugged in again.
/// VmbErrorInvalidAccess while it acquires.
IMEXPORTC VmbError_t VmbSimSetOscillator(const char* cameraId, const VmbSimOscillator* oscillator);

/// Pulses at a steady frequency.
typedef struct VmbSimRhythm {
    VmbUint64_t numerator;    ///< of the frequency in Hz; 1 to 10^9
    VmbUint64_t denominator;  ///< 1 to 10^9; at most 10^6 Hz in all
    VmbUint64_t phaseNs;      ///< from now to the first rising edge; at least the jitter
    VmbUint64_t widthNs;      ///< of the pulses, 1 to a quarter of the period
    VmbUint64_t jitterNs;  ///< rising edges are off by up to so much either way, at most a 16th of the period
} VmbSimRhythm;

/// Drives the input "Line1" of one camera, or of every camera for a null id (they then see one signal, its
/// jitter included). The pulse n rises n * denominator / numerator seconds after the first, rounded down to
/// nanoseconds. Whatever drove the line before no longer does, and a high line falls. Nothing is connected to
/// the other lines: they are low.
IMEXPORTC VmbError_t VmbSimDriveLine(const char* cameraId, const VmbSimRhythm* rhythm);

/// Adds pulses that rise at these true times, each not before now and at least four widths after the one
/// before it; a rhythm ends. One pulse, or a recorded list of them.
IMEXPORTC VmbError_t VmbSimPulseLine(const char* cameraId, const VmbUint64_t* times, VmbUint32_t count,
                                     VmbUint64_t widthNs);

/// Nothing drives the line any more; it is low.
IMEXPORTC VmbError_t VmbSimSilenceLine(const char* cameraId);

typedef enum VmbSimPulseFault {
    VmbSimPulseMissing,  ///< does not come
    VmbSimPulseDoubled,  ///< comes again, one width after its end
    VmbSimPulseBouncing  ///< rises three times within an eighth of its width, or 20 microseconds
} VmbSimPulseFault;

/// Spoils pulses: `count` of them from number `first` on. Pulses are counted from 1 since the line was driven
/// or silenced last.
IMEXPORTC VmbError_t VmbSimDisturbLine(const char* cameraId, VmbSimPulseFault fault, VmbUint64_t first,
                                       VmbUint64_t count);

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

/// Pulls the camera's cable, or plugs it in, in the middle of the `nth` call of a function: behind its checks
/// and before it takes effect. Counted are calls that pass their checks, `argument` is as for VmbSimFailCall.
/// VmbErrorNotFound also for VmbVersionQuery, VmbStartup and VmbShutdown.
IMEXPORTC VmbError_t VmbSimCableDuring(const char* cameraId, VmbBool_t plugged, const char* function,
                                       const char* argument, VmbInt32_t nth);

/// Waits until the camera has called the frame callback `count` times since its capture started;
/// VmbErrorTimeout after `timeoutMs` milliseconds. A call counts when it has returned.
IMEXPORTC VmbError_t VmbSimWaitForFrames(const char* cameraId, VmbUint64_t count, VmbUint32_t timeoutMs);

/// Ends the process when a call of the library has waited for so long in real time and nothing happened, as
/// with a lock that is held across VmbCaptureEnd and that the running callback needs: the standard error
/// stream says which call, with the stacks of all threads. 0, the default, lets it wait for ever.
IMEXPORTC void VmbSimSetWatchdog(VmbUint32_t limitMs);

/// Waits until every event raised so far (discovery, features) has been delivered and its callback returned;
/// also for a round of discovery, a hiccup and a stop of acquisition that are under way. Not from a callback.
IMEXPORTC VmbError_t VmbSimWaitForEvents(VmbUint32_t timeoutMs);

/// While held, an acquiring camera exposes nothing; everything else goes on.
IMEXPORTC VmbError_t VmbSimHoldSensor(const char* cameraId, VmbBool_t hold);

/// Takes the camera's oldest queued frame away from it together with its callback, so that a test can call
/// the callback itself, on its own thread: `callback(handle, frame)`. VmbErrorNotFound when none is queued.
IMEXPORTC VmbError_t VmbSimTakeQueuedFrame(const char* cameraId, VmbHandle_t* handle, VmbFrame_t** frame,
                                           VmbFrameCallback* callback);

/// Counts of what the camera holds now: announced and queued frames.
IMEXPORTC VmbError_t VmbSimFrameCounts(const char* cameraId, VmbUint32_t* announced, VmbUint32_t* queued);

/// Counts the frames that an open camera lost since its last AcquisitionStart because none was queued when
/// they came.
IMEXPORTC VmbError_t VmbSimCountUnderruns(const char* cameraId, VmbUint64_t* frames);

/// What the client has of the library and has to give back.
typedef struct VmbSimHoldings {
    VmbUint32_t cameras;        ///< open
    VmbUint32_t interfaces;     ///< open
    VmbUint32_t registrations;  ///< of invalidation callbacks, whatever they are for
    VmbUint32_t announced;      ///< frames of open cameras
} VmbSimHoldings;

/// Counts it; nothing of it outlives VmbShutdown.
IMEXPORTC VmbError_t VmbSimCountHoldings(VmbSimHoldings* holdings);

// Journal -------------------------------------------------------------------------------------------------

/// Switches the journal of vendor calls on (empty) or off. Off by default, and then without cost.
IMEXPORTC void VmbSimJournalStart(void);
IMEXPORTC void VmbSimJournalStop(void);

/// Copies the journal as text and returns the size needed with its terminating zero; `buffer` may be null.
/// One line per call, in the order in which the calls returned:
///   [host] VmbFeatureEnumSet(DEV_000F31A10001, "EventSelector", "AcquisitionStart") = 0
/// The bracket names the calling thread: host, or the library's own frame, event or discovery. Events of a
/// scenario have lines as `[scenario] loseFrames {"camera":"DEV_000F31A10001","count":3} = 0`. Handles are
/// written as the camera's or interface's id ("system" for the library's own, "ancillary data" for a
/// frame's, "bad handle" otherwise), frames as "frame N" in order of announcement, texts in quotes, numbers
/// plainly, callbacks, contexts and memory not at all. A successful get has its value behind the result:
/// `= 0, 656`. A fault leaves its code as the result.
IMEXPORTC size_t VmbSimJournalText(char* buffer, size_t size);

/// What no client should do is recorded as misuse, whether the library puts up with it or not, also while the
/// journal is off: a call after close or without start-up, a frame announced or queued twice, a queued frame
/// revoked, memory freed while its frame is announced (seen when a picture is due and when the frame is
/// revoked or its camera closed; memory of the heap only in programs with the address sanitizer), a callback
/// registered twice, a set or a wait inside a callback. Copies the text as
/// VmbSimJournalText does. One line each, in the journal too, of the call and the reason:
///   [frame] VmbFeatureFloatSet(DEV_000F31A10001, "Gain", 3): misuse: a set inside a callback
IMEXPORTC size_t VmbSimMisuseText(char* buffer, size_t size);
IMEXPORTC void VmbSimClearMisuse(void);

// Time and truth --------------------------------------------------------------------------------------------

/// Chooses between real time, which is the default, and virtual time, which starts at zero and stands still
/// until it is driven; loads the scenario afresh. VmbErrorInvalidCall while the library is started.
///
/// In virtual time the library's threads run only while a client drives time by one of the next two
/// functions, or waits in a call of the library: that call then lets time pass until it is over. One of
/// them runs at a time, in an order that is the same in every run as long as one client thread makes all
/// calls. Callbacks come on the library's threads as ever.
IMEXPORTC VmbError_t VmbSimUseVirtualTime(VmbBool_t on);

/// Lets `ns` nanoseconds pass. Returns when everything that was due until then, at the last of them
/// included, has happened and its callbacks have returned. VmbErrorInvalidCall in real time and in a
/// callback; so for the next one.
IMEXPORTC VmbError_t VmbSimAdvance(VmbUint64_t ns);

/// Lets time pass until nothing is due any more; VmbErrorTimeout when something is left after `ns`.
IMEXPORTC VmbError_t VmbSimRunUntilIdle(VmbUint64_t ns);

/// The simulator's true time: nanoseconds of the system's monotonic clock, or virtual ones.
IMEXPORTC VmbUint64_t VmbSimTime(void);

/// What every complete frame carries in its first bytes.
typedef struct VmbSimFrameStamp {
    VmbUint64_t frameId;          ///< as in the frame record
    VmbUint64_t cameraTicks;      ///< camera clock at the start of exposure, as in the frame record
    VmbUint64_t exposureStartNs;  ///< true start of exposure, VmbSimTime
    VmbUint64_t wayNs;            ///< nominal time from there to the callback: exposure, readout, transfer,
                                  ///< all waiting and requests; without what a late frame is late
    VmbUint32_t width;            ///< pixels
    VmbUint32_t height;           ///< pixels
} VmbSimFrameStamp;

/// Reads the stamp of a recorded image and checks the whole picture against it; `size` is the frame's
/// imageSize, without what chunk mode puts behind the picture. VmbErrorNotFound: no stamp.
/// VmbErrorIncomplete: the stamp is there, but the picture is not the one that the camera sent with it.
IMEXPORTC VmbError_t VmbSimReadStamp(const void* image, VmbUint64_t size, VmbSimFrameStamp* stamp);

#ifdef __cplusplus
}
#endif
// NOLINTEND
