// Opening and closing, camera callbacks, typed feature access.
#include <algorithm>
#include <cmath>
#include <thread>

#include "latch.h"
#include "vmb_api_fixture.h"
#include "zelt_gige_vmb_call.h"

namespace {

using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::RecordingCamera;
using test_support::Simulator;
using test_support::VmbApiTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_api::CameraApi;
using zelt_gige_api::CameraApiError;
using zelt_gige_api::CameraHandle;
using zelt_gige_api::FeatureInfo;
using zelt_gige_api::FeatureType;
using zelt_gige_api::FloatRange;
using zelt_gige_api::IntRange;
using zelt_gige_api::UnsupportedFeature;

const std::string kId = kColourCamera;

TEST_F(VmbApiTest, OpensACameraWithFullAccess) {
    find();
    VmbSimJournalStart();
    EXPECT_NE(api.openCamera(kColourCamera), 0u);
    EXPECT_EQ(Simulator::journal().at(0).rfind("VmbCameraOpen(\"" + kId + "\", 1) = 0", 0), 0u);
}

TEST_F(VmbApiTest, FailsToOpenAnUnknownCamera) {
    std::int32_t code = 0;
    EXPECT_EQ(messageOf([&] { api.openCamera("DEV_1"); }, &code),
              "Could not open camera: The designated instance (camera, feature etc.) cannot be found");
    EXPECT_EQ(code, -3);
}

TEST_F(VmbApiTest, ClosesACameraAfterReleasingItsFrames) {
    misuses.reasons = {"frames were still queued"};  // capture was not ended
    const CameraHandle camera = open();
    api.startCapture(camera, 5);
    VmbSimJournalStart();
    api.closeCamera(camera);
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbFrameRevokeAll", "VmbCameraClose"));
    EXPECT_EQ(pages.held, 0);
}

TEST_F(VmbApiTest, FailsToCloseWithTheLibrarysReason) {
    const CameraHandle camera = open();
    VmbSimFailCall("VmbCameraClose", nullptr, 1, VmbErrorTimeout);
    std::int32_t code = 0;
    EXPECT_EQ(messageOf([&] { api.closeCamera(camera); }, &code),
              "Could not close camera: Timeout during wait");
    EXPECT_EQ(code, -12);
}

TEST_F(VmbApiTest, ClosesSilentlyWhenTheFramesCannotBeRevoked) {
    const test_support::LogCapture log;
    const CameraHandle camera = open();
    VmbSimFailCall("VmbFrameRevokeAll", nullptr, 1, VmbErrorOther);
    api.closeCamera(camera);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(VmbApiTest, KeepsTheFirstCallbackOfACamera) {
    const CameraHandle camera = open();
    RecordingCamera first;
    RecordingCamera second;
    api.registerCameraCallback(camera, &first);
    EXPECT_EQ(messageOf([&] { api.registerCameraCallback(camera, &second); }),
              "Camera callback already registered for this camera.");
    api.handleCameraEvent(camera, "EventAcquisitionStart");
    EXPECT_EQ(first.calls("started").size(), 1u);
    EXPECT_THAT(second.calls("started"), IsEmpty());
}

TEST_F(VmbApiTest, UnregistersACallbackAndAcceptsANewOne) {
    const CameraHandle camera = open();
    RecordingCamera callback;
    api.unregisterCameraCallback(camera);
    api.registerCameraCallback(camera, &callback);
    api.unregisterCameraCallback(camera);
    api.handleCameraEvent(camera, "EventAcquisitionStart");
    EXPECT_THAT(callback.calls("started"), IsEmpty());
    api.registerCameraCallback(camera, &callback);
}

TEST_F(VmbApiTest, ClosingLeavesTheCallbackRegistered) {
    const CameraHandle camera = open();
    RecordingCamera callback;
    api.registerCameraCallback(camera, &callback);
    api.closeCamera(camera);
    EXPECT_THROW(api.registerCameraCallback(camera, &callback), CameraApiError);
}

TEST_F(VmbApiTest, UnregisteringWaitsForAnEventCallThatRuns) {
    const CameraHandle camera = open();
    RecordingCamera callback;
    test_support::Latch entered(1);
    std::atomic<bool> unregistered{false};
    std::atomic<bool> outlived{false};
    callback.beforeReturn = [&](const test_support::CameraCall&) {
        entered.count_down();
        for (int turn = 0; turn < 20'000; ++turn) std::this_thread::yield();
        outlived = unregistered.load();
    };
    api.registerCameraCallback(camera, &callback);
    std::thread event([&] { api.handleCameraEvent(camera, "EventAcquisitionStart"); });
    entered.wait();
    api.unregisterCameraCallback(camera);
    unregistered = true;
    event.join();
    EXPECT_FALSE(outlived);
}

TEST_F(VmbApiTest, CallbacksOfOneCameraMayComeAndGoWhileAnotherReceivesEvents) {
    const CameraHandle one = open();
    const CameraHandle another = api.openCamera(kMonochromeCamera);
    // Looking the larger one up in an ordered map comes past the smaller one.
    const CameraHandle steady = std::max(one, another);
    const CameraHandle changing = std::min(one, another);
    RecordingCamera callback;
    RecordingCamera other;
    api.registerCameraCallback(steady, &callback);
    std::atomic<bool> done{false};
    std::thread events([&] {
        for (int round = 0; round < 20'000; ++round) api.handleCameraEvent(steady, "EventOther");
        api.handleCameraEvent(steady, "EventAcquisitionStart");
        done = true;
    });
    while (!done) {
        api.registerCameraCallback(changing, &other);
        api.unregisterCameraCallback(changing);
    }
    events.join();
    EXPECT_EQ(callback.calls("started").size(), 1u);
}

TEST_F(VmbApiTest, RunsACommandOrNamesTheFeatureThatWasRefused) {
    const CameraHandle camera = open();
    VmbSimJournalStart();
    api.runCommand(camera, "GevTimestampControlReset");
    EXPECT_THAT(Simulator::journal(),
                ElementsAre("VmbFeatureCommandRun(" + kId + ", \"GevTimestampControlReset\") = 0"));
    std::int32_t code = 0;
    EXPECT_EQ(messageOf([&] { api.runCommand(camera, "NoSuchThing"); }, &code),
              "The feature 'NoSuchThing' is not supported");
    EXPECT_EQ(code, -3);
}

TEST_F(VmbApiTest, ListsFeaturesWithNameDescriptionAndType) {
    const CameraHandle camera = open();
    const std::vector<FeatureInfo> features = api.listFeatures(camera);
    const auto typeOf = [&](const std::string& name) {
        for (const FeatureInfo& feature : features) {
            if (feature.name == name) return feature.type;
        }
        return FeatureType::None;
    };
    EXPECT_EQ(typeOf("Width"), FeatureType::Int);
    EXPECT_EQ(typeOf("ExposureTimeAbs"), FeatureType::Float);
    EXPECT_EQ(typeOf("PixelFormat"), FeatureType::Enum);
    EXPECT_EQ(typeOf("DeviceModelName"), FeatureType::String);
    EXPECT_EQ(typeOf("StreamFrameRateConstrain"), FeatureType::Bool);
    EXPECT_EQ(typeOf("AcquisitionStart"), FeatureType::Command);
}

TEST_F(VmbApiTest, AsksTwiceForTheFeatures) {
    const CameraHandle camera = open();
    VmbSimJournalStart();
    api.listFeatures(camera);
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbFeaturesList", "VmbFeaturesList"));
}

TEST_F(VmbApiTest, FailsWhenTheFeaturesCannotBeCountedOrListed) {
    const CameraHandle camera = open();
    for (const int call : {1, 2}) {
        VmbSimFailCall("VmbFeaturesList", nullptr, call, VmbErrorMoreData);
        std::int32_t code = 0;
        EXPECT_EQ(messageOf([&] { api.listFeatures(camera); }, &code),
                  "Could not enumerate features: Error code -9");
        EXPECT_EQ(code, -9);
    }
}

TEST_F(VmbApiTest, TypeOfAFeatureThatCannotBeQueriedIsNone) {
    const CameraHandle camera = open();
    EXPECT_EQ(api.getFeatureType(camera, "Width"), FeatureType::Int);
    EXPECT_EQ(api.getFeatureType(camera, "NoSuchThing"), FeatureType::None);
}

TEST(FeatureTypeMapping, NamesSixTypesAndTakesAllOthersForOther) {
    using zelt_gige_api::toFeatureType;
    EXPECT_EQ(toFeatureType(VmbFeatureDataInt), FeatureType::Int);
    EXPECT_EQ(toFeatureType(VmbFeatureDataFloat), FeatureType::Float);
    EXPECT_EQ(toFeatureType(VmbFeatureDataEnum), FeatureType::Enum);
    EXPECT_EQ(toFeatureType(VmbFeatureDataString), FeatureType::String);
    EXPECT_EQ(toFeatureType(VmbFeatureDataBool), FeatureType::Bool);
    EXPECT_EQ(toFeatureType(VmbFeatureDataCommand), FeatureType::Command);
    for (const VmbFeatureData_t other : {0u, 7u, 8u, 9u, 77u}) {
        EXPECT_EQ(toFeatureType(other), FeatureType::Other) << other;
    }
}

/// One typed access: the vendor call it makes and the access itself.
struct Access {
    const char* function;
    const char* feature;
    std::function<void(CameraApi&, CameraHandle)> run;
};

class FeatureAccess : public VmbApiTest, public ::testing::WithParamInterface<Access> {};

TEST_P(FeatureAccess, MakesItsVendorCall) {
    const CameraHandle camera = open();
    VmbSimJournalStart();
    GetParam().run(api, camera);
    const std::string call =
        std::string(GetParam().function) + "(" + kId + ", \"" + GetParam().feature + "\"";
    EXPECT_EQ(Simulator::journal().at(0).rfind(call, 0), 0u) << Simulator::journal().at(0);
}

TEST_P(FeatureAccess, ThrowsUnsupportedFeatureWithTheCodeWhateverTheReason) {
    const CameraHandle camera = open();
    VmbSimFailCall(GetParam().function, GetParam().feature, 1, VmbErrorInvalidAccess);
    try {
        GetParam().run(api, camera);
        FAIL();
    } catch (const UnsupportedFeature& error) {
        EXPECT_EQ(error.what(), std::string("The feature '") + GetParam().feature + "' is not supported");
        EXPECT_EQ(error.errorCode, -6);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, FeatureAccess,
    ::testing::Values(
        Access{"VmbFeatureCommandRun", "AcquisitionStop",
               [](CameraApi& api, CameraHandle h) { api.acquisitionStop(h); }},
        Access{"VmbFeatureCommandRun", "AcquisitionStart",
               [](CameraApi& api, CameraHandle h) { api.acquisitionStart(h); }},
        Access{"VmbFeatureEnumGet", "PixelFormat",
               [](CameraApi& api, CameraHandle h) { api.getEnumFeature(h, "PixelFormat"); }},
        Access{"VmbFeatureEnumSet", "TriggerMode",
               [](CameraApi& api, CameraHandle h) { api.setEnumFeature(h, "TriggerMode", "Off"); }},
        Access{"VmbFeatureEnumSet", "AcquisitionMode",
               [](CameraApi& api, CameraHandle h) { api.setAcquisitionMode(h, "Continuous"); }},
        Access{"VmbFeatureEnumSet", "PixelFormat",
               [](CameraApi& api, CameraHandle h) { api.setPixelFormat(h, "Mono8"); }},
        Access{"VmbFeatureFloatGet", "Gain",
               [](CameraApi& api, CameraHandle h) { api.getFloatFeature(h, "Gain"); }},
        Access{"VmbFeatureFloatSet", "Gain",
               [](CameraApi& api, CameraHandle h) { api.setFloatFeature(h, "Gain", 1.0); }},
        Access{"VmbFeatureIntGet", "Width", [](CameraApi& api, CameraHandle h) { api.getWidth(h); }},
        Access{"VmbFeatureIntGet", "Height", [](CameraApi& api, CameraHandle h) { api.getHeight(h); }},
        Access{"VmbFeatureIntGet", "OffsetX", [](CameraApi& api, CameraHandle h) { api.getOffsetX(h); }},
        Access{"VmbFeatureIntGet", "OffsetY", [](CameraApi& api, CameraHandle h) { api.getOffsetY(h); }},
        Access{"VmbFeatureIntGet", "PayloadSize",
               [](CameraApi& api, CameraHandle h) { api.getPayloadSize(h); }},
        Access{"VmbFeatureIntSet", "Width", [](CameraApi& api, CameraHandle h) { api.setWidth(h, 328); }},
        Access{"VmbFeatureIntSet", "Height", [](CameraApi& api, CameraHandle h) { api.setHeight(h, 246); }},
        Access{"VmbFeatureIntSet", "OffsetX", [](CameraApi& api, CameraHandle h) { api.setOffsetX(h, 0); }},
        Access{"VmbFeatureIntSet", "OffsetY", [](CameraApi& api, CameraHandle h) { api.setOffsetY(h, 0); }},
        Access{"VmbFeatureIntSet", "StreamBytesPerSecond",
               [](CameraApi& api,
                  CameraHandle h) { api.setIntFeatureChecked(h, "StreamBytesPerSecond", 50'000'000); }},
        Access{"VmbFeatureBoolGet", "StreamFrameRateConstrain",
               [](CameraApi& api, CameraHandle h) { api.getBoolFeature(h, "StreamFrameRateConstrain"); }},
        Access{
            "VmbFeatureBoolSet", "StreamFrameRateConstrain",
            [](CameraApi& api, CameraHandle h) { api.setBoolFeature(h, "StreamFrameRateConstrain", true); }},
        Access{"VmbFeatureStringGet", "DeviceModelName",
               [](CameraApi& api, CameraHandle h) { api.getDeviceModelName(h); }}));

TEST_F(VmbApiTest, ReadsBackWhatItWrote) {
    const CameraHandle camera = open();
    api.setFloatFeature(camera, "Gain", 3.0);
    EXPECT_EQ(api.getFloatFeature(camera, "Gain"), 3.0);
    api.setEnumFeature(camera, "GainAuto", "Continuous");
    EXPECT_EQ(api.getEnumFeature(camera, "GainAuto"), "Continuous");
    api.setBoolFeature(camera, "StreamFrameRateConstrain", false);
    EXPECT_FALSE(api.getBoolFeature(camera, "StreamFrameRateConstrain"));
    EXPECT_EQ(api.setIntFeatureChecked(camera, "StreamBytesPerSecond", 50'000'000), 50'000'000);
    EXPECT_EQ(api.getDeviceModelName(camera), "Manta_G-033C");
}

TEST_F(VmbApiTest, ChecksAnIntegerByReadingItBack) {
    const CameraHandle camera = open();
    VmbSimJournalStart();
    api.setIntFeatureChecked(camera, "StreamBytesPerSecond", 50'000'000);
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbFeatureIntSet", "VmbFeatureIntGet"));
}

TEST_F(VmbApiTest, ListsEnumerationEntriesInTheLibrarysOrder) {
    const CameraHandle camera = open(kMonochromeCamera);
    VmbSimJournalStart();
    EXPECT_THAT(api.getEnumFeatureRange(camera, "GainAuto"), ElementsAre("Off", "Continuous", "Once"));
    EXPECT_THAT(Simulator::calledFunctions(),
                ElementsAre("VmbFeatureEnumRangeQuery", "VmbFeatureEnumRangeQuery"));
}

TEST_F(VmbApiTest, ListsNoEntriesOnAnyFailure) {
    const CameraHandle camera = open();
    EXPECT_THAT(api.getEnumFeatureRange(camera, "NoSuchThing"), IsEmpty());
    for (const int call : {1, 2}) {
        VmbSimFailCall("VmbFeatureEnumRangeQuery", nullptr, call, VmbErrorOther);
        EXPECT_THAT(api.getEnumFeatureRange(camera, "GainAuto"), IsEmpty());
    }
}

TEST_F(VmbApiTest, FloatRangeHasBoundsAndNeverAnIncrement) {
    const CameraHandle camera = open();
    const FloatRange range = api.getFloatFeatureRange(camera, "Saturation");
    EXPECT_TRUE(range.valid);
    EXPECT_EQ(range.min, 0.0);
    EXPECT_EQ(range.max, 2.0);
    EXPECT_TRUE(std::isnan(range.increment));
    EXPECT_FALSE(api.getFloatFeatureRange(camera, "NoSuchThing").valid);
    EXPECT_TRUE(std::isnan(api.getFloatFeatureRange(camera, "NoSuchThing").increment));
}

TEST_F(VmbApiTest, IntRangeAsksForTheIncrementFirst) {
    const CameraHandle camera = open();
    VmbSimJournalStart();
    const IntRange range = api.getIntFeatureRange(camera, "GainAutoRate");
    EXPECT_TRUE(range.valid);
    EXPECT_EQ(range.min, 1);
    EXPECT_EQ(range.max, 100);
    EXPECT_EQ(range.increment, 1);
    EXPECT_THAT(Simulator::calledFunctions(),
                ElementsAre("VmbFeatureIntIncrementQuery", "VmbFeatureIntRangeQuery"));
}

TEST_F(VmbApiTest, IntRangeWithoutAnIncrementIsInvalidWhateverItsBounds) {
    const CameraHandle camera = open();
    VmbSimFailCall("VmbFeatureIntIncrementQuery", "Width", 1, VmbErrorOther);
    VmbSimJournalStart();
    const IntRange range = api.getIntFeatureRange(camera, "Width");
    EXPECT_FALSE(range.valid);
    EXPECT_EQ(range.increment, 1);
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbFeatureIntIncrementQuery"));
}

TEST_F(VmbApiTest, IntRangeWithoutBoundsIsInvalid) {
    const CameraHandle camera = open();
    VmbSimFailCall("VmbFeatureIntRangeQuery", "Width", 1, VmbErrorOther);
    EXPECT_FALSE(api.getIntFeatureRange(camera, "Width").valid);
}

TEST_F(VmbApiTest, ReadsAStringInTwoCalls) {
    const CameraHandle camera = open();
    VmbSimJournalStart();
    EXPECT_EQ(api.getStringFeature(camera, "DeviceModelName"), "Manta_G-033C");
    EXPECT_THAT(
        Simulator::journal(),
        ElementsAre("VmbFeatureStringGet(" + kId + ", \"DeviceModelName\", 0) = 0, 13",
                    "VmbFeatureStringGet(" + kId + ", \"DeviceModelName\", 13) = 0, \"Manta_G-033C\""));
}

TEST_F(VmbApiTest, ReadsAnEmptyStringInOneCall) {
    const CameraHandle camera = open();
    VmbSimForceFeature(kColourCamera, "DeviceID", "");
    VmbSimJournalStart();
    EXPECT_EQ(api.getStringFeature(camera, "DeviceID"), "");
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbFeatureStringGet"));
}

TEST_F(VmbApiTest, AStringThatWasFoundButCannotBeReadIsNoUnsupportedFeature) {
    const CameraHandle camera = open();
    VmbSimFailCall("VmbFeatureStringGet", "DeviceModelName", 2, VmbErrorMoreData);
    try {
        api.getStringFeature(camera, "DeviceModelName");
        FAIL();
    } catch (const UnsupportedFeature&) {
        FAIL();
    } catch (const CameraApiError& error) {
        EXPECT_STREQ(error.what(), "Cannot read existing string feature");
        EXPECT_EQ(error.errorCode, -9);
    }
}

}  // namespace
