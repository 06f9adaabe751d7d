// The cameras' features: what there is, their ranges and what depends on what.
#include <cmath>

#include "simulator_fixture.h"

namespace {

using test_support::entriesOf;
using test_support::enumOf;
using test_support::floatOf;
using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::SimulatorTest;
using test_support::stringOf;
using ::testing::ElementsAre;

using Range = std::pair<VmbInt64_t, VmbInt64_t>;

Range intRange(VmbHandle_t camera, const char* name) {
    Range range{-1, -1};
    EXPECT_EQ(VmbFeatureIntRangeQuery(camera, name, &range.first, &range.second), VmbErrorSuccess) << name;
    return range;
}

VmbInt64_t increment(VmbHandle_t camera, const char* name) {
    VmbInt64_t step = -1;
    EXPECT_EQ(VmbFeatureIntIncrementQuery(camera, name, &step), VmbErrorSuccess) << name;
    return step;
}

std::pair<double, double> floatRange(VmbHandle_t camera, const char* name) {
    std::pair<double, double> range{-1, -1};
    EXPECT_EQ(VmbFeatureFloatRangeQuery(camera, name, &range.first, &range.second), VmbErrorSuccess) << name;
    return range;
}

TEST_F(SimulatorTest, TheColourCameraPowersUpAsItsMakerSaysIt) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(stringOf(camera, "DeviceVendorName"), "Allied Vision Technologies");
    EXPECT_EQ(stringOf(camera, "DeviceModelName"), "Manta_G-033C");
    EXPECT_EQ(stringOf(camera, "DeviceID"), "50-0503300001");
    for (const char* width : {"SensorWidth", "WidthMax", "Width"}) EXPECT_EQ(intOf(camera, width), 656);
    for (const char* height : {"SensorHeight", "HeightMax", "Height"}) EXPECT_EQ(intOf(camera, height), 492);
    for (const char* offset : {"OffsetX", "OffsetY"}) EXPECT_EQ(intOf(camera, offset), 0);
    EXPECT_EQ(enumOf(camera, "PixelFormat"), "BayerRG8");
    EXPECT_EQ(enumOf(camera, "AcquisitionMode"), "Continuous");
    EXPECT_EQ(floatOf(camera, "AcquisitionFrameRateAbs"), 50.0);
    EXPECT_EQ(enumOf(camera, "TriggerSelector"), "FrameStart");
    EXPECT_EQ(enumOf(camera, "TriggerMode"), "On");
    EXPECT_EQ(enumOf(camera, "TriggerSource"), "Freerun");
    EXPECT_EQ(enumOf(camera, "TriggerActivation"), "RisingEdge");
    EXPECT_EQ(floatOf(camera, "TriggerDelayAbs"), 0.0);
    EXPECT_EQ(enumOf(camera, "TriggerOverlap"), "Off");
    EXPECT_EQ(enumOf(camera, "ExposureMode"), "Timed");
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 15000.0);
    EXPECT_EQ(intOf(camera, "ExposureAutoMax"), 500000);
    EXPECT_EQ(intOf(camera, "ExposureAutoMin"), 30);
    EXPECT_EQ(floatOf(camera, "Gain"), 0.0);
    EXPECT_EQ(intOf(camera, "GainAutoAdjustTol"), 5);
    EXPECT_EQ(intOf(camera, "GainAutoRate"), 100);
    EXPECT_EQ(floatOf(camera, "Gamma"), 1.0);
    EXPECT_EQ(floatOf(camera, "Hue"), 0.0);
    EXPECT_EQ(floatOf(camera, "Saturation"), 1.0);
    EXPECT_EQ(enumOf(camera, "BalanceRatioSelector"), "Red");
    EXPECT_EQ(floatOf(camera, "BalanceRatioAbs"), 1.0);
    for (const char* automatic : {"ExposureAuto", "GainAuto", "BalanceWhiteAuto"}) {
        EXPECT_EQ(enumOf(camera, automatic), "Off");
    }
    EXPECT_EQ(intOf(camera, "GevTimestampTickFrequency"), 1'000'000'000);
    EXPECT_EQ(enumOf(camera, "EventSelector"), "AcquisitionStart");
    EXPECT_EQ(enumOf(camera, "EventNotification"), "Off");
    EXPECT_EQ(intOf(camera, "EventAcquisitionStart"), 40000);
    EXPECT_EQ(intOf(camera, "EventAcquisitionEnd"), 40001);
    EXPECT_EQ(enumOf(camera, "BandwidthControlMode"), "StreamBytesPerSecond");
    EXPECT_EQ(intOf(camera, "StreamBytesPerSecond"), 115'000'000);
    EXPECT_EQ(intOf(camera, "GevSCPSPacketSize"), 8228);
    bool constrained = false;
    EXPECT_EQ(VmbFeatureBoolGet(camera, "StreamFrameRateConstrain", &constrained), VmbErrorSuccess);
    EXPECT_TRUE(constrained);
}

