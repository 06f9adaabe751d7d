#include "recording.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

#include "host_failure.h"
#include "output_directory.h"
#include "picture_files.h"
#include "quantity_text.h"
#include "setting_info.h"

namespace host {
namespace {

constexpr auto kRedraw = std::chrono::milliseconds(100);
constexpr double kUnknownRate = 50;

/// How the plug-in begins to say that a camera cannot follow the trigger output.
constexpr const char* kTooFast = "Sync Out AUX frequency is too fast";

std::chrono::nanoseconds toNanoseconds(double seconds) {
    return std::chrono::nanoseconds(std::llround(seconds * 1e9));
}

/// In pulses for a triggered camera; one whose rate is not known could not be prepared anyway.
std::int64_t sinkLength(double seconds, const ChannelInfo& channel) {
    if (channel.timeBase == TimeBase::Nanoseconds) return toNanoseconds(seconds).count();
    return pulsesIn(seconds, channel.rate.value_or(kUnknownRate));
}

/// Pulses are counted from the start of the acquisition.
std::optional<std::int64_t> sinkBegin(const ChannelInfo& channel) {
    return channel.timeBase == TimeBase::Pulses ? std::optional<std::int64_t>(0) : std::nullopt;
}

std::vector<std::pair<std::string, std::string>> settingTexts(channel_config::IfChannelConfig& config) {
    std::vector<std::pair<std::string, std::string>> texts;
    for (const SettingInfo& setting : readSettings(config)) {
        if (!setting.hasValue || setting.changeable == Changeable::AsAction) continue;
        texts.emplace_back(setting.key, setting.valueWithUnit());
    }
    return texts;
}

}  // namespace

Recording::Recording(Session& session, RecordingOptions options, RecordingHooks hooks)
    : m_session(session),
      m_options(std::move(options)),
      m_hooks(std::move(hooks)),
      m_writer(session.vendor().stampReader()),
      m_messages(session.messages(), m_hooks.tell),
      m_acquisition(session, m_messages, m_options.cameras.aux, m_hooks.tell) {}

Recording::~Recording() {
    m_session.plugin().cancelAcquisition();
    if (!m_has_recorded) m_writer.discard();
}

RecordingReport Recording::run() {
    selectChannels();
    prepareOutputDirectory(m_options.directory);
    attachSinks();
    // What a camera told while its settings changed may be true no longer.
    m_messages.tell();
    const std::size_t messagesBefore = m_messages.told().size();
    m_acquisition.prepare();
    noteTooFast(messagesBefore);
    makeFiles();
    if (m_hooks.isInterrupted()) {
        throw HostFailure(ExitCode::Interrupted,
                          "Interrupted before the recording began; nothing was recorded.");
    }
    m_started = Clock::now();
    m_started_utc = utcText(std::chrono::system_clock::now());
    m_acquisition.start();
    m_has_recorded = true;

    RecordingReport report;
    report.outcome = waitForEnd();
    report.recordedSeconds = std::chrono::duration<double>(Clock::now() - m_started).count();
    // Nothing calls the sinks any more before the writer writes the rest.
    report.stopFailure = m_acquisition.stop();
    m_writer.finish();
    finishReport(report);
    return report;
}

void Recording::selectChannels() {
    const auto chosen = setUpCameras(m_session, m_options.cameras, m_options.orders, m_hooks.changed);
    const auto channels = m_session.readChannels();
    m_hooks.chosen(channels, chosen);
    for (const auto& [id, channel] : channels) {
        if (chosen.contains(id)) m_channels.emplace(id, channel);
    }
}

void Recording::attachSinks() {
    for (const auto& [id, channel] : m_channels) {
        attachSink(id, channel);
        if (const auto counters = m_session.frameCounters(id)) {
            attachSink(counters->sent, channel);
            attachSink(counters->received, channel);
        }
    }
}

void Recording::attachSink(std::uint32_t id, const ChannelInfo& channel) {
    auto sink = std::make_unique<RecordingSink>(
        sinkLength(m_options.seconds, channel), [this] { m_writer.wake(); }, sinkBegin(channel));
    m_session.plugin().setChannelSink(id, sink.get());
    m_sinks.emplace(id, std::move(sink));
}

void Recording::noteTooFast(std::size_t messagesBefore) {
    const std::vector<ChannelMessage>& told = m_messages.told();
    for (std::size_t i = messagesBefore; i < told.size(); ++i) {
        if (told[i].sentence.starts_with(kTooFast)) m_too_fast.insert(told[i].channel);
    }
}

void Recording::makeFiles() {
    const auto now = m_session.readChannels();  // preparing may have changed format and size
    for (auto& [id, channel] : m_channels) {
        channel = now.at(id);
        m_settings[id] = settingTexts(*m_session.config(id));
        const std::uint64_t bytes = channel.pictureBytes();
        m_sinks.at(id)->makeRing(ringSlots(channel.rate.value_or(kUnknownRate), bytes), bytes);
        m_writer.addChannel(channel, *m_sinks.at(id), m_options.directory);
        if (const auto counters = m_session.frameCounters(id)) {
            makeCounterFile(counters->sent, CounterKind::Sent, channel);
            makeCounterFile(counters->received, CounterKind::Received, channel);
        }
    }
    m_writer.start();
}

void Recording::makeCounterFile(std::uint32_t id, CounterKind kind, const ChannelInfo& channel) {
    constexpr std::size_t kCountBytes = 8;
    RecordingSink& sink = *m_sinks.at(id);
    sink.makeRing(ringSlots(channel.rate.value_or(kUnknownRate), kCountBytes), kCountBytes);
    m_writer.addCounter(channel, kind, sink, m_options.directory);
}

std::chrono::nanoseconds Recording::patience() const {
    double longestPeriod = 0;
    for (const auto& [id, channel] : m_channels) {
        if (channel.rate) longestPeriod = std::max(longestPeriod, 1 / *channel.rate);
    }
    // The first frame comes up to a period after the start, the one that marks the end up to one after it.
    return toNanoseconds(m_options.seconds + 2 * longestPeriod) + m_options.grace;
}

bool Recording::isOver(Clock::time_point deadline) const {
    return Clock::now() >= deadline || std::all_of(m_sinks.begin(), m_sinks.end(), [](const auto& entry) {
               return entry.second->isPastEnd();
           });
}

Outcome Recording::waitForEnd() {
    const auto deadline = m_started + patience();
    while (!isOver(deadline)) {
        if (m_hooks.isInterrupted()) return Outcome::Interrupted;
        if (m_writer.hasFailed()) return Outcome::WriteFailed;
        m_acquisition.process();
        m_hooks.showProgress(progress(Clock::now()));
        std::this_thread::sleep_for(kRedraw);
    }
    return Outcome::Complete;
}

void Recording::describe(RecordingReport& report) const {
    report.title = m_session.title();
    report.plugin = m_session.plugin().name();
    report.vendorVersion = m_session.vendor().version();
    report.scenario = m_session.vendor().scenario();
    report.startedUtc = m_started_utc;
    if (m_options.cameras.aux) report.trigger = m_options.cameras.aux->text();
    report.options = m_options.options;
    report.seconds = m_options.seconds;
    report.maxSpreadNs = m_options.maxSpreadNs;
    report.directory = m_options.directory.string();
}

void Recording::finishReport(RecordingReport& report) {
    if (m_writer.hasFailed()) report.outcome = Outcome::WriteFailed;
    report.writeFailure = m_writer.failure();
    describe(report);
    report.channels = m_writer.reports(m_acquisition.pulseStart());
    for (ChannelReport& channel : report.channels) {
        channel.settings = m_settings[channel.channel.id];
        channel.warnedTooFast = m_too_fast.contains(channel.channel.id);
        if (const auto* reader = m_session.vendor().underrunReader(); reader != nullptr) {
            channel.underruns = reader->underruns(channel.channel.shortId);
        }
    }
    for (const ChannelMessage& message : m_messages.told()) report.messages.push_back(message.text());
    addPictures(report);
    Progress last = progress(Clock::now());
    if (report.outcome == Outcome::Complete) last.elapsed = last.seconds;
    m_hooks.showProgress(last);
}

void Recording::addPictures(RecordingReport& report) {
    const auto files = m_writer.files();
    for (std::size_t i = 0; i < files.size(); ++i) {
        const auto pictures = writePictures(report.channels[i].channel, *files[i]);
        report.pictureFiles.insert(report.pictureFiles.end(), pictures.written.begin(),
                                   pictures.written.end());
        for (const std::string& name : pictures.failed) {
            m_hooks.tell("The picture " + name + " could not be written; the frames themselves are intact.");
            report.failedPictures.push_back(name);
        }
    }
}

Progress Recording::progress(Clock::time_point now) const {
    return {m_options.seconds, std::chrono::duration<double>(now - m_started).count(), m_writer.frames(),
            m_writer.lost(), m_options.directory.string()};
}

}  // namespace host
