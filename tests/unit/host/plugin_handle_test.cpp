#include "plugin_handle.h"

#include <boost/uuid/uuid_io.hpp>
#include <gmock/gmock.h>

#include "fake_plugin.h"
#include "host_failure.h"
#include "steady_master_clock.h"

using host::PluginError;
using host::PluginHandle;
using host::WrongOrder;
using host_test::FakeCreator;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class PluginHandleTest : public testing::Test {
  protected:
    PluginHandleTest() { m_creator.m_plugin->addChannel(0); }

    void bringUp(PluginHandle& handle) {
        handle.setInstanceIndex(0);
        handle.setHostValue(0);
        handle.setSharedAcquisitionObject(std::make_shared<host::SteadyMasterClock>());
        handle.createServices();
        handle.initialize();
        handle.enumerateDevices();
    }

    void run(PluginHandle& handle) {
        bringUp(handle);
        handle.setChannelSink(0, nullptr);
        handle.prepareAcquisition();
        handle.onAcquisitionPrepared();
        handle.startAcquisition();
    }

    FakeCreator m_creator;
};

TEST_F(PluginHandleTest, CreatesByNameAndTypeId) {
    const PluginHandle handle(m_creator.source());
    EXPECT_EQ(m_creator.m_name, "GIGECAMERA");
    EXPECT_EQ(boost::uuids::to_string(m_creator.m_type), "d40250c7-33f6-4ece-9a88-bae8ee6d5fa5");
}

TEST_F(PluginHandleTest, PassesAWholeAcquisitionOnInOrder) {
    {
        PluginHandle handle(m_creator.source());
        run(handle);
        handle.processAcquisition();
        handle.stopAcquisition();
        handle.onAcquisitionFinished();
        handle.clearChannelSinks();
        handle.terminate();
    }
    EXPECT_THAT(m_creator.m_calls,
                ElementsAre("createPlugin", "setInstanceIndex", "setHostValue", "setSharedAcquisitionObject",
                            "createServices", "initialize", "enumerateDevices", "setChannelSink",
                            "prepareAcquisition", "onAcquisitionPrepared", "startAcquisition",
                            "processAcquisition", "stopAcquisition", "onAcquisitionFinished",
                            "clearChannelSinks", "terminate", "destroyPlugin", "unload"));
}

TEST_F(PluginHandleTest, UndoesARunningAcquisitionInReverseOrder) {
    {
        PluginHandle handle(m_creator.source());
        run(handle);
        handle.getServiceFactory();
        m_creator.m_calls.clear();
    }
    EXPECT_THAT(m_creator.m_calls,
                ElementsAre("stopAcquisition", "onAcquisitionFinished", "clearChannelSinks", "terminate",
                            "release", "destroyPlugin", "unload"));
}

TEST_F(PluginHandleTest, UndoesWithoutAnAcquisition) {
    {
        PluginHandle handle(m_creator.source());
        bringUp(handle);
        m_creator.m_calls.clear();
    }
    EXPECT_THAT(m_creator.m_calls, ElementsAre("terminate", "destroyPlugin", "unload"));
}

TEST_F(PluginHandleTest, UndoesNothingButTheCreationAtOnce) {
    { const PluginHandle handle(m_creator.source()); }
    EXPECT_THAT(m_creator.m_calls, ElementsAre("createPlugin", "destroyPlugin", "unload"));
}

TEST_F(PluginHandleTest, GoesOnUndoingWhenAStepThrows) {
    for (const char* name : {"stopAcquisition", "onAcquisitionFinished", "clearChannelSinks", "terminate"}) {
        m_creator.m_plugin->m_behaviour[name] = []() -> bool { throw 5; };
    }
    {
        PluginHandle handle(m_creator.source());
        run(handle);
        m_creator.m_calls.clear();
    }
    EXPECT_THAT(m_creator.m_calls, ElementsAre("stopAcquisition", "onAcquisitionFinished",
                                               "clearChannelSinks", "terminate", "destroyPlugin", "unload"));
}

TEST_F(PluginHandleTest, FinishesAnAcquisitionThatDidNotStart) {
    m_creator.m_plugin->m_behaviour["startAcquisition"] = [] { return false; };
    {
        PluginHandle handle(m_creator.source());
        run(handle);
        EXPECT_THROW(handle.processAcquisition(), WrongOrder);
        EXPECT_THROW(handle.stopAcquisition(), WrongOrder);
        m_creator.m_calls.clear();
    }
    EXPECT_THAT(m_creator.m_calls, ElementsAre("onAcquisitionFinished", "clearChannelSinks", "terminate",
                                               "destroyPlugin", "unload"));
}

