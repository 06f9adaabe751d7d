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
    send(exposure);
    m_linkFreeAt = exposure.sentAt;
    m_lastSent = exposure.id;
    if (exposure.fate.lost) return;
    const Nanoseconds requests = exposure.tally.rounds * kRequestRound;
    exposure.arrivedAt = m_arrivedAt = std::max(exposure.sentAt + requests, m_arrivedAt);
    exposure.dueAt = m_dueAt = std::max(exposure.arrivedAt + exposure.packets.lateness(), m_dueAt);
}

void CaptureEngine::send(Exposure& exposure) {
    FramePackets& packets = exposure.packets;
    packets.stream = m_camera.stream();
    packets.seed = noise(m_camera.clock().seed() ^ kNetworkDraws, exposure.id);
    packets.image = exposure.shape.payload();
    packets.trailer = exposure.trailer;
    exposure.sentAt = exposure.transferAt + exposure.transfer;
    if (exposure.transferAt < m_goneUntil && exposure.sentAt > m_goneSince) {
        exposure.fate.lost = true;
        return;
    }
    const Passage passage = m_surroundings.link->pass(
        {exposure.transferAt, exposure.transfer, packets.stream.packet, packets.wireBytes()});
    packets.link = passage.link;
    packets.overflow = passage.overflow;
    exposure.sentAt = passage.end;
    weigh(exposure);
}

void CaptureEngine::cut(Nanoseconds until) {
    catchUpWithNetwork();
    const Nanoseconds now = m_clock.now();
    if (m_goneUntil <= now) m_goneSince = now;
    m_goneUntil = std::max(m_goneUntil, until);
    for (std::size_t i = 0; i < m_bookedCount; ++i) {
        if (inFlight(i).sentAt > now) inFlight(i).fate.lost = true;
    }
    if (m_transfer && m_transfer->exposure.sentAt > now) giveUpTransfer(Withdrawal::PutBack);
    m_changed.notify();
    progress();
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
