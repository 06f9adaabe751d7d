// A camera that cannot be reached for a while in the middle of a recording, through the whole plug-in: the
// host is told, the frames of that time are missing and nothing else, and times stay right; the same after
// the next preparation, which opens the camera again.
#include <cstdlib>

#include "long_run_fixture.h"

namespace {

using test_support::AssertionCapture;
using test_support::FrameSink;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kReceivedFrames;
using test_support::kSecond;
using test_support::kSentFrames;
using test_support::LatestCount;
using test_support::LogCapture;
using test_support::PluginTest;
using test_support::Simulator;
using test_support::StampedFrame;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Frames = std::vector<StampedFrame>;

constexpr const char* kCameras[] = {kColourCamera, kMonochromeCamera};
constexpr std::uint32_t kOther = 0;
constexpr std::uint32_t kHiccuping = 1;  ///< the monochrome camera
constexpr const char* kGone = "Camera Manta_G-032B (50-0503200002) is no longer connected";

/// Two cameras with pictures of 32 x 4, exposed for 200 microseconds.
class Hiccup : public PluginTest {
  protected:
    Hiccup() : PluginTest("two-cameras", /*virtualTime=*/true) {
        wantFrameCounters(true);
        enumerate();
        for (std::uint32_t id = 0; id < 2; ++id) {
            EXPECT_EQ(plugin->findChannelId(kCameras[id]), id);
            set(id, "FrameWidth", 32);
            set(id, "FrameHeight", 4);
            set(id, "CAMERA/Exposure", 200);
            plugin->setChannelSink(id, &m_sinks[id]);
            plugin->setChannelSink(kSentFrames | id, &m_sent[id]);
            plugin->setChannelSink(kReceivedFrames | id, &m_received[id]);
            messages(id).setMessageListener([this](const exception_manager::Exception& message) {
                m_told.push_back(exception_manager::fillPlaceholders(message));
            });
        }
    }
    ~Hiccup() override { plugin->clearChannelSinks(); }

    void set(std::uint32_t id, const char* key, double value) {
        EXPECT_TRUE(channel(id)->setItem(key, config_items::ScalarConfigItem(value, ""))) << key;
    }
    static void advance(std::uint64_t ns) { ASSERT_EQ(VmbSimAdvance(ns), VmbErrorSuccess); }
    /// The monochrome camera is away from now on.
    void hiccup(std::uint64_t ns) {
        m_from = VmbSimTime();
        m_until = m_from + ns;
        ASSERT_EQ(VmbSimHiccup(kMonochromeCamera, ns), VmbErrorSuccess);
    }
    const Frames& frames(std::uint32_t id) const { return m_sinks[id].frames; }
    void forgetWhatWas() {
        m_told.clear();
        for (FrameSink& sink : m_sinks) sink.frames.clear();
    }

    void useTrigger() {
        aux().setSyncOutAuxFrequency(100, 1);
        for (std::uint32_t id = 0; id < 2; ++id) {
            const config_items::SingleValueConfigItem<std::string> mode("GIGE/TriggerModeAux");
            EXPECT_TRUE(channel(id)->setItem("CAMERA/TriggerMode", mode));
        }
    }
    /// The first pulse comes 5 ms from now.
    void drive() {
        const VmbSimRhythm rhythm{100, 1, 5 * kMillisecond, kMillisecond, 0};
        m_first_pulse = VmbSimTime() + rhythm.phaseNs;
        ASSERT_EQ(VmbSimDriveLine(nullptr, &rhythm), VmbErrorSuccess);
    }

