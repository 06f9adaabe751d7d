// The lifecycle of a channel: open, prepare, start, stop, close.
#include "zelt_gige_camera_channel.h"

#include <utility>

#include "assertion.h"
#include "config_keys.h"
#include "zelt_gige_camera_channel_bandwidth.h"
#include "zelt_gige_camera_channel_feature_reader.h"
#include "zelt_gige_camera_channel_trigger_program.h"
#include "zelt_gige_clear_on_exit.h"
#include "zelt_gige_fixed_rate_clock_sync.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

using zelt_gige_api::CameraApiError;
using zelt_gige_api::CameraHandle;

constexpr const char* kSourcePath = "lib/zelt_gige_camera/src/zelt_gige_camera_channel";
constexpr CameraHandle kNoCamera = 0;
constexpr const char* kCannotConfigure = "Cannot configure the camera. Error: ";

}  // namespace

CameraHandle CameraChannel::deviceHandle() {
    const platform::MutexLock lock(m_state.mutex);
    return m_device_handle;
}

bool CameraChannel::reportNotConfigured(const char* logPrefix, const std::string& detail) {
    GIGE_LOG(Error) << logPrefix << detail;
    report("Cannot configure camera '%1': %2", detail);
    return false;
}

void CameraChannel::open() {
    CameraHandle handle = kNoCamera;
    // Before the call, so that a camera that vanishes during it is not taken for connected afterwards.
    m_connected = true;
    try {
        handle = m_api->openCamera(m_identity.cameraId);
    } catch (const CameraApiError& error) {
        m_connected = false;
        GIGE_LOG(Error) << "Cannot open camera: " << error.what();
        throw report("Cannot open camera '%1': %2", error.what());
    }
    Keys changed;
    try {
        GIGE_LOG(Detail) << "Camera " << m_identity.name << " opened successfully.";
        configureOpened(handle, changed);
    } catch (const CameraApiError& error) {
        abandon(handle);
        GIGE_LOG(Error) << kCannotConfigure << error.what();
        throw report("Cannot configure camera '%1': %2", error.what());
    } catch (...) {
        abandon(handle);
        throw;
    }
    notify(changed);
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

void CameraChannel::configureOpened(CameraHandle handle, Keys& changed) {
    {
        const platform::MutexLock lock(m_state.mutex);
        m_device_handle = handle;
        updateCaches(changed);
        dumpFeatures(*m_api, handle);
        readConfiguration(*m_api, handle, m_identity.name, m_state.values);
        m_state.values.configurationPending = true;
        updateBandwidth();
    }
    m_api->registerCameraCallback(handle, this);
}

void CameraChannel::updateCaches(Keys& changed) {
    try {
        const Keys keys = readCaches(*m_api, m_device_handle, m_state.values);
        changed.insert(changed.end(), keys.begin(), keys.end());
        updateBandwidth();
    } catch (const CameraApiError& error) {
        GIGE_LOG(Error) << "Cannot update cache of camera. Error:" << error.what();
    }
}

void CameraChannel::openAgainIfNeeded() {
    if (deviceHandle() != kNoCamera && !m_connected) {
        // The handle died with the camera; the one that came back needs a new one.
        retire();
    }
    if (deviceHandle() == kNoCamera) open();
}

bool CameraChannel::prepareAndStartCapture() {
    if (!m_used) return true;
    openAgainIfNeeded();
    Keys changed;
    bool pending = false;
    try {
        const platform::MutexLock lock(m_state.mutex);
        if (m_state.values.triggerModeIsAux) {
            throw CameraApiError("The camera is set to external trigger, which this version cannot record");
        }
        applyConfiguration(changed);
        pending = m_state.values.configurationPending;
    } catch (const CameraApiError& error) {
        return reportNotConfigured(kCannotConfigure, error.what());
    }
    changed.emplace_back(config_keys::kValid);
    notify(changed);
    if (!pending) return startCapture();
    Keys effective;
    if (!programTrigger(effective)) return false;
    notify(effective);
    return startCapture();
}

void CameraChannel::applyConfiguration(Keys& changed) {
    if (m_state.values.configurationPending) writePendingFormat();
    m_api->setAcquisitionMode(m_device_handle, "Continuous");
    writeBandwidthShare();
    updateCaches(changed);
}

void CameraChannel::writePendingFormat() {
    ChannelState& state = m_state.values;
    if (!state.formatPending) return;
    if (m_api->getEnumFeature(m_device_handle, "PixelFormat") != state.pixelFormat) {
        m_api->setPixelFormat(m_device_handle, state.pixelFormat);
    }
    state.formatPending = false;
}

void CameraChannel::writeBandwidthShare() {
    const std::int64_t share = bandwidthShare(m_required_bandwidth, m_owner->getTotalRequiredBandwidth());
    if (share <= 0) return;
    m_api->setEnumFeature(m_device_handle, "BandwidthControlMode", "StreamBytesPerSecond");
    m_api->setIntFeature(m_device_handle, "StreamBytesPerSecond", share);
    m_api->setBoolFeature(m_device_handle, "StreamFrameRateConstrain", true);
}

bool CameraChannel::programTrigger(Keys& changed) {
    try {
        const platform::MutexLock lock(m_state.mutex);
        ChannelState& state = m_state.values;
        const double effective = programFixedRate(*m_api, m_device_handle, state.frameRate);
        if (effective != state.frameRate) {
            state.frameRate = effective;
            changed.emplace_back(config_keys::kSampleRate);
        }
        state.configurationPending = false;
        updateBandwidth();
        return true;
    } catch (const CameraApiError& error) {
        return reportNotConfigured("Cannot configure fixed framerate mode. Error: ", error.what());
    }
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
        if (setCaptureFailed(false)) notify({config_keys::kValid});
        return true;
    } catch (const CameraApiError& error) {
        GIGE_LOG(Error) << "Camera " << m_identity.name << " cannot start: " << error.what();
        setCaptureFailed(true);
        report("Cannot start camera %1");
        notify({config_keys::kValid});
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
        m_api->acquisitionStart(deviceHandle());
    } catch (const CameraApiError& error) {
        {
            const platform::MutexLock lock(m_state.mutex);
            m_receiver.stop();
        }
        GIGE_LOG(Error) << "Cannot start acquisition of camera %1:" << error.what();
        throw report("Cannot start acquisition of camera %1");
    }
}