TEST_F(SimulatorTest, TheMonochromeCameraHasNoColour) {
    const VmbHandle_t camera = open(kMonochromeCamera);
    EXPECT_EQ(stringOf(camera, "DeviceModelName"), "Manta_G-032B");
    EXPECT_EQ(stringOf(camera, "DeviceID"), "50-0503200002");
    EXPECT_EQ(floatOf(camera, "AcquisitionFrameRateAbs"), 40.0);
    EXPECT_EQ(enumOf(camera, "PixelFormat"), "Mono8");
    EXPECT_THAT(entriesOf(camera, "PixelFormat"), ElementsAre("Mono8", "Mono12"));
    VmbFeatureInfo_t info;
    for (const char* name :
         {"Hue", "Saturation", "BalanceWhiteAuto", "BalanceRatioSelector", "BalanceRatioAbs"}) {
        EXPECT_EQ(VmbFeatureInfoQuery(camera, name, &info, sizeof info), VmbErrorNotFound) << name;
    }
}

TEST_F(SimulatorTest, EntriesComeInTheOrderOfTheirNumbers) {
    const VmbHandle_t camera = open();
    EXPECT_THAT(entriesOf(camera, "PixelFormat"),
                ElementsAre("Mono8", "BayerRG8", "YUV411Packed", "YUV422Packed", "RGB8Packed", "BGR8Packed"));
    EXPECT_THAT(entriesOf(camera, "AcquisitionMode"),
                ElementsAre("Continuous", "SingleFrame", "MultiFrame", "Recorder"));
    EXPECT_THAT(entriesOf(camera, "TriggerSelector"),
                ElementsAre("FrameStart", "AcquisitionStart", "AcquisitionEnd", "AcquisitionRecord"));
    EXPECT_THAT(entriesOf(camera, "TriggerMode"), ElementsAre("Off", "On"));
    EXPECT_THAT(entriesOf(camera, "TriggerSource"),
                ElementsAre("Freerun", "Line1", "Line2", "Line3", "Line4", "FixedRate", "Software"));
    EXPECT_THAT(entriesOf(camera, "TriggerActivation"),
                ElementsAre("RisingEdge", "FallingEdge", "AnyEdge", "LevelHigh", "LevelLow"));
    EXPECT_THAT(entriesOf(camera, "TriggerOverlap"), ElementsAre("Off", "PreviousFrame"));
    for (const char* automatic : {"ExposureAuto", "GainAuto", "BalanceWhiteAuto"}) {
        EXPECT_THAT(entriesOf(camera, automatic), ElementsAre("Off", "Continuous", "Once")) << automatic;
    }
    EXPECT_THAT(entriesOf(camera, "BalanceRatioSelector"), ElementsAre("Red", "Blue"));
    EXPECT_THAT(entriesOf(camera, "BandwidthControlMode"),
                ElementsAre("StreamBytesPerSecond", "SCPD", "Both"));
    EXPECT_THAT(entriesOf(camera, "EventNotification"), ElementsAre("Off", "On"));
    EXPECT_THAT(entriesOf(test_support::kSystem, "DiscoveryCameraEvent"),
                ElementsAre("Missing", "Detected", "Reachable", "Unreachable"));
}

