// A day of a camera on the host's trigger output, through the whole plug-in: every pulse is accounted for.
//
// A frame's time stamp is the number of its pulse, and all that the plug-in has to find it are the frame's
// number and the camera's clock. So there are pulses that it cannot know; how often they came in the whole
// day stands in brackets:
//
// - Pulses before the first frame that produced none (nothing tells how long the line had been silent), a
//   silence so long that the camera's clock is off by half a pulse, and where counting begins when the
//   camera's start event gets lost. edges_of_a_run_test shows them.
// - A frame of a doubled pulse that is lost, or damaged, on its way: its missing number looks like a pulse
//   whose frame was lost (2939). From then on every index is one too high. It happens in the second half of
//   the day only, so that in the first the index must be the pulse itself; in the second, the distance from
//   one frame to the next must be right everywhere else.
// - A missing pulse behind such a lost frame: one number and one pulse too few (2361). The index is right,
//   but the log says nothing of the pulse that was skipped.
#include <algorithm>
#include <chrono>
#include <cstdio>

#include "disturbed_pulses.h"

namespace {

using test_support::AssertionCapture;
using test_support::DisturbedPulses;
using test_support::kMonochromeCamera;
using test_support::kReceivedFrames;
using test_support::kSentFrames;
using test_support::kShorterBy;
using test_support::LatestCount;
using test_support::LogCapture;
using test_support::LongRun;
using test_support::readFrame;
using test_support::StampedFrame;
using test_support::Trouble;
using ::testing::IsEmpty;

__extension__ using Wide = __int128;

constexpr std::uint64_t kSlots = 86'400 / 4 / kShorterBy;
constexpr std::int64_t kPulsesPerSecond = 100;
constexpr std::int64_t kTriggeredTicksPerSecond = 1'000'000'000;
constexpr std::uint64_t kStartFrame = 1;

/// The rules in whole numbers, from frame numbers and camera times alone.
class Rules {
  public:
    std::int64_t indexOf(std::uint64_t id, std::uint64_t ticks) {
        if (!m_first) judge(Wide{id} - m_id - 1, Wide{ticks} - m_ticks);
        m_first = false;
        m_id = id;
        m_ticks = ticks;
        return static_cast<std::int64_t>(m_id - Wide{kStartFrame} + m_offset);
    }

  private:
    void judge(Wide numbersMissing, Wide elapsed) {
        // Pulses between the two frames, times the ticks of a second.
        const Wide over = elapsed * kPulsesPerSecond - kTriggeredTicksPerSecond;
        const Wide magnitude =
            ((over < 0 ? -over : over) * 2 + kTriggeredTicksPerSecond) / (2 * kTriggeredTicksPerSecond);
        const Wide pulsesMissing = over < 0 ? -magnitude : magnitude;
        if (pulsesMissing > numbersMissing)
            m_offset += pulsesMissing - numbersMissing;
        else if (pulsesMissing < 0)
            m_offset += pulsesMissing;
    }

    bool m_first = true;
    Wide m_id = 0;
    Wide m_ticks = 0;
    Wide m_offset = 0;
};

/// Compares each frame as it comes with the rules and with the pulse that exposed it.
class PulseAuditor final : public zelt::IfChannelSink {
  public:
    explicit PulseAuditor(const DisturbedPulses& pulses) : m_pulses(pulses) {}

    void addSample(std::int64_t time, const void* data, std::uint64_t size) override {
        const StampedFrame frame = readFrame(time, data, size);
        if (time != m_rules.indexOf(frame.truth.frameId, frame.truth.cameraTicks)) ++againstRules;
        const auto pulse = static_cast<std::int64_t>(m_pulses.pulseOf(frame.truth.exposureStartNs));
        if (frames++ > 0) compare(frame, pulse);
        if (time == pulse) ++atTheirPulse;
        tooHigh = time - pulse;
        lastId = frame.truth.frameId;
        m_index = time;
        m_pulse = pulse;
    }

    std::uint64_t frames = 0;
    std::uint64_t atTheirPulse = 0;
    std::uint64_t againstRules = 0;
    std::uint64_t againstPulses = 0;  ///< where the pulse can be known
    std::uint64_t skips = 0;          ///< gaps of more pulses than numbers
    std::uint64_t doubles = 0;        ///< second frames of a pulse
    std::uint64_t ambiguous = 0;      ///< gaps of more numbers than pulses
    std::int64_t tooHigh = 0;         ///< the last index, against its pulse
    std::uint64_t lastId = 0;

