/// A camera client in plain C that loads the vendor's library at run time:
///
///     client_in_c [LIBRARY [FUNCTION]]
///
/// It finds, sets up, records and unplugs the two cameras of the simulator and demands at every step what the
/// vendor's interface promises. With FUNCTION the next call of that vendor function fails on purpose: the
/// program has to notice. Exit code: 0 when all holds, else 1.
#include "client.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef struct Step {
    const char* name;
    void (*run)(void);
} Step;

static const Step kSteps[] = {
#define STEP_ROW(name) {#name, name},
    CLIENT_STEPS(STEP_ROW)
#undef STEP_ROW
};
enum { STEPS = sizeof kSteps / sizeof *kSteps };

const char* const kFirst = "DEV_000F31A10001";
static const char* const kSecond = "DEV_000F31A10002";

static const char* runningStep = "preparation";
static unsigned checkCount;
VmbHandle_t camera;

static void printSummary(int failed) {
    printf("%d tests, %u checks, %d failed\n", (int)STEPS, checkCount, failed);
    fflush(stdout);
}

void check(bool holds, const char* sentence) {
    ++checkCount;
    if (holds) return;
    printf("FAILED %s: not so: %s\n", runningStep, sentence);
    printSummary(1);
    _Exit(1);  // not exit: the library's threads may still call back
}

void answers(VmbError_t expected, VmbError_t code, const char* sentence) {
    if (code != expected) printf("The answer is %d instead of %d.\n", (int)code, (int)expected);
    check(code == expected, sentence);
}

void run(VmbHandle_t owner, const char* command) {
    VmbBool_t done = false;
    SUCCEEDS(VmbFeatureCommandRun(owner, command));
    while (!done) SUCCEEDS(VmbFeatureCommandIsDone(owner, command, &done));
}

VmbInt64_t integer(VmbHandle_t owner, const char* feature) {
    VmbInt64_t value = 0;
    SUCCEEDS(VmbFeatureIntGet(owner, feature, &value));
    return value;
}

void choose(const char* feature, const char* entry) {
    const char* value = NULL;
    SUCCEEDS(VmbFeatureEnumSet(camera, feature, entry));
    SUCCEEDS(VmbFeatureEnumGet(camera, feature, &value));
    check(strcmp(value, entry) == 0, "an enumeration has the entry that was chosen");
}

static VmbUint32_t cameraCount(void) {
    VmbUint32_t count = 0;
    SUCCEEDS(VmbCamerasList(NULL, 0, &count, sizeof(VmbCameraInfo_t)));
    return count;
}

static VmbHandle_t openCamera(const char* id) {
    VmbHandle_t handle = NULL;
    SUCCEEDS(VmbCameraOpen(id, VmbAccessModeFull, &handle));
    return handle;
}

void library_starts_up(void) {
    VmbVersionInfo_t version = {0};
    VmbUint32_t count = 0;
    SUCCEEDS(VmbVersionQuery(&version, sizeof version));
    check(version.major == 1, "the library is of version 1");
    answers(VmbErrorStructSize, api.VmbVersionQuery(&version, sizeof version - 1), "a wrong size is refused");
    answers(VmbErrorApiNotStarted, api.VmbCamerasList(NULL, 0, &count, sizeof(VmbCameraInfo_t)),
            "nothing is listed before the start");
    SUCCEEDS(VmbStartup());
}

void cameras_are_listed(void) {
    VmbCameraInfo_t infos[2] = {{0}};
    VmbUint32_t count = 0;
    check(cameraCount() == 0, "no camera is listed before a round of discovery");
    run(gVimbaHandle, "GeVDiscoveryAllOnce");
    check(cameraCount() == 2, "discovery finds both cameras");
    SUCCEEDS(VmbCamerasList(infos, 2, &count, sizeof *infos));
    const bool inOrder = strcmp(infos[0].cameraIdString, kFirst) == 0;
    check(strcmp(infos[inOrder ? 0 : 1].cameraIdString, kFirst) == 0, "one is the first");
    check(strcmp(infos[inOrder ? 1 : 0].cameraIdString, kSecond) == 0, "the other is the second");
    answers(VmbErrorMoreData, api.VmbCamerasList(infos, 1, &count, sizeof *infos),
            "a short array is refused");
    SUCCEEDS(VmbCameraInfoQuery(kFirst, infos, sizeof *infos));
    check(strcmp(infos->serialString, "50-0503300001") == 0, "the first has its serial number");
    check(infos->permittedAccess & VmbAccessModeFull, "the first can be opened");
    answers(VmbErrorStructSize, api.VmbCameraInfoQuery(kFirst, infos, sizeof *infos - 1),
            "a wrong size is refused");
}

