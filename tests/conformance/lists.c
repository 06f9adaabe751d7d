#include <ctype.h>
#include <stdlib.h>
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"

/// The three lists of features, behind one signature.
typedef VmbError_t (*ListFunction)(VmbFeatureInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                                   VmbUint32_t size);

static VmbError_t listAll(VmbFeatureInfo_t* array, VmbUint32_t length, VmbUint32_t* found, VmbUint32_t size) {
    return VmbFeaturesList(camera, array, length, found, size);
}

static VmbError_t listAffected(VmbFeatureInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                               VmbUint32_t size) {
    return VmbFeatureListAffected(camera, "Width", array, length, found, size);
}

static VmbError_t listSelected(VmbFeatureInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                               VmbUint32_t size) {
    return VmbFeatureListSelected(camera, "TriggerSelector", array, length, found, size);
}

typedef struct {
    const char* name;
    ListFunction list;
} List;

static const List kLists[] = {
    {"VmbFeaturesList", listAll},
    {"VmbFeatureListAffected", listAffected},
    {"VmbFeatureListSelected", listSelected},
};

enum { LIST_COUNT = sizeof kLists / sizeof *kLists, MAX_INFOS = 1000, INFO_SIZE = sizeof(VmbFeatureInfo_t) };

static VmbFeatureInfo_t infos[MAX_INFOS];
static VmbFeatureInfo_t untouched;

static void soilInfos(void) {
    memset(infos, 0x5A, sizeof infos);
    memset(&untouched, 0x5A, sizeof untouched);
}

static bool isUntouched(VmbUint32_t index) {
    return memcmp(&infos[index], &untouched, INFO_SIZE) == 0;
}

static VmbUint32_t countOf(ListFunction list) {
    VmbUint32_t count = 0;
    SUCCEEDS(list(NULL, 0, &count, INFO_SIZE));
    return count;
}

static void counting_features_ignores_length_and_size(void) {
    for (int i = 0; i < LIST_COUNT; ++i) {
        VmbUint32_t count = 0;
        checkAbout(kLists[i].name);
        SUCCEEDS(kLists[i].list(NULL, 5, &count, 1));
        CHECK_INT(countOf(kLists[i].list), count);
        CHECK(count > 0);
    }
}

static void a_feature_array_of_the_right_length_is_filled(void) {
    for (int i = 0; i < LIST_COUNT; ++i) {
        VmbUint32_t found = 0;
        checkAbout(kLists[i].name);
        soilInfos();
        const VmbUint32_t count = countOf(kLists[i].list);
        SUCCEEDS(kLists[i].list(infos, count, &found, INFO_SIZE));
        CHECK_INT(count, found);
        CHECK(isUntouched(count));
        for (VmbUint32_t k = 0; k < found; ++k) CHECK(!isUntouched(k) && infos[k].name[0]);
    }
}

static void a_short_feature_array_is_filled_as_far_as_it_goes(void) {
    for (int i = 0; i < LIST_COUNT; ++i) {
        VmbUint32_t found = 0;
        checkAbout(kLists[i].name);
        soilInfos();
        const VmbUint32_t count = countOf(kLists[i].list);
        if (!CHECK(count > 1)) continue;
        CHECK_CODE(VmbErrorMoreData, kLists[i].list(infos, count - 1, &found, INFO_SIZE));
        CHECK_INT(count, found);
        CHECK(isUntouched(count - 1));
        for (VmbUint32_t k = 0; k + 1 < count; ++k) CHECK(!isUntouched(k) && infos[k].name[0]);
    }
}

static void a_feature_array_of_length_zero_is_too_short(void) {
    for (int i = 0; i < LIST_COUNT; ++i) {
        VmbUint32_t found = 0;
        checkAbout(kLists[i].name);
        soilInfos();
        // Open: it was no error in version 1.3.
        CHECK_EITHER(VmbErrorMoreData, VmbErrorSuccess, kLists[i].list(infos, 0, &found, INFO_SIZE));
        CHECK_INT(countOf(kLists[i].list), found);
        CHECK(isUntouched(0));
    }
}

static void a_feature_list_needs_something_to_fill_and_the_right_size(void) {
    for (int i = 0; i < LIST_COUNT; ++i) {
        VmbUint32_t found = 0;
        checkAbout(kLists[i].name);
        CHECK_CODE(VmbErrorBadParameter, kLists[i].list(NULL, 0, NULL, INFO_SIZE));
        CHECK_CODE(VmbErrorStructSize, kLists[i].list(infos, MAX_INFOS, &found, INFO_SIZE - 1));
        CHECK_CODE(VmbErrorStructSize, kLists[i].list(infos, MAX_INFOS, &found, INFO_SIZE + 1));
    }
}

static void a_feature_array_is_filled_without_a_count(void) {
    const VmbUint32_t count = countOf(listAll);
    soilInfos();
    SUCCEEDS(listAll(infos, count, NULL, INFO_SIZE));
    CHECK(!isUntouched(count - 1));
    CHECK_CODE(VmbErrorMoreData, listAll(infos, count - 1, NULL, INFO_SIZE));
}

static int compareWithoutCase(const char* a, const char* b) {
    while (*a && tolower((unsigned char)*a) == tolower((unsigned char)*b)) {
        ++a;
        ++b;
    }
    return tolower((unsigned char)*a) - tolower((unsigned char)*b);
}