  private:
    void compare(const StampedFrame& frame, std::int64_t pulse) {
        const std::int64_t passed = pulse - m_pulse;
        const auto numbers = static_cast<std::int64_t>(frame.truth.frameId - lastId);
        const bool isDouble = passed == 0 && numbers == 1;
        const bool canBeKnown = passed >= numbers || isDouble;
        if (frame.time - m_index != (canBeKnown ? passed : numbers)) ++againstPulses;
        skips += passed > numbers ? 1 : 0;
        doubles += isDouble ? 1 : 0;
        ambiguous += canBeKnown ? 0 : 1;
    }

    const DisturbedPulses& m_pulses;
    Rules m_rules;
    std::int64_t m_index = 0;
    std::int64_t m_pulse = 0;
};

std::size_t countOf(const std::vector<std::string>& lines, const char* what) {
    return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
        return line.find(what) != std::string::npos;
    }));
}

using TriggeredDay = LongRun;

void report(const DisturbedPulses& pulses, const PulseAuditor& auditor, double seconds) {
    std::printf(
        "triggered: %llu pulses, %llu missing, %llu doubled; frames: %llu delivered, %llu lost, %llu "
        "broken; %llu at their pulse; %llu skips, %llu double triggers; %llu not to be known, %llu "
        "skips hidden; %.1f s\n",
        static_cast<unsigned long long>(pulses.pulses()), static_cast<unsigned long long>(pulses.missing),
        static_cast<unsigned long long>(pulses.doubled), static_cast<unsigned long long>(auditor.frames),
        static_cast<unsigned long long>(pulses.lost), static_cast<unsigned long long>(pulses.broken),
        static_cast<unsigned long long>(auditor.atTheirPulse), static_cast<unsigned long long>(auditor.skips),
        static_cast<unsigned long long>(auditor.doubles), static_cast<unsigned long long>(auditor.ambiguous),
        static_cast<unsigned long long>(pulses.count(Trouble::HiddenSkip)), seconds);
}

TEST_F(TriggeredDay, EveryPulseIsAccountedFor) {
    const auto begin = std::chrono::steady_clock::now();
    const AssertionCapture assertions;
    VmbSimSeed(20'261'121);
    useTrigger(kPulsesPerSecond);
    // 12 millionths fast, swinging by 5 within a day, stamps off by up to 2 microseconds.
    startWith({kTriggeredTicksPerSecond, 10'000'000'000'000, 12'000, 5'000, 86'400, 2'000});
    DisturbedPulses pulses(kMonochromeCamera, 4711);
    PulseAuditor auditor(pulses);
    plugin->setChannelSink(0, &auditor);
    LatestCount sent;
    LatestCount received;
    plugin->setChannelSink(kSentFrames, &sent);
    plugin->setChannelSink(kReceivedFrames, &received);
    const LogCapture log(UniLogSeverityLevel::Detail);

    pulses.run(kSlots / 2, /*ambiguous=*/false);
    EXPECT_EQ(auditor.atTheirPulse, auditor.frames);
    EXPECT_EQ(auditor.ambiguous, 0u);
    pulses.run(kSlots - kSlots / 2, /*ambiguous=*/true);
    stop();
    plugin->clearChannelSinks();

    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    report(pulses, auditor, passed.count());
    EXPECT_EQ(auditor.againstRules, 0u);
    EXPECT_EQ(auditor.againstPulses, 0u);
    const std::uint64_t exposed = pulses.pulses() - pulses.missing + pulses.doubled;
    EXPECT_EQ(auditor.lastId, exposed);
    EXPECT_EQ(auditor.frames, exposed - pulses.lost - pulses.broken);
    EXPECT_EQ(sent.value, exposed - 1);
    EXPECT_EQ(received.value, auditor.frames);
    EXPECT_EQ(sent.samples, auditor.frames);
    EXPECT_EQ(received.samples, auditor.frames);
    const std::uint64_t ofTwo = pulses.count(Trouble::FirstOfTwoLost) +
                                pulses.count(Trouble::SecondOfTwoLost) +
                                pulses.count(Trouble::SecondOfTwoBroken);
    EXPECT_GT(ofTwo, 0u);
    EXPECT_EQ(auditor.ambiguous, ofTwo);
    EXPECT_EQ(auditor.tooHigh, static_cast<std::int64_t>(ofTwo));
    EXPECT_EQ(auditor.doubles, pulses.count(Trouble::Doubled));
    EXPECT_EQ(auditor.skips, pulses.count(Trouble::Missing) + pulses.count(Trouble::LostThenMissing));
    EXPECT_THAT(assertions.failures(), IsEmpty());
    const auto lines = log.texts(UniLogSeverityLevel::Detail);
    EXPECT_EQ(countOf(lines, " skipped and "), auditor.skips);
    EXPECT_EQ(countOf(lines, " multi-triggered frames at #"), auditor.doubles);
}

}  // namespace
