// A channel through the plug-in: settings, open, prepare, start, stop, close.
#include "zelt_gige_camera_channel.h"

#include <cmath>

#include "plugin_fixture.h"
#include "throwing_log.h"
#include "zelt_gige_camera_api.h"

namespace {

using test_support::AssertionCapture;
using test_support::hostCalls;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::PluginTest;
using test_support::RecordingSink;
using test_support::Simulator;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const std::string kName = "Manta_G-033C (50-0503300001)";

/// "VmbFeatureIntGet" and "Width" give the call as the journal writes it.
std::string call(const std::string& function, const std::string& rest = {},
                 const std::string& camera = kColourCamera) {
    return function + "(" + camera + (rest.empty() ? "" : ", " + rest) + ")";
}

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::vector<std::string> cacheReads() {
    return {call("VmbFeatureIntGet", quoted("OffsetX")),
            call("VmbFeatureIntGet", quoted("OffsetY")),
            call("VmbFeatureIntGet", quoted("Width")),
            call("VmbFeatureIntGet", quoted("Height")),
            call("VmbFeatureFloatGet", quoted("AcquisitionFrameRateAbs")),
            call("VmbFeatureIntGet", quoted("StreamBytesPerSecond")),
            call("VmbFeatureEnumGet", quoted("TriggerSource"))};
}

/// Drops the queries whose arguments are counts; what is asked for is in the other calls.
std::vector<std::string> withoutQueries(std::vector<std::string> calls) {
    std::erase_if(calls, [](const std::string& line) {
        return line.rfind("VmbFeaturesList", 0) == 0 || line.rfind("VmbFeatureEnumRangeQuery", 0) == 0 ||
               line.rfind("VmbFeatureStringGet", 0) == 0 || line.rfind("VmbCamerasList", 0) == 0;
    });
    return calls;
}

std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> parts) {
    std::vector<std::string> all;
    for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

/// The colour camera alone, so that its journal is not mixed with another's.
class OneCamera : public PluginTest {
  protected:
    OneCamera() {
        VmbSimUnplugCamera(kMonochromeCamera);
        plugin->setSharedAcquisitionObject(clock);
    }
    void open() { enumerate(); }

    static std::vector<std::string> fixedRateProgram() {
        return {call("VmbFeatureEnumSet", "\"TriggerSelector\", \"FrameStart\""),
                call("VmbFeatureEnumSet", "\"TriggerMode\", \"Off\""),
                call("VmbFeatureEnumSet", "\"TriggerSource\", \"FixedRate\""),
                call("VmbFeatureFloatSet", "\"AcquisitionFrameRateAbs\", 50"),
                call("VmbFeatureFloatGet", quoted("AcquisitionFrameRateAbs"))};
    }
    /// A single camera has the whole link.
    static std::vector<std::string> share() {
        return {call("VmbFeatureEnumSet", "\"BandwidthControlMode\", \"StreamBytesPerSecond\""),
                call("VmbFeatureIntSet", "\"StreamBytesPerSecond\", 115000000"),
                call("VmbFeatureBoolSet", "\"StreamFrameRateConstrain\", 1")};
    }
    static std::vector<std::string> captureStart() {
        std::vector<std::string> calls{
            call("VmbFeatureCommandRun", quoted("GevTimestampControlReset")),
            call("VmbFeatureCommandRun", quoted("GVSPAdjustPacketSize")),
            call("VmbFeatureEnumSet", "\"EventSelector\", \"AcquisitionStart\""),
            call("VmbFeatureEnumSet", "\"EventNotification\", \"On\""),
            call("VmbFeatureEnumSet", "\"EventSelector\", \"AcquisitionEnd\""),
            call("VmbFeatureEnumSet", "\"EventNotification\", \"On\""),
            call("VmbFeatureInvalidationRegister", quoted("EventAcquisitionStart")),
            call("VmbFeatureInvalidationRegister", quoted("EventAcquisitionEnd")),
            call("VmbFeatureIntGet", quoted("PayloadSize"))};
        for (int frame = 1; frame <= 5; ++frame) {
            calls.push_back(call("VmbFrameAnnounce", "frame " + std::to_string(frame) + ", 104"));
        }
        calls.push_back(call("VmbCaptureStart"));
        for (int frame = 1; frame <= 5; ++frame) {
            calls.push_back(call("VmbCaptureFrameQueue", "frame " + std::to_string(frame)));
        }
        return calls;
    }
};

TEST_F(OneCamera, ListsItsSettingsInOrder) {
    open();
    EXPECT_THAT(channel(0)->getKeys(),
                ElementsAre("FrameOffsetX", "FrameOffsetY", "FrameWidth", "FrameHeight", "PixelAspectRatio",
                            "FrameFormat", "ID:CAMERA/ChannelIndex", "CAMERA/Type", "CAMERA/FrameSetting",
                            "DefaultName", "ShortId", "AdditionalChannelInfo2", "ChannelType",
                            "SampleUpdateType", "SampleResolution", "Used", "Valid", "SampleRate"));
}

TEST_F(OneCamera, ShowsWhatTheCameraHolds) {
    VmbSimForceFeature(kColourCamera, "OffsetX", "8");
    VmbSimForceFeature(kColourCamera, "OffsetY", "4");
    VmbSimForceFeature(kColourCamera, "Width", "640");
    VmbSimForceFeature(kColourCamera, "Height", "480");
    VmbSimForceFeature(kColourCamera, "AcquisitionFrameRateAbs", "12.5");
    open();
    const std::pair<const char*, const char*> expected[] = {
        {"FrameOffsetX", "8 pixel"},
        {"FrameOffsetY", "4 pixel"},
        {"FrameWidth", "640 pixel"},
        {"FrameHeight", "480 pixel"},
        {"PixelAspectRatio", "1"},
        {"FrameFormat", "Y422"},
        {"ID:CAMERA/ChannelIndex", "0"},
        {"CAMERA/Type", "GigE"},
        {"CAMERA/FrameSetting", "12.5 fps"},
        {"DefaultName", "Manta_G-033C (50-0503300001)"},
        {"ShortId", "DEV_000F31A10001"},
        {"AdditionalChannelInfo2", "Allied Vision Technologies/Manta_G-033C/50-0503300001"},
        {"ChannelType", "13"},
        {"SampleUpdateType", "1"},
        {"SampleResolution", "15"},
        {"Used", "1"},
        {"Valid", "1"},
        {"SampleRate", "12.5 fps"},
    };
    for (const auto& [key, value] : expected) EXPECT_EQ(text(0, key), value) << key;
}

TEST_F(OneCamera, RefusesToSetWhatItOnlyShows) {
    open();
    const auto config = channel(0);
    EXPECT_FALSE(config->setItem("FrameWidth", config_items::ScalarConfigItem(320, "pixel")));
    EXPECT_FALSE(config->setItem("DefaultName", config_items::SingleValueConfigItem<std::string>("x")));
    EXPECT_EQ(text(0, "FrameWidth"), "656 pixel");
}

TEST_F(OneCamera, TakesTheBestFormatThatTheCameraLists) {
    open();
    EXPECT_EQ(text(0, "FrameFormat"), "Y422");
    VmbSimPlugCamera(kMonochromeCamera);
    VmbSimWaitForEvents(kPatienceMs);
    plugin->enumerateDevices();
    EXPECT_EQ(text(1, "FrameFormat"), "Y800");
}

TEST_F(OneCamera, WithExternalTriggerHasNoRateToShowAndCannotBePreparedYet) {
    VmbSimForceFeature(kColourCamera, "TriggerSource", "Line1");
    open();
    const auto setting = channel(0)->getItem("CAMERA/FrameSetting");
    EXPECT_NE(boost::get<config_items::InvalidConfigItem>(&setting), nullptr);
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_EQ(lastMessage(0),
              "Cannot configure camera '" + kName +
                  "': The camera is set to external trigger, which this version cannot record");
}

TEST_F(OneCamera, OpensInTheFixedOrder) {
    plugin->initialize();
    VmbSimJournalStart();
    plugin->enumerateDevices();
    EXPECT_THAT(withoutQueries(hostCalls()),
                ElementsAreArray(joined({{"VmbCameraOpen(" + quoted(kColourCamera) + ", 1)"},
                                         cacheReads(),
                                         {call("VmbFeatureIntGet", quoted("GevTimestampTickFrequency")),
                                          call("VmbFeatureFloatGet", quoted("AcquisitionFrameRateAbs")),
                                          call("VmbFeatureEnumGet", quoted("TriggerMode")),
                                          call("VmbFeatureEnumGet", quoted("TriggerSource"))}})));
    const std::vector<std::string> functions = Simulator::calledFunctions();
    EXPECT_EQ(std::count(functions.begin(), functions.end(), "VmbFeatureEnumRangeQuery"), 4);
    EXPECT_EQ(std::count(functions.begin(), functions.end(), "VmbFeaturesList"), 2);
    EXPECT_EQ(functions.back(), "VmbFeatureStringGet");
}

TEST_F(OneCamera, LogsItsOpening) {
    plugin->initialize();
    const LogCapture log(UniLogSeverityLevel::Debug);
    plugin->enumerateDevices();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Detail),
                ElementsAre("Enumerating available GigE devices",
                            "Initializing camera '" + kName +
                                "' with path 'Allied Vision Technologies/Manta_G-033C/50-0503300001'",
                            "Camera " + kName + " opened successfully."));
    const auto dump = log.texts(UniLogSeverityLevel::Debug);
    for (const char* line : {"feature: StreamFrameRateConstrain Type: Bool", "feature: Width Type: Int64",
                             "feature: Gain Type: Float64", "feature: DeviceModelName Type: String",
                             "feature: PixelFormat Type: Enum", "feature: AcquisitionStart Type: Command"}) {
        EXPECT_THAT(dump, Contains(line));
    }
}

