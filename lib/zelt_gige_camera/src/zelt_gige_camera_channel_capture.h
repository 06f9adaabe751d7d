/// Capture of one camera: whether it runs, and the log lines that tell of it.
#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "zelt_gige_camera_api.h"

namespace zelt_gige_camera {

/// [host] No lock may be held around start, restart and stop: they wait for the camera's callbacks.
class CameraCapture {
  public:
    /// Both must outlive the object.
    CameraCapture(zelt_gige_api::CameraApi& api, const std::string& cameraName)
        : m_api(api), m_name(cameraName) {}

    bool isRunning() const { return m_running.load(); }

    /// Marks capture as running. If it ran already: calls `beforeRestart`, aborts the camera's acquisition
    /// and ends the old capture first; throws CameraApiError when the abort fails, and capture is ended then.
    void claim(zelt_gige_api::CameraHandle camera, const std::function<void()>& beforeRestart);
    /// Starts what claim has marked. Throws CameraApiError; the mark stays, since event handlers may be left
    /// registered until capture is stopped.
    void start(zelt_gige_api::CameraHandle camera);
    /// Ends capture if it runs.
    void stop(zelt_gige_api::CameraHandle camera);

  private:
    zelt_gige_api::CameraApi& m_api;
    const std::string& m_name;
    std::atomic<bool> m_running{false};
};

}  // namespace zelt_gige_camera
