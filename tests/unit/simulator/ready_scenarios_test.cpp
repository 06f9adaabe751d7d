// Each ready scenario keeps its promise.
#include <map>
#include <set>

#include "link_fixture.h"
#include "scenario_fixture.h"

namespace {

using test_support::enumOf;
using test_support::floatOf;
using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMicrosecond;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::run;
using test_support::setFloat;
using test_support::Stream;
using Numbers = std::vector<std::uint64_t>;

class ReadyScenarios : public test_support::ScenarioTest {
  protected:
    static std::size_t cameraCount() {
        VmbUint32_t count = 0;
        run(test_support::kSystem, "GeVDiscoveryAllOnce");
        VmbCamerasList(nullptr, 0, &count, sizeof(VmbCameraInfo_t));
        return count;
    }
    /// How much the camera's clock gains on true time, in parts of 10^9, over the next seconds.
    static double errorPpb(VmbHandle_t camera, std::uint64_t seconds) {
        const auto ticks = [=] {
            run(camera, "GevTimestampControlLatch");
            return intOf(camera, "GevTimestampValue");
        };
        const VmbInt64_t before = ticks();
        advance(seconds * kSecond);
        const auto span = static_cast<VmbInt64_t>(seconds) * 1'000'000'000;
        return static_cast<double>(ticks() - before - span) / static_cast<double>(seconds);
    }
    /// Numbers of the pulses, from 1, during which exposures started; 20 Hz from now on, as a host drives it.
    static void drive() {
        VmbSimRhythm rhythm{};
        rhythm.numerator = 20;
        rhythm.denominator = 1;
        rhythm.widthNs = 5 * kMillisecond;
        ASSERT_EQ(VmbSimDriveLine(nullptr, &rhythm), VmbErrorSuccess);
    }
    /// Three packets in a thousand alone would be 0.63 of a frame's 210. Bursts add 0.0001 times 20 for each
    /// packet, less for the last 19, with which they end: 0.401. A burst of n counts n times n in the
    /// variance.
    static void expectBursts(VmbInt64_t missed, double frames) {
        const double mean = frames * (0.401 + 0.003 * (210 - 0.401));
        const double variance = frames * (0.0001 * (191 * 400 + 2'470) + 0.63);
        EXPECT_NEAR(static_cast<double>(missed), mean, 5 * std::sqrt(variance));
        EXPECT_GT(mean - 5 * std::sqrt(variance), frames * 0.63 + 5 * std::sqrt(frames * 0.63))
            << "bursts can be told";
    }
    /// Ways of four frames that were exposed at once: 307200 bytes and 210 headers of 36 at 60 million bytes
    /// per second, one behind the other; a round of requests costs any of them a millisecond.
    static void expectShared(Numbers ways) {
        ASSERT_EQ(ways.size(), 4u);
        std::sort(ways.begin(), ways.end());
        for (std::size_t i = 1; i < ways.size(); ++i) {
            const auto step = static_cast<std::int64_t>(ways[i] - ways[i - 1]);
            EXPECT_TRUE(step == 4'246'000 || step == 5'246'000 || step == 6'246'000) << step;
        }
    }
    static Numbers pulses(const Stream& stream, std::uint64_t start) {
        Numbers numbers;
        for (const auto& frame : stream.received()) {
            numbers.push_back((frame.stamp.exposureStartNs - start) / (50 * kMillisecond) + 1);
        }
        return numbers;
    }
};

TEST_F(ReadyScenarios, AreTheFilesOfTheirNamesAndToldToReaders) {
    const std::string readme = test_support::readFile(ZELT_SOURCE_DIR "/simulator/README.md");
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ZELT_SOURCE_DIR "/simulator/scenarios")) {
        const std::string name = entry.path().stem().string();
        EXPECT_EQ(VmbSimLoadScenario(name.c_str()), name == "schema" ? VmbErrorNotFound : VmbErrorSuccess);
        if (name == "schema") continue;
        EXPECT_EQ(VmbSimScenarioName(), name);
        EXPECT_NE(readme.find("| `" + name + "` |"), std::string::npos) << name;
        EXPECT_EQ(VmbSimLoadScenario(entry.path().string().c_str()), VmbErrorSuccess)
            << test_support::scenarioError();
        ++count;
    }
    EXPECT_EQ(count, 8u) << "each has a test below";
}

TEST_F(ReadyScenarios, TwoCameras) {
    startReady("two-cameras");
    EXPECT_EQ(cameraCount(), 2u);
    EXPECT_EQ(enumOf(open(kColourCamera), "SensorType"), "Bayer");
    EXPECT_EQ(enumOf(open(kMonochromeCamera), "SensorType"), "Mono");
    VmbUint32_t interfaces = 0;
    VmbInterfacesList(nullptr, 0, &interfaces, sizeof(VmbInterfaceInfo_t));
    EXPECT_EQ(interfaces, 1u);
    EXPECT_STREQ(VmbSimScenarioName(), "two-cameras");
}

TEST_F(ReadyScenarios, ZeroCameras) {
    startReady("zero-cameras");
    EXPECT_EQ(cameraCount(), 0u);
    VmbUint32_t interfaces = 0;
    VmbInterfacesList(nullptr, 0, &interfaces, sizeof(VmbInterfaceInfo_t));
    EXPECT_EQ(interfaces, 1u);
}

TEST_F(ReadyScenarios, SixteenCameras) {
    startReady("sixteen-cameras");
    EXPECT_EQ(cameraCount(), 16u);
    std::set<std::string> interfaces;
    std::vector<VmbHandle_t> cameras;
    for (int number = 1; number <= 16; ++number) {
        const std::string id =
            "DEV_000F31B000" + std::string(number < 10 ? "0" : "") + std::to_string(number);
        VmbCameraInfo_t info{};
        ASSERT_EQ(VmbCameraInfoQuery(id.c_str(), &info, sizeof info), VmbErrorSuccess);
        interfaces.insert(info.interfaceIdString);
        cameras.push_back(open(id));
        EXPECT_EQ(intOf(cameras.back(), "SensorWidth"), 640);
        EXPECT_EQ(intOf(cameras.back(), "SensorHeight"), 480);
        setFloat(cameras.back(), "ExposureTimeAbs", 1000);
        EXPECT_GE(floatOf(cameras.back(), "AcquisitionFrameRateLimit"), 100);
    }
    EXPECT_EQ(interfaces.size(), 16u) << "each on a link of its own";
    for (int number = 1; number <= 16; ++number) {
        EXPECT_NEAR(errorPpb(cameras[static_cast<std::size_t>(number - 1)], 10), (number - 8) * 3'000, 1);
    }
}

TEST_F(ReadyScenarios, DriftingClock) {
    startReady("drifting-clock");
    // The error is the constant one and a sine; over a quarter of its period a sine has 2/pi of its height.
    const VmbHandle_t colour = open(kColourCamera);
    const double share = 2 / 3.14159265358979;
    for (const double sign : {1.0, 1.0, -1.0, -1.0, 1.0}) {
        EXPECT_NEAR(errorPpb(colour, 150), 30'000 + sign * share * 20'000, 1);
    }
    EXPECT_NEAR(errorPpb(colour, 600), 30'000, 1);
    const VmbHandle_t grey = open(kMonochromeCamera);
    advanceTo(1800 * kSecond);
    for (const double sign : {1.0, 1.0, -1.0, -1.0}) {
        EXPECT_NEAR(errorPpb(grey, 30), -45'000 + sign * share * 5'000, 1);
    }
}

TEST_F(ReadyScenarios, BadTriggersWhateverDrivesTheLine) {
    startReady("bad-triggers");
    const auto colour = acquire(openTriggered(kColourCamera));
    const auto grey = acquire(openTriggered(kMonochromeCamera));
    for (int round = 0; round < 2; ++round) {
        advance(kMillisecond);
        const std::size_t colourBefore = colour->received().size();
        const std::size_t greyBefore = grey->received().size();
        const std::uint64_t start = VmbSimTime();
        drive();
        advance(200 * 50 * kMillisecond - 10 * kMillisecond);
        Numbers expectedColour;
        Numbers expectedGrey;
        for (std::uint64_t pulse = 1; pulse <= 200; ++pulse) {
            const std::uint64_t inHundred = (pulse - 1) % 100 + 1;
            if (inHundred != 31 && inHundred != 32) expectedColour.push_back(pulse);
            if (inHundred == 46) expectedColour.push_back(pulse);
            if (inHundred != 81) expectedGrey.push_back(pulse);
        }
        Numbers seenColour = pulses(*colour, start);
        seenColour.erase(seenColour.begin(), seenColour.begin() + static_cast<std::ptrdiff_t>(colourBefore));
        Numbers seenGrey = pulses(*grey, start);
        seenGrey.erase(seenGrey.begin(), seenGrey.begin() + static_cast<std::ptrdiff_t>(greyBefore));
        EXPECT_EQ(seenColour, expectedColour) << "a bouncing pulse is too quick for a second exposure";
        EXPECT_EQ(seenGrey, expectedGrey);
    }
    colour->endCapture();
    grey->endCapture();
}

TEST_F(ReadyScenarios, BadTriggersBounceThreeTimes) {
    startReady("bad-triggers");
    const VmbHandle_t camera = open(kColourCamera);
    test_support::setEnum(camera, "EventSelector", "Line1RisingEdge");
    test_support::setEnum(camera, "EventNotification", "On");
    test_support::Invalidations edges;
    edges.registerOn(camera, "EventLine1RisingEdge");
    drive();
    advanceTo(60 * 50 * kMillisecond - 10 * kMillisecond);
    edges.clear();
    advance(50 * kMillisecond);
    EXPECT_EQ(edges.names().size(), 3u) << "the 61st pulse";
    edges.clear();
    advance(50 * kMillisecond);
    EXPECT_EQ(edges.names().size(), 1u);
    VmbCameraClose(camera);
}

TEST_F(ReadyScenarios, FlakyCable) {
    startReady("flaky-cable");
    advance(7 * kSecond);
    const std::uint64_t zero = VmbSimTime();
    const auto colour = acquire(openFast(kColourCamera));
    auto grey = acquire(openFast(kMonochromeCamera));
    for (std::uint64_t round = 0; round < 360; ++round) {
        advanceTo(zero + (10 * round + 3) * kSecond - 1);
        EXPECT_TRUE(isThere(kMonochromeCamera)) << round;
        advance(1);
        EXPECT_FALSE(isThere(kMonochromeCamera)) << round;
        advance(kSecond - 1);
        EXPECT_FALSE(isThere(kMonochromeCamera)) << round;
        advance(1);
        EXPECT_TRUE(isThere(kMonochromeCamera)) << round;
    }
    // Up to here an hour less six seconds.
    std::uint64_t bursts = 0;
    std::uint64_t id = 0;
    std::uint64_t exposed = zero;
    for (const auto& frame : colour->received()) {
        if (frame.record.frameID != id + 1) {
            EXPECT_EQ(frame.record.frameID, id + 4) << "three in a row";
            const std::uint64_t burst = zero + (5 * bursts + 2) * kSecond;
            EXPECT_LT(exposed, burst);
            EXPECT_GE(exposed + 10 * kMillisecond, burst);
            ++bursts;
        }
        id = frame.record.frameID;
        exposed = frame.stamp.exposureStartNs;
    }
    EXPECT_EQ(bursts, 719u) << "at 2, 7 ... 3592 seconds";
    EXPECT_EQ(grey->ids().size(), grey->ids().back()) << "until the cable went, nothing was lost";
    EXPECT_NEAR(static_cast<double>(grey->ids().back()), 300, 2);
    colour->endCapture();
}

TEST_F(ReadyScenarios, BusyNetwork) {
    startReady("busy-network");
    std::vector<std::unique_ptr<Stream>> streams;
    for (const char* id : {"DEV_000F31A10001", "DEV_000F31A10002", "DEV_000F31A10003", "DEV_000F31A10004"}) {
        const VmbHandle_t camera = open(id);
        test_support::setEnum(camera, "TriggerMode", "On");
        test_support::setEnum(camera, "TriggerSource", "Line1");
        setFloat(camera, "ExposureTimeAbs", 1000);
        run(camera, "GVSPAdjustPacketSize");
        EXPECT_EQ(intOf(camera, "GevSCPSPacketSize"), 1500);
        streams.push_back(acquire(camera));
    }
    advance(kMillisecond);
    drive();
    constexpr VmbInt64_t kPulses = 600;
    advance(kPulses * 50 * kMillisecond - kMillisecond);
    test_support::StreamCounts all;
    std::map<std::uint64_t, Numbers> ways;  // of the frames of each pulse
    double late = 0;
    for (const auto& stream : streams) {
        const test_support::StreamCounts counts(stream->camera);
        EXPECT_EQ(intOf(stream->camera, "SensorWidth"), 640);
        EXPECT_EQ(intOf(stream->camera, "SensorHeight"), 480);
        EXPECT_EQ(counts.underrun, 0);
        EXPECT_EQ(counts.delivered + counts.dropped, kPulses) << "every frame arrives";
        EXPECT_EQ(counts.received + counts.missed - counts.resent, kPulses * 210) << "of 1464 bytes";
        Numbers ids = stream->ids();
        for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ids[i], i + 1);
        for (const auto& frame : stream->received()) {
            const bool whole = frame.record.receiveStatus == VmbFrameStatusComplete;
            EXPECT_EQ(frame.verdict, whole ? VmbErrorSuccess : VmbErrorIncomplete) << frame.record.frameID;
            EXPECT_LT(frame.at, frame.stamp.exposureStartNs + 50 * kMillisecond) << "before the next";
            ways[frame.record.frameID].push_back(frame.stamp.wayNs);
            const std::uint64_t lateness = frame.at - frame.stamp.exposureStartNs - frame.stamp.wayNs;
            EXPECT_LE(lateness, 20 * kMillisecond);
            late += lateness > 0 ? 1 : 0;
        }
        all += counts;
        stream->endCapture();
    }
    // Nothing begins to hurt a frame of 210 packets with a chance of 0.997^210 * 0.9999^210 = 0.521.
    const double hurt = 4 * kPulses * 0.479;
    EXPECT_NEAR(static_cast<double>(all.rescued + all.dropped), hurt, 5 * std::sqrt(hurt * 0.521));
    // Some 0.63 + 0.42 packets of a frame are missed, and three in a thousand of them twice: 7.6 frames in
    // all. Less than 1 or more than 25 of a Poisson number with that mean: once in 2000.
    EXPECT_GE(all.dropped, 1);
    EXPECT_LE(all.dropped, 25);
    EXPECT_GT(all.requested, all.missed) << "some were only overtaken";
    EXPECT_NEAR(late, 4 * kPulses * 0.005, 5 * std::sqrt(4 * kPulses * 0.005));
    expectBursts(all.missed, 4 * kPulses);
    for (const auto& [id, those] : ways) expectShared(those);
}

TEST_F(ReadyScenarios, HeldByAnother) {
    startReady("held-by-another");
    VmbHandle_t camera = nullptr;
    EXPECT_EQ(VmbCameraOpen(kMonochromeCamera, VmbAccessModeFull, &camera), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbCameraOpen(kMonochromeCamera, VmbAccessModeRead, &camera), VmbErrorSuccess);
    VmbCameraInfo_t info{};
    VmbCameraInfoQuery(kMonochromeCamera, &info, sizeof info);
    EXPECT_EQ(info.permittedAccess, VmbAccessModeRead);
    open(kColourCamera);
}

}  // namespace
