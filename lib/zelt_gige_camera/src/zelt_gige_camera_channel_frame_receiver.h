/// Turns a camera's frames into time-stamped samples of the host's data stream.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include "clocks.h"
#include "if_channel_sink.h"
#include "if_master_clock.h"
#include "zelt_gige_camera_channel_frame_counters.h"
#include "zelt_gige_clock_sync_base.h"

namespace zelt_gige_camera {

/// The state of one channel's frame stream. Not locked: every call is made under the channel's mutex.
class FrameReceiver {
  public:
    /// `counter` measures how long a frame waited for its synchronization point; it must outlive this.
    explicit FrameReceiver(platform::PerformanceCounter& counter) : m_counter(counter) {}

    void setSink(zelt::IfChannelSink* sink) { m_sink = sink; }
    /// Counts frames from now on; empty for none.
    void setCounters(std::shared_ptr<FrameCounters> counters) { m_counters = std::move(counters); }
    void setMasterClock(std::shared_ptr<zelt::IfMasterClock> clock) { m_master_clock = std::move(clock); }
    bool hasMasterClock() const { return m_master_clock != nullptr; }

    /// A new acquisition: frames count from here on.
    void begin(std::unique_ptr<ClockSyncBase> generator);
    /// No acquisition: the generator goes, and frames are ignored until the next one begins.
    void reset();
    /// The acquisition ended or could not start: later frames are ignored.
    void stop() { m_running = false; }
    bool isRunning() const { return m_running; }
    /// The camera's acquisition-start event; without an acquisition nothing happens.
    void setReference(std::uint64_t timestamp, std::uint64_t frameid);

    /// `arrived`: the counter's reading when the callback was entered; empty for just now. The path of every
    /// frame: allocates nothing, but for the log library's one per record of an irregular frame, also of a
    /// record that no one takes.
    void receive(const zelt_gige_api::CameraFrame& frame, std::optional<std::int64_t> arrived);

  private:
    static constexpr std::int64_t kNoTimestamp = std::numeric_limits<std::int64_t>::min();

    std::int64_t timestampWithSyncPoint(const zelt_gige_api::CameraFrame& frame,
                                        std::optional<std::int64_t> arrived);

    platform::PerformanceCounter& m_counter;
    std::shared_ptr<zelt::IfMasterClock> m_master_clock;
    zelt::IfChannelSink* m_sink = nullptr;
    std::shared_ptr<FrameCounters> m_counters;
    std::unique_ptr<ClockSyncBase> m_timestamp_generator;
    std::int64_t m_previous_timestamp = kNoTimestamp;
    bool m_running = false;
};

}  // namespace zelt_gige_camera
