// The frequency of the host's trigger output on its way to the channels, and what they make of it.
#include "settings_fixture.h"
#include "zelt_gige_camera_channel_exposure_limit.h"

namespace {

using test_support::AssertionCapture;
using test_support::asText;
using test_support::Changes;
using test_support::entrySet;
using test_support::hostCalls;
using test_support::integerSet;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kName;
using test_support::LogCapture;
using test_support::realGet;
using test_support::realSet;
using test_support::Settings;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kNotConfigured = "Sync Out AUX is not configured properly";

class AuxFrequencyTest : public Settings {
  protected:
    void trigger() { ASSERT_TRUE(setText("CAMERA/TriggerMode", "GIGE/TriggerModeAux")); }
};

TEST_F(AuxFrequencyTest, SetBeforeAnyCameraExistsReachesTheChannelsMadeLater) {
    aux().setSyncOutAuxFrequency(50, 2);
    VmbSimForceFeature(kColourCamera, "TriggerSource", "Line1");
    open();
    EXPECT_EQ(text(0, "CAMERA/FrameSetting"), "25 fps");
    EXPECT_EQ(text(0, "SampleRate"), "25 fps");
    EXPECT_TRUE(plugin->prepareAcquisition());
}

TEST_F(AuxFrequencyTest, NotSetLeavesATriggeredCameraWithoutARateAndUnprepared) {
    VmbSimForceFeature(kColourCamera, "TriggerSource", "Line1");
    open();
    for (const char* key : {"CAMERA/FrameSetting", "SampleRate"}) {
        const auto item = channel(0)->getItem(key);
        EXPECT_NE(boost::get<config_items::InvalidConfigItem>(&item), nullptr) << key;
    }
    const LogCapture log(UniLogSeverityLevel::Error);
    VmbSimJournalStart();
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_EQ(lastMessage(0), kNotConfigured);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre(kNotConfigured));
    EXPECT_EQ(text(0, "Valid"), "0");
    EXPECT_THAT(hostCalls(), Not(Contains(test_support::call("VmbCaptureStart"))));
    exception_manager::Exception message;
    ASSERT_TRUE(messages(0).getLastMessage(message));
    EXPECT_EQ(message.getSource(), "ZELT_GIGE_CAMERA");
    EXPECT_EQ(message.getCode(), 0u);
    EXPECT_THAT(message.getArguments(), IsEmpty());
}

TEST_F(AuxFrequencyTest, IsToldToTheHostAsTheChannelsRate) {
    open();
    trigger();
    const Changes changes(channel(0));
    aux().setSyncOutAuxFrequency(30, 4);
    EXPECT_THAT(changes.keys, ElementsAre("SampleRate", "Valid"));
    EXPECT_EQ(text(0, "CAMERA/FrameSetting"), "15/2 fps");
    EXPECT_EQ(text(0, "Valid"), "1");
    aux().setSyncOutAuxFrequency(0, 0);
    EXPECT_EQ(text(0, "Valid"), "0");
    EXPECT_EQ(lastMessage(0), kNotConfigured);
}

TEST_F(AuxFrequencyTest, LimitsTheAutomaticExposureOfATriggeredCamera) {
    open();
    trigger();
    VmbSimJournalStart();
    aux().setSyncOutAuxFrequency(25, 1);
    EXPECT_EQ(calls(), asText({integerSet("ExposureAutoMax", "39970")}));
    VmbSimJournalStart();
    // 33,366.67 us between two pulses.
    aux().setSyncOutAuxFrequency(30000, 1001);
    EXPECT_EQ(calls(), asText({integerSet("ExposureAutoMax", "33337")}));
}

TEST_F(AuxFrequencyTest, ShortensTheExposureOfACameraThatExposesContinuously) {
    open();
    trigger();
    ASSERT_TRUE(setNumber("CAMERA/Exposure", 30000));
    aux().setSyncOutAuxFrequency(10, 1);
    ASSERT_TRUE(setText("CAMERA/ExposureAuto", "GIGE/AutoSettingContinuous"));
    const Changes changes(channel(0));
    VmbSimJournalStart();
    aux().setSyncOutAuxFrequency(50, 1);
    EXPECT_EQ(calls(), asText({realSet("ExposureTimeAbs", "19970"), realGet("ExposureTimeAbs"),
                               integerSet("ExposureAutoMax", "19970")}));
    EXPECT_EQ(text(0, "CAMERA/Exposure"), "19970");
    EXPECT_THAT(changes.keys, ElementsAre("CAMERA/Exposure", "Valid", "SampleRate"));
}

