#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "waiting.h"
#include "watch.h"

static Watch first;
static Watch second;

static void setHeight(VmbInt64_t steps) {
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", stepOf("Height", steps)));
}

static void a_set_gives_exactly_one_call(void) {
    keep("Height");
    watchFeature(&first, camera, "Height");
    for (unsigned set = 1; set <= 3; ++set) {
        setHeight(set);
        waitForCalls(&first, set);
    }
    settleInvalidations();
    CHECK_INT(3, callsOf(&first));
    CHECK_TEXT("Height", first.feature);
    CHECK(first.owner == camera);
}

static void the_call_comes_on_a_thread_of_the_library(void) {
    keep("Height");
    watchFeature(&first, camera, "Height");
    setHeight(1);
    waitForCalls(&first, 1);
    CHECK(!first.onTestThread);
}

static void setting_the_same_value_calls_too(void) {
    keep("Height");
    setHeight(1);
    watchFeature(&first, camera, "Height");
    setHeight(1);
    setHeight(1);
    waitForCalls(&first, 2);
}

static void affected_features_are_called_as_well(void) {
    keep("Height");
    setHeight(1);
    watchFeature(&first, camera, "Height");
    watchFeature(&second, camera, "PayloadSize");
    setHeight(2);
    waitForCalls(&first, 1);
    waitForCalls(&second, 1);
    CHECK_TEXT("PayloadSize", second.feature);
}

static void registering_again_replaces_the_context(void) {
    keep("Height");
    watchFeature(&first, camera, "Height");
    watchFeature(&second, camera, "Height");
    setHeight(1);
    waitForCalls(&second, 1);
    settleInvalidations();
    CHECK_INT(0, callsOf(&first));
    CHECK_INT(1, callsOf(&second));
    SUCCEEDS(VmbFeatureInvalidationUnregister(camera, "Height", recordInvalidation));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureInvalidationUnregister(camera, "Height", recordInvalidation));
}

static void two_callbacks_of_one_feature_are_both_called(void) {
    keep("Height");
    watchFeature(&first, camera, "Height");
    memset(&second, 0, sizeof second);
    SUCCEEDS(VmbFeatureInvalidationRegister(camera, "Height", recordInvalidationToo, &second));
    setHeight(1);
    waitForCalls(&first, 1);
    waitForCalls(&second, 1);
    SUCCEEDS(VmbFeatureInvalidationUnregister(camera, "Height", recordInvalidation));
    setHeight(2);
    waitForCalls(&second, 2);
    settleInvalidations();
    CHECK_INT(1, callsOf(&first));
}

static void after_unregistering_no_call_comes(void) {
    keep("Height");
    watchFeature(&first, camera, "Height");
    setHeight(1);
    waitForCalls(&first, 1);
    SUCCEEDS(VmbFeatureInvalidationUnregister(camera, "Height", recordInvalidation));
    setHeight(2);
    settleInvalidations();
    CHECK_INT(1, callsOf(&first));
}

static void registrations_must_be_made_properly(void) {
    memset(&first, 0, sizeof first);
    CHECK_CODE(VmbErrorNotFound,
               VmbFeatureInvalidationRegister(camera, "Nonsense", recordInvalidation, &first));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureInvalidationRegister(camera, "Height", NULL, &first));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureInvalidationUnregister(camera, "Nonsense", recordInvalidation));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureInvalidationUnregister(camera, "Height", recordInvalidation));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureInvalidationUnregister(camera, "Height", NULL));
    SUCCEEDS(VmbFeatureInvalidationRegister(camera, "Height", recordInvalidation, NULL));
    SUCCEEDS(VmbFeatureInvalidationUnregister(camera, "Height", recordInvalidation));
    // Open: without a name, "any feature" up to version 1.6, withdrawn in 1.9.
    const VmbError_t any = VmbFeatureInvalidationRegister(camera, NULL, recordInvalidation, &first);
    CHECK_EITHER(VmbErrorSuccess, VmbErrorBadParameter, any);
    if (!any) SUCCEEDS(VmbFeatureInvalidationUnregister(camera, NULL, recordInvalidation));
}

/// What the callback of Height could do, under the lock.
static VmbError_t getResult;
static VmbError_t setResult;
static VmbError_t commandResult;
static VmbInt64_t seenHeight;

static void tryThingsDuringInvalidation(VmbHandle_t owner, const char* feature) {
    VmbInt64_t height = 0;
    const VmbError_t got = VmbFeatureIntGet(owner, feature, &height);
    const VmbError_t set = VmbFeatureIntSet(owner, feature, height);
    const VmbError_t ran = VmbFeatureCommandRun(owner, "GevTimestampControlLatch");
    lockRecords();
    getResult = got;
    setResult = set;
    commandResult = ran;
    seenHeight = height;
    unlockRecords();
}

static void during_the_call_the_feature_is_read_but_not_set(void) {
    const VmbInt64_t height = stepOf("Height", 5);
    keep("Height");
    watchFeature(&first, camera, "Height");
    first.duringCallback = tryThingsDuringInvalidation;
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", height));
    if (!waitForCalls(&first, 1)) return;
    lockRecords();
    const VmbError_t results[] = {getResult, setResult, commandResult};
    const VmbInt64_t seen = seenHeight;
    unlockRecords();
    CHECK_CODE(VmbErrorSuccess, results[0]);
    CHECK_INT(height, seen);
    // Open: with which error the set fails; VmbErrorInvalidCall is the one known from frame callbacks.
    CHECK_FAILS(results[1]);
    CHECK_CODE(VmbErrorSuccess, results[2]);
}

static void features_of_the_system_call_too(void) {
    VmbInt64_t duration = 0;
    watchFeature(&first, gVimbaHandle, "GeVDiscoveryAllDuration");
    SUCCEEDS(VmbFeatureIntGet(gVimbaHandle, "GeVDiscoveryAllDuration", &duration));
    SUCCEEDS(VmbFeatureIntSet(gVimbaHandle, "GeVDiscoveryAllDuration", duration));
    waitForCalls(&first, 1);
    CHECK(first.owner == gVimbaHandle);
    SUCCEEDS(VmbFeatureInvalidationUnregister(gVimbaHandle, "GeVDiscoveryAllDuration", recordInvalidation));
}

const Test kInvalidationTests[] = {
    TEST(NEEDS_CAMERA, a_set_gives_exactly_one_call),
    TEST(NEEDS_CAMERA, the_call_comes_on_a_thread_of_the_library),
    TEST(NEEDS_CAMERA, setting_the_same_value_calls_too),
    TEST(NEEDS_CAMERA, affected_features_are_called_as_well),
    TEST(NEEDS_CAMERA, registering_again_replaces_the_context),
    TEST(NEEDS_CAMERA, two_callbacks_of_one_feature_are_both_called),
    TEST(NEEDS_CAMERA, after_unregistering_no_call_comes),
    TEST(NEEDS_CAMERA, registrations_must_be_made_properly),
    TEST(NEEDS_CAMERA, during_the_call_the_feature_is_read_but_not_set),
    TEST(NEEDS_CAMERA, features_of_the_system_call_too),
    END_OF_TESTS,
};
