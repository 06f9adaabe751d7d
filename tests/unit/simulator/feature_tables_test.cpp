// What a camera and the library offer, feature by feature.
#include <cstring>

#include "simulator_fixture.h"

namespace {

using test_support::enumOf;
using test_support::floatOf;
using test_support::intOf;
using test_support::kMonochromeCamera;
using test_support::kSystem;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::SimulatorTest;
using test_support::stringOf;

constexpr VmbFeatureFlags_t kR = VmbFeatureFlagsRead;
constexpr VmbFeatureFlags_t kRw = VmbFeatureFlagsRead | VmbFeatureFlagsWrite;
constexpr VmbFeatureFlags_t kChanging = VmbFeatureFlagsRead | VmbFeatureFlagsVolatile;

VmbFeatureInfo_t infoOf(VmbHandle_t handle, const char* name) {
    VmbFeatureInfo_t info{};
    EXPECT_EQ(VmbFeatureInfoQuery(handle, name, &info, sizeof info), VmbErrorSuccess) << name;
    return info;
}

struct IntFeature {
    const char* name;
    VmbFeatureFlags_t flags;
    const char* unit;
    VmbInt64_t min;
    VmbInt64_t max;
    VmbInt64_t value;
};

void expectInt(VmbHandle_t handle, const IntFeature& expected) {
    SCOPED_TRACE(expected.name);
    const VmbFeatureInfo_t info = infoOf(handle, expected.name);
    EXPECT_EQ(info.featureDataType, VmbFeatureDataInt);
    EXPECT_EQ(info.featureFlags, expected.flags);
    EXPECT_STREQ(info.unit != nullptr ? info.unit : "", expected.unit);
    VmbInt64_t min = -1;
    VmbInt64_t max = -1;
    EXPECT_EQ(VmbFeatureIntRangeQuery(handle, expected.name, &min, &max), VmbErrorSuccess);
    EXPECT_EQ(min, expected.min);
    EXPECT_EQ(max, expected.max);
    EXPECT_EQ(intOf(handle, expected.name), expected.value);
}

TEST_F(SimulatorTest, NumbersOfACameraHaveTheirUnitsRangesAndPowerUpValues) {
    const VmbHandle_t camera = open();
    const VmbInt64_t any = INT64_MAX;
    const IntFeature features[] = {
        {"DevicePartNumber", kR, "", 0, any, 503300},
        {"SensorBits", kR, "bit", 1, any, 12},
        {"BinningHorizontal", kRw, "", 1, 8, 1},
        {"BinningVertical", kRw, "", 1, 8, 1},
        {"DecimationHorizontal", kRw, "", 1, 8, 1},
        {"DecimationVertical", kRw, "", 1, 8, 1},
        {"NonImagePayloadSize", kR, "B", 0, any, 0},
        {"AcquisitionFrameCount", kRw, "", 1, 65535, 1},
        {"RecorderPreEventCount", kRw, "", 0, 65535, 0},
        {"ExposureAutoAdjustTol", kRw, "%", 0, 50, 5},
        {"ExposureAutoMax", kRw, "µs", 30, 60'000'000, 500'000},
        {"ExposureAutoMin", kRw, "µs", 30, 60'000'000, 30},
        {"ExposureAutoOutliers", kRw, "0.01 %", 0, 1000, 0},
        {"ExposureAutoRate", kRw, "%", 1, 100, 100},
        {"ExposureAutoTarget", kRw, "%", 0, 100, 50},
        {"GainAutoAdjustTol", kRw, "%", 0, 50, 5},
        {"GainAutoOutliers", kRw, "0.01 %", 0, 1000, 0},
        {"GainAutoRate", kRw, "%", 1, 100, 100},
        {"GainAutoTarget", kRw, "%", 0, 100, 50},
        {"BalanceWhiteAutoAdjustTol", kRw, "%", 0, 50, 5},
        {"BalanceWhiteAutoRate", kRw, "%", 1, 100, 100},
        {"DSPSubregionLeft", kRw, "px", 0, 655, 0},
        {"DSPSubregionTop", kRw, "px", 0, 491, 0},
        {"DSPSubregionRight", kRw, "px", 1, 656, 656},
        {"DSPSubregionBottom", kRw, "px", 1, 492, 492},
        {"GevTimestampTickFrequency", kR, "Hz", 0, any, 1'000'000'000},
        {"GevTimestampValue", kChanging, "", 0, any, 0},
        {"StreamBytesPerSecond", kRw, "B/s", 1'000'000, 124'000'000, 115'000'000},
        {"StreamHoldCapacity", kR, "", 0, any, 69},
        {"GevSCPSPacketSize", kRw, "B", 500, 16384, 8228},
        {"GVSPPacketSize", kRw, "B", 500, 16384, 8228},
        {"GVSPBurstSize", kRw, "", 1, 256, 32},
        {"GVSPHostReceiveBuffers", kRw, "", 256, 2048, 512},
        {"GVSPHostReceiveBufferSize", kRw, "B", 65536, 1'073'741'824, 67'108'864},
        {"GVSPMaxLookBack", kRw, "", 1, 1024, 30},
        {"GVSPMaxRequests", kRw, "", 1, 512, 3},
        {"GVSPMaxWaitSize", kRw, "", 8, 1024, 100},
        {"GVSPMissingSize", kRw, "", 0, 1024, 512},
        {"GVSPTiltingSize", kRw, "", 0, 1024, 100},
        {"GVSPTimeout", kRw, "ms", 10, 5000, 70},
        {"GVCPCmdRetries", kRw, "", 1, 10, 5},
        {"GVCPCmdTimeout", kRw, "ms", 10, 5000, 250},
        {"GevHeartbeatInterval", kRw, "ms", 500, 10000, 1450},
        {"GevHeartbeatTimeout", kRw, "ms", 500, 10000, 3000},
        // 169.254.10.1 and 255.255.0.0 with the first octet lowest.
        {"GevCurrentIPAddress", kR, "", 0, any, 0x010A'FEA9},
        {"GevCurrentSubnetMask", kR, "", 0, any, 0x0000'FFFF},
        {"GevCurrentDefaultGateway", kR, "", 0, any, 0},
        {"GevDeviceMACAddress", kR, "", 0, any, 0x000F'31A1'0001},
        {"GevPersistentIPAddress", kRw, "", 0, 0xFFFF'FFFF, 0},
        {"GevPersistentSubnetMask", kRw, "", 0, 0xFFFF'FFFF, 0},
        {"GevPersistentDefaultGateway", kRw, "", 0, 0xFFFF'FFFF, 0},
        {"StreamAnnouncedBufferCount", kChanging, "", 0, any, 0},
        {"StreamAnnounceBufferMinimum", kR, "", 0, any, 1},
        {"SyncInLevels", kChanging, "", 0, 0xFFFF, 0},
        {"SyncOutLevels", kRw, "", 0, 0xFFFF, 0},
        {"StatFrameRescued", kChanging, "", 0, any, 0},
        {"StatFrameShoved", kChanging, "", 0, any, 0},
        {"StatPacketErrors", kChanging, "", 0, any, 0},
        {"StatPacketRequested", kChanging, "", 0, any, 0},
        {"StatPacketResent", kChanging, "", 0, any, 0},
    };
    for (const IntFeature& feature : features) expectInt(camera, feature);
}

TEST_F(SimulatorTest, NumbersOfTheLibraryHaveTheirUnitsRangesAndFirstValues) {
    const IntFeature features[] = {
        {"GeVDiscoveryAllDuration", kRw, "ms", 0, 60'000, 150},
        {"GeVForceIPAddressMAC", kRw, "", 0, 0xFFFF'FFFF'FFFF, 0},
        {"GeVForceIPAddressIP", kRw, "", 0, 0xFFFF'FFFF, 0},
        {"GeVForceIPAddressSubnetMask", kRw, "", 0, 0xFFFF'FFFF, 0},
        {"GeVForceIPAddressGateway", kRw, "", 0, 0xFFFF'FFFF, 0},
        {"ActionDeviceKey", kRw, "", 0, 0xFFFF'FFFF, 0},
        {"ActionGroupKey", kRw, "", 0, 0xFFFF'FFFF, 0},
        {"ActionGroupMask", kRw, "", 0, 0xFFFF'FFFF, 0},
    };
    for (const IntFeature& feature : features) expectInt(kSystem, feature);
    test_support::run(kSystem, "GeVForceIPAddressSend");
    test_support::run(kSystem, "ActionCommand");
}

struct FloatFeature {
    const char* name;
    VmbFeatureFlags_t flags;
    const char* unit;
    double min;
    double max;
    double value;
};

TEST_F(SimulatorTest, FractionsOfACameraHaveTheirUnitsRangesAndPowerUpValues) {
    const VmbHandle_t camera = open();
    const FloatFeature features[] = {
        {"ExposureTimeAbs", kRw, "µs", 30, 60e6, 15000},
        {"ExposureTimeIncrement", kR, "µs", 0, 1e9, 1},
        {"TriggerDelayAbs", kRw, "µs", 0, 60e6, 0},
        {"Gain", kRw, "dB", 0, 32, 0},
        {"GainAutoMax", kRw, "dB", 0, 32, 32},
        {"GainAutoMin", kRw, "dB", 0, 32, 0},
        {"BlackLevel", kRw, "DN", 0, 255.75, 0},
        {"Gamma", kRw, "", 0.45, 1, 1},
        {"Hue", kRw, "°", -40, 40, 0},
        {"Saturation", kRw, "", 0, 2, 1},
        {"BalanceRatioAbs", kRw, "", 0.8, 3, 1},
        {"ColorTransformationValue", kRw, "", -2, 2, 1},
        {"StatLocalRate", kChanging, "Hz", 0, 1e9, 0},
    };
    for (const FloatFeature& expected : features) {
        SCOPED_TRACE(expected.name);
        const VmbFeatureInfo_t info = infoOf(camera, expected.name);
        EXPECT_EQ(info.featureDataType, VmbFeatureDataFloat);
        EXPECT_EQ(info.featureFlags, expected.flags);
        EXPECT_STREQ(info.unit, expected.unit);
        double min = -1;
        double max = -1;
        EXPECT_EQ(VmbFeatureFloatRangeQuery(camera, expected.name, &min, &max), VmbErrorSuccess);
        EXPECT_EQ(min, expected.min);
        EXPECT_EQ(max, expected.max);
        EXPECT_EQ(floatOf(camera, expected.name), expected.value);
    }
}

/// "Off 0, On 1" and the entry of now behind it.
std::string entriesWithNumbers(VmbHandle_t handle, const char* name) {
    std::string text;
    for (const std::string& entry : test_support::entriesOf(handle, name)) {
        VmbInt64_t number = -1;
        EXPECT_EQ(VmbFeatureEnumAsInt(handle, name, entry.c_str(), &number), VmbErrorSuccess) << entry;
        text += (text.empty() ? "" : ", ") + entry + " " + std::to_string(number);
    }
    return text + ": " + enumOf(handle, name);
}

TEST_F(SimulatorTest, EntriesAscendByTheirNumbers) {
    const VmbHandle_t camera = open();
    const char* sets = "Default 0, UserSet1 1, UserSet2 2, UserSet3 3, UserSet4 4, UserSet5 5: Default";
    const std::pair<const char*, const char*> features[] = {
        {"AcquisitionMode", "Continuous 1, SingleFrame 2, MultiFrame 3, Recorder 4: Continuous"},
        {"TriggerSelector",
         "FrameStart 0, AcquisitionStart 3, AcquisitionEnd 4, AcquisitionRecord 6: FrameStart"},
        {"TriggerMode", "Off 0, On 1: On"},
        {"TriggerSource", "Freerun 0, Line1 1, Line2 2, Line3 3, Line4 4, FixedRate 5, Software 6: Freerun"},
        {"TriggerActivation", "RisingEdge 0, FallingEdge 1, AnyEdge 2, LevelHigh 3, LevelLow 4: RisingEdge"},
        {"TriggerOverlap", "Off 0, PreviousFrame 2: Off"},
        {"ExposureMode", "Timed 1: Timed"},
        {"ExposureAuto", "Off 1, Continuous 2, Once 3: Off"},
        {"GainAuto", "Off 1, Continuous 2, Once 3: Off"},
        {"BalanceWhiteAuto", "Off 1, Continuous 2, Once 3: Off"},
        {"ExposureAutoAlg", "Mean 0, FitRange 1: Mean"},
        {"GainSelector", "All 0: All"},
        {"BalanceRatioSelector", "Red 0, Blue 1: Red"},
        {"ColorTransformationMode", "Off 0, Manual 1, Temp6500K 2: Off"},
        {"BandwidthControlMode", "StreamBytesPerSecond 0, SCPD 1, Both 2: StreamBytesPerSecond"},
        {"EventNotification", "Off 0, On 1: Off"},
        {"PtpMode", "Off 0, Slave 1, Master 2, Auto 3: Off"},
        {"PtpStatus", "Off 0, Slave 1, Master 2, Error 3, Syncing 4: Off"},
        {"SensorType", "Mono 0, Bayer 1: Bayer"},
        {"DeviceScanType", "Areascan 0: Areascan"},
        {"StreamHoldEnable", "Off 0, On 1: Off"},
        {"GVSPDriver", "Socket 0, Filter 1: Socket"},
        {"GVSPProtocol", "UDP 0: UDP"},
        {"StreamBufferHandlingMode", "Default 0: Default"},
        {"DeviceTemperatureSelector", "Sensor 0, Main 1, Power 2: Main"},
        {"SyncOutPolarity", "Normal 0, Invert 1: Normal"},
        {"SyncOutSource",
         "GPO 0, AcquisitionTriggerReady 1, FrameTriggerReady 2, FrameTrigger 3, Exposing 4, "
         "FrameReadout 5, Imaging 6, Acquiring 7, LineIn1 8, LineIn2 9, Strobe1 12: Exposing"},
        {"StrobeSource",
         "AcquisitionTriggerReady 1, FrameTriggerReady 2, FrameTrigger 3, Exposing 4, "
         "FrameReadout 5, Imaging 6, Acquiring 7, LineIn1 8, LineIn2 9: FrameTrigger"},
        {"StrobeDurationMode", "Source 0, Controlled 1: Source"},
        {"UserSetSelector", sets},
        {"UserSetDefaultSelector", sets},
        {"GevIPConfigurationMode", "LLA 4, Persistent 5, DHCP 6: LLA"},
    };
    for (const auto& [name, entries] : features) EXPECT_EQ(entriesWithNumbers(camera, name), entries) << name;
    EXPECT_EQ(enumOf(open(kMonochromeCamera), "SensorType"), "Mono");
}

TEST_F(SimulatorTest, AMonochromeCameraHasNoColours) {
    const VmbHandle_t camera = open(kMonochromeCamera);
    VmbFeatureInfo_t info;
    for (const char* name : {"Hue", "Saturation", "BalanceRatioAbs", "ColorTransformationMode"}) {
        EXPECT_EQ(VmbFeatureInfoQuery(camera, name, &info, sizeof info), VmbErrorNotFound) << name;
    }
    EXPECT_EQ(floatOf(camera, "BlackLevel"), 0);
}

TEST_F(SimulatorTest, TextsOfACameraSayWhatItIs) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(stringOf(camera, "DeviceVendorName"), "Allied Vision Technologies");
    EXPECT_EQ(stringOf(camera, "DeviceModelName"), "Manta_G-033C");
    EXPECT_EQ(stringOf(camera, "DeviceID"), "50-0503300001");
    EXPECT_EQ(stringOf(camera, "DeviceUserID"), "");
    EXPECT_EQ(stringOf(camera, "StreamID"), "Stream0");
    EXPECT_NE(stringOf(camera, "DeviceFirmwareVersion"), "");
}

TEST_F(SimulatorTest, FeaturesOfTheLibraryHaveNullForTextsThatTheyLack) {
    const VmbFeatureInfo_t news = infoOf(kSystem, "DiscoveryInterfaceEvent");
    EXPECT_EQ(news.featureFlags, 5u);
    EXPECT_STREQ(news.category, "/Discovery");
    EXPECT_STREQ(news.displayName, "Discovery Interface Event");
    EXPECT_EQ(news.pollingTime, 0u);
    EXPECT_EQ(news.unit, nullptr);
    EXPECT_EQ(news.representation, nullptr);
    EXPECT_EQ(news.tooltip, nullptr);
    EXPECT_EQ(news.visibility, VmbFeatureVisibilityBeginner);
    EXPECT_STREQ(news.sfncNamespace, "Custom");
    EXPECT_FALSE(news.isStreamable);
    EXPECT_FALSE(news.hasAffectedFeatures);
    EXPECT_FALSE(news.hasSelectedFeatures);
    const VmbFeatureInfo_t width = infoOf(open(), "DeviceID");
    EXPECT_STREQ(width.unit, "");
    EXPECT_STREQ(width.representation, "");
    EXPECT_STREQ(width.tooltip, "");
}

TEST_F(SimulatorTest, WhatCanBeSetOnACameraIsStreamable) {
    const VmbHandle_t camera = open();
    for (const char* name : {"Width", "Gain", "PixelFormat", "ReverseX", "DeviceUserID"}) {
        EXPECT_TRUE(infoOf(camera, name).isStreamable) << name;
    }
    for (const char* name : {"SensorWidth", "AcquisitionStart", "StatFrameRate", "DeviceID"}) {
        EXPECT_FALSE(infoOf(camera, name).isStreamable) << name;
    }
    EXPECT_FALSE(infoOf(kSystem, "GeVDiscoveryAllDuration").isStreamable);
}

TEST_F(SimulatorTest, ValuesAreRoundedToTheirGrid) {
    const VmbHandle_t camera = open();
    setFloat(camera, "Gain", 1.26);
    EXPECT_EQ(floatOf(camera, "Gain"), 1.3);
    setFloat(camera, "Gain", 0.04);
    EXPECT_EQ(floatOf(camera, "Gain"), 0.0);
    setFloat(camera, "Gain", 32);
    EXPECT_EQ(floatOf(camera, "Gain"), 32.0);
    setFloat(camera, "BalanceRatioAbs", 1.2345);
    EXPECT_EQ(floatOf(camera, "BalanceRatioAbs"), 1.23);
    setFloat(camera, "BalanceRatioAbs", 0.8);
    EXPECT_EQ(floatOf(camera, "BalanceRatioAbs"), 0.8);
    setFloat(camera, "TriggerDelayAbs", 0.125);
    EXPECT_EQ(floatOf(camera, "TriggerDelayAbs"), 0.125);
}

TEST_F(SimulatorTest, OnlyTheGainTellsAnIncrement) {
    const VmbHandle_t camera = open();
    bool has = false;
    double step = -1;
    EXPECT_EQ(VmbFeatureFloatIncrementQuery(camera, "Gain", &has, &step), VmbErrorSuccess);
    EXPECT_TRUE(has);
    EXPECT_EQ(step, 0.1);
    for (const char* name : {"ExposureTimeAbs", "BalanceRatioAbs", "AcquisitionFrameRateAbs", "Hue"}) {
        EXPECT_EQ(VmbFeatureFloatIncrementQuery(camera, name, &has, nullptr), VmbErrorSuccess);
        EXPECT_FALSE(has) << name;
        EXPECT_EQ(VmbFeatureFloatIncrementQuery(camera, name, nullptr, &step), VmbErrorSuccess);
        EXPECT_EQ(step, 0) << name;
    }
}

std::vector<std::string> related(decltype(&VmbFeatureListAffected) list, VmbHandle_t handle,
                                 const char* name) {
    VmbUint32_t count = 0;
    EXPECT_EQ(list(handle, name, nullptr, 0, &count, 0), VmbErrorSuccess) << name;
    std::vector<VmbFeatureInfo_t> features(count + 1);
    EXPECT_EQ(list(handle, name, features.data(), count + 1, nullptr, sizeof features[0]), VmbErrorSuccess);
    std::vector<std::string> names;
    for (VmbUint32_t i = 0; i < count; ++i) names.emplace_back(features[i].name);
    return names;
}

TEST_F(SimulatorTest, SelectorsNameWhatTheySelect) {
    const VmbHandle_t camera = open();
    EXPECT_THAT(related(&VmbFeatureListSelected, camera, "TriggerSelector"),
                ::testing::ElementsAre("TriggerActivation", "TriggerDelayAbs", "TriggerMode",
                                       "TriggerOverlap", "TriggerSoftware", "TriggerSource"));
    EXPECT_THAT(related(&VmbFeatureListSelected, camera, "EventSelector"),
                ::testing::ElementsAre("EventNotification"));
    EXPECT_THAT(related(&VmbFeatureListSelected, camera, "UserSetSelector"),
                ::testing::ElementsAre("UserSetLoad", "UserSetSave"));
    EXPECT_THAT(related(&VmbFeatureListSelected, camera, "Width"), ::testing::IsEmpty());
    EXPECT_THAT(related(&VmbFeatureListAffected, camera, "ChunkModeActive"),
                ::testing::ElementsAre("NonImagePayloadSize", "PayloadSize", "AcquisitionFrameRateLimit",
                                       "AcquisitionFrameRateAbs"));
    VmbFeatureInfo_t features[2] = {};
    VmbUint32_t found = 0;
    EXPECT_EQ(VmbFeatureListSelected(camera, "TriggerSelector", features, 2, &found, sizeof features[0]),
              VmbErrorMoreData);
    EXPECT_EQ(found, 6u);
    EXPECT_STREQ(features[1].name, "TriggerDelayAbs");
}

}  // namespace
