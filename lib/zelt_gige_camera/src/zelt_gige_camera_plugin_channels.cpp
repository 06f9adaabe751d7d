// What the plug-in passes on to its channels.
#include <limits>
#include <utility>

#include "trace_scope.h"
#include "zelt_gige_camera_plugin.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

/// Visits every channel; the first exception is kept for the end, so that one camera that fails does not
/// leave the others as they were.
template <typename Visit>
std::exception_ptr visitAll(const ChannelMap& channels, Visit&& visit) {
    std::exception_ptr first;
    for (const auto& [id, channel] : channels) {
        try {
            visit(*channel);
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    return first;
}

}  // namespace

std::shared_ptr<channel_config::IfChannelConfig> CameraPlugin::findChannel(std::uint32_t channelId) {
    for (const auto& [id, channel] : m_channels) {
        if (id == channelId) return channel;
        for (const SubChannel& sub : channel->getSubChannels()) {
            if (sub.id == channelId) return sub.channel;
        }
    }
    return nullptr;
}

void CameraPlugin::setChannelSink(std::uint32_t channelId, zelt::IfChannelSink* sink) {
    const platform::MutexLock lock(m_mutex);
    for (const auto& [id, channel] : m_channels) channel->setSink(channelId, sink);
}

void CameraPlugin::clearChannelSinks() {
    const platform::MutexLock lock(m_mutex);
    for (const auto& [id, channel] : m_channels) channel->clearSinks();
}

std::set<std::uint32_t> CameraPlugin::getChannelIds() {
    const platform::MutexLock lock(m_mutex);
    std::set<std::uint32_t> ids;
    for (const auto& [id, channel] : m_channels) {
        ids.insert(id);
        for (const SubChannel& sub : channel->getSubChannels()) ids.insert(sub.id);
    }
    return ids;
}

std::uint32_t CameraPlugin::findChannelId(const std::string& key) {
    const auto channels = m_published->snapshot();
    for (const auto& [id, channel] : *channels) {
        if (channel->getCameraId() == key) return id;
        for (const SubChannel& sub : channel->getSubChannels()) {
            if (sub.key == key) return sub.id;
        }
    }
    return kNoChannel;
}

bool CameraPlugin::prepareAcquisition() {
    const diagnostics::TraceScope trace(diagnostics::unilogger_zelt_plugin_gige_camera(),
                                        "CameraPlugin::prepareAcquisition()");
    const platform::MutexLock lock(m_mutex);
    // All of them first: each one's share of the link depends on the others' rates.
    const auto channels = m_published->snapshot();
    m_sync_aux_service->deliver([&](const AuxFrequency& frequency) {
        for (const auto& [id, channel] : *channels) channel->storeAuxFrequency(frequency);
    });
    bool prepared = true;
    const std::exception_ptr failure = visitAll(m_channels, [&](CameraChannel& channel) {
        // Not short-circuited: every channel is prepared, also after one that failed.
        prepared = channel.prepareAndStartCapture() && prepared;
    });
    if (failure) std::rethrow_exception(failure);
    return prepared;
}

bool CameraPlugin::isAcquiring() {
    return m_acquiring;
}

bool CameraPlugin::isReadyForAcquisition() {
    if (!m_initialized) return false;
    bool ready = true;
    const auto channels = m_published->snapshot();
    for (const auto& [id, channel] : *channels) {
        // Lenient on purpose: a camera that is away does not keep the others from recording.
        ready = ready && (!channel->isUsed() || channel->isConnected() || isSupported());
    }
    return ready;
}

bool CameraPlugin::startAcquisition() {
    if (!m_initialized) return false;
    const platform::MutexLock lock(m_mutex);
    std::vector<std::shared_ptr<CameraChannel>> started;
    try {
        for (const auto& [id, channel] : m_channels) {
            channel->startAcquisition();
            if (channel->isUsed()) started.push_back(channel);
        }
    } catch (...) {
        undoStart(started);
        m_acquiring = false;
        throw;
    }
    m_acquiring = true;
    return true;
}

/// stopAcquisition would not reach the channels after a start that failed, so they are brought back here.
void CameraPlugin::undoStart(const std::vector<std::shared_ptr<CameraChannel>>& started) {
    for (const auto& channel : started) {
        try {
            channel->stopAcquisition();
        } catch (...) {
            // The failure of the start is the one to report.
        }
    }
    // The failure of the start is the one to report, here as well.
    visitAll(m_channels, [](CameraChannel& channel) {
        channel.setAcquisitionStarted(false);
        channel.stopCapture();
    });
}

bool CameraPlugin::stopAcquisition() {
    if (!m_initialized) return false;
    if (!m_acquiring.exchange(false)) return true;
    const platform::MutexLock lock(m_mutex);
    const std::exception_ptr failure = stopChannels();
    if (failure) std::rethrow_exception(failure);
    return true;
}

std::exception_ptr CameraPlugin::stopChannels() {
    const auto first = visitAll(m_channels, [](CameraChannel& channel) { channel.stopAcquisition(); });
    const auto second = visitAll(m_channels, [](CameraChannel& channel) { channel.stopCapture(); });
    return first ? first : second;
}

bool CameraPlugin::onAcquisitionPrepared() {
    const platform::MutexLock lock(m_mutex);
    for (const auto& [id, channel] : m_channels) channel->setAcquisitionStarted(true);
    return true;
}

bool CameraPlugin::onAcquisitionFinished() {
    const platform::MutexLock lock(m_mutex);
    for (const auto& [id, channel] : m_channels) channel->setAcquisitionStarted(false);
    return true;
}

bool CameraPlugin::processAcquisition() {
    if (!m_initialized) return false;
    const platform::MutexLock lock(m_mutex);
    if (!m_acquiring) return true;
    const double now = m_wall_clock.now();
    for (const auto& [id, channel] : m_channels) channel->pollAutomaticValues(now);
    return true;
}

std::shared_ptr<channel_config::IfChannelConfig> CameraPlugin::getChannelConfig(std::uint32_t channelId) {
    if (channelId == kNoChannel) return nullptr;
    const platform::MutexLock lock(m_mutex);
    return findChannel(channelId);
}

void CameraPlugin::setSharedAcquisitionObject(std::shared_ptr<zelt::IfMasterClock> clock) {
    const platform::MutexLock lock(m_mutex);
    for (const auto& [id, channel] : m_channels) channel->setMasterClock(clock);
    m_master_clock = std::move(clock);
}

bool CameraPlugin::checkChannelSettings(const std::vector<std::uint32_t>& channelIds, bool) {
    if (!m_initialized) return false;
    const platform::MutexLock lock(m_mutex);
    bool valid = true;
    for (const std::uint32_t id : channelIds) {
        const auto camera = m_channels.find(id);
        // A counter has no setting that could be wrong.
        const bool isRight =
            camera != m_channels.end() ? camera->second->checkSettings() : findChannel(id) != nullptr;
        // Not short-circuited: every channel tells what is wrong with it.
        valid = isRight && valid;
    }
    return valid;
}

std::shared_ptr<channel_config::IfChannelConfig> CameraPlugin::getChannel(std::uint32_t channelId) {
    const platform::MutexLock lock(m_mutex);
    return findChannel(channelId);
}

double CameraPlugin::getNominalRate() {
    return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace zelt_gige_camera