void camera_opens(void) {
    VmbHandle_t handle = NULL;
    VmbBool_t readable = false;
    VmbBool_t writeable = true;
    answers(VmbErrorNotFound, api.VmbCameraOpen("DEV_0", VmbAccessModeFull, &handle),
            "an unknown camera does not open");
    camera = openCamera(kFirst);
    answers(VmbErrorInvalidAccess, api.VmbCameraOpen(kFirst, VmbAccessModeFull, &handle),
            "it opens only once");
    SUCCEEDS(VmbFeatureAccessQuery(camera, "DeviceModelName", &readable, &writeable));
    check(readable && !writeable, "the name of the model can only be read");
}

enum { MOST_EVENTS = 8, MOST_LETTERS = 32 };

typedef struct CableEvent {
    VmbError_t result;
    char what[MOST_LETTERS];
    char whom[MOST_LETTERS];
} CableEvent;

/// Written by the callback, read when VmbSimWaitForEvents has returned.
typedef struct CableEvents {
    unsigned count;
    CableEvent events[MOST_EVENTS];
} CableEvents;

static void cableEventCame(const VmbHandle_t owner, const char* name, void* context) {
    CableEvents* all = context;
    const char* what = "";
    if (all->count == MOST_EVENTS) return;
    CableEvent* event = &all->events[all->count++];
    event->result = api.VmbFeatureEnumGet(owner, name, &what);
    snprintf(event->what, sizeof event->what, "%s", what);
    if (event->result != VmbErrorSuccess) return;
    event->result = api.VmbFeatureStringGet(owner, "DiscoveryCameraIdent", event->whom, MOST_LETTERS, NULL);
}

static bool isEvent(const CableEvent* event, const char* what, const char* whom) {
    answers(VmbErrorSuccess, event->result, "the event can be read in its callback");
    return strcmp(event->what, what) == 0 && strcmp(event->whom, whom) == 0;
}

static const CableEvent* waitForEvent(const CableEvents* all, unsigned count) {
    SUCCEEDS(VmbSimWaitForEvents(PATIENCE_MS));
    check(all->count == count, "as many events have come as there were causes");
    return &all->events[count - 1];
}

void cables_are_noticed(void) {
    static CableEvents all;
    const VmbHandle_t second = openCamera(kSecond);
    SUCCEEDS(VmbFeatureInvalidationRegister(gVimbaHandle, "DiscoveryCameraEvent", cableEventCame, &all));
    run(gVimbaHandle, "GeVDiscoveryAllAuto");
    const CableEvent* last = waitForEvent(&all, 2);
    const bool inOrder = isEvent(last, "Detected", kSecond);
    check(isEvent(&all.events[inOrder ? 0 : 1], "Detected", kFirst),
          "discovery begins with the first camera");
    check(isEvent(&all.events[inOrder ? 1 : 0], "Detected", kSecond), "and with the second");
    SUCCEEDS(VmbSimUnplugCamera(kSecond));
    check(isEvent(waitForEvent(&all, 3), "Missing", kSecond), "the unplugged camera is missed");
    check(cameraCount() == 1, "the other one is left");
    answers(VmbErrorBadHandle, api.VmbFeatureCommandRun(second, "AcquisitionStart"), "its handle is void");
    answers(VmbErrorBadHandle, api.VmbCameraClose(second), "it is closed all the same");
    SUCCEEDS(VmbSimPlugCamera(kSecond));
    check(isEvent(waitForEvent(&all, 4), "Detected", kSecond), "the plugged camera is found again");
    run(gVimbaHandle, "GeVDiscoveryAllOff");
    SUCCEEDS(VmbFeatureInvalidationUnregister(gVimbaHandle, "DiscoveryCameraEvent", cableEventCame));
    SUCCEEDS(VmbCameraClose(openCamera(kSecond)));
}

void library_shuts_down(void) {
    SUCCEEDS(VmbCameraClose(camera));
    answers(VmbErrorBadHandle, api.VmbFeatureIntSet(camera, "Width", WIDTH),
            "a closed camera has no features");
    api.VmbShutdown();
    answers(VmbErrorApiNotStarted, api.VmbFeatureCommandRun(gVimbaHandle, "GeVDiscoveryAllOnce"),
            "nothing works after the end");
    SUCCEEDS(VmbStartup());
    api.VmbShutdown();
}

int main(int argc, char** argv) {
    if (!loadLibrary(argc > 1 ? argv[1] : kLibraryName)) return 1;
    SUCCEEDS(VmbSimLoadScenario("two-cameras"));
    if (argc > 2) SUCCEEDS(VmbSimFailCall(argv[2], NULL, 1, VmbErrorInternalFault));
    for (int i = 0; i < STEPS; ++i) {
        runningStep = kSteps[i].name;
        kSteps[i].run();
    }
    printSummary(0);
    return 0;
}