struct OpenFailure {
    const char* function;
    const char* argument;
    const char* message;
};

class FailingOpen : public OneCamera, public ::testing::WithParamInterface<OpenFailure> {};

TEST_P(FailingOpen, ReportsClosesAgainAndThrowsFromPrepare) {
    const OpenFailure& failure = GetParam();
    plugin->initialize();
    // Caches are read first and forgive a failure; the configuration is read afterwards and does not.
    VmbSimFailCall(failure.function, failure.argument, -1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    plugin->enumerateDevices();
    EXPECT_EQ(lastMessage(0), "Cannot configure camera '" + kName + "': " + failure.message);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                Contains(std::string("Cannot configure the camera. Error: ") + failure.message));
    EXPECT_EQ(log.texts(UniLogSeverityLevel::Error).back(), "Cannot configure camera '%1': %2");
    VmbSimJournalStart();
    EXPECT_THROW(plugin->prepareAcquisition(), exception_manager::Exception);
    EXPECT_EQ(Simulator::calledFunctions().back(), "VmbCameraClose");
    VmbSimClearFaults();
    EXPECT_TRUE(plugin->prepareAcquisition());
}

INSTANTIATE_TEST_SUITE_P(
    AtEachStep, FailingOpen,
    ::testing::Values(
        OpenFailure{"VmbFeatureIntGet", "GevTimestampTickFrequency",
                    "The feature 'GevTimestampTickFrequency' is not supported"},
        OpenFailure{"VmbFeatureFloatGet", "AcquisitionFrameRateAbs",
                    "The feature 'AcquisitionFrameRateAbs' is not supported"},
        OpenFailure{"VmbFeatureEnumGet", "TriggerMode", "The feature 'TriggerMode' is not supported"},
        OpenFailure{"VmbFeatureEnumGet", "TriggerSource", "The feature 'TriggerSource' is not supported"}));

