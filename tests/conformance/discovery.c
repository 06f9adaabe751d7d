#include <ctype.h>
#include <stdio.h>
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "waiting.h"

enum { MAX_CAMERAS = 64 };

static VmbUint32_t cameraCount(void) {
    VmbUint32_t count = 0;
    SUCCEEDS(VmbCamerasList(NULL, 0, &count, sizeof(VmbCameraInfo_t)));
    return count;
}

static bool isListed(void) {
    VmbCameraInfo_t infos[MAX_CAMERAS];
    VmbUint32_t count = 0;
    SUCCEEDS(VmbCamerasList(infos, MAX_CAMERAS, &count, sizeof *infos));
    for (VmbUint32_t i = 0; i < count && i < MAX_CAMERAS; ++i) {
        if (strcmp(infos[i].cameraIdString, cameraId) == 0) return true;
    }
    return false;
}

static void cameras_are_listed_only_after_a_round_of_discovery(void) {
    CHECK(!isListed());
    discover();
    CHECK(isListed());
}

static void counting_cameras_ignores_length_and_size(void) {
    VmbUint32_t count = 0;
    SUCCEEDS(VmbCamerasList(NULL, 5, &count, 1));
    CHECK_INT(cameraCount(), count);
    CHECK(count > 0);
}

static void a_long_camera_array_is_left_alone_beyond_the_last_camera(void) {
    const VmbUint32_t count = cameraCount();
    VmbCameraInfo_t infos[MAX_CAMERAS];
    VmbUint32_t found = 0;
    memset(infos, 0x5A, sizeof infos);
    const VmbCameraInfo_t untouched = infos[0];
    SUCCEEDS(VmbCamerasList(infos, count + 2, &found, sizeof *infos));
    CHECK_INT(count, found);
    CHECK(memcmp(&infos[found], &untouched, sizeof untouched) == 0);
    CHECK(memcmp(&infos[found + 1], &untouched, sizeof untouched) == 0);
}

static void a_short_camera_array_is_filled_as_far_as_it_goes(void) {
    const VmbUint32_t count = cameraCount();
    VmbCameraInfo_t infos[MAX_CAMERAS];
    VmbUint32_t found = 0;
    memset(infos, 0x5A, sizeof infos);
    const VmbCameraInfo_t untouched = infos[0];
    // Open: an array of length 0, all that is left to try with one camera, was no error in version 1.3.
    const VmbError_t ifEmpty = count == 1 ? VmbErrorSuccess : VmbErrorMoreData;
    CHECK_EITHER(VmbErrorMoreData, ifEmpty, VmbCamerasList(infos, count - 1, &found, sizeof *infos));
    CHECK_INT(count, found);
    CHECK(memcmp(&infos[count - 1], &untouched, sizeof untouched) == 0);
    for (VmbUint32_t i = 0; i + 1 < count; ++i) CHECK(infos[i].cameraIdString != untouched.cameraIdString);
}

static void a_camera_list_needs_a_count_and_the_right_size(void) {
    VmbCameraInfo_t infos[MAX_CAMERAS];
    VmbUint32_t found = 0;
    CHECK_CODE(VmbErrorBadParameter, VmbCamerasList(NULL, 0, NULL, sizeof *infos));
    CHECK_CODE(VmbErrorBadParameter, VmbCamerasList(infos, MAX_CAMERAS, NULL, sizeof *infos));
    CHECK_CODE(VmbErrorStructSize, VmbCamerasList(infos, MAX_CAMERAS, &found, sizeof *infos - 1));
    CHECK_CODE(VmbErrorStructSize, VmbCamerasList(infos, MAX_CAMERAS, &found, sizeof *infos + 1));
}

static void a_camera_id_is_dev_and_the_hardware_address(void) {
    CHECK_INT(16, (int64_t)strlen(cameraId));
    CHECK(strncmp(cameraId, "DEV_", 4) == 0);
    for (const char* digit = cameraId + 4; *digit; ++digit) CHECK(isxdigit((unsigned char)*digit));
}

static void checkSameCamera(const VmbCameraInfo_t* wanted, const VmbCameraInfo_t* got) {
    CHECK_TEXT(wanted->cameraIdString, got->cameraIdString);
    CHECK_TEXT(wanted->cameraName, got->cameraName);
    CHECK_TEXT(wanted->modelName, got->modelName);
    CHECK_TEXT(wanted->serialString, got->serialString);
    CHECK_INT(wanted->permittedAccess, got->permittedAccess);
    CHECK_TEXT(wanted->interfaceIdString, got->interfaceIdString);
}

static void a_listed_camera_and_its_own_info_are_the_same(void) {
    VmbCameraInfo_t infos[MAX_CAMERAS];
    VmbUint32_t found = 0;
    SUCCEEDS(VmbCamerasList(infos, MAX_CAMERAS, &found, sizeof *infos));
    for (VmbUint32_t i = 0; i < found && i < MAX_CAMERAS; ++i) {
        VmbCameraInfo_t info;
        checkAbout(infos[i].cameraIdString);
        memset(&info, 0, sizeof info);
        SUCCEEDS(VmbCameraInfoQuery(infos[i].cameraIdString, &info, sizeof info));
        checkSameCamera(&infos[i], &info);
    }
}

static void a_free_camera_permits_full_access_and_reading(void) {
    VmbCameraInfo_t info = {0};
    SUCCEEDS(VmbCameraInfoQuery(cameraId, &info, sizeof info));
    CHECK(info.permittedAccess & VmbAccessModeFull);
    CHECK(info.permittedAccess & VmbAccessModeRead);
    CHECK(info.modelName && info.modelName[0]);
    CHECK(info.serialString && info.serialString[0]);
    CHECK_TEXT(cameraInterfaceId, info.interfaceIdString);
}

