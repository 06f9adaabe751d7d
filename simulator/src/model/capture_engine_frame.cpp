// What is in a frame: the picture, and the damage that it takes on its way.
#include <algorithm>
#include <cstring>

#include "capture_engine.h"

namespace simulator {
namespace {

constexpr std::int32_t kIncomplete = -1;
constexpr std::int32_t kTooSmall = -2;
/// Image bytes that a frame lacks whose damage was ordered.
constexpr std::uint64_t kOrderedGap = 1464;

std::uint64_t gap(std::uint64_t payload) {
    return std::min(payload, kOrderedGap);
}

}  // namespace

void CaptureEngine::draw(const Transfer& transfer) {
    const Exposure& exposure = transfer.exposure;
    const FrameMemory& memory = transfer.frame.memory;
    const std::uint64_t payload = exposure.shape.payload();
    FrameStamp stamp;
    stamp.frameId = exposure.id;
    stamp.cameraTicks = exposure.ticks;
    stamp.exposureStart = static_cast<std::uint64_t>(exposure.start);
    stamp.way = static_cast<std::uint64_t>(exposure.arrivedAt - exposure.start);
    stamp.width = exposure.shape.width;
    stamp.height = exposure.shape.height;
    if (memory.size >= payload + exposure.trailer) {
        m_picture.draw(exposure.shape, stamp, memory.buffer);
        if (exposure.trailer > 0) writeChunkTrailer(memory.buffer + payload, exposure.chunk);
        damage(exposure, memory.buffer);
    } else {
        m_scratch.resize(payload);
        m_picture.draw(exposure.shape, stamp, m_scratch.data());
        damage(exposure, m_scratch.data());
        std::memcpy(memory.buffer, m_scratch.data(), std::min<std::uint64_t>(memory.size, payload));
    }
}

void CaptureEngine::damage(const Exposure& exposure, std::uint8_t* image) {
    const std::uint64_t payload = exposure.shape.payload();
    if (exposure.fate.status != 0) {
        spoil(image + (payload - gap(payload)) / 2, gap(payload), exposure.id);
    } else if (exposure.tally.absent() > 0) {
        spoil(exposure.packets, image);
    }
}

FrameReport CaptureEngine::report(const Transfer& transfer) const {
    const Exposure& exposure = transfer.exposure;
    const std::uint64_t payload = exposure.shape.payload();
    FrameReport report;
    report.frame = transfer.frame;
    report.shape = exposure.shape;
    report.id = clientId(exposure.id);
    report.ticks = exposure.ticks;
    report.status = exposure.fate.status;
    if (report.status == 0 && exposure.tally.absent() > 0) report.status = kIncomplete;
    const std::uint64_t lacking = exposure.fate.status != 0 ? gap(payload) : exposure.tally.absentImage;
    report.imageSize = static_cast<std::uint32_t>(payload - lacking);
    if (transfer.frame.memory.size < payload + exposure.trailer) {
        if (report.status == 0) report.status = kTooSmall;
        report.imageSize = std::min(report.imageSize, transfer.frame.memory.size);
    }
    if (report.status == 0) report.ancillarySize = static_cast<std::uint32_t>(exposure.trailer);
    return report;
}

}  // namespace simulator
