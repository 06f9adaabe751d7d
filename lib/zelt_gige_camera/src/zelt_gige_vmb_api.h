/// The camera API over the vendor's C library `VimbaC`.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mutex.h"
#include "pages.h"
#include "vimba_c.h"
#include "zelt_gige_camera_api.h"
#include "zelt_gige_vmb_discovery_function.h"

namespace zelt_gige_api {

/// The one implementation of CameraApi. Starts and stops the process-wide vendor library itself, so at most
/// one object should be started at a time unless the vendor's library counts its start-ups.
///
/// Callbacks come on the library's threads; what they throw is logged and goes no further. The destructor
/// stops the library but frees no frame memory: endCapture or closeCamera must have run for every camera.
class VimbaCameraApi final : public CameraApi {
  public:
    /// `pages` provides the frame buffers and must outlive this object.
    explicit VimbaCameraApi(platform::PageAllocator& pages = platform::systemPages());
    ~VimbaCameraApi() override;
    VimbaCameraApi(const VimbaCameraApi&) = delete;
    VimbaCameraApi& operator=(const VimbaCameraApi&) = delete;

    bool startup() override;
    void shutdown() override;
    std::string getVersion() override;
    bool isGigeTransportLayerPresent() override;
    void registerDiscoveryCallback(IfDiscoveryCallback* callback) override;
    void unregisterDiscoveryCallback() override;
    void registerCameraCallback(CameraHandle handle, IfCameraCallback* callback) override;
    void unregisterCameraCallback(CameraHandle handle) override;
    std::vector<CameraInfo> listCameras() override;
    CameraHandle openCamera(const std::string& cameraId) override;
    void closeCamera(CameraHandle handle) override;
    void startCapture(CameraHandle handle, unsigned frameCount) override;
    void endCapture(CameraHandle handle) override;
    void runCommand(CameraHandle handle, const char* name) override;
    std::vector<FeatureInfo> listFeatures(CameraHandle handle) override;
    FeatureType getFeatureType(CameraHandle handle, const char* name) override;
    std::string getEnumFeature(CameraHandle handle, const char* name) override;
    void setEnumFeature(CameraHandle handle, const char* name, const std::string& entry) override;
    std::vector<std::string> getEnumFeatureRange(CameraHandle handle, const char* name) override;
    double getFloatFeature(CameraHandle handle, const char* name) override;
    void setFloatFeature(CameraHandle handle, const char* name, double value) override;
    FloatRange getFloatFeatureRange(CameraHandle handle, const char* name) override;
    std::int64_t getIntFeature(CameraHandle handle, const char* name) override;
    void setIntFeature(CameraHandle handle, const char* name, std::int64_t value) override;
    IntRange getIntFeatureRange(CameraHandle handle, const char* name) override;
    bool getBoolFeature(CameraHandle handle, const char* name) override;
    void setBoolFeature(CameraHandle handle, const char* name, bool value) override;
    std::string getStringFeature(CameraHandle handle, const char* name) override;
    std::shared_ptr<const std::vector<CameraInfo>> currentCameras() override;

    /// What the library's callbacks do, step by step; they catch nothing. The functions registered with the
    /// library wrap them.
    void handleDiscoveryEvent(CameraHandle handle, const char* name);
    void handleCameraEvent(CameraHandle handle, const char* name);
    static void handleFrame(CameraHandle handle, VmbFrame_t* frame);

  private:
    /// A registered callback; one that is being removed has lost its pointer but not yet its running calls.
    struct CameraCallback {
        IfCameraCallback* callback = nullptr;
        unsigned runningCalls = 0;
    };
    class RunningEventCall;
    struct Capture;
    struct ListedCameras;

    void announceFrames(CameraHandle handle, unsigned frameCount);
    void dropForgottenFrames(CameraHandle handle);
    void queueFrames(CameraHandle handle);
    void endEngine(CameraHandle handle);
    Capture& captureOf(CameraHandle handle);
    VmbError_t releaseFrames(CameraHandle handle);
    void releaseFramesLogged(CameraHandle handle);
    void keepReleased(std::shared_ptr<Capture> capture);
    IfCameraCallback* findCameraCallback(CameraHandle handle);
    void registerEvent(CameraHandle handle, const char* event, const char* failure);
    void unregisterEvent(CameraHandle handle, const char* event);
    void forgetClosed(CameraHandle handle);

    platform::PageAllocator& m_pages;
    platform::Mutex m_session_mutex;  ///< held while the library is started or stopped
    std::atomic<bool> m_started{false};
    std::atomic<IfDiscoveryCallback*> m_discovery_callback{nullptr};
    std::atomic<std::uint64_t> m_discovery_events{0};  ///< of cameras that came, went or changed

    platform::Mutex m_list_mutex;  ///< leaf lock around the last list, held across no call
    std::shared_ptr<const ListedCameras> m_listed ZELT_GUARDED_BY(m_list_mutex);

    platform::Mutex m_maps_mutex;  ///< leaf lock around the maps' own operations, held across no call
    std::condition_variable_any m_call_ended;
    std::map<CameraHandle, CameraCallback> m_camera_callbacks ZELT_GUARDED_BY(m_maps_mutex);
    std::map<CameraHandle, std::shared_ptr<Capture>> m_captures ZELT_GUARDED_BY(m_maps_mutex);
    /// Events of cameras that the library has a handler of.
    std::set<std::pair<CameraHandle, std::string>> m_registered_events ZELT_GUARDED_BY(m_maps_mutex);
    std::set<CameraHandle> m_open_cameras ZELT_GUARDED_BY(m_maps_mutex);
    /// The latest ones, without their buffers: a callback that comes too late finds its frame released.
    std::deque<std::shared_ptr<Capture>> m_released ZELT_GUARDED_BY(m_maps_mutex);
    DiscoveryFunction m_discovery_function;  ///< last, so that it goes before what its calls use
};

}  // namespace zelt_gige_api
