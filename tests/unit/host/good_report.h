/// A recording in which nothing went wrong, for tests of what is made of it.
#pragma once

#include <string>
#include <vector>

#include "checks.h"
#include "recording_report.h"

namespace host_test {

using host::ChannelReport;
using host::RecordingReport;

inline host::ChannelInfo colourCamera() {
    return {0, "Manta_G-033C (50-0503300001)", "DEV_1", "GigE", "Y422", 656, 492, 50.0};
}

inline host::ChannelInfo triggeredCamera() {
    return {12, "Other", "DEV_2", "GigE", "Y800", 640, 480, std::nullopt};
}

inline ChannelReport goodChannel() {
    ChannelReport channel;
    channel.channel = colourCamera();
    channel.frames = 250;
    channel.stamped = true;
    channel.matches = 250;
    channel.timeError = {37'020'000, 36'990'000, 20'000, 41'000, 88'400};
    channel.slopePpm = 1.5;
    return channel;
}

inline RecordingReport goodReport() {
    RecordingReport report;
    report.plugin = "GIGECAMERA";
    report.vendorVersion = "1.9.1";
    report.scenario = "two-cameras";
    report.seconds = 5;
    report.recordedSeconds = 5.04;
    report.directory = "out";
    report.channels = {goodChannel()};
    report.pictureFiles = {"channel-0-first.png", "channel-0-last.png"};
    return report;
}

inline std::vector<std::string> failedSentences(const RecordingReport& report) {
    std::vector<std::string> sentences;
    for (const host::Check& check : host::makeChecks(report)) {
        if (!check.passed) sentences.push_back(check.sentence);
    }
    return sentences;
}

}  // namespace host_test
