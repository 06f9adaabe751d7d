#include <stdlib.h>
#include <string.h>

#include "bench.h"
#include "vimba_c.h"
#include "waiting.h"

void putInt(const char* feature, VmbInt64_t value) {
    keep(feature);
    SUCCEEDS(VmbFeatureIntSet(camera, feature, value));
}

void putFloat(const char* feature, double value) {
    keep(feature);
    SUCCEEDS(VmbFeatureFloatSet(camera, feature, value));
}

void putEnum(const char* feature, const char* value) {
    keep(feature);
    SUCCEEDS(VmbFeatureEnumSet(camera, feature, value));
}

void putBool(const char* feature, bool value) {
    keep(feature);
    SUCCEEDS(VmbFeatureBoolSet(camera, feature, value));
}

void putString(const char* feature, const char* value) {
    keep(feature);
    SUCCEEDS(VmbFeatureStringSet(camera, feature, value));
}

VmbInt64_t intOf(const char* feature) {
    VmbInt64_t value = 0;
    SUCCEEDS(VmbFeatureIntGet(camera, feature, &value));
    return value;
}

double floatOf(const char* feature) {
    double value = 0;
    SUCCEEDS(VmbFeatureFloatGet(camera, feature, &value));
    return value;
}

const char* enumOf(const char* feature) {
    const char* value = NULL;
    return SUCCEEDS(VmbFeatureEnumGet(camera, feature, &value)) && value ? value : "";
}

VmbInt64_t stepOf(const char* feature, VmbInt64_t steps) {
    VmbInt64_t min = 0;
    VmbInt64_t max = 0;
    VmbInt64_t increment = 1;
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, feature, &min, &max));
    SUCCEEDS(VmbFeatureIntIncrementQuery(camera, feature, &increment));
    return min + steps * increment;
}

bool hasFeature(const char* feature) {
    VmbFeatureInfo_t info;
    return VmbFeatureInfoQuery(camera, feature, &info, sizeof info) == VmbErrorSuccess;
}

enum { MAX_FEATURES = 2000 };

void forEachFeature(VmbHandle_t handle, void (*visit)(VmbHandle_t handle, const VmbFeatureInfo_t* info)) {
    VmbUint32_t count = 0;
    VmbFeatureInfo_t* infos = calloc(MAX_FEATURES, sizeof *infos);
    if (!infos) abort();
    SUCCEEDS(VmbFeaturesList(handle, infos, MAX_FEATURES, &count, sizeof *infos));
    CHECK(count > 0);
    for (VmbUint32_t i = 0; i < count && i < MAX_FEATURES; ++i) {
        checkAbout(infos[i].name);
        visit(handle, &infos[i]);
    }
    checkAbout(NULL);
    free(infos);
}

static VmbFeatureData_t soughtType;
static VmbFeatureFlags_t soughtFlags;
static const char* soughtName;

static void compareWithSought(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    (void)handle;
    const bool fits =
        info->featureDataType == soughtType && (info->featureFlags & soughtFlags) == soughtFlags;
    if (fits && !soughtName) soughtName = info->name;
}

const char* findFeature(VmbFeatureData_t type, VmbFeatureFlags_t flags) {
    soughtType = type;
    soughtFlags = flags;
    soughtName = NULL;
    forEachFeature(camera, compareWithSought);
    return soughtName;
}

static const char* runningCommand;

static bool commandIsDone(void) {
    VmbBool_t done = false;
    return VmbFeatureCommandIsDone(camera, runningCommand, &done) != VmbErrorSuccess || done;
}

void runCommand(const char* command) {
    SUCCEEDS(VmbFeatureCommandRun(camera, command));
}

void runToEnd(const char* command) {
    runningCommand = command;
    runCommand(command);
    CHECK(pollUntil(commandIsDone));
}

static const char* awaitedFeature;
static VmbInt64_t awaitedValue;

static bool hasComeThatFar(void) {
    VmbInt64_t value = 0;
    return VmbFeatureIntGet(camera, awaitedFeature, &value) != VmbErrorSuccess || value >= awaitedValue;
}

bool reachesInt(const char* feature, VmbInt64_t value, uint32_t milliseconds) {
    awaitedFeature = feature;
    awaitedValue = value;
    return pollWithin(hasComeThatFar, milliseconds);
}
