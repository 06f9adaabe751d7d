#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

#include "frame_ring.h"
#include "if_channel_sink.h"

namespace host {

/// Receives a channel's frames and keeps those of the recording: all whose time lies in [begin, begin +
/// length). The first one behind them is kept as well, marked as the end: it tells what is missing before
/// it. Copies and returns, never waits.
class RecordingSink final : public zelt::IfChannelSink {
  public:
    /// `length` of the recording in units of the times; `wake` is called when there is something to do for
    /// the writer, on the frame path. Without `begin` the recording begins with the channel's first frame.
    RecordingSink(std::int64_t length, std::function<void()> wake, std::optional<std::int64_t> begin = {})
        : m_length(length), m_wake(std::move(wake)), m_begin(begin) {}

    /// Takes the memory. Before this no frame is kept. [host, no acquisition under way]
    void makeRing(std::size_t slots, std::size_t slotBytes) {
        m_ring = std::make_unique<FrameRing>(slots, slotBytes);
    }
    FrameRing* ring() { return m_ring.get(); }

    void addSample(std::int64_t time, const void* data, std::uint64_t size) override;

    /// A frame at or past the end has come. [any thread]
    bool isPastEnd() const { return m_past_end.load(std::memory_order_acquire); }
    /// Time at which the recording ends. [when the frame marked as the end was taken from the ring]
    std::int64_t end() const { return m_begin.value_or(0) + m_length; }
    /// From now on nothing is kept. [any thread]
    void close() { m_closed.store(true, std::memory_order_relaxed); }

  private:
    std::int64_t m_length;
    std::function<void()> m_wake;
    std::unique_ptr<FrameRing> m_ring;
    std::optional<std::int64_t> m_begin;
    std::atomic<bool> m_past_end{false};
    std::atomic<bool> m_closed{false};
};

}  // namespace host
