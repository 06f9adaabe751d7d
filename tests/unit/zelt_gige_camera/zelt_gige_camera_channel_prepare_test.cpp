// A channel through the plug-in: preparation and start of capture.
#include "channel_fixture.h"
#include "config_item_variant.h"

namespace {

using test_support::AssertionCapture;
using test_support::asText;
using test_support::cacheReads;
using test_support::call;
using test_support::hostCalls;
using test_support::joined;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kName;
using test_support::LogCapture;
using test_support::OneCamera;
using test_support::PluginTest;
using test_support::quoted;
using test_support::Simulator;
using test_support::withoutQueries;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

TEST_F(OneCamera, PreparesInTheFixedOrder) {
    VmbSimForceFeature(kColourCamera, "PixelFormat", "Mono8");
    open();
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(asText(withoutQueries(hostCalls())),
              asText(joined({{call("VmbFeatureEnumGet", quoted("PixelFormat")),
                              call("VmbFeatureEnumSet", "\"PixelFormat\", \"YUV422Packed\"")},
                             cacheReads(),
                             {call("VmbFeatureEnumSet", "\"AcquisitionMode\", \"Continuous\"")},
                             share(),
                             cacheReads(),
                             fixedRateProgram(),
                             exposureAndGain(),
                             colours(),
                             captureStart()})));
}

TEST_F(OneCamera, WritesTheFormatOnlyWhenTheCameraHasAnother) {
    VmbSimForceFeature(kColourCamera, "PixelFormat", "YUV422Packed");
    open();
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(hostCalls(), Not(Contains(HasSubstr("VmbFeatureEnumSet(DEV_000F31A10001, \"PixelFormat\""))));
}

TEST_F(OneCamera, ProgramsTheTriggerModeOnceWhileNothingChanges) {
    open();
    EXPECT_TRUE(plugin->prepareAcquisition());
    plugin->startAcquisition();
    plugin->stopAcquisition();
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(asText(withoutQueries(hostCalls())),
              asText(joined({{call("VmbFeatureEnumSet", "\"AcquisitionMode\", \"Continuous\"")},
                             share(),
                             cacheReads(),
                             exposureLimit(),
                             captureStart()})));
}

TEST_F(OneCamera, IsNotPreparedWhenNotUsed) {
    open();
    use(0, false);
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    plugin->onAcquisitionPrepared();
    EXPECT_TRUE(plugin->startAcquisition());
    EXPECT_TRUE(plugin->stopAcquisition());
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(OneCamera, TellsTheHostThatValidChangedWhenItIsPrepared) {
    open();
    std::vector<std::string> changed;
    channel(0)->setChangeCallback([&](const std::string& key) { changed.push_back(key); });
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(changed, ElementsAre("Valid"));
    channel(0)->setChangeCallback({});
}

TEST_F(OneCamera, LetsTheHostReadBackWhatItIsToldOf) {
    open();
    std::string valid;
    const auto config = channel(0);
    config->setChangeCallback([&](const std::string& key) {
        const auto item = config->getItem(key);
        valid = boost::apply_visitor([](const auto& value) { return value.toString(); }, item);
    });
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(valid, "1");
    channel(0)->setChangeCallback({});
}

TEST_F(OneCamera, TellsTheHostOfGeometryThatTheCameraChanged) {
    open();
    VmbSimForceFeature(kColourCamera, "Width", "640");
    VmbSimForceFeature(kColourCamera, "OffsetY", "2");
    std::vector<std::string> changed;
    channel(0)->setChangeCallback([&](const std::string& key) { changed.push_back(key); });
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(changed, ElementsAre("FrameOffsetY", "FrameWidth", "Valid"));
    channel(0)->setChangeCallback({});
}

TEST_F(OneCamera, IsConfiguredInFullAgainAfterASetting) {
    open();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(channel(0)->setItem("CAMERA/Gain", config_items::ScalarConfigItem(0, "")));
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    const std::vector<std::string> calls = hostCalls();
    for (const auto& group : {fixedRateProgram(), exposureAndGain(), colours()}) {
        EXPECT_NE(std::search(calls.begin(), calls.end(), group.begin(), group.end()), calls.end())
            << asText(group);
    }
}

TEST_F(OneCamera, IsCheckedWithTheExposureThatItMadeOfTheHosts) {
    // A period of 15,030.02 microseconds is too short for this exposure and the shortest one, but the camera
    // exposes for whole microseconds.
    VmbSimForceFeature(kColourCamera, "TriggerSource", "Line1");
    VmbSimForceFeature(kColourCamera, "ExposureTimeAbs", "15000.4");
    aux().setSyncOutAuxFrequency(665'335, 10'000);
    open();
    EXPECT_FALSE(plugin->checkChannelSettings({0}, false));
    EXPECT_EQ(text(0, "Valid"), "0");
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(text(0, "Valid"), "1");
    EXPECT_TRUE(plugin->checkChannelSettings({0}, false));
}

TEST_F(OneCamera, TakesOverARateThatTheCameraRounds) {
    // A period of 30,000,000.3 ns: not on any camera's grid.
    VmbSimForceFeature(kColourCamera, "AcquisitionFrameRateAbs", "33.333333");
    open();
    std::vector<std::string> changed;
    channel(0)->setChangeCallback([&](const std::string& key) { changed.push_back(key); });
    EXPECT_TRUE(plugin->prepareAcquisition());
    channel(0)->setChangeCallback({});
    EXPECT_THAT(changed, ElementsAre("Valid", "SampleRate"));
    const auto rate = boost::get<config_items::ScalarConfigItem>(channel(0)->getItem("SampleRate")).m_value;
    EXPECT_NE(rate, 33.333333);
    // A whole number of nanoseconds is next to it.
    EXPECT_NEAR(1e9 / rate, 1e9 / 33.333333, 1.0);
    EXPECT_EQ(text(0, "CAMERA/FrameSetting"), text(0, "SampleRate"));
}

TEST_F(PluginTest, SharesTheLinkByWhatEachCameraNeeds) {
    enumerate();
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    // 656 x 492 pixels: 2 bytes at 50 Hz need 32,275,200 B/s, 1 byte at 40 Hz needs 12,910,080 B/s.
    EXPECT_THAT(hostCalls(), Contains(call("VmbFeatureIntSet", "\"StreamBytesPerSecond\", 82142857")));
    EXPECT_THAT(hostCalls(),
                Contains(call("VmbFeatureIntSet", "\"StreamBytesPerSecond\", 32857142", kMonochromeCamera)));
}

TEST_F(PluginTest, GivesTheWholeLinkToTheOnlyCameraInUse) {
    enumerate();
    use(1, false);
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(hostCalls(), Contains(call("VmbFeatureIntSet", "\"StreamBytesPerSecond\", 115000000")));
}

struct PrepareFailure {
    const char* function;
    const char* argument;
    const char* logPrefix;
    const char* message;
};

class FailingPrepare : public OneCamera, public ::testing::WithParamInterface<PrepareFailure> {};

TEST_P(FailingPrepare, ReportsAndAnswersFalseAndMayBeRepeated) {
    VmbSimForceFeature(kColourCamera, "PixelFormat", "Mono8");
    open();
    const PrepareFailure& failure = GetParam();
    VmbSimFailCall(failure.function, failure.argument, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Error),
        ElementsAre(std::string(failure.logPrefix) + failure.message, "Cannot configure camera '%1': %2"));
    exception_manager::Exception message;
    ASSERT_TRUE(messages(0).getLastMessage(message));
    EXPECT_EQ(message.getCode(), 0u);
    EXPECT_EQ(message.getMessage(), "Cannot configure camera '%1': %2");
    EXPECT_EQ(message.getSource(), "ZELT_GIGE_CAMERA");
    ASSERT_EQ(message.getArguments().size(), 2u);
    EXPECT_EQ(message.getArguments()[0].name, "Camera Name");
    EXPECT_EQ(message.getArguments()[0].value, kName);
    EXPECT_EQ(message.getArguments()[1].name, "Exception Argument");
    EXPECT_EQ(message.getArguments()[1].value, failure.message);
    EXPECT_TRUE(plugin->prepareAcquisition());
}

constexpr const char* kConfigure = "Cannot configure the camera. Error: ";
constexpr const char* kFixedRate = "Cannot configure fixed framerate mode. Error: ";

INSTANTIATE_TEST_SUITE_P(
    AtEachStep, FailingPrepare,
    ::testing::Values(PrepareFailure{"VmbFeatureEnumGet", "PixelFormat", kConfigure,
                                     "The feature 'PixelFormat' is not supported"},
                      PrepareFailure{"VmbFeatureEnumSet", "PixelFormat", kConfigure,
                                     "The feature 'PixelFormat' is not supported"},
                      PrepareFailure{"VmbFeatureEnumSet", "AcquisitionMode", kConfigure,
                                     "The feature 'AcquisitionMode' is not supported"},
                      PrepareFailure{"VmbFeatureEnumSet", "BandwidthControlMode", kConfigure,
                                     "The feature 'BandwidthControlMode' is not supported"},
                      PrepareFailure{"VmbFeatureIntSet", "StreamBytesPerSecond", kConfigure,
                                     "The feature 'StreamBytesPerSecond' is not supported"},
                      PrepareFailure{"VmbFeatureBoolSet", "StreamFrameRateConstrain", kConfigure,
                                     "The feature 'StreamFrameRateConstrain' is not supported"},
                      PrepareFailure{"VmbFeatureEnumSet", "TriggerSelector", kFixedRate,
                                     "The feature 'TriggerSelector' is not supported"},
                      PrepareFailure{"VmbFeatureEnumSet", "TriggerMode", kFixedRate,
                                     "The feature 'TriggerMode' is not supported"},
                      PrepareFailure{"VmbFeatureEnumSet", "TriggerSource", kFixedRate,
                                     "The feature 'TriggerSource' is not supported"},
                      PrepareFailure{"VmbFeatureFloatSet", "AcquisitionFrameRateAbs", kFixedRate,
                                     "The feature 'AcquisitionFrameRateAbs' is not supported"}));

struct CaptureFailure {
    const char* function;
    const char* argument;
    const char* message;
};

class FailingCapture : public OneCamera, public ::testing::WithParamInterface<CaptureFailure> {};

TEST_P(FailingCapture, ReportsIsNotValidAndRestartsTheNextTime) {
    open();
    const CaptureFailure& failure = GetParam();
    VmbSimFailCall(failure.function, failure.argument, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Warning);
    std::vector<std::string> changed;
    channel(0)->setChangeCallback([&](const std::string& key) { changed.push_back(key); });
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Error),
        ElementsAre("Camera " + kName + " cannot start: " + failure.message, "Cannot start camera %1"));
    EXPECT_EQ(lastMessage(0), "Cannot start camera " + kName);
    EXPECT_EQ(changed.back(), "Valid");
    EXPECT_EQ(text(0, "Valid"), "0");
    changed.clear();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(changed, ElementsAre("Valid", "Valid"));
    channel(0)->setChangeCallback({});
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                Contains("Camera " + kName + " already starting, initiate restart..."));
    EXPECT_EQ(text(0, "Valid"), "1");
}

