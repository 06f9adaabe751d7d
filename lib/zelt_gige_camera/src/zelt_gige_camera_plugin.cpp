// Lifecycle of the plug-in: services, initialisation, enumeration, termination, discovery.
#include "zelt_gige_camera_plugin.h"

#include <algorithm>
#include <utility>

#include <boost/uuid/string_generator.hpp>

#include "assertion.h"
#include "config_keys.h"
#include "trace_scope.h"
#include "zelt_gige_clear_on_exit.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

using zelt_gige_api::CameraInfo;

constexpr const char* kPluginId = "{EEEC3C46-9973-487D-AD18-36CD7DDA58DA}";
constexpr const char* kTopologyServiceId = "{A5C594EA-1C7F-41BF-A588-9AC316FB5973}";
constexpr const char* kSyncAuxServiceId = "{784229AE-48AB-4A05-8F83-9FB70F11827F}";

std::shared_ptr<zelt::plugin_util::SimplePluginConfig> makeConfig() {
    auto config = std::make_shared<zelt::plugin_util::SimplePluginConfig>();
    config->addItem(config_keys::kPluginGodMode, config_items::SingleValueConfigItem<bool>(false));
    config->addItem(config_keys::kFrameCounterChannels, config_items::SingleValueConfigItem<bool>(false));
    return config;
}

bool lists(const std::vector<CameraInfo>& cameras, const std::string& cameraId) {
    return std::any_of(cameras.begin(), cameras.end(),
                       [&](const CameraInfo& camera) { return camera.cameraId == cameraId; });
}

}  // namespace

CameraPlugin::CameraPlugin(std::uint32_t instanceIndex, std::shared_ptr<zelt_gige_api::CameraApi> api,
                           platform::WallClock& wallClock)
    : DAQPluginBase(instanceIndex), m_api(std::move(api)), m_wall_clock(wallClock), m_config(makeConfig()) {}

CameraPlugin::~CameraPlugin() {
    const platform::MutexLock lock(m_mutex);
    if (m_service_factory != nullptr) m_service_factory->release();
    if (m_acquiring.exchange(false)) stopChannels();
    try {
        // Also after a registration that failed half-way: the library may still know this object.
        if (m_api != nullptr) m_api->unregisterDiscoveryCallback();
    } catch (...) {
        // The rest must be undone all the same.
    }
    retireChannels();
    try {
        if (m_api != nullptr) m_api->shutdown();
    } catch (...) {
        // As above.
    }
}

const char* CameraPlugin::getDisplayName() {
    return "GIGE Camera";
}

boost::uuids::uuid CameraPlugin::getPluginId() {
    return boost::uuids::string_generator()(kPluginId);
}

bool CameraPlugin::createServices() {
    const platform::MutexLock lock(m_mutex);
    if (m_service_factory != nullptr) return true;
    m_service_factory = new zeltpu::ServiceFactory;
    m_service_factory->addRef();
    const boost::uuids::string_generator parse;
    m_service_factory->registerService(parse(kTopologyServiceId), &m_topology_service);
    m_service_factory->registerService(parse(kSyncAuxServiceId), m_sync_aux_service.get());
    return true;
}

bool CameraPlugin::initialize() {
    if (m_initialized) return true;
    if (m_api == nullptr) {
        GIGE_LOG(Error) << "Invalid camera API";
        return false;
    }
    if (!m_api->startup()) {
        GIGE_LOG(Error) << "Could not initialize the API";
        return false;
    }
    GIGE_LOG(Info) << "Using " << m_api->getVersion();
    if (m_api->isGigeTransportLayerPresent()) {
        GIGE_LOG(Info) << "Camera API has driver support";
    } else {
        GIGE_LOG(Warning) << "Camera API does not have driver support";
    }
    const platform::MutexLock lock(m_mutex);
    // Again under the lock: of two calls at once only one does the work.
    if (m_initialized) return true;
    try {
        m_api->registerDiscoveryCallback(this);
        m_initialized = true;
        return true;
    } catch (const std::exception& error) {
        GIGE_LOG(Error) << "Could not start device discovery. Error: " << error.what();
        return false;
    }
}

bool CameraPlugin::isSupported() {
    return true;
}

void CameraPlugin::terminate() {
    if (!m_initialized) return;
    const platform::MutexLock lock(m_mutex);
    if (!m_initialized) return;
    // Whatever happens: a plug-in that failed to terminate may be initialized again.
    const ClearOnExit clear{m_initialized};
    try {
        m_api->unregisterDiscoveryCallback();
        retireChannels();
        m_acquiring = false;
        m_api->shutdown();
    } catch (const std::exception& error) {
        GIGE_LOG(Error) << "Could not terminate the plugin. Error: " << error.what();
    }
}

std::shared_ptr<zelt::IfPluginConfig> CameraPlugin::getPluginConfig() {
    return m_config;
}

void CameraPlugin::onHostEvent(const void*) {}

plugin_api::IfServiceFactory* CameraPlugin::getServiceFactory() {
    const platform::MutexLock lock(m_mutex);
    ZELT_ASSERT(m_service_factory);
    if (m_service_factory != nullptr) m_service_factory->addRef();
    return m_service_factory;
}

void CameraPlugin::setHostValue(std::uint64_t value) {
    m_host_value = value;
}

