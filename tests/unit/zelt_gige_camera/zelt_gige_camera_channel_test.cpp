// A channel through the plug-in: settings and opening.
#include "zelt_gige_camera_channel.h"

#include "channel_fixture.h"
#include "config_item_variant.h"
#include "interference.h"
#include "zelt_gige_channel_map.h"
#include "zelt_gige_vmb_api.h"

namespace {

using test_support::AssertionCapture;
using test_support::cacheReads;
using test_support::call;
using test_support::configurationReads;
using test_support::hostCalls;
using test_support::joined;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kName;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::OneCamera;
using test_support::quoted;
using test_support::Simulator;
using test_support::withoutQueries;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

/// The name in the messages of a camera that tells this of itself.
std::string nameOf(const zelt_gige_api::CameraInfo& info) {
    zelt_gige_camera::CameraChannel camera({0, 0}, info,
                                           std::make_shared<zelt_gige_camera::PublishedChannels>(nullptr),
                                           std::make_shared<zelt_gige_api::VimbaCameraApi>(), 0);
    camera.onDisconnected();
    exception_manager::Exception message;
    EXPECT_TRUE(camera.getLastMessage(message));
    const std::string text = exception_manager::fillPlaceholders(message);
    const std::size_t begin = std::string("Camera ").size();
    return text.substr(begin, text.rfind(" is no longer connected") - begin);
}

TEST(CameraName, IsMadeOfModelAndSerialNumberOrOfWhatThereIs) {
    zelt_gige_api::CameraInfo info;
    info.cameraId = "DEV_000F31000001";
    EXPECT_EQ(nameOf(info), "DEV_000F31000001");
    info.modelName = "Manta_G-032B";
    EXPECT_EQ(nameOf(info), "Manta_G-032B");
    info.serialNumber = "50-0503200002";
    EXPECT_EQ(nameOf(info), "Manta_G-032B (50-0503200002)");
}

TEST_F(OneCamera, ListsItsSettingsInOrder) {
    open();
    EXPECT_THAT(
        channel(0)->getKeys(),
        ElementsAre("FrameOffsetX", "FrameOffsetY", "FrameWidth", "FrameHeight", "CAMERA/Exposure",
                    "CAMERA/ExposureAuto", "CAMERA/Gain", "CAMERA/GainAutoAdjustTol", "CAMERA/GainAutoRate",
                    "CAMERA/GainAuto", "CAMERA/Gamma", "CAMERA/Hue", "CAMERA/Saturation",
                    "CAMERA/WhitebalanceAuto", "CAMERA/WhitebalanceRed", "CAMERA/WhitebalanceBlue",
                    "CAMERA/TriggerMode", "PixelAspectRatio", "FrameFormat", "ACTION:Camera/AutoGain",
                    "ACTION:Camera/AutoExposure", "ACTION:Camera/AutoWhitebalance", "ID:CAMERA/ChannelIndex",
                    "CAMERA/Type", "CAMERA/FrameSetting", "DefaultName", "ShortId", "AdditionalChannelInfo2",
                    "ChannelType", "SampleUpdateType", "SampleResolution", "Used", "Valid", "SampleRate"));
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
    EXPECT_FALSE(config->setItem("Valid", config_items::SingleValueConfigItem<bool>(false)));
    EXPECT_FALSE(config->setItem("SampleRate", config_items::ScalarConfigItem(5, "fps")));
    EXPECT_FALSE(config->setItem("PixelAspectRatio", config_items::SingleValueConfigItem<std::string>("2")));
    EXPECT_FALSE(config->setItem("DefaultName", config_items::SingleValueConfigItem<std::string>("x")));
    EXPECT_EQ(text(0, "Valid"), "1");
    EXPECT_EQ(text(0, "SampleRate"), "50 fps");
    EXPECT_EQ(text(0, "PixelAspectRatio"), "1");
    EXPECT_EQ(text(0, "DefaultName"), kName);
}

TEST_F(OneCamera, TakesTheBestFormatThatTheCameraLists) {
    open();
    EXPECT_EQ(text(0, "FrameFormat"), "Y422");
    VmbSimPlugCamera(kMonochromeCamera);
    VmbSimWaitForEvents(kPatienceMs);
    plugin->enumerateDevices();
    EXPECT_EQ(text(1, "FrameFormat"), "Y800");
}

TEST_F(OneCamera, OpensInTheFixedOrder) {
    plugin->initialize();
    VmbSimJournalStart();
    plugin->enumerateDevices();
    EXPECT_THAT(
        withoutQueries(hostCalls()),
        ElementsAreArray(joined(
            {{"VmbCameraOpen(" + quoted(kColourCamera) + ", 1)"}, cacheReads(), configurationReads()})));
    const std::vector<std::string> functions = Simulator::calledFunctions();
    EXPECT_EQ(std::count(functions.begin(), functions.end(), "VmbFeatureEnumRangeQuery"), 10);
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
    VmbSimForceFeature(kColourCamera, "PixelFormat", "YUV422Packed");
    open();
    VmbSimFailCall("VmbFeatureIntGet", "Height", 1, VmbErrorOther);
    VmbSimForceFeature(kColourCamera, "Width", "328");
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Cannot update cache of camera. Error:The feature 'Height' is not supported"));
    EXPECT_EQ(text(0, "FrameWidth"), "656 pixel");
}

TEST_F(OneCamera, OnlyLogsThatTheRangesCannotBeReadAndKeepsTheOldOnes) {
    VmbSimForceFeature(kColourCamera, "PixelFormat", "YUV422Packed");
    open();
    // The third selection in a preparation is the first that reads a range.
    VmbSimFailCall("VmbFeatureEnumSet", "BalanceRatioSelector", 3, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Cannot update domain cache of camera. Error:"
                            "The feature 'BalanceRatioSelector' is not supported"));
    EXPECT_FALSE(channel(0)->getConstraints("CAMERA/WhitebalanceRed").empty());
}

TEST_F(OneCamera, OnlyLogsThatTheFeaturesCannotBeListed) {
    plugin->initialize();
    VmbSimFailCall("VmbFeaturesList", nullptr, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    plugin->enumerateDevices();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre("Cannot gather camera features"));
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

// Cores that handle frames of different cameras would wait for each other.
TEST(CameraChannelMemory, IsNotWhatAProcessorHandsOverWithAnothers) {
    EXPECT_EQ(alignof(zelt_gige_camera::CameraChannel) % platform::kInterferenceSize, 0u);
}

}  // namespace
