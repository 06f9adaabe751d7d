// Construction of a channel, its dealings with the host, and the camera's callbacks.
#include <limits>
#include <optional>
#include <thread>
#include <utility>

#include "assertion.h"
#include "zelt_gige_camera_channel.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

constexpr const char* kMessageSource = "ZELT_GIGE_CAMERA";

/// Model and serial number, so that messages about two cameras of one model can be told apart.
std::string cameraName(const zelt_gige_api::CameraInfo& camera) {
    if (camera.modelName.empty() && camera.serialNumber.empty()) return camera.cameraId;
    if (camera.serialNumber.empty()) return camera.modelName;
    return camera.modelName + " (" + camera.serialNumber + ")";
}

ChannelIdentity identityOf(channel_config::ChannelID id, const zelt_gige_api::CameraInfo& camera) {
    return {id, camera.cameraId, cameraName(camera),
            camera.vendor + "/" + camera.modelName + "/" + camera.serialNumber};
}

}  // namespace

CameraChannel::CameraChannel(channel_config::ChannelID id, const zelt_gige_api::CameraInfo& camera,
                             std::shared_ptr<IfChannelOwner> owner,
                             std::shared_ptr<zelt_gige_api::CameraApi> api, std::uint64_t hostValue,
                             platform::PerformanceCounter& counter)
    : m_identity(identityOf(id, camera)),
      m_owner(std::move(owner)),
      m_api(std::move(api)),
      m_host_value(hostValue),
      m_counter(counter),
      m_capture(*m_api, m_identity.name),
      m_receiver(counter),
      m_clock_rate(std::numeric_limits<double>::quiet_NaN()) {
    GIGE_LOG(Detail) << "Initializing camera '" << m_identity.name << "' with path '" << m_identity.path
                     << "'";
    const SettingActions actions{
        [this](Setting setting, const SettingValue& value) { return set(setting, value); },
        [this](Setting setting) { return runOnce(setting); }, [this] { usedChanged(); }};
    for (auto& option : makeChannelOptions(m_identity, m_state, m_used, actions)) {
        addOption(std::move(option));
    }
    try {
        open();
    } catch (const exception_manager::Exception&) {
        // Reported. One camera that is busy must not hide the others; prepare tries again.
    }
}

CameraChannel::~CameraChannel() {
    retire();
}

void CameraChannel::setAcquisitionStarted(bool started) {
    const platform::MutexLock lock(m_state.mutex);
    m_acquisition_started = started;
}

bool CameraChannel::isAcquiring() const {
    return m_acquisition_started || m_receiver.isRunning();
}

void CameraChannel::createFrameCounters() {
    if (!FrameCounters::isPossible(m_identity.id.second)) {
        GIGE_LOG(Warning) << "Camera " << m_identity.name << " gets no frame counters: its channel id "
                          << m_identity.id.second << " does not fit 16 bits";
        return;
    }
    m_frame_counters = std::make_shared<FrameCounters>(m_identity, m_used);
    const platform::MutexLock lock(m_state.mutex);
    m_receiver.setCounters(m_frame_counters);
}

std::span<const SubChannel> CameraChannel::getSubChannels() const {
    if (m_frame_counters == nullptr) return {};
    return m_frame_counters->subChannels();
}

void CameraChannel::setSink(std::uint32_t channelId, zelt::IfChannelSink* sink) {
    const platform::MutexLock lock(m_state.mutex);
    if (channelId == m_identity.id.second) m_receiver.setSink(sink);
    if (m_frame_counters != nullptr) m_frame_counters->setSink(channelId, sink);
}

void CameraChannel::clearSinks() {
    const platform::MutexLock lock(m_state.mutex);
    m_receiver.setSink(nullptr);
    if (m_frame_counters != nullptr) m_frame_counters->clearSinks();
}

void CameraChannel::setMasterClock(std::shared_ptr<zelt::IfMasterClock> clock) {
    const platform::MutexLock lock(m_state.mutex);
    m_clock_rate = clock != nullptr ? clock->getRate() : std::numeric_limits<double>::quiet_NaN();
    m_receiver.setMasterClock(std::move(clock));
}

void CameraChannel::onDisconnected() noexcept {
    m_connected = false;
    try {
        report({{}, "Camera %1 is no longer connected"});
    } catch (...) {
        // Nobody on the discovery thread could do anything about it.
    }
}

void CameraChannel::onAcquisitionStarted(zelt_gige_api::CameraHandle handle, std::uint64_t timestamp,
                                         std::uint64_t frameid) {
    GIGE_LOG(Detail) << "Camera " << m_identity.name << " received onAcquisitionStarted at " << timestamp
                     << " with frame #" << frameid;
    const platform::MutexLock lock(m_state.mutex);
    ZELT_ASSERT_AS(handle == m_device_handle, "handle == m_device_handle", "handle !=m_device_handle");
    m_receiver.setReference(timestamp, frameid);
}

void CameraChannel::onAcquisitionEnded(zelt_gige_api::CameraHandle, std::uint64_t timestamp, std::uint64_t) {
    GIGE_LOG(Debug) << "Camera " << m_identity.name << " received onAcquisitionEnded at " << timestamp;
    const platform::MutexLock lock(m_state.mutex);
    m_receiver.stop();
}

void CameraChannel::onFrameReceived(zelt_gige_api::CameraHandle, const zelt_gige_api::CameraFrame& frame) {
    try {
        std::optional<std::int64_t> arrived;
        // A frame that does not wait needs no clock.
        const platform::MutexLock lock(m_state.mutex, [&] {
            m_frame_waits = true;
            arrived = m_counter.now();
        });
        if (arrived) m_frame_waits = false;
        m_receiver.receive(frame, arrived);
    } catch (const std::exception& error) {
        GIGE_LOG(Error) << "Camera " << m_identity.name << " lost frame #" << frame.frameid << ": "
                        << error.what();
    } catch (...) {
        GIGE_LOG(Error) << "Camera " << m_identity.name << " lost frame #" << frame.frameid;
    }
}

void CameraChannel::letFramePass() const {
    while (m_frame_waits) std::this_thread::yield();
}

bool CameraChannel::getLastMessage(exception_manager::Exception& out) {
    return m_messages.getLast(out);
}

void CameraChannel::setMessageListener(MessageListener listener) {
    m_messages.setListener(std::move(listener));
}

exception_manager::Exception CameraChannel::report(const ChannelMessage& message) {
    if (!message.logLine.empty()) GIGE_LOG(Error) << message.logLine;
    GIGE_LOG(Error) << message.text;
    exception_manager::Exception exception(0, message.text, kMessageSource);
    if (message.named) exception.addArgument("Camera Name", m_identity.name);
    if (!message.detail.empty()) exception.addArgument("Exception Argument", message.detail);
    m_messages.post(exception);
    return exception;
}

void CameraChannel::tell(const ChannelNews& news) {
    for (const ChannelMessage& message : news.messages()) report(message);
    refreshAvailableKeys();
    for (const std::string& key : news.keys()) notifyChanged(key);
}

}  // namespace zelt_gige_camera
