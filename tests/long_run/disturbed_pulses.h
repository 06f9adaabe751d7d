/// A pulse train at 100 Hz with planned faults of the line and of the way to the host.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include "long_run_fixture.h"

namespace test_support {

/// Faults are kept apart by at least a second of regular pulses.
enum class Trouble {
    Nothing,
    Missing,           ///< pulses do not come
    Doubled,           ///< one pulse comes again 4 ms later, and is exposed
    Bouncing,          ///< the camera is not ready for the later edges
    Lost,              ///< frames get lost on the way
    Broken,            ///< frames arrive incomplete
    LostThenMissing,   ///< lost frames, and missing pulses right behind them
    HiddenSkip,        ///< the second frame of a doubled pulse lost, and the next pulse missing
    FirstOfTwoLost,    ///< of a doubled pulse
    SecondOfTwoLost,   ///< of a doubled pulse
    SecondOfTwoBroken  ///< of a doubled pulse
};
inline constexpr std::size_t kTroubles = 11;

struct PlannedTrouble {
    Trouble trouble = Trouble::Nothing;
    std::uint64_t pulse = 0;  ///< from 0, the first one that it strikes
    std::uint32_t count = 0;  ///< of pulses or frames, for what can strike several
};

/// Drives the line of a camera that acquires, and lets time pass.
class DisturbedPulses {
  public:
    static constexpr std::uint64_t kPeriod = 10 * kMillisecond;
    static constexpr std::uint64_t kWidth = 2 * kMillisecond;
    static constexpr std::uint64_t kJitter = 100'000;
    static constexpr std::uint64_t kSlot = 400;           ///< pulses per trouble
    static constexpr std::uint64_t kSlotsPerDrive = 150;  ///< the simulator's list of faults stays short

    /// The first pulse rises 5 ms from now.
    DisturbedPulses(const char* camera, std::uint64_t seed)
        : m_camera(camera), m_first(VmbSimTime() + kPeriod / 2), m_random(seed) {}

    /// Passes `slots` slots. With `ambiguous`, frames of doubled pulses may get lost too.
    void run(std::uint64_t slots, bool ambiguous) {
        for (std::uint64_t done = 0; done < slots;) {
            const std::uint64_t part = std::min(slots - done, kSlotsPerDrive);
            drive(part, ambiguous);
            done += part;
        }
    }
    /// The pulse that exposed a frame; both exposures of a doubled pulse belong to it.
    std::uint64_t pulseOf(std::uint64_t exposureStart) const {
        return (exposureStart + kPeriod / 2 - m_first) / kPeriod;
    }
    std::uint64_t pulses() const { return m_slots * kSlot; }
    std::uint64_t count(Trouble trouble) const { return m_counts[static_cast<std::size_t>(trouble)]; }

    // What was planned, in all.
    std::uint64_t missing = 0;
    std::uint64_t doubled = 0;
    std::uint64_t lost = 0;
    std::uint64_t broken = 0;

  private:
    std::uint64_t riseOf(std::uint64_t pulse) const { return m_first + pulse * kPeriod; }
    std::uint64_t upTo(std::uint64_t most) { return m_random() % most + 1; }

    void drive(std::uint64_t slots, bool ambiguous) {
        const std::uint64_t firstPulse = m_slots * kSlot;
        const VmbSimRhythm rhythm{100, 1, riseOf(firstPulse) - VmbSimTime(), kWidth, kJitter};
        ASSERT_EQ(VmbSimDriveLine(m_camera, &rhythm), VmbErrorSuccess);
        std::vector<PlannedTrouble> plan;
        for (std::uint64_t slot = 0; slot < slots; ++slot) {
            const std::uint64_t kinds = ambiguous ? kTroubles : kTroubles - 3;
            const auto trouble = static_cast<Trouble>(m_random() % kinds);
            const std::uint64_t pulse = (m_slots + slot) * kSlot + 100 + m_random() % 200;
            plan.push_back({trouble, pulse, static_cast<std::uint32_t>(upTo(5))});
            ++m_counts[static_cast<std::size_t>(trouble)];
        }
        for (const PlannedTrouble& planned : plan) disturbLine(planned, firstPulse);
        for (const PlannedTrouble& planned : plan) disturbFrames(planned);
        m_slots += slots;
        const std::uint64_t end = riseOf(m_slots * kSlot) - kPeriod / 2;
        ASSERT_EQ(VmbSimAdvance(end - VmbSimTime()), VmbErrorSuccess);
    }

    void disturbLine(const PlannedTrouble& planned, std::uint64_t firstPulse) {
        const auto disturb = [&](VmbSimPulseFault fault, std::uint64_t pulse, std::uint64_t count) {
            ASSERT_EQ(VmbSimDisturbLine(m_camera, fault, pulse - firstPulse + 1, count), VmbErrorSuccess);
        };
        const auto miss = [&](std::uint64_t pulse, std::uint64_t count) {
            disturb(VmbSimPulseMissing, pulse, count);
            missing += count;
        };
        switch (planned.trouble) {
            case Trouble::Missing:
                return miss(planned.pulse, planned.count);
            case Trouble::LostThenMissing:
                return miss(planned.pulse + planned.count, planned.count);
            case Trouble::Bouncing:
                return disturb(VmbSimPulseBouncing, planned.pulse, planned.count);
            case Trouble::HiddenSkip:
                miss(planned.pulse + 1, 1);
                [[fallthrough]];
            case Trouble::Doubled:
            case Trouble::FirstOfTwoLost:
            case Trouble::SecondOfTwoLost:
            case Trouble::SecondOfTwoBroken:
                ++doubled;
                return disturb(VmbSimPulseDoubled, planned.pulse, 1);
            default:
                return;
        }
    }

    void disturbFrames(const PlannedTrouble& planned) {
        const std::uint64_t before = riseOf(planned.pulse) - kMillisecond;
        // The first frame of a doubled pulse has arrived, the second is not yet exposed.
        const std::uint64_t between = riseOf(planned.pulse) + 3 * kMillisecond;
        switch (planned.trouble) {
            case Trouble::Lost:
            case Trouble::LostThenMissing:
                return lose(before, planned.count);
            case Trouble::Broken:
                return spoil(before, planned.count);
            case Trouble::FirstOfTwoLost:
                return lose(before, 1);
            case Trouble::SecondOfTwoLost:
            case Trouble::HiddenSkip:
                return lose(between, 1);
            case Trouble::SecondOfTwoBroken:
                return spoil(between, 1);
            default:
                return;
        }
    }
    void lose(std::uint64_t at, std::uint32_t count) {
        ASSERT_EQ(VmbSimAdvance(at - VmbSimTime()), VmbErrorSuccess);
        ASSERT_EQ(VmbSimLoseFrames(m_camera, count), VmbErrorSuccess);
        lost += count;
    }
    void spoil(std::uint64_t at, std::uint32_t count) {
        ASSERT_EQ(VmbSimAdvance(at - VmbSimTime()), VmbErrorSuccess);
        ASSERT_EQ(VmbSimBreakFrames(m_camera, count, VmbFrameStatusIncomplete), VmbErrorSuccess);
        broken += count;
    }

    const char* const m_camera;
    const std::uint64_t m_first;
    std::mt19937_64 m_random;
    std::uint64_t m_slots = 0;
    std::array<std::uint64_t, kTroubles> m_counts{};
};

}  // namespace test_support
