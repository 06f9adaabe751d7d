// The lifecycle of a channel: open, prepare, start, stop, close.
#include "zelt_gige_camera_channel.h"

#include <algorithm>
#include <utility>

#include "assertion.h"
#include "config_keys.h"
#include "zelt_gige_camera_channel_bandwidth.h"
#include "zelt_gige_camera_channel_feature_reader.h"
#include "zelt_gige_camera_channel_feature_writer.h"
#include "zelt_gige_camera_channel_rows.h"
#include "zelt_gige_camera_channel_trigger_program.h"
#include "zelt_gige_clear_on_exit.h"
#include "zelt_gige_fixed_rate_clock_sync.h"
#include "zelt_gige_log.h"
#include "zelt_gige_triggered_clock_sync.h"

namespace zelt_gige_camera {
namespace {

using zelt_gige_api::CameraApiError;
using zelt_gige_api::CameraHandle;

constexpr CameraHandle kNoCamera = 0;

/// The host's values that could not be written, since their features could not be read.
bool hasUnreadablePending(const ChannelState& state) {
    const auto waits = [&state](const auto& row) {
        return contains(state.pending, row.setting) && (state.*row.value).presence == Presence::Unreadable;
    };
    return std::any_of(numberRows().begin(), numberRows().end(), waits) ||
           std::any_of(autoRows().begin(), autoRows().end(), waits);
}

/// A camera that is opened again may have other features than before.
void forgetAbsence(ChannelState& state) {
    for (const NumberRow& row : numberRows()) (state.*row.value).presence = Presence::Present;
    for (const AutoRow& row : autoRows()) (state.*row.value).presence = Presence::Present;
}

}  // namespace

CameraHandle CameraChannel::deviceHandle() {
    const platform::MutexLock lock(m_state.mutex);
    return m_device_handle;
}

void CameraChannel::open() {
    CameraHandle handle = kNoCamera;
    // Before the call, so that a camera that vanishes during it is not taken for connected afterwards.
    m_connected = true;
    try {
        handle = m_api->openCamera(m_identity.cameraId);
    } catch (const CameraApiError& error) {
        m_connected = false;
        throw report({std::string("Cannot open camera: ") + error.what(), "Cannot open camera '%1': %2",
                      error.what()});
    }
    ChannelNews news;
    try {
        GIGE_LOG(Detail) << "Camera " << m_identity.name << " opened successfully.";
        configureOpened(handle, news);
    } catch (const CameraApiError& error) {
        abandon(handle);
        tell(news);
        throw report(notConfigured(kCannotConfigure, error));
    } catch (...) {
        abandon(handle);
        throw;
    }
    tell(news);
}

/// Closes a camera that could not be configured; the reason for it is the failure to report.
void CameraChannel::abandon(CameraHandle handle) noexcept {
    m_connected = false;
    {
        const platform::MutexLock lock(m_state.mutex);
        m_device_handle = kNoCamera;
    }
    try {
        m_api->closeCamera(handle);
    } catch (...) {
    }
}

void CameraChannel::configureOpened(CameraHandle handle, ChannelNews& news) {
    {
        const platform::MutexLock lock(m_state.mutex);
        m_device_handle = handle;
        m_left_acquiring = false;
        forgetAbsence(m_state.values);
        updateCaches(news);
        dumpFeatures(*m_api, handle);
        ChannelWork at = work(news);
        readConfiguration(at, m_identity.name);
        m_state.values.configurationPending = true;
        updateBandwidth();
    }
    m_api->registerCameraCallback(handle, this);
}

ChannelWork CameraChannel::work(ChannelNews& news) {
    return {*m_api, m_device_handle, m_state.values, news};
}

void CameraChannel::updateCaches(ChannelNews& news) {
    ChannelWork at = work(news);
    try {
        readCache(at);
    } catch (const CameraApiError& error) {
        GIGE_LOG(Error) << "Cannot update cache of camera. Error:" << error.what();
    }
    try {
        readDomainCache(at);
    } catch (const CameraApiError& error) {
        GIGE_LOG(Error) << "Cannot update domain cache of camera. Error:" << error.what();
    }
    updateBandwidth();
}

void CameraChannel::openAgainIfNeeded() {
    if (deviceHandle() != kNoCamera && !m_connected) {
        // The handle died with the camera; the one that came back needs a new one, and may have lost what the
        // host had set.
        retire();
        const platform::MutexLock lock(m_state.mutex);
        m_state.values.pending |= m_state.values.chosen;
    }
    if (deviceHandle() == kNoCamera) open();
}

bool CameraChannel::prepareAndStartCapture() {
    if (!m_used) return true;
    openAgainIfNeeded();
    abortWhatWasLeftRunning();
    m_owner->deliverAuxFrequency([this](const AuxFrequency& frequency) { storeAuxFrequency(frequency); });
    ChannelNews news;
    const bool configured = configure(news);
    tell(news);
    return configured && startCapture();
}

/// A camera that still acquires, since a command to it failed, takes no new configuration.
void CameraChannel::abortWhatWasLeftRunning() {
    if (!m_left_acquiring) return;
    try {
        m_api->runCommand(deviceHandle(), "AcquisitionAbort");
        m_left_acquiring = false;
    } catch (const CameraApiError&) {
        // The configuration will fail on it and tell.
    }
}

bool CameraChannel::configure(ChannelNews& news) {
    const platform::MutexLock lock(m_state.mutex);
    try {
        return applyConfiguration(news);
    } catch (const CameraApiError& error) {
        checkWhatWasDone(news);
        news.add(notConfigured(kCannotConfigure, error));
        return false;
    }
}

bool CameraChannel::applyConfiguration(ChannelNews& news) {
    const bool pending = m_state.values.configurationPending;
    if (pending) applyPending(news);
    m_api->setAcquisitionMode(m_device_handle, "Continuous");
    writeBandwidthShare();
    updateCaches(news);
    const int code = validate(news);
    news.changed(config_keys::kValid);
    // A limit that is exceeded is the host's to decide on; without triggers there is nothing to record.
    if (code == ValidationCode::kNoAuxFrequency) return false;
    if (!pending) {
        limitExposure(news);
        return true;
    }
    if (!programTrigger(news)) return false;
    ChannelWork at = work(news);
    if (writeExposureAndGain(at)) exposureLimited(news);
    writeColours(at);
    // What could not be read in time to be written with the rest.
    writePendingValues(at);
    m_state.values.configurationPending = hasUnreadablePending(m_state.values);
    track(news);
    // By now the camera has made its own of the rate and the exposure.
    revalidate(news);
    return true;
}

void CameraChannel::applyPending(ChannelNews& news) {
    ChannelWork at = work(news);
    chooseMissingFormat(at);
    // Another format may have other settings.
    if (writePendingFormat(at)) updateCaches(news);
    writePendingGeometry(at);
    writePendingValues(at);
    updateBandwidth();
}

void CameraChannel::writeBandwidthShare() {
    const std::int64_t share = bandwidthShare(m_required_bandwidth, m_owner->getTotalRequiredBandwidth());
    if (share <= 0) return;
    m_api->setEnumFeature(m_device_handle, "BandwidthControlMode", "StreamBytesPerSecond");
    m_api->setIntFeature(m_device_handle, "StreamBytesPerSecond", share);
    m_state.values.streamBytesPerSecond = share;
    updateBandwidth();
    m_api->setBoolFeature(m_device_handle, "StreamFrameRateConstrain", true);
}

bool CameraChannel::programTrigger(ChannelNews& news) {
    ChannelState& state = m_state.values;
    const bool isAux = state.triggerModeIsAux;
    try {
        if (isAux) {
            programAux(*m_api, m_device_handle);
        } else if (const double effective = programFixedRate(*m_api, m_device_handle, state.frameRate.value);
                   effective != state.frameRate.value) {
            state.frameRate.value = effective;
            news.changed(config_keys::kSampleRate);
        }
    } catch (const CameraApiError& error) {
        news.add(notConfigured(isAux ? "Cannot configure AUX triggered mode. Error: "
                                     : "Cannot configure fixed framerate mode. Error: ",
                               error));
        return false;
    }
    erase(state.pending, Setting::TriggerMode);
    if (!isAux) erase(state.pending, Setting::FrameRate);
    updateBandwidth();
    return true;
}

bool CameraChannel::startCapture() {
    const CameraHandle handle = deviceHandle();
    if (handle == kNoCamera) return false;
    GIGE_LOG(Detail) << "Camera " << m_identity.name << " starting...";
    try {
        m_capture.claim(handle, [this] { setAcquisitionStarted(false); });
        ZELT_ASSERT(m_acquisition_started.exchange(false, std::memory_order_release) == false);
        {
            const platform::MutexLock lock(m_state.mutex);
            m_api->runCommand(handle, "GevTimestampControlReset");
            m_receiver.reset();
        }
        m_capture.start(handle);
        if (setCaptureFailed(false)) notifyChanged(config_keys::kValid);
        return true;
    } catch (const CameraApiError& error) {
        setCaptureFailed(true);
        report({"Camera " + m_identity.name + " cannot start: " + error.what(), "Cannot start camera %1"});
        notifyChanged(config_keys::kValid);
        return false;
    }
}

bool CameraChannel::setCaptureFailed(bool failed) {
    const platform::MutexLock lock(m_state.mutex);
    return std::exchange(m_state.values.captureFailed, failed) != failed;
}

void CameraChannel::startAcquisition() {
    if (!m_used) return;
    try {
        requirePrepared();
        GIGE_LOG(Detail) << "Camera " << m_identity.name << " starting acquisition...";
        beginAcquisition();
        m_left_acquiring = true;
        m_api->acquisitionStart(deviceHandle());
        m_left_acquiring = false;
    } catch (const CameraApiError& error) {
        {
            const platform::MutexLock lock(m_state.mutex);
            m_receiver.stop();
        }
        throw report({std::string("Cannot start acquisition of camera %1:") + error.what(),
                      "Cannot start acquisition of camera %1"});
    }
}

void CameraChannel::requirePrepared() {
    const platform::MutexLock lock(m_state.mutex);
    ZELT_ASSERT_AS(m_receiver.hasMasterClock(), "m_master_clock");
    if (!m_receiver.hasMasterClock()) throw CameraApiError("The host has set no master clock");
    ChannelState& state = m_state.values;
    const bool needsFrequency = state.triggerModeIsAux && !state.auxFrequency;
    ZELT_ASSERT_AS(!needsFrequency, "m_aux_clock_frequency");
    if (needsFrequency) throw CameraApiError("The host has set no Sync Out AUX frequency");
    if (m_device_handle == kNoCamera || !m_capture.isRunning()) {
        throw CameraApiError("The camera is not prepared");
    }
}

void CameraChannel::beginAcquisition() {
    const platform::MutexLock lock(m_state.mutex);
    ChannelState& state = m_state.values;
    const Rational frequency(state.tickFrequency);
    const auto rate = static_cast<double>(state.tickFrequency);
    std::unique_ptr<ClockSyncBase> generator;
    if (state.triggerModeIsAux && state.auxFrequency) {
        generator = std::make_unique<TriggeredClockSync>(frequency, rate, *state.auxFrequency);
    } else {
        generator = std::make_unique<FixedRateClockSync>(frequency, rate);
    }
    m_receiver.begin(std::move(generator));
}

void CameraChannel::stopAcquisition() {
    const platform::MutexLock lock(m_state.mutex);
    const ClearOnExit clear(m_acquisition_started);
    if (m_device_handle != kNoCamera && m_capture.isRunning()) {
        m_left_acquiring = true;
        m_api->acquisitionStop(m_device_handle);
        m_left_acquiring = false;
    }
    GIGE_LOG(Debug) << "Acquisition stopped for camera " << m_identity.name;
}

void CameraChannel::stopCapture() {
    m_capture.stop(deviceHandle());
    // No frame comes any more, whether the camera told of the end or not.
    const platform::MutexLock lock(m_state.mutex);
    m_receiver.stop();
}

void CameraChannel::close() noexcept {
    ZELT_ASSERT_AS(m_acquisition_started.load(std::memory_order_relaxed) == false,
                   "m_acquisition_started.load_relaxed() == false",
                   "The camera must be stopped before closing it");
    if (deviceHandle() == kNoCamera) return;
    // Each step on its own: whatever one of them throws, a log sink included, the camera must not stay open
    // with this channel as its callback.
    bool closed = true;
    const auto attempt = [&closed](auto&& step) {
        try {
            step();
        } catch (...) {
            closed = false;
        }
    };
    endStreaming();
    const CameraHandle handle = [this] {
        const platform::MutexLock lock(m_state.mutex);
        return std::exchange(m_device_handle, kNoCamera);
    }();
    attempt([&] { m_api->unregisterCameraCallback(handle); });
    attempt([&] { m_api->closeCamera(handle); });
    attempt([&] {
        if (closed) {
            GIGE_LOG(Debug) << "Camera " << m_identity.name << " closed.";
        } else {
            GIGE_LOG(Error) << "Cannot close camera " << m_identity.name;
        }
    });
}

void CameraChannel::endStreaming() noexcept {
    if (!m_capture.isRunning()) return;
    try {
        const platform::MutexLock lock(m_state.mutex);
        m_api->acquisitionStop(m_device_handle);
    } catch (...) {
        // Capture is ended next, which stops whatever still comes.
    }
    try {
        stopCapture();
    } catch (...) {
        // Only a log line can fail, and capture is ended before it is written.
    }
}

void CameraChannel::retire() noexcept {
    m_acquisition_started = false;
    close();
}

}  // namespace zelt_gige_camera
