/// A plug-in that records the calls it gets, for tests of the host.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <boost/uuid/nil_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include "config_item_variant.h"
#include "config_keys.h"
#include "host_platform.h"
#include "if_channel_messages.h"
#include "if_daq_plugin.h"
#include "if_plugin_creator.h"
#include "if_sync_aux_service.h"
#include "if_system_topology_service.h"
#include "plugin_library.h"

namespace host_test {

using Calls = std::vector<std::string>;
using config_items::ConfigItemVariant;

inline ConfigItemVariant textItem(const char* text) {
    return config_items::SingleValueConfigItem<std::string>(text);
}

/// A channel with the items of a camera of 4 x 2 grey pixels at 50 frames per second.
class FakeChannel : public channel_config::IfChannelConfig, public zelt::IfChannelMessages {
  public:
    explicit FakeChannel(std::uint32_t id) {
        m_items = {{config_keys::kDefaultName, textItem("Camera")},
                   {config_keys::kShortId, textItem(("DEV_" + std::to_string(id)).c_str())},
                   {config_keys::kCameraType, textItem("GigE")},
                   {config_keys::kFrameFormat, textItem("Y800")},
                   {config_keys::kFrameWidth, config_items::ScalarConfigItem(4, "pixel")},
                   {config_keys::kFrameHeight, config_items::ScalarConfigItem(2, "pixel")},
                   {config_keys::kCameraFrameSetting, config_items::ScalarConfigItem(50, "fps")},
                   {config_keys::kUsed, config_items::SingleValueConfigItem<bool>(true)}};
    }

    const std::vector<std::string>& getKeys() override { return m_keys; }
    void onHostEvent(const void*) override {}
    bool hasKey(const std::string& key) override { return m_items.count(key) != 0; }
    ConfigItemVariant getItem(const std::string& key) override {
        const auto found = m_items.find(key);
        return found != m_items.end() ? found->second : ConfigItemVariant(config_items::InvalidConfigItem());
    }
    /// Adds a setting that is listed, with its constraints.
    template <class... Constraint>
    void add(const std::string& key, const ConfigItemVariant& value,
             std::shared_ptr<Constraint>... constraints) {
        m_keys.push_back(key);
        m_items[key] = value;
        m_constraints[key] = {constraints...};
    }
    std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>> getConstraints(
        const std::string& key) override {
        return m_constraints[key];
    }
    bool setItem(const std::string& key, const ConfigItemVariant& value) override {
        if (m_set) return m_set(key, value);
        m_items[key] = value;
        return true;
    }
    ChangeCallback setChangeCallback(ChangeCallback callback) override { return callback; }

    bool getLastMessage(exception_manager::Exception& out) override {
        if (m_last_message) out = *m_last_message;
        return m_last_message.has_value();
    }
    void setMessageListener(MessageListener listener) override { m_listener = std::move(listener); }

    bool isUsed() {
        return boost::get<config_items::SingleValueConfigItem<bool>>(m_items.at(config_keys::kUsed)).m_value;
    }

    std::vector<std::string> m_keys;
    std::map<std::string, ConfigItemVariant> m_items;
    std::map<std::string, std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>> m_constraints;
    /// What setting does, if not storing.
    std::function<bool(const std::string& key, const ConfigItemVariant& value)> m_set;
    MessageListener m_listener;
    std::optional<exception_manager::Exception> m_last_message;
};

/// Settings of the plug-in itself: its frame counters are off, if it has any.
class FakePluginConfig : public zelt::IfPluginConfig {
  public:
    using Constraints = std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>;

    bool setItem(const std::string& key, const ConfigItemVariant& value) override {
        m_items[key] = value;
        return true;
    }
    ConfigItemVariant getItem(const std::string& key) override { return m_items.at(key); }
    bool hasItem(const std::string& key) override { return m_items.contains(key); }
    std::vector<std::string> getKeys() override { return {}; }
    Constraints getConstraints(const std::string&) override { return {}; }
    ConfigItemVariant adaptItem(const std::string&, const ConfigItemVariant& value) override { return value; }

