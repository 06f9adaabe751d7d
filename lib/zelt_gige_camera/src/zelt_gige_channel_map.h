/// The plug-in's channels by local id, and their published snapshot.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "mutex.h"
#include "zelt_gige_camera_channel.h"
#include "zelt_gige_channel_owner.h"
#include "zelt_gige_sync_aux_service.h"

namespace zelt_gige_camera {

using ChannelMap = std::map<std::uint32_t, std::shared_ptr<CameraChannel>>;

/// An immutable copy of the channel map for walks that must not wait for host calls. Shared by the plug-in
/// and its channels; the plug-in publishes an empty map before it lets go, which also frees the channels.
class PublishedChannels final : public IfChannelOwner {
  public:
    explicit PublishedChannels(const std::shared_ptr<GigeSyncAuxService>& auxService)
        : m_aux_service(auxService) {}

    void publish(ChannelMap channels);
    /// Publishes an empty map.
    void clear() noexcept;
    /// [any thread] Never null. Channels of a snapshot may be closed while it is walked.
    std::shared_ptr<const ChannelMap> snapshot() const;
    std::uint64_t getTotalRequiredBandwidth() const override;
    void deliverAuxFrequency(const std::function<void(const AuxFrequency&)>& store) const override;

  private:
    const std::weak_ptr<GigeSyncAuxService> m_aux_service;
    const std::shared_ptr<const ChannelMap> m_empty = std::make_shared<const ChannelMap>();
    // Not std::atomic<std::shared_ptr>: the thread sanitizer cannot see through this library's.
    mutable platform::Mutex m_mutex;
    std::shared_ptr<const ChannelMap> m_snapshot ZELT_GUARDED_BY(m_mutex) = m_empty;
};

/// The largest id plus one, 0 for an empty map and after the largest number.
std::uint32_t nextChannelId(const ChannelMap& channels);

/// The first id from `candidate` on, wrapping to 0, that no channel has and that is not "no channel".
std::uint32_t freeChannelId(const ChannelMap& channels, std::uint32_t candidate);

}  // namespace zelt_gige_camera
