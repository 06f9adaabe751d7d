/// When several things are wrong at once, they are told in this order: library not started, handle, null
/// pointers, record size, name, type, access, value. Open: the order is the customary one, nobody promised
/// it.
#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "stream.h"

static VmbFeatureInfo_t info;
static VmbFeatureEnumEntry_t entry;
static VmbUint32_t count;

static void not_started_is_told_before_all_else(void) {
    CHECK_CODE(VmbErrorApiNotStarted, VmbCamerasList(NULL, 0, NULL, 0));
    CHECK_CODE(VmbErrorApiNotStarted, VmbCameraInfoQuery(NULL, NULL, 0));
    CHECK_CODE(VmbErrorApiNotStarted, VmbCameraOpen(NULL, VmbAccessModeNone, NULL));
    CHECK_CODE(VmbErrorApiNotStarted, VmbFeaturesList(NULL, NULL, 0, NULL, 0));
    CHECK_CODE(VmbErrorApiNotStarted, VmbFeatureIntGet(NULL, NULL, NULL));
    CHECK_CODE(VmbErrorApiNotStarted, VmbFeatureEnumEntryGet(NULL, NULL, NULL, NULL, 0));
    CHECK_CODE(VmbErrorApiNotStarted, VmbFrameAnnounce(NULL, NULL, 0));
    CHECK_CODE(VmbErrorApiNotStarted, VmbInterfacesList(NULL, 0, NULL, 0));
    CHECK_CODE(VmbErrorApiNotStarted, VmbInterfaceOpen(NULL, NULL));
    CHECK_CODE(VmbErrorApiNotStarted, VmbAncillaryDataOpen(NULL, NULL));
    CHECK_CODE(VmbErrorApiNotStarted, VmbMemoryRead(NULL, 0, 0, NULL, NULL));
    CHECK_CODE(VmbErrorApiNotStarted, VmbCameraSettingsLoad(NULL, NULL, NULL, 0));
}

static void a_bad_handle_is_told_before_null_pointers(void) {
    CHECK_CODE(VmbErrorBadHandle, VmbFeaturesList(kForeignHandle, NULL, 0, NULL, 0));
    CHECK_CODE(VmbErrorBadHandle, VmbFeatureInfoQuery(kForeignHandle, NULL, NULL, 0));
    CHECK_CODE(VmbErrorBadHandle, VmbFeatureAccessQuery(kForeignHandle, NULL, NULL, NULL));
    CHECK_CODE(VmbErrorBadHandle, VmbFeatureIntGet(kForeignHandle, NULL, NULL));
    CHECK_CODE(VmbErrorBadHandle, VmbFeatureEnumSet(kForeignHandle, NULL, NULL));
    CHECK_CODE(VmbErrorBadHandle, VmbFeatureStringGet(kForeignHandle, NULL, NULL, 0, NULL));
    CHECK_CODE(VmbErrorBadHandle, VmbFeatureInvalidationRegister(kForeignHandle, NULL, NULL, NULL));
    CHECK_CODE(VmbErrorBadHandle, VmbFrameAnnounce(kForeignHandle, NULL, 0));
    CHECK_CODE(VmbErrorBadHandle, VmbFrameRevoke(kForeignHandle, NULL));
    CHECK_CODE(VmbErrorBadHandle, VmbCaptureFrameQueue(kForeignHandle, NULL, NULL));
    CHECK_CODE(VmbErrorBadHandle, VmbMemoryRead(kForeignHandle, 0, 4, NULL, NULL));
    CHECK_CODE(VmbErrorBadHandle, VmbCameraSettingsSave(kForeignHandle, NULL, NULL, 0));
}

