// Several plug-ins in one process, and host calls and discovery at the same time.
#include <atomic>
#include <thread>

#include "latch.h"
#include "plugin_fixture.h"
#include "zelt_gige_camera_api.h"

namespace {

using test_support::AssertionCapture;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::PluginTest;
using test_support::RecordingSink;
using test_support::Simulator;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Together : public PluginTest {
  protected:
    Together() { VmbSimSetWatchdog(kPatienceMs); }
    ~Together() override {
        destroy();
        VmbSimSetWatchdog(0);
    }
    /// Turns both cables until `done`, with the events that the library raises for it.
    std::thread turningCables(const std::atomic<bool>& done, test_support::Latch& begun) {
        return std::thread([&] {
            for (bool isFirst = true; !done; isFirst = false) {
                for (const char* camera : {kColourCamera, kMonochromeCamera}) {
                    VmbSimUnplugCamera(camera);
                    VmbSimPlugCamera(camera);
                }
                if (isFirst) begun.count_down();
            }
        });
    }
};

TEST_F(Together, TwoThreadsInitializeOnce) {
    for (int round = 0; round < 20; ++round) {
        VmbSimJournalStart();
        test_support::Latch both(2);
        std::thread other([&] {
            both.arrive_and_wait();
            EXPECT_TRUE(plugin->initialize());
        });
        both.arrive_and_wait();
        EXPECT_TRUE(plugin->initialize());
        other.join();
        const std::vector<std::string> functions = Simulator::calledFunctions();
        EXPECT_EQ(std::count(functions.begin(), functions.end(), "VmbFeatureInvalidationRegister"), 1);
        plugin->terminate();
    }
}

TEST_F(Together, TwoThreadsTerminateOnce) {
    for (int round = 0; round < 20; ++round) {
        enumerate();
        VmbSimJournalStart();
        test_support::Latch both(2);
        std::thread other([&] {
            both.arrive_and_wait();
            plugin->terminate();
        });
        both.arrive_and_wait();
        plugin->terminate();
        other.join();
        const std::vector<std::string> functions = Simulator::calledFunctions();
        EXPECT_EQ(std::count(functions.begin(), functions.end(), "VmbShutdown"), 1);
        EXPECT_THAT(plugin->getChannelIds(), IsEmpty());
    }
}

TEST_F(Together, CamerasComeAndGoWhileThePluginStartsEnumeratesAndTerminates) {
    std::atomic<bool> done{false};
    test_support::Latch begun(1);
    std::thread cables = turningCables(done, begun);
    begun.wait();
    for (int round = 0; round < 20; ++round) {
        EXPECT_TRUE(plugin->initialize());
        plugin->enumerateDevices();
        EXPECT_LE(plugin->getChannelIds().size(), 2u);
        plugin->terminate();
    }
    done = true;
    cables.join();
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    enumerate();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
    start();
    stop();
}

TEST_F(Together, APluginDiesWhileCamerasComeAndGo) {
    std::atomic<bool> done{false};
    test_support::Latch begun(1);
    enumerate();
    std::thread cables = turningCables(done, begun);
    begun.wait();
    destroy();
    done = true;
    cables.join();
}

TEST_F(Together, ASecondPluginRecordsOnceTheFirstHasTerminatedAndTheFirstAgainAfterIt) {
    enumerate();
    plugin->terminate();
    zelt::IfDAQPlugin* const first = plugin;
    zelt::IfDAQPlugin* second = nullptr;
    ASSERT_TRUE(creator.createPlugin("GIGECAMERA", test_support::pluginTypeId(), &second));
    for (zelt::IfDAQPlugin* const each : {second, first}) {
        plugin = each;
        enumerate();
        RecordingSink sink;
        plugin->setChannelSink(0, &sink);
        start();
        EXPECT_TRUE(sink.waitFor(2));
        stop();
        plugin->clearChannelSinks();
        plugin->terminate();
    }
    EXPECT_TRUE(creator.destroyPlugin(test_support::pluginTypeId(), second));
}

/// With a camera library that counts how often it was started, two plug-ins may be up at the same time. Each
/// has a camera; a camera that the other one holds it cannot open.
TEST_F(Together, TwoPluginsRecordSideBySideWhereTheLibraryCountsItsStarts) {
    destroy();
    ASSERT_EQ(VmbSimChoose(VmbSimChoiceRepeatedStartup, 1), VmbErrorSuccess);
    zelt::IfDAQPlugin* plugins[2] = {};
    RecordingSink sinks[2];
    for (auto*& each : plugins) {
        ASSERT_TRUE(creator.createPlugin("GIGECAMERA", test_support::pluginTypeId(), &each));
        each->setSharedAcquisitionObject(clock);
        EXPECT_TRUE(each->initialize());
    }
    VmbSimTakeControl(kMonochromeCamera, true);
    plugins[0]->enumerateDevices();
    VmbSimTakeControl(kMonochromeCamera, false);
    plugins[1]->enumerateDevices();
    for (std::uint32_t number = 0; number < 2; ++number) {
        plugin = plugins[number];
        use(1 - number, false);
        plugin->setChannelSink(number, &sinks[number]);
        start();
    }
    for (RecordingSink& sink : sinks) EXPECT_TRUE(sink.waitFor(3));
    const test_support::LogCapture log(UniLogSeverityLevel::Info);
    VmbSimRaiseDiscoveryEvent("Detected", "DEV_1");
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    // Both have heard of it.
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Info),
                ElementsAre("GigE-Camera 'DEV_1' was added", "GigE-Camera 'DEV_1' was added"));
    plugin = plugins[0];
    stop();
    plugin->clearChannelSinks();
    EXPECT_TRUE(creator.destroyPlugin(test_support::pluginTypeId(), plugins[0]));
    // The other one goes on. Of cameras that come and go it hears no more: ending discovery is for all.
    EXPECT_TRUE(sinks[1].waitFor(sinks[1].samples().size() + 3));
    plugin = plugins[1];
    stop();
    plugin->clearChannelSinks();
    VmbSimChoose(VmbSimChoiceRepeatedStartup, 0);
}