TEST_F(SimulatorTest, RangesAreThoseOfTheModel) {
    const VmbHandle_t colour = open();
    const VmbHandle_t mono = open(kMonochromeCamera);
    EXPECT_EQ(intRange(colour, "Width"), Range(8, 656));
    EXPECT_EQ(increment(colour, "Width"), 8);
    EXPECT_EQ(intRange(colour, "Height"), Range(2, 492));
    EXPECT_EQ(increment(colour, "Height"), 2);
    EXPECT_EQ(increment(colour, "OffsetX"), 4);
    EXPECT_EQ(increment(colour, "OffsetY"), 2);
    EXPECT_EQ(intRange(mono, "Width"), Range(1, 656));
    EXPECT_EQ(increment(mono, "Width"), 1);
    EXPECT_EQ(increment(mono, "OffsetX"), 1);
    EXPECT_EQ(floatRange(colour, "ExposureTimeAbs"), std::make_pair(30.0, 60e6));
    EXPECT_EQ(floatRange(mono, "ExposureTimeAbs"), std::make_pair(26.0, 60e6));
    EXPECT_EQ(floatRange(colour, "Gain"), std::make_pair(0.0, 32.0));
    EXPECT_EQ(floatRange(colour, "Gamma"), std::make_pair(0.45, 1.0));
    EXPECT_EQ(floatRange(colour, "Hue"), std::make_pair(-40.0, 40.0));
    EXPECT_EQ(floatRange(colour, "Saturation"), std::make_pair(0.0, 2.0));
    EXPECT_EQ(floatRange(colour, "BalanceRatioAbs"), std::make_pair(0.8, 3.0));
    EXPECT_EQ(intRange(colour, "GainAutoAdjustTol"), Range(0, 50));
    EXPECT_EQ(intRange(colour, "GainAutoRate"), Range(1, 100));
    EXPECT_EQ(intRange(colour, "StreamBytesPerSecond"), Range(1'000'000, 124'000'000));
    EXPECT_EQ(intRange(colour, "ExposureAutoMax"), Range(30, 60'000'000));
}

TEST_F(SimulatorTest, EitherEndOfARangeMayBeLeftOut) {
    const VmbHandle_t camera = open();
    VmbInt64_t number = 0;
    double real = 0;
    EXPECT_EQ(VmbFeatureIntRangeQuery(camera, "GainAutoRate", nullptr, &number), VmbErrorSuccess);
    EXPECT_EQ(number, 100);
    EXPECT_EQ(VmbFeatureFloatRangeQuery(camera, "Saturation", nullptr, &real), VmbErrorSuccess);
    EXPECT_EQ(real, 2.0);
}

TEST_F(SimulatorTest, PayloadFollowsGeometryAndFormat) {
    const VmbHandle_t camera = open();
    const std::pair<const char*, VmbInt64_t> payloads[] = {
        {"Mono8", 322'752},        {"BayerRG8", 322'752},   {"YUV411Packed", 484'128},
        {"YUV422Packed", 645'504}, {"RGB8Packed", 968'256}, {"BGR8Packed", 968'256}};
    for (const auto& [format, payload] : payloads) {
        setEnum(camera, "PixelFormat", format);
        EXPECT_EQ(intOf(camera, "PayloadSize"), payload) << format;
        EXPECT_EQ(intOf(camera, "ImageSize"), payload) << format;
    }
    setInt(camera, "Width", 320);
    setInt(camera, "Height", 240);
    EXPECT_EQ(intOf(camera, "PayloadSize"), 320 * 240 * 3);
    const VmbHandle_t mono = open(kMonochromeCamera);
    setEnum(mono, "PixelFormat", "Mono12");
    EXPECT_EQ(intOf(mono, "PayloadSize"), 645'504);
}

TEST_F(SimulatorTest, SizeAndOffsetLimitEachOther) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(intRange(camera, "OffsetX"), Range(0, 0));
    setInt(camera, "Width", 320);
    setInt(camera, "Height", 240);
    EXPECT_EQ(intRange(camera, "OffsetX"), Range(0, 336));
    EXPECT_EQ(intRange(camera, "OffsetY"), Range(0, 252));
    setInt(camera, "OffsetX", 100);
    setInt(camera, "OffsetY", 2);
    // 656 - 100 = 556 columns are left: 69 steps of 8.
    EXPECT_EQ(intRange(camera, "Width"), Range(8, 552));
    EXPECT_EQ(intRange(camera, "Height"), Range(2, 490));
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 560), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureIntSet(camera, "OffsetX", 340), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureIntSet(camera, "OffsetX", 102), VmbErrorInvalidValue);
}

TEST_F(SimulatorTest, ExposureIsRoundedToMicroseconds) {
    const VmbHandle_t camera = open();
    setFloat(camera, "ExposureTimeAbs", 1234.56);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 1235.0);
    setFloat(camera, "ExposureTimeAbs", 39970);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 39970.0);
}

