// Lifecycle of the plug-in: initialisation, enumeration, termination, discovery, destruction.
#include "zelt_gige_camera_plugin.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <thread>

#include "config_item_variant.h"
#include "forwarding_camera_api.h"
#include "plugin_fixture.h"
#include "throwing_log.h"
#include "zelt_gige_camera_api.h"
#include "zelt_gige_vmb_api.h"

namespace {

using test_support::AssertionCapture;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::PluginTest;
using test_support::pluginTypeId;
using test_support::RecordingSink;
using test_support::Simulator;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::uint32_t kNoChannel = ~std::uint32_t{0};

/// The colour camera goes and comes back, each time seen by an enumeration.
void replugFiveTimes(zelt::IfDAQPlugin& plugin) {
    for (int round = 0; round < 5; ++round) {
        VmbSimUnplugCamera(kColourCamera);
        VmbSimWaitForEvents(kPatienceMs);
        plugin.enumerateDevices();
        VmbSimPlugCamera(kColourCamera);
        VmbSimWaitForEvents(kPatienceMs);
        plugin.enumerateDevices();
    }
}

TEST_F(PluginTest, TellsItsNameAndIds) {
    EXPECT_STREQ(plugin->getDisplayName(), "GIGE Camera");
    EXPECT_EQ(plugin->getPluginId(),
              boost::uuids::string_generator()("{EEEC3C46-9973-487D-AD18-36CD7DDA58DA}"));
    EXPECT_TRUE(plugin->isSupported());
    EXPECT_TRUE(plugin->isSupported2());
    EXPECT_FALSE(plugin->hasSystemTopology());
    EXPECT_TRUE(std::isnan(plugin->getNominalRate()));
    plugin->onHostEvent(nullptr);
}

TEST_F(PluginTest, OffersTwoSettingsThatAreFalse) {
    const auto config = plugin->getPluginConfig();
    EXPECT_THAT(config->getKeys(), ElementsAre("Plugin/GodMode", "FrameCounterChannels"));
    for (const std::string& key : config->getKeys()) {
        EXPECT_FALSE(boost::get<config_items::SingleValueConfigItem<bool>>(config->getItem(key)).m_value);
        EXPECT_THAT(config->getConstraints(key), IsEmpty());
    }
    EXPECT_EQ(plugin->getPluginConfig(), config);
}

TEST_F(PluginTest, WithoutServicesHasNoFactory) {
    const AssertionCapture assertions;
    EXPECT_EQ(plugin->getServiceFactory(), nullptr);
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].expression, "m_service_factory");
    EXPECT_EQ(assertions.failures()[0].file, "lib/zelt_gige_camera/src/zelt_gige_camera_plugin");
}

TEST_F(PluginTest, MakesOneFactoryAndAddsAReferenceForEachCaller) {
    EXPECT_TRUE(plugin->createServices());
    EXPECT_TRUE(plugin->createServices());
    plugin_api::IfServiceFactory* const factory = plugin->getServiceFactory();
    ASSERT_NE(factory, nullptr);
    EXPECT_EQ(plugin->getServiceFactory(), factory);
    EXPECT_EQ(factory->release(), 3u);
    EXPECT_EQ(factory->release(), 2u);
}

TEST_F(PluginTest, InitializesInTheFixedOrder) {
    VmbSimJournalStart();
    const LogCapture log(UniLogSeverityLevel::Info);
    EXPECT_TRUE(plugin->initialize());
    EXPECT_THAT(Simulator::journal(),
                ElementsAre("VmbVersionQuery(12) = 0", "VmbFeatureBoolGet(system, \"GeVTLIsPresent\") = 0, 1",
                            "VmbFeatureInvalidationRegister(system, \"DiscoveryCameraEvent\") = 0",
                            "VmbFeatureCommandRun(system, \"GeVDiscoveryAllAuto\") = 0"));
    EXPECT_EQ(log.texts(UniLogSeverityLevel::Info).at(0), "Using Vimba API 1.9.1");
    EXPECT_EQ(log.texts(UniLogSeverityLevel::Info).at(1), "Camera API has driver support");
}

