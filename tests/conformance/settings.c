/// Settings saved to a file and loaded from it.
#include <stdio.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "waiting.h"

static char path[TEXT_SIZE];

static const VmbFeaturePersist_t kPersistTypes[] = {VmbFeaturePersistAll, VmbFeaturePersistStreamable,
                                                    VmbFeaturePersistNoLUT};

static long fileSize(void) {
    FILE* file = fopen(path, "rb");
    if (!file) return -1;
    fseek(file, 0, SEEK_END);
    const long size = ftell(file);
    fclose(file);
    return size;
}

static void writeFile(const char* text) {
    FILE* file = fopen(path, "wb");
    if (!CHECK(file != NULL)) return;
    fputs(text, file);
    fclose(file);
}

static void roundTrip(const VmbFeaturePersistSettings_t* settings) {
    const VmbUint32_t size = sizeof *settings;
    SUCCEEDS(VmbFeatureFloatSet(camera, "Gain", 1));
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", stepOf("Height", 4)));
    SUCCEEDS(VmbCameraSettingsSave(camera, path, settings, size));
    CHECK(fileSize() > 0);
    SUCCEEDS(VmbFeatureFloatSet(camera, "Gain", 3));
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", stepOf("Height", 7)));
    SUCCEEDS(VmbCameraSettingsLoad(camera, path, settings, size));
    CHECK_NEAR(1, floatOf("Gain"), 0.5);
    CHECK_INT(stepOf("Height", 4), intOf("Height"));
    remove(path);
}

static void saved_settings_are_loaded_again(void) {
    temporaryPath(path, sizeof path);
    keep("Gain");
    keep("Height");
    for (size_t i = 0; i < sizeof kPersistTypes / sizeof *kPersistTypes; ++i) {
        const VmbFeaturePersistSettings_t settings = {kPersistTypes[i], 5, 0};
        checkAbout(i == 0 ? "all" : i == 1 ? "streamable" : "no LUT");
        roundTrip(&settings);
    }
}

static void settings_have_defaults_for_how_they_are_saved(void) {
    temporaryPath(path, sizeof path);
    keep("Gain");
    keep("Height");
    roundTrip(NULL);
}

static void settings_must_be_saved_properly(void) {
    const VmbFeaturePersistSettings_t settings = {VmbFeaturePersistNoLUT, 5, 0};
    const VmbUint32_t size = sizeof settings;
    temporaryPath(path, sizeof path);
    CHECK_CODE(VmbErrorBadParameter, VmbCameraSettingsSave(camera, NULL, &settings, size));
    CHECK_CODE(VmbErrorStructSize, VmbCameraSettingsSave(camera, path, &settings, size - 1));
    CHECK_CODE(VmbErrorStructSize, VmbCameraSettingsSave(camera, path, &settings, size + 1));
    CHECK_INT(-1, fileSize());
    // Open: with which error a file fails that cannot be written.
    CHECK_FAILS(VmbCameraSettingsSave(camera, "/no/such/directory/settings.xml", &settings, size));
}

static void settings_must_be_loaded_properly(void) {
    const VmbFeaturePersistSettings_t settings = {VmbFeaturePersistNoLUT, 5, 0};
    const VmbUint32_t size = sizeof settings;
    temporaryPath(path, sizeof path);
    CHECK_CODE(VmbErrorBadParameter, VmbCameraSettingsLoad(camera, NULL, &settings, size));
    CHECK_CODE(VmbErrorStructSize, VmbCameraSettingsLoad(camera, path, &settings, size - 1));
    CHECK_CODE(VmbErrorStructSize, VmbCameraSettingsLoad(camera, path, &settings, size + 1));
    // Open: with which error a file fails that is not there or holds no settings.
    CHECK_FAILS(VmbCameraSettingsLoad(camera, path, &settings, size));
    writeFile("these are no settings");
    CHECK_FAILS(VmbCameraSettingsLoad(camera, path, &settings, size));
    remove(path);
}

const Test kSettingsTests[] = {
    TEST(NEEDS_CAMERA, saved_settings_are_loaded_again),
    TEST(NEEDS_CAMERA, settings_have_defaults_for_how_they_are_saved),
    TEST(NEEDS_CAMERA, settings_must_be_saved_properly),
    TEST(NEEDS_CAMERA, settings_must_be_loaded_properly),
    END_OF_TESTS,
};