TEST_F(SimulatorTest, TheRateIsRoundedToMicrosecondsOfItsPeriod) {
    const VmbHandle_t camera = open();
    setFloat(camera, "ExposureTimeAbs", 1000);
    const std::pair<double, double> rates[] = {
        {50, 50}, {40, 40}, {25, 25}, {30, 1e6 / 33333}, {60, 1e6 / 16667}};
    for (const auto& [asked, taken] : rates) {
        setFloat(camera, "AcquisitionFrameRateAbs", asked);
        EXPECT_EQ(floatOf(camera, "AcquisitionFrameRateAbs"), taken);
    }
}

TEST_F(SimulatorTest, TheRateNeverRoundsAboveItsLimit) {
    const VmbHandle_t camera = open();
    const double limit = floatOf(camera, "AcquisitionFrameRateLimit");
    setFloat(camera, "AcquisitionFrameRateAbs", limit);
    EXPECT_LE(floatOf(camera, "AcquisitionFrameRateAbs"), limit);
    EXPECT_NEAR(floatOf(camera, "AcquisitionFrameRateAbs"), limit, 0.01);
    EXPECT_EQ(VmbFeatureFloatSet(camera, "AcquisitionFrameRateAbs", limit + 0.01), VmbErrorInvalidValue);
    // Readout now limits to a period of 11263.48 us, for which the next whole one is too short.
    setFloat(camera, "ExposureTimeAbs", 1000);
    setFloat(camera, "AcquisitionFrameRateAbs", floatOf(camera, "AcquisitionFrameRateLimit"));
    EXPECT_EQ(floatOf(camera, "AcquisitionFrameRateAbs"), 1e6 / 11264);
}

// Each limit worked out by hand: the slowest of readout, exposure and transfer.
TEST_F(SimulatorTest, TheRateLimitIsTheSlowestOfReadoutExposureAndBandwidth) {
    const VmbHandle_t camera = open();
    setEnum(camera, "PixelFormat", "Mono8");
    setFloat(camera, "ExposureTimeAbs", 1000);
    // 492 rows of 22.49 us and 198.4 us.
    EXPECT_NEAR(floatOf(camera, "AcquisitionFrameRateLimit"), 1 / 0.01126348, 1e-9);
    setInt(camera, "Height", 200);
    // 200 rows of 22.49 us, 292 skipped ones of 1.51 us and 198.4 us.
    EXPECT_NEAR(floatOf(camera, "AcquisitionFrameRateLimit"), 1 / 0.00513732, 1e-9);
    setFloat(camera, "ExposureTimeAbs", 39970);
    EXPECT_NEAR(floatOf(camera, "AcquisitionFrameRateLimit"), 25.0, 1e-9);
    setFloat(camera, "ExposureTimeAbs", 1000);
    setInt(camera, "StreamBytesPerSecond", 1'312'000);
    // 656 x 200 = 131200 bytes.
    EXPECT_NEAR(floatOf(camera, "AcquisitionFrameRateLimit"), 10.0, 1e-9);
    EXPECT_NEAR(floatRange(camera, "AcquisitionFrameRateAbs").second, 10.0, 1e-9);
    EXPECT_EQ(VmbFeatureBoolSet(camera, "StreamFrameRateConstrain", false), VmbErrorSuccess);
    EXPECT_NEAR(floatOf(camera, "AcquisitionFrameRateLimit"), 1 / 0.00513732, 1e-9);
    const VmbHandle_t mono = open(kMonochromeCamera);
    setFloat(mono, "ExposureTimeAbs", 1000);
    EXPECT_NEAR(floatOf(mono, "AcquisitionFrameRateLimit"), 1 / 0.01247078, 1e-9);
}

