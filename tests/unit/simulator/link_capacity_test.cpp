// Cameras that share a link: who waits for whom, where, and what gets lost meanwhile.
#include "link_fixture.h"
#include "scenario_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::kMicrosecond;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::ReceivedFrame;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::Stream;
using test_support::StreamCounts;

// Pictures of 64 rows, exposed for 1 ms; the rows of the sensors are read out, the others skipped.
constexpr std::uint64_t kColourReady = 1'000'000 + 1'439'360 + 428 * 1'510 + 198'400;
constexpr std::uint64_t kGreyReady = 1'000'000 + 1'557'760 + 428 * 3'010 + 495'500;
/// 64 packets of 100 bytes at 10^6 bytes per second.
constexpr std::uint64_t kOnLink = 6'400'000;

class LinkCapacity : public test_support::LinkTest {
  protected:
    static VmbSimLink sharing(std::uint64_t bytesPerSecond, std::uint64_t bufferBytes = 0) {
        VmbSimLink link{};
        link.bytesPerSecond = bytesPerSecond;
        link.bufferBytes = bufferBytes;
        return link;
    }
    static VmbHandle_t openTriggered(const char* id) {
        const VmbHandle_t camera = openInRows(id);
        setEnum(camera, "TriggerMode", "On");
        setEnum(camera, "TriggerSource", "Line1");
        return camera;
    }
    static void start(Stream& stream) {
        stream.startCapture();
        run(stream.camera, "AcquisitionStart");
    }
    static void pulse(const char* id, std::uint64_t after) {
        const std::uint64_t at = VmbSimTime() + after;
        ASSERT_EQ(VmbSimPulseLine(id, &at, 1, 10 * kMicrosecond), VmbErrorSuccess);
    }
    static std::uint64_t wayOf(const Stream& stream, std::size_t frame = 0) {
        const auto received = stream.received();
        EXPECT_GT(received.size(), frame);
        return received.size() > frame ? received[frame].stamp.wayNs : 0;
    }
};

TEST_F(LinkCapacity, TheFrameThatComesSecondWaitsForTheFirst) {
    setLink(sharing(1'000'000));
    Stream colour(openTriggered(kColourCamera));
    Stream grey(openTriggered(kMonochromeCamera));
    start(colour);
    start(grey);
    pulse(nullptr, kMillisecond);
    advance(50 * kMillisecond);
    EXPECT_EQ(wayOf(colour), kColourReady + kOnLink);
    EXPECT_EQ(wayOf(grey), kColourReady + 2 * kOnLink);
    for (const Stream* stream : {&colour, &grey}) {
        const ReceivedFrame frame = stream->received().front();
        EXPECT_EQ(frame.at, frame.stamp.exposureStartNs + frame.stamp.wayNs);
        EXPECT_EQ(frame.verdict, VmbErrorSuccess);
    }
    colour.endCapture();
    grey.endCapture();
}

TEST_F(LinkCapacity, TheOrderIsThatOfTransfersNotOfExposures) {
    setLink(sharing(1'000'000));
    Stream grey(openTriggered(kMonochromeCamera));
    Stream colour(openTriggered(kColourCamera));
    start(grey);
    start(colour);
    constexpr std::uint64_t kLater = 500 * kMicrosecond;
    pulse(kMonochromeCamera, kMillisecond);
    pulse(kColourCamera, kMillisecond + kLater);
    advance(50 * kMillisecond);
    EXPECT_EQ(wayOf(colour), kColourReady + kOnLink);
    EXPECT_EQ(wayOf(grey), kLater + kColourReady + 2 * kOnLink);
    colour.endCapture();
    grey.endCapture();
}

TEST_F(LinkCapacity, WithRoomForAllNobodyWaits) {
    // 4096 bytes at 10^6 per second take longer than 6400 at 3.2 * 10^6, twice.
    setLink(sharing(3'200'000));
    const VmbHandle_t cameras[] = {openTriggered(kColourCamera), openTriggered(kMonochromeCamera)};
    for (const VmbHandle_t camera : cameras) setInt(camera, "StreamBytesPerSecond", 1'000'000);
    Stream colour(cameras[0]);
    Stream grey(cameras[1]);
    start(colour);
    start(grey);
    pulse(nullptr, kMillisecond);
    advance(50 * kMillisecond);
    EXPECT_EQ(wayOf(colour), kColourReady + 4'096'000);
    EXPECT_EQ(wayOf(grey), kGreyReady + 4'096'000);
    colour.endCapture();
    grey.endCapture();
}

