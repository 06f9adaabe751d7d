#include "recording_writer.h"

#include <chrono>
#include <utility>

namespace host {
namespace {

bool isTriggered(const ChannelInfo& channel) {
    return channel.timeBase == TimeBase::Pulses;
}

/// Tells which of the pulses without a picture were skipped, as the numbers of the sent frames have it.
void tellSkippedFromLost(ChannelReport& report, const ChannelReport& numbers) {
    const std::vector<PulseSpan> gaps = std::exchange(report.pulses->unclear, {});
    report.pulses->skipped = numbers.pulses->skipped;
    report.pulses->lost = without(gaps, numbers.pulses->skipped);
    report.lost = numbers.lost + report.lostInHost;
    report.lostBehindEnd = numbers.lostBehindEnd;
}

}  // namespace

void RecordingWriter::addChannel(const ChannelInfo& channel, RecordingSink& sink,
                                 const std::filesystem::path& directory) {
    const bool stamped = m_reader != nullptr && channel.pictureBytes() >= kStampBytes;
    m_channels.push_back({channel, &sink, ChannelFiles(directory, channel.id, stamped, channel.timeBase),
                          RecordingStatistics(stamped, channel.rate, channel.timeBase)});
}

void RecordingWriter::addCounter(const ChannelInfo& channel, CounterKind kind, RecordingSink& sink,
                                 const std::filesystem::path& directory) {
    Counter counter{channel.id, kind, &sink, CounterFile(directory, channel, kind), {}};
    if (kind == CounterKind::Sent && isTriggered(channel)) {
        counter.numbers.emplace(true, channel.rate, channel.timeBase);
    }
    m_counters.push_back(std::move(counter));
}

void RecordingWriter::start() {
    m_thread = std::thread([this] { run(); });
}

void RecordingWriter::run() {
    // A wake-up that comes between looking and waiting is missed; the time limit makes up for it, so that
    // the frame path never needs the mutex.
    constexpr auto kPatience = std::chrono::milliseconds(20);
    while (!m_stop.load(std::memory_order_acquire)) {
        drain();
        std::unique_lock lock(m_mutex);
        m_work.wait_for(lock, kPatience);
    }
    drain();
}

void RecordingWriter::drain() {
    for (bool more = true; more && !hasFailed();) {
        more = false;
        for (Channel& channel : m_channels) more = writeOne(channel) || more;
        for (Counter& counter : m_counters) more = writeOne(counter) || more;
    }
    std::uint64_t lost = 0;
    for (const Channel& channel : m_channels) {
        lost += channel.statistics.lost(channel.sink->ring()->lost());
    }
    m_lost.store(lost, std::memory_order_relaxed);
}

bool RecordingWriter::writeOne(Channel& channel) {
    RingFrame frame;
    if (hasFailed() || !channel.sink->ring()->front(frame)) return false;
    StampReading reading;
    if (m_reader != nullptr) {
        reading.result = m_reader->read(frame.bytes.data(), frame.bytes.size(), reading.stamp);
    }
    if (frame.isEnd) {
        channel.statistics.addEnd(frame, reading, channel.sink->end());
    } else if (!write(channel, frame, reading)) {
        fail(channel.files.failure());
    }
    channel.sink->ring()->pop();
    return true;
}

bool RecordingWriter::write(Channel& channel, const RingFrame& frame, const StampReading& reading) {
    if (!channel.files.append(frame, reading)) return false;
    channel.statistics.add(frame, reading);
    m_frames.fetch_add(1, std::memory_order_relaxed);
    return true;
}

bool RecordingWriter::writeOne(Counter& counter) {
    RingFrame sample;
    if (hasFailed() || !counter.sink->ring()->front(sample)) return false;
    if (!write(counter, sample)) fail(counter.file.failure());
    counter.sink->ring()->pop();
    return true;
}

bool RecordingWriter::write(Counter& counter, const RingFrame& sample) {
    if (!(sample.isEnd ? counter.file.appendEnd(sample) : counter.file.append(sample))) return false;
    const std::optional<std::uint64_t> count = countOf(sample);
    if (!counter.numbers || !count) return true;
    StampReading reading;
    reading.result = VmbErrorSuccess;
    reading.stamp.frameId = *count + 1;  // the counter tells how many were sent before
    if (sample.isEnd) {
        counter.numbers->addEnd(sample, reading, counter.sink->end());
    } else {
        counter.numbers->add(sample, reading);
    }
    return true;
}

void RecordingWriter::fail(const std::string& why) {
    if (m_failure.empty()) m_failure = why;
    for (Channel& channel : m_channels) channel.sink->close();
    for (Counter& counter : m_counters) counter.sink->close();
    m_failed.store(true, std::memory_order_release);
}

void RecordingWriter::finish() {
    if (!m_thread.joinable()) return;
    m_stop.store(true, std::memory_order_release);
    m_work.notify_one();
    m_thread.join();
    for (Channel& channel : m_channels) {
        if (!channel.files.close()) fail(channel.files.failure());
    }
    for (Counter& counter : m_counters) {
        if (!counter.file.close()) fail(counter.file.failure());
    }
}

void RecordingWriter::discard() {
    finish();
    for (Channel& channel : m_channels) channel.files.remove();
    for (Counter& counter : m_counters) counter.file.remove();
}

void RecordingWriter::addCounters(ChannelReport& report) const {
    for (const Counter& counter : m_counters) {
        if (counter.channel != report.channel.id) continue;
        if (!report.counters) report.counters.emplace();
        const bool isSent = counter.kind == CounterKind::Sent;
        (isSent ? report.counters->sent : report.counters->received) = counter.file.counted();
        const std::uint64_t unusable = counter.file.malformed() + counter.sink->ring()->lost();
        report.counters->unusable += unusable;
        if (counter.numbers && !report.stamped && unusable == 0) {
            tellSkippedFromLost(report, counter.numbers->report(0));
        }
    }
}

std::vector<ChannelReport> RecordingWriter::reports(const std::optional<PulseStart>& start) const {
    std::vector<ChannelReport> reports;
    for (const Channel& channel : m_channels) {
        const FrameRing& ring = *channel.sink->ring();
        ChannelReport report = channel.statistics.report(ring.lost(), start);
        report.channel = channel.info;
        report.tooLarge = ring.tooLarge();
        report.tooSmall = m_reader != nullptr && !report.stamped;
        report.silent = !channel.sink->isPastEnd();
        addCounters(report);
        reports.push_back(std::move(report));
    }
    return reports;
}

std::vector<const ChannelFiles*> RecordingWriter::files() const {
    std::vector<const ChannelFiles*> files;
    for (const Channel& channel : m_channels) files.push_back(&channel.files);
    return files;
}

}  // namespace host
