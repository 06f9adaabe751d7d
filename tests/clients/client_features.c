#include <math.h>
#include <string.h>

#include "client.h"

enum { MOST_ENTRIES = 16 };

void features_have_their_types(void) {
    static const struct {
        const char* name;
        VmbFeatureData_t type;
    } kRows[] = {
        {"Width", VmbFeatureDataInt},
        {"ExposureTimeAbs", VmbFeatureDataFloat},
        {"PixelFormat", VmbFeatureDataEnum},
        {"DeviceUserID", VmbFeatureDataString},
        {"StreamFrameRateConstrain", VmbFeatureDataBool},
        {"AcquisitionStart", VmbFeatureDataCommand},
        {"SimulatorRawData", VmbFeatureDataRaw},
    };
    for (size_t i = 0; i < sizeof kRows / sizeof *kRows; ++i) {
        VmbFeatureInfo_t info = {0};
        SUCCEEDS(VmbFeatureInfoQuery(camera, kRows[i].name, &info, sizeof info));
        check(strcmp(info.name, kRows[i].name) == 0, "the feature is the one asked for");
        check(info.featureDataType == kRows[i].type, "the feature has its type");
    }
}

void integers_are_read_and_set(void) {
    VmbInt64_t least = 0;
    VmbInt64_t most = 0;
    VmbInt64_t step = 0;
    SUCCEEDS(VmbFeatureIntSet(camera, "Width", WIDTH));
    check(integer(camera, "Width") == WIDTH, "the width is 640 pixels");
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, "Width", &least, &most));
    check(most == 656, "the sensor is 656 pixels wide");
    SUCCEEDS(VmbFeatureIntIncrementQuery(camera, "Width", &step));
    check(step == 8, "widths are multiples of 8");
    answers(VmbErrorInvalidValue, api.VmbFeatureIntSet(camera, "Width", 641), "a width between is refused");
    answers(VmbErrorInvalidValue, api.VmbFeatureIntSet(camera, "Width", 664), "a wider one is refused");
}

void floats_are_read_and_set(void) {
    double value = 0;
    double least = 0;
    double most = 0;
    SUCCEEDS(VmbFeatureFloatSet(camera, "ExposureTimeAbs", 2000.4));
    SUCCEEDS(VmbFeatureFloatGet(camera, "ExposureTimeAbs", &value));
    check(fabs(value - 2000) < 1e-9, "exposure is rounded to microseconds");
    SUCCEEDS(VmbFeatureFloatRangeQuery(camera, "ExposureTimeAbs", &least, &most));
    check(fabs(least - 30) < 1e-9 && most > least, "the shortest exposure is 30 us");
    answers(VmbErrorInvalidValue, api.VmbFeatureFloatSet(camera, "ExposureTimeAbs", 29),
            "a shorter one is refused");
}

void enumerations_are_read_and_set(void) {
    static const char* const kFormats[] = {"Mono8",        "BayerRG8",   "YUV411Packed",
                                           "YUV422Packed", "RGB8Packed", "BGR8Packed"};
    const char* entries[MOST_ENTRIES] = {NULL};
    VmbUint32_t count = 0;
    VmbInt64_t number = 0;
    SUCCEEDS(VmbFeatureEnumRangeQuery(camera, "PixelFormat", entries, MOST_ENTRIES, &count));
    check(count == 6, "there are six formats");
    for (VmbUint32_t i = 0; i < count; ++i) {
        check(strcmp(entries[i], kFormats[i]) == 0, "formats are listed in the order of their numbers");
    }
    choose("PixelFormat", "RGB8Packed");
    SUCCEEDS(VmbFeatureEnumAsInt(camera, "PixelFormat", "RGB8Packed", &number));
    check(number == 0x02180014, "the number of RGB8Packed says three bytes a pixel");
    answers(VmbErrorInvalidValue, api.VmbFeatureEnumSet(camera, "PixelFormat", "Sepia"),
            "an unknown entry is refused");
}

void texts_are_read_and_set(void) {
    char text[16] = "";
    VmbUint32_t size = 0;
    SUCCEEDS(VmbFeatureStringMaxlengthQuery(camera, "DeviceUserID", &size));
    check(size == 16, "the user's name for the camera has room for 16 bytes");
    SUCCEEDS(VmbFeatureStringSet(camera, "DeviceUserID", "fifteen letters"));
    SUCCEEDS(VmbFeatureStringGet(camera, "DeviceUserID", text, sizeof text, &size));
    check(size == 16 && strcmp(text, "fifteen letters") == 0, "15 letters and a zero fit");
    answers(VmbErrorInvalidValue, api.VmbFeatureStringSet(camera, "DeviceUserID", "sixteen letters!"),
            "16 do not");
    answers(VmbErrorMoreData, api.VmbFeatureStringGet(camera, "DeviceUserID", text, 15, &size),
            "a short buffer is refused");
}

void switches_and_bytes_are_read_and_set(void) {
    static const char kBytes[4] = {0, 1, (char)0xFF, 0};
    char bytes[4] = "abc";
    VmbUint32_t size = 0;
    for (int on = 0; on <= 1; ++on) {
        VmbBool_t value = !on;
        SUCCEEDS(VmbFeatureBoolSet(camera, "StreamFrameRateConstrain", on != 0));
        SUCCEEDS(VmbFeatureBoolGet(camera, "StreamFrameRateConstrain", &value));
        check(value == (on != 0), "a switch is as it was set");
    }
    SUCCEEDS(VmbFeatureRawSet(camera, "SimulatorRawData", kBytes, sizeof kBytes));
    SUCCEEDS(VmbFeatureRawLengthQuery(camera, "SimulatorRawData", &size));
    check(size == sizeof kBytes, "four bytes are kept");
    SUCCEEDS(VmbFeatureRawGet(camera, "SimulatorRawData", bytes, sizeof bytes, &size));
    check(size == sizeof kBytes && memcmp(bytes, kBytes, sizeof bytes) == 0, "raw bytes hold zeros too");
}

void commands_run(void) {
    const VmbSimOscillator fast = {
        .tickFrequency = 1000000000, .startTicks = MANY_TICKS, .errorPpb = 12000, .driftPeriodS = 1};
    SUCCEEDS(VmbSimSetOscillator(kFirst, &fast));
    check(integer(camera, "GevTimestampTickFrequency") == 1000000000, "the camera counts nanoseconds");
    run(camera, "GevTimestampControlLatch");
    const VmbInt64_t first = integer(camera, "GevTimestampValue");
    check(first >= (VmbInt64_t)MANY_TICKS, "the camera's clock needs more than 32 bits");
    run(camera, "GevTimestampControlLatch");
    check(integer(camera, "GevTimestampValue") > first, "the camera's clock goes on between two latches");
}

void mistakes_are_told_apart(void) {
    VmbInt64_t value = 0;
    answers(VmbErrorNotFound, api.VmbFeatureIntGet(camera, "Widht", &value), "an unknown feature");
    answers(VmbErrorWrongType, api.VmbFeatureIntGet(camera, "Gain", &value), "a float is no integer");
    answers(VmbErrorBadParameter, api.VmbFeatureIntGet(camera, "Width", NULL), "no place for the value");
    answers(VmbErrorBadHandle, api.VmbFeatureIntGet(NULL, "Width", &value), "no handle");
    answers(VmbErrorInvalidAccess, api.VmbFeatureIntSet(camera, "PayloadSize", 1), "a feature to be read");
}
