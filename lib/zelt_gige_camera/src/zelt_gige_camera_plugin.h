/// The one object through which the host drives the whole library.
#pragma once

#include <atomic>
#include <exception>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "clocks.h"
#include "mutex.h"
#include "zelt_gige_aux_frequency_listener.h"
#include "zelt_gige_camera_api.h"
#include "zelt_gige_camera_system_topology_service.h"
#include "zelt_gige_channel_map.h"
#include "zelt_gige_sync_aux_service.h"
#include "zeltpu_daq_plugin_base.h"
#include "zeltpu_service_factory.h"
#include "zeltpu_simple_plugin_config.h"

namespace zelt_gige_camera {

/// Owns the camera API and one channel per camera, and passes every host request on to the channels. See
/// zelt::IfDAQPlugin for what each operation promises.
///
/// The plug-in mutex serialises all work on the channel map. The discovery callbacks, findChannelId and the
/// change of the AUX frequency walk the published snapshot instead, since they may come while a host call
/// holds it. Order of locks: the plug-in's, the AUX service's, a channel's.
class CameraPlugin final : public zelt::plugin_util::DAQPluginBase,
                           public zelt_gige_api::IfDiscoveryCallback,
                           public IfAuxFrequencyListener {
  public:
    /// `api` may be empty; then initialize fails. `wallClock` paces the polls of the cameras and must outlive
    /// this.
    CameraPlugin(std::uint32_t instanceIndex, std::shared_ptr<zelt_gige_api::CameraApi> api,
                 platform::WallClock& wallClock = platform::systemWallClock());
    /// Stops, closes and shuts down whatever is still running; never throws.
    ~CameraPlugin() override;

    const char* getDisplayName() override;
    boost::uuids::uuid getPluginId() override;
    bool createServices() override;
    bool initialize() override;
    bool isSupported() override;
    void terminate() override;
    std::shared_ptr<zelt::IfPluginConfig> getPluginConfig() override;
    void onHostEvent(const void* event) override;
    void enumerateDevices() override;
    plugin_api::IfServiceFactory* getServiceFactory() override;
    void setHostValue(std::uint64_t value) override;
    void setChannelSink(std::uint32_t channelId, zelt::IfChannelSink* sink) override;
    void clearChannelSinks() override;
    std::set<std::uint32_t> getChannelIds() override;
    std::uint32_t findChannelId(const std::string& key) override;
    bool prepareAcquisition() override;
    bool isAcquiring() override;
    bool isReadyForAcquisition() override;
    bool startAcquisition() override;
    bool stopAcquisition() override;
    bool onAcquisitionPrepared() override;
    bool onAcquisitionFinished() override;
    bool processAcquisition() override;
    std::shared_ptr<channel_config::IfChannelConfig> getChannelConfig(std::uint32_t channelId) override;
    void setSharedAcquisitionObject(std::shared_ptr<zelt::IfMasterClock> clock) override;
    bool checkChannelSettings(const std::vector<std::uint32_t>& channelIds, bool flag) override;
    std::shared_ptr<channel_config::IfChannelConfig> getChannel(std::uint32_t channelId) override;
    double getNominalRate() override;

    void onCameraAdded(const std::string& cameraId) override;
    void onCameraRemoved(const std::string& cameraId) override;

    /// [host] Passes the frequency on to every channel. Called under the AUX service's mutex.
    void onSyncOutAuxFrequencyChanged(const AuxFrequency& frequency) override;
    /// [any thread] What the host has set last.
    AuxFrequency getSyncOutAuxFrequency() const { return m_sync_aux_service->getSyncOutAuxFrequency(); }

  private:
    void publish() ZELT_REQUIRES(m_mutex);
    void removeVanished(const std::vector<zelt_gige_api::CameraInfo>& cameras) ZELT_REQUIRES(m_mutex);
    void addNew(const std::vector<zelt_gige_api::CameraInfo>& cameras, std::uint32_t nextId,
                bool withFrameCounters) ZELT_REQUIRES(m_mutex);
    bool wantsFrameCounters();
    std::exception_ptr stopChannels() ZELT_REQUIRES(m_mutex);
    void undoStart(const std::vector<std::shared_ptr<CameraChannel>>& started) ZELT_REQUIRES(m_mutex);
    void retireChannels() noexcept ZELT_REQUIRES(m_mutex);
    void forgetRemoval(const std::string& cameraId);
    /// True when the camera vanished since it was last forgotten, and no channel was told of it.
    bool publishNew(const std::string& cameraId) ZELT_REQUIRES(m_mutex);
    /// The channel to be told; without one the removal is remembered for a channel that is just being made.
    std::shared_ptr<CameraChannel> findRemoved(const std::string& cameraId);
    std::shared_ptr<channel_config::IfChannelConfig> findChannel(std::uint32_t channelId)
        ZELT_REQUIRES(m_mutex);

    const std::shared_ptr<zelt_gige_api::CameraApi> m_api;
    platform::WallClock& m_wall_clock;
    platform::Mutex m_mutex;
    ChannelMap m_channels ZELT_GUARDED_BY(m_mutex);
    /// The cameras of which every one has its channel, and no other; empty while that is not known.
    std::shared_ptr<const std::vector<zelt_gige_api::CameraInfo>> m_enumerated ZELT_GUARDED_BY(m_mutex);
    platform::Mutex m_removed_mutex;  ///< held over the publishing of a channel, and over no call
    /// Ids of cameras without a channel that vanished since the last enumeration began: one of them may be
    /// just being opened, and its channel not yet to be found.
    std::set<std::string> m_removed ZELT_GUARDED_BY(m_removed_mutex);
    std::atomic<bool> m_acquiring{false};
    std::atomic<bool> m_initialized{false};
    std::shared_ptr<zelt::IfMasterClock> m_master_clock ZELT_GUARDED_BY(m_mutex);
    const std::shared_ptr<zelt::plugin_util::SimplePluginConfig> m_config;
    zeltpu::ServiceFactory* m_service_factory ZELT_GUARDED_BY(m_mutex) = nullptr;
    std::atomic<std::uint64_t> m_host_value{0};
    CameraSystemTopologyService m_topology_service{this};
    const std::shared_ptr<GigeSyncAuxService> m_sync_aux_service = std::make_shared<GigeSyncAuxService>(this);
    const std::shared_ptr<PublishedChannels> m_published =
        std::make_shared<PublishedChannels>(m_sync_aux_service);
};

}  // namespace zelt_gige_camera
