/// One camera as the host sees it.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "clocks.h"
#include "if_channel_messages.h"
#include "interference.h"
#include "zelt_gige_camera_api.h"
#include "zelt_gige_camera_channel_capture.h"
#include "zelt_gige_camera_channel_frame_receiver.h"
#include "zelt_gige_camera_channel_messages.h"
#include "zelt_gige_camera_channel_settings.h"
#include "zelt_gige_camera_channel_work.h"
#include "zelt_gige_channel_owner.h"
#include "zeltpu_simple_channel_config.h"

namespace zelt_gige_camera {

/// A camera's settings, its lifecycle from open to close, and the reception of its frames: a façade over the
/// zelt_gige_camera_channel_... pieces, and the only holder of the channel's mutex.
///
/// The mutex guards the state, every feature access and the delivery of frames. It is not held over calls
/// that may wait for a camera callback (open, close, start and end of capture, start and abort of the
/// acquisition), nor while the host is told of a change or a message.
///
/// States: closed; open; capturing (after prepareAndStartCapture); acquiring (after startAcquisition). A
/// camera that vanished stays in its state until it is stopped and closed.
class CameraChannel final : public zelt::plugin_util::SimpleChannelConfig,
                            public zelt_gige_api::IfCameraCallback,
                            public zelt::IfChannelMessages {
  public:
    /// Opens the camera; when that fails, the failure is reported and the channel stays closed. `hostValue`
    /// is the host's and not interpreted. `counter` must outlive the channel.
    CameraChannel(channel_config::ChannelID id, const zelt_gige_api::CameraInfo& camera,
                  std::shared_ptr<IfChannelOwner> owner, std::shared_ptr<zelt_gige_api::CameraApi> api,
                  std::uint64_t hostValue,
                  platform::PerformanceCounter& counter = platform::systemPerformanceCounter());
    ~CameraChannel() override;

    const std::string& getCameraId() const { return m_identity.cameraId; }
    bool isUsed() const { return m_used; }
    bool isConnected() const { return m_connected; }
    /// Bytes per second; 0 when not used. [any thread] Takes no lock.
    std::uint64_t getRequiredBandwidth() const { return m_required_bandwidth; }

    /// [host] Opens the camera if need be, configures it and starts capture. True for a channel that is not
    /// used. Throws exception_manager::Exception when the camera cannot be opened; any other failure is
    /// reported and gives false.
    bool prepareAndStartCapture();
    /// [host] Starts the acquisition of a prepared camera. Nothing happens in a channel that is not used.
    /// Throws exception_manager::Exception.
    void startAcquisition();
    /// [host] Stops the camera's acquisition; capture goes on. Throws CameraApiError.
    void stopAcquisition();
    /// [host] Ends capture, if it runs.
    void stopCapture();
    /// [host] Closes the camera, if it is open, whatever state it is in. Never throws.
    void close() noexcept;
    /// [host] Closes for good: the channel leaves the plug-in, even in the middle of an acquisition.
    void retire() noexcept;
    /// [host] The host's acquisition was prepared (true) or has finished (false).
    void setAcquisitionStarted(bool started);
    /// [host] Brings in what the camera's automatic functions have changed, if the camera is acquiring and
    /// was not asked for more than a second. `now`: wall clock, seconds. Never throws.
    void pollAutomaticValues(double now) noexcept;
    /// [host] Whether the settings can work; what is wrong is reported.
    bool checkSettings();

    /// [host] Keeps the frequency of the host's trigger output; empty for none.
    void storeAuxFrequency(const AuxFrequency& frequency);
    /// [host] The frequency has changed: the settings are checked anew. Called under the AUX service's mutex;
    /// never throws.
    void onSyncOutAuxFrequencyChanged(const AuxFrequency& frequency) noexcept;

    /// Gives the camera its frame counters, or says in the log that it cannot have any. To be called before
    /// the channel is shared, at most once.
    void createFrameCounters();
    /// The counters, none for a camera without. [any thread] They do not change while the channel is shared.
    std::span<const SubChannel> getSubChannels() const;

    /// [host] The receiver of this channel's samples, or of its counter's with that id; of no other. The sink
    /// is not owned; null for none. After this returned, the old one is not called again.
    void setSink(std::uint32_t channelId, zelt::IfChannelSink* sink);
    /// [host] Drops the sinks of this channel and of its counters, likewise.
    void clearSinks();
    /// [host] The host's time base, empty for none.
    void setMasterClock(std::shared_ptr<zelt::IfMasterClock> clock);
    /// [discovery] The camera is gone. Takes neither the plug-in's nor the channel's mutex.
    void onDisconnected() noexcept;

    void onAcquisitionStarted(zelt_gige_api::CameraHandle handle, std::uint64_t timestamp,
                              std::uint64_t frameid) override;
    void onAcquisitionEnded(zelt_gige_api::CameraHandle handle, std::uint64_t timestamp,
                            std::uint64_t frameid) override;
    void onFrameReceived(zelt_gige_api::CameraHandle handle,
                         const zelt_gige_api::CameraFrame& frame) override;

    bool getLastMessage(exception_manager::Exception& out) override;
    void setMessageListener(MessageListener listener) override;

  private:
    // Opening and preparing.
    void open();
    void configureOpened(zelt_gige_api::CameraHandle handle, ChannelNews& news);
    void abandon(zelt_gige_api::CameraHandle handle) noexcept;
    void openAgainIfNeeded();
    void abortWhatWasLeftRunning();
    bool configure(ChannelNews& news);
    bool applyConfiguration(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    void applyPending(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    void writeBandwidthShare() ZELT_REQUIRES(m_state.mutex);
    bool programTrigger(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    bool startCapture();
    /// True when that is news.
    bool setCaptureFailed(bool failed);
    void requirePrepared();
    void beginAcquisition();
    void endStreaming() noexcept;

    // Changes of settings.
    bool set(Setting setting, const SettingValue& value);
    bool runOnce(Setting setting);
    void usedChanged();
    /// Until a frame that waits has the channel's mutex. Without it, settings that follow each other at once
    /// would keep the frame out: who has just let go of a mutex is the first to take it again.
    void letFramePass() const;
    /// Does something that locks for itself and tells the host; what it throws is reported, and false then.
    bool change(const std::function<bool(ChannelNews&)>& what);
    bool apply(Setting setting, const SettingValue& value, ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    bool applyNumber(Setting setting, double wanted, ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    bool applyGeometry(Setting setting, double wanted, ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    bool applyExposure(double wanted, ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    bool applyFrameRate(double wanted, ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    bool applyFrameFormat(const std::string& wanted, ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    bool applyTriggerMode(const std::string& wanted, ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    bool applyAutomatic(Setting setting, const std::string& entry, ChannelNews& news)
        ZELT_REQUIRES(m_state.mutex);

    // What follows from a change.
    ChannelWork work(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    void updateCaches(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    void updateBandwidth() ZELT_REQUIRES(m_state.mutex);
    int validate(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    /// Where nothing else says that "Valid" may have changed.
    void revalidate(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    /// After a failure: a part of the change may have been made.
    void checkWhatWasDone(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    /// True when the exposure changed, which was validated then.
    bool limitExposure(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    void exposureLimited(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    /// A limit that cannot be written becomes news, after a log line if there is a prefix for one.
    void limitAndValidate(ChannelNews& news, const char* logPrefix = "") ZELT_REQUIRES(m_state.mutex);
    bool isPollDue(double now) ZELT_REQUIRES(m_state.mutex);
    void track(ChannelNews& news) ZELT_REQUIRES(m_state.mutex);
    bool isAcquiring() const ZELT_REQUIRES(m_state.mutex);

    // Telling the host; no lock may be held.
    zelt_gige_api::CameraHandle deviceHandle();
    exception_manager::Exception report(const ChannelMessage& message);
    void tell(const ChannelNews& news);

    const ChannelIdentity m_identity;
    const std::shared_ptr<IfChannelOwner> m_owner;
    const std::shared_ptr<zelt_gige_api::CameraApi> m_api;
    [[maybe_unused]] const std::uint64_t m_host_value;  ///< kept for the host, which alone knows its meaning
    platform::PerformanceCounter& m_counter;

    std::atomic<bool> m_used{true};
    std::atomic<bool> m_connected{false};
    std::atomic<bool> m_acquisition_started{false};
    /// The camera may acquire although the host's acquisition has ended.
    std::atomic<bool> m_left_acquiring{false};
    std::atomic<bool> m_frame_waits{false};
    std::atomic<std::uint64_t> m_required_bandwidth{0};
    std::shared_ptr<FrameCounters> m_frame_counters;  ///< set before the channel is shared
    CameraCapture m_capture;
    ChannelMessages m_messages;

    alignas(platform::kInterferenceSize) GuardedState m_state;  ///< with what follows, written by frames
    zelt_gige_api::CameraHandle m_device_handle ZELT_GUARDED_BY(m_state.mutex) = 0;
    FrameReceiver m_receiver ZELT_GUARDED_BY(m_state.mutex);
    double m_last_poll ZELT_GUARDED_BY(m_state.mutex) = 0.0;  ///< wall clock, seconds
    /// Kept as the host gave it; no computation uses it, since a tick counts as a unit until the fit takes
    /// over.
    double m_clock_rate ZELT_GUARDED_BY(m_state.mutex);
};

}  // namespace zelt_gige_camera
