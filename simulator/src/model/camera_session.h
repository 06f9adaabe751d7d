/// A camera that a client has open. [any thread]
///
/// A session ends by being closed, or by the camera's being unplugged; either way its operations answer
/// BadHandle from then on. Those that take memory back from the library still wait until it is not touched
/// any more.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "camera.h"
#include "capture_engine.h"
#include "feature_module.h"

namespace simulator {

class CameraSession : public FeatureModule, private AcquisitionListener {
  public:
    CameraSession(const Surroundings& surroundings, std::shared_ptr<Camera> camera, bool writable);
    ~CameraSession() override;

    /// Starts the threads; callbacks get `handle`. Throws when the system refuses a thread.
    void start(void* handle);
    /// The camera lost its cable. Does not wait.
    void disconnect();
    /// Waits for running callbacks and ends the threads. Not on one of them.
    void close();
    bool isOwnThread() const { return m_engine.isOwnThread() || events().isOwnThread(); }

    void* handle() const { return m_handle; }
    const char* name() const override { return m_camera->row().id; }
    bool isAlive() const override { return m_alive.load(); }

    /// Names the memory when the client brought none.
    Result announce(FrameMemory& memory);
    Result revoke(const void* record);
    Result revokeAll();
    Result startCapture();
    Result endCapture();
    /// Waits for a frame that was queued; see CaptureEngine::waitForFrame.
    Result waitForFrame(const void* record, Nanoseconds deadline);
    /// BadHandle also for a record without memory that was not announced. Does not allocate.
    Result queue(const FrameMemory& memory, OpaqueCallback callback);
    Result flush();

    /// Memory and registers; InvalidAccess for a change of a camera that is open for reading.
    Result useMemory(bool change, const std::function<Result(CameraMemory&)>& use);

    bool takeQueued(QueuedFrame& frame);
    void counts(std::uint32_t& announced, std::uint32_t& queued);
    std::uint32_t frameNumber(const void* record);
    void hold(bool hold);
    /// The link will be another one.
    void onNetworkChanging();
    /// The camera cannot be reached until then.
    void cut(Nanoseconds until);
    /// Settings were changed from outside.
    void settle();
    /// The signal at the line was.
    void onLine();
    /// Timeout, or DeviceNotOpen when the session ended.
    Result waitForFrames(std::uint64_t count, Nanoseconds deadline);
    bool waitForEvents(Nanoseconds deadline);

  protected:
    std::mutex& mutex() override { return m_camera->mutex(); }
    FeatureTable& features() override { return m_camera->features(); }
    bool isLocked(const Feature& feature) const override {
        return feature.row.locked && m_camera->isAcquiring();
    }
    void round(const Feature& feature, FeatureValue& value) const override {
        m_camera->round(feature, value);
    }
    void refresh(const Feature& feature) override;
    bool isStored(const FeatureRow& row) const override { return isStreamable(row); }
    void onChanging() override { m_engine.catchUp(); }
    void onChanged(const Feature& feature) override;
    Result execute(Lock& lock, const char* command) override;
    void onDelivered() override;

  private:
    void onEvent(CameraEvent event, std::uint64_t frameId, Nanoseconds at) override;
    void onAutomaticChange(unsigned changes) override;
    bool isStartAnnounced() const override;
    void checkMemory(const AnnouncedFrame& frame);
    Result outcome() const { return isAlive() ? Result::Success : Result::BadHandle; }

    const Surroundings m_surroundings;
    SimulatorClock& m_clock;
    const std::shared_ptr<Camera> m_camera;
    const bool m_mayCapture;
    std::atomic<bool> m_alive{true};
    bool m_closed = false;
    void* m_handle = nullptr;
    std::uint64_t m_startEvent = 0;
    CaptureEngine m_engine;
};

}  // namespace simulator
