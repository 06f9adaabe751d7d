#include <gmock/gmock.h>

#include "recorded_files.h"

using scenario::kTimesHold;
using scenario::ProgramResult;
using scenario::runProgram;
using scenario::fs::path;
using testing::HasSubstr;

namespace {

class TriggeredCamerasAreRecorded : public testing::Test {
  protected:
    path out() const { return m_directory.path() / "recording"; }
    path file(unsigned channel, const std::string& suffix) const {
        return out() / ("channel-" + std::to_string(channel) + suffix);
    }
    ProgramResult record(std::vector<std::string> more) {
        more.insert(more.begin(), {"record", "--seconds", "2", "--out", out().string()});
        return runProgram(more);
    }
    static void expectCode(const ProgramResult& result) {
        if (kTimesHold) {
            EXPECT_EQ(result.code, 0) << result.out << result.error;
        } else {
            EXPECT_THAT(result.code, testing::AnyOf(0, 13)) << result.out << result.error;
        }
    }

    scenario::TemporaryDirectory m_directory;
};

TEST_F(TriggeredCamerasAreRecorded, WithThePulseOfEveryFrame) {
    const ProgramResult result = record({"--aux", "30000/1001"});
    expectCode(result);
    EXPECT_THAT(result.out, HasSubstr("times are pulse numbers\n"));
    EXPECT_THAT(result.out,
                HasSubstr(scenario::shown("pulse n came n \u00d7 0.033366667 s after pulse 0\n")));
    for (const unsigned channel : {0u, 1u}) {
        const auto frames = scenario::readTable(file(channel, ".csv"), "pulse");
        ASSERT_FALSE(frames.empty());
        // 2 s at 29.97 Hz are 59.94 pulses.
        EXPECT_LE(frames.back().hostTime, 59);
        for (const auto& frame : frames) {
            // The pulse n comes n periods of 1001 / 30 ms after the first.
            const auto sinceFirst = static_cast<double>(frame.exposureNs - frames[0].exposureNs);
            EXPECT_NEAR(static_cast<double>(frame.hostTime - frames[0].hostTime) * 1001e6 / 30, sinceFirst,
                        1e6);
        }
        if (kTimesHold) {
            EXPECT_EQ(frames.size(), 60u);
            EXPECT_EQ(frames.front().hostTime, 0);
        }
    }
    const auto summary = scenario::readSummary(out());
    EXPECT_NEAR(summary["channels"][0]["rate_fps"].get<double>(), 29.97003, 1e-5);
    EXPECT_EQ(summary["channels"][0]["time_error"], nullptr);
    EXPECT_EQ(summary["trigger"], "30000/1001");
    EXPECT_EQ(summary["channels"][0]["settings"]["CAMERA/TriggerMode"], "GIGE/TriggerModeAux");
    EXPECT_EQ(summary["channels"][0]["pulses"]["doubled"], nlohmann::json::array());
    EXPECT_EQ(summary["channels"][0]["counters"], nullptr);
}

TEST_F(TriggeredCamerasAreRecorded, WithTheirCounters) {
    const ProgramResult result =
        record({"--aux", "20", "--counters", "--channel", "1", "--set", "1/FrameWidth=320"});
    expectCode(result);
    EXPECT_THAT(result.out, HasSubstr("GigE          switched off\n"));
    EXPECT_THAT(result.out, HasSubstr(scenario::shown("320\u00d7492")));
    EXPECT_THAT(result.out, HasSubstr("wrote 1 raw + CSV, 2 counter CSV, 2 PNG, summary.json\n"));
    EXPECT_FALSE(exists(file(0, "-sent.csv")));
    const auto frames = scenario::readTable(file(1, ".csv"), "pulse");
    const auto sent = scenario::readLines(file(1, "-sent.csv"));
    const auto received = scenario::readLines(file(1, "-received.csv"));
    ASSERT_EQ(sent.size(), frames.size() + 1);
    ASSERT_EQ(received.size(), frames.size() + 1);
    EXPECT_EQ(sent[0], "pulse,sent");
    EXPECT_EQ(received[0], "pulse,received");
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const std::string pulse = std::to_string(frames[i].hostTime);
        EXPECT_EQ(sent[i + 1], pulse + ',' + std::to_string(frames[i].frameId - 1));
        EXPECT_EQ(received[i + 1], pulse + ',' + std::to_string(i + 1));
    }
    const auto counters = scenario::readSummary(out())["channels"][0]["counters"];
    EXPECT_EQ(counters["received"], frames.size());
    EXPECT_EQ(counters["unusable"], 0);
}

TEST_F(TriggeredCamerasAreRecorded, WithTheSettingsAskedFor) {
    const path settings = m_directory.path() / "rig.txt";
    std::ofstream(settings) << "[channel 1]\nFrameWidth = 320\nFrameHeight = 200\n";
    const ProgramResult result =
        record({"--aux", "20", "--channel", "1", "--from", settings.string(), "--set", "FrameHeight=100"});
    expectCode(result);
    EXPECT_THAT(result.out, HasSubstr("channel 1: CAMERA/TriggerMode is GIGE/TriggerModeAux now\n"));
    EXPECT_THAT(result.out, HasSubstr("channel 1: FrameHeight is 100 pixel now\n"));
    const auto frames = scenario::readTable(file(1, ".csv"), "pulse");
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(frames[0].bytes, 320u * 100u);
}

TEST_F(TriggeredCamerasAreRecorded, UnlessTheFrequencyIsWrong) {
    for (const char* frequency : {"0", "30/0", "fast"}) {
        const ProgramResult result = record({"--aux", frequency});
        EXPECT_EQ(result.code, 2);
        EXPECT_THAT(result.sentences(), testing::ElementsAre(HasSubstr("--aux takes a frequency")));
    }
}

TEST_F(TriggeredCamerasAreRecorded, ButNotAsTrustedWhenTheyCannotFollow) {
    // 100 Hz, and the sensors take 66 pictures a second at most.
    const ProgramResult result = record({"--aux", "100", "--channel", "1"});
    EXPECT_EQ(result.code, 13) << result.out;
    EXPECT_THAT(result.error, HasSubstr("channel 1: Sync Out AUX frequency is too fast for the camera\n"));
    EXPECT_THAT(
        result.sentences(),
        testing::ElementsAre(HasSubstr("pulses skipped, as the frequency is too fast for the camera")));
    const auto pulses = scenario::readSummary(out())["channels"][0]["pulses"];
    EXPECT_GT(pulses["skipped"].size(), 50u);
    EXPECT_EQ(pulses["doubled"], nlohmann::json::array());
}

}  // namespace
