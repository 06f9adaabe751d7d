#include <gmock/gmock.h>

#include "recorded_files.h"

using scenario::kTimesHold;
using scenario::ProgramResult;
using scenario::runProgram;
using scenario::fs::path;

namespace {

constexpr unsigned kCameras = 16;
constexpr std::uint64_t kPictureBytes = 320ull * 216;

// What a machine of few cores makes of the times of sixteen threads is told, and not asked for here.
TEST(SixteenCamerasAreRecorded, WithEveryFrameOfEveryCamera) {
    const scenario::TemporaryDirectory directory;
    const path out = directory.path() / "recording";
    const ProgramResult result =
        runProgram({"record", "--seconds", "3", "--out", out.string(), "--set", "FrameWidth=320", "--set",
                    "FrameHeight=216", "--set", "CAMERA/Exposure=5000"},
                   {.scenario = "sixteen-cameras"});
    EXPECT_THAT(result.code, testing::AnyOf(0, 13)) << result.out << result.error;
    const auto summary = scenario::readSummary(out);
    ASSERT_EQ(summary["channels"].size(), kCameras) << result.out << result.error;
    EXPECT_EQ(summary["outcome"], "complete");
    EXPECT_EQ(summary["assertion_failures"], 0);
    for (unsigned id = 0; id < kCameras; ++id) {
        const auto& channel = summary["channels"][id];
        const std::size_t frames = scenario::checkChannelFiles(out, id, kPictureBytes);
        EXPECT_EQ(channel["frames"], frames) << id;
        EXPECT_EQ(channel["matches"], frames) << id;
        EXPECT_EQ(channel["doubled"], 0) << id;
        if (!kTimesHold) continue;
        EXPECT_EQ(channel["lost"], 0) << id;
        EXPECT_EQ(channel["silent"], false) << id;
        // 3 s at 100 Hz, a frame more or less where the ends fall between frames.
        EXPECT_GE(frames, 299u) << id;
        EXPECT_LE(frames, 301u) << id;
    }
}

}  // namespace