void CameraChannel::requirePrepared() {
    const platform::MutexLock lock(m_state.mutex);
    ZELT_ASSERT_AS(m_receiver.hasMasterClock(), "m_master_clock", kSourcePath);
    if (!m_receiver.hasMasterClock()) throw CameraApiError("The host has set no master clock");
    if (m_device_handle == kNoCamera || !m_capture.isRunning()) {
        throw CameraApiError("The camera is not prepared");
    }
}

void CameraChannel::beginAcquisition() {
    const platform::MutexLock lock(m_state.mutex);
    const std::int64_t frequency = m_state.values.tickFrequency;
    m_receiver.begin(
        std::make_unique<FixedRateClockSync>(Rational(frequency), static_cast<double>(frequency)));
}

void CameraChannel::stopAcquisition() {
    const platform::MutexLock lock(m_state.mutex);
    const ClearOnExit clear(m_acquisition_started);
    if (m_device_handle != kNoCamera && m_capture.isRunning()) m_api->acquisitionStop(m_device_handle);
    GIGE_LOG(Debug) << "Acquisition stopped for camera " << m_identity.name;
}

void CameraChannel::stopCapture() {
    m_capture.stop(deviceHandle());
}

void CameraChannel::close() noexcept {
    ZELT_ASSERT_AS(m_acquisition_started.load(std::memory_order_relaxed) == false,
                   "m_acquisition_started.load_relaxed() == false", kSourcePath,
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
