/// The features of the library itself.
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "features.h"
#include "groups.h"
#include "waiting.h"

static void the_system_handle_is_one(void) {
    CHECK_INT(1, (int64_t)(intptr_t)gVimbaHandle);
}

static void the_system_has_its_features(void) {
    for (const FeatureRow* row = kSystemFeatures; row->name; ++row) {
        checkFeatureRow(gVimbaHandle, row, false);
    }
}

static void the_transport_layer_of_the_camera_is_present(void) {
    VmbBool_t present = false;
    SUCCEEDS(VmbFeatureBoolGet(gVimbaHandle, "GeVTLIsPresent", &present));
    CHECK(present);
    SUCCEEDS(VmbFeatureBoolGet(gVimbaHandle, "UsbTLIsPresent", &present));
    SUCCEEDS(VmbFeatureBoolGet(gVimbaHandle, "FiWTLIsPresent", &present));
    SUCCEEDS(VmbFeatureBoolGet(gVimbaHandle, "CLTLIsPresent", &present));
}

static void a_round_of_discovery_lasts_150_ms_at_first(void) {
    VmbInt64_t duration = 0;
    SUCCEEDS(VmbFeatureIntGet(gVimbaHandle, "GeVDiscoveryAllDuration", &duration));
    CHECK_INT(150, duration);
    keepOfSystem("GeVDiscoveryAllDuration");
    SUCCEEDS(VmbFeatureIntSet(gVimbaHandle, "GeVDiscoveryAllDuration", 250));
    SUCCEEDS(VmbFeatureIntGet(gVimbaHandle, "GeVDiscoveryAllDuration", &duration));
    CHECK_INT(250, duration);
}

static void the_seconds_since_start_up_elapse(void) {
    double before = -1;
    double after = -1;
    SUCCEEDS(VmbFeatureFloatGet(gVimbaHandle, "Elapsed", &before));
    const double start = secondsNow();
    discover();
    const double waited = secondsNow() - start;
    SUCCEEDS(VmbFeatureFloatGet(gVimbaHandle, "Elapsed", &after));
    CHECK(before >= 0);
    CHECK(after - before >= 0.99 * waited);
}

static void checkDiscoveryEntries(const char* feature) {
    static const char* const kEntries[] = {"Missing", "Detected", "Reachable", "Unreachable"};
    VmbUint32_t count = 0;
    checkAbout(feature);
    SUCCEEDS(VmbFeatureEnumRangeQuery(gVimbaHandle, feature, NULL, 0, &count));
    CHECK_INT(4, count);
    for (int i = 0; i < 4; ++i) {
        VmbInt64_t number = -1;
        SUCCEEDS(VmbFeatureEnumAsInt(gVimbaHandle, feature, kEntries[i], &number));
        CHECK_INT(i, number);
    }
}

static void discovery_events_are_four(void) {
    checkDiscoveryEntries("DiscoveryCameraEvent");
    checkDiscoveryEntries("DiscoveryInterfaceEvent");
}

static bool isEmpty(const char* text) {
    return !text || !text[0];
}

static void a_discovery_event_describes_itself(void) {
    VmbFeatureInfo_t info;
    memset(&info, 0, sizeof info);
    SUCCEEDS(VmbFeatureInfoQuery(gVimbaHandle, "DiscoveryInterfaceEvent", &info, sizeof info));
    // Open: a further flag of value 4, which has no name.
    CHECK_INT(VmbFeatureFlagsRead, info.featureFlags & ~4u);
    CHECK_TEXT("/Discovery", info.category);
    CHECK(info.displayName && strchr(info.displayName, ' '));
    CHECK_INT(0, info.pollingTime);
    // Open: a missing text is null or empty.
    CHECK(isEmpty(info.unit));
    CHECK(isEmpty(info.representation));
    CHECK_INT(VmbFeatureVisibilityBeginner, info.visibility);
    CHECK_TEXT("Custom", info.sfncNamespace);
    CHECK(!info.isStreamable);
    CHECK(!info.hasAffectedFeatures);
    CHECK(!info.hasSelectedFeatures);
}

const Test kSystemTests[] = {
    TEST(NEEDS_START, the_system_handle_is_one),
    TEST(NEEDS_START, the_system_has_its_features),
    TEST(NEEDS_START, the_transport_layer_of_the_camera_is_present),
    TEST(NEEDS_START, a_round_of_discovery_lasts_150_ms_at_first),
    TEST(NEEDS_START, the_seconds_since_start_up_elapse),
    TEST(NEEDS_START, discovery_events_are_four),
    TEST(NEEDS_START, a_discovery_event_describes_itself),
    END_OF_TESTS,
};
