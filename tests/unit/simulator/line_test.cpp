// The trigger input "Line1": what drives it, and what of it triggers.
#include <algorithm>

#include "virtual_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::kMicrosecond;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::Stream;
using Times = std::vector<std::uint64_t>;

class Line : public test_support::VirtualTimeTest {
  protected:
    /// Triggered by a line, acquiring from now on.
    static std::unique_ptr<Stream> triggered(VmbHandle_t camera, const char* source = "Line1") {
        setEnum(camera, "TriggerMode", "On");
        setEnum(camera, "TriggerSource", source);
        auto stream = std::make_unique<Stream>(camera);
        stream->startCapture();
        run(camera, "AcquisitionStart");
        return stream;
    }
    void acquire(VmbHandle_t camera) {
        m_streams.push_back(triggered(camera));
        advance(kMillisecond);
    }
    /// True starts of the exposures that arrived so far, of the n-th camera that acquires.
    Times exposures(std::size_t camera = 0) const {
        Times starts;
        for (const auto& frame : m_streams.at(camera)->received()) {
            starts.push_back(frame.stamp.exposureStartNs);
        }
        return starts;
    }
    static void pulse(const Times& times, std::uint64_t width = 100 * kMicrosecond) {
        ASSERT_EQ(VmbSimPulseLine(nullptr, times.data(), static_cast<VmbUint32_t>(times.size()), width),
                  VmbErrorSuccess);
    }
    static VmbSimRhythm rhythm(std::uint64_t numerator, std::uint64_t denominator) {
        VmbSimRhythm rhythm{};
        rhythm.numerator = numerator;
        rhythm.denominator = denominator;
        rhythm.phaseNs = kMillisecond;
        rhythm.widthNs = 100 * kMicrosecond;
        return rhythm;
    }
    static void drive(const VmbSimRhythm& rhythm, const char* id = nullptr) {
        ASSERT_EQ(VmbSimDriveLine(id, &rhythm), VmbErrorSuccess);
    }
    ~Line() override {
        for (const auto& stream : m_streams) stream->endCapture();
    }

    static constexpr std::uint64_t kStart = kMillisecond;  // when acquire() returns, for one camera

  private:
    std::vector<std::unique_ptr<Stream>> m_streams;
};

