#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "refusals.h"

enum { MAX_INTERFACES = 64 };

static VmbUint32_t interfaceCount(void) {
    VmbUint32_t count = 0;
    SUCCEEDS(VmbInterfacesList(NULL, 0, &count, sizeof(VmbInterfaceInfo_t)));
    return count;
}

static void the_interface_of_the_camera_is_listed(void) {
    VmbInterfaceInfo_t infos[MAX_INTERFACES];
    VmbUint32_t found = 0;
    bool seen = false;
    SUCCEEDS(VmbInterfacesList(infos, MAX_INTERFACES, &found, sizeof *infos));
    for (VmbUint32_t i = 0; i < found && i < MAX_INTERFACES; ++i) {
        CHECK(infos[i].interfaceIdString && infos[i].interfaceIdString[0]);
        CHECK(infos[i].interfaceName != NULL);
        CHECK(infos[i].interfaceType <= VmbInterfaceCSI2);
        if (strcmp(infos[i].interfaceIdString, cameraInterfaceId) != 0) continue;
        seen = true;
        CHECK_INT(VmbInterfaceEthernet, infos[i].interfaceType);
    }
    CHECK(seen);
}

static void counting_interfaces_ignores_length_and_size(void) {
    VmbUint32_t count = 0;
    SUCCEEDS(VmbInterfacesList(NULL, 5, &count, 1));
    CHECK_INT(interfaceCount(), count);
    CHECK(count > 0);
}

static void a_short_interface_array_is_filled_as_far_as_it_goes(void) {
    const VmbUint32_t count = interfaceCount();
    VmbInterfaceInfo_t infos[MAX_INTERFACES];
    VmbUint32_t found = 0;
    memset(infos, 0x5A, sizeof infos);
    const VmbInterfaceInfo_t untouched = infos[0];
    // Open: an array of length 0, all that is left to try with one interface, was no error in version 1.3.
    const VmbError_t ifEmpty = count == 1 ? VmbErrorSuccess : VmbErrorMoreData;
    CHECK_EITHER(VmbErrorMoreData, ifEmpty, VmbInterfacesList(infos, count - 1, &found, sizeof *infos));
    CHECK_INT(count, found);
    CHECK(memcmp(&infos[count - 1], &untouched, sizeof untouched) == 0);
    for (VmbUint32_t i = 0; i + 1 < count; ++i) {
        CHECK(infos[i].interfaceIdString != untouched.interfaceIdString);
    }
}

static void an_interface_list_needs_a_count_and_the_right_size(void) {
    VmbInterfaceInfo_t infos[MAX_INTERFACES];
    VmbUint32_t found = 0;
    CHECK_CODE(VmbErrorBadParameter, VmbInterfacesList(NULL, 0, NULL, sizeof *infos));
    CHECK_CODE(VmbErrorBadParameter, VmbInterfacesList(infos, MAX_INTERFACES, NULL, sizeof *infos));
    CHECK_CODE(VmbErrorStructSize, VmbInterfacesList(infos, MAX_INTERFACES, &found, sizeof *infos - 1));
    CHECK_CODE(VmbErrorStructSize, VmbInterfacesList(infos, MAX_INTERFACES, &found, sizeof *infos + 1));
}

static void an_interface_opens_and_closes(void) {
    VmbHandle_t handle = NULL;
    VmbUint32_t count = 0;
    if (!SUCCEEDS(VmbInterfaceOpen(cameraInterfaceId, &handle))) return;
    CHECK(handle != NULL && handle != gVimbaHandle);
    SUCCEEDS(VmbFeaturesList(handle, NULL, 0, &count, sizeof(VmbFeatureInfo_t)));
    CHECK(count > 0);
    SUCCEEDS(VmbInterfaceClose(handle));
    CHECK_CODE(VmbErrorBadHandle, VmbInterfaceClose(handle));
    CHECK_CODE(VmbErrorBadHandle, VmbFeaturesList(handle, NULL, 0, &count, sizeof(VmbFeatureInfo_t)));
}