INSTANTIATE_TEST_SUITE_P(
    AtEachStep, FailingCapture,
    ::testing::Values(CaptureFailure{"VmbFeatureCommandRun", "GevTimestampControlReset",
                                     "The feature 'GevTimestampControlReset' is not supported"},
                      CaptureFailure{"VmbFeatureCommandRun", "GVSPAdjustPacketSize",
                                     "The feature 'GVSPAdjustPacketSize' is not supported"},
                      CaptureFailure{"VmbFrameAnnounce", nullptr,
                                     "Could not announce frame buffer: Other error"},
                      CaptureFailure{"VmbCaptureStart", nullptr, "VmbCaptureStart failed: Other error"}));

TEST_F(OneCamera, PreparedTwiceAbortsEndsAndStartsCaptureAfresh) {
    open();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(plugin->onAcquisitionPrepared());
    const AssertionCapture assertions;
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(assertions.failures(), IsEmpty());
    const std::vector<std::string> restart{
        call("VmbFeatureCommandRun", quoted("AcquisitionAbort")),
        call("VmbCaptureEnd"),
        call("VmbCaptureQueueFlush"),
        call("VmbFrameRevokeAll"),
        call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionStart")),
        call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionEnd"))};
    EXPECT_EQ(asText(withoutQueries(hostCalls())),
              asText(joined({{call("VmbFeatureEnumSet", "\"AcquisitionMode\", \"Continuous\"")},
                             share(),
                             cacheReads(),
                             exposureLimit(),
                             restart,
                             captureStart()})));
}

TEST_F(OneCamera, ARestartThatCannotAbortEndsCaptureAndReports) {
    open();
    EXPECT_TRUE(plugin->prepareAcquisition());
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionAbort", 1, VmbErrorOther);
    VmbSimJournalStart();
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_THAT(Simulator::calledFunctions(), Contains("VmbCaptureEnd"));
    EXPECT_EQ(lastMessage(0), "Cannot start camera " + kName);
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(hostCalls(), Not(Contains(call("VmbFeatureCommandRun", quoted("AcquisitionAbort")))));
}

TEST_F(OneCamera, PreparedWhileMarkedAsStartedIsAProgrammingError) {
    open();
    plugin->onAcquisitionPrepared();
    const AssertionCapture assertions;
    EXPECT_TRUE(plugin->prepareAcquisition());
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].expression,
              "m_acquisition_started.exchange(false, std::memory_order_release) == false");
    EXPECT_EQ(assertions.failures()[0].file, "lib/zelt_gige_camera/src/zelt_gige_camera_channel");
}

}  // namespace
