/// Texts, raw data, truth values and commands.
#include <stdlib.h>
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "waiting.h"

static const char* const kModel = "DeviceModelName";

static void a_text_is_read_in_two_steps(void) {
    char text[TEXT_SIZE] = "";
    VmbUint32_t size = 0;
    VmbUint32_t filled = 0;
    SUCCEEDS(VmbFeatureStringGet(camera, kModel, NULL, 0, &size));
    if (!CHECK(size > 1 && size < TEXT_SIZE)) return;
    memset(text, 'x', sizeof text - 1);
    SUCCEEDS(VmbFeatureStringGet(camera, kModel, text, size, &filled));
    CHECK_INT(size, filled);
    CHECK_INT(size, (int64_t)strlen(text) + 1);
    CHECK(text[size] == 'x');
    memset(text, 'x', sizeof text - 1);
    SUCCEEDS(VmbFeatureStringGet(camera, kModel, text, size, NULL));
    CHECK_INT(size, (int64_t)strlen(text) + 1);
}

static void a_short_text_buffer_is_refused(void) {
    char text[TEXT_SIZE];
    VmbUint32_t size = 0;
    VmbUint32_t filled = 0;
    SUCCEEDS(VmbFeatureStringGet(camera, kModel, NULL, 0, &size));
    if (!CHECK(size > 1 && size < TEXT_SIZE)) return;
    memset(text, 'x', sizeof text);
    CHECK_CODE(VmbErrorMoreData, VmbFeatureStringGet(camera, kModel, text, size - 1, &filled));
    CHECK_INT(size, filled);
    CHECK(text[size - 1] == 'x');
    CHECK_CODE(VmbErrorMoreData, VmbFeatureStringGet(camera, kModel, text, 0, &filled));
    CHECK_INT(size, filled);
}

static void texts_must_be_asked_for_properly(void) {
    char text[TEXT_SIZE];
    VmbUint32_t size = 0;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureStringGet(camera, NULL, text, sizeof text, &size));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureStringGet(camera, kModel, NULL, 0, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureStringGet(camera, "Nonsense", text, sizeof text, &size));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureStringGet(camera, "Width", text, sizeof text, &size));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureStringSet(camera, NULL, "text"));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureStringSet(camera, kModel, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureStringSet(camera, "Nonsense", "text"));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureStringSet(camera, "Width", "text"));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureStringSet(camera, kModel, "text"));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureStringMaxlengthQuery(camera, NULL, &size));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureStringMaxlengthQuery(camera, kModel, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureStringMaxlengthQuery(camera, "Nonsense", &size));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureStringMaxlengthQuery(camera, "Width", &size));
}

static void the_longest_text_is_one_shorter_than_the_maximum(void) {
    char text[TEXT_SIZE];
    char back[TEXT_SIZE] = "";
    VmbUint32_t max = 0;
    const char* name = findFeature(VmbFeatureDataString, VmbFeatureFlagsRead | VmbFeatureFlagsWrite);
    if (!name) {
        // Open: only newer cameras have a text that can be written.
        SUCCEEDS(VmbFeatureStringMaxlengthQuery(camera, kModel, &max));
        CHECK(max > 0);
        noteNotOffered(CALL_VmbFeatureStringSet);
        return;
    }
    checkAbout(name);
    keep(name);
    SUCCEEDS(VmbFeatureStringMaxlengthQuery(camera, name, &max));
    if (!CHECK(max > 1 && max < TEXT_SIZE)) return;
    memset(text, 'a', sizeof text);
    text[max] = 0;
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureStringSet(camera, name, text));
    text[max - 1] = 0;
    SUCCEEDS(VmbFeatureStringSet(camera, name, text));
    SUCCEEDS(VmbFeatureStringGet(camera, name, back, sizeof back, NULL));
    CHECK_TEXT(text, back);
    SUCCEEDS(VmbFeatureStringSet(camera, name, ""));
    SUCCEEDS(VmbFeatureStringGet(camera, name, back, sizeof back, &max));
    CHECK_TEXT("", back);
    CHECK_INT(1, max);
}

static void checkMaximum(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    VmbUint32_t max = 0;
    VmbUint32_t size = 0;
    VmbBool_t readable = false;
    if (info->featureDataType != VmbFeatureDataString) return;
    SUCCEEDS(VmbFeatureStringMaxlengthQuery(handle, info->name, &max));
    SUCCEEDS(VmbFeatureAccessQuery(handle, info->name, &readable, NULL));
    if (readable) SUCCEEDS(VmbFeatureStringGet(handle, info->name, NULL, 0, &size));
    CHECK(size <= max);
}

static void no_text_exceeds_its_maximum(void) {
    forEachFeature(camera, checkMaximum);
    forEachFeature(gVimbaHandle, checkMaximum);
}

