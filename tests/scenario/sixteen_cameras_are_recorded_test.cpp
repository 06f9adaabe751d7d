#include <gmock/gmock.h>

#include "recorded_files.h"

using scenario::kTimesHold;
using scenario::ProgramResult;
using scenario::runProgram;
using scenario::fs::path;

namespace {

constexpr unsigned kCameras = 16;
constexpr std::uint64_t kPictureBytes = 320ull * 216;

// 3 s at 100 Hz, a frame more or less where the ends fall between frames, and another one where the clock fit
// moves the ends. Late threads move them by as many frames as there are buffers, unless frames came in vain.
void expectAllSent(const nlohmann::json& channel) {
    constexpr std::int64_t kBuffers = 5;
    if (scenario::underruns(channel) != 0) return;
    const std::int64_t moved = scenario::wereOnTime(channel) ? 1 : kBuffers;
    const auto sent = channel["lost"].get<std::int64_t>() + channel["frames"].get<std::int64_t>();
    EXPECT_GE(sent, 299 - moved) << channel["id"];
    EXPECT_LE(sent, 301 + moved) << channel["id"];
}

// What a machine of few cores makes of the times of sixteen threads is told, and not asked for here.
TEST(SixteenCamerasAreRecorded, WithEveryFrameOfEveryCamera) {
    const scenario::TemporaryDirectory directory;
    const path out = directory.path() / "recording";
    const ProgramResult result =
        runProgram({"record", "--seconds", "3", "--out", out.string(), "--set", "FrameWidth=320", "--set",
                    "FrameHeight=216", "--set", "CAMERA/Exposure=5000", "--log-level", "detail"},
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
        EXPECT_EQ(channel["silent"], false) << id;
        expectAllSent(channel);
    }
    if (!kTimesHold) return;
    EXPECT_LE(scenario::lostFrames(summary), scenario::excusedFrames(summary, result.error)) << result.out;
}

}  // namespace
