#include "camera_session.h"

#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace simulator {

CameraSession::CameraSession(const Surroundings& surroundings, std::shared_ptr<Camera> camera, bool writable)
    : FeatureModule(surroundings, ThreadRole::Event, writable),
      m_surroundings(surroundings),
      m_clock(surroundings.clock),
      m_camera(std::move(camera)),
      m_mayCapture(writable),
      m_engine(surroundings, *m_camera, *this) {}

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
        const bool isFirst = !std::exchange(m_closed, true);
        for (const AnnouncedFrame& frame : m_engine.queue().allAnnounced()) {
            if (isFirst) checkMemory(frame);
        }
    }
    m_engine.join();
    events().stop();
}

Result CameraSession::announce(FrameMemory& memory) {
    const Lock lock(mutex());
    if (!isAlive()) return Result::BadHandle;
    if (m_engine.queue().announced(memory.record) != nullptr) {
        m_surroundings.misuses.add("the frame was announced already");
    }
    return m_engine.queue().announce(memory);
}

void CameraSession::checkMemory(const AnnouncedFrame& frame) {
    if (frame.owned == nullptr && !isAccessible(frame.memory)) m_surroundings.misuses.add(kBufferGone);
}

Result CameraSession::revoke(const void* record) {
    Lock lock(mutex());
    AnnouncedFrame frame;
    if (m_engine.queue().isQueued(record)) m_surroundings.misuses.add("the frame was still queued");
    const Result revoked = m_engine.queue().revoke(record, frame);
    if (revoked == Result::Success) {
        checkMemory(frame);
        m_engine.withdraw(lock, record);
    }
    if (frame.owned != nullptr) m_surroundings.outlet.takeBack(frame.memory.record);
    return isAlive() ? revoked : Result::BadHandle;
}

Result CameraSession::revokeAll() {
    Lock lock(mutex());
    if (m_engine.queue().queuedCount() > 0) m_surroundings.misuses.add("frames were still queued");
    const std::vector<AnnouncedFrame> frames = m_engine.queue().revokeAll();
    for (const AnnouncedFrame& frame : frames) checkMemory(frame);
    m_engine.withdraw(lock, nullptr);
    for (const AnnouncedFrame& frame : frames) {
        if (frame.owned != nullptr) m_surroundings.outlet.takeBack(frame.memory.record);
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

Result CameraSession::waitForFrame(const void* record, Nanoseconds deadline) {
    Lock lock(mutex());
    if (!isAlive()) return Result::BadHandle;
    return m_engine.waitForFrame(lock, record, deadline);
}

Result CameraSession::flush() {
    Lock lock(mutex());
    m_engine.flush();
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

void CameraSession::onNetworkChanging() {
    const Lock lock(mutex());
    m_engine.catchUpWithNetwork();
}

void CameraSession::cut(Nanoseconds until) {
    const Lock lock(mutex());
    m_engine.cut(until);
}

void CameraSession::settle() {
    const Lock lock(mutex());
    m_engine.settle();
}

void CameraSession::onLine() {
    const Lock lock(mutex());
    m_engine.wake();
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
    if (is("AcquisitionStart")) {
        m_engine.startAcquisition();
        m_surroundings.onStart();
    }
    if (is("AcquisitionStop")) m_engine.stopAcquisition();
    if (is("AcquisitionAbort")) {
        events().dropLater();  // of exposures that do not end
        m_engine.abortAcquisition();
    }
    if (is("TriggerSoftware")) m_engine.softwareTrigger();
    if (is("GevTimestampControlReset")) m_camera->resetClock(now);
    if (is("GevTimestampControlLatch")) m_camera->latchClock(now);
    if (is("GVSPAdjustPacketSize")) m_camera->adjustPacketSize(m_surroundings.link->row().largestPacket);
    if (is("UserSetSave")) return m_camera->saveUserSet();
    if (is("UserSetLoad")) {
        m_engine.catchUp();
        m_camera->loadUserSet();
        m_engine.settle();
    }
    return Result::Success;
}

void CameraSession::onEvent(CameraEvent event, std::uint64_t frameId, Nanoseconds at) {
    const CameraEventRow& row = cameraEvent(event);
    const auto ticks = static_cast<std::int64_t>(m_camera->clock().ticks(at));
    const auto id = static_cast<std::int64_t>(frameId);
    const auto apply = [=, this, &row] { assign({{row.timeFeature, ticks}, {row.frameFeature, id}}); };
    // The end of an acquisition never comes behind the start of the next one.
    const Nanoseconds dueAt = event == CameraEvent::AcquisitionEnd ? 0 : at;
    const std::uint64_t number =
        events().post({{row.timeFeature, row.frameFeature, row.feature}, apply, dueAt});
    if (event == CameraEvent::AcquisitionStart) m_startEvent = number;
}

void CameraSession::onAutomaticChange(unsigned changes) {
    static constexpr std::pair<unsigned, const char*> kFeatures[] = {
        {kExposureMoved, "ExposureTimeAbs"},
        {kExposureMoved, "AcquisitionFrameRateLimit"},
        {kGainMoved, "Gain"},
        {kBalanceMoved, "BalanceRatioAbs"},
        {kExposureAutoEnded, "ExposureAuto"},
        {kGainAutoEnded, "GainAuto"},
        {kBalanceAutoEnded, "BalanceWhiteAuto"}};
    Event event;
    for (const auto& [bit, feature] : kFeatures) {
        if ((changes & bit) != 0) event.features.push_back(feature);
    }
    events().post(std::move(event));
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