TEST_F(PluginTest, InitializesOnce) {
    plugin->initialize();
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->initialize());
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(PluginTest, OnlyWarnsOfAMissingTransportLayer) {
    VmbSimForceFeature(nullptr, "GeVTLIsPresent", "0");
    const LogCapture log(UniLogSeverityLevel::Info);
    EXPECT_TRUE(plugin->initialize());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                ElementsAre("Camera API does not have driver support"));
}

TEST_F(PluginTest, PassesOnThatTheTransportLayerCannotBeAskedForAndStaysUninitialized) {
    VmbSimFailCall("VmbFeatureBoolGet", nullptr, 1, VmbErrorNotFound);
    EXPECT_THROW(plugin->initialize(), zelt_gige_api::UnsupportedFeature);
    EXPECT_FALSE(plugin->startAcquisition());
    EXPECT_TRUE(plugin->initialize());
}

TEST_F(PluginTest, ReportsThatDiscoveryCannotStart) {
    VmbSimFailCall("VmbFeatureInvalidationRegister", nullptr, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_FALSE(plugin->initialize());
    EXPECT_FALSE(plugin->initialize());
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Error),
        ElementsAre("Could not start device discovery. Error: Could not register callbacks: Other error",
                    "Could not start device discovery. Error: "
                    "Device monitor callback already registered"));
}

TEST_F(PluginTest, ReportsThatTheApiCannotBeStartedAgain) {
    plugin->initialize();
    plugin->terminate();
    VmbSimFailCall("VmbVersionQuery", nullptr, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_FALSE(plugin->initialize());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Not able to query Vimba version: Other error", "Could not initialize the API"));
}

TEST_F(PluginTest, AnswersFalseWhileNotInitialized) {
    EXPECT_FALSE(plugin->startAcquisition());
    EXPECT_FALSE(plugin->stopAcquisition());
    EXPECT_FALSE(plugin->processAcquisition());
    EXPECT_FALSE(plugin->checkChannelSettings({}, false));
    EXPECT_FALSE(plugin->isReadyForAcquisition());
    EXPECT_FALSE(plugin->isAcquiring());
}

TEST_F(PluginTest, HasNoConfigurationForAnUnknownChannel) {
    enumerate();
    EXPECT_EQ(plugin->getChannelConfig(kNoChannel), nullptr);
    EXPECT_EQ(plugin->getChannelConfig(2), nullptr);
    EXPECT_EQ(plugin->getChannel(2), nullptr);
    EXPECT_EQ(plugin->getChannel(1), plugin->getChannelConfig(1));
}

/// Undoes what it is told to, and throws all the same.
class StubbornApi final : public test_support::ForwardingCameraApi {
  public:
    using ForwardingCameraApi::ForwardingCameraApi;

    void unregisterDiscoveryCallback() override {
        ForwardingCameraApi::unregisterDiscoveryCallback();
        throw zelt_gige_api::CameraApiError("no");
    }
    void shutdown() override {
        ForwardingCameraApi::shutdown();
        throw zelt_gige_api::CameraApiError("no");
    }
};

TEST_F(PluginTest, IsDestroyedToTheEndWhateverItsCameraApiThrows) {
    destroy();
    plugin = new zelt_gige_camera::CameraPlugin(
        0, std::make_shared<StubbornApi>(std::make_shared<zelt_gige_api::VimbaCameraApi>()));
    enumerate();
    VmbSimJournalStart();
    destroy();
    const std::vector<std::string> calls = Simulator::calledFunctions();
    EXPECT_EQ(std::ranges::count(calls, "VmbCameraClose"), 2);
    EXPECT_EQ(calls.back(), "VmbShutdown");
}

TEST_F(PluginTest, ALogThatFailsWhileACameraGoesTakesNothingDown) {
    enumerate();
    {
        const test_support::ThrowingLog log("no longer connected");
        VmbSimUnplugCamera(kColourCamera);
        VmbSimWaitForEvents(kPatienceMs);
    }
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(1u));
    start();
    stop();
}

