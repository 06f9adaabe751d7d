// Frames and capture.
#include "vendor_call.h"

using namespace simulator;

namespace {

FrameMemory memoryOf(const VmbFrame_t* frame) {
    // The interface takes records as pointers to const, yet it is the library that fills them.
    auto* record = const_cast<VmbFrame_t*>(frame);
    if (record == nullptr) return {};
    return {record, static_cast<std::uint8_t*>(record->buffer), record->bufferSize};
}

}  // namespace

VmbError_t VmbFrameAnnounce(const VmbHandle_t handle, const VmbFrame_t* frame, VmbUint32_t sizeofFrame) {
    return vendorCall("VmbFrameAnnounce", {handle, Argument(handle, frame), sizeofFrame}, {}, [&] {
        const bool usable = frame != nullptr && sizeofFrame != 0;
        return withCamera(handle, {usable, sizeofFrame == sizeof *frame}, [&](CameraSession& camera) {
            if (!camera.isAlive()) return Result::BadHandle;
            FrameMemory memory = memoryOf(frame);
            if (memory.size == 0) return Result::BadParameter;
            const Result announced = camera.announce(memory);
            if (announced == Result::Success) const_cast<VmbFrame_t*>(frame)->buffer = memory.buffer;
            return announced;
        });
    });
}

VmbError_t VmbFrameRevoke(const VmbHandle_t handle, const VmbFrame_t* frame) {
    return vendorCall("VmbFrameRevoke", {handle, Argument(handle, frame)}, {}, [&] {
        return withCamera(handle, {frame != nullptr},
                          [&](CameraSession& camera) { return camera.revoke(frame); });
    });
}

VmbError_t VmbFrameRevokeAll(const VmbHandle_t handle) {
    return vendorCall("VmbFrameRevokeAll", {handle}, {}, [&] {
        return withCamera(handle, {}, [](CameraSession& camera) { return camera.revokeAll(); });
    });
}

VmbError_t VmbCaptureStart(const VmbHandle_t handle) {
    return vendorCall("VmbCaptureStart", {handle}, {}, [&] {
        return withCamera(handle, {}, [](CameraSession& camera) { return camera.startCapture(); });
    });
}

VmbError_t VmbCaptureEnd(const VmbHandle_t handle) {
    return vendorCall("VmbCaptureEnd", {handle}, {}, [&] {
        reportWaitInCallback();
        return withCamera(handle, {}, [](CameraSession& camera) { return camera.endCapture(); });
    });
}

VmbError_t VmbCaptureFrameQueue(const VmbHandle_t handle, const VmbFrame_t* frame,
                                VmbFrameCallback callback) {
    return vendorCall("VmbCaptureFrameQueue", {handle, Argument(handle, frame)}, {}, [&] {
        return withCamera(handle, {}, [&](CameraSession& camera) {
            return camera.queue(memoryOf(frame), reinterpret_cast<OpaqueCallback>(callback));
        });
    });
}

VmbError_t VmbCaptureFrameWait(const VmbHandle_t handle, const VmbFrame_t* frame, VmbUint32_t timeout) {
    return vendorCall("VmbCaptureFrameWait", {handle, Argument(handle, frame), timeout}, {}, [&] {
        reportWaitInCallback();
        const Nanoseconds now = simulation().clock().now();
        const Nanoseconds end = timeout == VMBINFINITE ? kNever : now + timeout * kMillisecond;
        return withCamera(handle, {frame != nullptr},
                          [&](CameraSession& camera) { return camera.waitForFrame(frame, end); });
    });
}

VmbError_t VmbCaptureQueueFlush(const VmbHandle_t handle) {
    return vendorCall("VmbCaptureQueueFlush", {handle}, {}, [&] {
        return withCamera(handle, {}, [](CameraSession& camera) { return camera.flush(); });
    });
}
