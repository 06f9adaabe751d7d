#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "acquisition.h"
#include "camera_setup.h"
#include "if_channel_sink.h"

namespace host {

/// How one channel does.
struct WatchedChannel {
    ChannelInfo channel;
    std::uint64_t frames = 0;
    std::uint64_t lost = 0;   ///< between the first and the latest frame, by the camera's counters
    double rate = 0;          ///< frames per second since the last time, at the end over all of it
    std::string lastMessage;  ///< empty when there was none
};

struct WatchReport {
    double seconds = 0;
    std::vector<WatchedChannel> channels;
    bool cutShort = false;    ///< interrupted before its seconds were over; without any it never is
    std::string stopFailure;  ///< empty when the cameras stopped properly
};

struct WatchOptions {
    CameraSetup cameras;
    std::vector<SettingOrder> orders;  ///< all of them, those of the file included
    std::optional<double> seconds;     ///< empty: until interrupted
    std::chrono::nanoseconds interval = std::chrono::seconds(1);
};

/// What a watch tells while it runs. [main thread]
struct WatchHooks {
    std::function<bool()> isInterrupted = [] { return false; };
    std::function<void(const WatchReport&)> show = [](const WatchReport&) {};
    std::function<void(const std::string&)> tell = [](const std::string&) {};
    std::function<void(const SettingChange&)> changed = [](const SettingChange&) {};
};

/// Counts what comes. A counter's samples are 8 bytes, the lowest first. [vendor thread; reading: any thread]
class WatchSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void* data, std::uint64_t size) override;

    std::uint64_t samples() const { return m_samples.load(std::memory_order_acquire); }
    /// How far the counter went since its first sample.
    std::uint64_t progress() const { return m_progress.load(std::memory_order_acquire); }

  private:
    std::atomic<std::uint64_t> m_samples{0};
    std::atomic<std::uint64_t> m_progress{0};
    std::uint64_t m_first = 0;
};

/// Runs a session's cameras and counts their frames without keeping any; the session has frame counters.
/// [main thread]
class Watch {
  public:
    Watch(Session& session, WatchOptions options, WatchHooks hooks);

    /// Runs once. Throws HostFailure when the cameras cannot be started.
    WatchReport run();

  private:
    using Clock = std::chrono::steady_clock;

    struct Channel {
        ChannelInfo info;
        WatchSink frames;
        WatchSink sent;
        WatchSink received;
        std::uint64_t framesBefore = 0;
        std::uint64_t behindBefore = 0;
        std::uint64_t lost = 0;
    };

    void attach();
    /// Whether it got there before it was interrupted.
    bool watchUntilEnd();
    bool isOver(Clock::time_point now) const;
    static std::uint64_t lookForLosses(Channel& channel, bool isEnd);
    WatchReport look(double secondsSince, bool isEnd);

    Session& m_session;
    WatchOptions m_options;
    WatchHooks m_hooks;
    std::map<std::uint32_t, std::unique_ptr<Channel>> m_channels;
    MessageTeller m_messages;
    Acquisition m_acquisition;
    Clock::time_point m_started;
};

}  // namespace host
