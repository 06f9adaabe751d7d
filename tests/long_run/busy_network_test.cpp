// Four cameras on the network of the scenario busy-network, recorded through the whole plug-in: what arrives
// complete is recorded with its pulse, what does not counts as lost, and nothing else happens.
#include <array>

#include "long_run_fixture.h"

namespace {

using test_support::AssertionCapture;
using test_support::FrameSink;
using test_support::kMillisecond;
using test_support::kReceivedFrames;
using test_support::kSecond;
using test_support::kSentFrames;
using test_support::LatestCount;
using test_support::PluginTest;
using test_support::StampedFrame;
using ::testing::IsEmpty;

constexpr std::uint32_t kSharingCameras = 4;
constexpr std::uint64_t kPulses = 600;
constexpr std::uint64_t kPulsePeriod = 50 * kMillisecond;
constexpr const char* kIds[] = {"DEV_000F31A10001", "DEV_000F31A10002", "DEV_000F31A10003",
                                "DEV_000F31A10004"};

class BusyNetwork : public PluginTest {
  protected:
    BusyNetwork() : PluginTest("busy-network", /*virtualTime=*/true) {
        wantFrameCounters(true);
        enumerate();
        aux().setSyncOutAuxFrequency(20, 1);
        for (std::uint32_t id = 0; id < kSharingCameras; ++id) {
            EXPECT_TRUE(channel(id)->setItem("CAMERA/Exposure", config_items::ScalarConfigItem(1'000, "")));
            EXPECT_TRUE(channel(id)->setItem(
                "CAMERA/TriggerMode",
                config_items::SingleValueConfigItem<std::string>("GIGE/TriggerModeAux")));
            plugin->setChannelSink(id, &m_frames[id]);
            plugin->setChannelSink(kSentFrames | id, &m_sent[id]);
            plugin->setChannelSink(kReceivedFrames | id, &m_received[id]);
        }
    }
    ~BusyNetwork() override { plugin->clearChannelSinks(); }

    static VmbInt64_t statistic(std::uint32_t camera, const char* name) {
        VmbHandle_t handle = nullptr;
        VmbFrame_t* frame = nullptr;
        VmbFrameCallback callback = nullptr;
        EXPECT_EQ(VmbSimTakeQueuedFrame(kIds[camera], &handle, &frame, &callback), VmbErrorSuccess);
        EXPECT_EQ(VmbCaptureFrameQueue(handle, frame, callback), VmbErrorSuccess);
        VmbInt64_t value = -1;
        EXPECT_EQ(VmbFeatureIntGet(handle, name, &value), VmbErrorSuccess);
        return value;
    }

    std::array<FrameSink, kSharingCameras> m_frames;
    std::array<LatestCount, kSharingCameras> m_sent;
    std::array<LatestCount, kSharingCameras> m_received;
};

TEST_F(BusyNetwork, IsRecordedButForTheFramesThatArriveIncomplete) {
    const AssertionCapture assertions;
    start();
    const VmbSimRhythm rhythm{20, 1, 10 * kMillisecond, kMillisecond, 0};
    const std::uint64_t first = VmbSimTime() + rhythm.phaseNs;
    ASSERT_EQ(VmbSimDriveLine(nullptr, &rhythm), VmbErrorSuccess);
    ASSERT_EQ(VmbSimAdvance(kPulses * kPulsePeriod), VmbErrorSuccess);
    VmbInt64_t incomplete = 0;
    VmbInt64_t rescued = 0;
    std::uint64_t waiting = 0;
    for (std::uint32_t id = 0; id < kSharingCameras; ++id) {
        const auto dropped = static_cast<std::uint64_t>(statistic(id, "StatFrameDropped"));
        const std::vector<StampedFrame>& frames = m_frames[id].frames;
        EXPECT_EQ(statistic(id, "StatFrameUnderrun"), 0);
        ASSERT_EQ(frames.size(), kPulses - dropped);
        for (const StampedFrame& frame : frames) {
            EXPECT_EQ(frame.truth.exposureStartNs, first + (frame.truth.frameId - 1) * kPulsePeriod);
            EXPECT_EQ(frame.time, static_cast<std::int64_t>(frame.truth.frameId - 1));
            waiting += frame.truth.wayNs > 15 * kMillisecond ? 1 : 0;
        }
        EXPECT_EQ(m_received[id].value, frames.size());
        EXPECT_EQ(m_sent[id].value + 1, frames.back().truth.frameId);
        incomplete += static_cast<VmbInt64_t>(dropped);
        rescued += statistic(id, "StatFrameRescued");
    }
    stop();
    EXPECT_GT(incomplete, 0);
    EXPECT_GT(rescued, 20 * incomplete);
    EXPECT_GT(waiting, kPulses) << "the link is shared";
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

}  // namespace
