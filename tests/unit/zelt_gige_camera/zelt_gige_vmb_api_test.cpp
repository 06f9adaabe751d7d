// Start and stop of the vendor library, discovery, the camera list.
#include "zelt_gige_vmb_api.h"

#include <thread>

#include "vmb_api_fixture.h"

namespace {

using test_support::AssertionCapture;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::RecordingDiscovery;
using test_support::Simulator;
using test_support::VmbApiTest;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;
using zelt_gige_api::CameraApiError;
using zelt_gige_api::CameraInfo;
using zelt_gige_api::kSystemHandle;
using zelt_gige_api::UnsupportedFeature;
using zelt_gige_api::VimbaCameraApi;

class Startup : public ::testing::Test {
  protected:
    Simulator simulator;
    VimbaCameraApi api;
};

TEST_F(Startup, QueriesTheVersionAndStartsTheLibraryOnce) {
    VmbSimJournalStart();
    EXPECT_TRUE(api.startup());
    EXPECT_TRUE(api.startup());
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbVersionQuery", "VmbStartup"));
}

TEST_F(Startup, DoesNotStartALibraryWhoseVersionCannotBeQueried) {
    VmbSimFailCall("VmbVersionQuery", nullptr, 1, VmbErrorOther);
    const LogCapture log;
    VmbSimJournalStart();
    EXPECT_FALSE(api.startup());
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbVersionQuery"));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Not able to query Vimba version: Other error"));
}

TEST_F(Startup, ReportsALibraryThatDoesNotStartAndTriesAgainTheNextTime) {
    VmbSimFailCall("VmbStartup", nullptr, 1, VmbErrorNoTL);
    const LogCapture log;
    EXPECT_FALSE(api.startup());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Not able to initialize Vimba GIGE Camera API: No transport layers are found"));
    EXPECT_TRUE(api.startup());
}

TEST_F(Startup, IsUndoneByShutdownOnce) {
    api.startup();
    VmbSimJournalStart();
    api.shutdown();
    api.shutdown();
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbShutdown"));
    EXPECT_TRUE(api.startup());
}

TEST_F(Startup, IsUndoneByTheDestructor) {
    {
        VimbaCameraApi other;
        other.startup();
        VmbSimJournalStart();
    }
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbShutdown"));
}

TEST_F(Startup, MustComeBeforeTheTransportLayerIsAskedFor) {
    try {
        api.isGigeTransportLayerPresent();
        FAIL();
    } catch (const CameraApiError& error) {
        EXPECT_STREQ(error.what(), "API not initialized");
        EXPECT_EQ(error.errorCode, 0);
    }
}

TEST_F(Startup, IsNotNeededForTheVersion) {
    EXPECT_EQ(api.getVersion(), "Vimba API 1.9.1");
}

TEST_F(Startup, VersionIsUnknownWhenTheQueryFails) {
    VmbSimFailCall("VmbVersionQuery", nullptr, 1, VmbErrorOther);
    EXPECT_EQ(api.getVersion(), "Vimba API unknown version");
}

TEST_F(VmbApiTest, TellsWhetherTheTransportLayerIsThere) {
    VmbSimJournalStart();
    EXPECT_TRUE(api.isGigeTransportLayerPresent());
    EXPECT_THAT(Simulator::journal(), ElementsAre("VmbFeatureBoolGet(system, \"GeVTLIsPresent\") = 0, 1"));
}

TEST_F(VmbApiTest, PassesOnThatTheTransportLayerCannotBeAskedFor) {
    VmbSimFailCall("VmbFeatureBoolGet", "GeVTLIsPresent", 1, VmbErrorNotFound);
    EXPECT_THROW(api.isGigeTransportLayerPresent(), UnsupportedFeature);
}