static void raw_data_must_be_asked_for_properly(void) {
    char data[16] = "";
    VmbUint32_t size = 0;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureRawGet(camera, NULL, data, sizeof data, &size));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureRawGet(camera, "Nonsense", data, sizeof data, &size));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureRawGet(camera, "Width", data, sizeof data, &size));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureRawSet(camera, NULL, data, sizeof data));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureRawSet(camera, "Width", NULL, sizeof data));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureRawSet(camera, "Nonsense", data, sizeof data));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureRawSet(camera, "Width", data, sizeof data));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureRawLengthQuery(camera, NULL, &size));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureRawLengthQuery(camera, "Width", NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureRawLengthQuery(camera, "Nonsense", &size));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureRawLengthQuery(camera, "Width", &size));
}

static void readRaw(const char* name) {
    VmbUint32_t length = 0;
    VmbUint32_t filled = 0;
    SUCCEEDS(VmbFeatureRawLengthQuery(camera, name, &length));
    if (!CHECK(length > 0)) return;
    char* data = calloc(length, 1);
    if (!data) abort();
    SUCCEEDS(VmbFeatureRawGet(camera, name, data, length, &filled));
    CHECK_INT(length, filled);
    free(data);
}

static void rewriteRaw(const char* name) {
    char data[4096];
    VmbUint32_t filled = 0;
    if (SUCCEEDS(VmbFeatureRawGet(camera, name, data, sizeof data, &filled))) {
        SUCCEEDS(VmbFeatureRawSet(camera, name, data, filled));
    }
}

static void raw_data_is_read_and_written_where_a_camera_has_it(void) {
    const char* readable = findFeature(VmbFeatureDataRaw, VmbFeatureFlagsRead);
    const char* both = findFeature(VmbFeatureDataRaw, VmbFeatureFlagsRead | VmbFeatureFlagsWrite);
    // Open: no raw feature is known of these cameras.
    if (readable) {
        readRaw(readable);
    } else {
        noteNotOffered(CALL_VmbFeatureRawGet);
        noteNotOffered(CALL_VmbFeatureRawLengthQuery);
    }
    if (both) {
        rewriteRaw(both);
    } else {
        noteNotOffered(CALL_VmbFeatureRawSet);
    }
}

static void a_truth_value_is_set_and_read_back(void) {
    VmbBool_t value = false;
    keep("StreamFrameRateConstrain");
    SUCCEEDS(VmbFeatureBoolSet(camera, "StreamFrameRateConstrain", false));
    SUCCEEDS(VmbFeatureBoolGet(camera, "StreamFrameRateConstrain", &value));
    CHECK(!value);
    SUCCEEDS(VmbFeatureBoolSet(camera, "StreamFrameRateConstrain", true));
    SUCCEEDS(VmbFeatureBoolGet(camera, "StreamFrameRateConstrain", &value));
    CHECK(value);
}

static void truth_values_must_be_asked_for_properly(void) {
    VmbBool_t value = false;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureBoolGet(camera, NULL, &value));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureBoolGet(camera, "ChunkModeActive", NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureBoolGet(camera, "Nonsense", &value));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureBoolGet(camera, "Width", &value));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureBoolSet(camera, NULL, true));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureBoolSet(camera, "Nonsense", true));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureBoolSet(camera, "Width", true));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureBoolSet(gVimbaHandle, "GeVTLIsPresent", true));
}

static bool adjustmentIsDone(void) {
    VmbBool_t done = false;
    return VmbFeatureCommandIsDone(camera, "GVSPAdjustPacketSize", &done) != VmbErrorSuccess || done;
}

static void a_command_runs_until_it_is_done(void) {
    keep("GevSCPSPacketSize");
    SUCCEEDS(VmbFeatureCommandRun(camera, "GVSPAdjustPacketSize"));
    CHECK(pollUntil(adjustmentIsDone));
    CHECK_CODE(VmbErrorSuccess, VmbFeatureCommandIsDone(camera, "GVSPAdjustPacketSize", &(VmbBool_t){false}));
    CHECK(intOf("GevSCPSPacketSize") >= 500);
}

static void commands_must_be_given_properly(void) {
    VmbBool_t done = false;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureCommandRun(camera, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureCommandRun(camera, "Nonsense"));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureCommandRun(camera, "Width"));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureCommandIsDone(camera, NULL, &done));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureCommandIsDone(camera, "AcquisitionStop", NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureCommandIsDone(camera, "Nonsense", &done));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureCommandIsDone(camera, "Width", &done));
}

const Test kTextTests[] = {
    TEST(NEEDS_CAMERA, a_text_is_read_in_two_steps),
    TEST(NEEDS_CAMERA, a_short_text_buffer_is_refused),
    TEST(NEEDS_CAMERA, texts_must_be_asked_for_properly),
    TEST(NEEDS_CAMERA, the_longest_text_is_one_shorter_than_the_maximum),
    TEST(NEEDS_CAMERA, no_text_exceeds_its_maximum),
    TEST(NEEDS_CAMERA, raw_data_must_be_asked_for_properly),
    TEST(NEEDS_CAMERA, raw_data_is_read_and_written_where_a_camera_has_it),
    TEST(NEEDS_CAMERA, a_truth_value_is_set_and_read_back),
    TEST(NEEDS_CAMERA, truth_values_must_be_asked_for_properly),
    TEST(NEEDS_CAMERA, a_command_runs_until_it_is_done),
    TEST(NEEDS_CAMERA, commands_must_be_given_properly),
    END_OF_TESTS,
};