TEST_F(SimulatorTest, EachSelectorEntryHasItsOwnValue) {
    const VmbHandle_t camera = open();
    setFloat(camera, "BalanceRatioAbs", 1.25);
    setEnum(camera, "BalanceRatioSelector", "Blue");
    EXPECT_EQ(floatOf(camera, "BalanceRatioAbs"), 1.0);
    setFloat(camera, "BalanceRatioAbs", 2.5);
    setEnum(camera, "BalanceRatioSelector", "Red");
    EXPECT_EQ(floatOf(camera, "BalanceRatioAbs"), 1.25);
    setEnum(camera, "EventNotification", "On");
    setEnum(camera, "EventSelector", "AcquisitionEnd");
    EXPECT_EQ(enumOf(camera, "EventNotification"), "Off");
    setEnum(camera, "TriggerSelector", "AcquisitionEnd");
    EXPECT_EQ(enumOf(camera, "TriggerMode"), "Off");
    setEnum(camera, "TriggerSource", "Line1");
    setEnum(camera, "TriggerSelector", "FrameStart");
    EXPECT_EQ(enumOf(camera, "TriggerMode"), "On");
    EXPECT_EQ(enumOf(camera, "TriggerSource"), "Freerun");
}

TEST_F(SimulatorTest, ThePacketSizeIsAdjustedByCommand) {
    const VmbHandle_t camera = open();
    run(camera, "GVSPAdjustPacketSize");
    EXPECT_EQ(intOf(camera, "GevSCPSPacketSize"), 8999);
    bool done = false;
    EXPECT_EQ(VmbFeatureCommandIsDone(camera, "GVSPAdjustPacketSize", &done), VmbErrorSuccess);
    EXPECT_TRUE(done);
}

TEST_F(SimulatorTest, FormatIsLockedFromStartToStop) {
    const VmbHandle_t camera = open();
    setFloat(camera, "ExposureTimeAbs", 1000);
    run(camera, "AcquisitionStart");
    for (const char* name : {"Width", "Height", "OffsetX", "OffsetY", "GevSCPSPacketSize"}) {
        EXPECT_EQ(VmbFeatureIntSet(camera, name, intOf(camera, name)), VmbErrorInvalidAccess) << name;
        bool readable = false;
        bool writable = true;
        EXPECT_EQ(VmbFeatureAccessQuery(camera, name, &readable, &writable), VmbErrorSuccess);
        EXPECT_TRUE(readable && !writable) << name;
    }
    EXPECT_EQ(VmbFeatureEnumSet(camera, "PixelFormat", "Mono8"), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbFeatureEnumSet(camera, "AcquisitionMode", "Continuous"), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbFeatureCommandRun(camera, "GVSPAdjustPacketSize"), VmbErrorInvalidAccess);
    setFloat(camera, "ExposureTimeAbs", 2000);
    setFloat(camera, "Gain", 1);
    setFloat(camera, "AcquisitionFrameRateAbs", 30);
    setFloat(camera, "BalanceRatioAbs", 1.5);
    run(camera, "AcquisitionStop");
    setInt(camera, "Width", 320);
    run(camera, "AcquisitionStart");
    run(camera, "AcquisitionAbort");
    setInt(camera, "Width", 656);
}

TEST_F(SimulatorTest, ClosingEndsTheAcquisitionAndItsLocks) {
    const VmbHandle_t camera = open();
    run(camera, "AcquisitionStart");
    VmbCameraClose(camera);
    setInt(open(), "Width", 320);
}

TEST_F(SimulatorTest, AutomaticOnceFallsBackToOffAfterThreeExposures) {
    const VmbHandle_t camera = open();
    setFloat(camera, "ExposureTimeAbs", 1000);
    setEnum(camera, "GainAuto", "Once");
    setEnum(camera, "ExposureAuto", "Continuous");
    EXPECT_EQ(enumOf(camera, "GainAuto"), "Once");
    run(camera, "AcquisitionStart");
    EXPECT_TRUE(test_support::eventually([&] { return enumOf(camera, "GainAuto") == "Off"; }));
    EXPECT_EQ(enumOf(camera, "ExposureAuto"), "Continuous");
}

