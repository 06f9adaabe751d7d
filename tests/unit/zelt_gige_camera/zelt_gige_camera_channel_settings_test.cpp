// A channel's settings through the plug-in: what the host sets, with the camera open.
#include "constraints_in_words.h"
#include "settings_fixture.h"

namespace {

using test_support::asText;
using test_support::Changes;
using test_support::entrySet;
using test_support::integerGet;
using test_support::integerSet;
using test_support::kColourCamera;
using test_support::LogCapture;
using test_support::realGet;
using test_support::realSet;
using test_support::select;
using test_support::Settings;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct NumberCase {
    const char* key;
    double value;
    std::vector<std::string> calls;
    std::string shown;
    std::vector<std::string> changed;
};

class EachNumber : public Settings, public ::testing::WithParamInterface<NumberCase> {};

TEST_P(EachNumber, IsWrittenAtOnceAndReadBack) {
    const NumberCase& number = GetParam();
    open();
    const Changes changes(channel(0));
    VmbSimJournalStart();
    EXPECT_TRUE(setNumber(number.key, number.value));
    EXPECT_EQ(calls(), asText(number.calls));
    EXPECT_EQ(text(0, number.key), number.shown);
    EXPECT_EQ(changes.keys, number.changed);
}

const std::vector<std::string> kToldValid{"Valid"};
const std::string kLimit = integerSet("ExposureAutoMax", "19970");  // 20 ms less the shortest exposure

INSTANTIATE_TEST_SUITE_P(
    OfAColourCamera, EachNumber,
    ::testing::Values(
        NumberCase{
            "FrameWidth", 320, {integerSet("Width", "320"), integerGet("Width")}, "320 pixel", kToldValid},
        NumberCase{
            "FrameHeight", 240, {integerSet("Height", "240"), integerGet("Height")}, "240 pixel", kToldValid},
        NumberCase{"CAMERA/Exposure",
                   5000,
                   {kLimit, realSet("ExposureTimeAbs", "5000"), realGet("ExposureTimeAbs")},
                   "5000",
                   kToldValid},
        NumberCase{"CAMERA/Gain", 6, {realSet("Gain", "6"), realGet("Gain")}, "6", {}},
        NumberCase{"CAMERA/GainAutoAdjustTol",
                   7,
                   {integerSet("GainAutoAdjustTol", "7"), integerGet("GainAutoAdjustTol")},
                   "7",
                   {}},
        NumberCase{"CAMERA/GainAutoRate",
                   50,
                   {integerSet("GainAutoRate", "50"), integerGet("GainAutoRate")},
                   "50",
                   {}},
        NumberCase{"CAMERA/Gamma", 0.5, {realSet("Gamma", "0.5"), realGet("Gamma")}, "0.5", {}},
        NumberCase{"CAMERA/Hue", -10, {realSet("Hue", "-10"), realGet("Hue")}, "-10 \xC2\xB0", {}},
        NumberCase{
            "CAMERA/Saturation", 1.5, {realSet("Saturation", "1.5"), realGet("Saturation")}, "1.5", {}},
        NumberCase{"CAMERA/WhitebalanceRed",
                   1.25,
                   {select("Red"), realSet("BalanceRatioAbs", "1.25"), realGet("BalanceRatioAbs")},
                   "1.25",
                   {}},
        NumberCase{"CAMERA/WhitebalanceBlue",
                   2,
                   {select("Blue"), realSet("BalanceRatioAbs", "2"), realGet("BalanceRatioAbs")},
                   "2",
                   {}},
        // 40 ms less the shortest exposure.
        NumberCase{"CAMERA/FrameSetting",
                   25,
                   {realSet("AcquisitionFrameRateAbs", "25"), realGet("AcquisitionFrameRateAbs"),
                    integerSet("ExposureAutoMax", "39970")},
                   "25 fps",
                   {"SampleRate", "Valid"}}));

TEST_F(Settings, AnOffsetIsWrittenWhereThePictureLeavesRoom) {
    open();
    ASSERT_TRUE(setNumber("FrameWidth", 320));
    ASSERT_TRUE(setNumber("FrameHeight", 240));
    VmbSimJournalStart();
    EXPECT_TRUE(setNumber("FrameOffsetX", 16));
    EXPECT_TRUE(setNumber("FrameOffsetY", 8));
    EXPECT_EQ(calls(), asText({integerSet("OffsetX", "16"), integerGet("OffsetX"), integerSet("OffsetY", "8"),
                               integerGet("OffsetY")}));
    EXPECT_EQ(text(0, "FrameOffsetX"), "16 pixel");
}

TEST_F(Settings, AWholeNumberIsRoundedHalvesAwayFromZero) {
    open();
    EXPECT_TRUE(setNumber("CAMERA/GainAutoAdjustTol", 6.5));
    EXPECT_EQ(text(0, "CAMERA/GainAutoAdjustTol"), "7");
    EXPECT_TRUE(setNumber("CAMERA/GainAutoAdjustTol", 6.4999));
    EXPECT_EQ(text(0, "CAMERA/GainAutoAdjustTol"), "6");
}

TEST_F(Settings, ANumberThatTheCameraRoundsIsTakenOverAndTold) {
    open();
    Changes changes(channel(0));
    EXPECT_TRUE(setNumber("CAMERA/Gain", 3.14159));
    EXPECT_NE(text(0, "CAMERA/Gain"), "3.14159");
    EXPECT_NEAR(boost::get<config_items::ScalarConfigItem>(channel(0)->getItem("CAMERA/Gain")).m_value,
                3.14159, 0.1);
    EXPECT_THAT(changes.keys, ElementsAre("CAMERA/Gain"));
    changes.keys.clear();
    EXPECT_TRUE(setNumber("CAMERA/FrameSetting", 33.333333));
    EXPECT_THAT(changes.keys, ElementsAre("CAMERA/FrameSetting", "SampleRate", "Valid"));
}

TEST_F(Settings, AFrameRateWhoseExposureLimitIsRefusedIsTheCamerasAndToldAllTheSame) {
    open();
    const Changes changes(channel(0));
    VmbSimFailCall("VmbFeatureIntSet", "ExposureAutoMax", 1, VmbErrorOther);
    EXPECT_FALSE(setNumber("CAMERA/FrameSetting", 20));
    EXPECT_EQ(lastMessage(0), refusal("The feature 'ExposureAutoMax' is not supported"));
    EXPECT_EQ(text(0, "CAMERA/FrameSetting"), "20 fps");
    EXPECT_THAT(changes.keys, Contains("CAMERA/FrameSetting"));
}

TEST_F(Settings, ANumberThatTheCameraRefusesIsReportedAndNotKept) {
    open();
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_FALSE(setNumber("CAMERA/Gain", 1000));
    EXPECT_EQ(text(0, "CAMERA/Gain"), "0");
    EXPECT_EQ(lastMessage(0), refusal("The feature 'Gain' is not supported"));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre("Cannot configure camera '%1': %2"));
    exception_manager::Exception message;
    ASSERT_TRUE(messages(0).getLastMessage(message));
    EXPECT_EQ(message.getArguments().at(1).name, "Exception Argument");
}

