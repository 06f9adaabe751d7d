#include "camera_session.h"

#include <cstring>
#include <limits>
#include <string_view>

namespace simulator {

CameraSession::CameraSession(SimulatorClock& clock, std::shared_ptr<Camera> camera,
                             std::shared_ptr<FrameFaults> faults, FrameOutlet& outlet, bool writable)
    : FeatureModule(clock, ThreadRole::Event, writable),
      m_clock(clock),
      m_camera(std::move(camera)),
      m_faults(std::move(faults)),
      m_outlet(outlet),
      m_mayCapture(writable),
      m_engine(clock, *m_camera, *m_faults, outlet, *this) {}

CameraSession::~CameraSession() {
    close();
}

void CameraSession::start(void* handle) {
    m_handle = handle;
    events().start(handle);
    m_engine.start(handle);
}

void CameraSession::disconnect() {
    const Lock lock(mutex());
    m_alive = false;
    m_engine.halt();
}

void CameraSession::close() {
    {
        const Lock lock(m_camera->mutex());
        m_alive = false;
        m_camera->setAcquiring(false);
        m_engine.quit();
    }
    m_engine.join();
    events().stop();
}

Result CameraSession::announce(FrameMemory& memory) {
    const Lock lock(mutex());
    return isAlive() ? m_engine.queue().announce(memory) : Result::BadHandle;
}

Result CameraSession::revoke(const void* record) {
    Lock lock(mutex());
    AnnouncedFrame frame;
    const Result revoked = m_engine.queue().revoke(record, frame);
    if (revoked == Result::Success) m_engine.withdraw(lock, record);
    if (frame.owned != nullptr) m_outlet.takeBack(frame.memory.record);
    return isAlive() ? revoked : Result::BadHandle;
}

Result CameraSession::revokeAll() {
    Lock lock(mutex());
    const std::vector<AnnouncedFrame> frames = m_engine.queue().revokeAll();
    m_engine.withdraw(lock, nullptr);
    for (const AnnouncedFrame& frame : frames) {
        if (frame.owned != nullptr) m_outlet.takeBack(frame.memory.record);
    }
    return outcome();
}

Result CameraSession::startCapture() {
    const Lock lock(mutex());
    if (!isAlive()) return Result::BadHandle;
    return m_mayCapture ? m_engine.startCapture() : Result::InvalidAccess;
}

Result CameraSession::endCapture() {
    Lock lock(mutex());
    m_engine.endCapture(lock);
    return outcome();
}

Result CameraSession::queue(const FrameMemory& memory, OpaqueCallback callback) {
    const Lock lock(mutex());
    if (!isAlive() || memory.record == nullptr) return Result::BadHandle;
    const FrameMemory* announced = m_engine.queue().announced(memory.record);
    if (announced == nullptr && (memory.buffer == nullptr || memory.size == 0)) return Result::BadHandle;
    return m_engine.enqueue({announced != nullptr ? *announced : memory, callback, m_clock.now()});
}

Result CameraSession::flush() {
    Lock lock(mutex());
    m_engine.queue().flush();
    if (!isAlive()) m_engine.waitUntilQuiet(lock);
    return outcome();
}

bool CameraSession::takeQueued(QueuedFrame& frame) {
    const Lock lock(mutex());
    return m_engine.queue().take(std::numeric_limits<Nanoseconds>::max(), frame);
}

void CameraSession::counts(std::uint32_t& announced, std::uint32_t& queued) {
    const Lock lock(mutex());
    announced = static_cast<std::uint32_t>(m_engine.queue().announcedCount());
    queued = static_cast<std::uint32_t>(m_engine.queuedCount());
}

std::uint32_t CameraSession::frameNumber(const void* record) {
    const Lock lock(mutex());
    return m_engine.queue().number(record);
}

void CameraSession::hold(bool hold) {
    const Lock lock(mutex());
    m_engine.hold(hold);
}

void CameraSession::settle() {
    const Lock lock(mutex());
    m_engine.settle();
}

Result CameraSession::waitForFrames(std::uint64_t count, Nanoseconds deadline) {
    Lock lock(mutex());
    if (m_engine.waitForFrames(lock, count, deadline)) return Result::Success;
    return m_engine.isHalted() ? Result::DeviceNotOpen : Result::Timeout;
}

bool CameraSession::waitForEvents(Nanoseconds deadline) {
    {
        Lock lock(mutex());
        if (!m_engine.waitUntilStopped(lock, deadline)) return false;
    }
    return events().waitUntilIdle(deadline);
}

Result CameraSession::useMemory(bool change, const std::function<Result(CameraMemory&)>& use) {
    const Lock lock(mutex());
    if (!isAlive()) return Result::BadHandle;
    return change && !m_mayCapture ? Result::InvalidAccess : use(m_camera->memory());
}

void CameraSession::onChanged(const Feature& feature) {
    m_camera->settleAfter(feature);
    m_engine.settle();
}

void CameraSession::refresh(const Feature& feature) {
    const std::string_view name = feature.row.name;
    if (name == "StatTimeElapsed") m_camera->noteElapsed(m_clock.now());
    if (name == "StreamAnnouncedBufferCount") {
        m_camera->features().compute(name, static_cast<std::int64_t>(m_engine.queue().announcedCount()));
    }
}

Result CameraSession::execute(Lock&, const char* command) {
    const Nanoseconds now = m_clock.now();
    const auto is = [=](const char* name) { return std::strcmp(command, name) == 0; };
    if (is("AcquisitionStart")) m_engine.startAcquisition();
    if (is("AcquisitionStop")) m_engine.stopAcquisition();
    if (is("AcquisitionAbort")) m_engine.abortAcquisition();
    if (is("TriggerSoftware")) m_engine.softwareTrigger();
    if (is("GevTimestampControlReset")) m_camera->resetClock(now);
    if (is("GevTimestampControlLatch")) m_camera->latchClock(now);
    if (is("GVSPAdjustPacketSize")) m_camera->adjustPacketSize();
    if (is("UserSetSave")) return m_camera->saveUserSet();
    if (is("UserSetLoad")) {
        m_camera->loadUserSet();
        m_engine.settle();
    }
    return Result::Success;
}

bool CameraSession::isNotified(const char* event) const {
    return m_camera->features().integer("EventNotification", event) == 1;
}

void CameraSession::onAcquisitionStarted(std::uint64_t firstId, Nanoseconds at) {
    m_startEvent = 0;
    if (!isNotified("AcquisitionStart")) return;
    const auto ticks = static_cast<std::int64_t>(m_camera->clock().ticks(at));
    const auto id = static_cast<std::int64_t>(firstId);
    m_startEvent = events().post(
        {{"EventAcquisitionStartTimestamp", "EventAcquisitionStartFrameID", "EventAcquisitionStart"},
         [=, this] {
             assign({{"EventAcquisitionStartTimestamp", ticks}, {"EventAcquisitionStartFrameID", id}});
         }});
}

void CameraSession::onAcquisitionEnded(std::uint64_t lastId, Nanoseconds at) {
    if (!isNotified("AcquisitionEnd")) return;
    const auto ticks = static_cast<std::int64_t>(m_camera->clock().ticks(at));
    const auto id = static_cast<std::int64_t>(lastId);
    events().post(
        {{"EventAcquisitionEndTimestamp", "EventAcquisitionEndFrameID", "EventAcquisitionEnd"}, [=, this] {
             assign({{"EventAcquisitionEndTimestamp", ticks}, {"EventAcquisitionEndFrameID", id}});
         }});
}

bool CameraSession::isStartAnnounced() const {
    return m_startEvent == 0 || events().isDelivered(m_startEvent);
}

void CameraSession::onDelivered() {
    // With the mutex: the frame thread must not look away between its question and its wait.
    const Lock lock(mutex());
    m_engine.wake();
}

}  // namespace simulator
