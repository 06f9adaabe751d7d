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
    for (std::int64_t pulse = 5; pulse < 100; ++pulse) {
        statistics.add(pulse, static_cast<std::uint64_t>(pulse) + 1);
    }
    EXPECT_THAT(statistics.report().skipped, IsEmpty());
    EXPECT_THAT(statistics.report().lost, IsEmpty());
    EXPECT_THAT(statistics.report().doubled, IsEmpty());
}

TEST(PulseStatistics, CallsAPulseSkippedWhenTheFramesAreConsecutive) {
    PulseStatistics statistics(50);
    statistics.add(0, 1);
    statistics.add(2, 2);
    statistics.add(6, 3);
    EXPECT_THAT(statistics.report().skipped, ElementsAre(PulseSpan{1, 1}, PulseSpan{3, 5}));
    EXPECT_THAT(statistics.report().lost, IsEmpty());
}

TEST(PulseStatistics, CallsAPulseLostWhenFramesAreMissingToo) {
    PulseStatistics statistics(50);
    statistics.add(0, 1);
    statistics.add(3, 4);
    statistics.add(10, 6);
    EXPECT_THAT(statistics.report().lost, ElementsAre(PulseSpan{1, 2}, PulseSpan{4, 9}));
    EXPECT_THAT(statistics.report().skipped, IsEmpty());
}

TEST(PulseStatistics, CallsAPulseLostWhenTheFramesHaveNoNumbers) {
    PulseStatistics statistics(50);
    statistics.add(0, std::nullopt);
    statistics.add(2, std::nullopt);
    statistics.add(4, 7);
    statistics.add(6, 8);
    EXPECT_THAT(statistics.report().lost, ElementsAre(PulseSpan{1, 1}, PulseSpan{3, 3}));
    EXPECT_THAT(statistics.report().skipped, ElementsAre(PulseSpan{5, 5}));
}

TEST(PulseStatistics, NamesEveryDoubledPulseOnce) {
    PulseStatistics statistics(50);
    statistics.add(7, 1);
    statistics.add(7, 2);
    statistics.add(7, 3);
    statistics.add(8, 4);
    statistics.add(8, 5);
    statistics.add(10, 6);
    statistics.add(10, 7);
    EXPECT_THAT(statistics.report().doubled, ElementsAre(PulseSpan{7, 8}, PulseSpan{10, 10}));
    EXPECT_THAT(statistics.report().skipped, ElementsAre(PulseSpan{9, 9}));
}

TEST(PulseStatistics, FindsFramesWithTheNumberOfAnotherPulse) {
    PulseStatistics statistics(50);  // every 20 ms
    const auto add = [&](std::int64_t pulse, std::uint64_t exposureMs) {
        statistics.add(pulse, static_cast<std::uint64_t>(pulse));
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
    unknown.add(0, 1);
    unknown.addTruth(0);
    unknown.add(1, 2);
    unknown.addTruth(77);
    EXPECT_EQ(unknown.report().misplaced, 0u);
}

TEST(PulseText, ListsSpansAndCountsTheRest) {
    EXPECT_EQ(host::pulseText({}), "none");
    EXPECT_EQ(host::pulseText({{12, 12}, {15, 17}}), "12, 15-17");
    EXPECT_EQ(host::pulseText({{1, 1}, {3, 5}, {9, 9}, {11, 12}}, 2), "1, 3-5 and 3 more");
    EXPECT_EQ(host::pulseCount({{1, 1}, {3, 5}, {9, 9}, {11, 12}}), 7u);
    EXPECT_EQ(host::pulseCount({}), 0u);
}

}  // namespace
