#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>

#include "acquisition.h"
#include "camera_setup.h"
#include "progress.h"
#include "recording_writer.h"

namespace host {

struct RecordingOptions {
    double seconds = 0;
    std::filesystem::path directory;
    CameraSetup cameras;
    std::vector<SettingOrder> orders;  ///< all of them, those of the file included
    std::int64_t maxSpreadNs = kMaxSpreadNs;
    std::vector<OptionTexts> options;  ///< for the report
    /// How long after its end a recording waits for a channel that has not got there.
    std::chrono::nanoseconds grace = std::chrono::seconds(3);
};

/// What a recording tells while it runs. [main thread]
struct RecordingHooks {
    std::function<bool()> isInterrupted = [] { return false; };
    std::function<void(const Progress&)> showProgress = [](const Progress&) {};
    std::function<void(const std::string&)> tell = [](const std::string&) {};
    std::function<void(const SettingChange&)> changed = [](const SettingChange&) {};
    /// All cameras as they are set, and those that are used.
    std::function<void(const std::map<std::uint32_t, ChannelInfo>&, const std::set<std::uint32_t>&)> chosen =
        [](const auto&, const auto&) {};
};

/// One acquisition of a session's channels, from preparing the cameras to the files on disk. Whatever
/// happens, the plug-in holds none of its sinks afterwards. [main thread]
class Recording {
  public:
    Recording(Session& session, RecordingOptions options, RecordingHooks hooks);
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// Runs once. Throws HostFailure when nothing was recorded; everything later stands in the report.
    RecordingReport run();

  private:
    using Clock = std::chrono::steady_clock;

    void selectChannels();
    void attachSinks();
    void attachSink(std::uint32_t id, const ChannelInfo& channel);
    void makeCounterFile(std::uint32_t id, CounterKind kind, const ChannelInfo& channel);
    void noteTooFast(std::size_t messagesBefore);
    void makeFiles();
    Outcome waitForEnd();
    bool isOver(Clock::time_point deadline) const;
    void finishReport(RecordingReport& report);
    void describe(RecordingReport& report) const;
    void addPictures(RecordingReport& report);
    std::chrono::nanoseconds patience() const;
    Progress progress(Clock::time_point now) const;

    Session& m_session;
    RecordingOptions m_options;
    RecordingHooks m_hooks;
    std::map<std::uint32_t, ChannelInfo> m_channels;
    std::set<std::uint32_t> m_too_fast;
    std::map<std::uint32_t, std::vector<std::pair<std::string, std::string>>> m_settings;
    std::map<std::uint32_t, std::unique_ptr<RecordingSink>> m_sinks;
    RecordingWriter m_writer;
    bool m_has_recorded = false;
    Clock::time_point m_started;
    std::string m_started_utc;
    MessageTeller m_messages;
    Acquisition m_acquisition;
};

}  // namespace host
