#include <gmock/gmock.h>

#include "recorded_files.h"

using nlohmann::json;
using scenario::kTimesHold;
using scenario::Program;
using scenario::ProgramResult;
using scenario::runProgram;
using testing::HasSubstr;

namespace {

TEST(CamerasAreWatched, ForAsLongAsAskedFor) {
    const ProgramResult result = runProgram({"watch", "--seconds", "1", "--json", "--set", "CAMERA/Gain=3"});
    EXPECT_EQ(result.code, 0) << result.error;
    const json report = json::parse(result.out, nullptr, false);
    ASSERT_EQ(report["channels"].size(), 2u);
    EXPECT_GE(report["seconds"], 1.0);
    EXPECT_GT(report["channels"][0]["frames"], 10);
    EXPECT_EQ(report["channels"][0]["last_message"], nullptr);
    if (kTimesHold) {
        EXPECT_EQ(report["channels"][0]["lost"], 0);
        // The first picture takes a period and its way of 34 ms.
        EXPECT_NEAR(report["channels"][0]["rate_fps"].get<double>(), 50, 5);
    }
}

TEST(CamerasAreWatched, UntilTheUserHasSeenEnough) {
    Program program({"watch", "--aux", "20", "--channel", "1"}, {});
    ASSERT_TRUE(program.waitForOutput([](const std::string& text) {
        return text.find("   2 s   channel 1: ") != std::string::npos;
    })) << program.error();
    program.interrupt();
    EXPECT_EQ(program.wait(), 0) << program.error();
    EXPECT_THAT(program.out(), HasSubstr("channel 1: CAMERA/TriggerMode is GIGE/TriggerModeAux now\n"));
    EXPECT_THAT(program.out(), HasSubstr("id  camera                        frames  lost"));
}

TEST(CamerasAreWatched, ButNotToTheEndWhenTheUserInterrupts) {
    Program program({"watch", "--seconds", "600"}, {});
    ASSERT_TRUE(program.waitForOutput([](const std::string& text) {
        return text.find("   1 s   channel 0: ") != std::string::npos;
    })) << program.error();
    program.interrupt();
    EXPECT_EQ(program.wait(), 130) << program.error();
    EXPECT_THAT(program.error(), HasSubstr("zelt_host: Interrupted after "));
}

TEST(CamerasAreWatched, UnlessSomethingIsWrong) {
    EXPECT_EQ(runProgram({"watch", "--seconds", "0"}).code, 2);
    EXPECT_EQ(runProgram({"watch", "--seconds", "1", "--channel", "7"}).code, 9);
    EXPECT_EQ(runProgram({"watch", "--seconds", "1", "--set", "Gian=3"}).code, 14);
    EXPECT_EQ(runProgram({"watch", "--seconds", "1", "--from", "/none/rig.txt"}).code, 15);
}

TEST(TheHardware, IsDescribed) {
    const ProgramResult result = runProgram({"topology"});
    EXPECT_EQ(result.code, 0) << result.error;
    EXPECT_THAT(result.out, testing::StartsWith("<?xml version=\"1.0\"?>\n<MeasurementTree>\n"));
    EXPECT_THAT(result.out, HasSubstr("Name=\"Manta_G-033C (50-0503300001)\""));
    EXPECT_THAT(result.out, HasSubstr("Name=\"Manta_G-032B (50-0503200002)\""));

    const ProgramResult forPrograms = runProgram({"topology", "--json"});
    EXPECT_EQ(json::parse(forPrograms.out)["topology"], result.out);

    const scenario::TemporaryDirectory directory;
    const auto file = directory.path() / "rig.xml";
    EXPECT_EQ(runProgram({"topology", "--out", file.string()}).out, "wrote " + file.string() + "\n");
    EXPECT_EQ(scenario::readFile(file), result.out);

    const ProgramResult unwritable = runProgram({"topology", "--out", directory.path().string()});
    EXPECT_EQ(unwritable.code, 11);
    EXPECT_THAT(unwritable.sentences(), testing::ElementsAre(HasSubstr("name another file with --out")));
}

}  // namespace
