#include <stdio.h>
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "refusals.h"
#include "stream.h"
#include "waiting.h"
#include "watch.h"

static void a_camera_opens_and_closes(void) {
    VmbHandle_t handle = NULL;
    VmbInt64_t width = 0;
    if (!SUCCEEDS(VmbCameraOpen(cameraId, VmbAccessModeFull, &handle))) return;
    CHECK(handle != NULL && handle != gVimbaHandle);
    SUCCEEDS(VmbFeatureIntGet(handle, "Width", &width));
    SUCCEEDS(VmbCameraClose(handle));
    CHECK_CODE(VmbErrorBadHandle, VmbCameraClose(handle));
    SUCCEEDS(VmbCameraOpen(cameraId, VmbAccessModeFull, &handle));
    SUCCEEDS(VmbCameraClose(handle));
}

static void a_camera_must_be_opened_by_a_known_name_into_a_handle(void) {
    VmbHandle_t handle = NULL;
    CHECK_CODE(VmbErrorNotFound, VmbCameraOpen("DEV_000000000000", VmbAccessModeFull, &handle));
    CHECK_CODE(VmbErrorNotFound, VmbCameraOpen(cameraInterfaceId, VmbAccessModeFull, &handle));
    CHECK_CODE(VmbErrorBadParameter, VmbCameraOpen(NULL, VmbAccessModeFull, &handle));
    CHECK_CODE(VmbErrorBadParameter, VmbCameraOpen(cameraId, VmbAccessModeFull, NULL));
}

static void a_camera_opens_by_its_hardware_address(void) {
    VmbHandle_t handle = NULL;
    if (SUCCEEDS(VmbCameraOpen(cameraId + 4, VmbAccessModeFull, &handle))) SUCCEEDS(VmbCameraClose(handle));
}

static void a_camera_opens_and_is_known_by_its_network_address(void) {
    const VmbInt64_t address = intOf("GevCurrentIPAddress");
    VmbCameraInfo_t info = {0};
    char text[TEXT_SIZE];
    snprintf(text, sizeof text, "%d.%d.%d.%d", (int)(address & 255), (int)(address >> 8 & 255),
             (int)(address >> 16 & 255), (int)(address >> 24 & 255));
    if (SUCCEEDS(VmbCameraInfoQuery(text, &info, sizeof info))) CHECK_TEXT(cameraId, info.cameraIdString);
    SUCCEEDS(VmbCameraClose(camera));
    SUCCEEDS(VmbCameraOpen(text, VmbAccessModeFull, &camera));
}

static void an_open_camera_does_not_open_again(void) {
    VmbHandle_t handle = NULL;
    CHECK_CODE(VmbErrorInvalidAccess, VmbCameraOpen(cameraId, VmbAccessModeFull, &handle));
    CHECK_CODE(VmbErrorInvalidAccess, VmbCameraOpen(cameraId, VmbAccessModeRead, &handle));
}

static void tryMode(VmbAccessMode_t mode, bool permitted) {
    VmbHandle_t handle = NULL;
    if (permitted) {
        SUCCEEDS(VmbCameraOpen(cameraId, mode, &handle));
    } else {
        // Open: a mode that is not permitted may also be called not implemented.
        CHECK_EITHER(VmbErrorInvalidAccess, VmbErrorNotImplemented, VmbCameraOpen(cameraId, mode, &handle));
    }
    if (handle) VmbCameraClose(handle);
}

static void a_camera_opens_in_the_modes_it_permits_alone(void) {
    VmbCameraInfo_t info = {0};
    SUCCEEDS(VmbCameraInfoQuery(cameraId, &info, sizeof info));
    const VmbAccessMode_t modes[] = {VmbAccessModeFull, VmbAccessModeRead, VmbAccessModeConfig,
                                     VmbAccessModeLite};
    const char* const names[] = {"Full", "Read", "Config", "Lite"};
    for (size_t i = 0; i < sizeof modes / sizeof *modes; ++i) {
        checkAbout(names[i]);
        tryMode(modes[i], (info.permittedAccess & modes[i]) != 0);
    }
}

static void a_camera_opens_in_exactly_one_mode(void) {
    const VmbAccessMode_t modes[] = {VmbAccessModeNone, VmbAccessModeFull | VmbAccessModeRead, 0x80000000u};
    for (size_t i = 0; i < sizeof modes / sizeof *modes; ++i) {
        VmbHandle_t handle = NULL;
        // Open: whether such a mode is a bad argument, one not permitted, or one not implemented.
        CHECK_FAILS(VmbCameraOpen(cameraId, modes[i], &handle));
        if (handle) VmbCameraClose(handle);
    }
}

static void reopenForReading(void) {
    SUCCEEDS(VmbCameraClose(camera));
    SUCCEEDS(VmbCameraOpen(cameraId, VmbAccessModeRead, &camera));
}

static void reopenInFull(void) {
    SUCCEEDS(VmbCameraClose(camera));
    SUCCEEDS(VmbCameraOpen(cameraId, VmbAccessModeFull, &camera));
}