TEST_F(VmbApiTest, RegistersTheDiscoveryHandlerThenSwitchesDiscoveryOn) {
    RecordingDiscovery discovery;
    VmbSimJournalStart();
    api.registerDiscoveryCallback(&discovery);
    EXPECT_THAT(Simulator::journal(),
                ElementsAre("VmbFeatureInvalidationRegister(system, \"DiscoveryCameraEvent\") = 0",
                            "VmbFeatureCommandRun(system, \"GeVDiscoveryAllAuto\") = 0"));
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, RefusesASecondDiscoveryCallback) {
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    EXPECT_EQ(messageOf([&] { api.registerDiscoveryCallback(&discovery); }),
              "Device monitor callback already registered");
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, RefusesASecondDiscoveryCallbackAlsoAfterAFailedFirstOne) {
    RecordingDiscovery discovery;
    VmbSimFailCall("VmbFeatureInvalidationRegister", nullptr, 1, VmbErrorInternalFault);
    std::int32_t code = 0;
    EXPECT_EQ(messageOf([&] { api.registerDiscoveryCallback(&discovery); }, &code),
              "Could not register callbacks: Unexpected fault in VimbaC or driver");
    EXPECT_EQ(code, -1);
    EXPECT_EQ(messageOf([&] { api.registerDiscoveryCallback(&discovery); }),
              "Device monitor callback already registered");
}

TEST_F(VmbApiTest, PassesOnThatDiscoveryCannotBeSwitchedOn) {
    RecordingDiscovery discovery;
    VmbSimFailCall("VmbFeatureCommandRun", "GeVDiscoveryAllAuto", 1, VmbErrorNotFound);
    EXPECT_THROW(api.registerDiscoveryCallback(&discovery), UnsupportedFeature);
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, UnregistersTheDiscoveryHandlerThenSwitchesDiscoveryOff) {
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    VmbSimJournalStart();
    api.unregisterDiscoveryCallback();
    api.unregisterDiscoveryCallback();
    EXPECT_THAT(Simulator::journal(),
                ElementsAre("VmbFeatureInvalidationUnregister(system, \"DiscoveryCameraEvent\") = 0",
                            "VmbFeatureCommandRun(system, \"GeVDiscoveryAllOff\") = 0"));
}

TEST_F(VmbApiTest, WithoutADiscoveryCallbackUnregistersNothing) {
    VmbSimJournalStart();
    api.unregisterDiscoveryCallback();
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(VmbApiTest, KeepsTheDiscoveryCallbackWhenItCannotBeUnregistered) {
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    VmbSimFailCall("VmbFeatureInvalidationUnregister", nullptr, 1, VmbErrorTimeout);
    std::int32_t code = 0;
    EXPECT_EQ(messageOf([&] { api.unregisterDiscoveryCallback(); }, &code),
              "Could not unregister callbacks: Timeout during wait");
    EXPECT_EQ(code, -12);
    EXPECT_EQ(messageOf([&] { api.registerDiscoveryCallback(&discovery); }),
              "Device monitor callback already registered");
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, ForgetsTheDiscoveryCallbackBeforeDiscoveryIsSwitchedOff) {
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    VmbSimFailCall("VmbFeatureCommandRun", "GeVDiscoveryAllOff", 1, VmbErrorOther);
    EXPECT_THROW(api.unregisterDiscoveryCallback(), UnsupportedFeature);
    VmbSimJournalStart();
    api.unregisterDiscoveryCallback();
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(VmbApiTest, TellsOfCamerasThatComeAndGo) {
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    api.listCameras();
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_THAT(discovery.calls(), UnorderedElementsAre(std::string("added ") + kColourCamera,
                                                        std::string("added ") + kMonochromeCamera));
    discovery.clear();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    VmbSimPlugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_THAT(discovery.calls(),
                ElementsAre(std::string("removed ") + kColourCamera, std::string("added ") + kColourCamera));
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, TakesOnlyTheExactWordsMissingAndDetectedForNews) {
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    api.listCameras();
    VmbSimWaitForEvents(kPatienceMs);
    discovery.clear();
    for (const char* event :
         {"missing", "Reachable", "Unreachable", "", "Missing ", "detected", "Detected", "Missing"}) {
        VmbSimRaiseDiscoveryEvent(event, "DEV_1");
        VmbSimWaitForEvents(kPatienceMs);
    }
    EXPECT_THAT(discovery.calls(), ElementsAre("added DEV_1", "removed DEV_1"));
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, ReadsEventThenIdentFromTheHandleThatTheLibraryPassed) {
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    api.listCameras();
    VmbSimWaitForEvents(kPatienceMs);
    VmbSimJournalStart();
    VmbSimRaiseDiscoveryEvent("Missing", "DEV_1");
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_THAT(Simulator::journal("discovery"),
                ElementsAre("VmbFeatureEnumGet(system, \"DiscoveryCameraEvent\") = 0, \"Missing\"",
                            "VmbFeatureStringGet(system, \"DiscoveryCameraIdent\", 0) = 0, 6",
                            "VmbFeatureStringGet(system, \"DiscoveryCameraIdent\", 6) = 0, \"DEV_1\""));
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, HandlerStepsAssertTheFeaturesName) {
    const AssertionCapture assertions;
    api.handleDiscoveryEvent(kSystemHandle, "DiscoveryInterfaceEvent");
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].expression, "boost::equals(name, \"DiscoveryCameraEvent\")");
    EXPECT_EQ(assertions.failures()[0].file, "lib/zelt_gige_camera/src/zelt_gige_vmb_api");
}