TEST_F(LinkCapacity, EachPacketsHeadersCount) {
    setLink(sharing(1'000'000));
    const VmbHandle_t camera = openTriggered(kColourCamera);
    setInt(camera, "GevSCPSPacketSize", 1500);
    Stream stream(camera);
    start(stream);
    pulse(nullptr, kMillisecond);
    advance(50 * kMillisecond);
    EXPECT_EQ(wayOf(stream), kColourReady + 4'096'000 + 3 * 36'000) << "packets of 1464 bytes, 36 on top";
    stream.endCapture();
}

/// What the camera's memory holds of frames that are exposed every 5 ms, while each needs 6.4 ms.
TEST_F(LinkCapacity, WhatWaitsFillsTheCamerasMemory) {
    const VmbSimOscillator exact{1'000'000'000, 0, 0, 0, 86'400, 0};
    ASSERT_EQ(VmbSimSetOscillator(kColourCamera, &exact), VmbErrorSuccess);
    setLink(sharing(1'000'000));
    const VmbHandle_t camera = openInRows();
    setFloat(camera, "AcquisitionFrameRateAbs", 200);
    const auto memory = static_cast<std::size_t>(test_support::intOf(camera, "StreamHoldCapacity"));
    constexpr std::uint64_t kFrames = 1'000;
    constexpr std::uint64_t kPeriod = 5 * kMillisecond;
    std::map<std::uint64_t, std::uint64_t> ways;
    std::vector<std::uint64_t> begins;
    std::uint64_t free = 0;
    for (std::uint64_t n = 0; n < kFrames; ++n) {
        const auto waiting =
            std::count_if(begins.begin(), begins.end(), [=](auto begin) { return begin > n * kPeriod; });
        if (static_cast<std::size_t>(waiting) >= memory) continue;
        begins.push_back(std::max(n * kPeriod + kColourReady, free));
        free = begins.back() + kOnLink;
        ways[n + 1] = free - n * kPeriod;
    }
    EXPECT_LT(ways.size(), kFrames) << "the memory overflows";
    Stream stream(camera);
    acquire(stream, kFrames * 5 - 1);
    std::map<std::uint64_t, std::uint64_t> seen;
    for (const ReceivedFrame& frame : stream.received()) seen[frame.stamp.frameId] = frame.stamp.wayNs;
    EXPECT_EQ(seen, ways);
    stream.endCapture();
}

TEST_F(LinkCapacity, WhatABufferHasNoRoomForIsLostFromTheEndOfTheFrame) {
    setLink(sharing(1'000'000, 3'000));
    const VmbHandle_t camera = openTriggered(kColourCamera);
    ASSERT_EQ(VmbSimForceFeature(kColourCamera, "GVSPMaxRequests", "0"), VmbErrorSuccess);
    Stream stream(camera);
    start(stream);
    const std::uint64_t pulseAt = VmbSimTime() + kMillisecond;
    pulse(nullptr, kMillisecond);
    advance(50 * kMillisecond);
    ASSERT_EQ(stream.received().size(), 1u);
    const ReceivedFrame torn = stream.received().front();
    // The camera sends for 35617 ns, when 36 of 6400 bytes are gone: 3364 too many, 34 packets.
    EXPECT_EQ(torn.record.receiveStatus, VmbFrameStatusIncomplete);
    EXPECT_EQ(torn.record.imageSize, 30u * 64u);
    EXPECT_EQ(torn.at, pulseAt + kColourReady + 3'000'000) << "30 packets of 100 bytes passed";
    EXPECT_EQ(StreamCounts(camera).missed, 34);
    EXPECT_EQ(StreamCounts(camera).received, 30);

    ASSERT_EQ(VmbSimForceFeature(kColourCamera, "GVSPMaxRequests", "3"), VmbErrorSuccess);
    pulse(nullptr, kMillisecond);
    advance(50 * kMillisecond);
    ASSERT_EQ(stream.received().size(), 2u);
    EXPECT_EQ(stream.received().back().verdict, VmbErrorSuccess) << "mended by one round of requests";
    EXPECT_EQ(wayOf(stream, 1), kColourReady + 3'000'000 + kMillisecond);
    EXPECT_EQ(StreamCounts(camera).resent, 34);
    stream.endCapture();
}

TEST_F(LinkCapacity, ABufferForAllLosesNothing) {
    setLink(sharing(1'000'000, 6'364));
    Stream stream(openTriggered(kColourCamera));
    start(stream);
    pulse(nullptr, kMillisecond);
    advance(50 * kMillisecond);
    EXPECT_EQ(StreamCounts(stream.camera).missed, 0);
    EXPECT_EQ(wayOf(stream), kColourReady + kOnLink);
    stream.endCapture();
}

class LinkOfAScenario : public test_support::ScenarioTest {};

TEST_F(LinkOfAScenario, CamerasOfOneInterfaceQueueUpAndOthersDoNot) {
    startWith(R"({"interfaces": [{"id": "busy", "link": {"bytesPerSecond": 1000000}}],
                  "cameras": [{"model": "Manta_G-033C", "count": 3, "interface": "busy"},
                              {"model": "Manta_G-033C", "interface": "idle"}]})");
    std::vector<std::unique_ptr<Stream>> streams;
    for (int number = 1; number <= 4; ++number) {
        const std::string id = "DEV_000F31A1000" + std::to_string(number);
        const VmbHandle_t camera = openTriggered(id);
        setInt(camera, "Height", 64);
        ASSERT_EQ(VmbSimForceFeature(id.c_str(), "GevSCPSPacketSize", "100"), VmbErrorSuccess);
        streams.push_back(acquire(camera));
    }
    const std::uint64_t at = VmbSimTime() + kMillisecond;
    ASSERT_EQ(VmbSimPulseLine(nullptr, &at, 1, 10 * kMicrosecond), VmbErrorSuccess);
    advance(50 * kMillisecond);
    std::vector<std::uint64_t> ways;
    for (const auto& stream : streams) {
        ASSERT_EQ(stream->received().size(), 1u);
        ways.push_back(stream->received().front().stamp.wayNs - kColourReady);
        stream->endCapture();
    }
    // The last one is alone: 4096 bytes at its own 115 * 10^6 per second.
    EXPECT_THAT(ways, ::testing::ElementsAre(kOnLink, 2 * kOnLink, 3 * kOnLink, 35'617));
}

TEST_F(LinkOfAScenario, AnEventChangesWhatItNamesOfTheLink) {
    startWith(R"({"interfaces": [{"id": "SimulatedNetwork0", "link": {"largestPacket": 1500}}],
                  "cameras": [{"model": "Manta_G-033C"}],
                  "events": [{"at": 1, "do": {"setLink": {"interface": "SimulatedNetwork0",
                                                          "link": {"lossPpm": 1000000}}}},
                             {"at": 2, "do": {"setLink": {"interface": "SimulatedNetwork0", "link": {}}}}]})");
    const VmbHandle_t camera = openFast();
    run(camera, "GVSPAdjustPacketSize");
    EXPECT_EQ(test_support::intOf(camera, "GevSCPSPacketSize"), 1500);
    const auto stream = acquire(camera);
    advanceTo(995 * kMillisecond);
    const std::size_t before = stream->ids().size();
    EXPECT_EQ(before, 100u);
    advanceTo(1'995 * kMillisecond);
    EXPECT_EQ(stream->ids().size(), before) << "everything is lost";
    advanceTo(2'995 * kMillisecond);
    EXPECT_NEAR(static_cast<double>(stream->ids().size()), 200, 1) << "as the scenario has it";
    stream->endCapture();
    run(camera, "GVSPAdjustPacketSize");
    EXPECT_EQ(test_support::intOf(camera, "GevSCPSPacketSize"), 1500);
}

TEST_F(LinkOfAScenario, AHiccupIsAnEventToo) {
    startWith(R"({"cameras": [{"model": "Manta_G-033C"}],
                  "events": [{"at": 1, "do": {"hiccup": {"camera": "DEV_000F31A10001", "ns": 500000000}}}]})");
    advanceTo(kSecond - 1);
    EXPECT_TRUE(isThere());
    advance(1);
    EXPECT_FALSE(isThere());
    advance(kSecond / 2 - 1);
    EXPECT_FALSE(isThere());
    advance(1);
    EXPECT_TRUE(isThere());
}

TEST_F(LinkOfAScenario, AHiccupAtZeroIsUnderWayWhenTheLibraryIsStartedAndItsEndIsTold) {
    startWith(R"({"cameras": [{"model": "Manta_G-033C"}],
                  "events": [{"at": 0, "do": {"hiccup": {"camera": "DEV_000F31A10001", "ns": 500000000}}}]})");
    EXPECT_FALSE(isThere());
    run(test_support::kSystem, "GeVDiscoveryAllAuto");
    test_support::Invalidations news;
    news.registerOn(test_support::kSystem, "DiscoveryCameraEvent");
    advance(kSecond / 2 - 1);
    EXPECT_FALSE(isThere());
    EXPECT_THAT(news.names(), ::testing::IsEmpty());
    advance(1);
    EXPECT_TRUE(isThere());
    EXPECT_THAT(news.names(), ::testing::ElementsAre("DiscoveryCameraEvent"));
    EXPECT_EQ(test_support::enumOf(test_support::kSystem, "DiscoveryCameraEvent"), "Detected");
}

TEST_F(LinkOfAScenario, WhatWaitsForCenturiesStillWaits) {
    // 50 million bytes at one byte per second take 1.6 years, and what was aborted has taken its capacity.
    startWith(R"({"interfaces": [{"id": "SimulatedNetwork0", "link": {"bytesPerSecond": 1}}],
                  "cameras": [{"model": "Manta_G-033C", "sensor": {"width": 4096, "height": 4096},
                               "features": {"PixelFormat": "RGB8Packed", "TriggerMode": "Off",
                                            "ExposureTimeAbs": 1000}}]})");
    const VmbHandle_t camera = open();
    const auto acquireAndAbort = [&] {
        run(camera, "AcquisitionStart");
        advance(kSecond);
        run(camera, "AcquisitionAbort");
    };
    // Some 270 years, without a picture drawn; nanoseconds have 64 bits for 292.
    for (int time = 0; time < 170; ++time) acquireAndAbort();
    Stream stream(camera, 1);
    stream.startCapture();
    for (int time = 0; time < 30; ++time) {
        acquireAndAbort();
        ASSERT_THAT(stream.ids(), ::testing::IsEmpty()) << time;
    }
    stream.endCapture();
}

}  // namespace
