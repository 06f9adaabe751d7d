// Frame buffers, capture, and the callbacks of a capturing camera.
#include <atomic>
#include <limits>
#include <string_view>
#include <thread>

#include "assertion.h"
#include "interference.h"
#include "zelt_gige_vmb_api.h"
#include "zelt_gige_vmb_call.h"

namespace zelt_gige_api {
namespace {

constexpr const char* kStartEvent = "EventAcquisitionStart";
constexpr const char* kEndEvent = "EventAcquisitionEnd";

/// How often in a row a library may give a frame back within the call that queues it.
constexpr unsigned kMostReturns = 100;
/// How many captures that have ended keep their frames' records: some for each of the host's cameras.
constexpr std::size_t kMostReleased = 64;

void frameThunk(const VmbHandle_t handle, VmbFrame_t* frame) {
    atVendorBorder("frame", [=] { VimbaCameraApi::handleFrame(fromVmb(handle), frame); });
}

void cameraEventThunk(const VmbHandle_t handle, const char* name, void* context) {
    atVendorBorder("event",
                   [=] { static_cast<VimbaCameraApi*>(context)->handleCameraEvent(fromVmb(handle), name); });
}

/// A frame as announced to the library, and what its callback needs besides.
struct alignas(platform::kInterferenceSize) AnnouncedFrame : VmbFrame_t {
    AnnouncedFrame() : VmbFrame_t{} {}

    std::atomic<unsigned>* runningCallbacks = nullptr;
    // What was announced: the record itself is in the library's hands.
    void* pages = nullptr;
    VmbUint32_t size = 0;
    std::atomic<bool> released{false};
    std::atomic<std::thread::id> queuedBy{};  ///< the thread that is about to queue it
    std::atomic<bool> cameBack{false};        ///< to that thread, before it was through
};

/// Counts a frame's callback while it runs. Nothing is touched after the count went down: whoever waits for
/// it frees the memory next.
class RunningFrameCall {
  public:
    explicit RunningFrameCall(AnnouncedFrame& frame) : m_count(*frame.runningCallbacks) { ++m_count; }
    ~RunningFrameCall() { --m_count; }
    RunningFrameCall(const RunningFrameCall&) = delete;
    RunningFrameCall& operator=(const RunningFrameCall&) = delete;

  private:
    std::atomic<unsigned>& m_count;
};

void noteLeftOut(VmbUint64_t frameId) noexcept {
    try {
        GIGE_LOG(Error) << "The buffer of frame #" << frameId << " came back while it was queued, each of "
                        << kMostReturns << " times, and is left out";
    } catch (...) {
        // A log sink that throws must not take the vendor's thread down.
    }
}

/// Queues a frame, again when the library gives it back within that very call: a callback that queued it
/// itself would call itself without end.
void queueFrame(CameraHandle handle, AnnouncedFrame& frame) noexcept {
    const std::thread::id self = std::this_thread::get_id();
    // Without order among threads: a thread only looks for its own mark. Should it wipe out the next one's,
    // who has the frame by now, that one queues what comes back one call deeper.
    constexpr auto kOrder = std::memory_order_relaxed;
    if (frame.queuedBy.load(kOrder) == self) {
        frame.cameBack.store(true, kOrder);
        return;
    }
    for (unsigned turn = 0; turn < kMostReturns; ++turn) {
        frame.queuedBy.store(self, kOrder);
        VmbCaptureFrameQueue(toVmb(handle), &frame, &frameThunk);
        if (frame.queuedBy.load(kOrder) == self) frame.queuedBy.store({}, kOrder);
        // Taken by one thread alone.
        if (!frame.cameBack.load(kOrder) || !frame.cameBack.exchange(false)) return;
    }
    noteLeftOut(frame.frameID);
}

/// Gives the buffer back to the camera however the scope is left; a lost buffer never comes back.
class Requeue {
  public:
    Requeue(CameraHandle handle, AnnouncedFrame& frame) : m_handle(handle), m_frame(frame) {}
    ~Requeue() { queueFrame(m_handle, m_frame); }
    Requeue(const Requeue&) = delete;
    Requeue& operator=(const Requeue&) = delete;