    /// Every frame at a fixed rate has the host's time of its arrival. The cameras' clocks are steady and
    /// nothing waits: what may be left is the rounding of readings, each off by less than a tick.
    static void expectTimesOfArrival(const Frames& frames) {
        for (const StampedFrame& frame : frames) {
            const auto arrived = static_cast<std::int64_t>(frame.truth.exposureStartNs + frame.truth.wayNs);
            EXPECT_LE(std::abs(frame.time - arrived), 1'000) << frame.truth.frameId;
        }
    }
    void expectTimesOfPulses(const Frames& frames) const {
        for (const StampedFrame& frame : frames) {
            const auto since = static_cast<std::int64_t>(frame.truth.exposureStartNs - m_first_pulse);
            EXPECT_EQ(frame.time * static_cast<std::int64_t>(10 * kMillisecond), since);
        }
    }
    /// Frames follow each other with no other gap than that of the hiccup; how many it took.
    std::uint64_t missing(const Frames& frames) const {
        std::uint64_t all = 0;
        for (std::size_t i = 1; i < frames.size(); ++i) {
            const auto& before = frames[i - 1].truth;
            const auto& after = frames[i].truth;
            const std::uint64_t lost = after.frameId - before.frameId - 1;
            if (lost == 0) continue;
            const std::uint64_t step = (after.exposureStartNs - before.exposureStartNs) / (lost + 1);
            EXPECT_LE(before.exposureStartNs + before.wayNs, m_from);
            EXPECT_GT(before.exposureStartNs + before.wayNs + step, m_from) << "the next one is hit";
            EXPECT_GE(after.exposureStartNs + after.wayNs, m_until);
            // The last one that is hit has its transfer, some microseconds, still within.
            EXPECT_LT(after.exposureStartNs + after.wayNs - step, m_until + kMillisecond / 10);
            all += lost;
        }
        return all;
    }
    /// One behind the other from the first on, and so many at least.
    static void expectWhole(const Frames& frames, std::size_t least) {
        EXPECT_GE(frames.size(), least);
        for (std::size_t i = 0; i < frames.size(); ++i) EXPECT_EQ(frames[i].truth.frameId, i + 1);
    }
    void expectCounters(std::uint32_t id) const {
        ASSERT_FALSE(frames(id).empty());
        EXPECT_EQ(m_received[id].value, frames(id).size());
        EXPECT_EQ(m_sent[id].value + 1, frames(id).back().truth.frameId);
    }

    FrameSink m_sinks[2];
    LatestCount m_sent[2];
    LatestCount m_received[2];
    std::vector<std::string> m_told;
    std::uint64_t m_from = 0;
    std::uint64_t m_until = 0;
    std::uint64_t m_first_pulse = 0;
};

TEST_F(Hiccup, AtAFixedRateTakesTheFramesOfItsTimeAndNothingElse) {
    for (std::uint32_t id = 0; id < 2; ++id) set(id, config_keys::kCameraFrameSetting, 50);
    const AssertionCapture assertions;
    start();
    advance(5 * kSecond + 7 * kMillisecond);
    EXPECT_THAT(m_told, IsEmpty());
    const LogCapture log(UniLogSeverityLevel::Info);
    hiccup(700 * kMillisecond);
    advance(300 * kMillisecond);
    EXPECT_THAT(m_told, ElementsAre(kGone)) << "at once";
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Info),
                ElementsAre("GigE-Camera 'DEV_000F31A10002' was removed"));
    advance(5 * kSecond);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Info),
                ElementsAre("GigE-Camera 'DEV_000F31A10002' was removed",
                            "GigE-Camera 'DEV_000F31A10002' was added"));
    stop();
    EXPECT_THAT(m_told, ElementsAre(kGone));
    // 700 ms at 50 Hz; the transfer that is under way when it ends is hit as well.
    const std::uint64_t taken = missing(frames(kHiccuping));
    EXPECT_TRUE(taken == 35 || taken == 36) << taken;
    EXPECT_GE(frames(kHiccuping).size() + taken, 514u) << "it goes on to the end";
    expectWhole(frames(kOther), 514);
    for (std::uint32_t id = 0; id < 2; ++id) {
        expectTimesOfArrival(frames(id));
        expectCounters(id);
    }
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST_F(Hiccup, WithATriggerLeavesEveryFrameTheNumberOfItsPulse) {
    useTrigger();
    const AssertionCapture assertions;
    const LogCapture log(UniLogSeverityLevel::Detail);
    start();
    drive();
    advance(5 * kSecond);
    hiccup(700 * kMillisecond);
    advance(5 * kSecond);
    stop();
    EXPECT_THAT(m_told, ElementsAre(kGone));
    EXPECT_EQ(missing(frames(kHiccuping)), 70u);
    expectWhole(frames(kOther), 1'000);
    for (std::uint32_t id = 0; id < 2; ++id) {
        expectTimesOfPulses(frames(id));
        expectCounters(id);
    }
    EXPECT_EQ(frames(kHiccuping).back().time, 999);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Detail),
                ::testing::Not(Contains(::testing::StartsWith("Detected"))))
        << "no pulse was skipped";
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST_F(Hiccup, IsForgottenWithTheNextPreparationWhichOpensTheCameraAgain) {
    useTrigger();
    const AssertionCapture assertions;
    start();
    drive();
    advance(kSecond);
    hiccup(100 * kMillisecond);
    advance(kSecond);
    stop();
    forgetWhatWas();
    VmbSimJournalStart();
    start();
    const auto calls = Simulator::journal();
    VmbSimJournalStop();
    EXPECT_THAT(calls, Contains("VmbCameraClose(DEV_000F31A10002) = 0"));
    EXPECT_THAT(calls, Contains(::testing::StartsWith("VmbCameraOpen(\"DEV_000F31A10002\"")));
    EXPECT_THAT(calls, ::testing::Not(Contains(::testing::HasSubstr("VmbCameraClose(DEV_000F31A10001)"))));
    drive();
    advance(5 * kSecond);
    stop();
    EXPECT_THAT(m_told, IsEmpty());
    for (std::uint32_t id = 0; id < 2; ++id) {
        expectWhole(frames(id), 500);
        EXPECT_EQ(frames(id).front().truth.width, 32u) << "as the host had set it";
        expectTimesOfPulses(frames(id));
        expectCounters(id);
    }
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST_F(Hiccup, ThatLastsKeepsTheCameraFromBeingPreparedUntilItEnds) {
    for (std::uint32_t id = 0; id < 2; ++id) set(id, config_keys::kCameraFrameSetting, 50);
    const AssertionCapture assertions;
    start();
    advance(kSecond);
    hiccup(10 * kSecond);
    advance(kSecond);
    // The camera that is out of reach can be stopped like the other one.
    stop();
    forgetWhatWas();
    EXPECT_ANY_THROW(plugin->prepareAcquisition());
    EXPECT_THAT(m_told,
                ElementsAre("Cannot open camera 'Manta_G-032B (50-0503200002)': Could not open camera: "
                            "The designated instance (camera, feature etc.) cannot be found"));
    EXPECT_TRUE(plugin->stopAcquisition());
    advance(9 * kSecond);
    forgetWhatWas();
    start();
    advance(5 * kSecond);
    stop();
    EXPECT_THAT(m_told, IsEmpty());
    for (std::uint32_t id = 0; id < 2; ++id) {
        expectWhole(frames(id), 249);
        EXPECT_EQ(frames(id).front().truth.width, 32u);
        expectTimesOfArrival(frames(id));
    }
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

}  // namespace
