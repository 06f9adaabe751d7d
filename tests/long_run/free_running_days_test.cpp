// Ten days of a free-running camera through the whole plug-in, which never learns the true time: it sees the
// camera's drifting, jittering clock, and the host's clock when a frame has come and been waited for.
//
// How far may a time stamp be from the true exposure? Of each frame the host knows when it arrived, a
// constant way behind the exposure, so that the way does not count. A point of the fit is off by the jitter
// of its frame's stamp (2 microseconds), by the part of a microsecond that its waiting was rounded down by
// (1), and by the camera's pace during the waiting (17 millionths of a millisecond). The line at the frame's
// stamp is the sum of the points' host times, each times a factor. For even weights one step ahead of the
// newest point the factors are 0.05 * 0.95^i * (2 - i / 19); their magnitudes add up to 1 + 2 * 0.95^38 =
// 1.28. The drift bends the true line by 2 pi / 86400 s * 5e-6 = 0.36 ns per squared second at most, so that
// a point t seconds off counts up to half of that times t^2. The frame's own stamp has jitter once more.
// With the factors as they are, for uneven weights too, that makes a bound for every single frame.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>

#include "host_clocks.h"
#include "long_run_fixture.h"
#include "window_fit.h"

namespace {

using test_support::AssertionCapture;
using test_support::BusyHostClock;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::kShorterBy;
using test_support::LongRun;
using test_support::readFrame;
using test_support::StampedFrame;
using test_support::WindowFit;
using ::testing::IsEmpty;

constexpr std::uint64_t kDay = 86'400 * kSecond;
constexpr std::uint64_t kDuration = 10 * kDay / kShorterBy;
constexpr std::uint64_t kTicksPerSecond = 1'000'000'000;
constexpr std::uint64_t kHistory = 20;
constexpr std::uint64_t kMicrosecond = 1'000;
// Two frames take a little more than a second: every other one is a synchronization point.
constexpr double kFramesPerSecond = 1.99;
constexpr std::uint64_t kFramePeriod = 502'513 * kMicrosecond;  ///< by the camera's clock

constexpr double kJitter = 2'000;
constexpr double kError = 12e-6;
constexpr double kDrift = 5e-6;
constexpr double kLongestWait = 1e6;

/// The last place of a double of this size, at least one unit.
double resolution(std::int64_t time) {
    const auto value = static_cast<double>(time);
    return std::max(1.0, std::nextafter(value, HUGE_VAL) - value);
}

/// Judges each frame as it comes.
class StampAuditor final : public zelt::IfChannelSink {
  public:
    explicit StampAuditor(BusyHostClock& clock) : m_clock(clock) {
        errors.reserve(kDuration / kFramePeriod + 10);
    }

    void addSample(std::int64_t time, const void* data, std::uint64_t size) override {
        const StampedFrame frame = readFrame(time, data, size);
        const std::uint64_t ticks = frame.truth.cameraTicks;
        if (errors.empty()) firstTicks = ticks;
        lastTicks = ticks;
        const std::int64_t expected = expect(ticks);
        if (std::abs(static_cast<double>(time - expected)) > resolution(expected)) ++againstExact;
        const auto trueTime =
            static_cast<std::int64_t>(m_clock.origin() + frame.truth.exposureStartNs + frame.truth.wayNs);
        const double bound = boundOf(ticks) + resolution(expected);
        const auto error = static_cast<double>(time - trueTime);
        if (std::fabs(error) > bound) ++beyondBound;
        highestBound = std::max(highestBound, bound);
        errors.push_back(std::fabs(error));
    }

    std::uint64_t syncPoints() const { return m_fit.points(); }
    /// The error that so many of a thousand frames do not exceed.
    double quantile(std::uint64_t perMille) {
        const auto place =
            errors.begin() + static_cast<std::ptrdiff_t>((errors.size() - 1) * perMille / 1000);
        std::nth_element(errors.begin(), place, errors.end());
        return *place;
    }

    std::vector<double> errors;  ///< magnitudes, against the true exposure, in nanoseconds
    double highestBound = 0.0;
    std::uint64_t againstExact = 0;
    std::uint64_t beyondBound = 0;
    std::uint64_t wrongSyncPoints = 0;  ///< taken where none is due, or the other way round
    std::uint64_t firstTicks = 0;
    std::uint64_t lastTicks = 0;

