// A channel's settings through the plug-in: what the host sets while the camera is closed, or away.
#include "settings_fixture.h"

namespace {

using test_support::AssertionCapture;
using test_support::asText;
using test_support::call;
using test_support::Changes;
using test_support::entrySet;
using test_support::hostCalls;
using test_support::integerGet;
using test_support::integerSet;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kName;
using test_support::kPatienceMs;
using test_support::quoted;
using test_support::realGet;
using test_support::realSet;
using test_support::select;
using test_support::Settings;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

/// The calls from `first` on, up to the first that sets the enumeration `last`.
std::string between(const std::string& first, const std::string& last) {
    const std::vector<std::string> calls = test_support::withoutQueries(hostCalls());
    std::string ending = call("VmbFeatureEnumSet", quoted(last));
    ending.pop_back();
    const auto begin = std::find(calls.begin(), calls.end(), first);
    const auto end =
        std::find_if(begin, calls.end(), [&](const std::string& line) { return line.rfind(ending, 0) == 0; });
    return asText({begin, end});
}

TEST_F(Settings, WaitWhileNoCameraIsOpen) {
    openInVain();
    const Changes changes(channel(0));
    VmbSimJournalStart();
    EXPECT_TRUE(setNumber("CAMERA/Gain", 6));
    EXPECT_TRUE(setText("CAMERA/GainAuto", "GIGE/AutoSettingContinuous"));
    EXPECT_TRUE(setNumber("FrameWidth", 320));
    EXPECT_EQ(calls(), "");
    EXPECT_EQ(text(0, "CAMERA/Gain"), "6");
    EXPECT_EQ(text(0, "CAMERA/GainAuto"), "GIGE/AutoSettingContinuous");
    EXPECT_EQ(text(0, "FrameWidth"), "320 pixel");
    EXPECT_THAT(changes.keys, ElementsAre("Valid"));
}

TEST_F(Settings, AllCountAsAvailableUntilACameraWasOpened) {
    openInVain();
    EXPECT_TRUE(channel(0)->hasKey("CAMERA/Hue"));
    EXPECT_TRUE(channel(0)->hasKey("CAMERA/WhitebalanceAuto"));
    EXPECT_FALSE(channel(0)->hasKey("ACTION:Camera/AutoGain"));
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(channel(0)->hasKey("ACTION:Camera/AutoGain"));
}

TEST_F(Settings, ThatWaitedAreWrittenInTheOrderThatTheCameraNeeds) {
    openInVain();
    // Set in another order on purpose.
    EXPECT_TRUE(setNumber("CAMERA/Hue", 10));
    EXPECT_TRUE(setNumber("CAMERA/WhitebalanceBlue", 2));
    EXPECT_TRUE(setNumber("CAMERA/WhitebalanceRed", 1.5));
    EXPECT_TRUE(setText("CAMERA/WhitebalanceAuto", "GIGE/AutoSettingOff"));
    EXPECT_TRUE(setNumber("CAMERA/Saturation", 0.5));
    EXPECT_TRUE(setNumber("CAMERA/Gamma", 0.5));
    EXPECT_TRUE(setText("CAMERA/GainAuto", "GIGE/AutoSettingOff"));
    EXPECT_TRUE(setNumber("CAMERA/GainAutoRate", 80));
    EXPECT_TRUE(setNumber("CAMERA/GainAutoAdjustTol", 9));
    EXPECT_TRUE(setNumber("CAMERA/Gain", 6));
    EXPECT_TRUE(setText("CAMERA/ExposureAuto", "GIGE/AutoSettingOff"));
    EXPECT_TRUE(setNumber("CAMERA/Exposure", 5000));
    EXPECT_TRUE(setNumber("FrameHeight", 240));
    EXPECT_TRUE(setNumber("FrameWidth", 320));
    EXPECT_TRUE(setNumber("FrameOffsetY", 8));
    EXPECT_TRUE(setNumber("FrameOffsetX", 16));
    EXPECT_TRUE(setText("FrameFormat", "Y800"));
    EXPECT_TRUE(setNumber("CAMERA/FrameSetting", 20));
    VmbSimForceFeature(kColourCamera, "PixelFormat", "Mono8");
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(between(call("VmbFeatureEnumGet", quoted("PixelFormat")), "BandwidthControlMode"),
              asText({call("VmbFeatureEnumGet", quoted("PixelFormat")),
                      integerGet("Width"),
                      integerGet("Height"),
                      integerSet("Width", "320"),
                      integerGet("Width"),
                      integerSet("Height", "240"),
                      integerGet("Height"),
                      integerSet("OffsetX", "16"),
                      integerGet("OffsetX"),
                      integerSet("OffsetY", "8"),
                      integerGet("OffsetY"),
                      realSet("ExposureTimeAbs", "5000"),
                      realGet("ExposureTimeAbs"),
                      entrySet("ExposureAuto", "Off"),
                      realSet("Gain", "6"),
                      realGet("Gain"),
                      integerSet("GainAutoAdjustTol", "9"),
                      integerGet("GainAutoAdjustTol"),
                      integerSet("GainAutoRate", "80"),
                      integerGet("GainAutoRate"),
                      entrySet("GainAuto", "Off"),
                      realSet("Gamma", "0.5"),
                      realGet("Gamma"),
                      realSet("Saturation", "0.5"),
                      realGet("Saturation"),
                      entrySet("BalanceWhiteAuto", "Off"),
                      select("Red"),
                      realSet("BalanceRatioAbs", "1.5"),
                      realGet("BalanceRatioAbs"),
                      select("Blue"),
                      realSet("BalanceRatioAbs", "2"),
                      realGet("BalanceRatioAbs"),
                      realSet("Hue", "10"),
                      realGet("Hue"),
                      entrySet("AcquisitionMode", "Continuous")}));
    EXPECT_THAT(hostCalls(), Contains(realSet("AcquisitionFrameRateAbs", "20")));
    EXPECT_EQ(text(0, "CAMERA/FrameSetting"), "20 fps");
    EXPECT_EQ(text(0, "FrameOffsetX"), "16 pixel");
    EXPECT_EQ(text(0, "FrameFormat"), "Y800");
}

TEST_F(Settings, ThatWaitedAreTheCamerasAndNoLongerWait) {
    openInVain();
    EXPECT_TRUE(setNumber("CAMERA/Gain", 6));
    EXPECT_TRUE(plugin->prepareAcquisition());
    VmbSimForceFeature(kColourCamera, "Gain", "3");
    Changes changes(channel(0));
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(text(0, "CAMERA/Gain"), "3");
    EXPECT_THAT(changes.keys, ElementsAre("CAMERA/Gain", "Valid"));
}

TEST_F(Settings, APictureThatGrowsIsMovedIntoTheCornerFirst) {
    VmbSimForceFeature(kColourCamera, "Width", "320");
    VmbSimForceFeature(kColourCamera, "OffsetX", "336");
    VmbSimForceFeature(kColourCamera, "PixelFormat", "YUV422Packed");
    openInVain();
    EXPECT_TRUE(setNumber("FrameWidth", 480));
    EXPECT_TRUE(setNumber("FrameOffsetX", 176));
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(between(integerSet("OffsetX", "0"), "AcquisitionMode"),
              asText({integerSet("OffsetX", "0"), integerSet("Width", "480"), integerGet("Width"),
                      integerSet("OffsetX", "176"), integerGet("OffsetX")}));
}

TEST_F(Settings, AnOffsetThatMadeRoomComesBack) {
    VmbSimForceFeature(kColourCamera, "Width", "320");
    VmbSimForceFeature(kColourCamera, "OffsetX", "64");
    openInVain();
    EXPECT_TRUE(setNumber("FrameWidth", 480));
    // The size fails at first, while the offset is 0 already.
    VmbSimFailCall("VmbFeatureIntSet", "Width", 1, VmbErrorOther);
    EXPECT_FALSE(plugin->prepareAcquisition());
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(text(0, "FrameOffsetX"), "64 pixel");
    EXPECT_THAT(hostCalls(), Contains(integerSet("OffsetX", "64")));
}

TEST_F(Settings, OutOfRangeAreReportedAtThePreparationAndCorrectedLater) {
    openInVain();
    EXPECT_TRUE(setNumber("CAMERA/Gain", 1000));
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_EQ(lastMessage(0), refusal("The feature 'Gain' is not supported"));
    EXPECT_EQ(text(0, "CAMERA/Gain"), "1000");
    EXPECT_FALSE(plugin->prepareAcquisition());
    // The camera is open by now.
    EXPECT_FALSE(setNumber("CAMERA/Gain", 900));
    EXPECT_TRUE(setNumber("CAMERA/Gain", 6));
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(text(0, "CAMERA/Gain"), "6");
}

TEST_F(Settings, ThatTheCameraDoesNotHaveWaitForEverAndHinderNothing) {
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kMonochromeCamera);
    VmbSimTakeControl(kMonochromeCamera, true);
    enumerate();
    VmbSimTakeControl(kMonochromeCamera, false);
    EXPECT_TRUE(setNumber("CAMERA/Hue", 10));
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_FALSE(channel(0)->hasKey("CAMERA/Hue"));
}

