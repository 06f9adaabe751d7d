#pragma once

#include <cstdint>
#include <vector>

#include "allocation_counter.h"
#include "plugin_fixture.h"

namespace test_support {

/// One camera whose frames the test delivers itself.
class FramesByHand : public PluginTest {
  protected:
    explicit FramesByHand(bool withCounters = false) {
        VmbSimUnplugCamera(kMonochromeCamera);
        if (withCounters) wantFrameCounters(true);
        enumerate();
        VmbSimHoldSensor(kColourCamera, true);
        plugin->setChannelSink(0, &sink);
        start();
        VmbSimWaitForEvents(kPatienceMs);
        clock->fixed = 1'000'000'000'000;
    }
    ~FramesByHand() override {
        if (plugin == nullptr) return;
        stop();
        plugin->clearChannelSinks();
    }

    /// Takes a queued buffer, makes it a complete frame, and calls the registered callback. Gives the number
    /// of allocations of that call.
    std::size_t deliver(std::uint64_t id, std::uint64_t ticks) {
        VmbHandle_t handle = nullptr;
        VmbFrame_t* frame = nullptr;
        VmbFrameCallback callback = nullptr;
        if (VmbSimTakeQueuedFrame(kColourCamera, &handle, &frame, &callback) != VmbErrorSuccess) {
            ADD_FAILURE() << "No buffer is queued";
            return 0;
        }
        frame->receiveStatus = VmbFrameStatusComplete;
        frame->receiveFlags = VmbFrameFlagsFrameID | VmbFrameFlagsTimestamp;
        frame->frameID = id;
        frame->timestamp = ticks;
        frame->imageSize = 645'504;
        last = frame->buffer;
        const AllocationCounter counter;
        callback(handle, frame);
        return counter.count();
    }
    std::vector<std::int64_t> times() const {
        std::vector<std::int64_t> found;
        for (const Sample& sample : sink.samples()) found.push_back(sample.time);
        return found;
    }

    RecordingSink sink;
    const void* last = nullptr;
};

}  // namespace test_support
