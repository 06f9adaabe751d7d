#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "interference.h"
#include "zelt_gige_clock_sync_base.h"
#include "zelt_gige_fixed_rate_clock_sync.h"
#include "zelt_gige_triggered_clock_sync.h"

namespace {

using test_support::AssertionCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_api::CameraFrame;
using zelt_gige_camera::ClockSyncBase;
using zelt_gige_camera::FixedRateClockSync;
using zelt_gige_camera::Rational;
using zelt_gige_camera::TriggeredClockSync;
using zelt_gige_camera::truncateToTimestamp;

constexpr std::int64_t kGigahertz = 1'000'000'000;
constexpr std::int64_t kMostNegative = std::numeric_limits<std::int64_t>::min();

CameraFrame frameAt(std::uint64_t timestamp) {
    CameraFrame frame;
    frame.timestamp = timestamp;
    return frame;
}

/// As the channel makes it: rate and tick frequency alike.
FixedRateClockSync gigahertzSync() {
    return {Rational(kGigahertz), 1e9};
}

void addPoints(ClockSyncBase& sync, int count) {
    for (int point = 1; point <= count; ++point) {
        sync.addSyncPoint(point * 1000, 500'000 + point * 1000, 0.0);
    }
}

/// The base with its abstract operations filled in.
class PlainSync : public ClockSyncBase {
  public:
    PlainSync() : ClockSyncBase(Rational(1000), 5.0) {}
    double getRate() const override { return m_rate; }
    std::int64_t timestampFromSync(const CameraFrame& frame) override {
        return static_cast<std::int64_t>(frame.timestamp) + 1;
    }
};

TEST(ClockSyncBaseTest, ForwardsComputingToTheTimestampFromSync) {
    PlainSync sync;
    EXPECT_EQ(sync.computeTimestamp(frameAt(41), 77, 88), 42);
}

TEST(ClockSyncBaseTest, NeedsNoSyncPoint) {
    EXPECT_FALSE(PlainSync().needsSyncPoint(frameAt(1)));
}

TEST(ClockSyncBaseTest, AddsOnlyPointsWithAHostTime) {
    PlainSync sync;
    for (int point = 1; point <= 30; ++point) sync.addSyncPoint(point, 0, 0.0);
    EXPECT_FALSE(sync.isSynchronized());
    addPoints(sync, 20);
    EXPECT_TRUE(sync.isSynchronized());
}

TEST(ClockSyncBaseTest, KeepsTheReferenceOfTheStartEvent) {
    PlainSync sync;
    EXPECT_EQ(sync.getStartFrameId(), 0u);
    EXPECT_EQ(sync.getReferenceTimestamp(), 0u);
    sync.setReference(123, 45);
    EXPECT_EQ(sync.getReferenceTimestamp(), 123u);
    EXPECT_EQ(sync.getStartFrameId(), 45u);
}

TEST(ClockSyncBaseTest, ReadsANegativeHostTimeAsALargeOne) {
    PlainSync sync;
    for (int point = 1; point <= 20; ++point) sync.addSyncPoint(point, -1, 0.0);
    EXPECT_EQ(sync.estimate(10), 1.8446744073709552e19);
}

TEST(Truncation, GoesTowardZero) {
    EXPECT_EQ(truncateToTimestamp(2.999), 2);
    EXPECT_EQ(truncateToTimestamp(-2.999), -2);
    EXPECT_EQ(truncateToTimestamp(0.0), 0);
}

TEST(Truncation, GivesTheMostNegativeNumberForWhatDoesNotFit) {
    EXPECT_EQ(truncateToTimestamp(std::nan("")), kMostNegative);
    EXPECT_EQ(truncateToTimestamp(HUGE_VAL), kMostNegative);
    EXPECT_EQ(truncateToTimestamp(-HUGE_VAL), kMostNegative);
    EXPECT_EQ(truncateToTimestamp(9223372036854775808.0), kMostNegative);
    EXPECT_EQ(truncateToTimestamp(-9223372036854777856.0), kMostNegative);
    EXPECT_EQ(truncateToTimestamp(-9223372036854775808.0), kMostNegative);
    EXPECT_EQ(truncateToTimestamp(9223372036854774784.0), 9223372036854774784);
}

TEST(FixedRate, ReturnsTheRateItWasGiven) {
    EXPECT_EQ(FixedRateClockSync(Rational(kGigahertz), 12.5).getRate(), 12.5);
}

TEST(FixedRate, ResyncsOncePerSecondOfCameraTicks) {
    EXPECT_EQ(FixedRateClockSync(Rational(kGigahertz), 1e9).getResyncInterval(), kGigahertz);
}

TEST(FixedRate, RoundsTheResyncIntervalHalvesAwayFromZero) {
    EXPECT_EQ(FixedRateClockSync(Rational(5, 2), 1.0).getResyncInterval(), 3);
    EXPECT_EQ(FixedRateClockSync(Rational(-5, 2), 1.0).getResyncInterval(), -3);
    EXPECT_EQ(FixedRateClockSync(Rational(7, 3), 1.0).getResyncInterval(), 2);
    EXPECT_EQ(FixedRateClockSync(Rational(8, 3), 1.0).getResyncInterval(), 3);
}

TEST(FixedRate, DatesAFrameBackFromTheHostTimeByItsAgeBeforeSynchronization) {
    FixedRateClockSync sync = gigahertzSync();
    EXPECT_EQ(sync.computeTimestamp(frameAt(1'000), 26'001'000, 90'000'000), 64'000'000);
}

TEST(FixedRate, ScalesTheAgeByRateOverTickFrequency) {
    FixedRateClockSync sync(Rational(1'000'000), 1e9);
    EXPECT_EQ(sync.computeTimestamp(frameAt(10), 14, 90'000), 86'000);
}

TEST(FixedRate, TruncatesATimeDatedBackTowardZero) {
    FixedRateClockSync sync(Rational(2), 1.0);
    EXPECT_EQ(sync.computeTimestamp(frameAt(0), 1, 10), 9);
    EXPECT_EQ(sync.computeTimestamp(frameAt(0), 25, 10), -2);
}

TEST(FixedRate, CountsFromTheStartEventWithoutAHostTime) {
    FixedRateClockSync sync = gigahertzSync();
    sync.setReference(5'000, 1);
    EXPECT_EQ(sync.computeTimestamp(frameAt(25'000), 25'500, 0), 20'000);
    EXPECT_EQ(sync.computeTimestamp(frameAt(4'000), 25'500, 0), -1'000);
}

TEST(FixedRate, ReadsANegativeHostTimeAsALargeOne) {
    FixedRateClockSync sync = gigahertzSync();
    EXPECT_EQ(sync.computeTimestamp(frameAt(0), 0, -1), kMostNegative);
}

TEST(FixedRate, UsesTheFitFromTheTwentiethPointOn) {
    FixedRateClockSync sync = gigahertzSync();
    addPoints(sync, 19);
    EXPECT_FALSE(sync.isSynchronized());
    EXPECT_EQ(sync.computeTimestamp(frameAt(30'000), 30'000, 7), 7);
    sync.addSyncPoint(20'000, 520'000, 0.0);
    EXPECT_TRUE(sync.isSynchronized());
    EXPECT_NEAR(static_cast<double>(sync.computeTimestamp(frameAt(30'000), 30'000, 7)), 530'000.0, 1.0);
    EXPECT_NEAR(static_cast<double>(sync.timestampFromSync(frameAt(10'000'000))), 10'500'000.0, 1.0);
}

TEST(FixedRate, CannotTellATimeFromSyncBeforeSynchronization) {
    const AssertionCapture assertions;
    FixedRateClockSync sync = gigahertzSync();
    EXPECT_EQ(sync.timestampFromSync(frameAt(1)), 0);
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].message,
              "Cannot compute timestamp without reference before synchronization");
}

TEST(FixedRate, AssertsThatTheCameraTimeIsNotBeforeTheFrame) {
    const AssertionCapture assertions;
    FixedRateClockSync sync = gigahertzSync();
    EXPECT_EQ(sync.computeTimestamp(frameAt(100), 90, 1000), 1010);
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].expression, "camera_time >= frame.timestamp");
    EXPECT_EQ(assertions.failures()[0].file, "lib/zelt_gige_camera/src/zelt_gige_fixed_rate_clock_sync");
}

TEST(FixedRate, AssertsTheCameraTimeAlsoWhenSynchronized) {
    FixedRateClockSync sync = gigahertzSync();
    addPoints(sync, 20);
    const AssertionCapture assertions;
    sync.computeTimestamp(frameAt(100), 90, 1000);
    EXPECT_THAT(assertions.expressions(), ElementsAre("camera_time >= frame.timestamp"));
}

TEST(FixedRate, ComparesCameraTimesAsSigned) {
    const AssertionCapture assertions;
    FixedRateClockSync sync = gigahertzSync();
    sync.computeTimestamp(frameAt(std::numeric_limits<std::uint64_t>::max()), 0, 1000);
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST(FixedRate, NeedsASyncPointWithEveryFrameUntilSynchronized) {
    FixedRateClockSync sync = gigahertzSync();
    EXPECT_TRUE(sync.needsSyncPoint(frameAt(0)));
    addPoints(sync, 19);
    EXPECT_TRUE(sync.needsSyncPoint(frameAt(20'000)));
    sync.addSyncPoint(20'000, 520'000, 0.0);
    EXPECT_FALSE(sync.needsSyncPoint(frameAt(20'000)));
}

TEST(FixedRate, NeedsASyncPointOnceMoreThanASecondHasPassed) {
    FixedRateClockSync sync = gigahertzSync();
    addPoints(sync, 20);
    EXPECT_FALSE(sync.needsSyncPoint(frameAt(20'000 + kGigahertz)));
    EXPECT_TRUE(sync.needsSyncPoint(frameAt(20'001 + kGigahertz)));
    EXPECT_FALSE(sync.needsSyncPoint(frameAt(0)));
}

TEST(FixedRate, APointWithoutHostTimeAddsNothingButCountsAsTheLastPoint) {
    FixedRateClockSync sync = gigahertzSync();
    addPoints(sync, 20);
    const double before = sync.estimate(5'000'000'000);
    sync.addSyncPoint(3 * kGigahertz, 0, 0.0);
    EXPECT_EQ(sync.estimate(5'000'000'000), before);
    EXPECT_FALSE(sync.needsSyncPoint(frameAt(4 * kGigahertz)));
    EXPECT_TRUE(sync.needsSyncPoint(frameAt(4 * kGigahertz + 1)));
}

// Cores that handle frames of different cameras would wait for each other.
TEST(ClockSyncBaseTest, TwoGeneratorsShareNoMemoryThatAProcessorHandsOverAtOnce) {
    EXPECT_EQ(alignof(FixedRateClockSync) % platform::kInterferenceSize, 0u);
    EXPECT_EQ(alignof(TriggeredClockSync) % platform::kInterferenceSize, 0u);
}

}  // namespace
