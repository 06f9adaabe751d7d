/// A channel that publishes a count of events.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "if_channel_sink.h"
#include "zeltpu_simple_channel_config.h"

namespace zelt::plugin_util {

/// An ordinary channel with a fixed description, of whose settings only "Used" can be set. Further settings
/// may be registered by the owner before the channel is shared.
///
/// The settings and the used flag may be used from several threads. Counter and sink are not locked: the
/// owner calls the operations on them one at a time, under a mutex of its own. They allocate nothing; what
/// the sink throws passes on, after the count has changed.
class EventCounterChannel : public SimpleChannelConfig {
  public:
    /// `name` becomes the setting "DefaultName", `shortId` "ShortId", `unit` the unit of the count.
    EventCounterChannel(const std::string& name, const std::string& shortId, const std::string& unit);

    bool isUsed() const { return m_used; }
    std::uint64_t getCount() const { return m_count; }

    /// Sets the receiver of the samples, null for none. Owned by the caller, who keeps it alive until it is
    /// replaced.
    void setSink(IfChannelSink* sink) { m_sink = sink; }
    /// Begins to count anew, at 0 and without a sample.
    void restart() { m_count = 0; }
    /// Sets the count; with a sink, and while the channel is used, one sample of it is written. `time`: as
    /// the sink wants it.
    void setCount(std::int64_t time, std::uint64_t count);
    /// Counts one event more, with a sample as above.
    void increment(std::int64_t time);

  private:
    std::atomic<bool> m_used{true};
    std::uint64_t m_count = 0;
    IfChannelSink* m_sink = nullptr;
};

}  // namespace zelt::plugin_util
