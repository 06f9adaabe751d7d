#include "zelt_gige_camera_channel_capture.h"

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
        m_api.endCapture(camera);
        m_running = false;
        throw;
    }
    m_api.endCapture(camera);
}

void CameraCapture::start(zelt_gige_api::CameraHandle camera) {
    m_api.startCapture(camera, kFrameBuffers);
    GIGE_LOG(Detail) << "Camera " << m_name << " started.";
}

void CameraCapture::stop(zelt_gige_api::CameraHandle camera) {
    GIGE_LOG(Debug) << "Camera " << m_name << " stopping...";
    if (!m_running.exchange(false)) {
        GIGE_LOG(Debug) << "Camera " << m_name << " has not been started.";
        return;
    }
    try {
        m_api.endCapture(camera);
        GIGE_LOG(Debug) << "Camera " << m_name << " stopped successfully.";
    } catch (const zelt_gige_api::CameraApiError&) {
        GIGE_LOG(Error) << "Camera " << m_name << " cannot be stopped.";
    }
}

}  // namespace zelt_gige_camera
