/// What came of a recording, as plain data.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "channel_info.h"
#include "pulse_statistics.h"

namespace host {

/// How late a thread may wake up on a system that is no real-time one: a clock fit has only the moment of a
/// frame's callback to go by. Far below what any part of the way takes.
inline constexpr std::int64_t kLateThreadNs = 500'000;

/// Spread of 99 % of the frames that is good enough unless the user says otherwise.
inline constexpr std::int64_t kMaxSpreadNs = 1'000'000;

/// Host time of a frame minus the true start of its exposure, over a whole recording.
struct TimeError {
    std::int64_t constantNs = 0;   ///< median
    std::int64_t wayNs = 0;        ///< median of the nominal time from exposure to delivery
    std::int64_t delayP99Ns = 0;   ///< 99 % of the frames were handed over this much later than that or less
    std::int64_t spreadP99Ns = 0;  ///< 99 % of the frames lie within this distance of the median
    std::int64_t spreadMaxNs = 0;  ///< all of them do
    /// Frames whose time is earlier than true start of exposure and way, by more than a thread may be late.
    std::uint64_t early = 0;
};

/// What a camera's counters say of the frames recorded.
struct CounterReport {
    std::uint64_t sent = 0;
    std::uint64_t received = 0;
    std::uint64_t unusable = 0;  ///< samples that were malformed or found the host's memory full
};

struct ChannelReport {
    ChannelInfo channel;
    std::vector<std::pair<std::string, std::string>> settings;  ///< as recorded with: key and text
    std::uint64_t frames = 0;
    /// Missing between, before or behind the frames recorded; with unclear pulses it may be fewer.
    std::uint64_t lost = 0;
    std::uint64_t lostInHost = 0;  ///< of these: refused by the host's memory
    std::uint64_t tooLarge = 0;    ///< of the refused ones: larger than the picture that was set
    std::uint64_t lostBehindEnd =
        0;  ///< not of these: missing behind the end, before the frame that showed it
    std::optional<std::uint64_t> underruns;  ///< came between start and stop when no buffer was queued
    std::uint64_t doubled = 0;               ///< came with a number that was there already
    std::uint64_t restarts = 0;              ///< how often the camera's frame numbers began anew
    bool tooSmall = false;                   ///< pictures have no room for a stamp
    bool stamped = false;                    ///< pictures carry stamps, so the three below hold
    std::uint64_t matches = 0;
    std::uint64_t mismatches = 0;
    std::optional<TimeError> timeError;
    /// How much faster recorded time runs than true time, in millionths; of pictures without stamps, than
    /// frame numbers at the nominal rate. Least squares over all frames; of cameras that run freely.
    std::optional<double> slopePpm;
    std::optional<PulseReport> pulses;  ///< with a triggered camera
    bool warnedTooFast = false;  ///< before the start the camera told that it cannot follow the trigger
    std::optional<CounterReport> counters;  ///< when they were recorded
    bool silent = false;                    ///< did not reach the end of the recording
};

/// An option of the command line with its texts, those that hold without it included.
struct OptionTexts {
    std::string name;
    std::vector<std::string> texts;
};

enum class Outcome { Complete, Interrupted, WriteFailed };

struct RecordingReport {
    std::string title;
    std::string plugin;
    std::string vendorVersion;
    std::string scenario;    ///< of the simulator; empty with the vendor's own library
    std::string startedUtc;  ///< "2026-11-21T03:36:35.123Z"
    std::string trigger;     ///< frequency of the trigger output in Hz as "30000/1001"; empty without one
    std::vector<OptionTexts> options;
    double seconds = 0;
    std::int64_t maxSpreadNs = kMaxSpreadNs;  ///< the spread of 99 % of the frames must stay below
    std::string directory;
    Outcome outcome = Outcome::Complete;
    std::string writeFailure;  ///< reason, with Outcome::WriteFailed
    double recordedSeconds = 0;
    std::vector<ChannelReport> channels;
    std::uint64_t assertionFailures = 0;
    std::vector<std::string> messages;        ///< of the cameras, as sentences
    std::string stopFailure;                  ///< empty when the cameras stopped properly
    std::vector<std::string> pictureFiles;    ///< written besides raw, CSV and summary
    std::vector<std::string> failedPictures;  ///< could not be written
};

std::uint64_t totalFrames(const RecordingReport& report);
std::uint64_t totalLost(const RecordingReport& report);

}  // namespace host
