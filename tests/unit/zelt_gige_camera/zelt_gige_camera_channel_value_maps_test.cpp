#include "zelt_gige_camera_channel_value_maps.h"

#include <functional>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace zelt_gige_camera;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string refusalOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "nothing was thrown";
}

struct Pair {
    const char* host;
    const char* camera;
};

constexpr Pair kAutoSettings[] = {{"GIGE/AutoSettingOff", "Off"},
                                  {"GIGE/AutoSettingOnce", "Once"},
                                  {"GIGE/AutoSettingContinuous", "Continuous"}};

TEST(AutoSettingMap, TranslatesBothWays) {
    for (const Pair& pair : kAutoSettings) {
        EXPECT_EQ(autoSettingFromHost(pair.host), pair.camera);
        EXPECT_EQ(autoSettingFromCamera(pair.camera), pair.host);
    }
}

TEST(AutoSettingMap, RefusesATextOfTheHostThatItDoesNotHold) {
    for (const std::string text :
         {"Off", "GIGE/AutoSettingOther", "gige/autosettingoff", "", "GIGE/TriggerModeAux"}) {
        EXPECT_EQ(refusalOf([&] { autoSettingFromHost(text); }), "Unknown value from GUI: '" + text + "'");
    }
}

TEST(AutoSettingMap, RefusesATextOfTheCameraThatItDoesNotHold) {
    for (const std::string text : {"GIGE/AutoSettingOff", "Other", "off", ""}) {
        EXPECT_EQ(refusalOf([&] { autoSettingFromCamera(text); }), "Unknown value from API: '" + text + "'");
    }
}

TEST(AutoSettingMap, OffersWhatTheCameraListsInTheMapsOrder) {
    EXPECT_THAT(autoSettingChoices({"Continuous", "Once", "Off"}),
                ElementsAre("GIGE/AutoSettingOff", "GIGE/AutoSettingOnce", "GIGE/AutoSettingContinuous"));
    EXPECT_THAT(autoSettingChoices({"Continuous", "Other", "Off"}),
                ElementsAre("GIGE/AutoSettingOff", "GIGE/AutoSettingContinuous"));
    EXPECT_THAT(autoSettingChoices({"Once", "Once"}), ElementsAre("GIGE/AutoSettingOnce"));
    EXPECT_THAT(autoSettingChoices({"Other"}), IsEmpty());
    EXPECT_THAT(autoSettingChoices({}), IsEmpty());
}

TEST(TriggerModeMap, TranslatesBothWays) {
    EXPECT_TRUE(triggerModeFromHost("GIGE/TriggerModeAux"));
    EXPECT_FALSE(triggerModeFromHost("GIGE/TriggerModeFixed"));
    EXPECT_EQ(triggerModeToHost(true), "GIGE/TriggerModeAux");
    EXPECT_EQ(triggerModeToHost(false), "GIGE/TriggerModeFixed");
}

TEST(TriggerModeMap, OffersTheTriggeredModeFirst) {
    EXPECT_THAT(triggerModeChoices(), ElementsAre("GIGE/TriggerModeAux", "GIGE/TriggerModeFixed"));
}

TEST(TriggerModeMap, RefusesATextThatItDoesNotHold) {
    for (const std::string text : {"Aux", "GIGE/TriggerModeOff", "", "GIGE/AutoSettingOff"}) {
        EXPECT_EQ(refusalOf([&] { triggerModeFromHost(text); }), "Unknown value from GUI: '" + text + "'");
    }
}

TEST(FrameFormats, StandForTheCamerasPixelFormats) {
    EXPECT_EQ(pixelFormatFromHost("Y422"), "YUV422Packed");
    EXPECT_EQ(pixelFormatFromHost("RGB"), "RGB8Packed");
    EXPECT_EQ(pixelFormatFromHost("Y800"), "Mono8");
}

TEST(FrameFormats, OfOtherPixelFormatsAreRefused) {
    for (const std::string text : {"Mono8", "YUY2", "RGBA", ""}) {
        EXPECT_EQ(refusalOf([&] { pixelFormatFromHost(text); }), "Unknown value from GUI: '" + text + "'");
    }
}

TEST(FrameFormats, AreOfferedWhenTheCameraListsThem) {
    EXPECT_THAT(frameFormatChoices({"Mono8", "BayerRG8", "RGB8Packed", "YUV422Packed"}),
                ElementsAre("Y422", "RGB", "Y800"));
    EXPECT_THAT(frameFormatChoices({"Mono8", "Mono12"}), ElementsAre("Y800"));
    EXPECT_THAT(frameFormatChoices({"Mono12"}), IsEmpty());
    EXPECT_THAT(frameFormatChoices({}), IsEmpty());
}

}  // namespace
