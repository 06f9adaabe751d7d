#include "recording_statistics.h"

#include <numeric>

#include <gtest/gtest.h>

using host::ChannelReport;
using host::RecordingStatistics;
using host::StampReading;

namespace {

StampReading stamp(std::uint64_t id, std::uint64_t exposureNs, std::uint64_t wayNs = 0,
                   VmbError_t result = VmbErrorSuccess) {
    StampReading reading;
    reading.result = result;
    reading.stamp.frameId = id;
    reading.stamp.exposureStartNs = exposureNs;
    reading.stamp.wayNs = wayNs;
    return reading;
}

void add(RecordingStatistics& statistics, std::int64_t time, std::uint64_t lostBefore,
         const StampReading& reading, std::int64_t arrival = 0) {
    host::RingFrame frame;
    frame.time = time;
    frame.arrival = arrival;
    frame.lostBefore = lostBefore;
    statistics.add(frame, reading);
}

TEST(Median, IsTheMiddleOrTheMeanOfTheTwoInTheMiddle) {
    EXPECT_EQ(host::median({}), 0);
    EXPECT_EQ(host::median({7}), 7);
    EXPECT_EQ(host::median({9, 1, 5}), 5);
    EXPECT_EQ(host::median({10, 1, 4, 9}), 6);  // (4 + 9) / 2 = 6.5, towards the smaller
    EXPECT_EQ(host::median({-3, -8}), -6);
}

TEST(Percentile, IsTheSmallestValueThatEnoughValuesDoNotExceed) {
    std::vector<std::int64_t> hundred(100);
    std::iota(hundred.begin(), hundred.end(), 1);
    EXPECT_EQ(host::percentile(hundred, 99), 99);
    hundred.push_back(101);  // 99 % of 101 are 99.99, so 100 values are needed
    EXPECT_EQ(host::percentile(hundred, 99), 100);
    EXPECT_EQ(host::percentile({3, 1, 2}, 99), 3);
    EXPECT_EQ(host::percentile({}, 99), 0);
}

TEST(RecordingStatistics, SplitsTheTimeErrorIntoConstantPartAndSpread) {
    RecordingStatistics statistics(true, 50.0);
    // Errors 100, 104, 97, 101, 99: median 100, distances 0, 4, 3, 1, 1.
    add(statistics, 1100, 0, stamp(1, 1000, 90));
    add(statistics, 2104, 0, stamp(2, 2000, 95));
    add(statistics, 3097, 0, stamp(3, 3000, 95));
    add(statistics, 4101, 0, stamp(4, 4000, 97));
    add(statistics, 5099, 0, stamp(5, 5000, 99));
    const ChannelReport report = statistics.report(0);
    ASSERT_TRUE(report.timeError);
    EXPECT_EQ(report.timeError->constantNs, 100);
    EXPECT_EQ(report.timeError->wayNs, 95);
    EXPECT_EQ(report.timeError->spreadMaxNs, 4);
    EXPECT_EQ(report.timeError->spreadP99Ns, 4);
    EXPECT_EQ(report.frames, 5u);
    EXPECT_EQ(report.matches, 5u);
    EXPECT_EQ(report.mismatches, 0u);
}

TEST(RecordingStatistics, TellsTheDelayOfTheDelivery) {
    RecordingStatistics statistics(true, 50.0);
    // Handed over 95, 92 and 97 after the exposure, with ways of 90: delays 5, 2, 7; all three are needed for
    // 99 %.
    add(statistics, 0, 0, stamp(1, 1000, 90), 1095);
    add(statistics, 0, 0, stamp(2, 2000, 90), 2092);
    add(statistics, 0, 0, stamp(3, 3000, 90), 3097);
    EXPECT_EQ(statistics.report(0).timeError->delayP99Ns, 7);
}

TEST(RecordingStatistics, CountsTimesThatAreEarlierThanTheirPictures) {
    RecordingStatistics statistics(true, 50.0);
    // The way is 2 ms; half a millisecond earlier is what a thread may be late.
    for (const std::int64_t error : {2'000'000, 1'500'000, 1'499'999, 900'000}) {
        add(statistics, 7'000'000 + error, 0, stamp(1, 7'000'000, 2'000'000));
    }
    EXPECT_EQ(statistics.report(0).timeError->early, 2u);
}

TEST(RecordingStatistics, TellsHowMuchFasterThanTrueTimeItsTimesRun) {
    RecordingStatistics statistics(true, 50.0);
    // 19.878 ms for every 20 ms: 0.122 of 20 are 6100 millionths too little.
    for (std::uint64_t i = 0; i < 200; ++i) {
        add(statistics, static_cast<std::int64_t>(1'000'000'000'000'000'000 + i * 19'878'000), 0,
            stamp(i + 1, 5'000'000 + i * 20'000'000));
    }
    EXPECT_NEAR(statistics.report(0).slopePpm.value(), -6100, 1e-3);
}

TEST(RecordingStatistics, TellsHowMuchFasterThanTheNominalRateARealCamerasTimesRun) {
    RecordingStatistics statistics(false, 50.0);
    // 20.006 ms for every 20 ms; the frames 40 to 42 are missing.
    for (std::int64_t i = 0; i < 200; ++i) {
        if (i < 40 || i > 42) add(statistics, 1'000'000'000 + i * 20'006'000, 0, {});
    }
    EXPECT_NEAR(statistics.report(0).slopePpm.value(), 300, 1e-3);
    RecordingStatistics pulses(false, 50.0, host::TimeBase::Pulses);
    for (std::int64_t i = 0; i < 9; ++i) add(pulses, i, 0, {});
    EXPECT_FALSE(pulses.report(0).slopePpm) << "pulses are no times";
    RecordingStatistics single(true, 50.0);
    add(single, 5, 0, stamp(1, 5));
    EXPECT_FALSE(single.report(0).slopePpm) << "a line needs two points";
}

TEST(RecordingStatistics, CountsTheSpreadToBothSides) {
    RecordingStatistics statistics(true, 50.0);
    for (const std::int64_t error : {100, 100, 40}) add(statistics, 1000 + error, 0, stamp(1, 1000));
    EXPECT_EQ(statistics.report(0).timeError->spreadMaxNs, 60);
}

TEST(RecordingStatistics, LeavesTheRarestFramesOutOfTheNinetyNinePercent) {
    RecordingStatistics statistics(true, 50.0);
    for (std::uint64_t id = 0; id < 199; ++id) add(statistics, 10, 0, stamp(id, 10));
    add(statistics, 510, 0, stamp(199, 10));
    EXPECT_EQ(statistics.report(0).timeError->spreadP99Ns, 0);
    EXPECT_EQ(statistics.report(0).timeError->spreadMaxNs, 500);
}

TEST(RecordingStatistics, CountsGapsAndDoublesInTheFrameNumbers) {
    RecordingStatistics statistics(true, 50.0);
    for (const std::uint64_t id : {7u, 8u, 11u, 11u, 10u, 12u, 14u}) add(statistics, 0, 0, stamp(id, 0));
    const ChannelReport report = statistics.report(0);
    EXPECT_EQ(report.lost, 3u);     // 9, 10 and 13
    EXPECT_EQ(report.doubled, 2u);  // the second 11, and 10 behind 11
}

TEST(RecordingStatistics, CountsPicturesThatDifferOrHaveNoStamp) {
    RecordingStatistics statistics(true, 50.0);
    add(statistics, 0, 0, stamp(1, 0));
    add(statistics, 0, 0, stamp(2, 0, 0, VmbErrorIncomplete));
    add(statistics, 0, 0, stamp(0, 0, 0, VmbErrorNotFound));
    add(statistics, 0, 0, stamp(3, 0));
    const ChannelReport report = statistics.report(0);
    EXPECT_EQ(report.matches, 2u);
    EXPECT_EQ(report.mismatches, 2u);
    EXPECT_EQ(report.lost, 0u);
}

TEST(RecordingStatistics, TakesFramesRefusedByTheHostForPartOfTheGap) {
    RecordingStatistics statistics(true, 50.0);
    add(statistics, 0, 0, stamp(1, 0));
    add(statistics, 0, 2, stamp(5, 0));  // 2, 3, 4 missing, two of them in the host
    const ChannelReport report = statistics.report(2);
    EXPECT_EQ(report.lost, 3u);
    EXPECT_EQ(report.lostInHost, 2u);
}

TEST(RecordingStatistics, AddsFramesRefusedBehindTheLast) {
    RecordingStatistics statistics(true, 50.0);
    add(statistics, 0, 0, stamp(1, 0));
    EXPECT_EQ(statistics.lost(4), 4u);
    EXPECT_EQ(statistics.report(4).lost, 4u);
}

TEST(RecordingStatistics, TellsLossesFromTheTimeWithoutStamps) {
    RecordingStatistics statistics(false, 50.0);  // a period of 20 ms
    for (const std::int64_t ms : {0, 20, 40, 69, 128}) add(statistics, ms * 1'000'000, 0, {});
    // 29 ms are 1.45 periods, 59 ms are 2.95: two missing.
    const ChannelReport report = statistics.report(0);
    EXPECT_EQ(report.lost, 2u);
    EXPECT_FALSE(report.stamped);
    EXPECT_FALSE(report.timeError);
    EXPECT_EQ(report.mismatches, 0u);
}

TEST(RecordingStatistics, CountsOnePeriodAndAHalfAsNoLoss) {
    RecordingStatistics statistics(false, 50.0);
    add(statistics, 0, 0, {});
    add(statistics, 30'000'000, 0, {});
    EXPECT_EQ(statistics.report(0).lost, 0u);
    add(statistics, 60'000'001, 0, {});
    EXPECT_EQ(statistics.report(0).lost, 1u);
}

TEST(RecordingStatistics, KnowsOnlyTheHostsLossesWithoutStampsAndRate) {
    RecordingStatistics statistics(false, std::nullopt);
    add(statistics, 0, 0, {});
    add(statistics, 1'000'000'000, 3, {});
    EXPECT_EQ(statistics.report(4).lost, 4u);
}

/// A frame of a triggered camera whose pulse 0 exposes at 0, 50 pulses a second.
void addPulse(RecordingStatistics& statistics, std::int64_t pulse, std::uint64_t id) {
    add(statistics, pulse, 0, stamp(id, static_cast<std::uint64_t>(pulse) * 20'000'000));
}

void addEnd(RecordingStatistics& statistics, std::int64_t time, std::int64_t end, const StampReading& reading,
            std::uint64_t lostBefore = 0) {
    host::RingFrame frame;
    frame.time = time;
    frame.lostBefore = lostBefore;
    frame.isEnd = true;
    statistics.addEnd(frame, reading, end);
}

using Spans = std::vector<host::PulseSpan>;

TEST(RecordingStatistics, TellsPulsesInsteadOfTimesOfATriggeredCamera) {
    RecordingStatistics statistics(true, 50.0, host::TimeBase::Pulses);
    add(statistics, 0, 0, stamp(1, 0, 90));
    add(statistics, 2, 0, stamp(2, 40'000'000, 90));
    add(statistics, 5, 0, stamp(5, 100'000'000, 90));
    add(statistics, 5, 0, stamp(6, 115'000'000, 90));  // nearer to pulse 6
    const ChannelReport report = statistics.report(0);
    EXPECT_FALSE(report.timeError);
    ASSERT_TRUE(report.pulses);
    EXPECT_EQ(report.pulses->skipped, (Spans{{1, 1}}));
    EXPECT_EQ(report.pulses->lost, (Spans{{3, 4}}));
    EXPECT_EQ(report.pulses->doubled, (Spans{{5, 5}}));
    EXPECT_EQ(report.pulses->misplaced, 1u);
    EXPECT_EQ(report.lost, 2u) << "frames 3 and 4";
    EXPECT_EQ(report.doubled, 0u) << "no frame number came twice";
}

TEST(RecordingStatistics, CountsMissingPulsesAsLostOrSkippedWithoutStamps) {
    RecordingStatistics statistics(false, 50.0, host::TimeBase::Pulses);
    for (const std::int64_t pulse : {3, 4, 8, 8, 9}) add(statistics, pulse, 0, {});
    addEnd(statistics, 12, 12, {});
    EXPECT_EQ(statistics.report(0).lost, 8u);  // 0 to 2, 5 to 7, 10 and 11
    EXPECT_EQ(statistics.lost(0), 0u) << "none for certain";
    EXPECT_EQ(statistics.report(0).pulses->unclear, (Spans{{0, 2}, {5, 7}, {10, 11}}));
    EXPECT_TRUE(statistics.report(0).pulses->lost.empty());
    EXPECT_FALSE(RecordingStatistics(true, 50.0).report(0).pulses);
}

TEST(RecordingStatistics, TellsTheLossesBeforeTheFirstFrameOfATriggeredCamera) {
    RecordingStatistics lost(true, 50.0, host::TimeBase::Pulses);
    addPulse(lost, 3, 4);
    EXPECT_EQ(lost.report(0).lost, 3u);
    EXPECT_EQ(lost.report(0).pulses->lost, (Spans{{0, 2}}));
    RecordingStatistics skipped(true, 50.0, host::TimeBase::Pulses);
    addPulse(skipped, 3, 1);
    EXPECT_EQ(skipped.report(0).lost, 0u);
    EXPECT_EQ(skipped.report(0).pulses->skipped, (Spans{{0, 2}}));
    RecordingStatistics goesOn(true, 50.0, host::TimeBase::Pulses);
    addPulse(goesOn, 0, 5001);
    EXPECT_EQ(goesOn.report(0).lost, 0u) << "a camera that goes on counting from before";
    RecordingStatistics free(true, 50.0);
    add(free, 100'000'000, 0, stamp(4, 0));
    EXPECT_EQ(free.report(0).lost, 0u) << "without a trigger the recording begins with its first frame";
}

TEST(RecordingStatistics, TellsThePulseThatIsLostAtTheVeryEnd) {
    RecordingStatistics statistics(true, 100.0, host::TimeBase::Pulses);
    for (std::int64_t pulse = 0; pulse < 499; ++pulse) {
        addPulse(statistics, pulse, static_cast<std::uint64_t>(pulse) + 1);
    }
    addEnd(statistics, 500, 500, stamp(501, 0));
    const ChannelReport report = statistics.report(0);
    EXPECT_EQ(report.frames, 499u);
    EXPECT_EQ(report.lost, 1u);
    EXPECT_EQ(report.pulses->lost, (Spans{{499, 499}}));
}

TEST(RecordingStatistics, TellsWhatIsSkippedAtTheVeryEnd) {
    RecordingStatistics statistics(true, 100.0, host::TimeBase::Pulses);
    addPulse(statistics, 0, 1);
    addEnd(statistics, 4, 3, stamp(2, 0));
    EXPECT_EQ(statistics.report(0).lost, 0u);
    EXPECT_EQ(statistics.report(0).pulses->skipped, (Spans{{1, 2}})) << "3 is behind the end";
}

TEST(RecordingStatistics, LeavesOutWhatIsLostBehindTheEnd) {
    RecordingStatistics pulses(true, 100.0, host::TimeBase::Pulses);
    addPulse(pulses, 0, 1);
    addEnd(pulses, 4, 2, stamp(5, 0));
    EXPECT_EQ(pulses.report(0).lost, 1u) << "1, but not 2 and 3";
    EXPECT_EQ(pulses.report(0).lostBehindEnd, 2u);
    EXPECT_EQ(pulses.report(0).pulses->lost, (Spans{{1, 1}}));

    // Frames every 20 ms, 3 to 5 missing at 60, 80 and 100 ms, the end at 90 ms.
    RecordingStatistics free(true, 50.0);
    add(free, 40'000'000, 0, stamp(2, 0));
    addEnd(free, 120'000'000, 90'000'000, stamp(6, 0));
    EXPECT_EQ(free.report(0).lost, 2u);
    EXPECT_EQ(free.report(0).lostBehindEnd, 1u);
    RecordingStatistics whole(true, 50.0);
    add(whole, 80'000'000, 0, stamp(5, 0));
    addEnd(whole, 100'000'000, 90'000'000, stamp(6, 0));
    EXPECT_EQ(whole.report(0).lost, 0u);
}

TEST(RecordingStatistics, TellsTheEndFromTheTimeWhereItHasNoStamp) {
    RecordingStatistics without(false, 50.0);
    add(without, 0, 0, {});
    addEnd(without, 60'000'000, 55'000'000, {});
    EXPECT_EQ(without.report(0).lost, 2u);  // at 20 and 40 ms
    RecordingStatistics unread(true, 50.0);
    add(unread, 0, 0, stamp(1, 0));
    addEnd(unread, 60'000'000, 55'000'000, {});
    EXPECT_EQ(unread.report(0).lost, 2u);
}

TEST(RecordingStatistics, TakesFramesRefusedBeforeTheEndForPartOfItsGap) {
    RecordingStatistics statistics(true, 50.0);
    add(statistics, 0, 0, stamp(1, 0));
    addEnd(statistics, 80'000'000, 80'000'000, stamp(5, 0), 2);  // 2, 3, 4 missing, two of them in the host
    EXPECT_EQ(statistics.report(2).lost, 3u);
    EXPECT_EQ(statistics.lost(2), 3u);
}

TEST(RecordingStatistics, CountsAFrameWithoutAReadableStampAsRecordedOnly) {
    RecordingStatistics statistics(true, 50.0);
    add(statistics, 0, 0, stamp(1, 0));
    add(statistics, 20'000'000, 0, {});
    add(statistics, 60'000'000, 0, stamp(4, 0));
    const ChannelReport report = statistics.report(0);
    EXPECT_EQ(report.frames, 3u);
    EXPECT_EQ(report.lost, 1u) << "of 2 and 3 one was recorded";
    EXPECT_EQ(report.mismatches, 1u);
}

TEST(RecordingStatistics, FollowsNumbersOf16BitsAndRestarts) {
    RecordingStatistics wraps(true, 50.0);
    for (const std::uint64_t id : {65534u, 65535u, 1u, 2u}) add(wraps, 0, 0, stamp(id, 0));
    EXPECT_EQ(wraps.report(0).lost + wraps.report(0).doubled + wraps.report(0).restarts, 0u);
    RecordingStatistics restarts(true, 50.0);
    for (const std::uint64_t id : {99u, 100u, 1u, 2u, 5u}) add(restarts, 0, 0, stamp(id, 0));
    EXPECT_EQ(restarts.report(0).restarts, 1u);
    EXPECT_EQ(restarts.report(0).doubled, 0u);
    EXPECT_EQ(restarts.report(0).lost, 2u) << "3 and 4";
}

}  // namespace
