/// What a frame callback may and may not do.
#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "stream.h"
#include "waiting.h"

typedef struct {
    const char* call;
    VmbError_t result;
} Outcome;

enum { MAX_OUTCOMES = 16 };

/// Written by the callback before its arrival counts, read by the test after.
static Outcome outcomes[MAX_OUTCOMES];
static int outcomeCount;
static const char* writeableText;

static void note(const char* call, VmbError_t result) {
    lockRecords();
    if (outcomeCount < MAX_OUTCOMES) outcomes[outcomeCount++] = (Outcome){call, result};
    unlockRecords();
}

static void setEverything(VmbHandle_t owner, VmbFrame_t* frame) {
    VmbHandle_t handle = NULL;
    (void)frame;
    note("int set", VmbFeatureIntSet(owner, "AcquisitionFrameCount", 1));
    note("float set", VmbFeatureFloatSet(owner, "Gain", 0));
    note("enum set", VmbFeatureEnumSet(owner, "ExposureAuto", "Off"));
    note("bool set", VmbFeatureBoolSet(owner, "StreamFrameRateConstrain", true));
    if (writeableText) note("string set", VmbFeatureStringSet(owner, writeableText, "text"));
    note("set of the system", VmbFeatureIntSet(gVimbaHandle, "GeVDiscoveryAllDuration", 150));
    note("open", VmbCameraOpen(cameraId, VmbAccessModeFull, &handle));
    note("close", VmbCameraClose(owner));
}

static void readEverything(VmbHandle_t owner, VmbFrame_t* frame) {
    VmbInt64_t integer = 0;
    double real = 0;
    VmbBool_t truth = false;
    const char* text = NULL;
    VmbUint32_t size = 0;
    VmbFeatureInfo_t info;
    (void)frame;
    note("int get", VmbFeatureIntGet(owner, "Width", &integer));
    note("int range", VmbFeatureIntRangeQuery(owner, "Width", &integer, NULL));
    note("float get", VmbFeatureFloatGet(owner, "Gain", &real));
    note("enum get", VmbFeatureEnumGet(owner, "PixelFormat", &text));
    note("bool get", VmbFeatureBoolGet(owner, "ChunkModeActive", &truth));
    note("string get", VmbFeatureStringGet(owner, "DeviceModelName", NULL, 0, &size));
    note("info", VmbFeatureInfoQuery(owner, "Width", &info, sizeof info));
    note("command", VmbFeatureCommandRun(owner, "GevTimestampControlLatch"));
    note("command done", VmbFeatureCommandIsDone(owner, "GevTimestampControlLatch", &truth));
}

static void checkOutcomes(VmbError_t wanted, int least) {
    CHECK(outcomeCount >= least);
    for (int i = 0; i < outcomeCount; ++i) {
        checkAbout(outcomes[i].call);
        CHECK_CODE(wanted, outcomes[i].result);
    }
    checkAbout(NULL);
}

static void takeOneImage(void (*duringCallback)(VmbHandle_t owner, VmbFrame_t* frame)) {
    outcomeCount = 0;
    writeableText = findFeature(VmbFeatureDataString, VmbFeatureFlagsRead | VmbFeatureFlagsWrite);
    prepareStream(1);
    stream.duringCallback = duringCallback;
    startStream();
    takeImage();
    stopStream();
}

static void a_frame_callback_must_not_set_open_or_close(void) {
    takeOneImage(setEverything);
    checkOutcomes(VmbErrorInvalidCall, 7);
    CHECK(intOf("Width") > 0);
}

static void a_frame_callback_may_read_and_run_commands(void) {
    takeOneImage(readEverything);
    checkOutcomes(VmbErrorSuccess, 9);
}

static void after_a_frame_callback_features_are_set_again(void) {
    takeOneImage(setEverything);
    putFloat("Gain", 1);
    CHECK_NEAR(1, floatOf("Gain"), 0.5);
}

const Test kCallbackTests[] = {
    TEST(NEEDS_CAMERA, a_frame_callback_must_not_set_open_or_close),
    TEST(NEEDS_CAMERA, a_frame_callback_may_read_and_run_commands),
    TEST(NEEDS_CAMERA, after_a_frame_callback_features_are_set_again),
    END_OF_TESTS,
};