static void a_null_pointer_is_told_before_a_wrong_size(void) {
    VmbFeaturePersistSettings_t settings = {VmbFeaturePersistNoLUT, 5, 0};
    CHECK_CODE(VmbErrorBadParameter, VmbVersionQuery(NULL, 1));
    CHECK_CODE(VmbErrorBadParameter, VmbCamerasList(NULL, 0, NULL, 1));
    CHECK_CODE(VmbErrorBadParameter, VmbCameraInfoQuery(NULL, NULL, 1));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureInfoQuery(camera, NULL, &info, 1));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureInfoQuery(camera, "Width", NULL, 1));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumEntryGet(camera, "PixelFormat", NULL, &entry, 1));
    CHECK_CODE(VmbErrorBadParameter, VmbFrameAnnounce(camera, NULL, 1));
    CHECK_CODE(VmbErrorBadParameter, VmbCameraSettingsSave(camera, NULL, &settings, 1));
}

static void a_wrong_size_is_told_before_an_unknown_name(void) {
    VmbCameraInfo_t cameraInfo;
    CHECK_CODE(VmbErrorStructSize, VmbCameraInfoQuery("Nonsense", &cameraInfo, 1));
    CHECK_CODE(VmbErrorStructSize, VmbFeatureInfoQuery(camera, "Nonsense", &info, 1));
    CHECK_CODE(VmbErrorStructSize, VmbFeatureListAffected(camera, "Nonsense", &info, 1, &count, 1));
    CHECK_CODE(VmbErrorStructSize, VmbFeatureEnumEntryGet(camera, "Nonsense", "Off", &entry, 1));
    CHECK_CODE(VmbErrorStructSize, VmbFeatureEnumEntryGet(camera, "Width", "Off", &entry, 1));
}

static void a_null_pointer_is_told_before_an_unknown_name(void) {
    VmbHandle_t handle = NULL;
    VmbInt64_t number = 0;
    CHECK_CODE(VmbErrorBadParameter, VmbCameraOpen("Nonsense", VmbAccessModeFull, NULL));
    CHECK_CODE(VmbErrorBadParameter, VmbInterfaceOpen("Nonsense", NULL));
    CHECK_CODE(VmbErrorBadParameter, VmbCameraOpen(NULL, VmbAccessModeNone, &handle));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureIntGet(camera, "Nonsense", NULL));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumAsInt(camera, "Nonsense", NULL, &number));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureAccessQuery(camera, "Nonsense", NULL, NULL));
}

static void a_wrong_type_is_told_before_access_and_value(void) {
    CHECK_CODE(VmbErrorWrongType, VmbFeatureFloatSet(camera, "SensorWidth", 1));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureIntSet(camera, "AcquisitionFrameRateLimit", -1));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureIntGet(camera, "AcquisitionStart", &(VmbInt64_t){0}));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureEnumSet(camera, "DeviceModelName", "Nonsense"));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureCommandRun(camera, "SensorWidth"));
}

static void missing_access_is_told_before_a_bad_value(void) {
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureIntSet(camera, "SensorWidth", -1));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureFloatSet(camera, "AcquisitionFrameRateLimit", -1));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureEnumSet(camera, "SensorType", "Nonsense"));
    prepareStream(1);
    startStream();
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureIntSet(camera, "Width", -1));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureEnumSet(camera, "PixelFormat", "Nonsense"));
    stopStream();
}

const Test kOrderTests[] = {
    TEST(NEEDS_NOTHING, not_started_is_told_before_all_else),
    TEST(NEEDS_CAMERA, a_bad_handle_is_told_before_null_pointers),
    TEST(NEEDS_CAMERA, a_null_pointer_is_told_before_a_wrong_size),
    TEST(NEEDS_CAMERA, a_wrong_size_is_told_before_an_unknown_name),
    TEST(NEEDS_CAMERA, a_null_pointer_is_told_before_an_unknown_name),
    TEST(NEEDS_CAMERA, a_wrong_type_is_told_before_access_and_value),
    TEST(NEEDS_CAMERA, missing_access_is_told_before_a_bad_value),
    END_OF_TESTS,
};