TEST_F(SimulatorTest, ARemovedFeatureWasNeverThereUntilTheNextScenario) {
    VmbHandle_t camera = open();
    EXPECT_EQ(VmbSimRemoveFeature(kColourCamera, "Width"), VmbErrorSuccess);
    VmbInt64_t value = 0;
    EXPECT_EQ(VmbFeatureIntGet(camera, "Width", &value), VmbErrorNotFound);
    EXPECT_EQ(intOf(camera, "PayloadSize"), 322'752);
    VmbUint32_t before = 0;
    VmbFeaturesList(camera, nullptr, 0, &before, 0);
    VmbSimRemoveFeature(kColourCamera, "Gain");
    VmbUint32_t after = 0;
    VmbFeaturesList(camera, nullptr, 0, &after, 0);
    EXPECT_EQ(after, before - 1);
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kColourCamera);
    camera = open();
    EXPECT_EQ(VmbFeatureIntGet(camera, "Width", &value), VmbErrorNotFound);
    VmbShutdown();
    EXPECT_EQ(VmbSimLoadScenario("two-cameras"), VmbErrorSuccess);
    VmbStartup();
    EXPECT_EQ(intOf(open(), "Width"), 656);
    EXPECT_EQ(VmbSimRemoveFeature(kColourCamera, "?"), VmbErrorNotFound);
    EXPECT_EQ(VmbSimRemoveFeature("DEV_1", "Gain"), VmbErrorNotFound);
    EXPECT_EQ(VmbSimRemoveFeature(nullptr, "GeVTLIsPresent"), VmbErrorSuccess);
    bool present = false;
    EXPECT_EQ(VmbFeatureBoolGet(test_support::kSystem, "GeVTLIsPresent", &present), VmbErrorNotFound);
}

TEST_F(SimulatorTest, AForcedValueKnowsNoLimitsAndStays) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, "PayloadSize", "-1"), VmbErrorSuccess);
    setEnum(camera, "PixelFormat", "Mono8");
    EXPECT_EQ(intOf(camera, "PayloadSize"), -1);
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, "Gain", "99.5"), VmbErrorSuccess);
    EXPECT_EQ(floatOf(camera, "Gain"), 99.5);
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, "GainAuto", "Other"), VmbErrorSuccess);
    EXPECT_EQ(enumOf(camera, "GainAuto"), "Other");
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, "StreamFrameRateConstrain", "false"), VmbErrorSuccess);
    bool constrained = true;
    VmbFeatureBoolGet(camera, "StreamFrameRateConstrain", &constrained);
    EXPECT_FALSE(constrained);
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, "DeviceID", ""), VmbErrorSuccess);
    EXPECT_EQ(stringOf(camera, "DeviceID"), "");
    EXPECT_EQ(VmbSimForceFeature(nullptr, "GeVTLIsPresent", "false"), VmbErrorSuccess);
    bool present = true;
    VmbFeatureBoolGet(test_support::kSystem, "GeVTLIsPresent", &present);
    EXPECT_FALSE(present);
}

TEST_F(SimulatorTest, ForcingNeedsANameAndATextOfItsType) {
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, "?", "1"), VmbErrorNotFound);
    EXPECT_EQ(VmbSimForceFeature("DEV_1", "Gain", "1"), VmbErrorNotFound);
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, "Width", "wide"), VmbErrorInvalidValue);
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, "Gain", "1,5"), VmbErrorInvalidValue);
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, "AcquisitionStart", "1"), VmbErrorWrongType);
    EXPECT_EQ(VmbSimForceFeature(kColourCamera, nullptr, "1"), VmbErrorBadParameter);
}

TEST_F(SimulatorTest, SetReplacesAForcedValue) {
    const VmbHandle_t camera = open();
    VmbSimForceFeature(kColourCamera, "Width", "123");
    EXPECT_EQ(intOf(camera, "Width"), 123);
    EXPECT_EQ(intOf(camera, "PayloadSize"), 123 * 492);
    setInt(camera, "Width", 320);
    EXPECT_EQ(intOf(camera, "PayloadSize"), 320 * 492);
    VmbSimForceFeature(kColourCamera, "GevSCPSPacketSize", "1");
    run(camera, "GVSPAdjustPacketSize");
    EXPECT_EQ(intOf(camera, "GevSCPSPacketSize"), 1);
    setInt(camera, "GevSCPSPacketSize", 1500);
    run(camera, "GVSPAdjustPacketSize");
    EXPECT_EQ(intOf(camera, "GevSCPSPacketSize"), 8999);
}

}  // namespace