  private:
    /// The frame's time in exact arithmetic.
    std::int64_t expect(std::uint64_t ticks) {
        const auto reading = m_clock.takeReading();
        const bool isDue = m_fit.points() < kHistory || ticks > m_lastSync + kTicksPerSecond;
        if (isDue != reading.has_value()) ++wrongSyncPoints;
        if (reading) {
            const std::uint64_t waited = reading->waited / kMicrosecond;
            m_lastSync = ticks + waited * kMicrosecond;
            m_fit.add(m_lastSync, reading->time, static_cast<double>(waited) * 0.01);
            if (m_fit.points() < kHistory) {
                return static_cast<std::int64_t>(reading->time - waited * kMicrosecond);
            }
        }
        return m_fit.at(ticks);
    }
    double boundOf(std::uint64_t ticks) const {
        constexpr double kRoundedDown = 1'000;
        if (m_fit.points() < kHistory) return kRoundedDown;
        constexpr double kBend = kDrift * 2 * std::numbers::pi / 86'400 * 1e9;
        constexpr double kOfPoint = kJitter + 1 + kRoundedDown + (kError + kDrift) * kLongestWait;
        const auto [onErrors, onBend] = m_fit.dependence(ticks);
        return kJitter + 1 + onErrors * kOfPoint + kBend / 2 * onBend;
    }

    BusyHostClock& m_clock;
    WindowFit m_fit;
    std::uint64_t m_lastSync = 0;
};

class FreeRunningDays : public LongRun {
  protected:
    void record(std::uint64_t startTicks, std::uint64_t hostOrigin, const char* name) {
        const auto begin = std::chrono::steady_clock::now();
        const AssertionCapture assertions;
        const auto host = std::make_shared<BusyHostClock>(hostOrigin);
        plugin->setSharedAcquisitionObject(host);
        VmbSimSeed(20'261'121);
        set(config_keys::kCameraFrameSetting, kFramesPerSecond);
        ASSERT_FALSE(HasFailure());
        startWith({kTicksPerSecond, startTicks, 12'000, 5'000, 86'400, 2'000});
        StampAuditor auditor(*host);
        plugin->setChannelSink(0, &auditor);
        advance(kDuration);
        stop();
        plugin->clearChannelSinks();

        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
        report(name, auditor, passed.count());
        EXPECT_EQ(auditor.againstExact, 0u);
        EXPECT_EQ(auditor.beyondBound, 0u);
        EXPECT_EQ(auditor.wrongSyncPoints, 0u);
        const double expected =
            static_cast<double>(kDuration) * (1 + kError) / static_cast<double>(kFramePeriod);
        EXPECT_NEAR(static_cast<double>(auditor.errors.size()), expected, 2.0);
        EXPECT_NEAR(static_cast<double>(auditor.syncPoints()), expected / 2, kHistory);
        EXPECT_GE(auditor.firstTicks, startTicks);
        EXPECT_GE(auditor.lastTicks, startTicks + kDuration - 2 * kFramePeriod);
        EXPECT_THAT(assertions.failures(), IsEmpty());
    }

  private:
    static void report(const char* name, StampAuditor& auditor, double seconds) {
        const double p50 = auditor.quantile(500);
        const double p99 = auditor.quantile(990);
        const double most = auditor.quantile(1000);
        std::printf(
            "free running, %s: %zu frames, %llu synchronization points; off the true exposure by p50 %.0f "
            "ns, p99 %.0f ns, max %.0f ns; highest bound %.0f ns; %.1f s\n",
            name, auditor.errors.size(), static_cast<unsigned long long>(auditor.syncPoints()), p50, p99,
            most, auditor.highestBound, seconds);
        RecordProperty("p50_ns", static_cast<int>(p50));
        RecordProperty("p99_ns", static_cast<int>(p99));
        RecordProperty("max_ns", static_cast<int>(most));
    }
};

TEST_F(FreeRunningDays, AreStampedByTheExactLineFromACounterOfZero) {
    record(0, 1, "counter from 0");
}

TEST_F(FreeRunningDays, AreStampedByTheExactLineWithTheLargestCountersAndHostTimes) {
    constexpr std::uint64_t kLarge = std::uint64_t{1} << 62;
    record(kLarge - kDuration / 2, 1'700'000'000'000'000'000, "counter across 2^62");
}

}  // namespace