TEST_F(PluginTest, LogsCamerasThatComeAndGoAndTellsTheChannel) {
    enumerate();
    const LogCapture log(UniLogSeverityLevel::Info);
    std::vector<std::string> told;
    messages(0).setMessageListener([&](const exception_manager::Exception& message) {
        told.push_back(exception_manager::fillPlaceholders(message));
    });
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    VmbSimPlugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    const std::string id = kColourCamera;
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Info),
                ElementsAre("GigE-Camera '" + id + "' was removed", "GigE-Camera '" + id + "' was added"));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre("Camera %1 is no longer connected"));
    EXPECT_THAT(told, ElementsAre("Camera Manta_G-033C (50-0503300001) is no longer connected"));
    EXPECT_EQ(lastMessage(0), told.at(0));
    EXPECT_EQ(lastMessage(1), "");
    messages(0).setMessageListener({});
}

TEST_F(PluginTest, LetsACameraVanishWhileAHostCallHoldsThePlugin) {
    enumerate();
    bool delivered = false;
    channel(0)->setChangeCallback([&](const std::string& key) {
        if (key != config_keys::kValid || delivered) return;
        // The plug-in is inside prepareAcquisition now; the discovery thread must get through all the same.
        VmbSimUnplugCamera(kMonochromeCamera);
        delivered = VmbSimWaitForEvents(kPatienceMs) == VmbErrorSuccess;
    });
    EXPECT_ANY_THROW(plugin->prepareAcquisition());
    EXPECT_TRUE(delivered);
    channel(0)->setChangeCallback({});
}

TEST_F(PluginTest, MayBeAskedForChannelsWhileCamerasComeAndGo) {
    enumerate();
    std::atomic<bool> done{false};
    std::thread asking([&] {
        while (!done) {
            plugin->findChannelId(kMonochromeCamera);
            plugin->isReadyForAcquisition();
        }
    });
    replugFiveTimes(*plugin);
    done = true;
    asking.join();
    EXPECT_EQ(plugin->getChannelIds().size(), 2u);
}

TEST_F(PluginTest, MayBeAskedForItsChannelIdsWhileItEnumerates) {
    enumerate();
    std::atomic<bool> done{false};
    std::size_t mostSeen = 0;
    std::thread asking([&] {
        while (!done) mostSeen = std::max(mostSeen, plugin->getChannelIds().size());
    });
    replugFiveTimes(*plugin);
    done = true;
    asking.join();
    EXPECT_EQ(mostSeen, 2u);
}

TEST_F(PluginTest, TerminatesInTheFixedOrderAndMayBeInitializedAgain) {
    enumerate();
    VmbSimWaitForEvents(kPatienceMs);
    VmbSimJournalStart();
    plugin->terminate();
    const std::string colour = kColourCamera;
    const std::string mono = kMonochromeCamera;
    EXPECT_THAT(Simulator::journal(),
                ElementsAre("VmbFeatureInvalidationUnregister(system, \"DiscoveryCameraEvent\") = 0",
                            "VmbFeatureCommandRun(system, \"GeVDiscoveryAllOff\") = 0",
                            "VmbFrameRevokeAll(" + colour + ") = 0", "VmbCameraClose(" + colour + ") = 0",
                            "VmbFrameRevokeAll(" + mono + ") = 0", "VmbCameraClose(" + mono + ") = 0",
                            "VmbShutdown()"));
    EXPECT_THAT(plugin->getChannelIds(), IsEmpty());
    plugin->terminate();
    EXPECT_TRUE(plugin->initialize());
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
}

TEST_F(PluginTest, ReportsATerminationThatFailsAndSkipsTheRest) {
    enumerate();
    VmbSimFailCall("VmbFeatureInvalidationUnregister", nullptr, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    VmbSimJournalStart();
    plugin->terminate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Could not terminate the plugin. Error: "
                            "Could not unregister callbacks: Other error"));
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbFeatureInvalidationUnregister"));
    EXPECT_FALSE(plugin->startAcquisition());
    EXPECT_FALSE(plugin->initialize());
}