TEST_F(AuxFrequencyTest, LeavesAFixedExposureAsItIsAndSaysThatItIsTooLong) {
    open();
    trigger();
    ASSERT_TRUE(setNumber("CAMERA/Exposure", 30000));
    VmbSimJournalStart();
    const LogCapture log(UniLogSeverityLevel::Error);
    aux().setSyncOutAuxFrequency(50, 1);
    EXPECT_EQ(calls(), asText({integerSet("ExposureAutoMax", "19970")}));
    EXPECT_EQ(text(0, "CAMERA/Exposure"), "30000");
    EXPECT_EQ(lastMessage(0), "Camera exposure is too long for external frame trigger rate");
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Camera exposure is too long for external frame trigger rate"));
}

TEST_F(AuxFrequencyTest, OfZeroLimitsNothingAndIsAProgrammingError) {
    open();
    trigger();
    const AssertionCapture assertions;
    VmbSimJournalStart();
    aux().setSyncOutAuxFrequency(0, 5);
    ASSERT_FALSE(assertions.failures().empty());
    EXPECT_EQ(assertions.failures()[0].expression, "frequency.numerator() != 0");
    EXPECT_EQ(calls(), asText({integerSet("ExposureAutoMax", "60000000")}));
    EXPECT_EQ(text(0, "SampleRate"), "0 fps");
    EXPECT_EQ(text(0, "Valid"), "1");
}

TEST_F(AuxFrequencyTest, IsKeptByAChannelThatIsNotUsedAndNothingElse) {
    open();
    trigger();
    use(0, false);
    const Changes changes(channel(0));
    VmbSimJournalStart();
    aux().setSyncOutAuxFrequency(0, 5);
    aux().setSyncOutAuxFrequency(25, 1);
    EXPECT_EQ(calls(), "");
    EXPECT_THAT(changes.keys, IsEmpty());
    EXPECT_EQ(text(0, "SampleRate"), "25 fps");
}

TEST_F(AuxFrequencyTest, ThatTheCameraCannotBeLimitedForIsReportedAndKept) {
    open();
    trigger();
    VmbSimFailCall("VmbFeatureIntSet", "ExposureAutoMax", 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    const Changes changes(channel(0));
    EXPECT_NO_THROW(aux().setSyncOutAuxFrequency(25, 1));
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Error),
        ElementsAre("Cannot configure the camera. Error: The feature 'ExposureAutoMax' is not supported",
                    "Cannot configure camera '%1': %2"));
    EXPECT_EQ(lastMessage(0), refusal("The feature 'ExposureAutoMax' is not supported"));
    EXPECT_EQ(text(0, "SampleRate"), "25 fps");
    EXPECT_THAT(changes.keys, ElementsAre("SampleRate", "Valid"));
    EXPECT_EQ(text(0, "Valid"), "1");
}

TEST_F(AuxFrequencyTest, IsTracedThroughServicePlugInAndChannel) {
    open();
    const LogCapture log(UniLogSeverityLevel::Trace);
    aux().setSyncOutAuxFrequency(25, 1);
    std::vector<std::string> traces;
    for (const std::string& line : log.texts(UniLogSeverityLevel::Trace)) traces.push_back(line);
    EXPECT_THAT(traces, ElementsAre("Entering GigeSyncAuxService::setSyncOutAuxFrequency() ...",
                                    "Entering CameraPlugin::onSyncOutAuxFrequencyChanged() ...",
                                    "Entering CameraChannel::onSyncOutAuxFrequencyChanged() ...",
                                    "... exiting CameraChannel::onSyncOutAuxFrequencyChanged().",
                                    "... exiting CameraPlugin::onSyncOutAuxFrequencyChanged().",
                                    "... exiting GigeSyncAuxService::setSyncOutAuxFrequency()."));
}

TEST_F(AuxFrequencyTest, ThatAListenerFailsOnReachesTheOtherChannels) {
    VmbSimPlugCamera(kMonochromeCamera);
    open();
    channel(0)->setChangeCallback([](const std::string&) { throw std::runtime_error("the host failed"); });
    const Changes changes(channel(1));
    EXPECT_NO_THROW(aux().setSyncOutAuxFrequency(25, 1));
    EXPECT_THAT(changes.keys, ElementsAre("SampleRate", "Valid"));
    channel(0)->setChangeCallback({});
}

