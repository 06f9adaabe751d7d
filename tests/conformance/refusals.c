#include "refusals.h"

#include <string.h>

#include "bench.h"
#include "calls.h"
#include "conformance.h"
#include "stream.h"
#include "watch.h"

static VmbInt64_t integer;
static VmbInt64_t integerToo;
static double real;
static double realToo;
static VmbBool_t truth;
static VmbBool_t truthToo;
static VmbUint32_t count;
static const char* text;
static char buffer[TEXT_SIZE];

static void numberFunctionsAnswer(VmbError_t wanted, VmbHandle_t handle) {
    CHECK_CODE(wanted, VmbFeatureIntGet(handle, "Width", &integer));
    CHECK_CODE(wanted, VmbFeatureIntSet(handle, "Width", 64));
    CHECK_CODE(wanted, VmbFeatureIntRangeQuery(handle, "Width", &integer, &integerToo));
    CHECK_CODE(wanted, VmbFeatureIntIncrementQuery(handle, "Width", &integer));
    CHECK_CODE(wanted, VmbFeatureFloatGet(handle, "Gain", &real));
    CHECK_CODE(wanted, VmbFeatureFloatSet(handle, "Gain", 0));
    CHECK_CODE(wanted, VmbFeatureFloatRangeQuery(handle, "Gain", &real, &realToo));
    CHECK_CODE(wanted, VmbFeatureFloatIncrementQuery(handle, "Gain", &truth, &real));
    CHECK_CODE(wanted, VmbFeatureBoolGet(handle, "ChunkModeActive", &truth));
    CHECK_CODE(wanted, VmbFeatureBoolSet(handle, "ChunkModeActive", false));
    CHECK_CODE(wanted, VmbFeatureCommandRun(handle, "GevTimestampControlLatch"));
    CHECK_CODE(wanted, VmbFeatureCommandIsDone(handle, "GevTimestampControlLatch", &truth));
}

static void textFunctionsAnswer(VmbError_t wanted, VmbHandle_t handle) {
    const char* const kMode = "AcquisitionMode";
    VmbFeatureEnumEntry_t entry;
    CHECK_CODE(wanted, VmbFeatureEnumGet(handle, kMode, &text));
    CHECK_CODE(wanted, VmbFeatureEnumSet(handle, kMode, "Continuous"));
    CHECK_CODE(wanted, VmbFeatureEnumRangeQuery(handle, kMode, NULL, 0, &count));
    CHECK_CODE(wanted, VmbFeatureEnumIsAvailable(handle, kMode, "Continuous", &truth));
    CHECK_CODE(wanted, VmbFeatureEnumAsInt(handle, kMode, "Continuous", &integer));
    CHECK_CODE(wanted, VmbFeatureEnumAsString(handle, kMode, 1, &text));
    CHECK_CODE(wanted, VmbFeatureEnumEntryGet(handle, kMode, "Continuous", &entry, sizeof entry));
    CHECK_CODE(wanted, VmbFeatureStringGet(handle, "DeviceModelName", NULL, 0, &count));
    CHECK_CODE(wanted, VmbFeatureStringSet(handle, "DeviceUserID", "a name"));
    CHECK_CODE(wanted, VmbFeatureStringMaxlengthQuery(handle, "DeviceModelName", &count));
    CHECK_CODE(wanted, VmbFeatureRawGet(handle, "AnyRawFeature", buffer, sizeof buffer, &count));
    CHECK_CODE(wanted, VmbFeatureRawSet(handle, "AnyRawFeature", buffer, sizeof buffer));
    CHECK_CODE(wanted, VmbFeatureRawLengthQuery(handle, "AnyRawFeature", &count));
}

