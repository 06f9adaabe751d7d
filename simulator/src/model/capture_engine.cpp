#include "capture_engine.h"

#include <algorithm>

#include "thread_role.h"

namespace simulator {
namespace {

thread_local const CaptureEngine* t_ownEngine = nullptr;

}  // namespace

CaptureEngine::CaptureEngine(SimulatorClock& clock, Camera& camera, FrameFaults& faults, FrameOutlet& outlet,
                             AcquisitionListener& listener)
    : m_clock(clock), m_camera(camera), m_faults(faults), m_outlet(outlet), m_listener(listener) {}

CaptureEngine::~CaptureEngine() {
    {
        const Lock lock(m_camera.mutex());
        quit();
    }
    join();
}

void CaptureEngine::start(void* owner) {
    m_owner = owner;
    m_thread = std::thread([this] { run(); });
}

void CaptureEngine::halt() {
    m_halted = true;
    m_capturing = false;
    m_restart = false;
    m_inFlightCount = 0;
    giveUpTransfer(Withdrawal::PutBack);
    m_agenda.finish();
    m_changed.notify_all();
}

void CaptureEngine::quit() {
    halt();
    m_quit = true;
}

void CaptureEngine::join() {
    if (m_thread.joinable()) m_thread.join();
}

bool CaptureEngine::isOwnThread() const {
    return t_ownEngine == this;
}

Result CaptureEngine::startCapture() {
    if (m_capturing) return Result::InvalidAccess;
    m_capturing = true;
    ++m_captures;
    m_nextId = 1;
    m_callbacks = 0;
    return Result::Success;
}

void CaptureEngine::endCapture(Lock& lock) {
    m_capturing = false;
    giveUpTransfer(Withdrawal::Drop);
    waitUntilQuiet(lock);
    // Behind the wait: the last callback may have queued its frame again.
    m_queue.flush();
}

void CaptureEngine::startAcquisition() {
    if (m_agenda.state() == ExposureAgenda::State::Stopping) {
        m_restart = true;
    } else if (m_agenda.state() == ExposureAgenda::State::Idle) {
        begin(m_clock.now());
    }
    m_changed.notify_all();
}

void CaptureEngine::begin(Nanoseconds now) {
    m_restart = false;
    m_agenda.start(now);
    m_camera.setAcquiring(true);
    m_camera.resetStatistics(now);
    m_linkFreeAt = now;
    m_lastSent = m_nextId - 1;
    m_listener.onAcquisitionStarted(m_nextId, now);
}

void CaptureEngine::stopAcquisition() {
    m_restart = false;
    if (m_agenda.state() != ExposureAgenda::State::Running) return;
    m_stoppedAt = m_clock.now();
    m_agenda.stop(m_stoppedAt);
    // From here on the settings are free again: frames under way have taken theirs along.
    m_camera.setAcquiring(false);
    m_changed.notify_all();
}

void CaptureEngine::abortAcquisition() {
    m_restart = false;
    if (m_agenda.state() == ExposureAgenda::State::Idle) return;
    m_stoppedAt = m_clock.now();
    m_linkFreeAt = m_stoppedAt;
    m_agenda.finish();
    m_inFlightCount = 0;
    giveUpTransfer(Withdrawal::PutBack);
    m_camera.setAcquiring(false);
    m_listener.onAcquisitionEnded(m_lastSent, m_stoppedAt);
    m_changed.notify_all();
}

void CaptureEngine::finishIfDone() {
    if (m_agenda.state() != ExposureAgenda::State::Stopping) return;
    if (m_transfer || m_inFlightCount > 0 || m_agenda.next(m_camera.sensor())) return;
    m_agenda.finish();
    m_camera.setAcquiring(false);
    m_listener.onAcquisitionEnded(m_lastSent, std::max(m_stoppedAt, m_linkFreeAt));
    if (m_restart) begin(m_clock.now());
    m_changed.notify_all();
}

void CaptureEngine::softwareTrigger() {
    m_agenda.softwareTrigger(m_clock.now());
    m_changed.notify_all();
}

void CaptureEngine::hold(bool hold) {
    m_agenda.hold(hold, m_clock.now());
    m_changed.notify_all();
}

void CaptureEngine::settle() {
    m_agenda.settle(m_clock.now());
    m_changed.notify_all();
}

Result CaptureEngine::enqueue(const QueuedFrame& frame) {
    if (m_transfer && m_transfer->frame.memory.record == frame.memory.record) {
        if (m_transfer->withdrawal == Withdrawal::Drop) return Result::BadHandle;
        if (!isCalling()) return Result::InvalidCall;
    }
    return m_queue.queue(frame);
}

std::size_t CaptureEngine::queuedCount() const {
    const bool filling = m_transfer && !isCalling() && m_transfer->withdrawal != Withdrawal::Drop;
    return m_queue.queuedCount() + (filling ? 1 : 0);
}

void CaptureEngine::giveUpTransfer(Withdrawal withdrawal) {
    if (!m_transfer || isCalling()) return;
    if (m_transfer->stage == Stage::Drawing) {
        // What was dropped belongs to the client and cannot come back.
        if (m_transfer->withdrawal != Withdrawal::Drop) m_transfer->withdrawal = withdrawal;
        return;
    }
    if (withdrawal == Withdrawal::PutBack) m_queue.putBack(m_transfer->frame);
    m_transfer.reset();
}

void CaptureEngine::withdraw(Lock& lock, const void* record) {
    const auto concerned = [&] {
        return m_transfer && (record == nullptr || m_transfer->frame.memory.record == record);
    };
    if (!concerned()) return;
    if (isCalling()) m_transfer->withdrawal = Withdrawal::Drop;
    giveUpTransfer(Withdrawal::Drop);
    m_changed.notify_all();
    const std::uint64_t transfer = m_transfers;
    while (!isOwnThread() && concerned() && m_transfers == transfer) m_clock.wait(m_changed, lock);
}

void CaptureEngine::waitUntilQuiet(Lock& lock) {
    while (!isOwnThread() && m_transfer && m_transfer->stage != Stage::Ready) m_clock.wait(m_changed, lock);
}

bool CaptureEngine::waitForFrames(Lock& lock, std::uint64_t count, Nanoseconds deadline) {
    while (m_callbacks < count && !m_halted && m_clock.now() < deadline) {
        m_clock.waitUntil(m_changed, lock, deadline);
    }
    return m_callbacks >= count;
}

bool CaptureEngine::waitUntilStopped(Lock& lock, Nanoseconds deadline) {
    while (m_agenda.state() == ExposureAgenda::State::Stopping && m_clock.now() < deadline) {
        m_clock.waitUntil(m_changed, lock, deadline);
    }
    return m_agenda.state() != ExposureAgenda::State::Stopping;
}

void CaptureEngine::run() {
    enterThread(ThreadRole::Frame);
    t_ownEngine = this;
    Lock lock(m_camera.mutex());
    while (!m_quit) {
        finishIfDone();
        const auto action = next();
        if (!action) {
            m_clock.wait(m_changed, lock);
        } else if (action->at > m_clock.now()) {
            // What clients measure is the time of the callback; the other steps have their times computed.
            if (action->step == Step::Deliver) {
                m_clock.waitPrecisely(m_changed, lock, action->at);
            } else {
                m_clock.waitUntil(m_changed, lock, action->at);
            }
        } else {
            step(lock, *action);
        }
    }
}

std::optional<CaptureEngine::Next> CaptureEngine::next() const {
    std::optional<Next> first;
    const auto consider = [&](Nanoseconds at, Step step) {
        if (!first || at < first->at) first = {at, step};
    };
    if (m_transfer) {
        if (m_listener.isStartAnnounced()) consider(m_transfer->exposure.dueAt, Step::Deliver);
    } else if (m_inFlightCount > 0) {
        consider(m_inFlight[m_firstInFlight].transferAt, Step::Transfer);
    }
    if (const auto start = m_agenda.next(m_camera.sensor())) consider(*start, Step::Expose);
    return first;
}

void CaptureEngine::step(Lock& lock, const Next& next) {
    switch (next.step) {
        case Step::Deliver:
            deliver(lock);
            break;
        case Step::Transfer:
            beginTransfer(lock);
            break;
        case Step::Expose:
            expose(next.at);
            break;
    }
}

void CaptureEngine::expose(Nanoseconds start) {
    const SensorSettings& settings = m_camera.sensor();
    m_agenda.expose(start, settings);
    m_camera.noteExposure();
    const std::uint64_t id = m_nextId++;
    const FrameFate fate = m_faults.next();
    if (m_inFlightCount == kInFlight) return;  // The camera's memory is full: the picture is lost.
    Exposure& exposure = m_inFlight[(m_firstInFlight + m_inFlightCount++) % kInFlight];
    exposure.id = id;
    exposure.capture = m_captures;
    exposure.start = start;
    exposure.transferAt = std::max(start + settings.exposure + settings.readout, m_linkFreeAt);
    exposure.dueAt = exposure.transferAt + settings.transfer;
    exposure.ticks = m_camera.clock().ticks(start);
    exposure.shape = settings.shape;
    exposure.trailer = settings.trailer;
    exposure.chunk = m_camera.chunkData(m_agenda.exposed());
    exposure.fate = fate;
    m_linkFreeAt = exposure.dueAt;
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
    m_transfer = transfer;
    ++m_transfers;
    lock.unlock();
    draw(transfer);
    lock.lock();
    m_transfer->stage = Stage::Ready;
    if (m_transfer->withdrawal != Withdrawal::None) giveUpTransfer(m_transfer->withdrawal);
    m_changed.notify_all();
}

void CaptureEngine::deliver(Lock& lock) {
    m_transfer->stage = Stage::Calling;
    const FrameReport frame = report(*m_transfer);
    m_camera.count(frame.status == 0 ? "StatFrameDelivered" : "StatFrameDropped");
    m_camera.noteFrame(frame.ticks, m_clock.now(), frame.shape.payload() + m_transfer->exposure.trailer,
                       m_transfer->exposure.fate.status == 0);
    lock.unlock();
    m_outlet.deliver(m_owner, frame);
    lock.lock();
    if (frame.frame.callback != nullptr) ++m_callbacks;
    m_transfer.reset();
    m_changed.notify_all();
}

}  // namespace simulator
