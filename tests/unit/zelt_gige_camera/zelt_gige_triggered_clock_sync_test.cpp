#include "zelt_gige_triggered_clock_sync.h"

#include <limits>

#include <boost/log/core.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "allocation_counter.h"
#include "assertion_capture.h"
#include "log_capture.h"
#include "throwing_log.h"

namespace {

using test_support::AllocationCounter;
using test_support::AssertionCapture;
using test_support::LogCapture;
using test_support::LogLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::ThrowsMessage;
using zelt_gige_api::CameraFrame;
using zelt_gige_camera::Rational;
using zelt_gige_camera::TriggeredClockSync;

constexpr std::int64_t kGigahertz = 1'000'000'000;
constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t kMillisecond = 1'000'000;
constexpr const char* kSource = "lib/zelt_gige_camera/src/zelt_gige_triggered_clock_sync";

CameraFrame frameAt(std::uint64_t timestamp, std::uint64_t frameid) {
    CameraFrame frame;
    frame.timestamp = timestamp;
    frame.frameid = frameid;
    return frame;
}

LogLine detail(const std::string& text) {
    return {2, "zelt_plugin_gige_camera", text};
}

LogLine warning(const std::string& text) {
    return {5, "zelt_plugin_gige_camera", text};
}

/// A camera clock of 1 GHz, and 100 pulses per second unless told otherwise.
class Triggered : public ::testing::Test {
  protected:
    std::int64_t receive(std::uint64_t timestamp, std::uint64_t frameid) {
        return m_sync.timestampFromSync(frameAt(timestamp, frameid));
    }
    /// `count` frames at every pulse, the first with id 1 at time 0.
    void receiveRegular(std::uint64_t count) {
        for (std::uint64_t i = 0; i < count; ++i) receive(i * 10 * kMillisecond, i + 1);
    }

