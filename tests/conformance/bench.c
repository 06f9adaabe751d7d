#include "bench.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "stream.h"
#include "vimba_c.h"
#include "waiting.h"

static const char kNowhere = 0;
const VmbHandle_t kForeignHandle = (VmbHandle_t)(uintptr_t)&kNowhere;

VmbHandle_t camera;
char cameraId[TEXT_SIZE];
char cameraInterfaceId[TEXT_SIZE];

static bool discoveryIsDone(void) {
    VmbBool_t done = false;
    return VmbFeatureCommandIsDone(gVimbaHandle, "GeVDiscoveryAllOnce", &done) != VmbErrorSuccess || done;
}

bool discover(void) {
    return SUCCEEDS(VmbFeatureCommandRun(gVimbaHandle, "GeVDiscoveryAllOnce")) &&
           CHECK(pollUntil(discoveryIsDone));
}

static bool isEthernet(const char* interfaceId) {
    VmbInterfaceInfo_t infos[64];
    VmbUint32_t count = 0;
    VmbInterfacesList(infos, 64, &count, sizeof *infos);
    for (VmbUint32_t i = 0; i < count && i < 64; ++i) {
        if (strcmp(infos[i].interfaceIdString, interfaceId) == 0) {
            return infos[i].interfaceType == VmbInterfaceEthernet;
        }
    }
    return false;
}

static bool opens(const VmbCameraInfo_t* info) {
    VmbHandle_t handle = NULL;
    if (!(info->permittedAccess & VmbAccessModeFull) || !isEthernet(info->interfaceIdString)) return false;
    if (VmbCameraOpen(info->cameraIdString, VmbAccessModeFull, &handle) != VmbErrorSuccess) return false;
    VmbCameraClose(handle);
    return true;
}

bool chooseCamera(void) {
    VmbCameraInfo_t infos[64];
    VmbUint32_t count = 0;
    bool found = false;
    if (VmbStartup() != VmbErrorSuccess) return false;
    discover();
    VmbCamerasList(infos, 64, &count, sizeof *infos);
    for (VmbUint32_t i = 0; i < count && i < 64 && !found; ++i) {
        found = opens(&infos[i]);
        if (!found) continue;
        snprintf(cameraId, sizeof cameraId, "%s", infos[i].cameraIdString);
        snprintf(cameraInterfaceId, sizeof cameraInterfaceId, "%s", infos[i].interfaceIdString);
    }
    VmbShutdown();
    return found;
}

bool setUp(Need need) {
    camera = NULL;
    if (need >= NEEDS_START && !SUCCEEDS(VmbStartup())) return false;
    if (need >= NEEDS_DISCOVERY && !discover()) return false;
    return need < NEEDS_CAMERA || SUCCEEDS(VmbCameraOpen(cameraId, VmbAccessModeFull, &camera));
}

typedef struct {
    char name[TEXT_SIZE];
    bool ofSystem;
    VmbFeatureData_t type;
    VmbInt64_t integer;
    double real;
    VmbBool_t truth;
    char text[TEXT_SIZE];
} Kept;

enum { MAX_KEPT = 64 };
static Kept kept[MAX_KEPT];
static unsigned keptCount;

static VmbError_t readKept(VmbHandle_t owner, Kept* k) {
    const char* entry = "";
    VmbError_t result = VmbErrorWrongType;
    switch (k->type) {
        case VmbFeatureDataInt:
            return VmbFeatureIntGet(owner, k->name, &k->integer);
        case VmbFeatureDataFloat:
            return VmbFeatureFloatGet(owner, k->name, &k->real);
        case VmbFeatureDataBool:
            return VmbFeatureBoolGet(owner, k->name, &k->truth);
        case VmbFeatureDataString:
            return VmbFeatureStringGet(owner, k->name, k->text, TEXT_SIZE, NULL);
        case VmbFeatureDataEnum:
            result = VmbFeatureEnumGet(owner, k->name, &entry);
            snprintf(k->text, sizeof k->text, "%s", result == VmbErrorSuccess ? entry : "");
            return result;
        default:
            return result;
    }
}

static VmbError_t writeKept(VmbHandle_t owner, const Kept* k) {
    switch (k->type) {
        case VmbFeatureDataInt:
            return VmbFeatureIntSet(owner, k->name, k->integer);
        case VmbFeatureDataFloat:
            return VmbFeatureFloatSet(owner, k->name, k->real);
        case VmbFeatureDataBool:
            return VmbFeatureBoolSet(owner, k->name, k->truth);
        case VmbFeatureDataString:
            return VmbFeatureStringSet(owner, k->name, k->text);
        default:
            return VmbFeatureEnumSet(owner, k->name, k->text);
    }
}

static void keepOf(VmbHandle_t owner, const char* feature) {
    VmbFeatureInfo_t info;
    if (keptCount == MAX_KEPT) abort();
    Kept* k = &kept[keptCount];
    if (!SUCCEEDS(VmbFeatureInfoQuery(owner, feature, &info, sizeof info))) return;
    snprintf(k->name, sizeof k->name, "%s", feature);
    k->ofSystem = owner == gVimbaHandle;
    k->type = info.featureDataType;
    if (SUCCEEDS(readKept(owner, k))) ++keptCount;
}

void keep(const char* feature) {
    keepOf(camera, feature);
}

void keepOfSystem(const char* feature) {
    keepOf(gVimbaHandle, feature);
}

static void restoreKept(void) {
    while (keptCount > 0) {
        const Kept* k = &kept[--keptCount];
        checkAbout(k->name);
        SUCCEEDS(writeKept(k->ofSystem ? gVimbaHandle : camera, k));
    }
}

void tearDown(Need need) {
    if (camera) dropStream();
    restoreKept();
    if (camera) VmbCameraClose(camera);
    camera = NULL;
    if (need >= NEEDS_START) VmbShutdown();
}
