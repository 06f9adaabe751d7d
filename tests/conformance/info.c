#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "stream.h"

static void feature_info_must_be_asked_for_properly(void) {
    VmbFeatureInfo_t info;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureInfoQuery(camera, NULL, &info, sizeof info));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureInfoQuery(camera, "Width", NULL, sizeof info));
    CHECK_CODE(VmbErrorStructSize, VmbFeatureInfoQuery(camera, "Width", &info, sizeof info - 1));
    CHECK_CODE(VmbErrorStructSize, VmbFeatureInfoQuery(camera, "Width", &info, sizeof info + 1));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureInfoQuery(camera, "Nonsense", &info, sizeof info));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureInfoQuery(camera, "", &info, sizeof info));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureInfoQuery(camera, "GeVDiscoveryAllOnce", &info, sizeof info));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureInfoQuery(gVimbaHandle, "Width", &info, sizeof info));
}

static void feature_info_is_given(void) {
    VmbFeatureInfo_t info;
    memset(&info, 0, sizeof info);
    SUCCEEDS(VmbFeatureInfoQuery(camera, "Width", &info, sizeof info));
    CHECK_TEXT("Width", info.name);
    CHECK_INT(VmbFeatureDataInt, info.featureDataType);
    CHECK(info.hasAffectedFeatures);
    CHECK(!info.hasSelectedFeatures);
}

static void access_needs_one_answer_at_least(void) {
    VmbBool_t readable = false;
    VmbBool_t writeable = false;
    SUCCEEDS(VmbFeatureAccessQuery(camera, "Width", &readable, &writeable));
    CHECK(readable && writeable);
    readable = writeable = false;
    SUCCEEDS(VmbFeatureAccessQuery(camera, "Width", &readable, NULL));
    CHECK(readable);
    SUCCEEDS(VmbFeatureAccessQuery(camera, "Width", NULL, &writeable));
    CHECK(writeable);
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureAccessQuery(camera, "Width", NULL, NULL));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureAccessQuery(camera, NULL, &readable, &writeable));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureAccessQuery(camera, "Nonsense", &readable, &writeable));
}

static void what_can_never_be_written_cannot_be_written_now(void) {
    VmbBool_t readable = false;
    VmbBool_t writeable = true;
    SUCCEEDS(VmbFeatureAccessQuery(camera, "SensorWidth", &readable, &writeable));
    CHECK(readable);
    CHECK(!writeable);
}

static void checkAccessWithinFlags(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    VmbBool_t readable = false;
    VmbBool_t writeable = false;
    if (!SUCCEEDS(VmbFeatureAccessQuery(handle, info->name, &readable, &writeable))) return;
    CHECK(!readable || (info->featureFlags & VmbFeatureFlagsRead));
    CHECK(!writeable || (info->featureFlags & VmbFeatureFlagsWrite));
}

static void access_stays_within_the_flags(void) {
    forEachFeature(camera, checkAccessWithinFlags);
    forEachFeature(gVimbaHandle, checkAccessWithinFlags);
}

/// Reads a feature as if it were of one type.
typedef struct {
    VmbFeatureData_t type;
    VmbError_t (*read)(VmbHandle_t handle, const char* name);
} Reader;

static VmbError_t readInt(VmbHandle_t handle, const char* name) {
    VmbInt64_t value = 0;
    return VmbFeatureIntGet(handle, name, &value);
}

static VmbError_t readFloat(VmbHandle_t handle, const char* name) {
    double value = 0;
    return VmbFeatureFloatGet(handle, name, &value);
}

static VmbError_t readEnum(VmbHandle_t handle, const char* name) {
    const char* value = NULL;
    return VmbFeatureEnumGet(handle, name, &value);
}

static VmbError_t readString(VmbHandle_t handle, const char* name) {
    VmbUint32_t size = 0;
    return VmbFeatureStringGet(handle, name, NULL, 0, &size);
}

static VmbError_t readBool(VmbHandle_t handle, const char* name) {
    VmbBool_t value = false;
    return VmbFeatureBoolGet(handle, name, &value);
}

static VmbError_t readRaw(VmbHandle_t handle, const char* name) {
    static char data[65536];
    VmbUint32_t size = 0;
    return VmbFeatureRawGet(handle, name, data, sizeof data, &size);
}

static const Reader kReaders[] = {
    {VmbFeatureDataInt, readInt},       {VmbFeatureDataFloat, readFloat}, {VmbFeatureDataEnum, readEnum},
    {VmbFeatureDataString, readString}, {VmbFeatureDataBool, readBool},   {VmbFeatureDataRaw, readRaw},
};

static void checkReaders(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    VmbBool_t readable = false;
    SUCCEEDS(VmbFeatureAccessQuery(handle, info->name, &readable, NULL));
    for (size_t i = 0; i < sizeof kReaders / sizeof *kReaders; ++i) {
        if (kReaders[i].type != info->featureDataType) {
            CHECK_CODE(VmbErrorWrongType, kReaders[i].read(handle, info->name));
        } else {
            CHECK_CODE(readable ? VmbErrorSuccess : VmbErrorInvalidAccess,
                       kReaders[i].read(handle, info->name));
        }
    }
}

static void every_feature_is_read_by_its_own_type_alone(void) {
    forEachFeature(camera, checkReaders);
    forEachFeature(gVimbaHandle, checkReaders);
}

static void checkReadOnly(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    static const char kData[1] = {0};
    if (info->featureFlags & VmbFeatureFlagsWrite) return;
    switch (info->featureDataType) {
        case VmbFeatureDataInt:
            CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureIntSet(handle, info->name, 1));
            break;
        case VmbFeatureDataFloat:
            CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureFloatSet(handle, info->name, 1));
            break;
        case VmbFeatureDataEnum:
            CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureEnumSet(handle, info->name, "Off"));
            break;
        case VmbFeatureDataString:
            CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureStringSet(handle, info->name, "text"));
            break;
        case VmbFeatureDataBool:
            CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureBoolSet(handle, info->name, false));
            break;
        case VmbFeatureDataRaw:
            CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureRawSet(handle, info->name, kData, sizeof kData));
            break;
        default:
            break;
    }
}

static void features_without_the_write_flag_refuse_to_be_set(void) {
    forEachFeature(camera, checkReadOnly);
    forEachFeature(gVimbaHandle, checkReadOnly);
}

const Test kInfoTests[] = {
    TEST(NEEDS_CAMERA, feature_info_must_be_asked_for_properly),
    TEST(NEEDS_CAMERA, feature_info_is_given),
    TEST(NEEDS_CAMERA, access_needs_one_answer_at_least),
    TEST(NEEDS_CAMERA, what_can_never_be_written_cannot_be_written_now),
    TEST(NEEDS_CAMERA, access_stays_within_the_flags),
    TEST(NEEDS_CAMERA, every_feature_is_read_by_its_own_type_alone),
    TEST(NEEDS_CAMERA, features_without_the_write_flag_refuse_to_be_set),
    END_OF_TESTS,
};