TEST_F(VmbApiTest, HandlerStepsReadNothingWithoutACallback) {
    VmbSimJournalStart();
    api.handleDiscoveryEvent(kSystemHandle, "DiscoveryCameraEvent");
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(VmbApiTest, HandlerStepsCatchNothing) {
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    VmbSimWaitForEvents(kPatienceMs);
    VmbSimFailCall("VmbFeatureEnumGet", "DiscoveryCameraEvent", 1, VmbErrorOther);
    EXPECT_THROW(api.handleDiscoveryEvent(kSystemHandle, "DiscoveryCameraEvent"), UnsupportedFeature);
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, WhatADiscoveryCallbackThrowsIsLoggedAndGoesNoFurther) {
    const LogCapture log(UniLogSeverityLevel::Error);
    RecordingDiscovery discovery;
    discovery.beforeReturn = [] { throw std::runtime_error("host trouble"); };
    api.registerDiscoveryCallback(&discovery);
    VmbSimRaiseDiscoveryEvent("Missing", "DEV_1");
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                Contains("Exception in the discovery handler: host trouble"));
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, ListsTheCamerasInTheLibrarysOrder) {
    find();
    VmbSimJournalStart();
    const std::vector<CameraInfo> cameras = api.listCameras();
    ASSERT_EQ(cameras.size(), 2u);
    EXPECT_EQ(cameras[0].cameraId, kColourCamera);
    EXPECT_EQ(cameras[0].modelName, "Manta_G-033C");
    EXPECT_EQ(cameras[0].vendor, "Allied Vision Technologies");
    EXPECT_EQ(cameras[0].serialNumber, "50-0503300001");
    EXPECT_EQ(cameras[0].deviceId, 0x000F31A10001u);
    EXPECT_EQ(cameras[0].reserved, 0u);
    EXPECT_EQ(cameras[1].cameraId, kMonochromeCamera);
    EXPECT_EQ(cameras[1].modelName, "Manta_G-032B");
    EXPECT_THAT(Simulator::journal(),
                ElementsAre("VmbCamerasList(0, 48) = 0, 2", "VmbCamerasList(2, 48) = 0, 2"));
}

TEST_F(VmbApiTest, ListsNothingWithOneCallWhenThereIsNoCamera) {
    VmbSimJournalStart();
    EXPECT_THAT(api.listCameras(), IsEmpty());
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbCamerasList"));
}

TEST_F(VmbApiTest, FailsWhenTheCamerasCannotBeCountedOrListed) {
    find();
    std::int32_t code = 0;
    VmbSimFailCall("VmbCamerasList", nullptr, 1, VmbErrorMoreData);
    EXPECT_EQ(messageOf([&] { api.listCameras(); }, &code),
              "Could not retrieve the camera list: Error code -9");
    EXPECT_EQ(code, -9);
    VmbSimFailCall("VmbCamerasList", nullptr, 2, VmbErrorOther);
    EXPECT_EQ(messageOf([&] { api.listCameras(); }, &code),
              "Could not retrieve the camera list: Other error");
    EXPECT_EQ(code, -13);
}