static void a_camera_is_known_by_its_hardware_address_too(void) {
    VmbCameraInfo_t byId = {0};
    VmbCameraInfo_t byAddress = {0};
    SUCCEEDS(VmbCameraInfoQuery(cameraId, &byId, sizeof byId));
    if (SUCCEEDS(VmbCameraInfoQuery(cameraId + 4, &byAddress, sizeof byAddress))) {
        checkSameCamera(&byId, &byAddress);
    }
}

static void camera_info_must_be_asked_for_properly(void) {
    VmbCameraInfo_t info;
    CHECK_CODE(VmbErrorBadParameter, VmbCameraInfoQuery(NULL, &info, sizeof info));
    CHECK_CODE(VmbErrorBadParameter, VmbCameraInfoQuery(cameraId, NULL, sizeof info));
    CHECK_CODE(VmbErrorStructSize, VmbCameraInfoQuery(cameraId, &info, sizeof info - 1));
    CHECK_CODE(VmbErrorStructSize, VmbCameraInfoQuery(cameraId, &info, sizeof info + 1));
    CHECK_CODE(VmbErrorNotFound, VmbCameraInfoQuery("DEV_000000000000", &info, sizeof info));
    CHECK_CODE(VmbErrorNotFound, VmbCameraInfoQuery("", &info, sizeof info));
}

/// What a client reads inside the callback of DiscoveryCameraEvent; `found` counts detections of our camera.
static unsigned found;
static VmbError_t readingResult;

static void readDiscoveryEvent(const VmbHandle_t handle, const char* feature, void* context) {
    const char* event = "";
    char ident[TEXT_SIZE] = "";
    (void)context;
    const VmbError_t eventResult = VmbFeatureEnumGet(handle, feature, &event);
    const VmbError_t identResult =
        VmbFeatureStringGet(handle, "DiscoveryCameraIdent", ident, sizeof ident, NULL);
    lockRecords();
    if (eventResult) readingResult = eventResult;
    if (identResult) readingResult = identResult;
    if (!eventResult && strcmp(event, "Detected") == 0 && strcmp(ident, cameraId) == 0) ++found;
    unlockRecords();
}

static void listenToDiscovery(void) {
    found = 0;
    readingResult = VmbErrorSuccess;
    SUCCEEDS(VmbFeatureInvalidationRegister(gVimbaHandle, "DiscoveryCameraEvent", readDiscoveryEvent, NULL));
}

static void a_detected_camera_is_announced_by_an_event(void) {
    listenToDiscovery();
    discover();
    CHECK(waitForCount(&found, 1));
    CHECK_CODE(VmbErrorSuccess, readingResult);
    SUCCEEDS(VmbFeatureInvalidationUnregister(gVimbaHandle, "DiscoveryCameraEvent", readDiscoveryEvent));
}

static void continuous_discovery_finds_cameras_until_it_is_turned_off(void) {
    listenToDiscovery();
    SUCCEEDS(VmbFeatureCommandRun(gVimbaHandle, "GeVDiscoveryAllAuto"));
    CHECK(waitForCount(&found, 1));
    CHECK_CODE(VmbErrorSuccess, readingResult);
    CHECK(isListed());
    SUCCEEDS(VmbFeatureCommandRun(gVimbaHandle, "GeVDiscoveryAllOff"));
    CHECK(isListed());
}

static void a_round_of_discovery_lasts_as_long_as_it_is_told(void) {
    const VmbInt64_t kMilliseconds = 250;
    keepOfSystem("GeVDiscoveryAllDuration");
    SUCCEEDS(VmbFeatureIntSet(gVimbaHandle, "GeVDiscoveryAllDuration", kMilliseconds));
    const double start = secondsNow();
    SUCCEEDS(VmbFeatureCommandRun(gVimbaHandle, "GeVDiscoveryAllOnce"));
    // A clock of the other side may count its milliseconds slightly differently.
    CHECK(secondsNow() - start >= 0.9 * (double)kMilliseconds / 1000);
    CHECK(isListed());
}

static void a_further_round_finds_nothing_twice(void) {
    const VmbUint32_t count = cameraCount();
    discover();
    CHECK_INT(count, cameraCount());
}

const Test kDiscoveryTests[] = {
    TEST(NEEDS_START, cameras_are_listed_only_after_a_round_of_discovery),
    TEST(NEEDS_DISCOVERY, counting_cameras_ignores_length_and_size),
    TEST(NEEDS_DISCOVERY, a_long_camera_array_is_left_alone_beyond_the_last_camera),
    TEST(NEEDS_DISCOVERY, a_short_camera_array_is_filled_as_far_as_it_goes),
    TEST(NEEDS_DISCOVERY, a_camera_list_needs_a_count_and_the_right_size),
    TEST(NEEDS_DISCOVERY, a_camera_id_is_dev_and_the_hardware_address),
    TEST(NEEDS_DISCOVERY, a_listed_camera_and_its_own_info_are_the_same),
    TEST(NEEDS_DISCOVERY, a_free_camera_permits_full_access_and_reading),
    TEST(NEEDS_DISCOVERY, a_camera_is_known_by_its_hardware_address_too),
    TEST(NEEDS_DISCOVERY, camera_info_must_be_asked_for_properly),
    TEST(NEEDS_START, a_detected_camera_is_announced_by_an_event),
    TEST(NEEDS_START, continuous_discovery_finds_cameras_until_it_is_turned_off),
    TEST(NEEDS_START, a_round_of_discovery_lasts_as_long_as_it_is_told),
    TEST(NEEDS_DISCOVERY, a_further_round_finds_nothing_twice),
    END_OF_TESTS,
};