TEST_F(Settings, ANumberThatNoFeatureCanHoldIsNamed) {
    open();
    VmbSimJournalStart();
    EXPECT_FALSE(setNumber("FrameWidth", -1));
    EXPECT_EQ(lastMessage(0), refusal("The feature 'Width' cannot hold -1, choose a value within its range"));
    EXPECT_FALSE(setNumber("CAMERA/Gain", std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(setNumber("CAMERA/GainAutoRate", 1e300));
    EXPECT_FALSE(setNumber("CAMERA/FrameSetting", std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(calls(), "");
    EXPECT_EQ(text(0, "FrameWidth"), "656 pixel");
}

TEST_F(Settings, ANumberThatCannotBeReadBackIsWrittenAgainTheNextTime) {
    open();
    ASSERT_TRUE(plugin->prepareAcquisition());
    VmbSimFailCall("VmbFeatureFloatGet", "Gamma", 1, VmbErrorOther);
    EXPECT_FALSE(setNumber("CAMERA/Gamma", 0.75));
    EXPECT_EQ(text(0, "CAMERA/Gamma"), "0.75");
    VmbSimForceFeature(kColourCamera, "Gamma", "0.5");
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(test_support::hostCalls(), ::testing::Contains(realSet("Gamma", "0.75")));
    EXPECT_EQ(text(0, "CAMERA/Gamma"), "0.75");
}

TEST_F(Settings, AnItemOfAnotherKindIsRefused) {
    open();
    VmbSimJournalStart();
    EXPECT_FALSE(setText("CAMERA/Gain", "6"));
    EXPECT_FALSE(setNumber("CAMERA/GainAuto", 1));
    EXPECT_FALSE(setText("CAMERA/FrameSetting", "25"));
    EXPECT_FALSE(
        channel(0)->setItem("CAMERA/FrameSetting", config_items::RationalScalarConfigItem(25, 1, "fps")));
    EXPECT_EQ(calls(), "");
}

TEST_F(Settings, AnAutomaticFunctionIsSetInTheHostsWords) {
    open();
    EXPECT_EQ(text(0, "CAMERA/GainAuto"), "GIGE/AutoSettingOff");
    const Changes changes(channel(0));
    VmbSimJournalStart();
    EXPECT_TRUE(setText("CAMERA/GainAuto", "GIGE/AutoSettingContinuous"));
    EXPECT_TRUE(setText("CAMERA/WhitebalanceAuto", "GIGE/AutoSettingOnce"));
    EXPECT_EQ(calls(), asText({entrySet("GainAuto", "Continuous"), entrySet("BalanceWhiteAuto", "Once")}));
    EXPECT_EQ(text(0, "CAMERA/GainAuto"), "GIGE/AutoSettingContinuous");
    EXPECT_EQ(text(0, "CAMERA/WhitebalanceAuto"), "GIGE/AutoSettingOnce");
    EXPECT_THAT(changes.keys, IsEmpty());
}

TEST_F(Settings, AutomaticExposureIsLimitedToTheFramePeriodFirst) {
    open();
    const Changes changes(channel(0));
    VmbSimJournalStart();
    EXPECT_TRUE(setText("CAMERA/ExposureAuto", "GIGE/AutoSettingContinuous"));
    EXPECT_EQ(calls(), asText({kLimit, entrySet("ExposureAuto", "Continuous")}));
    EXPECT_THAT(changes.keys, ElementsAre("Valid"));
    VmbSimJournalStart();
    EXPECT_TRUE(setText("CAMERA/ExposureAuto", "GIGE/AutoSettingOff"));
    EXPECT_EQ(calls(), asText({entrySet("ExposureAuto", "Off")}));
}

TEST_F(Settings, AnUnknownAutomaticSettingIsNamed) {
    open();
    EXPECT_FALSE(setText("CAMERA/GainAuto", "Continuous"));
    EXPECT_EQ(lastMessage(0), refusal("Unknown value from GUI: 'Continuous'"));
    EXPECT_FALSE(setText("CAMERA/TriggerMode", ""));
    EXPECT_EQ(lastMessage(0), refusal("Unknown value from GUI: ''"));
    EXPECT_FALSE(setText("FrameFormat", "RGBA"));
    EXPECT_EQ(lastMessage(0), refusal("Unknown value from GUI: 'RGBA'"));
}

TEST_F(Settings, AnAutomaticSettingThatTheCameraRefusesIsReportedAndNotKept) {
    open();
    VmbSimFailCall("VmbFeatureEnumSet", "GainAuto", 1, VmbErrorInvalidValue);
    EXPECT_FALSE(setText("CAMERA/GainAuto", "GIGE/AutoSettingOnce"));
    EXPECT_EQ(text(0, "CAMERA/GainAuto"), "GIGE/AutoSettingOff");
    EXPECT_EQ(lastMessage(0), refusal("The feature 'GainAuto' is not supported"));
}

TEST_F(Settings, AFormatIsWrittenAndTheCachesAreReadAnew) {
    open();
    ASSERT_TRUE(plugin->prepareAcquisition());
    const Changes changes(channel(0));
    VmbSimJournalStart();
    EXPECT_TRUE(setText("FrameFormat", "Y800"));
    EXPECT_EQ(calls(),
              asText(test_support::joined({{entrySet("PixelFormat", "Mono8")}, test_support::cacheReads()})));
    EXPECT_EQ(text(0, "FrameFormat"), "Y800");
    EXPECT_THAT(changes.keys, ElementsAre("Valid"));
}

TEST_F(Settings, AnActionStartsAnAutomaticFunctionOnce) {
    open();
    const Changes changes(channel(0));
    VmbSimJournalStart();
    EXPECT_TRUE(runAction("ACTION:Camera/AutoGain"));
    EXPECT_TRUE(runAction("ACTION:Camera/AutoExposure"));
    EXPECT_TRUE(channel(0)->setItem("ACTION:Camera/AutoWhitebalance",
                                    config_items::SingleValueConfigItem<bool>(false)));
    EXPECT_EQ(calls(), asText({entrySet("GainAuto", "Once"), kLimit, entrySet("ExposureAuto", "Once"),
                               entrySet("BalanceWhiteAuto", "Once")}));
    EXPECT_EQ(text(0, "CAMERA/ExposureAuto"), "GIGE/AutoSettingOnce");
    EXPECT_EQ(text(0, "ACTION:Camera/AutoGain"), "0");
    EXPECT_THAT(changes.keys,
                ElementsAre("CAMERA/GainAuto", "Valid", "CAMERA/ExposureAuto", "CAMERA/WhitebalanceAuto"));
}

TEST_F(Settings, AnActionThatTheCameraRefusesIsReported) {
    open();
    VmbSimFailCall("VmbFeatureEnumSet", "BalanceWhiteAuto", 1, VmbErrorOther);
    EXPECT_FALSE(runAction("ACTION:Camera/AutoWhitebalance"));
    EXPECT_EQ(lastMessage(0), refusal("The feature 'BalanceWhiteAuto' is not supported"));
    EXPECT_EQ(text(0, "CAMERA/WhitebalanceAuto"), "GIGE/AutoSettingOff");
}

TEST_F(Settings, AnActionNeedsAnOpenCamera) {
    openInVain();
    EXPECT_FALSE(runAction("ACTION:Camera/AutoGain"));
    EXPECT_EQ(lastMessage(0), refusal("The camera is not open"));
    EXPECT_EQ(text(0, "CAMERA/GainAuto"), "GIGE/AutoSettingOff");
}

TEST_F(Settings, AnEntryOfTheCamerasThatTheHostHasNoWordForIsNamed) {
    VmbSimForceFeature(kColourCamera, "GainAuto", "Other");
    open();
    EXPECT_EQ(lastMessage(0), "");
    const auto item = channel(0)->getItem("CAMERA/GainAuto");
    const auto* const invalid = boost::get<config_items::InvalidConfigItem>(&item);
    ASSERT_NE(invalid, nullptr);
    EXPECT_EQ(invalid->toString(), "Unknown value from API: 'Other'");
    EXPECT_TRUE(setText("CAMERA/GainAuto", "GIGE/AutoSettingOnce"));
    EXPECT_EQ(text(0, "CAMERA/GainAuto"), "GIGE/AutoSettingOnce");
}

class LimitedSettings : public Settings {
  protected:
    /// 25 ms between two frames leave 24,970 microseconds, less the shortest exposure.
    void openWithALongExposure() {
        open();
        ASSERT_TRUE(setText("CAMERA/ExposureAuto", "GIGE/AutoSettingContinuous"));
        ASSERT_TRUE(setNumber("CAMERA/FrameSetting", 40));
        ASSERT_TRUE(setNumber("CAMERA/Exposure", 30'000));
    }
};

TEST_F(LimitedSettings, AShorterExposureIsToldAlthoughTheLimitCannotBeWritten) {
    openWithALongExposure();
    VmbSimFailCall("VmbFeatureIntSet", "ExposureAutoMax", 1, VmbErrorOther);
    const Changes changes(channel(0));
    EXPECT_FALSE(setText("CAMERA/ExposureAuto", "GIGE/AutoSettingOnce"));
    EXPECT_EQ(text(0, "CAMERA/Exposure"), "24970");
    EXPECT_EQ(text(0, "CAMERA/ExposureAuto"), "GIGE/AutoSettingContinuous");
    EXPECT_THAT(changes.keys, Contains("CAMERA/Exposure"));
}

TEST_F(LimitedSettings, AShorterExposureIsCheckedAlthoughTheWriteBehindItFails) {
    openWithALongExposure();
    VmbSimFailCall("VmbFeatureEnumSet", "ExposureAuto", 1, VmbErrorOther);
    const Changes changes(channel(0));
    EXPECT_FALSE(setText("CAMERA/ExposureAuto", "GIGE/AutoSettingOnce"));
    EXPECT_EQ(text(0, "CAMERA/Exposure"), "24970");
    EXPECT_THAT(changes.keys, ElementsAre("CAMERA/Exposure", "Valid"));
}

TEST_F(Settings, GeometryAndFormatStayDuringAnAcquisition) {
    open();
    start();
    VmbSimJournalStart();
    for (const char* key : {"FrameOffsetX", "FrameOffsetY", "FrameWidth", "FrameHeight"}) {
        EXPECT_FALSE(setNumber(key, 8)) << key;
    }
    EXPECT_FALSE(setText("FrameFormat", "Y800"));
    EXPECT_EQ(calls(), "");
    EXPECT_TRUE(setNumber("CAMERA/Gain", 6));
    stop();
    EXPECT_TRUE(setNumber("FrameWidth", 320));
}

TEST_F(Settings, GeometryMayChangeAgainThoughTheEndOfTheAcquisitionWasNotTold) {
    open();
    start();
    VmbSimFailCall("VmbFeatureIntGet", "EventAcquisitionEndTimestamp", 1, VmbErrorTimeout);
    stop();
    EXPECT_TRUE(setNumber("FrameWidth", 320));
}

TEST_F(Settings, EverythingHasTheConstraintsOfItsKind) {
    open();
    ASSERT_TRUE(setNumber("FrameWidth", 320));
    ASSERT_TRUE(setNumber("FrameOffsetX", 16));
    const auto words = [this](const char* key) { return inWords(channel(0)->getConstraints(key)); };
    EXPECT_THAT(words("FrameOffsetX"), ElementsAre("from 0 to 336", "during acquisition false"));
    EXPECT_THAT(words("FrameWidth"), ElementsAre("from 8 to 640", "during acquisition false"));
    EXPECT_THAT(words("CAMERA/Exposure"), ElementsAre("from 30 to 19970"));
    EXPECT_THAT(words("CAMERA/Gamma"), ElementsAre("from 0.45 to 1"));
    EXPECT_THAT(words("CAMERA/Hue"), ElementsAre("from -40 to 40"));
    EXPECT_THAT(words("CAMERA/WhitebalanceRed"), ElementsAre("from 0.8 to 3"));
    EXPECT_THAT(words("CAMERA/GainAuto"),
                ElementsAre("choice 'GIGE/AutoSettingOff'", "choice 'GIGE/AutoSettingOnce'",
                            "choice 'GIGE/AutoSettingContinuous'"));
    EXPECT_THAT(words("CAMERA/TriggerMode"),
                ElementsAre("choice 'GIGE/TriggerModeAux'", "choice 'GIGE/TriggerModeFixed'"));
    EXPECT_THAT(words("FrameFormat"), ElementsAre("choice 'Y422'", "choice 'RGB'", "choice 'Y800'"));
    EXPECT_THAT(words("ACTION:Camera/AutoGain"), IsEmpty());
    EXPECT_THAT(words("Valid"), ElementsAre("read-only true"));
}

}  // namespace