  private:
    CameraHandle m_handle;
    AnnouncedFrame& m_frame;
};

/// Whether the picture lies within the buffer that was announced.
bool isInItsBuffer(const AnnouncedFrame& frame) {
    if (frame.buffer == frame.pages && frame.imageSize <= frame.size) return true;
    GIGE_LOG(Error) << "Frame #" << frame.frameID << " was dropped: its picture of " << frame.imageSize
                    << " bytes is not within its buffer of " << frame.size;
    return false;
}

CameraFrame toCameraFrame(const VmbFrame_t& record) {
    CameraFrame frame;
    frame.timestamp = record.timestamp;
    frame.frameid = record.frameID;
    frame.width = record.width;
    frame.height = record.height;
    frame.offsetX = record.offsetX;
    frame.offsetY = record.offsetY;
    frame.buffer = record.buffer;
    frame.imageSize = record.imageSize;
    return frame;
}

/// For tear-down, which must go on whatever the log's sinks do.
void logFailure(VmbError_t result, const char* prefix) noexcept {
    if (result == VmbErrorSuccess) return;
    try {
        GIGE_LOG(Warning) << prefix << errorText(result);
    } catch (...) {
    }
}

}  // namespace

/// A camera's announced frames. Stays in place until they are released.
struct VimbaCameraApi::Capture {
    std::vector<AnnouncedFrame> frames;
    /// Written with every frame, where no other camera writes.
    alignas(platform::kInterferenceSize) std::atomic<unsigned> runningCallbacks{0};
};

/// Finds the callback of a camera and holds off its removal while the call runs.
class VimbaCameraApi::RunningEventCall {
  public:
    RunningEventCall(VimbaCameraApi& api, CameraHandle handle) : m_api(api), m_handle(handle) {
        const platform::MutexLock lock(api.m_maps_mutex);
        const auto entry = api.m_camera_callbacks.find(handle);
        if (entry == api.m_camera_callbacks.end() || entry->second.callback == nullptr) return;
        m_callback = entry->second.callback;
        ++entry->second.runningCalls;
    }
    ~RunningEventCall() {
        if (m_callback == nullptr) return;
        const platform::MutexLock lock(m_api.m_maps_mutex);
        --m_api.m_camera_callbacks.at(m_handle).runningCalls;
        m_api.m_call_ended.notify_all();
    }
    RunningEventCall(const RunningEventCall&) = delete;
    RunningEventCall& operator=(const RunningEventCall&) = delete;

    IfCameraCallback* callback() const { return m_callback; }

