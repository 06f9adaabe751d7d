#include <regex>

#include <gmock/gmock.h>

#include "recorded_files.h"

using scenario::Program;
using scenario::ProgramResult;
using scenario::fs::path;
using testing::HasSubstr;

namespace {

constexpr std::uint64_t kColourBytes = 656ull * 492 * 2;
constexpr std::uint64_t kGreyBytes = 656ull * 492;

class ARecordingCutShortIsWhole : public testing::Test {
  protected:
    path out() const { return m_directory.path() / "recording"; }
    std::vector<std::string> arguments(const std::string& seconds) const {
        return {"record", "--seconds", seconds, "--out", out().string()};
    }

    scenario::TemporaryDirectory m_directory;
};

TEST_F(ARecordingCutShortIsWhole, WhenTheUserInterrupts) {
    Program program(arguments("600"), {.terminal = true});
    // The progress line shows frames of both cameras on disk.
    const std::regex frames("%   [0-9]{2,} frames");
    ASSERT_TRUE(program.waitForOutput([&](const std::string& text) {
        return std::regex_search(text, frames);
    })) << program.out()
        << program.error();
    program.interrupt();
    EXPECT_EQ(program.wait(), 130) << program.out() << program.error();

    const std::size_t colour = scenario::checkChannelFiles(out(), 0, kColourBytes);
    const std::size_t grey = scenario::checkChannelFiles(out(), 1, kGreyBytes);
    EXPECT_GE(colour + grey, 10u);
    EXPECT_THAT(program.error(),
                testing::MatchesRegex("(.|\n)*zelt_host: Interrupted after [0-9.]+ s of 600.0 s; the " +
                                      std::to_string(colour + grey) + " frames in " + out().string() +
                                      " are intact.\n"));
    EXPECT_THAT(program.out(), HasSubstr("the recording was cut short"));
    const auto summary = scenario::readSummary(out());
    EXPECT_EQ(summary["outcome"], "interrupted");
    EXPECT_EQ(summary["exit_code"], 130);
    EXPECT_EQ(summary["channels"][0]["frames"], colour);
    EXPECT_EQ(summary["channels"][1]["frames"], grey);
    EXPECT_TRUE(exists(out() / "channel-0-last.png"));
}

TEST_F(ARecordingCutShortIsWhole, WhenTheDiskIsFull) {
    // Room for 15 pictures of the colour camera and a half.
    const ProgramResult result =
        scenario::runProgram(arguments("600"), {.fileSizeLimit = kColourBytes * 31 / 2});
    EXPECT_EQ(result.code, 11) << result.out << result.error;
    const std::size_t colour = scenario::checkChannelFiles(out(), 0, kColourBytes);
    const std::size_t grey = scenario::checkChannelFiles(out(), 1, kGreyBytes);
    EXPECT_EQ(colour, 15u);
    EXPECT_GT(grey, 0u);
    ASSERT_EQ(result.sentences().size(), 1u) << result.error;
    EXPECT_EQ(result.sentences()[0],
              "Writing to " + out().string() + " failed after " + std::to_string(colour + grey) +
                  " frames (File too large); what is there is intact, make room and record "
                  "again into another directory.");
    const auto summary = scenario::readSummary(out());
    EXPECT_EQ(summary["outcome"], "write failed");
    EXPECT_EQ(summary["channels"][0]["frames"], 15);
}

TEST_F(ARecordingCutShortIsWhole, WhenNotEvenTheTableFits) {
    const ProgramResult result = scenario::runProgram(arguments("1"), {.fileSizeLimit = 10});
    EXPECT_EQ(result.code, 10) << result.out << result.error;
    ASSERT_EQ(result.sentences().size(), 1u) << result.error;
    EXPECT_THAT(result.sentences()[0], HasSubstr("channel-0.csv (File too large)"));
}

}  // namespace
