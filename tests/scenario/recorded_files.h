/// What a recording left on disk, read without the host's code.
#pragma once

#include <cstdint>
#include <sstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "program_run.h"
#include "sanitized.h"
#include "vimba_simulator.h"

namespace scenario {

// Instrumented builds hand frames over late by many times what a camera's clock fit can smooth, so only the
// others are asked for trustworthy times. What the pictures hold and where they lie is asked of every build.
inline constexpr bool kTimesHold = ZELT_SANITIZED == 0;

/// What a picture of each of the ready cameras takes.
inline constexpr std::uint64_t kColourBytes = 656ull * 492 * 2;
inline constexpr std::uint64_t kGreyBytes = 656ull * 492;

struct RecordedFrame {
    std::uint64_t number = 0;
    std::int64_t hostTime = 0;  ///< or the number of the pulse
    std::uint64_t offset = 0;
    std::uint64_t bytes = 0;
    std::uint64_t frameId = 0;
    std::uint64_t ticks = 0;
    std::uint64_t exposureNs = 0;
};

inline std::vector<RecordedFrame> readTable(const fs::path& file,
                                            const std::string& timeColumn = "host_time_ns") {
    std::vector<RecordedFrame> frames;
    std::vector<std::string> lines = readLines(file);
    if (lines.empty() ||
        lines[0] != "frame," + timeColumn + ",offset,bytes,camera_frame_id,camera_ticks,true_exposure_ns") {
        ADD_FAILURE() << file << " has no such header";
        return frames;
    }
    for (std::size_t i = 1; i < lines.size(); ++i) {
        std::istringstream line(lines[i]);
        RecordedFrame frame;
        char comma = 0;
        line >> frame.number >> comma >> frame.hostTime >> comma >> frame.offset >> comma >> frame.bytes >>
            comma >> frame.frameId >> comma >> frame.ticks >> comma >> frame.exposureNs;
        if (!line) ADD_FAILURE() << file << " line " << i << ": " << lines[i];
        frames.push_back(frame);
    }
    return frames;
}

/// Checks that raw file and table hold the same whole frames, as the camera sent them; returns their number.
inline std::size_t checkChannelFiles(const fs::path& directory, unsigned id, std::uint64_t pictureBytes) {
    const std::string stem = "channel-" + std::to_string(id);
    const std::string raw = readFile(directory / (stem + ".raw"));
    const std::vector<RecordedFrame> frames = readTable(directory / (stem + ".csv"));
    EXPECT_EQ(raw.size(), frames.size() * pictureBytes);
    for (std::size_t i = 0; i < frames.size() && (i + 1) * pictureBytes <= raw.size(); ++i) {
        EXPECT_EQ(frames[i].number, i);
        EXPECT_EQ(frames[i].offset, i * pictureBytes);
        EXPECT_EQ(frames[i].bytes, pictureBytes);
        VmbSimFrameStamp stamp{};
        EXPECT_EQ(VmbSimReadStamp(raw.data() + i * pictureBytes, pictureBytes, &stamp), VmbErrorSuccess);
        EXPECT_EQ(frames[i].frameId, stamp.frameId);
        EXPECT_EQ(frames[i].ticks, stamp.cameraTicks);
        EXPECT_EQ(frames[i].exposureNs, stamp.exposureStartNs);
    }
    return frames.size();
}

inline nlohmann::json readSummary(const fs::path& directory) {
    return nlohmann::json::parse(readFile(directory / "summary.json"), nullptr, false);
}

inline std::int64_t lostFrames(const nlohmann::json& summary) {
    std::int64_t lost = 0;
    for (const auto& channel : summary["channels"]) lost += channel["lost"].get<std::int64_t>();
    return lost;
}

/// Frames that came while all buffers were in use, as when this machine stood still for as long as the
/// buffers hold out. No plug-in could take them.
inline std::int64_t underruns(const nlohmann::json& channel) {
    return channel["underruns"].is_null() ? 0 : channel["underruns"].get<std::int64_t>();
}

/// Frames that a recording may lack because this machine was busy: no buffer was free, or the line through
/// the clocks turned back, and the plug-in dropped frames and told so with the log level "detail".
inline std::int64_t excusedFrames(const nlohmann::json& summary, const std::string& log) {
    std::int64_t excused = 0;
    for (const auto& channel : summary["channels"]) excused += underruns(channel);
    const std::string told = " was dropped (prev. timestamp: ";
    for (std::size_t at = log.find(told); at != std::string::npos; at = log.find(told, at + 1)) ++excused;
    return excused;
}

/// Frames whose callbacks come later than this were kept waiting by the machine.
inline constexpr std::int64_t kLateNs = 300'000;

/// Whether the machine took every frame of a camera in time, so that nothing moved the ends of the recording.
inline bool wereOnTime(const nlohmann::json& channel) {
    if (underruns(channel) != 0 || channel["time_error"].is_null()) return false;
    const double halfPeriodNs = 0.5e9 / channel["rate_fps"].get<double>();
    const auto& error = channel["time_error"];
    return error["delay_p99_ns"].get<std::int64_t>() <= kLateNs &&
           error["spread_max_ns"].get<double>() < halfPeriodNs;
}

/// Whether everything that failed is times of cameras whose frames this machine handed over late, as the
/// moments of their arrival show, which no clock fit goes through, or that are missing. Times tell where
/// a recording ends, and so how many frames are in it.
inline bool onlyTimesOfLateFramesFailed(const nlohmann::json& summary) {
    for (const auto& check : summary["checks"]) {
        if (check["passed"] == true) continue;
        const auto text = check["text"].get<std::string>();
        bool isOfTimes = false;
        for (const char* words : {"time error", "have times more than", "slope of recorded time",
                                  "expected (within one frame", " lost"}) {
            isOfTimes = isOfTimes || text.find(words) != std::string::npos;
        }
        bool isLate = false;
        for (const auto& channel : summary["channels"]) {
            const std::string label = "channel " + channel["id"].dump() + ": ";
            if (text.rfind(label, 0) != 0 || channel["time_error"].is_null()) continue;
            isLate = channel["time_error"]["delay_p99_ns"].get<std::int64_t>() > kLateNs;
        }
        if (!isOfTimes || !isLate) return false;
    }
    return true;
}

/// Expects a recording with which nothing is wrong but what this machine does to times.
inline void expectTrusted(const ProgramResult& result, const fs::path& directory) {
    EXPECT_THAT(result.code, testing::AnyOf(0, 13)) << result.out << result.error;
    if (kTimesHold) {
        const nlohmann::json summary = readSummary(directory);
        EXPECT_TRUE(result.code == 0 || onlyTimesOfLateFramesFailed(summary)) << result.out << result.error;
        EXPECT_LE(lostFrames(summary), excusedFrames(summary, result.error)) << result.out << result.error;
    }
    if (result.code == 0) {
        EXPECT_THAT(result.sentences(), testing::IsEmpty());
    }
}

}  // namespace scenario
