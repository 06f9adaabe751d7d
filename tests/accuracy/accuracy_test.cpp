// How good time stamps are, on the whole path: simulated frames through the plug-in to the host's sink, in
// virtual time, against the true starts of exposure. What is allowed stands in accuracy_cases.cpp and in
// docs/TIME.md. It is what a model of the rules makes of the same frames (stamp_model.h), with the rounding
// of the stamps, rounded up to two digits: a plug-in that is worse fails, and so does a bound that allows
// more.
#include "accuracy_judgement.h"
#include "frame_judge.h"

namespace {

using test_support::AccuracyCase;
using test_support::AssertionCapture;
using test_support::FrameJudge;
using test_support::Incident;
using test_support::judge;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::kSecond;
using test_support::LongRun;
using test_support::measured;
using test_support::WaitingHostClock;
using ::testing::IsEmpty;

constexpr double kFramesPerSecond = 20;
constexpr const char* kInterface = "SimulatedNetwork0";

class Accuracy : public LongRun, public ::testing::WithParamInterface<AccuracyCase> {
  protected:
    void record() {
        const AccuracyCase& conditions = GetParam();
        const auto host = std::make_shared<WaitingHostClock>(conditions.hostOrigin, conditions.waits);
        FrameJudge frames(conditions, *host);
        const AssertionCapture assertions;
        plugin->setSharedAcquisitionObject(host);
        VmbSimSeed(20'261'122);
        ASSERT_EQ(VmbSimSetLink(kInterface, &conditions.link), VmbErrorSuccess);
        set(config_keys::kCameraFrameSetting, kFramesPerSecond);
        plugin->setChannelSink(0, &frames);
        replaceClock(conditions.clock);
        start();
        ASSERT_FALSE(HasFailure());
        pass(conditions, frames);
        m_delivered += statistic("StatFrameDelivered");
        stop();
        plugin->clearChannelSinks();
        expectGood(frames);
        EXPECT_THAT(assertions.failures(), IsEmpty());
    }

  private:
    /// The plug-in asks for the frequency of the ticks when it opens the camera.
    static void replaceClock(const VmbSimOscillator& clock) {
        ASSERT_EQ(VmbSimSetOscillator(kMonochromeCamera, &clock), VmbErrorSuccess);
        ASSERT_EQ(VmbSimUnplugCamera(kMonochromeCamera), VmbErrorSuccess);
        ASSERT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
        ASSERT_EQ(VmbSimPlugCamera(kMonochromeCamera), VmbErrorSuccess);
        ASSERT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    }
    void pass(const AccuracyCase& conditions, FrameJudge& frames) {
        const std::uint64_t duration = conditions.seconds * kSecond;
        const std::uint64_t end = VmbSimTime() + duration;
        switch (conditions.incident) {
            case Incident::None:
                break;
            case Incident::Hiccup:
                advance(duration / 2);
                ASSERT_EQ(VmbSimHiccup(kMonochromeCamera, 60 * kSecond), VmbErrorSuccess);
                break;
            case Incident::LostFrames:
                for (VmbUint32_t count = 1; VmbSimTime() + 7 * kSecond < end; count = count % 5 + 1) {
                    advance(7 * kSecond);
                    ASSERT_EQ(VmbSimLoseFrames(kMonochromeCamera, count), VmbErrorSuccess);
                }
                break;
            case Incident::ClockReset:
                advance(duration / 3);
                resetClock();
                break;
            case Incident::NewAcquisition:
                advance(duration / 2);
                m_delivered += statistic("StatFrameDelivered");
                stop();
                frames.beginAcquisition();
                start();
                break;
        }
        advanceTo(end);
    }

    static std::uint64_t statistic(const char* name) {
        VmbInt64_t value = -1;
        EXPECT_EQ(VmbFeatureIntGet(cameraHandle(), name, &value), VmbErrorSuccess);
        return static_cast<std::uint64_t>(value);
    }
    static void resetClock() {
        ASSERT_EQ(VmbFeatureCommandRun(cameraHandle(), "GevTimestampControlReset"), VmbErrorSuccess);
    }

    void expectGood(const FrameJudge& frames) const {
        const AccuracyCase& conditions = GetParam();
        const auto rounding = static_cast<double>(frames.coarsest) + 2;
        judge(conditions.name, measured(frames.seen, 0), measured(frames.expected, rounding),
              conditions.bounds);
        EXPECT_EQ(frames.againstModel, 0u);
        EXPECT_EQ(frames.seen.values.size() + frames.dropped, m_delivered);
        if (conditions.incident == Incident::ClockReset) {
            EXPECT_GE(frames.dropped, conditions.seconds / 3 * 20);
            return;
        }
        EXPECT_EQ(frames.dropped, 0u);
        EXPECT_EQ(frames.beyondLimit, 0u);
        EXPECT_LE(frames.seen.spread(990), frames.highestLimit * 2);
    }

    std::uint64_t m_delivered = 0;  ///< by the camera
};

TEST_P(Accuracy, IsAsStated) {
    record();
}

INSTANTIATE_TEST_SUITE_P(Under, Accuracy, ::testing::ValuesIn(test_support::accuracyCases()),
                         [](const auto& instance) {
                             std::string name = instance.param.name;
                             for (char& letter : name) letter = letter == ' ' ? '_' : letter;
                             return name;
                         });

}  // namespace