TEST_F(PluginHandleTest, RefusesEverythingBeforeItsTurnWithoutReachingThePlugin) {
    PluginHandle handle(m_creator.source());
    m_creator.m_calls.clear();
    EXPECT_THROW(handle.initialize(), WrongOrder);
    EXPECT_THROW(handle.getServiceFactory(), WrongOrder);
    EXPECT_THROW(handle.enumerateDevices(), WrongOrder);
    EXPECT_THROW(handle.getChannelIds(), WrongOrder);
    EXPECT_THROW(handle.getChannelConfig(0), WrongOrder);
    EXPECT_THROW(handle.getChannel(0), WrongOrder);
    EXPECT_THROW(handle.setChannelSink(0, nullptr), WrongOrder);
    EXPECT_THROW(handle.prepareAcquisition(), WrongOrder);
    EXPECT_THROW(handle.onAcquisitionPrepared(), WrongOrder);
    EXPECT_THROW(handle.startAcquisition(), WrongOrder);
    EXPECT_THROW(handle.processAcquisition(), WrongOrder);
    EXPECT_THROW(handle.stopAcquisition(), WrongOrder);
    EXPECT_THROW(handle.onAcquisitionFinished(), WrongOrder);
    EXPECT_THROW(handle.clearChannelSinks(), WrongOrder);
    EXPECT_THROW(handle.terminate(), WrongOrder);
    EXPECT_TRUE(m_creator.m_calls.empty());
}

TEST_F(PluginHandleTest, RefusesSetUpAndDevicesWhileAcquiring) {
    PluginHandle handle(m_creator.source());
    run(handle);
    m_creator.m_calls.clear();
    EXPECT_THROW(handle.setInstanceIndex(1), WrongOrder);
    EXPECT_THROW(handle.setHostValue(1), WrongOrder);
    EXPECT_THROW(handle.setSharedAcquisitionObject(nullptr), WrongOrder);
    EXPECT_THROW(handle.createServices(), WrongOrder);
    EXPECT_THROW(handle.initialize(), WrongOrder);
    EXPECT_THROW(handle.enumerateDevices(), WrongOrder);
    EXPECT_THROW(handle.setChannelSink(0, nullptr), WrongOrder);
    EXPECT_THROW(handle.prepareAcquisition(), WrongOrder);
    EXPECT_THROW(handle.onAcquisitionPrepared(), WrongOrder);
    EXPECT_THROW(handle.startAcquisition(), WrongOrder);
    EXPECT_THROW(handle.onAcquisitionFinished(), WrongOrder);
    EXPECT_THROW(handle.clearChannelSinks(), WrongOrder);
    EXPECT_THROW(handle.terminate(), WrongOrder);
    EXPECT_TRUE(m_creator.m_calls.empty());
}

TEST_F(PluginHandleTest, SaysWhatIsMissing) {
    PluginHandle handle(m_creator.source());
    bringUp(handle);
    try {
        handle.startAcquisition();
        FAIL();
    } catch (const WrongOrder& error) {
        EXPECT_STREQ(error.what(), "startAcquisition out of order: it needs onAcquisitionPrepared before it");
    }
}

TEST_F(PluginHandleTest, AllowsASecondAcquisitionAndASecondInitialize) {
    PluginHandle handle(m_creator.source());
    run(handle);
    handle.stopAcquisition();
    handle.onAcquisitionFinished();
    EXPECT_TRUE(handle.prepareAcquisition());
    handle.clearChannelSinks();
    handle.terminate();
    EXPECT_TRUE(handle.initialize());
    EXPECT_NO_THROW(handle.enumerateDevices());
}

TEST_F(PluginHandleTest, NeedsANewPreparationAfterAFailedOne) {
    m_creator.m_plugin->m_behaviour["prepareAcquisition"] = [] { return false; };
    PluginHandle handle(m_creator.source());
    bringUp(handle);
    EXPECT_FALSE(handle.prepareAcquisition());
    EXPECT_THROW(handle.onAcquisitionPrepared(), WrongOrder);
    m_creator.m_plugin->m_behaviour.clear();
    EXPECT_TRUE(handle.prepareAcquisition());
    EXPECT_NO_THROW(handle.onAcquisitionPrepared());
}

