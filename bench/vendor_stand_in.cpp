// Start and stop, the list of cameras, and the buffers.
#include "vendor_stand_in.h"

#include <algorithm>
#include <memory>

#include "vendor_stand_in_cameras.h"

namespace bench::vendor {
namespace {

constexpr std::uintptr_t kFirstHandle = 2;  // 1 is the library itself

thread_local std::uint64_t t_calls = 0;

struct Library {
    std::array<Camera, kMostCameras> cameras;
    std::array<std::array<char, 24>, kMostCameras> ids{};
    std::array<VmbCameraInfo_t, kMostCameras> records{};
    unsigned listed = 0;
};

void nameCamera(Library& library, unsigned camera) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    const std::string id = std::string("DEV_000F31C000") + kDigits[camera / 16] + kDigits[camera % 16];
    std::copy(id.begin(), id.end(), library.ids[camera].begin());
    library.records[camera] = {library.ids[camera].data(), "",    "Manta_G-032B", "50-0503200002",
                               VmbAccessModeFull,          "eth0"};
}

Library& library() {
    static const std::unique_ptr<Library> made = [] {
        auto fresh = std::make_unique<Library>();
        for (unsigned camera = 0; camera < kMostCameras; ++camera) nameCamera(*fresh, camera);
        return fresh;
    }();
    return *made;
}

}  // namespace

void countCall() {
    ++t_calls;
}

std::uint64_t calls() {
    return t_calls;
}

VmbHandle_t handleOf(unsigned camera) {
    return reinterpret_cast<VmbHandle_t>(kFirstHandle + camera);
}

Camera* cameraOf(VmbHandle_t handle) {
    const std::uintptr_t camera = reinterpret_cast<std::uintptr_t>(handle) - kFirstHandle;
    return camera < kMostCameras ? &library().cameras[camera] : nullptr;
}

void plug(unsigned cameras) {
    library().listed = std::min(cameras, kMostCameras);
}

const char* idOf(unsigned camera) {
    return library().ids[camera].data();
}

void setRegisterTime(unsigned camera, std::chrono::nanoseconds time) {
    library().cameras[camera].registerNs = time.count();
}

std::chrono::nanoseconds longestRegister(unsigned camera) {
    return std::chrono::nanoseconds(library().cameras[camera].longestRegisterNs);
}

namespace {

Buffer take(Camera& camera) {
    const std::lock_guard lock(camera.queueMutex);
    if (camera.queued == 0) return {};
    const Buffer next = camera.queue[camera.first];
    camera.first = (camera.first + 1) % Camera::kMostBuffers;
    --camera.queued;
    return next;
}

}  // namespace

Buffer fill(unsigned camera, const Delivery& frame) {
    const Buffer next = take(library().cameras[camera]);
    if (next.frame == nullptr) return {};
    next.frame->receiveStatus = VmbFrameStatusComplete;
    next.frame->receiveFlags = VmbFrameFlagsFrameID | VmbFrameFlagsTimestamp;
    next.frame->imageSize = next.frame->bufferSize;
    next.frame->frameID = frame.frameId;
    next.frame->timestamp = frame.ticks;
    return next;
}

void complete(unsigned camera, const Buffer& buffer) {
    buffer.callback(handleOf(camera), buffer.frame);
}

bool deliver(unsigned camera, const Delivery& frame) {
    const Buffer full = fill(camera, frame);
    if (full.frame == nullptr) return false;
    complete(camera, full);
    return true;
}

}  // namespace bench::vendor

using bench::vendor::cameraOf;
using bench::vendor::countCall;
using bench::vendor::library;

VmbError_t VmbVersionQuery(VmbVersionInfo_t* info, VmbUint32_t) {
    countCall();
    *info = {1, 9, 1};
    return VmbErrorSuccess;
}

VmbError_t VmbStartup() {
    countCall();
    return VmbErrorSuccess;
}

void VmbShutdown() {
    countCall();
}

VmbError_t VmbCamerasList(VmbCameraInfo_t* array, VmbUint32_t length, VmbUint32_t* found, VmbUint32_t) {
    countCall();
    *found = library().listed;
    if (array == nullptr) return VmbErrorSuccess;
    std::copy_n(library().records.begin(), std::min(length, library().listed), array);
    return length < library().listed ? VmbErrorMoreData : VmbErrorSuccess;
}

VmbError_t VmbCameraOpen(const char* id, VmbAccessMode_t, VmbHandle_t* handle) {
    countCall();
    for (unsigned camera = 0; camera < library().listed; ++camera) {
        if (std::string_view(bench::vendor::idOf(camera)) != id) continue;
        library().cameras[camera].features = bench::vendor::factorySettings();
        *handle = bench::vendor::handleOf(camera);
        return VmbErrorSuccess;
    }
    return VmbErrorNotFound;
}

VmbError_t VmbCameraClose(VmbHandle_t) {
    countCall();
    return VmbErrorSuccess;
}

VmbError_t VmbFrameAnnounce(VmbHandle_t, const VmbFrame_t*, VmbUint32_t) {
    countCall();
    return VmbErrorSuccess;
}

VmbError_t VmbFrameRevokeAll(VmbHandle_t) {
    countCall();
    return VmbErrorSuccess;
}

VmbError_t VmbCaptureStart(VmbHandle_t) {
    countCall();
    return VmbErrorSuccess;
}

VmbError_t VmbCaptureEnd(VmbHandle_t) {
    countCall();
    return VmbErrorSuccess;
}

VmbError_t VmbCaptureFrameQueue(VmbHandle_t handle, const VmbFrame_t* frame, VmbFrameCallback callback) {
    countCall();
    bench::vendor::Camera* const camera = cameraOf(handle);
    if (camera == nullptr) return VmbErrorBadHandle;
    const std::lock_guard lock(camera->queueMutex);
    if (camera->queued == bench::vendor::Camera::kMostBuffers) return VmbErrorResources;
    const unsigned last = (camera->first + camera->queued) % bench::vendor::Camera::kMostBuffers;
    // The vendor's signature is constant, its library writes all the same.
    camera->queue[last] = {const_cast<VmbFrame_t*>(frame), callback};
    ++camera->queued;
    return VmbErrorSuccess;
}

VmbError_t VmbCaptureQueueFlush(VmbHandle_t handle) {
    countCall();
    bench::vendor::Camera* const camera = cameraOf(handle);
    if (camera == nullptr) return VmbErrorBadHandle;
    const std::lock_guard lock(camera->queueMutex);
    camera->queued = 0;
    return VmbErrorSuccess;
}
