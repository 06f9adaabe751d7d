#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"

static const char* const kMode = "AcquisitionMode";

enum { MAX_ENTRIES = 256 };

static const char* entries[MAX_ENTRIES];

static VmbUint32_t readEntries(VmbHandle_t handle, const char* feature) {
    VmbUint32_t count = 0;
    memset(entries, 0, sizeof entries);
    SUCCEEDS(VmbFeatureEnumRangeQuery(handle, feature, entries, MAX_ENTRIES, &count));
    return count <= MAX_ENTRIES ? count : MAX_ENTRIES;
}

static void an_entry_is_set_and_read_back(void) {
    const char* value = NULL;
    keep(kMode);
    SUCCEEDS(VmbFeatureEnumSet(camera, kMode, "SingleFrame"));
    SUCCEEDS(VmbFeatureEnumGet(camera, kMode, &value));
    CHECK_TEXT("SingleFrame", value);
    SUCCEEDS(VmbFeatureEnumSet(camera, kMode, "MultiFrame"));
    // The text belongs to the library and stays as it is until shutdown.
    CHECK_TEXT("SingleFrame", value);
    SUCCEEDS(VmbFeatureEnumGet(camera, kMode, &value));
    CHECK_TEXT("MultiFrame", value);
}

static void unknown_entries_are_refused(void) {
    VmbBool_t available = false;
    VmbInt64_t number = 0;
    const char* text = NULL;
    VmbFeatureEnumEntry_t entry;
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureEnumSet(camera, kMode, "Nonsense"));
    CHECK_CODE(VmbErrorInvalidValue, VmbFeatureEnumSet(camera, kMode, ""));
    // Open: an unknown entry is an invalid value or not found.
    CHECK_EITHER(VmbErrorInvalidValue, VmbErrorNotFound,
                 VmbFeatureEnumIsAvailable(camera, kMode, "Nonsense", &available));
    CHECK_EITHER(VmbErrorInvalidValue, VmbErrorNotFound,
                 VmbFeatureEnumAsInt(camera, kMode, "Nonsense", &number));
    CHECK_EITHER(VmbErrorInvalidValue, VmbErrorNotFound,
                 VmbFeatureEnumAsString(camera, kMode, 987654321, &text));
    CHECK_EITHER(VmbErrorInvalidValue, VmbErrorNotFound,
                 VmbFeatureEnumEntryGet(camera, kMode, "Nonsense", &entry, sizeof entry));
}

static void a_short_entry_array_is_filled_as_far_as_it_goes(void) {
    const char* array[MAX_ENTRIES];
    VmbUint32_t count = 0;
    VmbUint32_t filled = 0;
    SUCCEEDS(VmbFeatureEnumRangeQuery(camera, kMode, NULL, 0, &count));
    if (!CHECK(count > 1 && count < MAX_ENTRIES)) return;
    readEntries(camera, kMode);
    for (int i = 0; i < MAX_ENTRIES; ++i) array[i] = kMode;
    CHECK_CODE(VmbErrorMoreData, VmbFeatureEnumRangeQuery(camera, kMode, array, count - 1, &filled));
    CHECK_INT(count, filled);
    for (VmbUint32_t i = 0; i + 1 < count; ++i) CHECK_TEXT(entries[i], array[i]);
    CHECK(array[count - 1] == kMode);
    SUCCEEDS(VmbFeatureEnumRangeQuery(camera, kMode, array, count, &filled));
    CHECK_INT(count, filled);
    CHECK_TEXT(entries[count - 1], array[count - 1]);
    CHECK(array[count] == kMode);
}

static void an_entry_array_of_length_zero_is_too_short(void) {
    const char* array[1] = {kMode};
    VmbUint32_t filled = 0;
    // Open: it was no error in version 1.3.
    CHECK_EITHER(VmbErrorMoreData, VmbErrorSuccess,
                 VmbFeatureEnumRangeQuery(camera, kMode, array, 0, &filled));
    CHECK_INT(readEntries(camera, kMode), filled);
    CHECK(array[0] == kMode);
}

static void an_entry_array_is_filled_without_a_count(void) {
    const VmbUint32_t count = readEntries(camera, kMode);
    const char* array[MAX_ENTRIES];
    SUCCEEDS(VmbFeatureEnumRangeQuery(camera, kMode, array, MAX_ENTRIES, NULL));
    for (VmbUint32_t i = 0; i < count; ++i) CHECK_TEXT(entries[i], array[i]);
}

static void checkEntry(VmbHandle_t handle, const char* feature, const char* name) {
    VmbInt64_t number = -1;
    const char* back = NULL;
    VmbFeatureEnumEntry_t entry;
    VmbBool_t available = false;
    memset(&entry, 0, sizeof entry);
    SUCCEEDS(VmbFeatureEnumIsAvailable(handle, feature, name, &available));
    SUCCEEDS(VmbFeatureEnumAsInt(handle, feature, name, &number));
    if (SUCCEEDS(VmbFeatureEnumAsString(handle, feature, number, &back))) CHECK_TEXT(name, back);
    if (!SUCCEEDS(VmbFeatureEnumEntryGet(handle, feature, name, &entry, sizeof entry))) return;
    CHECK_TEXT(name, entry.name);
    CHECK_INT(number, entry.intValue);
    CHECK(entry.visibility <= VmbFeatureVisibilityInvisible);
}