static void a_camera_open_for_reading_is_read(void) {
    VmbBool_t readable = false;
    VmbBool_t writeable = true;
    VmbFeatureInfo_t info;
    reopenForReading();
    CHECK(intOf("Width") > 0);
    CHECK(floatOf("ExposureTimeAbs") > 0);
    CHECK(enumOf("PixelFormat")[0] != 0);
    SUCCEEDS(VmbFeatureInfoQuery(camera, "Width", &info, sizeof info));
    SUCCEEDS(VmbFeatureAccessQuery(camera, "Width", &readable, &writeable));
    CHECK(readable);
    CHECK(!writeable);
}

static void a_camera_open_for_reading_refuses_changes(void) {
    const VmbInt64_t width = intOf("Width");
    const double gain = floatOf("Gain");
    VmbUint32_t done = 0;
    char data[4] = {0, 0, 0, 0};
    char file[TEXT_SIZE];
    temporaryPath(file, sizeof file);
    SUCCEEDS(VmbCameraSettingsSave(camera, file, NULL, sizeof(VmbFeaturePersistSettings_t)));
    reopenForReading();
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureIntSet(camera, "Width", width));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureFloatSet(camera, "Gain", gain));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureEnumSet(camera, "AcquisitionMode", "Continuous"));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureBoolSet(camera, "ChunkModeActive", false));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureCommandRun(camera, "AcquisitionStart"));
    CHECK_CODE(VmbErrorInvalidAccess, VmbCaptureStart(camera));
    CHECK_CODE(VmbErrorInvalidAccess, VmbMemoryWrite(camera, 0, sizeof data, data, &done));
    CHECK_CODE(VmbErrorInvalidAccess,
               VmbCameraSettingsLoad(camera, file, NULL, sizeof(VmbFeaturePersistSettings_t)));
    remove(file);
    reopenInFull();
}

static void closing_drops_registrations(void) {
    static Watch dropped;
    watchFeature(&dropped, camera, "Height");
    reopenInFull();
    putInt("Height", intOf("Height"));
    settleInvalidations();
    CHECK_INT(0, callsOf(&dropped));
}

static void closing_empties_the_frame_queue(void) {
    prepareStream(2);
    startStream();
    takeImage();
    reopenInFull();
    CHECK_INT(1, arrivalCount());
    SUCCEEDS(VmbFrameRevokeAll(camera));
}

static void a_closed_camera_is_refused_everywhere(void) {
    const VmbHandle_t old = camera;
    SUCCEEDS(VmbCameraClose(camera));
    camera = NULL;
    everyFeatureFunctionAnswers(VmbErrorBadHandle, old);
    everyCameraFunctionAnswers(VmbErrorBadHandle, VmbErrorDeviceNotOpen, old);
    everyClosingFunctionAnswers(VmbErrorBadHandle, old);
}

static void a_handle_never_given_out_is_refused_everywhere(void) {
    const VmbHandle_t handles[] = {NULL, kForeignHandle};
    for (int i = 0; i < 2; ++i) {
        checkAbout(i == 0 ? "the null handle" : "a foreign handle");
        everyFeatureFunctionAnswers(VmbErrorBadHandle, handles[i]);
        everyCameraFunctionAnswers(VmbErrorBadHandle, VmbErrorDeviceNotOpen, handles[i]);
        everyClosingFunctionAnswers(VmbErrorBadHandle, handles[i]);
    }
}

static void the_system_is_no_camera(void) {
    everyCameraFunctionAnswers(VmbErrorBadHandle, VmbErrorDeviceNotOpen, gVimbaHandle);
    everyClosingFunctionAnswers(VmbErrorBadHandle, gVimbaHandle);
}

static void a_camera_is_neither_interface_nor_ancillary_data(void) {
    CHECK_CODE(VmbErrorBadHandle, VmbInterfaceClose(camera));
    CHECK_CODE(VmbErrorBadHandle, VmbAncillaryDataClose(camera));
    CHECK(intOf("Width") > 0);
}

const Test kCameraTests[] = {
    TEST(NEEDS_DISCOVERY, a_camera_opens_and_closes),
    TEST(NEEDS_DISCOVERY, a_camera_must_be_opened_by_a_known_name_into_a_handle),
    TEST(NEEDS_DISCOVERY, a_camera_opens_by_its_hardware_address),
    TEST(NEEDS_CAMERA, a_camera_opens_and_is_known_by_its_network_address),
    TEST(NEEDS_CAMERA, an_open_camera_does_not_open_again),
    TEST(NEEDS_DISCOVERY, a_camera_opens_in_the_modes_it_permits_alone),
    TEST(NEEDS_DISCOVERY, a_camera_opens_in_exactly_one_mode),
    TEST(NEEDS_CAMERA, a_camera_open_for_reading_is_read),
    TEST(NEEDS_CAMERA, a_camera_open_for_reading_refuses_changes),
    TEST(NEEDS_CAMERA, closing_drops_registrations),
    TEST(NEEDS_CAMERA, closing_empties_the_frame_queue),
    TEST(NEEDS_CAMERA, a_closed_camera_is_refused_everywhere),
    TEST(NEEDS_DISCOVERY, a_handle_never_given_out_is_refused_everywhere),
    TEST(NEEDS_DISCOVERY, the_system_is_no_camera),
    TEST(NEEDS_CAMERA, a_camera_is_neither_interface_nor_ancillary_data),
    END_OF_TESTS,
};
