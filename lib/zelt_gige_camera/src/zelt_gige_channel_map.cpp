#include "zelt_gige_channel_map.h"

#include <utility>

#include "if_daq_plugin.h"

namespace zelt_gige_camera {

void PublishedChannels::publish(ChannelMap channels) {
    auto fresh = std::make_shared<const ChannelMap>(std::move(channels));
    const platform::MutexLock lock(m_mutex);
    // The old map is left in `fresh` and dies after the lock: it may hold the last reference to a channel.
    m_snapshot.swap(fresh);
}

void PublishedChannels::clear() noexcept {
    std::shared_ptr<const ChannelMap> empty = m_empty;
    const platform::MutexLock lock(m_mutex);
    m_snapshot.swap(empty);
}

std::shared_ptr<const ChannelMap> PublishedChannels::snapshot() const {
    const platform::MutexLock lock(m_mutex);
    return m_snapshot;
}

std::uint64_t PublishedChannels::getTotalRequiredBandwidth() const {
    std::uint64_t total = 0;
    const auto channels = snapshot();
    for (const auto& [id, channel] : *channels) total += channel->getRequiredBandwidth();
    return total;
}

void PublishedChannels::deliverAuxFrequency(const std::function<void(const AuxFrequency&)>& store) const {
    if (const auto service = m_aux_service.lock()) {
        service->deliver(store);
    } else {
        store(std::nullopt);
    }
}

std::uint32_t nextChannelId(const ChannelMap& channels) {
    // Unsigned on purpose: the largest number is followed by 0.
    return channels.empty() ? 0 : channels.rbegin()->first + 1;
}

std::uint32_t freeChannelId(const ChannelMap& channels, std::uint32_t candidate) {
    while (candidate == zelt::IfDAQPlugin::kNoChannel || channels.count(candidate) != 0) ++candidate;
    return candidate;
}

}  // namespace zelt_gige_camera
