#include "watch.h"

#include <stdio.h>
#include <string.h>

#include "bench.h"
#include "vimba_c.h"
#include "waiting.h"

void recordInvalidation(const VmbHandle_t owner, const char* feature, void* context) {
    Watch* watch = context;
    if (watch->duringCallback) watch->duringCallback(owner, feature);
    lockRecords();
    watch->owner = owner;
    watch->onTestThread = onTestThread();
    snprintf(watch->feature, sizeof watch->feature, "%s", feature);
    ++watch->calls;
    unlockRecords();
}

void recordInvalidationToo(const VmbHandle_t owner, const char* feature, void* context) {
    recordInvalidation(owner, feature, context);
}

void watchFeature(Watch* watch, VmbHandle_t owner, const char* feature) {
    lockRecords();
    memset(watch, 0, sizeof *watch);
    unlockRecords();
    SUCCEEDS(VmbFeatureInvalidationRegister(owner, feature, recordInvalidation, watch));
}

unsigned callsOf(const Watch* watch) {
    return readCount(&watch->calls);
}

bool waitForCalls(const Watch* watch, unsigned calls) {
    return CHECK(waitForCount(&watch->calls, calls));
}

void settleInvalidations(void) {
    static Watch gain;
    watchFeature(&gain, camera, "Gain");
    SUCCEEDS(VmbFeatureFloatSet(camera, "Gain", floatOf("Gain")));
    waitForCalls(&gain, 1);
    SUCCEEDS(VmbFeatureInvalidationUnregister(camera, "Gain", recordInvalidation));
}
