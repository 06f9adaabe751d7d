#include <gmock/gmock.h>

#include "recorded_files.h"
#include "regex_matcher.h"

using scenario::kTimesHold;
using scenario::ProgramResult;
using scenario::runProgram;
using scenario::fs::path;
using testing::HasSubstr;

namespace {

std::pair<unsigned, unsigned> pngSize(const path& file) {
    const std::string bytes = scenario::readFile(file);
    if (bytes.size() < 24 || bytes.compare(1, 3, "PNG") != 0) return {0, 0};
    const auto number = [&](std::size_t at) {
        unsigned value = 0;
        for (std::size_t i = at; i < at + 4; ++i) value = value * 256 + static_cast<unsigned char>(bytes[i]);
        return value;
    };
    return {number(16), number(20)};
}

class TwoCamerasAreRecorded : public testing::Test {
  protected:
    path out() const { return m_directory.path() / "recording"; }
    /// Records one second and expects that nothing is wrong with it, times included where they can hold.
    ProgramResult record(std::vector<std::string> more = {}) {
        std::vector<std::string> arguments = {"record", "--seconds",    "1",
                                              "--out",  out().string(), "--max-spread",
                                              "10000",  "--log-level",  "detail"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        ProgramResult result = runProgram(arguments);
        scenario::expectTrusted(result, out());
        return result;
    }
    void expectWhole(const nlohmann::json& channel, std::size_t frames) {
        EXPECT_EQ(channel["frames"], frames);
        EXPECT_EQ(channel["matches"], frames);
        EXPECT_EQ(channel["mismatches"], 0);
        EXPECT_EQ(channel["doubled"], 0);
        EXPECT_EQ(channel["lost_in_host"], 0);
        EXPECT_EQ(channel["silent"], false);
    }
    static auto isAbout(unsigned frames, const ProgramResult& result) {
        return result.code == 0 ? testing::AllOf(testing::Ge(frames - 1), testing::Le(frames + 1))
                                : testing::AllOf(testing::Ge(frames / 2), testing::Le(frames * 2));
    }

    scenario::TemporaryDirectory m_directory;
};

TEST_F(TwoCamerasAreRecorded, WithFilesASummaryAndAVerdict) {
    const ProgramResult result = record();
    EXPECT_THAT(result.out, HasSubstr("GIGECAMERA"));
    EXPECT_THAT(result.out, HasSubstr("(simulator: two-cameras)"));
    EXPECT_THAT(result.out, HasSubstr("recording 1.0 s to " + out().string()));
    EXPECT_THAT(result.out, HasSubstr("100 %"));
    EXPECT_THAT(result.out, HasSubstr("wrote 2 raw + CSV, 4 PNG, summary.json\n"));
    EXPECT_THAT(result.out, HasSubstr(result.code == 0 ? "checks passed: the recording can be trusted\n"
                                                       : "failed: the recording cannot be trusted\n"));
    EXPECT_THAT(result.out,
                test_support::FindsRegex("\ntimes are (good to [0-9.]+ .+ \\(|not good \\()spread of 99 % of "
                                         "the frames.*\\)\n$"));

    const std::size_t colour = scenario::checkChannelFiles(out(), 0, scenario::kColourBytes);
    const std::size_t grey = scenario::checkChannelFiles(out(), 1, scenario::kGreyBytes);
    EXPECT_THAT(colour, isAbout(50, result));
    EXPECT_THAT(grey, isAbout(40, result));
    for (const char* name :
         {"channel-0-first.png", "channel-0-last.png", "channel-1-first.png", "channel-1-last.png"}) {
        EXPECT_EQ(pngSize(out() / name), std::make_pair(656u, 492u)) << name;
    }

    const auto summary = scenario::readSummary(out());
    EXPECT_EQ(summary["exit_code"], result.code);
    EXPECT_EQ(summary["trusted"], result.code == 0);
    EXPECT_EQ(summary["outcome"], "complete");
    EXPECT_EQ(summary["assertion_failures"], 0);
    ASSERT_EQ(summary["channels"].size(), 2u);
    expectWhole(summary["channels"][0], colour);
    expectWhole(summary["channels"][1], grey);
}

TEST_F(TwoCamerasAreRecorded, WithTimesOneFramePeriodApart) {
    const bool isTrusted = record().code == 0;
    for (const auto& [id, periodNs] : {std::pair(0u, 20'000'000.0), std::pair(1u, 25'000'000.0)}) {
        const auto frames = scenario::readTable(out() / ("channel-" + std::to_string(id) + ".csv"));
        ASSERT_GT(frames.size(), 2u);
        const double length = static_cast<double>(frames.back().hostTime - frames.front().hostTime);
        const double periods = static_cast<double>(frames.size() - 1);
        EXPECT_LT(length, 1e9);
        if (isTrusted) {
            EXPECT_NEAR(length / periods, periodNs, periodNs * 0.01);
        }
        for (std::size_t i = 1; i < frames.size(); ++i) {
            EXPECT_GE(frames[i].hostTime, frames[i - 1].hostTime);
            EXPECT_GT(frames[i].frameId, frames[i - 1].frameId);
        }
    }
}

TEST_F(TwoCamerasAreRecorded, ButNotAsTrustedWhenTheirTimesScatterMoreThanAskedFor) {
    // No system calls back within a nanosecond.
    const ProgramResult result = runProgram(
        {"record", "--seconds", "1", "--channel", "1", "--out", out().string(), "--max-spread", "0.001"});
    EXPECT_EQ(result.code, 13) << result.out;
    ASSERT_EQ(result.sentences().size(), 1u) << result.error;
    EXPECT_THAT(result.sentences()[0],
                testing::AllOf(HasSubstr(" cannot be trusted: channel 1: "),
                               HasSubstr("channel 1: spread of the time error of 99 % of the frames")));
    EXPECT_THAT(result.out, HasSubstr("\ntimes are not good (spread of 99 % of the frames: "));
    EXPECT_GT(scenario::readSummary(out())["times_spread_ns"], 0);
}

TEST_F(TwoCamerasAreRecorded, OrOnlyTheOneAskedFor) {
    const ProgramResult result = record({"--channel", "1"});
    EXPECT_FALSE(exists(out() / "channel-0.raw"));
    EXPECT_THAT(scenario::checkChannelFiles(out(), 1, scenario::kGreyBytes), isAbout(40, result));
    EXPECT_THAT(result.out, HasSubstr("wrote 1 raw + CSV, 2 PNG, summary.json\n"));
}

TEST_F(TwoCamerasAreRecorded, ForProgramsAsTheSummary) {
    const ProgramResult result = record({"--json"});
    EXPECT_EQ(result.out, scenario::readFile(out() / "summary.json"));
    EXPECT_EQ(nlohmann::json::parse(result.out)["exit_code"], result.code);
}

TEST_F(TwoCamerasAreRecorded, ButNeverOverAnotherRecording) {
    record({"--channel", "1"});
    const std::string before = scenario::readFile(out() / "channel-1.csv");
    const ProgramResult result = runProgram({"record", "--seconds", "1", "--out", out().string()});
    EXPECT_EQ(result.code, 10);
    ASSERT_EQ(result.sentences().size(), 1u);
    EXPECT_THAT(result.sentences()[0], HasSubstr(out().string() + " already holds a recording"));
    EXPECT_EQ(scenario::readFile(out() / "channel-1.csv"), before);
}

}  // namespace