    std::map<std::string, ConfigItemVariant> m_items{
        {config_keys::kFrameCounterChannels, config_items::SingleValueConfigItem<bool>(false)}};
};

class FakeSyncAux final : public zelt::IfSyncAuxService {
  public:
    explicit FakeSyncAux(Calls& calls) : m_calls(calls) {}
    std::uint32_t addRef() override { return 0; }
    std::uint32_t release() override {
        m_calls.push_back("release aux");
        return 0;
    }
    void setSyncOutAuxFrequency(std::int64_t numerator, std::int64_t denominator) override {
        m_calls.push_back("aux " + std::to_string(numerator) + '/' + std::to_string(denominator));
    }

  private:
    Calls& m_calls;
};

class FakeTopology final : public zelt::IfSystemTopologyService {
  public:
    explicit FakeTopology(Calls& calls) : m_calls(calls) {}
    std::uint32_t addRef() override { return 0; }
    std::uint32_t release() override {
        m_calls.push_back("release topology");
        return 0;
    }
    void getTopology(std::uint64_t, Callback callback, void* context) override {
        // Only what the length covers is the document's.
        const std::string text = "<MeasurementTree />and no more";
        callback(context, text.data(), 19);
    }
    bool isTopologyDynamic() override { return false; }
    void setListener(std::uint64_t) override {}
    bool removeListener(std::uint64_t) override { return false; }

  private:
    Calls& m_calls;
};

class FakeFactory : public plugin_api::IfServiceFactory {
  public:
    explicit FakeFactory(Calls& calls) : m_calls(calls), m_aux(calls), m_topology(calls) {}
    std::uint32_t addRef() override { return 0; }
    std::uint32_t release() override {
        m_calls.push_back("release");
        return 1;
    }
    bool getService(const boost::uuids::uuid& id, plugin_api::IfService** out) override {
        const std::string text = boost::uuids::to_string(id);
        *out = nullptr;
        if (!m_has_services) return false;
        if (text == "784229ae-48ab-4a05-8f83-9fb70f11827f") *out = &m_aux;
        if (text == "a5c594ea-1c7f-41bf-a588-9ac316fb5973") *out = &m_topology;
        return *out != nullptr;
    }

    bool m_has_services = true;

  private:
    Calls& m_calls;
    FakeSyncAux m_aux;
    FakeTopology m_topology;
};

class FakePlugin : public zelt::IfDAQPlugin {
  public:
    explicit FakePlugin(Calls& calls) : m_calls(calls), m_factory(calls) {}

    const char* getDisplayName() override { return "GIGE Camera"; }
    boost::uuids::uuid getPluginId() override { return boost::uuids::nil_uuid(); }
    std::uint32_t getInstanceIndex() override { return 0; }
    void setInstanceIndex(std::uint32_t) override { note("setInstanceIndex"); }
    boost::uuids::uuid getPluginTypeId() override { return boost::uuids::nil_uuid(); }
    bool createServices() override { return note("createServices"); }
    bool initialize() override { return note("initialize"); }
    bool isSupported() override { return true; }
    void terminate() override { note("terminate"); }
    std::shared_ptr<zelt::IfPluginConfig> getPluginConfig() override { return m_config; }
    void onHostEvent(const void*) override {}
    void enumerateDevices() override {
        note("enumerateDevices");
        if (m_enumerations_until_found > 0 && --m_enumerations_until_found == 0) addChannel(0);
    }
    plugin_api::IfServiceFactory* getServiceFactory() override {
        note("getServiceFactory");
        return &m_factory;
    }
    void setHostValue(std::uint64_t) override { note("setHostValue"); }
    bool isSupported2() override { return true; }
    void setChannelSink(std::uint32_t id, zelt::IfChannelSink* sink) override {
        note("setChannelSink");
        m_sinks[id] = sink;
    }
    void clearChannelSinks() override {
        note("clearChannelSinks");
        m_sinks.clear();
    }
    std::set<std::uint32_t> getChannelIds() override {
        std::set<std::uint32_t> ids;
        for (const auto& [id, channel] : m_channels) ids.insert(id);
        return ids;
    }
    std::uint32_t findChannelId(const std::string&) override { return kNoChannel; }
    bool prepareAcquisition() override { return note("prepareAcquisition"); }
    bool isAcquiring() override { return false; }
    bool isReadyForAcquisition() override { return true; }
    bool hasSystemTopology() override { return false; }
    bool startAcquisition() override { return note("startAcquisition"); }
    bool stopAcquisition() override { return note("stopAcquisition"); }
    bool onAcquisitionPrepared() override { return note("onAcquisitionPrepared"); }
    bool onAcquisitionFinished() override { return note("onAcquisitionFinished"); }
    bool processAcquisition() override { return note("processAcquisition"); }
    std::shared_ptr<channel_config::IfChannelConfig> getChannelConfig(std::uint32_t id) override {
        return m_channels.at(id);
    }
    void setSharedAcquisitionObject(std::shared_ptr<zelt::IfMasterClock> clock) override {
        note("setSharedAcquisitionObject");
        m_clock = std::move(clock);
    }
    bool checkChannelSettings(const std::vector<std::uint32_t>& ids, bool) override {
        std::string text = "checkChannelSettings";
        for (const std::uint32_t id : ids) text += ' ' + std::to_string(id);
        m_calls.push_back(text);
        const auto found = m_behaviour.find("checkChannelSettings");
        return found == m_behaviour.end() || found->second();
    }
    std::shared_ptr<channel_config::IfChannelConfig> getChannel(std::uint32_t id) override {
        return m_channels.at(id);
    }
    double getNominalRate() override { return 0; }