TEST_F(Settings, OfAMonochromeCameraHaveNoColours) {
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kMonochromeCamera);
    VmbSimJournalStart();
    open();
    EXPECT_EQ(lastMessage(0), "");
    for (const char* key :
         {"CAMERA/Hue", "CAMERA/Saturation", "CAMERA/WhitebalanceAuto", "CAMERA/WhitebalanceRed",
          "CAMERA/WhitebalanceBlue", "ACTION:Camera/AutoWhitebalance"}) {
        EXPECT_FALSE(channel(0)->hasKey(key)) << key;
    }
    EXPECT_TRUE(channel(0)->hasKey("CAMERA/Gamma"));
    EXPECT_TRUE(channel(0)->hasKey("ACTION:Camera/AutoGain"));
    EXPECT_EQ(text(0, "FrameFormat"), "Y800");
    start();
    stop();
    EXPECT_THAT(hostCalls(),
                Not(Contains(call("VmbFeatureFloatSet", "\"Saturation\", 0", kMonochromeCamera))));
    // Reading asks whether a setting is there, setting does not.
    EXPECT_FALSE(setText("CAMERA/WhitebalanceAuto", "GIGE/AutoSettingOff"));
    EXPECT_EQ(lastMessage(0), "");
    EXPECT_FALSE(setNumber("CAMERA/Hue", 1));
    EXPECT_THAT(lastMessage(0), HasSubstr("The feature 'Hue' is not supported"));
}