TEST_F(PluginTest, DestructionCleansUpAfterATerminationThatFailed) {
    enumerate();
    VmbSimFailCall("VmbFeatureInvalidationUnregister", nullptr, 1, VmbErrorOther);
    plugin->terminate();
    VmbSimJournalStart();
    destroy();
    EXPECT_THAT(Simulator::calledFunctions(),
                ElementsAre("VmbFeatureInvalidationUnregister", "VmbFeatureCommandRun", "VmbFrameRevokeAll",
                            "VmbCameraClose", "VmbFrameRevokeAll", "VmbCameraClose", "VmbShutdown"));
}

TEST_F(PluginTest, DestructionUnregistersADiscoveryThatStartedOnlyHalf) {
    VmbSimFailCall("VmbFeatureCommandRun", "GeVDiscoveryAllAuto", 1, VmbErrorOther);
    EXPECT_FALSE(plugin->initialize());
    VmbSimJournalStart();
    destroy();
    EXPECT_THAT(Simulator::calledFunctions(),
                ElementsAre("VmbFeatureInvalidationUnregister", "VmbFeatureCommandRun", "VmbShutdown"));
}

TEST_F(PluginTest, ASecondPluginWorksAfterTheFirstWhoseChannelIsStillHeld) {
    enumerate();
    const auto kept = channel(0);
    destroy();
    zelt::IfDAQPlugin* second = nullptr;
    ASSERT_TRUE(creator.createPlugin("GIGECAMERA", pluginTypeId(), &second));
    plugin = second;
    enumerate();
    RecordingSink sink;
    plugin->setChannelSink(0, &sink);
    start();
    EXPECT_TRUE(sink.waitFor(3));
    stop();
    plugin->clearChannelSinks();
    EXPECT_FALSE(kept->getKeys().empty());
}

TEST_F(PluginTest, MayBeDestroyedInTheMiddleOfAnAcquisition) {
    enumerate();
    RecordingSink sink;
    plugin->setChannelSink(0, &sink);
    start();
    EXPECT_TRUE(sink.waitFor(3));
    const AssertionCapture assertions;
    VmbSimJournalStart();
    destroy();
    EXPECT_THAT(assertions.failures(), IsEmpty());
    std::vector<std::string> functions = Simulator::calledFunctions();
    EXPECT_EQ(functions.back(), "VmbShutdown");
    EXPECT_EQ(std::count(functions.begin(), functions.end(), "VmbCaptureEnd"), 2);
    EXPECT_EQ(std::count(functions.begin(), functions.end(), "VmbCameraClose"), 2);
}

TEST_F(PluginTest, AChannelMayOutliveItsPlugin) {
    enumerate();
    const auto kept = channel(0);
    destroy();
    const auto name = kept->getItem(config_keys::kDefaultName);
    EXPECT_EQ(boost::get<config_items::SingleValueConfigItem<std::string>>(name).m_value,
              "Manta_G-033C (50-0503300001)");
    EXPECT_TRUE(kept->setItem(config_keys::kUsed, config_items::SingleValueConfigItem<bool>(false)));
}

TEST_F(PluginTest, ListsACameraThatCannotBeOpenedAndSaysWhy) {
    VmbSimFailCall("VmbCameraOpen", kColourCamera, 1, VmbErrorInvalidAccess);
    const LogCapture log(UniLogSeverityLevel::Error);
    enumerate();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Cannot open camera: Could not open camera: "
                            "Operation is invalid with the current access mode",
                            "Cannot open camera '%1': %2"));
    EXPECT_EQ(lastMessage(0),
              "Cannot open camera 'Manta_G-033C (50-0503300001)': Could not open camera: "
              "Operation is invalid with the current access mode");
    EXPECT_TRUE(plugin->prepareAcquisition());
}

class NoCameras : public PluginTest {
  protected:
    NoCameras() : PluginTest("zero-cameras") {}
};

TEST_F(NoCameras, PreparesAndStartsAnEmptyMap) {
    enumerate();
    EXPECT_THAT(plugin->getChannelIds(), IsEmpty());
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(plugin->startAcquisition());
    EXPECT_TRUE(plugin->isAcquiring());
    EXPECT_TRUE(plugin->stopAcquisition());
    EXPECT_FALSE(plugin->isAcquiring());
}

}  // namespace