/// Lets the library count its starts, and makes plug-ins that may be up at the same time.
class ManyPlugins : public Together {
  protected:
    ManyPlugins() {
        destroy();
        EXPECT_EQ(VmbSimChoose(VmbSimChoiceRepeatedStartup, 1), VmbErrorSuccess);
        for (zelt::IfDAQPlugin*& each : plugins) {
            EXPECT_TRUE(creator.createPlugin("GIGECAMERA", test_support::pluginTypeId(), &each));
        }
    }
    ~ManyPlugins() override {
        for (zelt::IfDAQPlugin* const each : plugins) {
            EXPECT_TRUE(creator.destroyPlugin(test_support::pluginTypeId(), each));
        }
        VmbSimChoose(VmbSimChoiceRepeatedStartup, 0);
    }
    static constexpr std::size_t kMost = 8;
    std::vector<zelt::IfDAQPlugin*> plugins = std::vector<zelt::IfDAQPlugin*>(kMost + 1);
};

TEST_F(ManyPlugins, AreToldWhenTheyAreTooMany) {
    const test_support::LogCapture log(UniLogSeverityLevel::Error);
    for (zelt::IfDAQPlugin* const each : plugins) EXPECT_EQ(each->initialize(), each != plugins.back());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Could not start device discovery. Error: More than 8 plug-ins of this process "
                            "look for cameras, terminate one of them"));
    plugins[3]->terminate();
    EXPECT_TRUE(plugins.back()->initialize());
}

TEST_F(ManyPlugins, CountOnlyWhileTheyAreInitialized) {
    for (zelt::IfDAQPlugin* const each : plugins) {
        EXPECT_TRUE(each->initialize());
        each->terminate();
    }
}

}  // namespace
