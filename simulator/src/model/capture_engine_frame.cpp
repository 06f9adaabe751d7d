// What is in a frame: the picture, and the damage that it takes on its way.
#include <algorithm>
#include <cstring>

#include "capture_engine.h"

namespace simulator {
namespace {

constexpr std::int32_t kTooSmall = -2;
/// Image bytes of a lost packet.
constexpr std::uint64_t kPacket = 1464;

std::uint64_t gap(std::uint64_t payload) {
    return std::min(payload, kPacket);
}

// The bytes of a packet that did not come are whatever was there.
void damage(std::uint8_t* bytes, std::uint64_t count, std::uint64_t seed) {
    for (std::uint64_t i = 0; i < count; ++i) {
        seed = seed * 6'364'136'223'846'793'005U + 1'442'695'040'888'963'407U;
        bytes[i] = static_cast<std::uint8_t>(seed >> 56);
    }
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
    stamp.way = static_cast<std::uint64_t>(exposure.dueAt - exposure.start);
    stamp.width = exposure.shape.width;
    stamp.height = exposure.shape.height;
    if (memory.size >= payload + exposure.trailer) {
        m_picture.draw(exposure.shape, stamp, memory.buffer);
        if (exposure.trailer > 0) writeChunkTrailer(memory.buffer + payload, exposure.chunk);
        if (exposure.fate.status != 0) {
            damage(memory.buffer + (payload - gap(payload)) / 2, gap(payload), exposure.id);
        }
    } else {
        m_scratch.resize(payload);
        m_picture.draw(exposure.shape, stamp, m_scratch.data());
        std::memcpy(memory.buffer, m_scratch.data(), std::min<std::uint64_t>(memory.size, payload));
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
    report.imageSize = static_cast<std::uint32_t>(report.status == 0 ? payload : payload - gap(payload));
    if (transfer.frame.memory.size < payload + exposure.trailer) {
        if (report.status == 0) report.status = kTooSmall;
        report.imageSize = std::min(report.imageSize, transfer.frame.memory.size);
    }
    if (report.status == 0) report.ancillarySize = static_cast<std::uint32_t>(exposure.trailer);
    return report;
}

}  // namespace simulator
