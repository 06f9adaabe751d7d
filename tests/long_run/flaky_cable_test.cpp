// An hour with a camera whose cable goes every ten seconds, and a host that does what its user is told: stop,
// look for cameras, prepare, start.
#include "long_run_fixture.h"

namespace {

using test_support::AssertionCapture;
using test_support::FrameSink;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::kShorterBy;
using test_support::PluginTest;
using test_support::StampedFrame;
using ::testing::IsEmpty;

constexpr std::uint64_t kTime = 3'600 * kSecond / kShorterBy;
constexpr const char* kFlakyCameras[] = {kColourCamera, kMonochromeCamera};

class FlakyCable : public PluginTest {
  protected:
    FlakyCable() : PluginTest("flaky-cable", /*virtualTime=*/true) { enumerate(); }
    ~FlakyCable() override {
        if (plugin != nullptr) plugin->clearChannelSinks();
    }

    static void advance(std::uint64_t ns) { ASSERT_EQ(VmbSimAdvance(ns), VmbErrorSuccess); }
    void set(std::uint32_t id, const char* key, double value) {
        EXPECT_TRUE(channel(id)->setItem(key, config_items::ScalarConfigItem(value, ""))) << key;
    }
    /// Once: a camera that comes back is given its settings by the preparation.
    void configure() {
        for (const char* camera : kFlakyCameras) {
            const std::uint32_t id = plugin->findChannelId(camera);
            set(id, "FrameWidth", 32);
            set(id, "FrameHeight", 4);
            set(id, "CAMERA/Exposure", 200);
            set(id, config_keys::kCameraFrameSetting, 20);
        }
    }
    void record() {
        ASSERT_EQ(plugin->getChannelIds().size(), 2u);
        for (std::size_t i = 0; i < 2; ++i) {
            const std::uint32_t id = plugin->findChannelId(kFlakyCameras[i]);
            m_sinks[i].frames.clear();
            plugin->setChannelSink(id, &m_sinks[i]);
            messages(id).setMessageListener([this](const exception_manager::Exception& message) {
                m_told.push_back(exception_manager::fillPlaceholders(message));
            });
        }
        start();
    }
    /// What was recorded since the start is free of doubts but for three frames of camera 1 in a row.
    void judge(std::uint64_t leastFrames) {
        for (const FrameSink& sink : m_sinks) {
            ASSERT_GE(sink.frames.size(), leastFrames);
            EXPECT_EQ(sink.frames.front().truth.width, 32u);
            for (std::size_t i = 1; i < sink.frames.size(); ++i) {
                const StampedFrame& before = sink.frames[i - 1];
                const StampedFrame& frame = sink.frames[i];
                const std::uint64_t step = frame.truth.frameId - before.truth.frameId;
                const bool lossy = &sink == &m_sinks[0];
                EXPECT_TRUE(step == 1 || (lossy && step == 4)) << step;
                EXPECT_GT(frame.time, before.time);
                m_gaps += step == 4 ? 1 : 0;
            }
        }
    }
    /// Until the plug-in tells that a camera has gone; false at the end of the time.
    bool waitForTrouble() {
        m_told.clear();
        while (m_told.empty() && VmbSimTime() < kTime) advance(100 * kMillisecond);
        return !m_told.empty();
    }

    FrameSink m_sinks[2];
    std::vector<std::string> m_told;
    std::uint64_t m_gaps = 0;
};

TEST_F(FlakyCable, ForAnHourLeavesThePlugInRecording) {
    const AssertionCapture assertions;
    configure();
    record();
    std::uint64_t rounds = 0;
    while (waitForTrouble()) {
        ++rounds;
        EXPECT_THAT(m_told,
                    ::testing::ElementsAre("Camera Manta_G-032B (50-0503200002) is no longer connected"));
        // The first time three seconds, then what is left of ten.
        judge(rounds == 1 ? 50 : 150);
        // Every camera is stopped, but the one that has gone cannot say so.
        EXPECT_ANY_THROW(plugin->stopAcquisition());
        EXPECT_TRUE(plugin->onAcquisitionFinished());
        advance(1'500 * kMillisecond);
        plugin->enumerateDevices();
        record();
        ASSERT_FALSE(HasFailure()) << rounds;
    }
    EXPECT_EQ(rounds, kTime / (10 * kSecond)) << "at 3, 13 ... seconds";
    judge(90);
    EXPECT_EQ(m_gaps, kTime / (5 * kSecond)) << "of camera 1, at 2, 7 ... seconds, when all records";
    EXPECT_GE(VmbSimTime(), kTime);
    stop();
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

}  // namespace
