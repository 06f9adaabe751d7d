#include "watch.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <thread>
#include <utility>

namespace host {
namespace {

constexpr auto kPoll = std::chrono::milliseconds(50);

std::uint64_t countOf(const void* data, std::uint64_t size) {
    std::array<unsigned char, 8> bytes{};
    if (size != bytes.size()) return 0;
    std::memcpy(bytes.data(), data, bytes.size());
    std::uint64_t count = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) count = (count << 8u) | bytes[i];
    return count;
}

double secondsOf(std::chrono::steady_clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace

void WatchSink::addSample(std::int64_t, const void* data, std::uint64_t size) {
    const std::uint64_t count = countOf(data, size);
    if (m_samples.load(std::memory_order_relaxed) == 0) m_first = count;
    m_progress.store(count - m_first, std::memory_order_release);
    m_samples.fetch_add(1, std::memory_order_release);
}

Watch::Watch(Session& session, WatchOptions options, WatchHooks hooks)
    : m_session(session),
      m_options(std::move(options)),
      m_hooks(std::move(hooks)),
      m_messages(session.messages(), m_hooks.tell),
      m_acquisition(session, m_messages, m_options.cameras.aux, m_hooks.tell) {}

WatchReport Watch::run() {
    attach();
    m_acquisition.prepare();
    m_started = Clock::now();
    m_acquisition.start();
    const bool gotThere = watchUntilEnd();
    const double seconds = secondsOf(Clock::now() - m_started);
    const std::string stopFailure = m_acquisition.stop();
    WatchReport report = look(seconds, true);
    report.cutShort = m_options.seconds && !gotThere;
    report.stopFailure = stopFailure;
    return report;
}

void Watch::attach() {
    const auto chosen = setUpCameras(m_session, m_options.cameras, m_options.orders, m_hooks.changed);
    for (const auto& [id, info] : m_session.readChannels()) {
        if (!chosen.contains(id)) continue;
        auto channel = std::make_unique<Channel>();
        channel->info = info;
        m_session.plugin().setChannelSink(id, &channel->frames);
        if (const auto counters = m_session.frameCounters(id)) {
            m_session.plugin().setChannelSink(counters->sent, &channel->sent);
            m_session.plugin().setChannelSink(counters->received, &channel->received);
        }
        m_channels.emplace(id, std::move(channel));
    }
}

bool Watch::isOver(Clock::time_point now) const {
    return m_options.seconds && secondsOf(now - m_started) >= *m_options.seconds;
}

bool Watch::watchUntilEnd() {
    auto shown = m_started;
    while (!isOver(Clock::now())) {
        if (m_hooks.isInterrupted()) return false;
        std::this_thread::sleep_for(kPoll);
        m_acquisition.process();
        const auto now = Clock::now();
        if (now - shown < m_options.interval) continue;
        m_hooks.show(look(secondsOf(now - std::exchange(shown, now)), false));
    }
    return true;
}

std::uint64_t Watch::lookForLosses(Channel& channel, bool isEnd) {
    // A frame counts as sent a moment before it counts as received, so while frames come only what stays
    // from one look to the next is lost.
    const std::uint64_t sent = channel.sent.progress();
    const std::uint64_t received = channel.received.progress();
    const std::uint64_t behind = sent > received ? sent - received : 0;
    const std::uint64_t before = std::exchange(channel.behindBefore, behind);
    if (isEnd) return behind;
    return channel.lost = std::max(channel.lost, std::min(behind, before));
}

WatchReport Watch::look(double secondsSince, bool isEnd) {
    WatchReport report;
    report.seconds = isEnd ? secondsSince : secondsOf(Clock::now() - m_started);
    const auto messages = m_session.messages().latest();
    for (const auto& [id, channel] : m_channels) {
        WatchedChannel row;
        row.channel = channel->info;
        row.frames = channel->frames.samples();
        row.lost = lookForLosses(*channel, isEnd);
        const std::uint64_t before = isEnd ? 0 : std::exchange(channel->framesBefore, row.frames);
        if (secondsSince > 0) row.rate = static_cast<double>(row.frames - before) / secondsSince;
        if (const auto message = messages.find(id); message != messages.end()) {
            row.lastMessage = message->second;
        }
        report.channels.push_back(std::move(row));
    }
    return report;
}

}  // namespace host