TEST_F(PluginHandleTest, TurnsExceptionsOfThePluginIntoItsOwn) {
    PluginHandle handle(m_creator.source());
    bringUp(handle);
    const auto message = [&](std::function<bool()> behaviour) -> std::string {
        m_creator.m_plugin->m_behaviour["prepareAcquisition"] = std::move(behaviour);
        try {
            handle.prepareAcquisition();
        } catch (const PluginError& error) {
            return error.what();
        }
        return "nothing thrown";
    };
    EXPECT_EQ(message([]() -> bool {
                  exception_manager::Exception failure(0, "Cannot open camera '%1': %2", "TEST");
                  failure.addArgument("Camera Name", "Manta");
                  failure.addArgument("Exception Argument", "busy");
                  throw failure;
              }),
              "Cannot open camera 'Manta': busy");
    EXPECT_EQ(message([]() -> bool { throw std::runtime_error("broken"); }), "broken");
    EXPECT_EQ(message([]() -> bool { throw 5; }), "the plug-in gave no reason");
}

TEST_F(PluginHandleTest, KeepsTheLibraryForAChannelThatIsStillHeld) {
    std::shared_ptr<channel_config::IfChannelConfig> held;
    {
        PluginHandle handle(m_creator.source());
        bringUp(handle);
        held = handle.getChannelConfig(0);
    }
    EXPECT_EQ(m_creator.m_calls.back(), "stay loaded");
}

TEST_F(PluginHandleTest, ReportsACreatorThatRefuses) {
    m_creator.m_refuses = true;
    try {
        const PluginHandle handle(m_creator.source());
        FAIL();
    } catch (const host::HostFailure& failure) {
        EXPECT_EQ(failure.code(), host::ExitCode::NotAPlugin);
        EXPECT_THAT(failure.what(), HasSubstr("GIGECAMERA"));
    }
    EXPECT_THAT(m_creator.m_calls, ElementsAre("createPlugin", "unload"));
}

TEST(SteadyMasterClock, CountsNanosecondsUpwards) {
    host::SteadyMasterClock clock;
    EXPECT_EQ(clock.getRate(), 1e9);
    const auto now = [] {
        return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    };
    const std::uint64_t before = now();
    const std::uint64_t time = clock.getTime();
    EXPECT_GE(time, before);
    EXPECT_LE(time, now());
}

TEST_F(PluginHandleTest, HandsThePluginsOwnSettingsOutOnlyBeforeDevicesAreEnumerated) {
    PluginHandle handle(m_creator.source());
    EXPECT_EQ(handle.getPluginConfig(), m_creator.m_plugin->m_config);
    bringUp(handle);
    EXPECT_THROW(handle.getPluginConfig(), WrongOrder);
}

TEST_F(PluginHandleTest, ChecksSettingsOnlyWhileNothingIsAcquired) {
    PluginHandle handle(m_creator.source());
    EXPECT_THROW(handle.checkChannelSettings({0}), WrongOrder);
    bringUp(handle);
    EXPECT_TRUE(handle.checkChannelSettings({0, 3}));
    EXPECT_EQ(m_creator.m_calls.back(), "checkChannelSettings 0 3");
    m_creator.m_plugin->m_behaviour["checkChannelSettings"] = [] { return false; };
    EXPECT_FALSE(handle.checkChannelSettings({}));
    handle.prepareAcquisition();
    EXPECT_FALSE(handle.checkChannelSettings({0}));
    handle.onAcquisitionPrepared();
    EXPECT_THROW(handle.checkChannelSettings({0}), WrongOrder);
}

TEST_F(PluginHandleTest, TellsTheTriggerOutputsFrequencyToItsService) {
    {
        PluginHandle handle(m_creator.source());
        EXPECT_THROW(handle.setSyncOutAuxFrequency(100, 1), WrongOrder);
        bringUp(handle);
        handle.setSyncOutAuxFrequency(30000, 1001);
        EXPECT_EQ(m_creator.m_calls.back(), "aux 30000/1001");
        handle.setSyncOutAuxFrequency(0, 0);
        m_creator.m_calls.clear();
    }
    EXPECT_THAT(m_creator.m_calls,
                ElementsAre("terminate", "release aux", "release", "destroyPlugin", "unload"));
}

TEST_F(PluginHandleTest, FetchesTheTopologyWhenDevicesAreKnown) {
    PluginHandle handle(m_creator.source());
    handle.createServices();
    EXPECT_THROW(handle.getTopology(), WrongOrder);
    handle.initialize();
    handle.enumerateDevices();
    EXPECT_EQ(handle.getTopology(), "<MeasurementTree />");
}

TEST_F(PluginHandleTest, SaysThatAServiceIsMissing) {
    m_creator.m_plugin->factory().m_has_services = false;
    PluginHandle handle(m_creator.source());
    bringUp(handle);
    EXPECT_EQ(handle.getTopology(), std::nullopt);
    EXPECT_THROW(handle.setSyncOutAuxFrequency(1, 1), PluginError);
}

}  // namespace