TEST_F(OneCamera, OnlyLogsThatTheCachesCannotBeReadAndKeepsTheOldValues) {
    open();
    VmbSimFailCall("VmbFeatureIntGet", "Height", 1, VmbErrorOther);
    VmbSimForceFeature(kColourCamera, "Width", "328");
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Cannot update cache of camera. Error:The feature 'Height' is not supported"));
    EXPECT_EQ(text(0, "FrameWidth"), "656 pixel");
}

TEST_F(OneCamera, OnlyLogsThatTheFeaturesCannotBeListed) {
    plugin->initialize();
    VmbSimFailCall("VmbFeaturesList", nullptr, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    plugin->enumerateDevices();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre(HasSubstr("Cannot gather camera features")));
    EXPECT_EQ(lastMessage(0), "");
}

TEST_F(OneCamera, OnlyWarnsOfAnUnreadableModelName) {
    plugin->initialize();
    VmbSimFailCall("VmbFeatureStringGet", "DeviceModelName", 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Warning);
    plugin->enumerateDevices();
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].severity, 5u);
    EXPECT_THAT(log.lines()[0].text, HasSubstr("Camera " + kName + " model name unreadable"));
}

TEST_F(OneCamera, WithoutAFormatItCanUseAssertsAndHasNone) {
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kColourCamera);
    plugin->initialize();
    VmbSimFailCall("VmbFeatureEnumRangeQuery", "PixelFormat", -1, VmbErrorOther);
    const AssertionCapture assertions;
    plugin->enumerateDevices();
    EXPECT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(text(0, "FrameFormat"), "");
}

