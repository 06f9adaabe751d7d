/// The simulator under test: started, with helpers to open, configure and stream.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "latch.h"
#include "simulator.h"

namespace test_support {

inline const VmbHandle_t kSystem = reinterpret_cast<VmbHandle_t>(std::uintptr_t{1});

inline VmbInt64_t intOf(VmbHandle_t handle, const char* name) {
    VmbInt64_t value = -1;
    EXPECT_EQ(VmbFeatureIntGet(handle, name, &value), VmbErrorSuccess) << name;
    return value;
}

inline double floatOf(VmbHandle_t handle, const char* name) {
    double value = -1;
    EXPECT_EQ(VmbFeatureFloatGet(handle, name, &value), VmbErrorSuccess) << name;
    return value;
}

inline std::string enumOf(VmbHandle_t handle, const char* name) {
    const char* value = nullptr;
    EXPECT_EQ(VmbFeatureEnumGet(handle, name, &value), VmbErrorSuccess) << name;
    return value != nullptr ? value : "";
}

inline std::string stringOf(VmbHandle_t handle, const char* name) {
    char text[128] = "";
    EXPECT_EQ(VmbFeatureStringGet(handle, name, text, sizeof text, nullptr), VmbErrorSuccess) << name;
    return text;
}

inline std::vector<std::string> entriesOf(VmbHandle_t handle, const char* name) {
    std::vector<const char*> entries(32);
    VmbUint32_t filled = 0;
    EXPECT_EQ(VmbFeatureEnumRangeQuery(handle, name, entries.data(), 32, &filled), VmbErrorSuccess) << name;
    return {entries.begin(), entries.begin() + filled};
}

inline void run(VmbHandle_t handle, const char* command) {
    EXPECT_EQ(VmbFeatureCommandRun(handle, command), VmbErrorSuccess) << command;
}

inline void setEnum(VmbHandle_t handle, const char* name, const char* value) {
    EXPECT_EQ(VmbFeatureEnumSet(handle, name, value), VmbErrorSuccess) << name << " := " << value;
}

inline void setInt(VmbHandle_t handle, const char* name, VmbInt64_t value) {
    EXPECT_EQ(VmbFeatureIntSet(handle, name, value), VmbErrorSuccess) << name << " := " << value;
}

inline void setFloat(VmbHandle_t handle, const char* name, double value) {
    EXPECT_EQ(VmbFeatureFloatSet(handle, name, value), VmbErrorSuccess) << name << " := " << value;
}

/// Tries again and again until the condition holds; false when patience ends.
inline bool eventually(const std::function<bool()>& condition) {
    const std::uint64_t end = VmbSimTime() + std::uint64_t{kPatienceMs} * 1'000'000;
    while (!condition()) {
        if (VmbSimTime() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

/// A door that stays shut until it is opened.
class Door {
  public:
    void open() { m_latch.count_down(); }
    void wait() const { m_latch.wait(); }
    bool isOpen() const { return m_latch.try_wait(); }

  private:
    Latch m_latch{1};
};

class SimulatorTest : public ::testing::Test {
  protected:
    SimulatorTest() { EXPECT_EQ(VmbStartup(), VmbErrorSuccess); }
    ~SimulatorTest() override { VmbShutdown(); }

    static VmbHandle_t open(const char* id = kColourCamera) {
        VmbHandle_t handle = nullptr;
        EXPECT_EQ(VmbCameraOpen(id, VmbAccessModeFull, &handle), VmbErrorSuccess);
        return handle;
    }

    Simulator simulator;
};

/// What a frame callback got, with the verdict on its picture.
struct ReceivedFrame {
    VmbFrame_t record{};
    VmbSimFrameStamp stamp{};
    VmbError_t verdict = VmbErrorOther;
    std::uint64_t at = 0;  ///< true time of the callback
};

/// Frames of one camera: memory, and a callback that records, runs a hook and queues again.
class Stream {
  public:
    explicit Stream(VmbHandle_t handle, std::size_t count = 5) : camera(handle), frames(count) {
        const auto payload = static_cast<std::size_t>(intOf(camera, "PayloadSize"));
        for (VmbFrame_t& frame : frames) {
            m_memory.emplace_back(payload);
            frame = VmbFrame_t{};
            frame.buffer = m_memory.back().data();
            frame.bufferSize = static_cast<VmbUint32_t>(payload);
            frame.context[0] = this;
        }
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    void announceAll() {
        for (VmbFrame_t& frame : frames) {
            EXPECT_EQ(VmbFrameAnnounce(camera, &frame, sizeof frame), VmbErrorSuccess);
        }
    }
    VmbError_t queue(std::size_t index) { return VmbCaptureFrameQueue(camera, &frames[index], &onFrame); }
    void queueAll() {
        for (std::size_t i = 0; i < frames.size(); ++i) EXPECT_EQ(queue(i), VmbErrorSuccess);
    }
    /// Announces, starts capture, queues; acquisition is not started.
    void startCapture() {
        announceAll();
        EXPECT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
        queueAll();
    }
    void endCapture() {
        VmbFeatureCommandRun(camera, "AcquisitionStop");
        EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorSuccess);
        EXPECT_EQ(VmbCaptureQueueFlush(camera), VmbErrorSuccess);
        EXPECT_EQ(VmbFrameRevokeAll(camera), VmbErrorSuccess);
    }

    std::vector<ReceivedFrame> received() const {
        const std::lock_guard lock(m_mutex);
        return m_received;
    }
    std::vector<std::uint64_t> ids() const {
        std::vector<std::uint64_t> ids;
        for (const ReceivedFrame& frame : received()) ids.push_back(frame.record.frameID);
        return ids;
    }

    const VmbHandle_t camera;
    std::vector<VmbFrame_t> frames;
    std::function<void(VmbFrame_t&)> hook = [](VmbFrame_t&) {};
    std::atomic<bool> requeue{true};

  private:
    static void onFrame(const VmbHandle_t handle, VmbFrame_t* frame) {
        auto& self = *static_cast<Stream*>(frame->context[0]);
        ReceivedFrame received;
        received.at = VmbSimTime();
        received.record = *frame;
        received.verdict = VmbSimReadStamp(frame->buffer, frame->imageSize, &received.stamp);
        {
            const std::lock_guard lock(self.m_mutex);
            self.m_received.push_back(received);
        }
        self.hook(*frame);
        if (self.requeue) VmbCaptureFrameQueue(handle, frame, &onFrame);
    }

    std::vector<std::vector<std::uint8_t>> m_memory;
    mutable std::mutex m_mutex;
    std::vector<ReceivedFrame> m_received;
};

/// A camera that is ready to stream quickly: 8-bit grey, 1 ms exposure, fixed rate.
class StreamTest : public SimulatorTest {
  protected:
    VmbHandle_t openFast(const char* id = kColourCamera) {
        const VmbHandle_t camera = open(id);
        setEnum(camera, "PixelFormat", "Mono8");
        setEnum(camera, "TriggerMode", "Off");
        setFloat(camera, "ExposureTimeAbs", 1000);
        return camera;
    }
    static void waitForFrames(std::uint64_t count, const char* id = kColourCamera) {
        ASSERT_EQ(VmbSimWaitForFrames(id, count, kPatienceMs), VmbErrorSuccess);
    }
    static void waitForEvents() { ASSERT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess); }
    static std::pair<VmbUint32_t, VmbUint32_t> counts(const char* id = kColourCamera) {
        VmbUint32_t announced = 99;
        VmbUint32_t queued = 99;
        EXPECT_EQ(VmbSimFrameCounts(id, &announced, &queued), VmbErrorSuccess);
        return {announced, queued};
    }
};

/// Records invalidations; one hook for all.
class Invalidations {
  public:
    static void on(const VmbHandle_t handle, const char* name, void* context) {
        auto& self = *static_cast<Invalidations*>(context);
        {
            const std::lock_guard lock(self.m_mutex);
            self.m_names.emplace_back(name);
        }
        self.hook(handle, name);
    }
    void registerOn(VmbHandle_t handle, const char* name) {
        EXPECT_EQ(VmbFeatureInvalidationRegister(handle, name, &on, this), VmbErrorSuccess) << name;
    }
    std::vector<std::string> names() const {
        const std::lock_guard lock(m_mutex);
        return m_names;
    }
    void clear() {
        const std::lock_guard lock(m_mutex);
        m_names.clear();
    }
    std::function<void(VmbHandle_t, const char*)> hook = [](VmbHandle_t, const char*) {};

  private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_names;
};

}  // namespace test_support
