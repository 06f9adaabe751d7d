#include <math.h>
#include <stdint.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"

static void an_integer_is_set_and_read_back(void) {
    const VmbInt64_t height = stepOf("Height", 3);
    VmbInt64_t value = 0;
    keep("Height");
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", height));
    SUCCEEDS(VmbFeatureIntGet(camera, "Height", &value));
    CHECK_INT(height, value);
}

static void an_integer_keeps_to_its_range(void) {
    VmbInt64_t min = 0;
    VmbInt64_t max = 0;
    VmbInt64_t increment = 0;
    keep("Height");
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, "Height", &min, &max));
    SUCCEEDS(VmbFeatureIntIncrementQuery(camera, "Height", &increment));
    CHECK(min >= 1 && min < max && increment >= 1);
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", min));
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", max - (max - min) % increment));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureIntSet(camera, "Height", min - increment));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureIntSet(camera, "Height", max + increment));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureIntSet(camera, "Height", INT64_MIN));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureIntSet(camera, "Height", INT64_MAX));
    CHECK_INT(max - (max - min) % increment, intOf("Height"));
}

static void checkIncrement(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    VmbBool_t writeable = false;
    VmbInt64_t min = 0;
    VmbInt64_t max = 0;
    VmbInt64_t increment = 0;
    if (info->featureDataType != VmbFeatureDataInt) return;
    SUCCEEDS(VmbFeatureAccessQuery(handle, info->name, NULL, &writeable));
    if (!writeable) return;
    SUCCEEDS(VmbFeatureIntRangeQuery(handle, info->name, &min, &max));
    if (!SUCCEEDS(VmbFeatureIntIncrementQuery(handle, info->name, &increment))) return;
    CHECK(increment >= 1);
    CHECK(min <= max);
    if (increment < 2 || max - min < increment) return;
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureIntSet(handle, info->name, min + 1));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureIntSet(handle, info->name, min + increment - 1));
}

static void integers_off_their_increment_are_refused(void) {
    forEachFeature(camera, checkIncrement);
}

static void integers_must_be_asked_for_properly(void) {
    VmbInt64_t value = 0;
    VmbInt64_t other = 0;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureIntGet(camera, NULL, &value));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureIntGet(camera, "Width", NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureIntGet(camera, "Nonsense", &value));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureIntGet(camera, "Gain", &value));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureIntSet(camera, NULL, 1));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureIntSet(camera, "Nonsense", 1));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureIntSet(camera, "Gain", 0));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureIntRangeQuery(camera, NULL, &value, &other));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureIntRangeQuery(camera, "Width", NULL, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureIntRangeQuery(camera, "Nonsense", &value, &other));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureIntRangeQuery(camera, "Gain", &value, &other));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureIntIncrementQuery(camera, NULL, &value));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureIntIncrementQuery(camera, "Width", NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureIntIncrementQuery(camera, "Nonsense", &value));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureIntIncrementQuery(camera, "Gain", &value));
}

static void half_an_integer_range_may_be_asked_for(void) {
    VmbInt64_t min = 0;
    VmbInt64_t max = 0;
    VmbInt64_t one = 0;
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, "Width", &min, &max));
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, "Width", &one, NULL));
    CHECK_INT(min, one);
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, "Width", NULL, &one));
    CHECK_INT(max, one);
}

static void a_float_is_set_and_rounded_to_the_grid_of_the_camera(void) {
    const double kWanted = 1234.5678;
    double used = 0;
    double again = 0;
    keep("ExposureTimeAbs");
    SUCCEEDS(VmbFeatureFloatSet(camera, "ExposureTimeAbs", kWanted));
    SUCCEEDS(VmbFeatureFloatGet(camera, "ExposureTimeAbs", &used));
    // The grids known are of a microsecond to some tens of them.
    CHECK_NEAR(kWanted, used, 50);
    SUCCEEDS(VmbFeatureFloatSet(camera, "ExposureTimeAbs", used));
    SUCCEEDS(VmbFeatureFloatGet(camera, "ExposureTimeAbs", &again));
    CHECK_NEAR(used, again, 1e-6);
}

static void a_float_keeps_to_its_range(void) {
    double min = 0;
    double max = 0;
    keep("Gain");
    SUCCEEDS(VmbFeatureFloatRangeQuery(camera, "Gain", &min, &max));
    CHECK_NEAR(0, min, 0);
    CHECK(max > min);
    SUCCEEDS(VmbFeatureFloatSet(camera, "Gain", max));
    CHECK_NEAR(max, floatOf("Gain"), 1);
    SUCCEEDS(VmbFeatureFloatSet(camera, "Gain", min));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureFloatSet(camera, "Gain", min - 1));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureFloatSet(camera, "Gain", max + 1));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureFloatSet(camera, "Gain", (double)INFINITY));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureFloatSet(camera, "Gain", (double)NAN));
    CHECK_NEAR(min, floatOf("Gain"), 0);
}

