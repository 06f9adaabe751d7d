/// One camera of a long run: what it was told to do, what became of it, and what it delivered.
#pragma once

#include "long_run_fixture.h"

namespace test_support {

/// Takes each frame and looks at it; keeps none.
class AccountingSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void* data, std::uint64_t size) override {
        const StampedFrame frame = readFrame(time, data, size);
        if (frames > 0 && time <= m_time) ++outOfOrder;
        if (frames > 0 && frame.truth.frameId <= m_id) ++outOfOrder;
        m_time = time;
        m_id = frame.truth.frameId;
        ++frames;
    }

    std::uint64_t frames = 0;
    std::uint64_t outOfOrder = 0;

  private:
    std::int64_t m_time = 0;
    std::uint64_t m_id = 0;
};

/// The rhythm of a recording. Rates divide a second.
struct Rhythm {
    bool triggered = false;
    std::uint64_t perSecond = 1;

    std::uint64_t period() const { return kSecond / perSecond; }
};

struct SoakCamera {
    std::string id;
    bool plugged = true;
    bool used = true;

    // Of the recording under way.
    std::uint32_t channel = 0;
    Rhythm rhythm;
    std::uint64_t injected = 0;   ///< frames that were ordered to be lost
    bool outOfReach = false;      ///< for a moment, which costs frames, too
    std::uint64_t unplugged = 0;  ///< when, or 0
    AccountingSink sink;
    LatestCount sent;
    LatestCount received;

    void begin(std::uint32_t channelId, Rhythm wanted) {
        channel = channelId;
        rhythm = wanted;
        injected = 0;
        outOfReach = false;
        unplugged = 0;
        sink = AccountingSink();
        sent = LatestCount();
        received = LatestCount();
    }
    /// Frames that the counters name as lost. The first frame of a run has the number that its counter starts
    /// from.
    std::uint64_t named() const { return sent.value + 1 - received.value; }
};

}  // namespace test_support
