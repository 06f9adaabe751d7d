/// The numbers behind the entries, and what goes with each event.
#include <stdio.h>
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "features.h"
#include "groups.h"

enum { MAX_ENTRIES = 256 };

static bool hasEntry(const char* feature, const char* entry) {
    const char* entries[MAX_ENTRIES];
    VmbUint32_t count = 0;
    SUCCEEDS(VmbFeatureEnumRangeQuery(camera, feature, entries, MAX_ENTRIES, &count));
    for (VmbUint32_t i = 0; i < count && i < MAX_ENTRIES; ++i) {
        if (strcmp(entries[i], entry) == 0) return true;
    }
    return false;
}

static void checkEntryRow(const EntryRow* row) {
    char subject[TEXT_SIZE];
    const char* name = NULL;
    VmbInt64_t number = -1;
    snprintf(subject, sizeof subject, "%s %s", row->feature, row->entry);
    checkAbout(subject);
    if (!hasFeature(row->feature)) {
        CHECK(row->presence != ALWAYS);
    } else if (!hasEntry(row->feature, row->entry)) {
        CHECK(row->presence == SOME_MODELS);
    } else {
        SUCCEEDS(VmbFeatureEnumAsInt(camera, row->feature, row->entry, &number));
        CHECK_INT(row->number, number);
        SUCCEEDS(VmbFeatureEnumAsString(camera, row->feature, row->number, &name));
        CHECK_TEXT(row->entry, name);
    }
    checkAbout(NULL);
}

static void entries_have_their_numbers(void) {
    for (const EntryRow* row = kEntryRows; row->feature; ++row) checkEntryRow(row);
}

static void checkEventFeature(const char* event, const char* suffix, VmbInt64_t wanted) {
    char name[TEXT_SIZE];
    VmbInt64_t value = 0;
    snprintf(name, sizeof name, "Event%s%s", event, suffix);
    const FeatureRow row = {name, INT, R, NULL, ALWAYS};
    checkFeatureRow(camera, &row, false);
    if (SUCCEEDS(VmbFeatureIntGet(camera, name, &value)) && wanted) CHECK_INT(wanted, value);
    checkAbout(NULL);
}

static void every_event_has_a_number_a_frame_and_a_time(void) {
    const char* events[MAX_ENTRIES];
    VmbUint32_t count = 0;
    SUCCEEDS(VmbFeatureEnumRangeQuery(camera, "EventSelector", events, MAX_ENTRIES, &count));
    for (VmbUint32_t i = 0; i < count && i < MAX_ENTRIES; ++i) {
        VmbInt64_t number = 0;
        SUCCEEDS(VmbFeatureEnumAsInt(camera, "EventSelector", events[i], &number));
        checkEventFeature(events[i], "", number);
        checkEventFeature(events[i], "FrameID", 0);
        checkEventFeature(events[i], "Timestamp", 0);
    }
}

const Test kEntryTests[] = {
    TEST(NEEDS_CAMERA, entries_have_their_numbers),
    TEST(NEEDS_CAMERA, every_event_has_a_number_a_frame_and_a_time),
    END_OF_TESTS,
};
