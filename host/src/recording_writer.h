#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "channel_files.h"
#include "counter_file.h"
#include "recording_sink.h"

namespace host {

/// Writes the frames of all channels from one thread of its own.
class RecordingWriter {
  public:
    /// `reader` null: pictures carry no stamps.
    explicit RecordingWriter(const IfStampReader* reader) : m_reader(reader) {}
    ~RecordingWriter() { finish(); }
    RecordingWriter(const RecordingWriter&) = delete;
    RecordingWriter& operator=(const RecordingWriter&) = delete;

    /// Adds a channel; its sink has its ring and outlives the writing. Throws HostFailure when the files
    /// cannot be made. [before start]
    void addChannel(const ChannelInfo& channel, RecordingSink& sink, const std::filesystem::path& directory);
    /// Adds a counter of a channel added before; as above.
    void addCounter(const ChannelInfo& channel, CounterKind kind, RecordingSink& sink,
                    const std::filesystem::path& directory);
    void start();
    /// Tells the thread that there are frames. Never waits. [any thread]
    void wake() { m_work.notify_one(); }
    /// Writes what is left, ends the thread and closes the files. May be called again.
    void finish();
    /// Ends the thread and removes the files, so that the directory can be used again.
    void discard();

    std::uint64_t frames() const { return m_frames.load(std::memory_order_relaxed); }  ///< [any thread]
    std::uint64_t lost() const { return m_lost.load(std::memory_order_relaxed); }      ///< [any thread]
    bool hasFailed() const { return m_failed.load(std::memory_order_acquire); }        ///< [any thread]

    /// Reason of the failure. [after finish]
    const std::string& failure() const { return m_failure; }
    /// Reports in the order in which the channels were added; `start` as for RecordingStatistics. [after
    /// finish]
    std::vector<ChannelReport> reports(const std::optional<PulseStart>& start = {}) const;
    /// Files of the channels in the same order. [after finish]
    std::vector<const ChannelFiles*> files() const;

  private:
    struct Channel {
        ChannelInfo info;
        RecordingSink* sink;
        ChannelFiles files;
        RecordingStatistics statistics;
    };

    struct Counter {
        std::uint32_t channel;
        CounterKind kind;
        RecordingSink* sink;
        CounterFile file;
        /// What is missing by the numbers that the counter gives; of a triggered camera's sent frames.
        std::optional<RecordingStatistics> numbers;
    };

    void run();
    void drain();
    bool writeOne(Channel& channel);
    bool writeOne(Counter& counter);
    bool write(Channel& channel, const RingFrame& frame, const StampReading& reading);
    static bool write(Counter& counter, const RingFrame& sample);
    void addCounters(ChannelReport& report) const;
    void fail(const std::string& why);

    const IfStampReader* m_reader;
    std::vector<Channel> m_channels;
    std::vector<Counter> m_counters;
    std::mutex m_mutex;
    std::condition_variable m_work;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_failed{false};
    std::atomic<std::uint64_t> m_frames{0};
    std::atomic<std::uint64_t> m_lost{0};
    std::string m_failure;
    std::thread m_thread;
};

}  // namespace host
