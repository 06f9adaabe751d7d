#include "plugin_handle.h"

#include <algorithm>
#include <string>
#include <type_traits>
#include <utility>

#include <boost/uuid/string_generator.hpp>

#include "exception_manager.h"
#include "host_failure.h"
#include "if_sync_aux_service.h"
#include "if_system_topology_service.h"

namespace host {
namespace {

constexpr const char* kSyncAuxService = "{784229AE-48AB-4A05-8F83-9FB70F11827F}";
constexpr const char* kTopologyService = "{A5C594EA-1C7F-41BF-A588-9AC316FB5973}";

boost::uuids::uuid cameraPluginType() {
    return boost::uuids::string_generator()("{D40250C7-33F6-4ECE-9A88-BAE8EE6D5FA5}");
}

// An exception object of the library must not outlive the library, so none leaves the handle.
template <class Call>
auto guarded(Call&& call) -> std::invoke_result_t<Call> {
    try {
        return call();
    } catch (const exception_manager::Exception& failure) {
        throw PluginError(exception_manager::fillPlaceholders(failure));
    } catch (const std::exception& failure) {
        throw PluginError(std::string(failure.what()));
    } catch (...) {
        throw PluginError("the plug-in gave no reason");
    }
}

template <class Call>
void attempt(Call&& call) noexcept {
    try {
        call();
    } catch (...) {
        // Undoing goes on: the steps that follow free what this one could not.
    }
}

zelt::IfDAQPlugin* create(const PluginSource& source) {
    zelt::IfDAQPlugin* plugin = nullptr;
    try {
        source.creator->createPlugin(source.name.c_str(), cameraPluginType(), &plugin);
    } catch (...) {
        plugin = nullptr;
    }
    if (plugin == nullptr) {
        throw HostFailure(ExitCode::NotAPlugin,
                          "The library's creator refuses to make the camera plug-in \"" + source.name +
                              "\"; plug-in and host must come from the same release.");
    }
    return plugin;
}

}  // namespace

PluginHandle::PluginHandle(PluginSource source) : m_source(std::move(source)) {
    m_plugin = create(m_source);
}

PluginHandle::~PluginHandle() {
    undo();
    destroy();
}

void PluginHandle::cancelAcquisition() noexcept {
    if (m_stage == Stage::Running) attempt([this] { stopAcquisition(); });
    if (m_stage == Stage::Armed || m_stage == Stage::Stopped) attempt([this] { onAcquisitionFinished(); });
    if (m_has_sinks) attempt([this] { clearChannelSinks(); });
}

void PluginHandle::undo() {
    cancelAcquisition();
    if (m_stage >= Stage::Initialized) attempt([this] { terminate(); });
    for (const auto& [id, service] : std::exchange(m_services, {})) {
        attempt([found = service] { found->release(); });
    }
    if (m_factory != nullptr) attempt([this] { std::exchange(m_factory, nullptr)->release(); });
}

void PluginHandle::destroy() {
    attempt(
        [this] { m_source.creator->destroyPlugin(cameraPluginType(), std::exchange(m_plugin, nullptr)); });
    const bool inUse =
        std::any_of(m_lent.begin(), m_lent.end(), [](const auto& channel) { return !channel.expired(); });
    // Whoever still holds a channel would call into memory that is gone.
    if (inUse) m_source.library->keepLoaded();
    m_lent.clear();
}

void PluginHandle::require(bool allowed, const char* operation, const char* needs) const {
    if (!allowed) throw WrongOrder(std::string(operation) + " out of order: it " + needs);
}

std::string PluginHandle::getDisplayName() {
    return guarded([this] { return std::string(m_plugin->getDisplayName()); });
}

void PluginHandle::setInstanceIndex(std::uint32_t index) {
    require(m_stage == Stage::Created, "setInstanceIndex", "comes before createServices");
    guarded([&] { m_plugin->setInstanceIndex(index); });
}

void PluginHandle::setHostValue(std::uint64_t value) {
    require(m_stage == Stage::Created, "setHostValue", "comes before createServices");
    guarded([&] { m_plugin->setHostValue(value); });
}

void PluginHandle::setSharedAcquisitionObject(std::shared_ptr<zelt::IfMasterClock> clock) {
    require(m_stage == Stage::Created, "setSharedAcquisitionObject", "comes before createServices");
    guarded([&] { m_plugin->setSharedAcquisitionObject(std::move(clock)); });
}

void PluginHandle::createServices() {
    require(m_stage == Stage::Created, "createServices", "is called once");
    if (!guarded([this] { return m_plugin->createServices(); })) throw PluginError("no services");
    m_stage = Stage::Services;
}

plugin_api::IfServiceFactory& PluginHandle::getServiceFactory() {
    require(m_stage >= Stage::Services, "getServiceFactory", "needs createServices before it");
    if (m_factory == nullptr) m_factory = guarded([this] { return m_plugin->getServiceFactory(); });
    if (m_factory == nullptr) throw PluginError("no services");
    return *m_factory;
}

plugin_api::IfService* PluginHandle::findService(const char* id) {
    if (const auto known = m_services.find(id); known != m_services.end()) return known->second;
    plugin_api::IfServiceFactory& factory = getServiceFactory();
    plugin_api::IfService* service = nullptr;
    const bool found =
        guarded([&] { return factory.getService(boost::uuids::string_generator()(id), &service); });
    if (!found || service == nullptr) return nullptr;
    m_services.emplace(id, service);
    return service;
}

void PluginHandle::setSyncOutAuxFrequency(std::int64_t numerator, std::int64_t denominator) {
    require(m_stage >= Stage::Services, "setSyncOutAuxFrequency", "needs createServices before it");
    auto* service = static_cast<zelt::IfSyncAuxService*>(findService(kSyncAuxService));
    if (service == nullptr) throw PluginError("the plug-in takes no frequency of a trigger output");
    guarded([&] { service->setSyncOutAuxFrequency(numerator, denominator); });
}

std::optional<std::string> PluginHandle::getTopology() {
    require(m_stage >= Stage::Enumerated, "getTopology", "needs enumerateDevices before it");
    auto* service = static_cast<zelt::IfSystemTopologyService*>(findService(kTopologyService));
    if (service == nullptr) return std::nullopt;
    std::string document;
    const auto keep = [](void* context, const char* text, std::size_t length) {
        static_cast<std::string*>(context)->assign(text, length);
    };
    guarded([&] { service->getTopology(0, keep, &document); });
    return document;
}

std::shared_ptr<zelt::IfPluginConfig> PluginHandle::getPluginConfig() {
    require(m_stage < Stage::Enumerated, "getPluginConfig", "comes before enumerateDevices");
    return guarded([this] { return m_plugin->getPluginConfig(); });
}

bool PluginHandle::initialize() {
    require(m_stage == Stage::Services, "initialize", "needs createServices before it, and no initialize");
    const bool done = guarded([this] { return m_plugin->initialize(); });
    if (done) m_stage = Stage::Initialized;
    return done;
}

void PluginHandle::enumerateDevices() {
    require(m_stage == Stage::Initialized || m_stage == Stage::Enumerated, "enumerateDevices",
            "needs initialize before it and no acquisition under way");
    guarded([this] { m_plugin->enumerateDevices(); });
    m_stage = Stage::Enumerated;
}

std::set<std::uint32_t> PluginHandle::getChannelIds() {
    require(m_stage >= Stage::Enumerated, "getChannelIds", "needs enumerateDevices before it");
    return guarded([this] { return m_plugin->getChannelIds(); });
}

std::shared_ptr<channel_config::IfChannelConfig> PluginHandle::lend(
    std::shared_ptr<channel_config::IfChannelConfig> channel) {
    std::erase_if(m_lent, [](const auto& lent) { return lent.expired(); });
    if (channel) m_lent.push_back(channel);
    return channel;
}

std::shared_ptr<channel_config::IfChannelConfig> PluginHandle::getChannelConfig(std::uint32_t id) {
    require(m_stage >= Stage::Enumerated, "getChannelConfig", "needs enumerateDevices before it");
    return lend(guarded([&] { return m_plugin->getChannelConfig(id); }));
}

std::shared_ptr<channel_config::IfChannelConfig> PluginHandle::getChannel(std::uint32_t id) {
    require(m_stage >= Stage::Enumerated, "getChannel", "needs enumerateDevices before it");
    return lend(guarded([&] { return m_plugin->getChannel(id); }));
}

bool PluginHandle::checkChannelSettings(const std::vector<std::uint32_t>& ids) {
    require(isIdle(), "checkChannelSettings",
            "needs enumerateDevices before it and no acquisition under way");
    return guarded([&] { return m_plugin->checkChannelSettings(ids, true); });
}

void PluginHandle::setChannelSink(std::uint32_t id, zelt::IfChannelSink* sink) {
    require(m_stage == Stage::Enumerated, "setChannelSink",
            "needs enumerateDevices before it and no acquisition under way");
    m_has_sinks = true;
    guarded([&] { m_plugin->setChannelSink(id, sink); });
}

bool PluginHandle::prepareAcquisition() {
    require(isIdle(), "prepareAcquisition", "needs enumerateDevices before it and no acquisition under way");
    m_stage = Stage::Enumerated;
    const bool done = guarded([this] { return m_plugin->prepareAcquisition(); });
    if (done) m_stage = Stage::Prepared;
    return done;
}

bool PluginHandle::onAcquisitionPrepared() {
    require(m_stage == Stage::Prepared, "onAcquisitionPrepared", "needs prepareAcquisition before it");
    m_stage = Stage::Armed;
    return guarded([this] { return m_plugin->onAcquisitionPrepared(); });
}

bool PluginHandle::startAcquisition() {
    require(m_stage == Stage::Armed, "startAcquisition", "needs onAcquisitionPrepared before it");
    const bool done = guarded([this] { return m_plugin->startAcquisition(); });
    if (done) m_stage = Stage::Running;
    return done;
}

bool PluginHandle::processAcquisition() {
    require(m_stage == Stage::Running, "processAcquisition", "needs startAcquisition before it");
    return guarded([this] { return m_plugin->processAcquisition(); });
}

bool PluginHandle::stopAcquisition() {
    require(m_stage == Stage::Running, "stopAcquisition", "needs startAcquisition before it");
    m_stage = Stage::Stopped;  // every channel is visited, also when one of them throws
    return guarded([this] { return m_plugin->stopAcquisition(); });
}

bool PluginHandle::onAcquisitionFinished() {
    require(m_stage == Stage::Armed || m_stage == Stage::Stopped, "onAcquisitionFinished",
            "needs stopAcquisition or a failed startAcquisition before it");
    m_stage = Stage::Enumerated;
    return guarded([this] { return m_plugin->onAcquisitionFinished(); });
}

void PluginHandle::clearChannelSinks() {
    require(isIdle(), "clearChannelSinks", "needs onAcquisitionFinished before it");
    m_has_sinks = false;
    guarded([this] { m_plugin->clearChannelSinks(); });
}

void PluginHandle::terminate() {
    require(m_stage == Stage::Initialized || isIdle(), "terminate",
            "needs initialize before it and no acquisition under way");
    m_stage = Stage::Services;
    guarded([this] { m_plugin->terminate(); });
}

}  // namespace host