TEST_F(AuxFrequencyTest, SetAfterThePreparationHoldsForTheStart) {
    VmbSimForceFeature(kColourCamera, "TriggerSource", "Line1");
    open();
    aux().setSyncOutAuxFrequency(25, 1);
    ASSERT_TRUE(plugin->prepareAcquisition());
    aux().setSyncOutAuxFrequency(0, 0);
    const AssertionCapture assertions;
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_THROW(plugin->startAcquisition(), exception_manager::Exception);
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].expression, "m_aux_clock_frequency");
    EXPECT_EQ(assertions.failures()[0].file, "lib/zelt_gige_camera/src/zelt_gige_camera_channel");
    EXPECT_EQ(lastMessage(0), "Cannot start acquisition of camera " + kName);
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Error),
        ElementsAre("Cannot start acquisition of camera %1:The host has set no Sync Out AUX frequency",
                    "Cannot start acquisition of camera %1"));
    aux().setSyncOutAuxFrequency(25, 1);
    start();
    stop();
}

TEST_F(AuxFrequencyTest, ClearedDuringAnAcquisitionStopsNothing) {
    open();
    trigger();
    aux().setSyncOutAuxFrequency(25, 1);
    start();
    aux().setSyncOutAuxFrequency(0, 0);
    EXPECT_TRUE(plugin->isAcquiring());
    EXPECT_EQ(text(0, "Valid"), "0");
    stop();
    EXPECT_FALSE(plugin->prepareAcquisition());
    aux().setSyncOutAuxFrequency(25, 1);
    start();
    stop();
}

TEST_F(AuxFrequencyTest, OutlivesATermination) {
    open();
    aux().setSyncOutAuxFrequency(25, 1);
    plugin->terminate();
    VmbSimForceFeature(kColourCamera, "TriggerSource", "Line1");
    open();
    EXPECT_EQ(text(0, "SampleRate"), "25 fps");
}

TEST_F(AuxFrequencyTest, IsNothingThatTheHostSetsAsASetting) {
    open();
    trigger();
    aux().setSyncOutAuxFrequency(25, 1);
    EXPECT_FALSE(setNumber("CAMERA/FrameSetting", 50));
    EXPECT_EQ(text(0, "CAMERA/FrameSetting"), "25 fps");
}

TEST_F(AuxFrequencyTest, CountsForTheBandwidthOfATriggeredCamera) {
    VmbSimPlugCamera(kMonochromeCamera);
    open();
    trigger();
    aux().setSyncOutAuxFrequency(20, 1);
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    // 656 x 492 pixels: 2 bytes at 20 Hz beside 1 byte at 40 Hz need the same.
    EXPECT_THAT(hostCalls(), Contains(integerSet("StreamBytesPerSecond", "57500000")));
}

TEST_F(AuxFrequencyTest, SwitchesTheCameraToItsTriggerAtOnce) {
    open();
    const Changes changes(channel(0));
    VmbSimJournalStart();
    EXPECT_TRUE(setText("CAMERA/TriggerMode", "GIGE/TriggerModeAux"));
    EXPECT_EQ(calls(),
              asText(test_support::joined({auxProgram(), {integerSet("ExposureAutoMax", "19970")}})));
    EXPECT_EQ(text(0, "CAMERA/TriggerMode"), "GIGE/TriggerModeAux");
    EXPECT_THAT(changes.keys, ElementsAre("SampleRate", "Valid"));
    VmbSimJournalStart();
    EXPECT_TRUE(setText("CAMERA/TriggerMode", "GIGE/TriggerModeFixed"));
    EXPECT_EQ(calls(),
              asText(test_support::joined({fixedRateProgram(), {integerSet("ExposureAutoMax", "19970")}})));
}

class FailingTrigger : public AuxFrequencyTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(FailingTrigger, KeepsTheModeThatWasAndProgramsItAnewAtTheNextPreparation) {
    open();
    ASSERT_TRUE(plugin->prepareAcquisition());
    const std::string feature = GetParam();
    const char* const function = feature == "TriggerDelayAbs" ? "VmbFeatureFloatSet" : "VmbFeatureEnumSet";
    VmbSimFailCall(function, feature.c_str(), 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_FALSE(setText("CAMERA/TriggerMode", "GIGE/TriggerModeAux"));
    const std::string reason = "The feature '" + feature + "' is not supported";
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Cannot configure AUX triggered mode. Error: " + reason,
                            "Cannot configure camera '%1': %2"));
    EXPECT_EQ(lastMessage(0), refusal(reason));
    EXPECT_EQ(text(0, "CAMERA/TriggerMode"), "GIGE/TriggerModeFixed");
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(text(0, "CAMERA/TriggerMode"), "GIGE/TriggerModeFixed");
    EXPECT_THAT(hostCalls(), Contains(entrySet("TriggerSource", "FixedRate")));
}

INSTANTIATE_TEST_SUITE_P(AtEachStep, FailingTrigger,
                         ::testing::Values("TriggerSelector", "TriggerSource", "TriggerActivation",
                                           "TriggerDelayAbs", "TriggerOverlap", "TriggerMode"));

}  // namespace
