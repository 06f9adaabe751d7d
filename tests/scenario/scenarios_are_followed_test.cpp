// The host program on scenarios in which something happens to a camera, as a user would write them.
#include <gmock/gmock.h>

#include "recorded_files.h"

using scenario::kTimesHold;
using scenario::ProgramResult;
using scenario::RunOptions;
using scenario::runProgram;
using testing::HasSubstr;

namespace {

class ScenariosAreFollowed : public testing::Test {
  protected:
    RunOptions with(const std::string& text) const {
        const scenario::fs::path file = m_directory.path() / "mine.json";
        std::ofstream(file) << text;
        RunOptions options;
        options.scenario = file.string();
        return options;
    }
    scenario::fs::path out() const { return m_directory.path() / "recording"; }

    scenario::TemporaryDirectory m_directory;
};

TEST_F(ScenariosAreFollowed, WhenACameraIsPulledOutInTheMiddleOfARecording) {
    const RunOptions options = with(R"({
        "cameras": [{"model": "Manta_G-033C"}, {"model": "Manta_G-032B"}],
        "events": [{"at": 0.75, "after": "DEV_000F31A10002",
                    "do": {"unplugCamera": {"camera": "DEV_000F31A10002"}}}]})");
    const ProgramResult result = runProgram({"record", "--seconds", "2", "--out", out().string()}, options);
    EXPECT_EQ(result.code, 13) << result.out << result.error;
    EXPECT_THAT(result.out, HasSubstr("(simulator: " + options.scenario + ")"));
    EXPECT_THAT(result.error,
                HasSubstr("channel 1: Camera Manta_G-032B (50-0503200002) is no longer connected\n"));
    ASSERT_EQ(result.sentences().size(), 1u) << result.error;
    EXPECT_THAT(result.sentences()[0], HasSubstr("channel 1: fell silent before the end"));
    // Three quarters of a second at 40 Hz, less the frames whose way was not over.
    const std::size_t pulled = scenario::checkChannelFiles(out(), 1, scenario::kGreyBytes);
    EXPECT_LE(pulled, 30u);
    const std::size_t other = scenario::checkChannelFiles(out(), 0, scenario::kColourBytes);
    if (!kTimesHold) return;
    EXPECT_GE(pulled, 26u);
    const auto channel = scenario::readSummary(out())["channels"][0];
    EXPECT_EQ(channel["silent"], false);
    EXPECT_GE(other, scenario::wereOnTime(channel) ? 98u : 80u) << "of two seconds at 50 Hz";
}

TEST_F(ScenariosAreFollowed, WhenFramesAreLostInABurst) {
    const RunOptions options = with(R"({
        "cameras": [{"model": "Manta_G-033C"}, {"model": "Manta_G-032B"}],
        "events": [{"at": 0.5, "after": "DEV_000F31A10001", "every": 0.5, "times": 2,
                    "do": {"loseFrames": {"camera": "DEV_000F31A10001", "count": 4}}}]})");
    const ProgramResult result =
        runProgram({"record", "--seconds", "2", "--out", out().string(), "--log-level", "detail"}, options);
    EXPECT_EQ(result.code, 13) << result.out << result.error;
    std::int64_t missing = 0;
    std::uint64_t id = 0;
    for (const auto& frame : scenario::readTable(out() / "channel-0.csv")) {
        missing += static_cast<std::int64_t>(frame.frameId - id - 1);
        id = frame.frameId;
    }
    const nlohmann::json summary = scenario::readSummary(out());
    EXPECT_GE(summary["channels"][0]["lost"], missing) << "it also counts what the end lacks";
    constexpr std::int64_t kOrdered = 2 * 4;
    EXPECT_GE(missing, kOrdered);
    const std::int64_t most = kOrdered + scenario::excusedFrames(summary, result.error);
    EXPECT_LE(summary["channels"][0]["lost"], most) << summary.dump(1);
    if (!kTimesHold) return;
    EXPECT_LE(scenario::lostFrames(summary), most) << summary.dump(1);
}

