#include "frame_outlet.h"

#include "vimba_c.h"

namespace simulator {

void VendorFrameOutlet::deliver(void* owner, const FrameReport& report) {
    auto* frame = static_cast<VmbFrame_t*>(report.frame.memory.record);
    frame->receiveStatus = report.status;
    frame->receiveFlags =
        VmbFrameFlagsDimension | VmbFrameFlagsOffset | VmbFrameFlagsFrameID | VmbFrameFlagsTimestamp;
    frame->imageSize = report.imageSize;
    frame->ancillarySize = report.ancillarySize;
    frame->pixelFormat = report.shape.format;
    frame->width = report.shape.width;
    frame->height = report.shape.height;
    frame->offsetX = report.shape.offsetX;
    frame->offsetY = report.shape.offsetY;
    frame->frameID = report.id;
    frame->timestamp = report.ticks;
    if (report.frame.callback != nullptr) {
        reinterpret_cast<VmbFrameCallback>(report.frame.callback)(owner, frame);
    }
}

void VendorFrameOutlet::takeBack(void* record) {
    static_cast<VmbFrame_t*>(record)->buffer = nullptr;
}

}  // namespace simulator
