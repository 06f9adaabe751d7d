// The thread of an open camera: what is due, one step after the other.
#include <algorithm>

#include "capture_engine.h"

namespace simulator {

void CaptureEngine::run() {
    enterOwnThread();
    Lock lock(m_camera.mutex());
    while (!m_quit) {
        finishIfDone();
        watchLine();
        const auto action = next();
        if (!action) {
            m_changed.rest(lock);
        } else if (action->at > m_clock.now()) {
            // What clients measure is the time of the callback; the other steps have their times computed.
            if (action->step == Step::Deliver) {
                m_changed.waitPrecisely(lock, action->at);
            } else {
                m_changed.waitUntil(lock, action->at);
            }
        } else {
            step(lock, *action);
        }
    }
}

std::optional<CaptureEngine::Next> CaptureEngine::nextOfSensor() const {
    std::optional<Next> first;
    const auto consider = [&](Nanoseconds at, Step step) {
        if (!first || at < first->at) first = {at, step};
    };
    if (m_watchingLine) {
        if (const auto edge = m_line.next()) consider(edge->at, Step::Edge);
    }
    if (m_agenda.nextTrigger() != kNever) consider(m_agenda.nextTrigger(), Step::Trigger);
    if (const auto start = m_agenda.next(m_camera.sensor(), m_camera.clock())) consider(*start, Step::Expose);
    return first;
}

std::optional<CaptureEngine::Next> CaptureEngine::next() const {
    std::optional<Next> first = nextOfSensor();
    const auto consider = [&](Nanoseconds at, Step step) {
        // Before an exposure of the same time: a frame that leaves makes room in the camera's memory.
        if (!first || at < first->at || (at == first->at && first->step == Step::Expose)) first = {at, step};
    };
    if (m_transfer) {
        if (m_listener.isStartAnnounced()) consider(m_transfer->exposure.dueAt, Step::Deliver);
    } else if (m_inFlightCount > 0 && !m_camera.sensor().holdsStream) {
        consider(m_inFlight[m_firstInFlight].transferAt, Step::Transfer);
    }
    return first;
}

void CaptureEngine::catchUp() {
    const Nanoseconds now = m_clock.now();
    for (auto due = nextOfSensor(); due && due->at <= now; due = nextOfSensor()) stepSensor(*due);
}

void CaptureEngine::step(Lock& lock, const Next& next) {
    switch (next.step) {
        case Step::Deliver:
            deliver(lock);
            break;
        case Step::Transfer:
            beginTransfer(lock);
            break;
        default:
            stepSensor(next);
            break;
    }
}

void CaptureEngine::stepSensor(const Next& next) {
    if (next.step == Step::Edge) takeEdge(next.at);
    if (next.step == Step::Trigger) m_agenda.takeTrigger(m_camera.sensor(), m_camera.clock());
    if (next.step == Step::Expose) expose(next.at);
}

void CaptureEngine::watchLine() {
    const SensorSettings& settings = m_camera.sensor();
    const bool triggers = m_agenda.state() != ExposureAgenda::State::Idle &&
                          settings.trigger == TriggerKind::External && settings.isLine1;
    const bool reports =
        m_camera.notifies(CameraEvent::Line1RisingEdge) || m_camera.notifies(CameraEvent::Line1FallingEdge);
    // The line outlives an unplugged camera and is its successor's then.
    const bool watching = !m_halted && (triggers || reports);
    if (watching && !m_watchingLine) m_line.skipTo(m_clock.now());
    m_watchingLine = watching;
}

void CaptureEngine::takeEdge(Nanoseconds at) {
    // It may be another one than before, or gone: the line is driven from outside.
    const std::optional<LineEdge> edge = m_line.take(at);
    if (!edge) return;
    const SensorSettings& settings = m_camera.sensor();
    if (settings.trigger == TriggerKind::External && settings.isLine1) {
        m_agenda.lineEdge(edge->at, edge->rising, settings);
    }
    report(edge->rising ? CameraEvent::Line1RisingEdge : CameraEvent::Line1FallingEdge, m_nextId, edge->at);
}

void CaptureEngine::expose(Nanoseconds start) {
    const SensorSettings settings = m_camera.sensor();
    const CameraClock& clock = m_camera.clock();
    m_agenda.expose(start, settings, clock);
    const std::uint64_t id = m_nextId++;
    report(CameraEvent::FrameTrigger, id, start);
    report(CameraEvent::ExposureEnd, id, start + settings.exposure);
    report(CameraEvent::FrameTriggerReady, id, m_agenda.readyAt(settings, clock));
    const unsigned changes = m_camera.noteExposure();
    if (changes != 0) m_listener.onAutomaticChange(changes);
    m_settled = m_camera.sensor();
    const FrameFate fate = m_surroundings.faults->next();
    if (m_inFlightCount >= memoryFrames()) return;  // The camera's memory is full: the picture is lost.
    Exposure& exposure = m_inFlight[(m_firstInFlight + m_inFlightCount++) % kInFlight];
    exposure.id = id;
    exposure.capture = m_captures;
    exposure.start = start;
    exposure.transferAt = std::max(start + settings.exposure + settings.readout, m_linkFreeAt);
    exposure.dueAt = exposure.transferAt + settings.transfer;
    exposure.ticks = clock.stamp(start, m_exposures++);
    exposure.shape = settings.shape;
    exposure.trailer = settings.trailer;
    if (settings.trailer > 0) exposure.chunk = m_camera.chunkData(m_agenda.exposed());
    exposure.fate = fate;
    m_linkFreeAt = exposure.dueAt;
}

std::size_t CaptureEngine::memoryFrames() const {
    return std::min(kInFlight, static_cast<std::size_t>(m_camera.row().memoryFrames));
}

void CaptureEngine::beginTransfer(Lock& lock) {
    const Exposure exposure = m_inFlight[m_firstInFlight];
    m_firstInFlight = (m_firstInFlight + 1) % kInFlight;
    --m_inFlightCount;
    m_lastSent = exposure.id;
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
    m_camera.count(frame.status == 0 ? "StatFrameDelivered" : "StatFrameDropped");
    m_camera.noteFrame(frame.ticks, m_clock.now(), frame.shape.payload() + m_transfer->exposure.trailer,
                       m_transfer->exposure.fate.status == 0);
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