TEST_F(OneCamera, PreparesInTheFixedOrder) {
    VmbSimForceFeature(kColourCamera, "PixelFormat", "Mono8");
    open();
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(withoutQueries(hostCalls()),
                ElementsAreArray(joined({{call("VmbFeatureEnumGet", quoted("PixelFormat")),
                                          call("VmbFeatureEnumSet", "\"PixelFormat\", \"YUV422Packed\""),
                                          call("VmbFeatureEnumSet", "\"AcquisitionMode\", \"Continuous\"")},
                                         share(),
                                         cacheReads(),
                                         fixedRateProgram(),
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
    EXPECT_THAT(withoutQueries(hostCalls()),
                ElementsAreArray(joined({{call("VmbFeatureEnumSet", "\"AcquisitionMode\", \"Continuous\"")},
                                         share(),
                                         cacheReads(),
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

TEST_F(OneCamera, TakesOverARateThatTheCameraRounds) {
    // A period of 30,000,000.3 ns: not on any camera's grid.
    VmbSimForceFeature(kColourCamera, "AcquisitionFrameRateAbs", "33.333333");
    open();
    std::vector<std::string> changed;
    channel(0)->setChangeCallback([&](const std::string& key) { changed.push_back(key); });
    EXPECT_TRUE(plugin->prepareAcquisition());
    channel(0)->setChangeCallback({});
    EXPECT_THAT(changed, ElementsAre("Valid", "SampleRate"));
    EXPECT_NE(text(0, "SampleRate"), "33.333333 fps");
    EXPECT_THAT(text(0, "SampleRate"), HasSubstr("33.33"));
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
    EXPECT_THAT(withoutQueries(hostCalls()),
                ElementsAreArray(joined({{call("VmbFeatureEnumSet", "\"AcquisitionMode\", \"Continuous\"")},
                                         share(),
                                         cacheReads(),
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

TEST_F(OneCamera, StartsAndStopsWithItsLogLines) {
    open();
    const LogCapture log(UniLogSeverityLevel::Debug);
    start();
    stop();
    const std::string camera = "Camera " + kName;
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Detail),
                AllOf(Contains(camera + " starting..."), Contains(camera + " started."),
                      Contains(camera + " starting acquisition...")));
    std::vector<std::string> debug = log.texts(UniLogSeverityLevel::Debug);
    std::erase_if(debug, [](const std::string& line) { return line.find("received") != std::string::npos; });
    EXPECT_THAT(debug, ElementsAre("Acquisition stopped for camera " + kName, camera + " stopping...",
                                   camera + " stopped successfully."));
}

TEST_F(OneCamera, StopsTheAcquisitionBeforeItEndsCapture) {
    open();
    start();
    VmbSimJournalStart();
    stop();
    EXPECT_THAT(hostCalls(),
                ElementsAre(call("VmbFeatureCommandRun", quoted("AcquisitionStop")), call("VmbCaptureEnd"),
                            call("VmbCaptureQueueFlush"), call("VmbFrameRevokeAll"),
                            call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionStart")),
                            call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionEnd"))));
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->stopAcquisition());
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(OneCamera, NeverStartedHasNothingToStop) {
    open();
    use(0, false);
    EXPECT_TRUE(plugin->startAcquisition());
    const LogCapture log(UniLogSeverityLevel::Debug);
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->stopAcquisition());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Debug),
                ElementsAre("Acquisition stopped for camera " + kName, "Camera " + kName + " stopping...",
                            "Camera " + kName + " has not been started."));
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(OneCamera, CannotStartWithoutAMasterClock) {
    open();
    plugin->setSharedAcquisitionObject(nullptr);
    EXPECT_TRUE(plugin->prepareAcquisition());
    const AssertionCapture assertions;
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_THROW(plugin->startAcquisition(), exception_manager::Exception);
    EXPECT_THAT(assertions.expressions(), ElementsAre("m_master_clock"));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Cannot start acquisition of camera %1:The host has set no master clock",
                            "Cannot start acquisition of camera %1"));
    EXPECT_EQ(lastMessage(0), "Cannot start acquisition of camera " + kName);
    EXPECT_FALSE(plugin->isAcquiring());
}

TEST_F(OneCamera, CannotStartUnprepared) {
    open();
    EXPECT_THROW(plugin->startAcquisition(), exception_manager::Exception);
    EXPECT_EQ(lastMessage(0), "Cannot start acquisition of camera " + kName);
}

TEST_F(OneCamera, ReportsAStartThatTheCameraRefuses) {
    open();
    EXPECT_TRUE(plugin->prepareAcquisition());
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStart", 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    try {
        plugin->startAcquisition();
        FAIL();
    } catch (const exception_manager::Exception& error) {
        EXPECT_EQ(exception_manager::fillPlaceholders(error), "Cannot start acquisition of camera " + kName);
    }
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Cannot start acquisition of camera %1:"
                            "The feature 'AcquisitionStart' is not supported",
                            "Cannot start acquisition of camera %1"));
}

TEST_F(PluginTest, AStartThatFailsBringsEveryChannelBack) {
    enumerate();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(plugin->onAcquisitionPrepared());
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStart", 2, VmbErrorOther);
    VmbSimJournalStart();
    EXPECT_THROW(plugin->startAcquisition(), exception_manager::Exception);
    EXPECT_FALSE(plugin->isAcquiring());
    const std::vector<std::string> calls = hostCalls();
    EXPECT_THAT(calls, Contains(call("VmbFeatureCommandRun", quoted("AcquisitionStop"))));
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd")));
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd", "", kMonochromeCamera)));
    const AssertionCapture assertions;
    start();
    stop();
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST_F(PluginTest, StopsEveryOtherChannelWhenOneCannotBeStopped) {
    enumerate();
    start();
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStop", 1, VmbErrorOther);
    VmbSimJournalStart();
    EXPECT_THROW(plugin->stopAcquisition(), zelt_gige_api::UnsupportedFeature);
    const std::vector<std::string> calls = hostCalls();
    EXPECT_THAT(calls, Contains(call("VmbFeatureCommandRun", quoted("AcquisitionStop"), kMonochromeCamera)));
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd")));
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd", "", kMonochromeCamera)));
    EXPECT_FALSE(plugin->isAcquiring());
}

TEST_F(PluginTest, PreparesEveryOtherChannelWhenOneCannotBeOpened) {
    VmbSimFailCall("VmbCameraOpen", kColourCamera, -1, VmbErrorInvalidAccess);
    enumerate();
    VmbSimJournalStart();
    EXPECT_THROW(plugin->prepareAcquisition(), exception_manager::Exception);
    EXPECT_THAT(hostCalls(), Contains(call("VmbCaptureStart", "", kMonochromeCamera)));
}

TEST_F(PluginTest, TracesItsPreparation) {
    const LogCapture log;
    plugin->prepareAcquisition();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Trace),
                ElementsAre("Entering CameraPlugin::prepareAcquisition() ...",
                            "... exiting CameraPlugin::prepareAcquisition()."));
}

TEST_F(OneCamera, OpensAReplacedCameraAgain) {
    open();
    start();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_THROW(plugin->stopAcquisition(), zelt_gige_api::UnsupportedFeature);
    plugin->onAcquisitionFinished();
    VmbSimPlugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    plugin->enumerateDevices();
    RecordingSink sink;
    plugin->setChannelSink(0, &sink);
    start();
    EXPECT_TRUE(sink.waitFor(3));
    stop();
    plugin->clearChannelSinks();
}

TEST_F(OneCamera, ClosedBeforeItWasStoppedIsAProgrammingErrorAndClosesAllTheSame) {
    open();
    start();
    const AssertionCapture assertions;
    VmbSimJournalStart();
    dynamic_cast<zelt_gige_camera::CameraChannel&>(*channel(0)).close();
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].expression, "m_acquisition_started.load_relaxed() == false");
    EXPECT_EQ(assertions.failures()[0].message, "The camera must be stopped before closing it");
    EXPECT_EQ(assertions.failures()[0].file, "lib/zelt_gige_camera/src/zelt_gige_camera_channel");
    EXPECT_THAT(hostCalls(),
                ElementsAre(call("VmbFeatureCommandRun", quoted("AcquisitionStop")), call("VmbCaptureEnd"),
                            call("VmbCaptureQueueFlush"), call("VmbFrameRevokeAll"),
                            call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionStart")),
                            call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionEnd")),
                            call("VmbFrameRevokeAll"), call("VmbCameraClose")));
}

TEST_F(OneCamera, TerminatedInTheMiddleOfAnAcquisitionIsClosedWithoutAProgrammingError) {
    open();
    start();
    const AssertionCapture assertions;
    VmbSimJournalStart();
    plugin->terminate();
    EXPECT_THAT(assertions.failures(), IsEmpty());
    EXPECT_THAT(hostCalls(), Contains(call("VmbFeatureCommandRun", quoted("AcquisitionStop"))));
    EXPECT_THAT(hostCalls(), Contains(call("VmbCameraClose")));
}

TEST_F(OneCamera, RemovedInTheMiddleOfAnAcquisitionIsClosedWithoutAProgrammingError) {
    open();
    start();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    const AssertionCapture assertions;
    plugin->enumerateDevices();
    EXPECT_THAT(assertions.failures(), IsEmpty());
    EXPECT_THAT(plugin->getChannelIds(), IsEmpty());
}

TEST_F(OneCamera, IsClosedEvenWhenTheLogCannotBeWritten) {
    open();
    start();
    {
        const test_support::ThrowingLog log;
        VmbSimJournalStart();
        plugin->terminate();
    }
    EXPECT_THAT(hostCalls(), Contains(call("VmbCaptureEnd")));
    EXPECT_THAT(hostCalls(), Contains(call("VmbCameraClose")));
}

TEST_F(OneCamera, IsClosedAgainWhenTheLogCannotBeWrittenWhileItOpens) {
    plugin->initialize();
    {
        const test_support::ThrowingLog log("opened successfully");
        EXPECT_ANY_THROW(plugin->enumerateDevices());
    }
    plugin->enumerateDevices();
    EXPECT_TRUE(plugin->prepareAcquisition());
}

TEST_F(OneCamera, ThatVanishesWhileItIsFirstOpenedIsOpenedAgain) {
    plugin->initialize();
    {
        // The cable is pulled right after the open call, before the plug-in can know the channel.
        test_support::LogAction pull("opened successfully", [] {
            VmbSimUnplugCamera(kColourCamera);
            VmbSimWaitForEvents(kPatienceMs);
            VmbSimPlugCamera(kColourCamera);
            VmbSimWaitForEvents(kPatienceMs);
        });
        plugin->enumerateDevices();
    }
    EXPECT_TRUE(plugin->prepareAcquisition());
}

TEST_F(OneCamera, LogsItsClosing) {
    open();
    const LogCapture log(UniLogSeverityLevel::Debug);
    plugin->terminate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Debug), ElementsAre("Camera " + kName + " closed."));
}

TEST_F(OneCamera, LogsThatItCannotBeClosed) {
    open();
    VmbSimFailCall("VmbCameraClose", nullptr, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    plugin->terminate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre("Cannot close camera " + kName));
}

}  // namespace
