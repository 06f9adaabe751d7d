// A camera's own clock: frequency, start, error, drift and jitter.
#include <cmath>
#include <numbers>

#include "virtual_fixture.h"

namespace {

using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::ReceivedFrame;
using test_support::run;
using test_support::setEnum;
using test_support::Stream;

class Oscillator : public test_support::VirtualTimeTest {
  protected:
    static VmbSimOscillator perfect() {
        VmbSimOscillator oscillator{};
        oscillator.tickFrequency = kSecond;
        oscillator.driftPeriodS = 3600;
        return oscillator;
    }
    static void set(const VmbSimOscillator& oscillator, const char* id = kColourCamera) {
        ASSERT_EQ(VmbSimSetOscillator(id, &oscillator), VmbErrorSuccess);
    }
    /// The counter now.
    static std::uint64_t latch(VmbHandle_t camera) {
        run(camera, "GevTimestampControlLatch");
        return static_cast<std::uint64_t>(intOf(camera, "GevTimestampValue"));
    }
    static std::vector<ReceivedFrame> record(VmbHandle_t camera, std::uint64_t span) {
        Stream stream(camera);
        stream.startCapture();
        run(camera, "AcquisitionStart");
        advance(span);
        stream.endCapture();
        return stream.received();
    }
};

TEST_F(Oscillator, StartsWhereItIsToldAndTicksAtItsFrequency) {
    const VmbHandle_t camera = open();
    VmbSimOscillator oscillator = perfect();
    oscillator.tickFrequency = 36'858'974;
    oscillator.startTicks = 1'000;
    set(oscillator);
    EXPECT_EQ(intOf(camera, "GevTimestampTickFrequency"), 36'858'974);
    EXPECT_EQ(latch(camera), 1'000u);
    advance(2'500 * kMillisecond);
    EXPECT_EQ(latch(camera), 1'000u + 92'147'435u);
}

TEST_F(Oscillator, AResetMakesTheCounterZero) {
    const VmbHandle_t camera = open();
    VmbSimOscillator oscillator = perfect();
    oscillator.startTicks = 77;
    set(oscillator);
    advance(kSecond);
    run(camera, "GevTimestampControlReset");
    EXPECT_EQ(latch(camera), 0u);
    advance(123);
    EXPECT_EQ(latch(camera), 123u);
}

TEST_F(Oscillator, IsOffByItsError) {
    const VmbHandle_t camera = open();
    for (const VmbInt32_t ppb : {1'000'000, -1'000'000, 3}) {
        VmbSimOscillator oscillator = perfect();
        oscillator.errorPpb = ppb;
        set(oscillator);
        advance(1000 * kSecond);
        EXPECT_EQ(latch(camera), 1000 * kSecond + static_cast<std::uint64_t>(1000 * ppb)) << ppb;
    }
}

TEST_F(Oscillator, DriftSwingsAndComesBack) {
    const VmbHandle_t camera = open();
    VmbSimOscillator oscillator = perfect();
    oscillator.driftPpb = 500;
    oscillator.driftPeriodS = 1000;
    set(oscillator);
    // The integral of 500e-9 * sin(2 pi t / 1000 s): 500e-9 * 1000 s / pi at its highest, in the middle.
    const double highest = 500e-9 * 1000 / std::numbers::pi * 1e9;
    advance(250 * kSecond);
    EXPECT_NEAR(static_cast<double>(latch(camera)) - 250e9, highest / 2, 2);
    advance(250 * kSecond);
    EXPECT_NEAR(static_cast<double>(latch(camera)) - 500e9, highest, 2);
    advance(500 * kSecond);
    EXPECT_NEAR(static_cast<double>(latch(camera)) - 1000e9, 0, 2);
}

TEST_F(Oscillator, FramesKeepExactTicksWhateverErrorAndDrift) {
    const VmbHandle_t camera = openFast(kColourCamera, 100);
    VmbSimOscillator oscillator = perfect();
    oscillator.errorPpb = 37'123;
    oscillator.driftPpb = 900'000;
    oscillator.driftPeriodS = 60;
    set(oscillator);
    const auto frames = record(camera, 100 * kSecond);
    ASSERT_GT(frames.size(), 9'000u);
    std::uint64_t worst = 0;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const std::uint64_t ticks = frames[i].record.timestamp - frames.front().record.timestamp;
        const std::uint64_t exact = i * 10'000'000;
        worst = std::max(worst, ticks > exact ? ticks - exact : exact - ticks);
    }
    // Both readings are rounded to whole ticks, and the error never adds up.
    EXPECT_LE(worst, 2u);
}

TEST_F(Oscillator, JitterIsBoundedAndRepeatsWithItsSeed) {
    VmbSimOscillator oscillator = perfect();
    oscillator.jitterNs = 5'000;
    std::vector<std::vector<std::int64_t>> runs;
    for (const std::uint64_t seed : {1U, 1U, 2U}) {
        restart();
        VmbSimSeed(seed);
        const VmbHandle_t again = openFast(kColourCamera, 100);
        set(oscillator);
        std::vector<std::int64_t> errors;
        for (const auto& frame : record(again, 10 * kSecond)) {
            errors.push_back(static_cast<std::int64_t>(frame.record.timestamp - frame.stamp.exposureStartNs));
        }
        runs.push_back(errors);
        const auto [least, most] = std::minmax_element(errors.begin(), errors.end());
        EXPECT_GE(*least, -5'000);
        EXPECT_LE(*most, 5'000);
        EXPECT_LT(*least, -4'500);
        EXPECT_GT(*most, 4'500);
    }
    EXPECT_EQ(runs[0], runs[1]);
    EXPECT_NE(runs[0], runs[2]);
}

TEST_F(Oscillator, SurvivesUnpluggingAndStartsAnew) {
    VmbSimOscillator oscillator = perfect();
    oscillator.tickFrequency = 1'000;
    oscillator.startTicks = 5;
    set(oscillator);
    advance(kSecond);
    ASSERT_EQ(VmbSimUnplugCamera(kColourCamera), VmbErrorSuccess);
    ASSERT_EQ(VmbSimPlugCamera(kColourCamera), VmbErrorSuccess);
    const VmbHandle_t camera = open();
    EXPECT_EQ(intOf(camera, "GevTimestampTickFrequency"), 1'000);
    EXPECT_EQ(latch(camera), 5u);
}

TEST_F(Oscillator, BadOnesAreRefused) {
    const VmbHandle_t camera = openFast();
    const auto result = [&](auto&& change) {
        VmbSimOscillator oscillator = perfect();
        change(oscillator);
        return VmbSimSetOscillator(kColourCamera, &oscillator);
    };
    EXPECT_EQ(result([](VmbSimOscillator& o) { o.tickFrequency = 0; }), VmbErrorInvalidValue);
    EXPECT_EQ(result([](VmbSimOscillator& o) { o.tickFrequency = kSecond + 1; }), VmbErrorInvalidValue);
    EXPECT_EQ(result([](VmbSimOscillator& o) { o.errorPpb = 1'000'001; }), VmbErrorInvalidValue);
    EXPECT_EQ(result([](VmbSimOscillator& o) { o.driftPpb = -1'000'001; }), VmbErrorInvalidValue);
    EXPECT_EQ(result([](VmbSimOscillator& o) { o.driftPeriodS = 0; }), VmbErrorInvalidValue);
    const VmbSimOscillator good = perfect();
    EXPECT_EQ(VmbSimSetOscillator("DEV_1", &good), VmbErrorNotFound);
    EXPECT_EQ(VmbSimSetOscillator(nullptr, &good), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimSetOscillator(kColourCamera, nullptr), VmbErrorBadParameter);
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimSetOscillator(kColourCamera, &good), VmbErrorInvalidAccess);
    run(camera, "AcquisitionStop");
}

}  // namespace
