#include "clocks.h"

#include <chrono>
#include <ctime>

#include <gtest/gtest.h>

namespace {

TEST(SystemPerformanceCounter, CountsOnAtItsFrequencyAndNeverBack) {
    platform::PerformanceCounter& counter = platform::systemPerformanceCounter();
    const std::int64_t frequency = counter.frequency();
    ASSERT_GE(frequency, 1'000'000);
    const auto wallBefore = std::chrono::steady_clock::now();
    const std::int64_t before = counter.now();
    std::int64_t last = before;
    while (last - before < frequency / 100) {
        const std::int64_t now = counter.now();
        ASSERT_GE(now, last);
        last = now;
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - wallBefore;
    EXPECT_GE(wall.count(), 0.0099);
    EXPECT_EQ(counter.frequency(), frequency);
}

TEST(SystemWallClock, TellsTheSecondsSince1970) {
    const auto seconds = [] { return static_cast<double>(std::time(nullptr)); };
    const double before = seconds();
    const double now = platform::systemWallClock().now();
    // The two may round the same moment to different seconds.
    EXPECT_GE(now, before - 1.0);
    EXPECT_LE(now, seconds() + 2.0);
}

}  // namespace