static void an_interface_must_be_opened_by_a_known_name_into_a_handle(void) {
    VmbHandle_t handle = NULL;
    CHECK_CODE(VmbErrorNotFound, VmbInterfaceOpen("no such interface", &handle));
    CHECK_CODE(VmbErrorNotFound, VmbInterfaceOpen(cameraId, &handle));
    CHECK_CODE(VmbErrorBadParameter, VmbInterfaceOpen(NULL, &handle));
    CHECK_CODE(VmbErrorBadParameter, VmbInterfaceOpen(cameraInterfaceId, NULL));
}

static void checkFlag(VmbHandle_t handle, const char* name, bool affects, bool selects) {
    VmbFeatureInfo_t info;
    VmbUint32_t count = 0;
    checkAbout(name);
    memset(&info, 0, sizeof info);
    if (!SUCCEEDS(VmbFeatureInfoQuery(handle, name, &info, sizeof info))) return;
    CHECK_TEXT("/DeviceEnumeration", info.category);
    if (affects) CHECK(info.hasAffectedFeatures);
    if (selects) CHECK(info.hasSelectedFeatures);
    SUCCEEDS(VmbFeatureListAffected(handle, name, NULL, 0, &count, sizeof info));
    CHECK_INT(info.hasAffectedFeatures, count > 0);
    SUCCEEDS(VmbFeatureListSelected(handle, name, NULL, 0, &count, sizeof info));
    CHECK_INT(info.hasSelectedFeatures, count > 0);
}

static void an_interface_enumerates_its_devices(void) {
    VmbHandle_t handle = NULL;
    VmbInt64_t count = 0;
    if (!SUCCEEDS(VmbInterfaceOpen(cameraInterfaceId, &handle))) return;
    checkFlag(handle, "DeviceCount", false, false);
    checkFlag(handle, "DeviceUpdateList", true, false);
    checkFlag(handle, "DeviceSelector", false, true);
    checkAbout(NULL);
    SUCCEEDS(VmbFeatureIntGet(handle, "DeviceCount", &count));
    CHECK(count >= 1);
    SUCCEEDS(VmbFeatureCommandRun(handle, "DeviceUpdateList"));
    SUCCEEDS(VmbInterfaceClose(handle));
}

static void an_interface_is_no_camera(void) {
    VmbHandle_t handle = NULL;
    if (!SUCCEEDS(VmbInterfaceOpen(cameraInterfaceId, &handle))) return;
    everyCameraFunctionAnswers(VmbErrorBadHandle, VmbErrorDeviceNotOpen, handle);
    CHECK_CODE(VmbErrorBadHandle, VmbCameraClose(handle));
    CHECK_CODE(VmbErrorBadHandle, VmbAncillaryDataClose(handle));
    SUCCEEDS(VmbInterfaceClose(handle));
}

static void shutdown_closes_interfaces(void) {
    VmbHandle_t handle = NULL;
    SUCCEEDS(VmbInterfaceOpen(cameraInterfaceId, &handle));
    VmbShutdown();
    if (!setUp(NEEDS_DISCOVERY)) return;
    CHECK_CODE(VmbErrorBadHandle, VmbInterfaceClose(handle));
    SUCCEEDS(VmbInterfaceOpen(cameraInterfaceId, &handle));
    SUCCEEDS(VmbInterfaceClose(handle));
}

const Test kInterfaceTests[] = {
    TEST(NEEDS_DISCOVERY, the_interface_of_the_camera_is_listed),
    TEST(NEEDS_DISCOVERY, counting_interfaces_ignores_length_and_size),
    TEST(NEEDS_DISCOVERY, a_short_interface_array_is_filled_as_far_as_it_goes),
    TEST(NEEDS_DISCOVERY, an_interface_list_needs_a_count_and_the_right_size),
    TEST(NEEDS_DISCOVERY, an_interface_opens_and_closes),
    TEST(NEEDS_DISCOVERY, an_interface_must_be_opened_by_a_known_name_into_a_handle),
    TEST(NEEDS_DISCOVERY, an_interface_enumerates_its_devices),
    TEST(NEEDS_DISCOVERY, an_interface_is_no_camera),
    TEST(NEEDS_DISCOVERY, shutdown_closes_interfaces),
    END_OF_TESTS,
};
