/// The features of the camera against the tables, and the relations between them.
#include "features.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"

static bool seesColours(void) {
    return strcmp(enumOf("SensorType"), "Bayer") == 0;
}

static void checkType(int wanted, VmbFeatureData_t got) {
    if (wanted == NUMBER) {
        CHECK(got == INT || got == FLOAT);
    } else {
        CHECK_INT(wanted, got);
    }
}

static void checkUnit(const char* wanted, const char* got) {
    // Open: how the sign for a millionth is spelt.
    if (strcmp(wanted, "µs") == 0 && got && strcmp(got, "us") == 0) return;
    CHECK_TEXT(wanted, got);
}

void checkFeatureRow(VmbHandle_t handle, const FeatureRow* row, bool colour) {
    VmbFeatureInfo_t info;
    checkAbout(row->name);
    memset(&info, 0, sizeof info);
    const VmbError_t result = VmbFeatureInfoQuery(handle, row->name, &info, sizeof info);
    const bool mustExist = row->presence == ALWAYS || (row->presence == COLOUR && colour);
    if (result == VmbErrorNotFound && !mustExist) return;
    if (!CHECK_CODE(VmbErrorSuccess, result)) return;
    checkType(row->type, info.featureDataType);
    if (row->access != ANY_ACCESS) CHECK_INT(row->access, info.featureFlags & (R | W));
    if (row->unit) checkUnit(row->unit, info.unit);
}

static void the_camera_has_the_features_of_its_kind(void) {
    const bool colour = seesColours();
    for (const FeatureRow* row = kCameraFeatures; row->name; ++row) checkFeatureRow(camera, row, colour);
}

static bool isOneOf(VmbInt64_t value, const VmbInt64_t* choices) {
    return choices[0] == ANY || value == choices[0] || value == choices[1] || value == choices[2];
}

static void checkIntRow(const IntRow* row) {
    VmbInt64_t min = 0;
    VmbInt64_t max = 0;
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, row->name, &min, &max));
    if (row->min != ANY) CHECK_INT(row->min, min);
    if (row->max != ANY) CHECK_INT(row->max, max);
    const VmbInt64_t value = intOf(row->name);
    if (!isOneOf(value, row->defaults)) CHECK_INT(row->defaults[0], value);
}

static void integers_have_their_ranges_and_defaults(void) {
    for (const IntRow* row = kIntRows; row->name; ++row) {
        checkAbout(row->name);
        if (hasFeature(row->name)) checkIntRow(row);
    }
}

/// Not isnan, which one compiler expands to a conversion that another warning of its refuses.
static bool isNumber(double value) {
    return value == value;
}

static void checkFloatRow(const FloatRow* row) {
    double min = 0;
    double max = 0;
    SUCCEEDS(VmbFeatureFloatRangeQuery(camera, row->name, &min, &max));
    if (isNumber(row->min)) CHECK_NEAR(row->min, min, 1e-9);
    if (isNumber(row->max)) CHECK_NEAR(row->max, max, 1e-9);
    const double value = floatOf(row->name);
    if (fabs(value - row->defaults[1]) > 1e-9) CHECK_NEAR(row->defaults[0], value, 1e-9);
}

static void floats_have_their_ranges_and_defaults(void) {
    for (const FloatRow* row = kFloatRows; row->name; ++row) {
        checkAbout(row->name);
        if (hasFeature(row->name)) checkFloatRow(row);
    }
}

static void entries_and_truth_values_have_their_defaults(void) {
    for (const DefaultRow* row = kEnumDefaults; row->name; ++row) {
        checkAbout(row->name);
        if (hasFeature(row->name)) CHECK_TEXT(row->value, enumOf(row->name));
    }
    for (const DefaultRow* row = kBoolDefaults; row->name; ++row) {
        VmbBool_t value = false;
        checkAbout(row->name);
        if (!hasFeature(row->name)) continue;
        SUCCEEDS(VmbFeatureBoolGet(camera, row->name, &value));
        CHECK_TEXT(row->value, value ? "true" : "false");
    }
}

static void only_the_trigger_of_frames_is_on_at_first(void) {
    const char* selectors[16];
    VmbUint32_t count = 0;
    keep("TriggerSelector");
    SUCCEEDS(VmbFeatureEnumRangeQuery(camera, "TriggerSelector", selectors, 16, &count));
    for (VmbUint32_t i = 0; i < count && i < 16; ++i) {
        checkAbout(selectors[i]);
        SUCCEEDS(VmbFeatureEnumSet(camera, "TriggerSelector", selectors[i]));
        CHECK_TEXT(strcmp(selectors[i], "FrameStart") == 0 ? "On" : "Off", enumOf("TriggerMode"));
    }
}

static void the_pixel_format_is_eight_bit_at_first(void) {
    const char* format = enumOf("PixelFormat");
    if (seesColours()) {
        CHECK(strncmp(format, "Bayer", 5) == 0 && format[strlen(format) - 1] == '8');
    } else {
        CHECK_TEXT("Mono8", format);
    }
}

static void the_largest_image_is_the_sensor(void) {
    CHECK_INT(intOf("SensorWidth") / intOf("BinningHorizontal") / intOf("DecimationHorizontal"),
              intOf("WidthMax"));
    CHECK_INT(intOf("SensorHeight") / intOf("BinningVertical") / intOf("DecimationVertical"),
              intOf("HeightMax"));
    CHECK_INT(intOf("WidthMax"), intOf("Width") + intOf("OffsetX"));
    CHECK_INT(intOf("HeightMax"), intOf("Height") + intOf("OffsetY"));
}

