// Only on these systems can a test give a program little room.
#include <gmock/gmock.h>

#include "recorded_files.h"

using scenario::ProgramResult;
using scenario::fs::path;
using testing::HasSubstr;

namespace {

class AFullDiskLeavesAWholeRecording : public testing::Test {
  protected:
    path out() const { return m_directory.path() / "recording"; }
    ProgramResult record(const std::string& seconds, std::uint64_t fileSizeLimit) const {
        return scenario::runProgram({"record", "--seconds", seconds, "--out", out().string()},
                                    {.fileSizeLimit = fileSizeLimit});
    }

    scenario::TemporaryDirectory m_directory;
};

TEST_F(AFullDiskLeavesAWholeRecording, WhenAPictureDoesNotFit) {
    // Room for 15 pictures of the colour camera and a half.
    const ProgramResult result = record("600", scenario::kColourBytes * 31 / 2);
    EXPECT_EQ(result.code, 11) << result.out << result.error;
    const std::size_t colour = scenario::checkChannelFiles(out(), 0, scenario::kColourBytes);
    const std::size_t grey = scenario::checkChannelFiles(out(), 1, scenario::kGreyBytes);
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

TEST_F(AFullDiskLeavesAWholeRecording, WhenNotEvenTheTableFits) {
    const ProgramResult result = record("1", 10);
    EXPECT_EQ(result.code, 10) << result.out << result.error;
    ASSERT_EQ(result.sentences().size(), 1u) << result.error;
    EXPECT_THAT(result.sentences()[0], HasSubstr("channel-0.csv (File too large)"));
}

}  // namespace