    void addChannel(std::uint32_t id) { m_channels.emplace(id, std::make_shared<FakeChannel>(id)); }

    /// What an operation does besides being noted; its answer, false by an exception of its own.
    std::map<std::string, std::function<bool()>> m_behaviour;
    std::map<std::uint32_t, std::shared_ptr<FakeChannel>> m_channels;
    std::map<std::uint32_t, zelt::IfChannelSink*> m_sinks;
    std::shared_ptr<zelt::IfMasterClock> m_clock;
    std::shared_ptr<FakePluginConfig> m_config = std::make_shared<FakePluginConfig>();
    FakeFactory& factory() { return m_factory; }
    int m_enumerations_until_found = 0;

  private:
    bool note(const std::string& name) {
        m_calls.push_back(name);
        const auto found = m_behaviour.find(name);
        return found == m_behaviour.end() || found->second();
    }

    Calls& m_calls;
    FakeFactory m_factory;
};

/// A loaded library that notes its end.
class FakeLibrary : public host::platform::Library {
  public:
    explicit FakeLibrary(Calls& calls) : m_calls(calls) {}
    ~FakeLibrary() override { m_calls.push_back(m_kept ? "stay loaded" : "unload"); }
    void* symbol(const char* name) const override {
        const auto found = m_symbols.find(name);
        return found != m_symbols.end() ? found->second : nullptr;
    }
    void keepLoaded() override { m_kept = true; }

    std::map<std::string, void*> m_symbols;

  private:
    Calls& m_calls;
    bool m_kept = false;
};

class FakeCreator final : public plugin_api::IfPluginCreator {
  public:
    FakeCreator() : m_plugin(std::make_unique<FakePlugin>(m_calls)) {}

    std::uint32_t getInterfaceVersion() override { return m_version; }
    bool supportsPlugin(std::int32_t, const boost::uuids::uuid&) override { return true; }
    const char* getPluginName(std::int32_t) override { return "GIGECAMERA"; }
    bool createPlugin(const char* name, const boost::uuids::uuid& typeId, zelt::IfDAQPlugin** out) override {
        m_calls.push_back("createPlugin");
        m_name = name;
        m_type = typeId;
        *out = m_refuses ? nullptr : m_plugin.get();
        return !m_refuses;
    }
    bool destroyPlugin(const boost::uuids::uuid& typeId, zelt::IfDAQPlugin*) override {
        m_calls.push_back("destroyPlugin");
        m_plugin.reset();
        return typeId == m_type;
    }
    host::PluginSource source() { return {this, "GIGECAMERA", std::make_shared<FakeLibrary>(m_calls)}; }

    Calls m_calls;
    std::unique_ptr<FakePlugin> m_plugin;
    std::uint32_t m_version = 1;
    bool m_refuses = false;
    std::string m_name;
    boost::uuids::uuid m_type{};
};

}  // namespace host_test
