#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "lingering.h"
#include "refusals.h"
#include "stream.h"
#include "waiting.h"
#include "watch.h"

static void everythingIsRefused(VmbHandle_t handle) {
    everyFunctionWithoutHandleAnswers(VmbErrorApiNotStarted);
    everyFeatureFunctionAnswers(VmbErrorApiNotStarted, handle);
    everyCameraFunctionAnswers(VmbErrorApiNotStarted, VmbErrorApiNotStarted, handle);
    everyClosingFunctionAnswers(VmbErrorApiNotStarted, handle);
}

static void everything_but_the_version_is_refused_before_start_up(void) {
    everythingIsRefused(gVimbaHandle);
}

static void everything_but_the_version_is_refused_after_shutdown(void) {
    if (setUp(NEEDS_CAMERA)) {
        const VmbHandle_t old = camera;
        VmbShutdown();
        everythingIsRefused(gVimbaHandle);
        everythingIsRefused(old);
    }
}

static void the_version_is_told_before_start_up(void) {
    VmbVersionInfo_t info = {0, 0, 0};
    SUCCEEDS(VmbVersionQuery(&info, sizeof info));
    CHECK_INT(1, info.major);
    // The interface tested here is that of 1.2 to 1.9.
    CHECK(info.minor >= 2);
}

static void the_version_is_the_same_after_start_up(void) {
    VmbVersionInfo_t before = {0, 0, 0};
    VmbVersionInfo_t after = {0, 0, 0};
    SUCCEEDS(VmbVersionQuery(&before, sizeof before));
    if (!SUCCEEDS(VmbStartup())) return;
    SUCCEEDS(VmbVersionQuery(&after, sizeof after));
    CHECK_INT(before.major, after.major);
    CHECK_INT(before.minor, after.minor);
    CHECK_INT(before.patch, after.patch);
    VmbShutdown();
}

static void a_version_record_must_be_there_and_have_its_size(void) {
    VmbVersionInfo_t info = {0, 0, 0};
    CHECK_CODE(VmbErrorBadParameter, VmbVersionQuery(NULL, sizeof info));
    CHECK_CODE(VmbErrorStructSize, VmbVersionQuery(&info, sizeof info - 1));
    CHECK_CODE(VmbErrorStructSize, VmbVersionQuery(&info, sizeof info + 1));
    CHECK_CODE(VmbErrorStructSize, VmbVersionQuery(&info, 0));
}

static void one_shutdown_ends_repeated_starts(void) {
    VmbBool_t present = false;
    SUCCEEDS(VmbStartup());
    // Open: whether a nested start succeeds or is an error; it must not be counted in either case.
    const VmbError_t second = VmbStartup();
    CHECK(second <= VmbErrorSuccess);
    SUCCEEDS(VmbFeatureBoolGet(gVimbaHandle, "GeVTLIsPresent", &present));
    VmbShutdown();
    CHECK_CODE(VmbErrorApiNotStarted, VmbFeatureBoolGet(gVimbaHandle, "GeVTLIsPresent", &present));
}

static void takeOneImage(void) {
    prepareStream(1);
    startStream();
    takeImage();
    stopStream();
}

static void a_process_may_start_stop_and_start_again(void) {
    for (int round = 0; round < 3; ++round) {
        if (setUp(NEEDS_CAMERA)) takeOneImage();
        tearDown(NEEDS_CAMERA);
    }
}

static void shutdown_closes_cameras(void) {
    VmbHandle_t handle = camera;
    VmbShutdown();
    if (!setUp(NEEDS_CAMERA)) return;
    CHECK(camera != NULL);
    VmbInt64_t value = 0;
    if (handle != camera) CHECK_CODE(VmbErrorBadHandle, VmbFeatureIntGet(handle, "Width", &value));
}

static void shutdown_drops_registrations(void) {
    static Watch dropped;
    watchFeature(&dropped, camera, "Height");
    VmbShutdown();
    if (!setUp(NEEDS_CAMERA)) return;
    putInt("Height", intOf("Height"));
    settleInvalidations();
    CHECK_INT(0, callsOf(&dropped));
}

static void no_frame_arrives_after_shutdown(void) {
    prepareStream(4);
    SUCCEEDS(VmbFeatureEnumSet(camera, "TriggerSource", "Freerun"));
    stream.requeues = true;
    startStream();
    CHECK(waitForCount(&stream.arrivalCount, 3));
    VmbShutdown();
    const unsigned atShutdown = arrivalCount();
    setUp(NEEDS_CAMERA);
    CHECK_INT(atShutdown, arrivalCount());
}

static void lingerInInvalidation(VmbHandle_t owner, const char* feature) {
    (void)owner;
    (void)feature;
    linger();
}

static void shutDown(void) {
    VmbShutdown();
}

static void shutdown_waits_for_a_running_callback(void) {
    static Watch watch;
    keep("Height");
    prepareLingering();
    watchFeature(&watch, camera, "Height");
    watch.duringCallback = lingerInInvalidation;
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", intOf("Height")));
    if (CHECK(waitForLingerer(PATIENCE_MS))) checkThatItWaits(shutDown);
    setUp(NEEDS_CAMERA);
}

const Test kSessionTests[] = {
    TEST(NEEDS_NOTHING, everything_but_the_version_is_refused_before_start_up),
    TEST(NEEDS_NOTHING, everything_but_the_version_is_refused_after_shutdown),
    TEST(NEEDS_NOTHING, the_version_is_told_before_start_up),
    TEST(NEEDS_NOTHING, the_version_is_the_same_after_start_up),
    TEST(NEEDS_NOTHING, a_version_record_must_be_there_and_have_its_size),
    TEST(NEEDS_NOTHING, one_shutdown_ends_repeated_starts),
    TEST(NEEDS_NOTHING, a_process_may_start_stop_and_start_again),
    TEST(NEEDS_CAMERA, shutdown_closes_cameras),
    TEST(NEEDS_CAMERA, shutdown_drops_registrations),
    TEST(NEEDS_CAMERA, no_frame_arrives_after_shutdown),
    TEST(NEEDS_CAMERA, shutdown_waits_for_a_running_callback),
    END_OF_TESTS,
};