/// Open: a model of coarse steps may begin at its first step instead of at 1.
static void the_smallest_image_is_one_pixel_or_one_step(void) {
    const char* const kSizes[] = {"Width", "Height"};
    for (int i = 0; i < 2; ++i) {
        checkAbout(kSizes[i]);
        const VmbInt64_t min = stepOf(kSizes[i], 0);
        CHECK(min == 1 || min == stepOf(kSizes[i], 1) - min);
    }
}

static void both_views_of_the_packet_size_are_the_same(void) {
    CHECK_INT(intOf("GevSCPSPacketSize"), intOf("GVSPPacketSize"));
    putInt("GevSCPSPacketSize", 1500);
    CHECK_INT(1500, intOf("GVSPPacketSize"));
}

static void binning_divides_the_largest_image(void) {
    VmbInt64_t max = 1;
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, "BinningHorizontal", NULL, &max));
    if (max < 2) return;
    keep("Width");
    putInt("BinningHorizontal", 2);
    CHECK_INT(intOf("SensorWidth") / 2, intOf("WidthMax"));
    CHECK(intOf("Width") <= intOf("WidthMax"));
}

static void a_smaller_image_may_be_moved(void) {
    VmbInt64_t min = -1;
    VmbInt64_t max = 0;
    VmbInt64_t increment = 1;
    putInt("Height", stepOf("Height", 10));
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, "OffsetY", &min, &max));
    SUCCEEDS(VmbFeatureIntIncrementQuery(camera, "OffsetY", &increment));
    const VmbInt64_t room = intOf("HeightMax") - intOf("Height");
    CHECK_INT(0, min);
    CHECK(max <= room && max > room - increment);
    putInt("OffsetY", increment);
    CHECK_INT(increment, intOf("OffsetY"));
}

static void checkImageSize(const char* format) {
    VmbInt64_t number = 0;
    VmbBool_t available = false;
    SUCCEEDS(VmbFeatureEnumIsAvailable(camera, "PixelFormat", format, &available));
    if (!available || !SUCCEEDS(VmbFeatureEnumSet(camera, "PixelFormat", format))) return;
    SUCCEEDS(VmbFeatureEnumAsInt(camera, "PixelFormat", format, &number));
    const VmbInt64_t bits = intOf("Width") * intOf("Height") * (number >> 16 & 255);
    const VmbInt64_t size = intOf("ImageSize");
    CHECK(size == bits / 8 || size == (bits + 7) / 8);
    CHECK_INT(size + (intOf("NonImagePayloadSize") ? intOf("NonImagePayloadSize") + 8 : 0),
              intOf("PayloadSize"));
}

static void the_image_size_follows_the_pixel_format(void) {
    const char* formats[64];
    VmbUint32_t count = 0;
    keep("PixelFormat");
    SUCCEEDS(VmbFeatureEnumRangeQuery(camera, "PixelFormat", formats, 64, &count));
    for (VmbUint32_t i = 0; i < count && i < 64; ++i) {
        checkAbout(formats[i]);
        checkImageSize(formats[i]);
    }
}

static void the_highest_frame_rate_is_about_the_limit(void) {
    double max = 0;
    const double limit = floatOf("AcquisitionFrameRateLimit");
    SUCCEEDS(VmbFeatureFloatRangeQuery(camera, "AcquisitionFrameRateAbs", NULL, &max));
    CHECK_NEAR(limit, max, 0.01 * limit);
}

static void automatic_exposure_begins_at_the_shortest_time(void) {
    double min = 0;
    SUCCEEDS(VmbFeatureFloatRangeQuery(camera, "ExposureTimeAbs", &min, NULL));
    CHECK_NEAR(min, (double)intOf("ExposureAutoMin"), 1);
}

static void the_hardware_address_is_in_the_id(void) {
    const VmbInt64_t address = intOf("GevDeviceMACAddress");
    CHECK(address > 0 && address < (VmbInt64_t)1 << 48);
    CHECK_INT((VmbInt64_t)strtoll(cameraId + 4, NULL, 16), address);
}

const Test kFeatureTests[] = {
    TEST(NEEDS_CAMERA, the_camera_has_the_features_of_its_kind),
    TEST(NEEDS_CAMERA, integers_have_their_ranges_and_defaults),
    TEST(NEEDS_CAMERA, floats_have_their_ranges_and_defaults),
    TEST(NEEDS_CAMERA, entries_and_truth_values_have_their_defaults),
    TEST(NEEDS_CAMERA, only_the_trigger_of_frames_is_on_at_first),
    TEST(NEEDS_CAMERA, the_pixel_format_is_eight_bit_at_first),
    TEST(NEEDS_CAMERA, the_largest_image_is_the_sensor),
    TEST(NEEDS_CAMERA, the_smallest_image_is_one_pixel_or_one_step),
    TEST(NEEDS_CAMERA, both_views_of_the_packet_size_are_the_same),
    TEST(NEEDS_CAMERA, binning_divides_the_largest_image),
    TEST(NEEDS_CAMERA, a_smaller_image_may_be_moved),
    TEST(NEEDS_CAMERA, the_image_size_follows_the_pixel_format),
    TEST(NEEDS_CAMERA, the_highest_frame_rate_is_about_the_limit),
    TEST(NEEDS_CAMERA, automatic_exposure_begins_at_the_shortest_time),
    TEST(NEEDS_CAMERA, the_hardware_address_is_in_the_id),
    END_OF_TESTS,
};
