#include "capture_engine.h"

#include <algorithm>
#include <utility>

#include "thread_role.h"

namespace simulator {
namespace {

thread_local const CaptureEngine* t_ownEngine = nullptr;

}  // namespace

/// A call that waits: progress is told as long as there is one.
class CaptureEngine::Watch {
  public:
    explicit Watch(CaptureEngine& engine) : m_engine(engine) { ++m_engine.m_watches; }
    ~Watch() { --m_engine.m_watches; }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

  private:
    CaptureEngine& m_engine;
};

CaptureEngine::CaptureEngine(const Surroundings& surroundings, Camera& camera, AcquisitionListener& listener)
    : m_surroundings(surroundings),
      m_clock(surroundings.clock),
      m_camera(camera),
      m_line(*surroundings.line),
      m_listener(listener),
      m_changed(m_clock),
      m_progress(m_clock),
      m_thread(m_clock) {}

CaptureEngine::~CaptureEngine() {
    {
        const Lock lock(m_camera.mutex());
        quit();
    }
    join();
}

void CaptureEngine::start(void* owner) {
    m_owner = owner;
    m_thread.start(ThreadRole::Frame, [this] { run(); });
}

void CaptureEngine::halt() {
    m_halted = true;
    m_capturing = false;
    m_restart = m_triggerRestart = false;
    dropInFlight();
    giveUpTransfer(Withdrawal::PutBack);
    m_agenda.finish();
    m_changed.notify();
    progress();
}

void CaptureEngine::quit() {
    halt();
    m_quit = true;
}

void CaptureEngine::join() {
    m_thread.join();
}

void CaptureEngine::enterOwnThread() {
    t_ownEngine = this;
}

bool CaptureEngine::isOwnThread() const {
    return t_ownEngine == this;
}

Result CaptureEngine::startCapture() {
    if (m_capturing) return Result::InvalidAccess;
    m_capturing = true;
    ++m_captures;
    if (m_surroundings.choices.option(Choice::FrameIdAfterRestart) == 0) m_nextId = 1;
    m_callbacks = 0;
    return Result::Success;
}

void CaptureEngine::endCapture(Lock& lock) {
    m_capturing = false;
    giveUpTransfer(Withdrawal::Drop);
    waitUntilQuiet(lock);
    // Behind the wait: the last callback may have queued its frame again.
    m_queue.flush();
    // The thread may wait for the time of a frame that was given up.
    m_changed.notify();
    progress();
}

void CaptureEngine::startAcquisition() {
    if (m_agenda.state() == ExposureAgenda::State::Stopping) {
        m_restart = true;
    } else if (m_agenda.state() == ExposureAgenda::State::Idle) {
        begin(m_clock.now());
    }
    m_changed.notify();
}

void CaptureEngine::begin(Nanoseconds now) {
    m_restart = false;
    m_settled = m_camera.sensor();
    m_agenda.start(now, m_settled, isLineHigh());
    if (std::exchange(m_triggerRestart, false)) m_agenda.softwareTrigger(now);
    m_camera.setAcquiring(true);
    m_camera.resetStatistics(now);
    m_linkFreeAt = m_arrivedAt = m_dueAt = now;
    m_lastSent = m_nextId - 1;
    report(CameraEvent::AcquisitionStart, m_nextId, now);
}

void CaptureEngine::stopAcquisition() {
    m_restart = m_triggerRestart = false;
    if (m_agenda.state() != ExposureAgenda::State::Running) return;
    m_stoppedAt = m_clock.now();
    m_agenda.stop(m_stoppedAt);
    // From here on the settings are free again: frames under way have taken theirs along.
    m_camera.setAcquiring(false);
    finishIfDone();
    m_changed.notify();
}

void CaptureEngine::abortAcquisition() {
    m_restart = m_triggerRestart = false;
    if (m_agenda.state() == ExposureAgenda::State::Idle) return;
    m_stoppedAt = m_clock.now();
    m_linkFreeAt = m_stoppedAt;
    m_agenda.finish();
    dropInFlight();
    giveUpTransfer(Withdrawal::PutBack);
    m_camera.setAcquiring(false);
    report(CameraEvent::AcquisitionEnd, m_lastSent, m_stoppedAt);
    m_changed.notify();
    progress();
}

void CaptureEngine::finishIfDone() {
    if (m_agenda.state() != ExposureAgenda::State::Stopping) return;
    if (m_transfer || m_inFlightCount > 0 || m_agenda.next(m_camera.sensor(), m_camera.clock())) return;
    m_agenda.finish();
    m_camera.setAcquiring(false);
    report(CameraEvent::AcquisitionEnd, m_lastSent, std::max(m_stoppedAt, m_linkFreeAt));
    if (m_restart) begin(m_clock.now());
    progress();
}

void CaptureEngine::softwareTrigger() {
    if (m_camera.sensor().trigger != TriggerKind::Software) return;
    // To its client an acquisition that waits for the end of the last one is running.
    if (m_restart) m_triggerRestart = true;
    m_agenda.softwareTrigger(m_clock.now());
    m_changed.notify();
}

bool CaptureEngine::isLineHigh() {
    // Nothing is connected to the other lines.
    if (!m_camera.sensor().isLine1) return false;
    if (!m_watchingLine) m_line.skipTo(m_clock.now());
    return m_line.isHigh();
}

void CaptureEngine::hold(bool hold) {
    m_agenda.hold(hold, m_clock.now());
    m_changed.notify();
}

void CaptureEngine::settle() {
    m_changed.notify();
    const SensorSettings& settings = m_camera.sensor();
    if (settings == m_settled) return;
    const bool released = m_settled.holdsStream && !settings.holdsStream;
    m_settled = settings;
    m_agenda.settle(m_clock.now(), settings, isLineHigh());
    // What was held in the camera's memory goes on its way now.
    if (released) m_linkFreeAt = std::max(m_linkFreeAt, m_clock.now());
}

Result CaptureEngine::enqueue(const QueuedFrame& frame) {
    const bool needsCapture = m_surroundings.choices.option(Choice::QueueBeforeStart) == 1;
    if (needsCapture && !m_capturing) return Result::InvalidCall;
    const void* record = frame.memory.record;
    if (isUnderWay(record) && m_transfer->withdrawal == Withdrawal::Drop) return Result::BadHandle;
    if (m_queue.isQueued(record) || (isUnderWay(record) && !isCalling())) {
        m_surroundings.misuses.add("the frame is queued already");
        return Result::InvalidCall;
    }
    return m_queue.queue(frame);
}

void CaptureEngine::flush() {
    m_queue.flush();
    progress();
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
    if (concerned()) {
        if (isCalling()) m_transfer->withdrawal = Withdrawal::Drop;
        giveUpTransfer(Withdrawal::Drop);
        m_changed.notify();
    }
    progress();
    const Watch watch(*this);
    const std::uint64_t transfer = m_transfers;
    while (!isOwnThread() && concerned() && m_transfers == transfer) m_progress.wait(lock);
}

void CaptureEngine::waitUntilQuiet(Lock& lock) {
    const Watch watch(*this);
    while (!isOwnThread() && m_transfer && m_transfer->stage != Stage::Ready) m_progress.wait(lock);
}

bool CaptureEngine::isUnderWay(const void* record) const {
    return m_transfer && m_transfer->frame.memory.record == record;
}

Result CaptureEngine::waitForFrame(Lock& lock, const void* record, Nanoseconds deadline) {
    if (isOwnThread()) return Result::InvalidCall;
    const auto isPending = [&] { return m_queue.isQueued(record) || isUnderWay(record); };
    if (!isPending() && m_queue.announced(record) == nullptr) return Result::BadHandle;
    if (!isPending() && m_queue.isFilled(record)) return Result::Success;
    FrameWaiter waiter{record, false};
    m_frameWaiters.push_back(&waiter);
    Result result = Result::Timeout;
    for (bool pended = isPending(); m_clock.now() < deadline; pended = pended || isPending()) {
        if (m_halted) result = Result::BadHandle;
        if (waiter.filled && !isUnderWay(record)) result = Result::Success;
        if (result != Result::Timeout || (pended && !isPending())) break;
        if (deadline == kNever) {
            m_progress.wait(lock);
        } else {
            m_progress.waitUntil(lock, deadline);
        }
    }
    std::erase(m_frameWaiters, &waiter);
    return result;
}

bool CaptureEngine::waitForFrames(Lock& lock, std::uint64_t count, Nanoseconds deadline) {
    while (m_callbacks < count && !m_halted && m_clock.now() < deadline) {
        m_awaitedCallbacks = std::min(m_awaitedCallbacks, count);
        m_progress.waitUntil(lock, deadline);
    }
    return m_callbacks >= count;
}

bool CaptureEngine::waitUntilStopped(Lock& lock, Nanoseconds deadline) {
    const Watch watch(*this);
    while (m_agenda.state() == ExposureAgenda::State::Stopping && m_clock.now() < deadline) {
        m_progress.waitUntil(lock, deadline);
    }
    return m_agenda.state() != ExposureAgenda::State::Stopping;
}

void CaptureEngine::progress() {
    const bool reached = m_callbacks >= m_awaitedCallbacks || m_halted;
    if (m_watches == 0 && m_frameWaiters.empty() && !reached) return;
    // Whoever still waits says so again.
    m_awaitedCallbacks = kNobody;
    m_progress.notify();
}

void CaptureEngine::report(CameraEvent event, std::uint64_t id, Nanoseconds at) {
    if (m_camera.notifies(event)) m_listener.onEvent(event, clientId(id), at);
}

std::uint64_t CaptureEngine::clientId(std::uint64_t id) const {
    const bool wraps = m_surroundings.choices.option(Choice::FrameIdWidth) == 1;
    return wraps && id > 0 ? (id - 1) % 65'535 + 1 : id;
}

}  // namespace simulator
