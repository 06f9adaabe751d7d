#include "zelt_gige_running_fit.h"

#include <cmath>
#include <limits>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "running_fit_exact.h"

namespace {

using test_support::ExactLine;
using test_support::exactPoint;
using test_support::kExactCameraStep;
using test_support::kExactLines;
using zelt_gige_camera::RunningFit;
using zelt_gige_camera::SpinLock;

constexpr std::uint32_t kHistory = 20;

/// The fit as its formula reads, sums about absolute zero: right for small times only.
struct PlainFit {
    double s = 0, sh = 0, sc = 0, shc = 0, scc = 0, slope = 0, intercept = 0;
    void add(double c, double h, double quality) {
        const double f = 0.95;
        const double w = std::max(0.01, 1.0 - std::fabs(quality));
        s = f * s + w;
        sh = f * sh + w * h;
        sc = f * sc + w * c;
        shc = f * shc + w * h * c;
        scc = f * scc + w * c * c;
        slope = (shc - sh * sc / s) / (scc - sc * sc / s);
        intercept = (sh - slope * sc) / s;
    }
};

/// Slope and host time at camera time 0 of what the fit published.
std::pair<double, double> aboutZero(const RunningFit& fit) {
    const RunningFit::Line line = fit.line();
    const double origin =
        static_cast<double>(line.hostOrigin) - line.slope * static_cast<double>(line.cameraOrigin);
    return {line.slope, origin + line.intercept};
}

TEST(RunningFit, PublishesNothingBeforeTheTwentiethPoint) {
    RunningFit fit(kHistory);
    for (int point = 1; point <= 19; ++point) {
        fit.add(point * 10, static_cast<std::uint64_t>(point) * 30, 0.0);
        EXPECT_FALSE(fit.isSynchronized());
        EXPECT_EQ(fit.line().slope, 0.0);
        EXPECT_EQ(fit.line().intercept, 0.0);
        EXPECT_EQ(fit.estimate(1000), 0.0);
    }
    fit.add(200, 600, 0.0);
    EXPECT_TRUE(fit.isSynchronized());
    EXPECT_NEAR(fit.estimate(1000), 3000.0, 1e-9);
}

TEST(RunningFit, IsTheDecayedWeightedLeastSquaresLine) {
    std::mt19937 random(7);
    RunningFit fit(kHistory);
    PlainFit plain;
    for (int point = 0; point < 400; ++point) {
        const auto camera = static_cast<std::int64_t>(point * 50 + static_cast<int>(random() % 40));
        const auto host = static_cast<std::uint64_t>(3 * camera + 100 + static_cast<int>(random() % 30));
        const double quality = static_cast<double>(random() % 2400) / 1000.0 - 1.2;
        fit.add(camera, host, quality);
        plain.add(static_cast<double>(camera), static_cast<double>(host), quality);
        if (point < 19) continue;
        const auto [slope, intercept] = aboutZero(fit);
        EXPECT_NEAR(slope, plain.slope, 1e-7);
        EXPECT_NEAR(intercept, plain.intercept, 2e-3);
        EXPECT_NEAR(fit.estimate(camera), plain.slope * static_cast<double>(camera) + plain.intercept, 1e-4);
    }
}

/// Host time at the outlier's camera time after 19 points on a line and one beside it. The line is then
/// pulled to the outlier in proportion to the outlier's weight.
double pulledBy(double quality) {
    RunningFit fit(kHistory);
    for (int point = 1; point <= 19; ++point) {
        fit.add(point, static_cast<std::uint64_t>(point) * 100 + 1000, 0.0);
    }
    fit.add(20, 3000 + 500, quality);
    return fit.estimate(20) - 3000.0;
}

TEST(RunningFit, WeighsByQualityWithAFloorOfOneHundredth) {
    EXPECT_GT(pulledBy(0.0), pulledBy(0.5));
    EXPECT_EQ(pulledBy(0.5), pulledBy(-0.5));
    EXPECT_GT(pulledBy(0.98), pulledBy(0.99));
    EXPECT_NEAR(pulledBy(0.99), pulledBy(1.0), 1e-9);
    EXPECT_EQ(pulledBy(1.0), pulledBy(-1.0));
    EXPECT_EQ(pulledBy(1.0), pulledBy(7.5));
    EXPECT_GT(pulledBy(1.0), 0.0);
}

TEST(RunningFit, AcceptsHostTimeZero) {
    RunningFit fit(kHistory);
    for (std::uint64_t point = 0; point < 20; ++point) fit.add(static_cast<std::int64_t>(point), point, 0.0);
    EXPECT_TRUE(fit.isSynchronized());
    EXPECT_NEAR(fit.estimate(0), 0.0, 1e-9);
}

TEST(RunningFit, WithEqualCameraTimesHasNoFiniteSlope) {
    for (const std::int64_t camera : {std::int64_t{0}, std::int64_t{12345}, std::int64_t{1} << 62}) {
        RunningFit fit(kHistory);
        for (std::uint64_t point = 1; point <= 25; ++point) fit.add(camera, point * 1000, 0.3);
        EXPECT_FALSE(std::isfinite(fit.line().slope)) << camera;
    }
}

TEST(RunningFit, ReadsTheLargestHostTimesAsUnsigned) {
    RunningFit fit(kHistory);
    for (int point = 1; point <= 20; ++point) {
        fit.add(point, std::numeric_limits<std::uint64_t>::max(), 0.0);
    }
    EXPECT_EQ(fit.estimate(10), 1.8446744073709552e19);
}

/// A line of slope 1 through these two times, that of the newest point.
void addLine(RunningFit& fit, std::int64_t camera, std::uint64_t host) {
    for (int point = 19; point >= 0; --point) {
        fit.add(camera - 1000 * point, host - 1000 * static_cast<unsigned>(point), 0.0);
    }
}

TEST(RunningFit, GoesOnBeforeTheHostsFirstTime) {
    RunningFit fit(kHistory);
    addLine(fit, 20'000, 20'000);
    EXPECT_NEAR(fit.estimate(-5'000), -5'000.0, 1e-6);
}

TEST(RunningFit, GoesOnBehindTheHostsLastTime) {
    RunningFit fit(kHistory);
    addLine(fit, 20'000, std::numeric_limits<std::uint64_t>::max());
    const double stepOfADouble = 4096.0;
    EXPECT_NEAR(fit.estimate(1'020'000), 1.8446744073709552e19 + 1e6, stepOfADouble);
}

TEST(RunningFit, BridgesTheLargestDifferencesOfTimes) {
    RunningFit fit(kHistory);
    fit.add(std::numeric_limits<std::int64_t>::min(), 0, 0.0);
    for (int point = 1; point <= 20; ++point) {
        fit.add(std::numeric_limits<std::int64_t>::max() - 20 + point,
                std::numeric_limits<std::uint64_t>::max() - 20u + static_cast<std::uint64_t>(point), 0.0);
    }
    EXPECT_NEAR(fit.line().slope, 1.0, 1e-9);
}

class ExactFit : public ::testing::TestWithParam<ExactLine> {};

TEST_P(ExactFit, StaysWithinATickOfExactArithmetic) {
    const ExactLine& exact = GetParam();
    RunningFit fit(kHistory);
    std::int64_t camera = 0;
    for (int index = 0; index < exact.points; ++index) {
        const auto point = exactPoint(exact, index);
        camera = point.camera;
        fit.add(camera, point.host, point.quality);
    }
    EXPECT_NEAR(fit.line().slope / exact.slope, 1.0, 1e-12);
    for (const std::int64_t ahead : {std::int64_t{0}, kExactCameraStep, -10 * kExactCameraStep}) {
        const double estimate = fit.estimate(camera + ahead);
        const long double expected = static_cast<long double>(exact.slope) * static_cast<long double>(ahead) +
                                     static_cast<long double>(exact.atNewestFraction);
        const long double error =
            (static_cast<long double>(estimate) - static_cast<long double>(exact.atNewest)) - expected;
        const double resolution = std::nextafter(estimate, HUGE_VAL) - estimate;
        EXPECT_LE(std::fabs(static_cast<double>(error)), std::max(1.0, resolution))
            << exact.camera << ' ' << exact.host << ' ' << exact.points << ' ' << ahead;
    }
}

INSTANTIATE_TEST_SUITE_P(AgainstRationalNumbers, ExactFit, ::testing::ValuesIn(kExactLines));

TEST(RunningFit, IsReadWholeWhileItIsWritten) {
    RunningFit fit(kHistory);
    for (int point = 1; point <= 20; ++point)
        fit.add(point * 1000, static_cast<std::uint64_t>(point) * 2000, 0.0);
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (int point = 21; point <= 20'000; ++point) {
            fit.add(point * 1000, static_cast<std::uint64_t>(point) * 2000, 0.0);
        }
        done = true;
    });
    do {
        EXPECT_NEAR(fit.estimate(7'000'000), 14'000'000.0, 1e-3);
    } while (!done);
    writer.join();
}

TEST(SpinLockWait, SpinsSixteenTimesYieldsSixteenTimesThenSleeps) {
    for (unsigned attempt = 0; attempt < 100; ++attempt) {
        const auto expected = attempt < 16   ? SpinLock::Wait::None
                              : attempt < 32 ? SpinLock::Wait::Yield
                                             : SpinLock::Wait::Millisecond;
        EXPECT_EQ(SpinLock::waitBefore(attempt), expected) << attempt;
    }
}

TEST(SpinLockWait, ExcludesOthers) {
    SpinLock lock;
    int count = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 20'000; ++round) {
                const zelt_gige_camera::SpinLockGuard guard(lock);
                ++count;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count, 80'000);
}

}  // namespace
