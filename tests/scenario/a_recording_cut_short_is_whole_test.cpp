#include <gmock/gmock.h>

#include "recorded_files.h"
#include "regex_matcher.h"

using scenario::Program;
using scenario::fs::path;
using testing::HasSubstr;

namespace {

class ARecordingCutShortIsWhole : public testing::Test {
  protected:
    path out() const { return m_directory.path() / "recording"; }
    std::vector<std::string> arguments(const std::string& seconds) const {
        return {"record", "--seconds", seconds, "--out", out().string()};
    }

    scenario::TemporaryDirectory m_directory;
};

TEST_F(ARecordingCutShortIsWhole, WhenTheUserInterrupts) {
    Program program(arguments("600"), {});
    const auto lines = [&](const char* table) { return scenario::readLines(out() / table).size(); };
    ASSERT_TRUE(program.waitUntil([&] { return lines("channel-0.csv") > 5 && lines("channel-1.csv") > 5; }))
        << program.out() << program.error();
    program.interrupt();
    EXPECT_EQ(program.wait(), 130) << program.out() << program.error();

    const std::size_t colour = scenario::checkChannelFiles(out(), 0, scenario::kColourBytes);
    const std::size_t grey = scenario::checkChannelFiles(out(), 1, scenario::kGreyBytes);
    EXPECT_GE(colour + grey, 10u);
    EXPECT_THAT(program.error(),
                test_support::FindsRegex("zelt_host: Interrupted after [0-9.]+ s of 600.0 s; the "));
    EXPECT_THAT(program.error(), testing::EndsWith(" s of 600.0 s; the " + std::to_string(colour + grey) +
                                                   " frames in " + out().string() + " are intact.\n"));
    EXPECT_THAT(program.out(), HasSubstr("the recording was cut short"));
    const auto summary = scenario::readSummary(out());
    EXPECT_EQ(summary["outcome"], "interrupted");
    EXPECT_EQ(summary["exit_code"], 130);
    EXPECT_EQ(summary["channels"][0]["frames"], colour);
    EXPECT_EQ(summary["channels"][1]["frames"], grey);
    EXPECT_TRUE(exists(out() / "channel-0-last.png"));
}

}  // namespace
