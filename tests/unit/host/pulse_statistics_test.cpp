#include "pulse_statistics.h"

#include <limits>

#include <gmock/gmock.h>

using host::PulseSpan;
using host::PulseStatistics;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(PulseStatistics, FindsNothingWithoutGaps) {
    PulseStatistics statistics(50);
    for (std::int64_t pulse = 0; pulse < 100; ++pulse) statistics.add(pulse, 0);
    statistics.addEnd(100, 0);
    EXPECT_THAT(statistics.report().skipped, IsEmpty());
    EXPECT_THAT(statistics.report().lost, IsEmpty());
    EXPECT_THAT(statistics.report().unclear, IsEmpty());
    EXPECT_THAT(statistics.report().doubled, IsEmpty());
}

TEST(PulseStatistics, CallsAPulseSkippedWhenNoFrameIsMissing) {
    PulseStatistics statistics(50);
    statistics.add(0, 0);
    statistics.add(2, 0);
    statistics.add(6, 0);
    EXPECT_THAT(statistics.report().skipped, ElementsAre(PulseSpan{1, 1}, PulseSpan{3, 5}));
    EXPECT_THAT(statistics.report().lost, IsEmpty());
}

TEST(PulseStatistics, CallsAPulseLostWhenFramesAreMissingToo) {
    PulseStatistics statistics(50);
    statistics.add(0, 0);
    statistics.add(3, 2);
    statistics.add(10, 1);
    EXPECT_THAT(statistics.report().lost, ElementsAre(PulseSpan{1, 2}, PulseSpan{4, 9}));
    EXPECT_THAT(statistics.report().skipped, IsEmpty());
}

TEST(PulseStatistics, DoesNotTellSkippedFromLostWhenTheFramesHaveNoNumbers) {
    PulseStatistics statistics(50);
    statistics.add(0, std::nullopt);
    statistics.add(2, std::nullopt);
    statistics.add(4, std::nullopt);
    statistics.add(6, 0);
    EXPECT_THAT(statistics.report().unclear, ElementsAre(PulseSpan{1, 1}, PulseSpan{3, 3}));
    EXPECT_THAT(statistics.report().skipped, ElementsAre(PulseSpan{5, 5}));
    EXPECT_THAT(statistics.report().lost, IsEmpty());
}

TEST(PulseStatistics, LooksAtThePulsesBeforeTheFirstFrameAndBehindTheLast) {
    PulseStatistics lost(50);
    lost.add(3, 3);
    lost.addEnd(6, 2);
    EXPECT_THAT(lost.report().lost, ElementsAre(PulseSpan{0, 2}, PulseSpan{4, 5}));
    PulseStatistics skipped(50);
    skipped.add(3, 0);
    skipped.addEnd(5, 0);
    EXPECT_THAT(skipped.report().skipped, ElementsAre(PulseSpan{0, 2}, PulseSpan{4, 4}));
}

TEST(PulseStatistics, NamesEveryDoubledPulseOnce) {
    PulseStatistics statistics(50);
    for (const std::int64_t pulse : {0, 0, 0, 1, 1, 3, 3}) statistics.add(pulse, 0);
    EXPECT_THAT(statistics.report().doubled, ElementsAre(PulseSpan{0, 1}, PulseSpan{3, 3}));
    EXPECT_EQ(statistics.report().extra, 4u) << "two of pulse 0, one of pulse 1 and of pulse 3";
    EXPECT_THAT(statistics.report().skipped, ElementsAre(PulseSpan{2, 2}));
}

TEST(PulseStatistics, FindsFramesWithTheNumberOfAnotherPulse) {
    PulseStatistics statistics(50);  // every 20 ms
    const auto add = [&](std::int64_t pulse, std::uint64_t exposureMs) {
        statistics.add(pulse, 0);
        statistics.addTruth(exposureMs * 1'000'000);
        return statistics.report().misplaced;
    };
    EXPECT_EQ(add(7, 1000), 0u);
    EXPECT_EQ(add(8, 1020), 0u);
    EXPECT_EQ(add(8, 1029), 0u) << "a second frame less than half a period later";
    EXPECT_EQ(add(9, 1051), 1u) << "beyond half a period behind";
    EXPECT_EQ(add(10, 1049), 2u) << "beyond half a period ahead";
    EXPECT_EQ(add(107, 3000), 2u);
    EXPECT_EQ(add(108, 3000), 3u);
    PulseStatistics unknown(std::numeric_limits<double>::quiet_NaN());
    unknown.add(0, 0);
    unknown.addTruth(0);
    unknown.add(1, 0);
    unknown.addTruth(77);
    EXPECT_EQ(unknown.report().misplaced, 0u);
}

TEST(PulseStatistics, FindsThatAllFramesHaveTheNumberOfAnotherPulse) {
    PulseStatistics statistics(50);
    for (const std::int64_t pulse : {0, 1, 2}) {
        statistics.add(pulse, 0);
        statistics.addTruth(static_cast<std::uint64_t>(1000 + 20 * pulse) * 1'000'000);
    }
    // The pulse 0 came between 989 and 991 ms, and half a period is 10 ms.
    EXPECT_EQ(statistics.report(host::PulseStart{989'000'000, 991'000'000}).misplaced, 0u);
    EXPECT_EQ(statistics.report(host::PulseStart{988'000'000, 989'999'999}).misplaced, 3u);
    EXPECT_EQ(statistics.report(host::PulseStart{1'010'000'001, 1'011'000'000}).misplaced, 3u);
}

TEST(Pulses, OfATimeAreThoseBeforeItsEnd) {
    EXPECT_EQ(host::pulsesIn(5, 100), 500);            // 0 to 499
    EXPECT_EQ(host::pulsesIn(2, 30000.0 / 1001), 60);  // 59.94
    EXPECT_EQ(host::pulsesIn(1.1, 10), 11) << "11.000000000000002 in doubles";
    EXPECT_EQ(host::pulsesIn(0.001, 1), 1);
}

TEST(PulseSpans, WithoutOthersAreWhatIsLeft) {
    using Spans = std::vector<PulseSpan>;
    const Spans spans{{0, 9}, {12, 12}, {20, 22}};
    EXPECT_EQ(host::without(spans, {}), spans);
    EXPECT_EQ(host::without(spans, {{0, 1}, {4, 5}, {9, 9}, {12, 12}, {22, 22}}),
              (Spans{{2, 3}, {6, 8}, {20, 21}}));
    EXPECT_EQ(host::without(spans, {{0, 30}}), Spans{});
}

TEST(PulseText, ListsSpansAndCountsTheRest) {
    EXPECT_EQ(host::pulseText({}), "none");
    EXPECT_EQ(host::pulseText({{12, 12}, {15, 17}}), "12, 15-17");
    EXPECT_EQ(host::pulseText({{1, 1}, {3, 5}, {9, 9}, {11, 12}}, 2), "1, 3-5 and 3 more");
    EXPECT_EQ(host::pulseCount({{1, 1}, {3, 5}, {9, 9}, {11, 12}}), 7u);
    EXPECT_EQ(host::pulseCount({}), 0u);
}

}  // namespace