TEST_F(VmbApiTest, AcceptsThatACameraCameBetweenTheTwoCalls) {
    find();
    VmbSimFailCall("VmbCamerasList", nullptr, 2, VmbErrorMoreData);
    const std::vector<CameraInfo> cameras = api.listCameras();
    // The fault wrote no record: null texts are empty ones.
    ASSERT_EQ(cameras.size(), 2u);
    EXPECT_EQ(cameras[0].cameraId, "");
    EXPECT_EQ(cameras[0].modelName, "");
    EXPECT_EQ(cameras[0].serialNumber, "");
    EXPECT_EQ(cameras[0].vendor, "Allied Vision Technologies");
    EXPECT_EQ(cameras[0].deviceId, 0u);
}

TEST_F(VmbApiTest, TheCurrentCamerasStayTheSameObjectWhileTheLibraryListsTheSame) {
    find();
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    const auto first = api.currentCameras();
    ASSERT_EQ(first->size(), 2u);
    VmbSimJournalStart();
    EXPECT_EQ(api.currentCameras(), first);
    EXPECT_THAT(Simulator::journal(),
                ElementsAre("VmbCamerasList(0, 48) = 0, 2", "VmbCamerasList(2, 48) = 0, 2"));
    EXPECT_EQ(first->at(1).cameraId, kMonochromeCamera);
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, TheCurrentCamerasStayTheSameObjectWhenOnlyTheAccessToOneChanges) {
    find();
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    const auto accessTo = [](const char* id) {
        VmbCameraInfo_t info{};
        EXPECT_EQ(VmbCameraInfoQuery(id, &info, sizeof info), VmbErrorSuccess);
        return info.permittedAccess;
    };
    const auto first = api.currentCameras();
    const auto before = accessTo(kColourCamera);
    VmbHandle_t camera = nullptr;
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera), VmbErrorSuccess);
    ASSERT_NE(accessTo(kColourCamera), before);
    EXPECT_EQ(api.currentCameras(), first);
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess);
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, TheCurrentCamerasStayTheSameObjectWhileThereAreNone) {
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    VmbSimUnplugCamera(kColourCamera);
    VmbSimUnplugCamera(kMonochromeCamera);
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    const auto first = api.currentCameras();
    EXPECT_TRUE(first->empty());
    EXPECT_EQ(api.currentCameras(), first);
    api.unregisterDiscoveryCallback();
}

// A camera may have come with the texts of one that went.
TEST_F(VmbApiTest, TheCurrentCamerasAreReadAnewWhenNobodyTellsOfChanges) {
    find();
    const auto first = api.currentCameras();
    EXPECT_NE(api.currentCameras(), first);
}

TEST_F(VmbApiTest, TheCurrentCamerasAreAnotherObjectWithoutOneThatWent) {
    find();
    const auto first = api.currentCameras();
    VmbSimUnplugCamera(kColourCamera);
    find();
    const auto second = api.currentCameras();
    ASSERT_EQ(second->size(), 1u);
    EXPECT_EQ(second->front().cameraId, kMonochromeCamera);
    EXPECT_EQ(first->size(), 2u);
}

// A library may use the text of a camera that went for one that came, and then only its events tell.
TEST_F(VmbApiTest, TheCurrentCamerasAreReadAnewAfterADiscoveryEvent) {
    find();
    RecordingDiscovery discovery;
    api.registerDiscoveryCallback(&discovery);
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    const auto first = api.currentCameras();
    VmbSimRaiseDiscoveryEvent("Detected", "DEV_1");
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    const auto second = api.currentCameras();
    EXPECT_NE(second, first);
    EXPECT_EQ(second->size(), 2u);
    api.unregisterDiscoveryCallback();
}

TEST_F(VmbApiTest, TheCurrentCamerasAreReadAnewInANewSession) {
    find();
    const auto first = api.currentCameras();
    api.shutdown();
    EXPECT_TRUE(api.startup());
    find();
    EXPECT_NE(api.currentCameras(), first);
}

}  // namespace