static void checkEntries(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    const char* present = NULL;
    VmbBool_t readable = false;
    if (info->featureDataType != VmbFeatureDataEnum) return;
    const VmbUint32_t count = readEntries(handle, info->name);
    CHECK(count > 0);
    for (VmbUint32_t i = 0; i < count; ++i) checkEntry(handle, info->name, entries[i]);
    SUCCEEDS(VmbFeatureAccessQuery(handle, info->name, &readable, NULL));
    if (!readable || !SUCCEEDS(VmbFeatureEnumGet(handle, info->name, &present))) return;
    bool listed = false;
    for (VmbUint32_t i = 0; i < count; ++i) listed |= strcmp(entries[i], present) == 0;
    CHECK(listed);
}

static void every_entry_has_a_number_and_a_name(void) {
    forEachFeature(camera, checkEntries);
    forEachFeature(gVimbaHandle, checkEntries);
}

static void the_present_entry_is_available(void) {
    VmbBool_t available = false;
    SUCCEEDS(VmbFeatureEnumIsAvailable(camera, "PixelFormat", enumOf("PixelFormat"), &available));
    CHECK(available);
}

static void entries_must_be_named_properly(void) {
    VmbUint32_t count = 0;
    const char* text = NULL;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumGet(camera, NULL, &text));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumGet(camera, kMode, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureEnumGet(camera, "Nonsense", &text));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureEnumGet(camera, "Width", &text));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumSet(camera, NULL, "Continuous"));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumSet(camera, kMode, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureEnumSet(camera, "Nonsense", "Continuous"));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureEnumSet(camera, "Width", "Continuous"));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureEnumSet(camera, "SensorType", enumOf("SensorType")));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumRangeQuery(camera, NULL, NULL, 0, &count));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumRangeQuery(camera, kMode, NULL, 0, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureEnumRangeQuery(camera, "Nonsense", NULL, 0, &count));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureEnumRangeQuery(camera, "Width", NULL, 0, &count));
}

static void availability_must_be_asked_for_properly(void) {
    VmbBool_t truth = false;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumIsAvailable(camera, NULL, "Continuous", &truth));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumIsAvailable(camera, kMode, NULL, &truth));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumIsAvailable(camera, kMode, "Continuous", NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureEnumIsAvailable(camera, "Nonsense", "Continuous", &truth));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureEnumIsAvailable(camera, "Width", "Continuous", &truth));
}

static void the_number_of_an_entry_must_be_asked_for_properly(void) {
    VmbInt64_t number = 0;
    const char* text = NULL;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumAsInt(camera, NULL, "Continuous", &number));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumAsInt(camera, kMode, NULL, &number));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumAsInt(camera, kMode, "Continuous", NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureEnumAsInt(camera, "Nonsense", "Continuous", &number));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureEnumAsInt(camera, "Width", "Continuous", &number));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumAsString(camera, NULL, 1, &text));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumAsString(camera, kMode, 1, NULL));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureEnumAsString(camera, "Nonsense", 1, &text));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureEnumAsString(camera, "Width", 1, &text));
}

static void the_record_of_an_entry_must_be_asked_for_properly(void) {
    VmbFeatureEnumEntry_t entry;
    const VmbUint32_t size = sizeof entry;
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumEntryGet(camera, NULL, "Continuous", &entry, size));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumEntryGet(camera, kMode, NULL, &entry, size));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureEnumEntryGet(camera, kMode, "Continuous", NULL, size));
    CHECK_CODE(VmbErrorStructSize, VmbFeatureEnumEntryGet(camera, kMode, "Continuous", &entry, size - 1));
    CHECK_CODE(VmbErrorStructSize, VmbFeatureEnumEntryGet(camera, kMode, "Continuous", &entry, size + 1));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureEnumEntryGet(camera, "Nonsense", "Continuous", &entry, size));
    CHECK_CODE(VmbErrorWrongType, VmbFeatureEnumEntryGet(camera, "Width", "Continuous", &entry, size));
}

static void each_selector_entry_keeps_its_own_values(void) {
    putEnum("EventSelector", "AcquisitionStart");
    putEnum("EventNotification", "On");
    putEnum("EventSelector", "FrameTrigger");
    putEnum("EventNotification", "Off");
    SUCCEEDS(VmbFeatureEnumSet(camera, "EventSelector", "AcquisitionStart"));
    CHECK_TEXT("On", enumOf("EventNotification"));
    SUCCEEDS(VmbFeatureEnumSet(camera, "EventSelector", "FrameTrigger"));
    CHECK_TEXT("Off", enumOf("EventNotification"));
}

const Test kEnumTests[] = {
    TEST(NEEDS_CAMERA, an_entry_is_set_and_read_back),
    TEST(NEEDS_CAMERA, unknown_entries_are_refused),
    TEST(NEEDS_CAMERA, a_short_entry_array_is_filled_as_far_as_it_goes),
    TEST(NEEDS_CAMERA, an_entry_array_of_length_zero_is_too_short),
    TEST(NEEDS_CAMERA, an_entry_array_is_filled_without_a_count),
    TEST(NEEDS_CAMERA, every_entry_has_a_number_and_a_name),
    TEST(NEEDS_CAMERA, the_present_entry_is_available),
    TEST(NEEDS_CAMERA, entries_must_be_named_properly),
    TEST(NEEDS_CAMERA, availability_must_be_asked_for_properly),
    TEST(NEEDS_CAMERA, the_number_of_an_entry_must_be_asked_for_properly),
    TEST(NEEDS_CAMERA, the_record_of_an_entry_must_be_asked_for_properly),
    TEST(NEEDS_CAMERA, each_selector_entry_keeps_its_own_values),
    END_OF_TESTS,
};
