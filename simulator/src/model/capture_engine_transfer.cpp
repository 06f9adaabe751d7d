// A frame's way from the camera's memory to the client's callback.
#include <algorithm>

#include "capture_engine.h"
#include "noise.h"

namespace simulator {
namespace {

/// Keeps a camera's random numbers of the network apart from those of its clock.
constexpr std::uint64_t kNetworkDraws = 0x6E65'7477'6F72'6BU;

}  // namespace

std::size_t CaptureEngine::memoryFrames() const {
    return std::min(kInFlight, static_cast<std::size_t>(m_camera.row().memoryFrames));
}

bool CaptureEngine::isMemoryFull() const {
    return m_inFlightCount - m_bookedCount >= memoryFrames() || m_inFlightCount == kInFlight;
}

void CaptureEngine::dropInFlight() {
    m_inFlightCount = 0;
    m_bookedCount = 0;
}

CaptureEngine::Exposure& CaptureEngine::inFlight(std::size_t index) {
    return m_inFlight[(m_firstInFlight + index) % kInFlight];
}

const CaptureEngine::Exposure& CaptureEngine::inFlight(std::size_t index) const {
    return m_inFlight[(m_firstInFlight + index) % kInFlight];
}

std::optional<Nanoseconds> CaptureEngine::nextBooking() const {
    if (m_bookedCount == m_inFlightCount || m_camera.sensor().holdsStream) return std::nullopt;
    return std::max(inFlight(m_bookedCount).readyAt, m_linkFreeAt);
}

void CaptureEngine::book(Nanoseconds begin) {
    Exposure& exposure = inFlight(m_bookedCount++);
    exposure.transferAt = begin;
    exposure.arrivedAt = exposure.transferAt + exposure.transfer;
    m_linkFreeAt = exposure.arrivedAt;
    m_lastSent = exposure.id;
    FramePackets& packets = exposure.packets;
    packets.stream = m_camera.stream();
    packets.link = m_surroundings.link->row();
    packets.seed = noise(m_camera.clock().seed() ^ kNetworkDraws, exposure.id);
    packets.image = exposure.shape.payload();
    packets.trailer = exposure.trailer;
    weigh(exposure);
    exposure.arrivedAt = m_arrivedAt =
        std::max(exposure.arrivedAt + exposure.tally.rounds * kRequestRound, m_arrivedAt);
    exposure.dueAt = exposure.arrivedAt;
}

void CaptureEngine::weigh(Exposure& exposure) {
    if (exposure.fate.status != 0) {
        // Ordered damage comes instead of what the link does.
        exposure.tally = {};
        exposure.tally.sent = static_cast<std::int64_t>(exposure.packets.count());
        exposure.tally.missed = 1;
        return;
    }
    exposure.tally = tally(exposure.packets);
    // Packets that are too large are lost alone: the small ones around the picture still announce the frame.
    if (exposure.packets.passes() && exposure.tally.received() == 0) exposure.fate.lost = true;
}

void CaptureEngine::beginTransfer(Lock& lock) {
    const Exposure exposure = inFlight(0);
    m_firstInFlight = (m_firstInFlight + 1) % kInFlight;
    --m_inFlightCount;
    --m_bookedCount;
    if (!m_capturing || exposure.capture != m_captures || exposure.fate.lost) return;
    Transfer transfer;
    transfer.exposure = exposure;
    if (!m_queue.take(exposure.transferAt, transfer.frame)) {
        m_camera.count("StatFrameUnderrun");
        return;
    }
    if (!isAccessible(transfer.frame.memory)) {
        m_surroundings.misuses.add(kBufferGone, m_camera.row().id);
        progress();
        return;
    }
    m_transfer = transfer;
    ++m_transfers;
    lock.unlock();
    draw(transfer);
    lock.lock();
    m_transfer->stage = Stage::Ready;
    if (m_transfer->withdrawal != Withdrawal::None) giveUpTransfer(m_transfer->withdrawal);
    progress();
}

void CaptureEngine::deliver(Lock& lock) {
    m_transfer->stage = Stage::Calling;
    const FrameReport frame = report(*m_transfer);
    m_camera.noteFrame(frame.ticks, m_clock.now(), m_transfer->exposure.tally, frame.status == 0);
    m_queue.markFilled(frame.frame.memory.record);
    for (FrameWaiter* waiter : m_frameWaiters) {
        if (waiter->record == frame.frame.memory.record) waiter->filled = true;
    }
    lock.unlock();
    m_surroundings.outlet.deliver(m_owner, frame);
    lock.lock();
    if (frame.frame.callback != nullptr) ++m_callbacks;
    m_transfer.reset();
    progress();
}

}  // namespace simulator