  private:
    VimbaCameraApi& m_api;
    CameraHandle m_handle;
    IfCameraCallback* m_callback = nullptr;
};

void VimbaCameraApi::startCapture(CameraHandle handle, unsigned frameCount) {
    runCommand(handle, "GVSPAdjustPacketSize");
    for (const char* event : {"AcquisitionStart", "AcquisitionEnd"}) {
        setEnumFeature(handle, "EventSelector", event);
        setEnumFeature(handle, "EventNotification", "On");
    }
    registerEvent(handle, kStartEvent, "Cannot register the start event handler: ");
    registerEvent(handle, kEndEvent, "Cannot register the end event handler: ");
    try {
        announceFrames(handle, frameCount);
        check(VmbCaptureStart(toVmb(handle)), "VmbCaptureStart failed: ");
        queueFrames(handle);
    } catch (...) {
        releaseFramesLogged(handle);
        throw;
    }
}

void VimbaCameraApi::registerEvent(CameraHandle handle, const char* event, const char* failure) {
    const bool isLeft = [&] {
        const platform::MutexLock lock(m_maps_mutex);
        return m_registered_events.count({handle, event}) != 0;
    }();
    // One that could not be unregistered is in the library's hands yet, and must not be there twice.
    if (isLeft) unregisterEvent(handle, event);
    check(VmbFeatureInvalidationRegister(toVmb(handle), event, &cameraEventThunk, this), failure);
    const platform::MutexLock lock(m_maps_mutex);
    m_registered_events.emplace(handle, event);
}

void VimbaCameraApi::unregisterEvent(CameraHandle handle, const char* event) {
    if (VmbFeatureInvalidationUnregister(toVmb(handle), event, &cameraEventThunk) != VmbErrorSuccess) return;
    const platform::MutexLock lock(m_maps_mutex);
    m_registered_events.erase({handle, event});
}

void VimbaCameraApi::announceFrames(CameraHandle handle, unsigned frameCount) {
    const std::int64_t payload = getPayloadSize(handle);
    dropForgottenFrames(handle);
    Capture& capture = captureOf(handle);
    std::vector<AnnouncedFrame>& frames = capture.frames;
    frames = std::vector<AnnouncedFrame>(frameCount);
    const bool fits = payload > 0 && payload <= std::numeric_limits<VmbUint32_t>::max();
    for (AnnouncedFrame& frame : frames) {
        frame.context[0] = this;
        frame.runningCallbacks = &capture.runningCallbacks;
    }
    for (AnnouncedFrame& frame : frames) {
        ZELT_ASSERT(frame.buffer == nullptr);
        if (fits) frame.pages = m_pages.allocate(static_cast<std::size_t>(payload));
        if (frame.pages == nullptr) throw CameraApiError("Could not allocate frame memory.");
        frame.buffer = frame.pages;
        frame.bufferSize = frame.size = static_cast<VmbUint32_t>(payload);
        check(VmbFrameAnnounce(toVmb(handle), &frame, sizeof(VmbFrame_t)),
              "Could not announce frame buffer: ");
    }
}

/// Buffers of a capture that was never ended must be neither announced twice nor leaked.
void VimbaCameraApi::dropForgottenFrames(CameraHandle handle) {
    const std::vector<AnnouncedFrame>& frames = captureOf(handle).frames;
    ZELT_ASSERT(frames.empty());
    if (frames.empty()) return;
    endEngine(handle);
    releaseFramesLogged(handle);
}

void VimbaCameraApi::queueFrames(CameraHandle handle) {
    IfCameraCallback* const callback = findCameraCallback(handle);
    std::vector<AnnouncedFrame>& frames = captureOf(handle).frames;
    for (AnnouncedFrame& frame : frames) frame.context[1] = callback;
    for (AnnouncedFrame& frame : frames) queueFrame(handle, frame);
}

void VimbaCameraApi::endCapture(CameraHandle handle) {
    endEngine(handle);
    releaseFramesLogged(handle);
    unregisterEvent(handle, kStartEvent);
    unregisterEvent(handle, kEndEvent);
}

void VimbaCameraApi::endEngine(CameraHandle handle) {
    logFailure(VmbCaptureEnd(toVmb(handle)), "Cannot end capture: ");
    logFailure(VmbCaptureQueueFlush(toVmb(handle)), "Cannot flush the capture queue: ");
}

VimbaCameraApi::Capture& VimbaCameraApi::captureOf(CameraHandle handle) {
    const platform::MutexLock lock(m_maps_mutex);
    std::shared_ptr<Capture>& capture = m_captures[handle];
    if (capture == nullptr) capture = std::make_shared<Capture>();
    return *capture;
}

VmbError_t VimbaCameraApi::releaseFrames(CameraHandle handle) {
    const VmbError_t result = VmbFrameRevokeAll(toVmb(handle));
    const auto released = [&] {
        const platform::MutexLock lock(m_maps_mutex);
        return m_captures.extract(handle);
    }();
    if (released.empty()) return result;
    Capture& capture = *released.mapped();
    // The library promises neither that the end of capture waits for a callback that runs nor that none comes
    // afterwards.
    for (AnnouncedFrame& frame : capture.frames) frame.released = true;
    while (capture.runningCallbacks != 0) std::this_thread::yield();
    for (AnnouncedFrame& frame : capture.frames) {
        if (frame.pages != nullptr) m_pages.release(frame.pages, frame.size);
        frame.buffer = frame.pages = nullptr;
    }
    keepReleased(released.mapped());
    return result;
}

void VimbaCameraApi::keepReleased(std::shared_ptr<Capture> capture) {
    const platform::MutexLock lock(m_maps_mutex);
    m_released.push_back(std::move(capture));
    if (m_released.size() > kMostReleased) m_released.pop_front();
}

/// The library gives its handles out again.
void VimbaCameraApi::forgetClosed(CameraHandle handle) {
    const platform::MutexLock lock(m_maps_mutex);
    std::erase_if(m_registered_events, [=](const auto& entry) { return entry.first == handle; });
}

void VimbaCameraApi::releaseFramesLogged(CameraHandle handle) {
    logFailure(releaseFrames(handle), "Cannot deallocate buffers: ");
}

void VimbaCameraApi::handleFrame(CameraHandle handle, VmbFrame_t* frame) {
    if (frame == nullptr) return;
    auto& announced = static_cast<AnnouncedFrame&>(*frame);
    const RunningFrameCall running(announced);
    if (announced.released) return;
    const Requeue requeue(handle, announced);
    if (frame->receiveStatus != VmbFrameStatusComplete) return;
    ZELT_ASSERT(frame->receiveFlags & (VmbFrameFlagsFrameID | VmbFrameFlagsTimestamp));
    auto* const callback = static_cast<IfCameraCallback*>(frame->context[1]);
    if (callback != nullptr && isInItsBuffer(announced))
        callback->onFrameReceived(handle, toCameraFrame(*frame));
}

void VimbaCameraApi::handleCameraEvent(CameraHandle handle, const char* name) {
    const RunningEventCall call(*this, handle);
    if (call.callback() == nullptr || name == nullptr) return;
    const std::string_view event(name);
    const auto value = [&](const char* feature) {
        return static_cast<std::uint64_t>(getIntFeature(handle, feature));
    };
    if (event == kStartEvent) {
        const std::uint64_t timestamp = value("EventAcquisitionStartTimestamp");
        call.callback()->onAcquisitionStarted(handle, timestamp, value("EventAcquisitionStartFrameID"));
    } else if (event == kEndEvent) {
        const std::uint64_t timestamp = value("EventAcquisitionEndTimestamp");
        call.callback()->onAcquisitionEnded(handle, timestamp, value("EventAcquisitionEndFrameID"));
    }
}

}  // namespace zelt_gige_api
