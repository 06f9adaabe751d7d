#include "zelt_gige_camera_channel_capture.h"

#include <exception>

#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

/// Enough for a host thread to be late by four frames.
constexpr unsigned kFrameBuffers = 5;

}  // namespace

void CameraCapture::claim(zelt_gige_api::CameraHandle camera, const std::function<void()>& beforeRestart) {
    if (!m_running.exchange(true)) return;
    GIGE_LOG(Warning) << "Camera " << m_name << " already starting, initiate restart...";
    beforeRestart();
    try {
        m_api.runCommand(camera, "AcquisitionAbort");
    } catch (const zelt_gige_api::CameraApiError&) {
        m_running = false;
        m_api.endCapture(camera);
        throw;
    }
    m_api.endCapture(camera);
}

void CameraCapture::start(zelt_gige_api::CameraHandle camera) {
    m_api.startCapture(camera, kFrameBuffers);
    GIGE_LOG(Detail) << "Camera " << m_name << " started.";
}

void CameraCapture::stop(zelt_gige_api::CameraHandle camera) {
    const bool wasRunning = m_running.exchange(false);
    // Ended even when a log sink throws: the camera would go on to call a channel that may be dying.
    bool ended = true;
    std::exception_ptr logFailure;
    try {
        GIGE_LOG(Debug) << "Camera " << m_name << " stopping...";
    } catch (...) {
        logFailure = std::current_exception();
    }
    if (wasRunning) {
        try {
            m_api.endCapture(camera);
        } catch (const zelt_gige_api::CameraApiError&) {
            ended = false;
        }
    }
    if (logFailure) std::rethrow_exception(logFailure);
    if (!wasRunning) {
        GIGE_LOG(Debug) << "Camera " << m_name << " has not been started.";
    } else if (ended) {
        GIGE_LOG(Debug) << "Camera " << m_name << " stopped successfully.";
    } else {
        GIGE_LOG(Error) << "Camera " << m_name << " cannot be stopped.";
    }
}

}  // namespace zelt_gige_camera