void CameraPlugin::enumerateDevices() {
    const platform::MutexLock lock(m_mutex);
    GIGE_LOG(Detail) << "Enumerating available GigE devices";
    if (m_api == nullptr) return;
    {
        const platform::MutexLock removedLock(m_removed_mutex);
        m_removed.clear();
    }
    const auto cameras = m_api->currentCameras();
    const bool isNews = cameras != std::exchange(m_enumerated, nullptr);
    // Before any removal: an id is reused only when it was the largest at the enumeration before.
    const std::uint32_t nextId = nextChannelId(m_channels);
    if (isNews) removeVanished(*cameras);
    const bool withFrameCounters = wantsFrameCounters();
    if (isNews) addNew(*cameras, nextId, withFrameCounters);
    m_enumerated = cameras;
}

void CameraPlugin::removeVanished(const std::vector<CameraInfo>& cameras) {
    std::vector<std::shared_ptr<CameraChannel>> vanished;
    for (auto entry = m_channels.begin(); entry != m_channels.end();) {
        if (lists(cameras, entry->second->getCameraId())) {
            ++entry;
            continue;
        }
        vanished.push_back(entry->second);
        entry = m_channels.erase(entry);
    }
    if (vanished.empty()) return;
    publish();
    for (const auto& channel : vanished) channel->retire();
}

bool CameraPlugin::wantsFrameCounters() {
    if (!m_config->hasItem(config_keys::kFrameCounterChannels)) return false;
    const auto item = m_config->getItem(config_keys::kFrameCounterChannels);
    return boost::get<config_items::SingleValueConfigItem<bool>>(item).m_value;
}

void CameraPlugin::addNew(const std::vector<CameraInfo>& cameras, std::uint32_t nextId,
                          bool withFrameCounters) {
    for (const CameraInfo& camera : cameras) {
        if (camera.cameraId.empty()) {
            // It could be neither opened nor told from another one.
            GIGE_LOG(Warning) << "A camera without an id is left out, model '" << camera.modelName
                              << "', serial number '" << camera.serialNumber << "'";
            continue;
        }
        const bool known = std::any_of(m_channels.begin(), m_channels.end(), [&](const auto& entry) {
            return entry.second->getCameraId() == camera.cameraId;
        });
        if (known) continue;
        const std::uint32_t id = freeChannelId(m_channels, nextId);
        forgetRemoval(camera.cameraId);
        auto channel = std::make_shared<CameraChannel>(channel_config::ChannelID{getInstanceIndex(), id},
                                                       camera, m_published, m_api, m_host_value);
        if (withFrameCounters) channel->createFrameCounters();
        channel->setMasterClock(m_master_clock);
        m_channels.emplace(id, channel);
        const bool hasVanished = publishNew(camera.cameraId);
        // Not before it is published: from then on the channel is told of every change.
        m_sync_aux_service->deliver(
            [&](const AuxFrequency& frequency) { channel->storeAuxFrequency(frequency); });
        if (hasVanished) channel->onDisconnected();
        nextId = id + 1;
    }
}

void CameraPlugin::publish() {
    m_published->publish(m_channels);
}

void CameraPlugin::retireChannels() noexcept {
    for (const auto& [id, channel] : m_channels) channel->retire();
    m_channels.clear();
    m_enumerated.reset();
    m_published->clear();
}

void CameraPlugin::forgetRemoval(const std::string& cameraId) {
    const platform::MutexLock lock(m_removed_mutex);
    m_removed.erase(cameraId);
}

bool CameraPlugin::publishNew(const std::string& cameraId) {
    const platform::MutexLock lock(m_removed_mutex);
    publish();
    return m_removed.count(cameraId) != 0;
}

std::shared_ptr<CameraChannel> CameraPlugin::findRemoved(const std::string& cameraId) {
    // Ahead of the lock, to go behind it: with the last snapshot channels may die, which close their cameras.
    std::shared_ptr<const ChannelMap> channels;
    const platform::MutexLock lock(m_removed_mutex);
    channels = m_published->snapshot();
    for (const auto& [id, channel] : *channels) {
        if (channel->getCameraId() == cameraId) return channel;
    }
    m_removed.insert(cameraId);
    return nullptr;
}

void CameraPlugin::onCameraAdded(const std::string& cameraId) {
    GIGE_LOG(Info) << "GigE-Camera '" << cameraId << "' was added";
}

void CameraPlugin::onCameraRemoved(const std::string& cameraId) {
    GIGE_LOG(Info) << "GigE-Camera '" << cameraId << "' was removed";
    if (const auto channel = findRemoved(cameraId)) channel->onDisconnected();
}

void CameraPlugin::onSyncOutAuxFrequencyChanged(const AuxFrequency& frequency) {
    const diagnostics::TraceScope trace(diagnostics::unilogger_zelt_plugin_gige_camera(),
                                        "CameraPlugin::onSyncOutAuxFrequencyChanged()");
    const auto channels = m_published->snapshot();
    // All of them first: each one's validation counts the bandwidth that the others need now.
    for (const auto& [id, channel] : *channels) channel->storeAuxFrequency(frequency);
    for (const auto& [id, channel] : *channels) channel->onSyncOutAuxFrequencyChanged(frequency);
}

}  // namespace zelt_gige_camera