static void floats_must_be_asked_for_properly(void) {
    double value = 0;
    double other = 0;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureFloatGet(camera, NULL, &value));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureFloatGet(camera, "Gain", NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureFloatGet(camera, "Nonsense", &value));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureFloatGet(camera, "Width", &value));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureFloatSet(camera, NULL, 1));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureFloatSet(camera, "Nonsense", 1));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureFloatSet(camera, "Width", 64));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureFloatSet(camera, "AcquisitionFrameRateLimit", 10));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureFloatRangeQuery(camera, NULL, &value, &other));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureFloatRangeQuery(camera, "Gain", NULL, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureFloatRangeQuery(camera, "Nonsense", &value, &other));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureFloatRangeQuery(camera, "Width", &value, &other));
}

static void half_a_float_range_may_be_asked_for(void) {
    double min = 0;
    double max = 0;
    double one = 0;
    SUCCEEDS(VmbFeatureFloatRangeQuery(camera, "Gain", &min, &max));
    SUCCEEDS(VmbFeatureFloatRangeQuery(camera, "Gain", &one, NULL));
    CHECK_NEAR(min, one, 0);
    SUCCEEDS(VmbFeatureFloatRangeQuery(camera, "Gain", NULL, &one));
    CHECK_NEAR(max, one, 0);
}

static void the_increment_of_a_float_is_told_if_it_has_one(void) {
    VmbBool_t has = false;
    double increment = 0;
    SUCCEEDS(VmbFeatureFloatIncrementQuery(camera, "ExposureTimeAbs", &has, &increment));
    if (has) CHECK(increment > 0);
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureFloatIncrementQuery(camera, NULL, &has, &increment));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureFloatIncrementQuery(camera, "Gain", NULL, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureFloatIncrementQuery(camera, "Nonsense", &has, &increment));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureFloatIncrementQuery(camera, "Width", &has, &increment));
}

static void checkValueInRange(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    VmbBool_t writeable = false;
    VmbInt64_t integer[3] = {0, 0, 0};
    double real[3] = {0, 0, 0};
    SUCCEEDS(VmbFeatureAccessQuery(handle, info->name, NULL, &writeable));
    if (!writeable || !(info->featureFlags & VmbFeatureFlagsRead)) return;
    if (info->featureDataType == VmbFeatureDataInt) {
        SUCCEEDS(VmbFeatureIntGet(handle, info->name, &integer[1]));
        SUCCEEDS(VmbFeatureIntRangeQuery(handle, info->name, &integer[0], &integer[2]));
        CHECK(integer[0] <= integer[1] && integer[1] <= integer[2]);
    } else if (info->featureDataType == VmbFeatureDataFloat) {
        SUCCEEDS(VmbFeatureFloatGet(handle, info->name, &real[1]));
        SUCCEEDS(VmbFeatureFloatRangeQuery(handle, info->name, &real[0], &real[2]));
        CHECK(real[0] <= real[1] && real[1] <= real[2]);
    }
}

static void every_number_lies_in_its_own_range(void) {
    forEachFeature(camera, checkValueInRange);
    forEachFeature(gVimbaHandle, checkValueInRange);
}

const Test kNumberTests[] = {
    TEST(NEEDS_CAMERA, an_integer_is_set_and_read_back),
    TEST(NEEDS_CAMERA, an_integer_keeps_to_its_range),
    TEST(NEEDS_CAMERA, integers_off_their_increment_are_refused),
    TEST(NEEDS_CAMERA, integers_must_be_asked_for_properly),
    TEST(NEEDS_CAMERA, half_an_integer_range_may_be_asked_for),
    TEST(NEEDS_CAMERA, a_float_is_set_and_rounded_to_the_grid_of_the_camera),
    TEST(NEEDS_CAMERA, a_float_keeps_to_its_range),
    TEST(NEEDS_CAMERA, floats_must_be_asked_for_properly),
    TEST(NEEDS_CAMERA, half_a_float_range_may_be_asked_for),
    TEST(NEEDS_CAMERA, the_increment_of_a_float_is_told_if_it_has_one),
    TEST(NEEDS_CAMERA, every_number_lies_in_its_own_range),
    END_OF_TESTS,
};
