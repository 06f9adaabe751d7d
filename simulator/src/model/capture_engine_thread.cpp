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

std::optional<CaptureEngine::Next> CaptureEngine::nextOfCamera() const {
    std::optional<Next> first;
    const auto consider = [&](Nanoseconds at, Step step) {
        if (!first || at < first->at) first = {at, step};
    };
    if (m_watchingLine) {
        if (const auto edge = m_line.next()) consider(edge->at, Step::Edge);
    }
    if (m_agenda.nextTrigger() != kNever) consider(m_agenda.nextTrigger(), Step::Trigger);
    // Before an exposure of the same time: a frame that leaves makes room in the camera's memory.
    if (const auto booking = nextBooking()) consider(*booking, Step::Book);
    if (const auto start = m_agenda.next(m_camera.sensor(), m_camera.clock())) consider(*start, Step::Expose);
    return first;
}

std::optional<CaptureEngine::Next> CaptureEngine::next() const {
    std::optional<Next> first = nextOfCamera();
    const auto consider = [&](Nanoseconds at, Step step) {
        const bool isSignal = first && (first->step == Step::Edge || first->step == Step::Trigger);
        if (!first || at < first->at || (at == first->at && !isSignal)) first = {at, step};
    };
    if (m_transfer) {
        if (m_listener.isStartAnnounced()) consider(m_transfer->exposure.dueAt, Step::Deliver);
    } else if (m_bookedCount > 0) {
        consider(inFlight(0).transferAt, Step::Transfer);
    }
    return first;
}

void CaptureEngine::catchUp(Nanoseconds until) {
    if (m_halted) return;
    for (auto due = nextOfCamera(); due && due->at <= until; due = nextOfCamera()) stepCamera(*due);
}

void CaptureEngine::catchUpWithNetwork() {
    // What happens now comes behind the change.
    catchUp(m_clock.now() - 1);
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
            stepCamera(next);
            break;
    }
}

void CaptureEngine::stepCamera(const Next& next) {
    if (next.step == Step::Edge) takeEdge(next.at);
    if (next.step == Step::Trigger) m_agenda.takeTrigger(m_camera.sensor(), m_camera.clock());
    if (next.step == Step::Book) book(next.at);
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
    if (isMemoryFull()) return;  // The camera's memory is full: the picture is lost.
    Exposure& exposure = inFlight(m_inFlightCount++);
    exposure.id = id;
    exposure.capture = m_captures;
    exposure.start = start;
    exposure.readyAt = start + settings.exposure + settings.readout;
    exposure.transfer = settings.transfer;
    exposure.ticks = clock.stamp(start, m_exposures++);
    exposure.shape = settings.shape;
    exposure.trailer = settings.trailer;
    if (settings.trailer > 0) exposure.chunk = m_camera.chunkData(m_agenda.exposed());
    exposure.fate = fate;
}

}  // namespace simulator