TEST_F(Settings, OfACameraWithoutASelectorHaveNoRatios) {
    VmbSimRemoveFeature(kColourCamera, "BalanceRatioSelector");
    open();
    EXPECT_EQ(lastMessage(0), "");
    EXPECT_FALSE(channel(0)->hasKey("CAMERA/WhitebalanceRed"));
    EXPECT_TRUE(channel(0)->hasKey("CAMERA/WhitebalanceAuto"));
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(hostCalls(), Not(Contains(HasSubstr("BalanceRatio"))));
}

TEST_F(Settings, UnreadableNowAreTriedAgain) {
    open();
    VmbSimFailCall("VmbFeatureFloatGet", "Gamma", -1, VmbErrorTimeout);
    VmbSimFailCall("VmbFeatureEnumGet", "GainAuto", -1, VmbErrorTimeout);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_FALSE(channel(0)->hasKey("CAMERA/Gamma"));
    EXPECT_FALSE(channel(0)->hasKey("CAMERA/GainAuto"));
    EXPECT_FALSE(channel(0)->hasKey("ACTION:Camera/AutoGain"));
    VmbSimClearFaults();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(channel(0)->hasKey("CAMERA/Gamma"));
    EXPECT_TRUE(channel(0)->hasKey("CAMERA/GainAuto"));
    EXPECT_TRUE(channel(0)->hasKey("ACTION:Camera/AutoGain"));
}

TEST_F(Settings, AHueThatCouldNotBeReadAtTheOpeningIsTriedAgain) {
    VmbSimFailCall("VmbFeatureFloatGet", "Hue", 1, VmbErrorTimeout);
    open();
    EXPECT_FALSE(channel(0)->hasKey("CAMERA/Hue"));
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(channel(0)->hasKey("CAMERA/Hue"));
}

TEST_F(Settings, ThatWaitForAFeatureThatCannotBeReadAtTheOpeningAreWrittenWithTheRest) {
    // Otherwise the change of format would have it read again.
    VmbSimForceFeature(kColourCamera, "PixelFormat", "YUV422Packed");
    openInVain();
    EXPECT_TRUE(setNumber("CAMERA/Hue", 10));
    VmbSimFailCall("VmbFeatureFloatGet", "Hue", 1, VmbErrorTimeout);
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(hostCalls(), Contains(realSet("Hue", "10")));
    EXPECT_EQ(text(0, "CAMERA/Hue"), "10 \xC2\xB0");
}

TEST_F(Settings, ThatWaitForAFeatureThatCannotBeReadAtAllAreWrittenWhenItCanBe) {
    openInVain();
    EXPECT_TRUE(setNumber("CAMERA/Gamma", 0.5));
    VmbSimFailCall("VmbFeatureFloatGet", "Gamma", -1, VmbErrorTimeout);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_FALSE(channel(0)->hasKey("CAMERA/Gamma"));
    VmbSimClearFaults();
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(hostCalls(), Contains(realSet("Gamma", "0.5")));
    EXPECT_EQ(text(0, "CAMERA/Gamma"), "0.5");
}

TEST_F(Settings, UnreadableInOneFormatAreTriedAgainInAnother) {
    open();
    VmbSimFailCall("VmbFeatureFloatGet", "Saturation", -1, VmbErrorTimeout);
    EXPECT_TRUE(setText("FrameFormat", "Y800"));
    EXPECT_FALSE(channel(0)->hasKey("CAMERA/Saturation"));
    VmbSimClearFaults();
    EXPECT_TRUE(setText("FrameFormat", "Y422"));
    EXPECT_TRUE(channel(0)->hasKey("CAMERA/Saturation"));
}

