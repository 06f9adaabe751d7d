// Frames that come late, packets that overtake each other, and a network that is gone for a while.
#include <set>

#include "link_fixture.h"

namespace {

using test_support::intOf;
using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::kSystem;
using test_support::ReceivedFrame;
using test_support::run;
using test_support::setInt;
using test_support::Stream;
using test_support::StreamCounts;

class LinkDelays : public test_support::LinkTest {
  protected:
    static VmbSimLink late(VmbUint32_t ppm, std::uint64_t ns) {
        VmbSimLink link{};
        link.latePpm = ppm;
        link.lateNs = ns;
        return link;
    }
    static VmbSimLink reordering(VmbUint32_t ppm, VmbUint32_t packets) {
        VmbSimLink link{};
        link.reorderPpm = ppm;
        link.reorderPackets = packets;
        return link;
    }
    static double lateness(const ReceivedFrame& frame) {
        return static_cast<double>(frame.at - frame.stamp.exposureStartNs - frame.stamp.wayNs);
    }
};

TEST_F(LinkDelays, LateFramesAreLateByAnythingUpToTheLimit) {
    const VmbHandle_t camera = openFast();
    setLink(late(1'000'000, 5 * kMillisecond));
    Stream stream(camera);
    acquire(stream, 9'995);
    const auto received = stream.received();
    ASSERT_EQ(received.size(), 1'000u);
    double sum = 0;
    for (const ReceivedFrame& frame : received) {
        EXPECT_GE(lateness(frame), 1);
        EXPECT_LE(lateness(frame), 5e6);
        EXPECT_EQ(frame.stamp.wayNs, received.front().stamp.wayNs) << "the stamp does not say it";
        sum += lateness(frame);
    }
    // The mean of a thousand even spreads of 5 ms: 2.5 ms, off by less than five of 5 / sqrt(12000) ms.
    EXPECT_NEAR(sum / 1'000, 2.5e6, 5 * 5e6 / std::sqrt(12'000.0));
    stream.endCapture();
}

TEST_F(LinkDelays, SoManyFramesAreLateAsTheChanceSays) {
    const VmbHandle_t camera = openFast();
    setLink(late(100'000, 5 * kMillisecond));
    Stream stream(camera);
    acquire(stream, 9'995);
    const auto received = stream.received();
    const auto count = std::count_if(received.begin(), received.end(),
                                     [](const ReceivedFrame& frame) { return lateness(frame) > 0; });
    EXPECT_NEAR(static_cast<double>(count), 100, spread(1'000, 0.1));
    stream.endCapture();
}

TEST_F(LinkDelays, NoFrameOvertakesALateOne) {
    const VmbHandle_t camera = openFast();
    setLink(late(100'000, 100 * kMillisecond));
    Stream stream(camera, 20);
    acquire(stream, 9'995);
    const auto received = stream.received();
    ASSERT_EQ(received.size(), 1'000u);
    std::uint64_t at = 0;
    std::size_t together = 0;
    for (std::size_t i = 0; i < received.size(); ++i) {
        EXPECT_EQ(received[i].record.frameID, i + 1);
        EXPECT_GE(lateness(received[i]), 0);
        EXPECT_LE(lateness(received[i]), 100e6);
        EXPECT_GE(received[i].at, at);
        together += received[i].at == at ? 1 : 0;
        at = received[i].at;
    }
    EXPECT_GT(together, 0u) << "those behind a late one come with it";
    stream.endCapture();
}

TEST_F(LinkDelays, AStopDoesNotWaitForALateFrameThatNobodyTakesAnyMore) {
    const VmbHandle_t camera = openFast();
    test_support::setEnum(camera, "EventSelector", "AcquisitionEnd");
    test_support::setEnum(camera, "EventNotification", "On");
    Invalidations ends;
    ends.registerOn(camera, "EventAcquisitionEnd");
    setLink(late(1'000'000, kSecond));
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(95 * kMillisecond);
    run(camera, "AcquisitionStop");
    advance(5 * kMillisecond);
    EXPECT_LT(stream.ids().size(), 10u);
    EXPECT_THAT(ends.names(), ::testing::IsEmpty()) << "the others may still come";
    stream.endCapture();
    advance(1);
    EXPECT_EQ(ends.names().size(), 1u);
}

TEST_F(LinkDelays, WhatIsOvertakenByMoreThanTheLibraryPutsUpWithIsRequestedForNothing) {
    const VmbHandle_t camera = openInRows();
    setInt(camera, "GVSPTiltingSize", 10);
    const auto count = [&](const VmbSimLink& link) {
        setLink(link);
        Stream stream(camera);
        acquire(stream, 995);
        const StreamCounts counts(camera);
        EXPECT_EQ(counts.delivered, 100);
        EXPECT_EQ(counts.received, 6'400);
        EXPECT_EQ(counts.missed + counts.resent + counts.rescued + counts.dropped, 0);
        for (const ReceivedFrame& frame : stream.received()) {
            EXPECT_EQ(frame.verdict, VmbErrorSuccess);
            EXPECT_EQ(lateness(frame), 0);
            EXPECT_EQ(frame.stamp.wayNs, stream.received().front().stamp.wayNs);
        }
        stream.endCapture();
        return static_cast<double>(counts.requested);
    };
    EXPECT_EQ(count(reordering(1'000'000, 10)), 0);
    // Of 64 packets the last eleven cannot be overtaken by eleven.
    EXPECT_EQ(count(reordering(1'000'000, 11)), 100 * 53);
    EXPECT_NEAR(count(reordering(50'000, 11)), 5'300 * 0.05, spread(5'300, 0.05));
}

class Hiccup : public LinkDelays {
  protected:
    Hiccup() {
        const VmbSimOscillator exact{1'000'000'000, 0, 0, 0, 86'400, 0};
        EXPECT_EQ(VmbSimSetOscillator(kColourCamera, &exact), VmbErrorSuccess);
    }
    static void hiccup(std::uint64_t ns) { ASSERT_EQ(VmbSimHiccup(kColourCamera, ns), VmbErrorSuccess); }
    static bool canOpen(const char* id) {
        VmbHandle_t camera = nullptr;
        const bool opened = VmbCameraOpen(id, VmbAccessModeRead, &camera) == VmbErrorSuccess;
        if (opened) VmbCameraClose(camera);
        return opened;
    }
    static VmbUint32_t foundCount() {
        VmbUint32_t found = 99;
        VmbCamerasList(nullptr, 0, &found, sizeof(VmbCameraInfo_t));
        return found;
    }
    // Of pictures of 64 x 16: exposure, readout, and 1024 bytes at 115 * 10^6 per second.
    static constexpr std::uint64_t kReady = 1'000'000 + 359'840 + 476 * 1'510 + 198'400;
    static constexpr std::uint64_t kTransfer = 8'904;
    static constexpr std::uint64_t kFirst = 4'200;
};

TEST_F(Hiccup, TakesTheFramesWhoseTransferFallsIntoItAndLeavesTheRest) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    const std::uint64_t zero = VmbSimTime() + kFirst;
    run(camera, "AcquisitionStart");
    advance(200 * kMillisecond);
    hiccup(300 * kMillisecond);
    advance(100 * kMillisecond);
    EXPECT_EQ(intOf(camera, "Width"), 64) << "the handle works on";
    advance(700 * kMillisecond);
    run(camera, "AcquisitionStop");
    advance(kSecond);
    std::set<std::uint64_t> expected;
    for (std::uint64_t n = 0; n < 100; ++n) {
        const std::uint64_t begin = zero + n * 10 * kMillisecond + kReady;
        const bool gone = begin + kTransfer > 200 * kMillisecond && begin < 500 * kMillisecond;
        if (!gone) expected.insert(n + 1);
    }
    EXPECT_EQ(expected.size(), 70u);
    const auto ids = stream.ids();
    EXPECT_EQ(std::set<std::uint64_t>(ids.begin(), ids.end()), expected);
    for (const ReceivedFrame& frame : stream.received()) EXPECT_EQ(frame.verdict, VmbErrorSuccess);
    const StreamCounts counts(camera);
    EXPECT_EQ(counts.delivered, 70);
    EXPECT_EQ(counts.dropped + counts.underrun, 0) << "they count nowhere";
    VmbUint32_t announced = 0;
    VmbUint32_t queued = 0;
    EXPECT_EQ(VmbSimFrameCounts(kColourCamera, &announced, &queued), VmbErrorSuccess);
    EXPECT_EQ(queued, 5u);
    stream.endCapture();
}

TEST_F(Hiccup, OfANanosecondTakesTheFrameThatIsOnItsWay) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(kFirst + kReady + kTransfer / 2);
    hiccup(1);
    advance(10 * kMillisecond + kTransfer / 2);
    EXPECT_THAT(stream.ids(), ::testing::ElementsAre(2));
    // At its end a transfer is over.
    hiccup(1);
    advance(10 * kMillisecond);
    EXPECT_THAT(stream.ids(), ::testing::ElementsAre(2, 3));
    stream.endCapture();
}

/// A callback that keeps the camera's thread from the first frame on for 900 ms, with buffers for all frames.
class LateThread : public Hiccup {
  protected:
    LateThread() {
        setInt(kSystem, "GeVDiscoveryAllDuration", 900);
        m_stream.hook = [](VmbFrame_t& frame) {
            if (frame.frameID == 1) run(kSystem, "GeVDiscoveryAllOnce");
        };
        m_stream.startCapture();
        m_zero = VmbSimTime() + kFirst;
        run(m_stream.camera, "AcquisitionStart");
    }
    ~LateThread() override { m_stream.endCapture(); }
    /// Ids of a hundred frames.
    std::vector<std::uint64_t> finish() {
        advance(995 * kMillisecond - VmbSimTime());
        EXPECT_THAT(m_stream.ids(), ::testing::SizeIs(::testing::Gt(1u))) << "it is free again";
        run(m_stream.camera, "AcquisitionStop");
        advance(kSecond);
        return m_stream.ids();
    }

    Stream m_stream{openFast(), 100};
    std::uint64_t m_zero = 0;
};

TEST_F(LateThread, FindsTheFramesLostThatEachHiccupTook) {
    advance(200 * kMillisecond);
    hiccup(100 * kMillisecond);
    advance(400 * kMillisecond);
    hiccup(100 * kMillisecond);
    EXPECT_THAT(m_stream.ids(), ::testing::ElementsAre(1)) << "its thread is kept";
    std::vector<std::uint64_t> expected;
    for (std::uint64_t n = 0; n < 100; ++n) {
        const std::uint64_t begin = m_zero + n * 10 * kMillisecond + kReady;
        const auto hits = [=](std::uint64_t from) {
            return begin + kTransfer > from * kMillisecond && begin < (from + 100) * kMillisecond;
        };
        if (!hits(200) && !hits(600)) expected.push_back(n + 1);
    }
    EXPECT_EQ(expected.size(), 80u);
    EXPECT_EQ(finish(), expected);
}

TEST_F(LateThread, LeavesTransfersThatHaveBegunToTheLinkOfTheirTime) {
    advance(500 * kMillisecond);
    VmbSimLink lossy{};
    lossy.lossPpm = 1'000'000;
    setLink(lossy);
    std::vector<std::uint64_t> expected;
    for (std::uint64_t n = 0; m_zero + n * 10 * kMillisecond + kReady < 500 * kMillisecond; ++n) {
        expected.push_back(n + 1);
    }
    EXPECT_EQ(expected.size(), 50u);
    EXPECT_EQ(finish(), expected);
}

TEST_F(LateThread, LosesNothingWhenSettingsChangeMeanwhile) {
    // More frames are due than the camera's memory holds, but they are not there any more.
    advance(850 * kMillisecond);
    EXPECT_LT(intOf(m_stream.camera, "StreamHoldCapacity"), 85);
    test_support::setFloat(m_stream.camera, "Gain", 1);
    const auto ids = finish();
    ASSERT_EQ(ids.size(), 100u);
    EXPECT_EQ(ids.back(), 100u);
}

TEST_F(Hiccup, IsToldByMissingAndDetected) {
    run(kSystem, "GeVDiscoveryAllAuto");
    advance(kSecond);
    std::vector<std::string> news;
    Invalidations events;
    events.hook = [&](VmbHandle_t handle, const char*) {
        news.push_back(test_support::stringOf(handle, "DiscoveryCameraIdent") + " " +
                       test_support::enumOf(handle, "DiscoveryCameraEvent") + " " +
                       std::to_string(VmbSimTime() / kMillisecond));
    };
    events.registerOn(kSystem, "DiscoveryCameraEvent");
    const VmbHandle_t camera = open();
    hiccup(300 * kMillisecond);
    advance(100 * kMillisecond);
    EXPECT_EQ(foundCount(), 1u);
    EXPECT_FALSE(canOpen(kColourCamera));
    EXPECT_TRUE(canOpen(kMonochromeCamera));
    // A longer one meanwhile moves the end.
    hiccup(400 * kMillisecond);
    advance(kSecond);
    EXPECT_THAT(news,
                ::testing::ElementsAre("DEV_000F31A10001 Missing 1000", "DEV_000F31A10001 Detected 1500"));
    EXPECT_EQ(foundCount(), 2u);
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess) << "the handle outlived it";
    EXPECT_TRUE(canOpen(kColourCamera));
}

TEST_F(Hiccup, WithoutAutomaticDiscoveryIsNotTold) {
    run(kSystem, "GeVDiscoveryAllOnce");
    advance(kSecond);
    Invalidations events;
    events.registerOn(kSystem, "DiscoveryCameraEvent");
    hiccup(kSecond);
    advance(2 * kSecond);
    EXPECT_THAT(events.names(), ::testing::IsEmpty());
    EXPECT_EQ(foundCount(), 2u);
}

TEST_F(Hiccup, KeepsSettingsAndClock) {
    const VmbHandle_t camera = open();
    setInt(camera, "Width", 320);
    hiccup(kSecond);
    advance(2 * kSecond);
    EXPECT_EQ(intOf(camera, "Width"), 320);
    run(camera, "GevTimestampControlLatch");
    EXPECT_EQ(intOf(camera, "GevTimestampValue"), 2'000'000'000);
}

TEST_F(Hiccup, EndsWithTheLibrary) {
    hiccup(1'000 * kSecond);
    EXPECT_FALSE(canOpen(kColourCamera));
    VmbShutdown();
    EXPECT_EQ(VmbSimHiccup(kColourCamera, 1), VmbErrorApiNotStarted);
    ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
    EXPECT_TRUE(canOpen(kColourCamera));
}

TEST_F(Hiccup, OrdersAreChecked) {
    EXPECT_EQ(VmbSimHiccup(nullptr, 1), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimHiccup("DEV_1", 1), VmbErrorNotFound);
    EXPECT_EQ(VmbSimHiccup(kColourCamera, 0), VmbErrorInvalidValue);
    EXPECT_EQ(VmbSimHiccup(kColourCamera, 1'000'000'000'000'001), VmbErrorInvalidValue);
    ASSERT_EQ(VmbSimUnplugCamera(kColourCamera), VmbErrorSuccess);
    hiccup(kSecond);
    ASSERT_EQ(VmbSimPlugCamera(kColourCamera), VmbErrorSuccess);
    EXPECT_TRUE(canOpen(kColourCamera)) << "without its cable it has no network to lose";
}

}  // namespace