static void features_are_listed_in_alphabetical_order(void) {
    VmbUint32_t found = 0;
    bool ordered = true;
    bool orderedWithoutCase = true;
    SUCCEEDS(listAll(infos, MAX_INFOS, &found, INFO_SIZE));
    for (VmbUint32_t i = 1; i < found; ++i) {
        ordered &= strcmp(infos[i - 1].name, infos[i].name) < 0;
        orderedWithoutCase &= compareWithoutCase(infos[i - 1].name, infos[i].name) < 0;
    }
    // Open: whether capitals come first.
    CHECK(ordered || orderedWithoutCase);
}

static void checkEntry(VmbHandle_t handle, const VmbFeatureInfo_t* listed) {
    VmbFeatureInfo_t info;
    memset(&info, 0, sizeof info);
    if (!SUCCEEDS(VmbFeatureInfoQuery(handle, listed->name, &info, sizeof info))) return;
    CHECK_TEXT(listed->name, info.name);
    CHECK_INT(listed->featureDataType, info.featureDataType);
    CHECK_INT(listed->featureFlags, info.featureFlags);
    CHECK_TEXT(listed->category, info.category);
    CHECK_TEXT(listed->displayName, info.displayName);
    CHECK_INT(listed->pollingTime, info.pollingTime);
    CHECK_INT(listed->visibility, info.visibility);
    CHECK_TEXT(listed->sfncNamespace, info.sfncNamespace);
    CHECK_INT(listed->hasAffectedFeatures, info.hasAffectedFeatures);
    CHECK_INT(listed->hasSelectedFeatures, info.hasSelectedFeatures);
    CHECK(info.featureDataType >= VmbFeatureDataInt && info.featureDataType <= VmbFeatureDataNone);
    CHECK(info.category && info.category[0] == '/');
    CHECK(info.displayName && info.displayName[0]);
    CHECK(info.visibility <= VmbFeatureVisibilityInvisible);
    CHECK(!strcmp(info.sfncNamespace, "Standard") || !strcmp(info.sfncNamespace, "Custom"));
}

static void a_listed_feature_and_its_own_info_are_the_same(void) {
    forEachFeature(camera, checkEntry);
    forEachFeature(gVimbaHandle, checkEntry);
}

static void checkAffectedAndSelected(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    VmbUint32_t count = 0;
    SUCCEEDS(VmbFeatureListAffected(handle, info->name, NULL, 0, &count, INFO_SIZE));
    CHECK_INT(info->hasAffectedFeatures, count > 0);
    SUCCEEDS(VmbFeatureListSelected(handle, info->name, NULL, 0, &count, INFO_SIZE));
    CHECK_INT(info->hasSelectedFeatures, count > 0);
}

static void the_info_tells_whether_a_feature_affects_or_selects_others(void) {
    forEachFeature(camera, checkAffectedAndSelected);
}

static bool lists(ListFunction list, const char* name) {
    VmbUint32_t found = 0;
    SUCCEEDS(list(infos, MAX_INFOS, &found, INFO_SIZE));
    for (VmbUint32_t i = 0; i < found && i < MAX_INFOS; ++i) {
        if (strcmp(infos[i].name, name) == 0) return true;
    }
    return false;
}

static void the_width_affects_the_payload_size(void) {
    CHECK(lists(listAffected, "PayloadSize"));
    CHECK(lists(listAffected, "ImageSize"));
}

static void the_trigger_selector_selects_six_features(void) {
    CHECK(lists(listSelected, "TriggerMode"));
    CHECK(lists(listSelected, "TriggerSource"));
    CHECK(lists(listSelected, "TriggerActivation"));
    CHECK(lists(listSelected, "TriggerDelayAbs"));
    CHECK(lists(listSelected, "TriggerOverlap"));
    CHECK(lists(listSelected, "TriggerSoftware"));
}

static void related_features_of_an_unknown_one_are_not_found(void) {
    VmbUint32_t found = 0;
    CHECK_CODE(VmbErrorNotFound, VmbFeatureListAffected(camera, "Nonsense", NULL, 0, &found, INFO_SIZE));
    CHECK_CODE(VmbErrorNotFound, VmbFeatureListSelected(camera, "Nonsense", NULL, 0, &found, INFO_SIZE));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureListAffected(camera, NULL, NULL, 0, &found, INFO_SIZE));
    CHECK_CODE(VmbErrorBadParameter, VmbFeatureListSelected(camera, NULL, NULL, 0, &found, INFO_SIZE));
}

const Test kListTests[] = {
    TEST(NEEDS_CAMERA, counting_features_ignores_length_and_size),
    TEST(NEEDS_CAMERA, a_feature_array_of_the_right_length_is_filled),
    TEST(NEEDS_CAMERA, a_short_feature_array_is_filled_as_far_as_it_goes),
    TEST(NEEDS_CAMERA, a_feature_array_of_length_zero_is_too_short),
    TEST(NEEDS_CAMERA, a_feature_list_needs_something_to_fill_and_the_right_size),
    TEST(NEEDS_CAMERA, a_feature_array_is_filled_without_a_count),
    TEST(NEEDS_CAMERA, features_are_listed_in_alphabetical_order),
    TEST(NEEDS_CAMERA, a_listed_feature_and_its_own_info_are_the_same),
    TEST(NEEDS_CAMERA, the_info_tells_whether_a_feature_affects_or_selects_others),
    TEST(NEEDS_CAMERA, the_width_affects_the_payload_size),
    TEST(NEEDS_CAMERA, the_trigger_selector_selects_six_features),
    TEST(NEEDS_CAMERA, related_features_of_an_unknown_one_are_not_found),
    END_OF_TESTS,
};