TEST_F(Settings, ThatAreMissingAreKnownAlthoughTheOpeningFails) {
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kMonochromeCamera);
    VmbSimFailCall("VmbFeatureIntGet", "GevTimestampTickFrequency", 1, VmbErrorOther);
    enumerate();
    ASSERT_THAT(lastMessage(0), HasSubstr("GevTimestampTickFrequency"));
    const AssertionCapture assertions;
    for (const std::string& key : channel(0)->getKeys()) channel(0)->getItem(key);
    EXPECT_THAT(assertions.failures(), ::testing::IsEmpty());
}

TEST_F(Settings, OfACameraWithoutOnceOfferNoAction) {
    for (const char* feature : {"GainAuto", "ExposureAuto", "BalanceWhiteAuto"}) {
        VmbSimFailCall("VmbFeatureEnumRangeQuery", feature, -1, VmbErrorOther);
    }
    open();
    for (const char* key :
         {"ACTION:Camera/AutoGain", "ACTION:Camera/AutoExposure", "ACTION:Camera/AutoWhitebalance"}) {
        EXPECT_FALSE(channel(0)->hasKey(key)) << key;
    }
    // A camera that lists nothing for it takes nothing.
    test_support::Simulator::journal();
    VmbSimJournalStart();
    EXPECT_FALSE(setText("CAMERA/GainAuto", "GIGE/AutoSettingOff"));
    EXPECT_EQ(calls(), "");
}

class Replugged : public Settings {
  protected:
    void replug() {
        VmbSimUnplugCamera(kColourCamera);
        VmbSimWaitForEvents(kPatienceMs);
        VmbSimPlugCamera(kColourCamera);
        VmbSimWaitForEvents(kPatienceMs);
    }
};

TEST_F(Replugged, TheCameraGetsBackWhatTheHostHadSet) {
    open();
    ASSERT_TRUE(setNumber("CAMERA/Gain", 6));
    ASSERT_TRUE(setNumber("FrameWidth", 320));
    ASSERT_TRUE(setNumber("CAMERA/FrameSetting", 25));
    ASSERT_TRUE(setText("FrameFormat", "Y800"));
    ASSERT_TRUE(setText("CAMERA/GainAuto", "GIGE/AutoSettingContinuous"));
    start();
    replug();
    EXPECT_EQ(lastMessage(0), "Camera " + kName + " is no longer connected");
    EXPECT_THROW(plugin->stopAcquisition(), std::exception);
    plugin->onAcquisitionFinished();
    const AssertionCapture assertions;
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(assertions.failures(), ::testing::IsEmpty());
    for (const std::string& write :
         {entrySet("PixelFormat", "Mono8"), integerSet("Width", "320"), entrySet("GainAuto", "Continuous"),
          realSet("AcquisitionFrameRateAbs", "25")}) {
        EXPECT_THAT(hostCalls(), Contains(write));
    }
    EXPECT_EQ(text(0, "FrameWidth"), "320 pixel");
    EXPECT_EQ(text(0, "FrameFormat"), "Y800");
    EXPECT_EQ(text(0, "CAMERA/FrameSetting"), "25 fps");
    EXPECT_EQ(text(0, "CAMERA/GainAuto"), "GIGE/AutoSettingContinuous");
}

TEST_F(Replugged, WhatTheHostHadNotSetIsTheCamerasAndTold) {
    VmbSimForceFeature(kColourCamera, "Gamma", "0.5");
    open();
    ASSERT_EQ(text(0, "CAMERA/Gamma"), "0.5");
    Changes changes(channel(0));
    replug();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(text(0, "CAMERA/Gamma"), "1");
    EXPECT_THAT(changes.keys, Contains("CAMERA/Gamma"));
}

TEST_F(Replugged, ACameraThatIsStillAwayKeepsItsSettingsForLater) {
    open();
    ASSERT_TRUE(setNumber("CAMERA/Gain", 6));
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_THROW(plugin->prepareAcquisition(), exception_manager::Exception);
    EXPECT_TRUE(setNumber("CAMERA/Saturation", 0.5));
    VmbSimPlugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(text(0, "CAMERA/Gain"), "6");
    EXPECT_EQ(text(0, "CAMERA/Saturation"), "0.5");
}

TEST_F(Replugged, ASettingOfACameraThatIsAwayIsRefusedWhileItsChannelIsOpen) {
    open();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_FALSE(setNumber("CAMERA/Gain", 6));
    EXPECT_EQ(text(0, "CAMERA/Gain"), "0");
}

}  // namespace