TEST_F(Line, AnExactRationalFrequencyStaysExactForHours) {
    const VmbHandle_t camera = openFast();
    acquire(camera);
    // 30000 / 1001 Hz: pulse n rises n * 1001 / 30000 s after the first.
    drive(rhythm(30'000, 1'001));
    std::uint64_t count = 0;
    std::uint64_t wrong = 0;
    advance(7200 * kSecond);
    for (const std::uint64_t start : exposures()) {
        const std::uint64_t parts = count * 1001;
        const std::uint64_t expected =
            kStart + kMillisecond + parts / 30'000 * kSecond + parts % 30'000 * kSecond / 30'000;
        if (start != expected) ++wrong;
        ++count;
    }
    // 7200 s hold 7200 * 30000 / 1001 = 215784.2 periods behind the first pulse.
    EXPECT_EQ(count, 215'785u);
    EXPECT_EQ(wrong, 0u);
}

TEST_F(Line, SinglePulsesAndRecordedListsTriggerAtTheirTimes) {
    const VmbHandle_t camera = openFast();
    acquire(camera);
    pulse({kStart + 5 * kMillisecond});
    pulse({kStart + 20 * kMillisecond, kStart + 33'333'333, kStart + 47'111'111});
    advance(100 * kMillisecond);
    EXPECT_EQ(exposures(), (Times{kStart + 5 * kMillisecond, kStart + 20 * kMillisecond, kStart + 33'333'333,
                                  kStart + 47'111'111}));
}

TEST_F(Line, DrivesOneCameraOrAll) {
    acquire(openFast(kColourCamera));
    acquire(openFast(kMonochromeCamera));
    const std::uint64_t now = VmbSimTime();
    const std::uint64_t one = now + 5 * kMillisecond;
    ASSERT_EQ(VmbSimPulseLine(kMonochromeCamera, &one, 1, 1000), VmbErrorSuccess);
    pulse({now + 20 * kMillisecond});
    advance(40 * kMillisecond);
    EXPECT_EQ(exposures(0), Times{now + 20 * kMillisecond});
    EXPECT_EQ(exposures(1), (Times{one, now + 20 * kMillisecond}));
}

/// How far the pulses of a hundred hertz with 20 microseconds of jitter are off, one list per camera.
class LineJitter : public Line {
  protected:
    using Errors = std::vector<std::int64_t>;

    std::vector<Errors> errors(std::uint64_t seed) {
        restart();
        VmbSimSeed(seed);
        std::vector<std::unique_ptr<Stream>> streams;
        for (const char* id : {kColourCamera, kMonochromeCamera}) streams.push_back(triggered(openFast(id)));
        VmbSimRhythm hundred = rhythm(100, 1);
        hundred.jitterNs = 20'000;
        drive(hundred);
        advance(kSecond + 5 * kMillisecond);
        std::vector<Errors> all;
        for (const auto& stream : streams) {
            all.emplace_back();
            for (const auto& frame : stream->received()) {
                const std::uint64_t exact = kMillisecond + all.back().size() * 10 * kMillisecond;
                all.back().push_back(static_cast<std::int64_t>(frame.stamp.exposureStartNs - exact));
            }
            stream->endCapture();
        }
        return all;
    }
};

TEST_F(LineJitter, IsBoundedAndTheSameForAllCameras) {
    const auto all = errors(7);
    ASSERT_EQ(all[0].size(), 101u);
    EXPECT_EQ(all[0], all[1]);
    const auto [least, most] = std::minmax_element(all[0].begin(), all[0].end());
    EXPECT_GE(*least, -20'000);
    EXPECT_LE(*most, 20'000);
    // Of a hundred evenly spread numbers some come near both ends.
    EXPECT_LT(*least, -15'000);
    EXPECT_GT(*most, 15'000);
}

TEST_F(LineJitter, RepeatsWithItsSeed) {
    const auto first = errors(7);
    EXPECT_EQ(first, errors(7));
    EXPECT_NE(first, errors(8));
}

TEST_F(Line, MissingDoubledAndBouncingPulsesAreThoseThatWereOrdered) {
    const VmbHandle_t camera = openFast();
    setFloat(camera, "ExposureTimeAbs", 100);
    acquire(camera);
    VmbSimRhythm ten = rhythm(10, 1);
    ten.widthNs = 8 * kMillisecond;  // a doubled pulse rises 16 ms later
    drive(ten);
    EXPECT_EQ(VmbSimDisturbLine(nullptr, VmbSimPulseMissing, 3, 2), VmbErrorSuccess);
    EXPECT_EQ(VmbSimDisturbLine(nullptr, VmbSimPulseDoubled, 6, 1), VmbErrorSuccess);
    EXPECT_EQ(VmbSimDisturbLine(nullptr, VmbSimPulseBouncing, 7, 1), VmbErrorSuccess);
    advance(kSecond);
    const std::uint64_t first = kStart + kMillisecond;
    const auto at = [=](std::uint64_t tenths) { return first + tenths * 100 * kMillisecond; };
    // The bounces come within 20 microseconds: before the camera is ready again.
    EXPECT_EQ(exposures(),
              (Times{at(0), at(1), at(4), at(5), at(5) + 16 * kMillisecond, at(6), at(7), at(8), at(9)}));
}

TEST_F(Line, BouncesAreEdges) {
    const VmbHandle_t camera = openFast();
    test_support::Invalidations seen;
    seen.registerOn(camera, "EventLine1RisingEdge");
    seen.registerOn(camera, "EventLine1FallingEdge");
    for (const char* edge : {"Line1RisingEdge", "Line1FallingEdge"}) {
        setEnum(camera, "EventSelector", edge);
        setEnum(camera, "EventNotification", "On");
    }
    advance(kMillisecond);
    pulse({5 * kMillisecond, 10 * kMillisecond}, 640 * kMicrosecond);
    EXPECT_EQ(VmbSimDisturbLine(kColourCamera, VmbSimPulseBouncing, 2, 1), VmbErrorSuccess);
    advance(6 * kMillisecond);
    EXPECT_THAT(seen.names(), ::testing::ElementsAre("EventLine1RisingEdge", "EventLine1FallingEdge"));
    seen.clear();
    advance(6 * kMillisecond);
    EXPECT_THAT(seen.names(), ::testing::ElementsAre("EventLine1RisingEdge", "EventLine1FallingEdge",
                                                     "EventLine1RisingEdge", "EventLine1FallingEdge",
                                                     "EventLine1RisingEdge", "EventLine1FallingEdge"));
}

/// What becomes of a trigger 4 and 8 ms behind the first, at an exposure of 10 ms, with the overlap.
std::vector<std::int64_t> offsetsWithOverlap(VmbHandle_t camera, const char* overlap,
                                             const std::function<std::unique_ptr<Stream>()>& acquire) {
    setEnum(camera, "TriggerOverlap", overlap);
    setFloat(camera, "ExposureTimeAbs", 10'000);
    const auto stream = acquire();
    const std::uint64_t first = 5 * kMillisecond;
    const std::uint64_t pulses[] = {first, first + 4 * kMillisecond, first + 8 * kMillisecond,
                                    first + 40 * kMillisecond};
    EXPECT_EQ(VmbSimPulseLine(nullptr, pulses, 4, 100 * kMicrosecond), VmbErrorSuccess);
    EXPECT_EQ(VmbSimAdvance(kSecond), VmbErrorSuccess);
    std::vector<std::int64_t> offsets;
    for (const auto& frame : stream->received()) {
        offsets.push_back(static_cast<std::int64_t>(frame.stamp.exposureStartNs - first));
    }
    stream->endCapture();
    return offsets;
}

TEST_F(Line, AnEarlyTriggerIsIgnoredWithoutOverlap) {
    const VmbHandle_t camera = openFast();
    EXPECT_THAT(offsetsWithOverlap(camera, "Off", [=] { return triggered(camera); }),
                ::testing::ElementsAre(0, 40'000'000));
}

TEST_F(Line, AnEarlyTriggerStartsTheNextFrameWithOverlap) {
    const VmbHandle_t camera = openFast();
    // Exposure and the shortest one as a pause: ready again after 10.03 ms of a clock that is 12 ppm fast.
    EXPECT_THAT(offsetsWithOverlap(camera, "PreviousFrame", [=] { return triggered(camera); }),
                ::testing::ElementsAre(0, 10'030'000 - 120, 40'000'000));
}

TEST_F(Line, ADelayShiftsEveryTrigger) {
    const VmbHandle_t camera = openFast();
    setFloat(camera, "TriggerDelayAbs", 25'000);
    acquire(camera);
    // Two signals are on their way at the same time.
    pulse({kStart + 10 * kMillisecond, kStart + 22 * kMillisecond});
    advance(100 * kMillisecond);
    EXPECT_EQ(exposures(), (Times{kStart + 35 * kMillisecond, kStart + 47 * kMillisecond}));
}

TEST_F(Line, TheActivationPicksTheEdge) {
    const struct {
        const char* activation;
        Times offsets;  // from the pulse's rise, 20 ms wide
    } cases[] = {
        {"RisingEdge", {0}}, {"FallingEdge", {20 * kMillisecond}}, {"AnyEdge", {0, 20 * kMillisecond}}};
    for (const auto& [activation, offsets] : cases) {
        restart();
        const VmbHandle_t camera = openFast();
        setEnum(camera, "TriggerActivation", activation);
        setEnum(camera, "TriggerMode", "On");
        setEnum(camera, "TriggerSource", "Line1");
        Stream stream(camera);
        stream.startCapture();
        run(camera, "AcquisitionStart");
        pulse({10 * kMillisecond}, 20 * kMillisecond);
        advance(100 * kMillisecond);
        Times starts;
        for (const auto& frame : stream.received()) {
            starts.push_back(frame.stamp.exposureStartNs - 10 * kMillisecond);
        }
        EXPECT_EQ(starts, offsets) << activation;
        stream.endCapture();
    }
}

TEST_F(Line, ALevelLetsFramesFollowEachOther) {
    const VmbHandle_t camera = openFast();
    setFloat(camera, "ExposureTimeAbs", 4'970);  // 5 ms with the shortest one of 30 microseconds
    setEnum(camera, "TriggerActivation", "LevelHigh");
    acquire(camera);
    pulse({kStart + 10 * kMillisecond}, 12 * kMillisecond);
    advance(100 * kMillisecond);
    const Times starts = exposures();
    ASSERT_EQ(starts.size(), 3u);  // at 10, 15 and 20 of 22 ms
    EXPECT_EQ(starts[0], kStart + 10 * kMillisecond);
    EXPECT_NEAR(static_cast<double>(starts[2] - starts[1]), 5e6, 100);
    setEnum(camera, "TriggerActivation", "LevelLow");
    advance(50 * kMillisecond);
    EXPECT_NEAR(static_cast<double>(exposures().size()), 13, 1);
}

TEST_F(Line, OtherLinesAreNotConnected) {
    const VmbHandle_t camera = openFast();
    drive(rhythm(100, 1));
    for (const char* activation : {"RisingEdge", "LevelHigh"}) {
        setEnum(camera, "TriggerActivation", activation);
        // In the middle of a pulse of Line1.
        advance(10 * kMillisecond + kMillisecond + 50 * kMicrosecond - VmbSimTime() % (10 * kMillisecond));
        const auto stream = triggered(camera, "Line2");
        advance(kSecond);
        EXPECT_TRUE(stream->ids().empty()) << activation;
        stream->endCapture();
    }
}

TEST_F(Line, ALevelDoesNotTriggerWhatListensToSoftware) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "TriggerActivation", "LevelLow");
    const auto stream = triggered(camera, "Software");
    advance(kSecond);
    EXPECT_TRUE(stream->ids().empty());
    run(camera, "TriggerSoftware");
    advance(kSecond);
    EXPECT_EQ(stream->ids().size(), 1u);
    stream->endCapture();
}

TEST_F(Line, SoftwareDoesNotTriggerWhatListensToALine) {
    const VmbHandle_t camera = openFast();
    acquire(camera);
    EXPECT_EQ(VmbFeatureCommandRun(camera, "TriggerSoftware"), VmbErrorSuccess);
    advance(kSecond);
    EXPECT_TRUE(exposures().empty());
}

TEST_F(Line, ALevelThatIsThereWhenItIsChosenTriggersAtOnce) {
    const VmbHandle_t camera = openFast();
    const auto stream = triggered(camera, "Software");
    pulse({5 * kMillisecond}, kSecond);
    advance(500 * kMillisecond);
    setEnum(camera, "TriggerActivation", "LevelHigh");
    setEnum(camera, "TriggerSource", "Line1");
    advance(50 * kMillisecond);
    ASSERT_FALSE(stream->ids().empty());
    EXPECT_EQ(stream->received().front().stamp.exposureStartNs, 500 * kMillisecond);
    stream->endCapture();
}

TEST_F(Line, ACameraThatIsGoneLeavesTheEdgesToItsSuccessor) {
    const VmbHandle_t gone = openFast();
    setEnum(gone, "EventSelector", "Line1RisingEdge");
    setEnum(gone, "EventNotification", "On");
    drive(rhythm(100, 1));
    advance(25 * kMillisecond);
    ASSERT_EQ(VmbSimUnplugCamera(kColourCamera), VmbErrorSuccess);
    ASSERT_EQ(VmbSimPlugCamera(kColourCamera), VmbErrorSuccess);
    acquire(openFast());
    advance(100 * kMillisecond);
    EXPECT_EQ(exposures().size(), 10u);
    EXPECT_EQ(VmbCameraClose(gone), VmbErrorBadHandle);
}

TEST_F(Line, EdgesFromBeforeTheAcquisitionDoNotTrigger) {
    drive(rhythm(100, 1));
    advance(500 * kMillisecond);
    acquire(openFast());
    EXPECT_TRUE(exposures().empty());
    advance(20 * kMillisecond);
    // Pulse n rises at 1 + 10 n ms; the acquisition started at 500.
    EXPECT_EQ(exposures().front(), 501 * kMillisecond);
}

TEST_F(Line, SilenceEndsEverything) {
    acquire(openFast());
    drive(rhythm(100, 1));
    advance(50 * kMillisecond);
    const std::size_t before = exposures().size();
    EXPECT_EQ(VmbSimSilenceLine(nullptr), VmbErrorSuccess);
    advance(kSecond);
    EXPECT_EQ(exposures().size(), before);
    EXPECT_EQ(VmbSimRunUntilIdle(0), VmbErrorSuccess);
}

TEST_F(Line, BadSettingsAreRefused) {
    VmbSimRhythm good = rhythm(100, 1);
    EXPECT_EQ(VmbSimDriveLine("DEV_1", &good), VmbErrorNotFound);
    EXPECT_EQ(VmbSimDriveLine(nullptr, nullptr), VmbErrorBadParameter);
    const auto refused = [&](auto&& change) {
        VmbSimRhythm bad = good;
        change(bad);
        return VmbSimDriveLine(nullptr, &bad) == VmbErrorBadParameter;
    };
    EXPECT_TRUE(refused([](VmbSimRhythm& r) { r.numerator = 0; }));
    EXPECT_TRUE(refused([](VmbSimRhythm& r) { r.denominator = 0; }));
    EXPECT_TRUE(refused([](VmbSimRhythm& r) { r.numerator = 1'000'000'001; }));
    EXPECT_TRUE(refused([](VmbSimRhythm& r) { r.denominator = 1'000'000'001; }));
    EXPECT_TRUE(refused([](VmbSimRhythm& r) { r.numerator = 1'000'001; }));
    EXPECT_TRUE(refused([](VmbSimRhythm& r) { r.widthNs = 0; }));
    EXPECT_TRUE(refused([](VmbSimRhythm& r) { r.widthNs = 2'500'001; }));
    EXPECT_FALSE(refused([](VmbSimRhythm& r) { r.widthNs = 2'500'000; }));
    EXPECT_TRUE(refused([](VmbSimRhythm& r) { r.jitterNs = 625'001; }));
    EXPECT_FALSE(refused([](VmbSimRhythm& r) { r.jitterNs = 625'000; }));
    EXPECT_TRUE(refused([](VmbSimRhythm& r) {
        r.jitterNs = 2;
        r.phaseNs = 1;
    }));
    const std::uint64_t times[] = {1000, 1399};
    EXPECT_EQ(VmbSimPulseLine(nullptr, times, 2, 100), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimPulseLine(nullptr, times, 1, 0), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimPulseLine(nullptr, nullptr, 1, 100), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimPulseLine("DEV_1", times, 1, 100), VmbErrorNotFound);
    advance(2000);
    EXPECT_EQ(VmbSimPulseLine(nullptr, times, 1, 100), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimDisturbLine(nullptr, VmbSimPulseMissing, 0, 1), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimDisturbLine("DEV_1", VmbSimPulseMissing, 1, 1), VmbErrorNotFound);
    EXPECT_EQ(VmbSimSilenceLine("DEV_1"), VmbErrorNotFound);
}

}  // namespace