    TriggeredClockSync m_sync{Rational(kGigahertz), 1e9, Rational(100)};
    AssertionCapture m_assertions;
    LogCapture m_log;
};

TEST_F(Triggered, HasThePulseFrequencyForItsRate) {
    EXPECT_EQ(m_sync.getRate(), 100.0);
    EXPECT_EQ(TriggeredClockSync(Rational(kGigahertz), 1e9, Rational(30'000, 1001)).getRate(),
              30'000.0 / 1001.0);
}

TEST_F(Triggered, NeedsNoSyncPointButTakesThem) {
    for (int point = 1; point <= 20; ++point) {
        EXPECT_FALSE(m_sync.needsSyncPoint(frameAt(0, 0)));
        EXPECT_FALSE(m_sync.isSynchronized());
        m_sync.addSyncPoint(point * 1000, point * 1000, 0.0);
    }
    EXPECT_TRUE(m_sync.isSynchronized());
    EXPECT_FALSE(m_sync.needsSyncPoint(frameAt(0, 0)));
}

TEST_F(Triggered, ComputesTheSameWhateverTheClocksRead) {
    m_sync.setReference(0, 10);
    EXPECT_EQ(m_sync.computeTimestamp(frameAt(5 * kMillisecond, 12), 1, 2), 2);
    EXPECT_EQ(m_sync.computeTimestamp(frameAt(15 * kMillisecond, 13), 0, 0), 3);
}

TEST_F(Triggered, CountsTheFirstFrameFromTheStartEventWithoutALog) {
    m_sync.setReference(123'456, 7);
    EXPECT_EQ(receive(500 * kMillisecond, 12), 5);
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(Triggered, CountsFramesBeforeTheStartFrameBelowZero) {
    m_sync.setReference(0, 7);
    EXPECT_EQ(receive(0, 4), -3);
    EXPECT_EQ(receive(10 * kMillisecond, 5), -2);
}

TEST_F(Triggered, NumbersRegularFramesConsecutively) {
    for (std::int64_t i = 0; i < 100; ++i) {
        const auto frame = static_cast<std::uint64_t>(i);
        EXPECT_EQ(receive(frame * 10 * kMillisecond, frame), i);
    }
    EXPECT_THAT(m_log.lines(), IsEmpty());
    EXPECT_THAT(m_assertions.failures(), IsEmpty());
}

TEST_F(Triggered, ATimeOfZeroIsAFrameLikeOthers) {
    receive(0, 1);
    EXPECT_EQ(receive(20 * kMillisecond, 2), 3);
}

TEST_F(Triggered, ASkippedTriggerLeavesAGap) {
    receive(10 * kMillisecond, 1);
    EXPECT_EQ(receive(30 * kMillisecond, 2), 3);
    EXPECT_EQ(receive(40 * kMillisecond, 3), 4);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 1 skipped and 0 dropped frames at #2")));
}

TEST_F(Triggered, ALostFrameKeepsItsPulse) {
    receive(10 * kMillisecond, 1);
    EXPECT_EQ(receive(30 * kMillisecond, 3), 3);
    EXPECT_EQ(receive(40 * kMillisecond, 4), 4);
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(Triggered, SkippedTriggersAndLostFramesAreToldApart) {
    receive(10 * kMillisecond, 1);
    EXPECT_EQ(receive(50 * kMillisecond, 3), 5);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 3 skipped and 1 dropped frames at #3")));
}

TEST_F(Triggered, MoreMissingIdsThanPulsesAreNotCorrected) {
    receive(10 * kMillisecond, 1);
    EXPECT_EQ(receive(30 * kMillisecond, 5), 5);
    EXPECT_EQ(receive(40 * kMillisecond, 7), 7);
    EXPECT_THAT(m_log.lines(), IsEmpty());
    EXPECT_THAT(m_assertions.failures(), IsEmpty());
}

TEST_F(Triggered, ADoubleTriggerClosesAGap) {
    receive(10 * kMillisecond, 1);
    EXPECT_EQ(receive(15 * kMillisecond, 2), 1);
    EXPECT_EQ(receive(25 * kMillisecond, 3), 2);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 0.5 multi-triggered frames at #2")));
    EXPECT_THAT(m_assertions.failures(), IsEmpty());
}

TEST_F(Triggered, RoundsHalvesAwayFromZero) {
    receive(0, 1);
    EXPECT_EQ(receive(15'000'000, 2), 3);
    EXPECT_EQ(receive(15'000'000 + 14'999'999, 3), 4);
    EXPECT_EQ(receive(29'999'999 + 5'000'001, 4), 5);
    EXPECT_EQ(receive(35'000'000 + 5'000'000, 5), 5);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 0.5 skipped and 0 dropped frames at #2"),
                                           detail("Detected 0.5 multi-triggered frames at #5")));
}

// 0.25025 s are exactly 7.5 pulses. In doubles they come out a little less.
TEST_F(Triggered, RoundsTheExactFraction) {
    TriggeredClockSync sync(Rational(8'000'000), 8e6, Rational(30'000, 1001));
    sync.timestampFromSync(frameAt(0, 1));
    EXPECT_EQ(sync.timestampFromSync(frameAt(2'002'000, 2)), 9);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 6.5 skipped and 0 dropped frames at #2")));
}

TEST_F(Triggered, WritesFractionsOfPulsesWithSixDigits) {
    receive(0, 1);
    EXPECT_EQ(receive(277'666'666, 2), 29);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 26.7667 skipped and 0 dropped frames at #2")));
}

TEST_F(Triggered, AFrameTooSoonWithMissingIdsIsAnAssertionAndADoubleTrigger) {
    receive(10 * kMillisecond, 1);
    EXPECT_EQ(receive(12 * kMillisecond, 4), 3);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 0.8 multi-triggered frames at #4")));
    ASSERT_EQ(m_assertions.failures().size(), 1u);
    EXPECT_EQ(m_assertions.failures()[0].message, "dropped_frameids != 0 (2 != 0)");
    EXPECT_EQ(m_assertions.failures()[0].file, kSource);
}

TEST_F(Triggered, AssertsThatTheCameraTimeGrows) {
    receive(10 * kMillisecond, 1);
    EXPECT_EQ(receive(10 * kMillisecond, 2), 1);
    EXPECT_THAT(m_assertions.expressions(), ElementsAre("m_last_frame_timestamp < frame.timestamp"));
    EXPECT_EQ(m_assertions.failures()[0].file, kSource);
    EXPECT_EQ(m_assertions.failures()[0].message, std::nullopt);
    EXPECT_EQ(receive(0, 3), 0);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 1 multi-triggered frames at #2"),
                                           detail("Detected 2 multi-triggered frames at #3")));
}

TEST_F(Triggered, AssertsThatTheFrameIdGrows) {
    receive(10 * kMillisecond, 5);
    EXPECT_EQ(receive(20 * kMillisecond, 5), 6);
    EXPECT_THAT(m_assertions.expressions(), ElementsAre("m_last_frame_id < frame.frameid"));
    EXPECT_EQ(m_assertions.failures()[0].file, kSource);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 0 skipped and -1 dropped frames at #5")));
}

TEST_F(Triggered, TheSameFrameTwiceIsReportedThrice) {
    receive(10 * kMillisecond, 5);
    EXPECT_EQ(receive(10 * kMillisecond, 5), 4);
    ASSERT_EQ(m_assertions.failures().size(), 3u);
    EXPECT_EQ(m_assertions.failures()[2].message, "dropped_frameids != 0 (-1 != 0)");
}

TEST_F(Triggered, ATickFrequencyOfZeroIsAnErrorFromTheSecondFrameOn) {
    TriggeredClockSync sync(Rational(0), 0.0, Rational(100));
    EXPECT_EQ(sync.timestampFromSync(frameAt(10, 1)), 1);
    for (const std::uint64_t time : {10u, 20u}) {
        EXPECT_THAT([&] { sync.timestampFromSync(frameAt(time, 2)); },
                    ThrowsMessage<boost::bad_rational>("bad rational: zero denominator"));
    }
}

TEST_F(Triggered, AtAPulseFrequencyOfZeroEveryFrameComesTooSoon) {
    TriggeredClockSync sync(Rational(kGigahertz), 1e9, Rational(0));
    EXPECT_EQ(sync.timestampFromSync(frameAt(0, 1)), 1);
    EXPECT_EQ(sync.timestampFromSync(frameAt(10 * kMillisecond, 2)), 1);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 1 multi-triggered frames at #2")));
}

TEST_F(Triggered, AnIdThatTheClockDoesNotExpectIsLoggedFromThe21stFrameOn) {
    receiveRegular(19);
    receive(190 * kMillisecond, 21);
    EXPECT_THAT(m_log.lines(), IsEmpty());
    receive(200 * kMillisecond, 40);
    ASSERT_EQ(m_log.lines().size(), 1u);
    EXPECT_EQ(m_log.lines()[0].severity, 5u);
    EXPECT_THAT(m_log.lines()[0].text, StartsWith("Frame #40 was expected to be 21."));
}

TEST_F(Triggered, WritesTheExpectedIdWithSixDigitsAndTellsNothingElseByIt) {
    receiveRegular(20);
    EXPECT_EQ(receive(257'666'000, 21), 27);
    EXPECT_THAT(m_log.lines(), ElementsAre(warning("Frame #21 was expected to be 26.7666"),
                                           detail("Detected 5.7666 skipped and 0 dropped frames at #21")));
}

TEST_F(Triggered, AnIdMayBeHalfAPulseFromWhatIsExpected) {
    receiveRegular(20);
    receive(204'900'000, 21);
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST_F(Triggered, AnIdMayNotBeMoreThanHalfAPulseFromWhatIsExpected) {
    receiveRegular(20);
    receive(205'100'000, 21);
    EXPECT_THAT(m_log.texts(UniLogSeverityLevel::Warning), ElementsAre("Frame #21 was expected to be 21.51"));
}

TEST_F(Triggered, AClockThatStandsStillMakesEveryIdImplausible) {
    for (std::uint64_t id = 1; id <= 21; ++id) receive(10 * kMillisecond, id);
    ASSERT_EQ(m_log.texts(UniLogSeverityLevel::Warning).size(), 1u);
    EXPECT_THAT(m_log.texts(UniLogSeverityLevel::Warning)[0], StartsWith("Frame #21 was expected to be "));
}

TEST_F(Triggered, AFrameWhoseLogFailsIsAsIfItHadNotCome) {
    receive(10 * kMillisecond, 1);
    {
        const test_support::ThrowingLog failing("Detected");
        EXPECT_THROW(receive(30 * kMillisecond, 2), std::runtime_error);
    }
    EXPECT_EQ(receive(40 * kMillisecond, 3), 4);
}

TEST_F(Triggered, AFractionBeyond64BitsIsRoundedInDoubles) {
    // Just below 100 Hz: the fraction of 30000001 ns has a denominator of 1.0000000049e19.
    TriggeredClockSync sync(Rational(kGigahertz), 1e9, Rational(1'000'000'000'003, 10'000'000'049));
    sync.timestampFromSync(frameAt(0, 1));
    EXPECT_EQ(sync.timestampFromSync(frameAt(30'000'001, 2)), 4);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 2 skipped and 0 dropped frames at #2")));
}

// 23 ticks are 11.5 pulses; in doubles a little less, and products of the terms do not fit 64 bits.
TEST_F(Triggered, LargeFractionsThatCancelAreExact) {
    constexpr std::int64_t kTicks = 5'002'000'000'000'000'005;
    TriggeredClockSync sync(Rational(kTicks), 5e18, Rational(kTicks, 2));
    sync.timestampFromSync(frameAt(0, 1));
    EXPECT_EQ(sync.timestampFromSync(frameAt(23, 2)), 13);
    EXPECT_THAT(m_log.lines(), ElementsAre(detail("Detected 10.5 skipped and 0 dropped frames at #2")));
}

TEST(TriggeredWithoutALog, SurvivesWhateverNumbersItIsGiven) {
    const Rational fractions[] = {Rational(1),          Rational(-1),       Rational(kLowest),
                                  Rational(kLowest, 3), Rational(kMax),     Rational(-kMax),
                                  Rational(1, kMax),    Rational(-1, kMax), Rational(kMax, kMax - 1)};
    constexpr std::uint64_t kTop = std::uint64_t{1} << 63;
    const std::uint64_t numbers[] = {0,        1,    7,        1u << 31,          kTop - 2,
                                     kTop - 1, kTop, kTop + 1, 2 * (kTop - 1) + 1};
    std::size_t answers = 0;
    for (const Rational& ticks : fractions) {
        for (const Rational& pulses : fractions) {
            TriggeredClockSync sync(ticks, 1.0, pulses);
            for (const std::uint64_t first : numbers) {
                for (const std::uint64_t second : numbers) {
                    sync.setReference(second, first);
                    EXPECT_NO_THROW(sync.timestampFromSync(frameAt(first, second)));
                    EXPECT_NO_THROW(sync.timestampFromSync(frameAt(second, first)));
                    answers += 2;
                }
            }
        }
    }
    EXPECT_EQ(answers, 2u * 9 * 9 * 9 * 9);
}

TEST_F(Triggered, ARegularFrameAllocatesNothing) {
    receiveRegular(1);
    const AllocationCounter counter;
    for (std::uint64_t i = 1; i < 100'000; ++i) receive(i * 10 * kMillisecond, i + 1);
    EXPECT_EQ(counter.count(), 0u);
    EXPECT_THAT(m_log.lines(), IsEmpty());
}

TEST(TriggeredWithoutALog, AnIrregularFrameAllocatesNothing) {
    ASSERT_FALSE(boost::log::core::get()->get_logging_enabled());
    TriggeredClockSync sync(Rational(kGigahertz), 1e9, Rational(30'000, 1001));
    std::uint64_t time = 1;
    sync.timestampFromSync(frameAt(time, 0));
    const AllocationCounter counter;
    for (std::uint64_t id = 1; id < 10'000; ++id) {
        time += (id % 3 + 1) * 15 * kMillisecond;
        sync.timestampFromSync(frameAt(time, id * 2));
    }
    EXPECT_EQ(counter.count(), 0u);
}

}  // namespace