static void infoFunctionsAnswer(VmbError_t wanted, VmbHandle_t handle) {
    static Watch watch;
    VmbFeatureInfo_t info;
    CHECK_CODE(wanted, VmbFeaturesList(handle, NULL, 0, &count, sizeof info));
    CHECK_CODE(wanted, VmbFeatureInfoQuery(handle, "Width", &info, sizeof info));
    CHECK_CODE(wanted, VmbFeatureListAffected(handle, "Width", NULL, 0, &count, sizeof info));
    CHECK_CODE(wanted, VmbFeatureListSelected(handle, "TriggerSelector", NULL, 0, &count, sizeof info));
    CHECK_CODE(wanted, VmbFeatureAccessQuery(handle, "Width", &truth, &truthToo));
    CHECK_CODE(wanted, VmbFeatureInvalidationRegister(handle, "Width", recordInvalidation, &watch));
    CHECK_CODE(wanted, VmbFeatureInvalidationUnregister(handle, "Width", recordInvalidation));
}

void everyFeatureFunctionAnswers(VmbError_t wanted, VmbHandle_t handle) {
    numberFunctionsAnswer(wanted, handle);
    textFunctionsAnswer(wanted, handle);
    infoFunctionsAnswer(wanted, handle);
}

static void frameFunctionsAnswer(VmbError_t wanted, VmbError_t wantedFromStart, VmbHandle_t handle) {
    static char image[1024];
    static VmbFrame_t frame;
    memset(&frame, 0, sizeof frame);
    frame.buffer = image;
    frame.bufferSize = sizeof image;
    CHECK_CODE(wanted, VmbFrameAnnounce(handle, &frame, sizeof frame));
    CHECK_EITHER(wanted, wantedFromStart, VmbCaptureStart(handle));
    CHECK_CODE(wanted, VmbCaptureFrameQueue(handle, &frame, recordArrival));
    CHECK_CODE(wanted, VmbCaptureFrameWait(handle, &frame, 1));
    CHECK_CODE(wanted, VmbCaptureEnd(handle));
    CHECK_CODE(wanted, VmbCaptureQueueFlush(handle));
    CHECK_CODE(wanted, VmbFrameRevoke(handle, &frame));
    CHECK_CODE(wanted, VmbFrameRevokeAll(handle));
}

void everyCameraFunctionAnswers(VmbError_t wanted, VmbError_t wantedFromStart, VmbHandle_t handle) {
    const VmbUint64_t address = 0;
    VmbUint64_t data = 0;
    VmbFeaturePersistSettings_t settings = {VmbFeaturePersistNoLUT, 5, 0};
    frameFunctionsAnswer(wanted, wantedFromStart, handle);
    CHECK_CODE(wanted, VmbMemoryRead(handle, 0, 4, buffer, &count));
    CHECK_CODE(wanted, VmbMemoryWrite(handle, 0, 4, buffer, &count));
    CHECK_CODE(wanted, VmbRegistersRead(handle, 1, &address, &data, &count));
    CHECK_CODE(wanted, VmbRegistersWrite(handle, 1, &address, &data, &count));
    CHECK_CODE(wanted, VmbCameraSettingsSave(handle, "never_written.xml", &settings, sizeof settings));
    CHECK_CODE(wanted, VmbCameraSettingsLoad(handle, "never_written.xml", &settings, sizeof settings));
}

void everyClosingFunctionAnswers(VmbError_t wanted, VmbHandle_t handle) {
    CHECK_CODE(wanted, VmbCameraClose(handle));
    CHECK_CODE(wanted, VmbInterfaceClose(handle));
    CHECK_CODE(wanted, VmbAncillaryDataClose(handle));
}

void everyFunctionWithoutHandleAnswers(VmbError_t wanted) {
    VmbCameraInfo_t cameraInfo;
    VmbHandle_t handle = NULL;
    VmbFrame_t frame = {0};
    CHECK_CODE(wanted, VmbCamerasList(NULL, 0, &count, sizeof cameraInfo));
    CHECK_CODE(wanted, VmbCameraInfoQuery(cameraId, &cameraInfo, sizeof cameraInfo));
    CHECK_CODE(wanted, VmbCameraOpen(cameraId, VmbAccessModeFull, &handle));
    CHECK_CODE(wanted, VmbInterfacesList(NULL, 0, &count, sizeof(VmbInterfaceInfo_t)));
    CHECK_CODE(wanted, VmbInterfaceOpen(cameraInterfaceId, &handle));
    CHECK_CODE(wanted, VmbAncillaryDataOpen(&frame, &handle));
}
