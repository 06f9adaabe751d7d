/// A camera plug-in made by the creator, on the simulator, with a host's clock and sinks.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <boost/uuid/string_generator.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "config_item_variant.h"
#include "config_items.h"
#include "config_keys.h"
#include "if_channel_messages.h"
#include "if_daq_plugin.h"
#include "if_service_factory.h"
#include "if_sync_aux_service.h"
#include "log_capture.h"
#include "simulator.h"
#include "zelt_gige_camera_plugin_creator.h"

namespace test_support {

/// Nanoseconds of the simulator's true time, or whatever a test sets.
class TestClock final : public zelt::IfMasterClock {
  public:
    double getRate() override { return 1e9; }
    std::uint64_t getTime() override { return fixed != 0 ? fixed.load() : VmbSimTime(); }
    std::atomic<std::uint64_t> fixed{0};
};

struct Sample {
    std::int64_t time = 0;
    const void* data = nullptr;
    std::uint64_t size = 0;
};

class RecordingSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void* data, std::uint64_t size) override {
        const std::lock_guard lock(m_mutex);
        m_samples.push_back({time, data, size});
        m_added.notify_all();
    }
    std::vector<Sample> samples() const {
        const std::lock_guard lock(m_mutex);
        return m_samples;
    }
    /// Waits until that many samples came; false when they do not come.
    bool waitFor(std::size_t count) {
        std::unique_lock lock(m_mutex);
        return m_added.wait_for(lock, std::chrono::milliseconds(kPatienceMs),
                                [&] { return m_samples.size() >= count; });
    }

  private:
    mutable std::mutex m_mutex;
    std::condition_variable m_added;
    std::vector<Sample> m_samples;
};

inline boost::uuids::uuid pluginTypeId() {
    return boost::uuids::string_generator()("{D40250C7-33F6-4ECE-9A88-BAE8EE6D5FA5}");
}

/// A journal line without its result.
inline std::string withoutResult(const std::string& line) {
    return line.substr(0, line.rfind(") = ") + 1);
}

/// The journal's host lines without their results.
inline std::vector<std::string> hostCalls() {
    std::vector<std::string> calls = Simulator::journal();
    for (std::string& call : calls) call = withoutResult(call);
    return calls;
}

class PluginTest : public ::testing::Test {
  protected:
    explicit PluginTest(const char* scenario = "two-cameras", bool virtualTime = false)
        : simulator(scenario), inVirtualTime(virtualTime) {
        EXPECT_EQ(VmbSimUseVirtualTime(virtualTime), VmbErrorSuccess);
        // Rounds of discovery without the waiting of each.
        VmbSimForceFeature(nullptr, "GeVDiscoveryAllDuration", "1");
        zelt::IfDAQPlugin* made = nullptr;
        EXPECT_TRUE(creator.createPlugin("GIGECAMERA", pluginTypeId(), &made));
        plugin = made;
    }
    ~PluginTest() override {
        destroy();
        if (inVirtualTime) VmbSimUseVirtualTime(false);
    }

    void destroy() {
        if (plugin == nullptr) return;
        if (services != nullptr) services->release();
        services = nullptr;
        creator.destroyPlugin(pluginTypeId(), plugin);
        plugin = nullptr;
    }
    zelt::IfSyncAuxService& aux() {
        if (services == nullptr) {
            EXPECT_TRUE(plugin->createServices());
            services = plugin->getServiceFactory();
        }
        plugin_api::IfService* service = nullptr;
        EXPECT_TRUE(services->getService(
            boost::uuids::string_generator()("{784229AE-48AB-4A05-8F83-9FB70F11827F}"), &service));
        return static_cast<zelt::IfSyncAuxService&>(*service);
    }
    /// From the next enumeration on.
    void wantFrameCounters(bool wanted) {
        plugin->getPluginConfig()->setItem(config_keys::kFrameCounterChannels,
                                           config_items::SingleValueConfigItem<bool>(wanted));
    }
    /// Everything up to the channels.
    void enumerate() {
        plugin->setSharedAcquisitionObject(clock);
        EXPECT_TRUE(plugin->initialize());
        plugin->enumerateDevices();
    }
    void start() {
        EXPECT_TRUE(plugin->prepareAcquisition());
        EXPECT_TRUE(plugin->onAcquisitionPrepared());
        EXPECT_TRUE(plugin->startAcquisition());
    }
    void stop() {
        EXPECT_TRUE(plugin->stopAcquisition());
        EXPECT_TRUE(plugin->onAcquisitionFinished());
    }
    void use(std::uint32_t channel, bool used) {
        EXPECT_TRUE(plugin->getChannelConfig(channel)->setItem(
            config_keys::kUsed, config_items::SingleValueConfigItem<bool>(used)));
    }
    /// Text of a channel's setting.
    std::string text(std::uint32_t channel, const char* key) {
        const auto item = plugin->getChannelConfig(channel)->getItem(key);
        return boost::apply_visitor([](const auto& value) { return value.toString(); }, item);
    }
    std::shared_ptr<channel_config::IfChannelConfig> channel(std::uint32_t id) {
        return plugin->getChannelConfig(id);
    }
    zelt::IfChannelMessages& messages(std::uint32_t id) {
        return dynamic_cast<zelt::IfChannelMessages&>(*plugin->getChannel(id));
    }
    /// The channel's latest message with its placeholders filled, or nothing.
    std::string lastMessage(std::uint32_t id) {
        exception_manager::Exception message;
        return messages(id).getLastMessage(message) ? exception_manager::fillPlaceholders(message) : "";
    }

    Simulator simulator;
    const bool inVirtualTime;
    ExpectedMisuses misuses;
    zelt_gige_camera::CameraPluginCreator creator;
    zelt::IfDAQPlugin* plugin = nullptr;
    plugin_api::IfServiceFactory* services = nullptr;
    std::shared_ptr<TestClock> clock = std::make_shared<TestClock>();
};

}  // namespace test_support