TEST_F(ScenariosAreFollowed, WhenAnotherProgramHoldsACamera) {
    RunOptions options;
    options.scenario = "held-by-another";
    const ProgramResult devices = runProgram({"devices"}, options);
    EXPECT_EQ(devices.code, 0) << devices.error;
    EXPECT_THAT(devices.out, HasSubstr("(simulator: held-by-another)"));
    EXPECT_THAT(devices.error, HasSubstr("channel 1: Cannot open camera 'Manta_G-032B (50-0503200002)'"));
    const ProgramResult both = runProgram({"record", "--seconds", "1", "--out", out().string()}, options);
    EXPECT_EQ(both.code, 12) << both.out << both.error;
    ASSERT_EQ(both.sentences().size(), 1u) << both.error;
    const std::string held =
        "Camera 1 Manta_G-032B (50-0503200002) is held by another program: close that program, or record "
        "without the camera: --channel 0.";
    EXPECT_EQ(both.sentences()[0], held);
    EXPECT_THAT(both.error, testing::Not(HasSubstr("%1")));
    EXPECT_THAT(devices.out, HasSubstr("not open"));
    const ProgramResult settings = runProgram({"settings"}, options);
    EXPECT_EQ(settings.code, 12);
    EXPECT_THAT(
        settings.out,
        HasSubstr(scenario::shown("channel 1 \u00b7 Manta_G-032B (50-0503200002) \u00b7 not open\n")));
    EXPECT_THAT(settings.sentences(), testing::ElementsAre(held));
    EXPECT_EQ(runProgram({"settings", "--channel", "0"}, options).code, 0);
    const ProgramResult one = runProgram({"record", "--seconds", "1", "--channel", "0", "--out",
                                          out().string(), "--max-spread", "10000", "--log-level", "detail"},
                                         options);
    EXPECT_GT(scenario::checkChannelFiles(out(), 0, scenario::kColourBytes), 40u);
    EXPECT_THAT(one.error, testing::Not(HasSubstr("channel 1: "))) << "it is not used";
    scenario::expectTrusted(one, out());
}

TEST_F(ScenariosAreFollowed, WhenTriggersAreBad) {
    RunOptions options;
    options.scenario = "bad-triggers";
    const ProgramResult result =
        runProgram({"record", "--seconds", "4.5", "--aux", "20", "--out", out().string()}, options);
    EXPECT_EQ(result.code, 13) << result.out << result.error;
    if (!kTimesHold) return;
    // The host counts pulses from 0, the scenario from 1; 90 pulses in all.
    const nlohmann::json channels = scenario::readSummary(out())["channels"];
    EXPECT_EQ(channels[0]["pulses"]["skipped"].dump(), "[[30,31]]") << channels.dump(1);
    EXPECT_EQ(channels[0]["pulses"]["doubled"].dump(), "[[45,45]]") << "and none for the 60th, which bounces";
    EXPECT_EQ(channels[1]["pulses"]["skipped"].dump(), "[[80,80]]");
    EXPECT_EQ(channels[1]["pulses"]["doubled"].dump(), "[]");
}

TEST_F(ScenariosAreFollowed, AndAWrongOneIsRefusedWithItsPlace) {
    const RunOptions options = with(R"({"cameras": [{"modle": "Manta_G-033C"}]})");
    const ProgramResult result = runProgram({"devices"}, options);
    EXPECT_EQ(result.code, 7) << result.out << result.error;
    const std::string sentence = "VIMBAC_SIMULATOR_SCENARIO: " + options.scenario +
                                 ": /cameras/0/modle: there is no key \"modle\"; did you mean \"model\"?";
    const std::size_t at = result.error.find(sentence);
    EXPECT_NE(at, std::string::npos) << result.error;
    EXPECT_EQ(result.error.find(sentence, at + 1), std::string::npos) << "said twice: " << result.error;
    ASSERT_EQ(result.sentences().size(), 1u);
    EXPECT_THAT(result.sentences()[0], HasSubstr("could not be started"));
}

TEST_F(ScenariosAreFollowed, AndAMissingOneIsNamed) {
    RunOptions options;
    options.scenario = (m_directory.path() / "none.json").string();
    const ProgramResult result = runProgram({"devices"}, options);
    EXPECT_EQ(result.code, 7);
    EXPECT_THAT(result.error, HasSubstr(options.scenario + ": there is no such file.\n"));
}

}  // namespace
