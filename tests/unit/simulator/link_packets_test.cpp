// Packets that do not pass, get lost, and are requested.
#include <cstring>
#include <set>

#include "link_fixture.h"

namespace {

using test_support::intOf;
using test_support::kColourCamera;
using test_support::kInterface;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::ReceivedFrame;
using test_support::run;
using test_support::setInt;
using test_support::Stream;
using test_support::StreamCounts;

constexpr std::uint64_t kRow = 64;
constexpr std::uint64_t kRows = 64;

class LinkPackets : public test_support::LinkTest {
  protected:
    using Image = std::vector<std::uint8_t>;

    static VmbSimLink losing(VmbUint32_t lossPpm) {
        VmbSimLink link{};
        link.lossPpm = lossPpm;
        return link;
    }
    static VmbSimLink bursting(VmbUint32_t burstPpm, VmbUint32_t packets) {
        VmbSimLink link{};
        link.burstPpm = burstPpm;
        link.burstPackets = packets;
        return link;
    }
    static void allowRequests(const char* text) {
        ASSERT_EQ(VmbSimForceFeature(kColourCamera, "GVSPMaxRequests", text), VmbErrorSuccess);
    }
    /// Pictures of a fresh camera, by their ids, with the link that `prepare` sets up.
    template <typename Prepare>
    std::map<std::uint64_t, Image> pictures(std::uint64_t count, Prepare prepare,
                                            std::vector<ReceivedFrame>* received = nullptr) {
        restart();
        const VmbHandle_t camera = openInRows();
        prepare();
        std::map<std::uint64_t, Image> images;
        Stream stream(camera);
        stream.hook = [&](VmbFrame_t& frame) {
            const auto* bytes = static_cast<const std::uint8_t*>(frame.buffer);
            images[frame.frameID] = Image(bytes, bytes + kRow * kRows);
        };
        acquire(stream, 10 * count);
        if (received != nullptr) *received = stream.received();
        stream.endCapture();
        return images;
    }
    static std::set<std::uint64_t> differingRows(const Image& image, const Image& whole) {
        std::set<std::uint64_t> rows;
        for (std::uint64_t row = 0; row < kRows; ++row) {
            if (std::memcmp(&image[row * kRow], &whole[row * kRow], kRow) != 0) rows.insert(row);
        }
        return rows;
    }
};

TEST_F(LinkPackets, TheLargestThatPassesIsWhatAnAdjustmentFinds) {
    const VmbHandle_t camera = open();
    VmbSimLink link{};
    link.largestPacket = 1500;
    setLink(link);
    run(camera, "GVSPAdjustPacketSize");
    EXPECT_EQ(intOf(camera, "GevSCPSPacketSize"), 1500);
    setLink({});
    run(camera, "GVSPAdjustPacketSize");
    EXPECT_EQ(intOf(camera, "GVSPPacketSize"), 8999);
}

TEST_F(LinkPackets, OfAPacketThatIsTooLargeNothingPasses) {
    const VmbHandle_t camera = openFast();
    VmbSimLink link{};
    link.largestPacket = 1500;
    setLink(link);
    setInt(camera, "GevSCPSPacketSize", 1501);
    Stream stream(camera);
    acquire(stream, 95);
    ASSERT_EQ(stream.ids().size(), 10u);
    for (const ReceivedFrame& frame : stream.received()) {
        EXPECT_EQ(frame.record.receiveStatus, VmbFrameStatusIncomplete);
        EXPECT_EQ(frame.record.imageSize, 0u);
        EXPECT_EQ(frame.record.width, 64u);
    }
    const StreamCounts counts(camera);
    EXPECT_EQ(counts.dropped, 10);
    EXPECT_EQ(counts.delivered, 0);
    EXPECT_EQ(counts.received, 0);
    EXPECT_EQ(counts.missed, 10) << "1024 bytes are one packet";
    EXPECT_EQ(counts.requested, 30) << "three each";
    EXPECT_EQ(counts.resent, 0);
    stream.endCapture();

    setInt(camera, "GevSCPSPacketSize", 1500);
    Stream passing(camera);
    acquire(passing, 95);
    EXPECT_EQ(StreamCounts(camera).delivered, 10);
    passing.endCapture();
}

TEST_F(LinkPackets, WhatIsLostIsRequestedUntilItCame) {
    const VmbHandle_t camera = openInRows();
    setLink(losing(20'000));
    allowRequests("100");
    Stream stream(camera);
    acquire(stream, 9'995);
    const StreamCounts counts(camera);
    EXPECT_EQ(counts.delivered, 1'000);
    EXPECT_EQ(counts.dropped, 0);
    EXPECT_EQ(counts.errors, 0);
    EXPECT_EQ(counts.received, 64'000);
    EXPECT_EQ(counts.missed, counts.resent);
    EXPECT_NEAR(static_cast<double>(counts.missed), 64'000 * 0.02, spread(64'000, 0.02));
    // Of n requests one in fifty fails, and n less those is what was missed.
    const auto requests = static_cast<double>(counts.requested);
    EXPECT_NEAR(requests - static_cast<double>(counts.missed), requests * 0.02, spread(requests, 0.02));
    // A frame of 64 packets is hurt but for 0.98^64 = 0.2745.
    EXPECT_NEAR(static_cast<double>(counts.rescued), 1'000 * 0.7255, spread(1'000, 0.7255));
    for (const ReceivedFrame& frame : stream.received()) EXPECT_EQ(frame.verdict, VmbErrorSuccess);
    stream.endCapture();
}

TEST_F(LinkPackets, WhatNeverCameLeavesAnIncompleteFrameAndTheSumsAddUp) {
    const VmbHandle_t camera = openInRows();
    setLink(losing(100'000));
    allowRequests("1");
    Stream stream(camera);
    acquire(stream, 9'995);
    const StreamCounts counts(camera);
    EXPECT_EQ(counts.delivered + counts.dropped, 1'000);
    EXPECT_EQ(counts.received + counts.missed - counts.resent, 64'000);
    EXPECT_EQ(counts.requested, counts.missed) << "one each";
    // One packet in a hundred is lost twice; a frame of 64 is whole with a chance of 0.99^64 = 0.5256.
    EXPECT_NEAR(static_cast<double>(counts.missed - counts.resent), 640, spread(64'000, 0.01));
    EXPECT_NEAR(static_cast<double>(counts.delivered), 525.6, spread(1'000, 0.5256));
    VmbInt64_t lacking = 0;
    for (const ReceivedFrame& frame : stream.received()) {
        const bool whole = frame.record.receiveStatus == VmbFrameStatusComplete;
        EXPECT_EQ(whole, frame.verdict == VmbErrorSuccess);
        EXPECT_EQ(whole, frame.record.imageSize == kRow * kRows);
        EXPECT_EQ(frame.record.receiveStatus, whole ? VmbFrameStatusComplete : VmbFrameStatusIncomplete);
        lacking += static_cast<VmbInt64_t>(kRow * kRows - frame.record.imageSize);
    }
    EXPECT_EQ(lacking, (counts.missed - counts.resent) * static_cast<VmbInt64_t>(kRow));
    stream.endCapture();
}

TEST_F(LinkPackets, NoiseStandsWhereAPacketNeverCame) {
    const auto whole = pictures(100, [] {});
    std::vector<ReceivedFrame> received;
    const auto torn = pictures(
        100,
        [] {
            setLink(losing(50'000));
            allowRequests("0");
        },
        &received);
    std::size_t all = 0;
    for (const ReceivedFrame& frame : received) {
        const std::uint64_t id = frame.record.frameID;
        const auto rows = differingRows(torn.at(id), whole.at(id));
        EXPECT_EQ(frame.record.imageSize, kRow * (kRows - rows.size())) << id;
        all += rows.size();
    }
    EXPECT_NEAR(static_cast<double>(all), 6'400 * 0.05, spread(6'400, 0.05));
}

TEST_F(LinkPackets, ABurstTakesPacketsInARow) {
    const auto whole = pictures(400, [] {});
    const auto torn = pictures(400, [] {
        setLink(bursting(2'000, 5));
        allowRequests("0");
    });
    std::size_t bursts = 0;
    for (const auto& [id, image] : torn) {
        const auto rows = differingRows(image, whole.at(id));
        for (std::uint64_t row = 0; row < kRows;) {
            std::uint64_t end = row;
            while (rows.count(end) > 0) ++end;
            if (end > row) {
                // The next may begin at once, and the picture's end cuts one short.
                EXPECT_TRUE((end - row) % 5 == 0 || end == kRows) << id;
                bursts += (end - row + 4) / 5;
            }
            row = end + 1;
        }
    }
    // Places where one may begin: 25600 less the four that each takes besides its first.
    const double places = 25'600 - 4 * static_cast<double>(bursts);
    EXPECT_NEAR(static_cast<double>(bursts), places * 0.002, spread(places, 0.002));
}

TEST_F(LinkPackets, AFrameOfWhichNothingCameNeverArrives) {
    const VmbHandle_t camera = openFast();
    setLink(losing(1'000'000));
    Stream stream(camera);
    acquire(stream, 95);
    EXPECT_TRUE(stream.ids().empty());
    const StreamCounts counts(camera);
    EXPECT_EQ(counts.delivered + counts.dropped + counts.underrun, 0);
    EXPECT_EQ(counts.received + counts.missed + counts.requested, 0);
    setLink({});
    run(camera, "AcquisitionStart");
    advance(25 * kMillisecond);
    EXPECT_THAT(stream.ids(), ::testing::ElementsAre(11, 12, 13)) << "its number is used up";
    stream.endCapture();
}

TEST_F(LinkPackets, RequestsThatWereForcedBeyondAllMeasureEndWithTheMostOfTheSetting) {
    const VmbHandle_t camera = openInRows();
    allowRequests("1000000000000");
    VmbSimLink link{};
    link.largestPacket = 500;
    setLink(link);
    ASSERT_EQ(VmbSimForceFeature(kColourCamera, "GevSCPSPacketSize", "1000"), VmbErrorSuccess);
    Stream stream(camera);
    acquire(stream, 5);
    const StreamCounts counts(camera);
    EXPECT_EQ(counts.dropped, 1);
    EXPECT_EQ(counts.missed, 5) << "packets with 964 of 4096 bytes each";
    EXPECT_EQ(counts.requested, 5 * 512);
    stream.endCapture();
}

TEST_F(LinkPackets, EachRoundOfRequestsCostsAMillisecond) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    acquire(stream, 5);
    const std::uint64_t way = stream.received().front().stamp.wayNs;
    stream.endCapture();
    VmbSimLink link{};
    link.largestPacket = 600;
    setLink(link);
    for (const char* requests : {"0", "2", "7"}) {
        setInt(camera, "GevSCPSPacketSize", 601);
        allowRequests(requests);
        Stream torn(camera);
        const std::uint64_t start = VmbSimTime() + 4'200;
        acquire(torn, 5);
        ASSERT_EQ(torn.received().size(), 1u);
        EXPECT_EQ(torn.received().front().at, start + way + std::stoull(requests) * kMillisecond);
        torn.endCapture();
    }
    // The stamp says it too: of frames with one round of requests all are 1 ms late, of those without none.
    setLink(losing(100'000));
    setInt(camera, "GevSCPSPacketSize", 500);
    allowRequests("100");
    Stream mended(camera);
    acquire(mended, 995);
    std::set<std::uint64_t> rounds;
    for (const ReceivedFrame& frame : mended.received()) {
        EXPECT_EQ((frame.stamp.wayNs - way) % kMillisecond, 0u);
        EXPECT_EQ(frame.at, frame.stamp.exposureStartNs + frame.stamp.wayNs);
        rounds.insert((frame.stamp.wayNs - way) / kMillisecond);
    }
    // Three packets each: 0.73 of a hundred frames need no request; 0.24 one, and so on.
    EXPECT_TRUE(rounds.count(0) == 1 && rounds.count(1) == 1) << rounds.size();
    mended.endCapture();
}

TEST_F(LinkPackets, TheSameSeedLosesTheSameAndAnotherOneOthers) {
    const auto lost = [](std::uint64_t seed, const char* id) {
        restart();
        VmbSimSeed(seed);
        const VmbHandle_t camera = openInRows(id);
        setLink(losing(30'000));
        std::vector<VmbUint32_t> sizes;
        EXPECT_EQ(VmbSimForceFeature(id, "GVSPMaxRequests", "0"), VmbErrorSuccess);
        Stream stream(camera);
        acquire(stream, 995);
        for (const ReceivedFrame& frame : stream.received()) sizes.push_back(frame.record.imageSize);
        stream.endCapture();
        return sizes;
    };
    const auto sizes = lost(5, kColourCamera);
    EXPECT_EQ(sizes.size(), 100u);
    EXPECT_EQ(lost(5, kColourCamera), sizes);
    EXPECT_NE(lost(6, kColourCamera), sizes);
    EXPECT_NE(lost(5, kMonochromeCamera), sizes) << "cameras have losses of their own";
}

TEST_F(LinkPackets, AChunkTrailerTravelsInTheLastPackets) {
    const VmbHandle_t camera = openInRows();
    ASSERT_EQ(VmbFeatureBoolSet(camera, "ChunkModeActive", true), VmbErrorSuccess);
    setLink(losing(100'000));
    allowRequests("0");
    Stream stream(camera);
    acquire(stream, 1'995);
    const StreamCounts counts(camera);
    // 4096 bytes and 48.
    EXPECT_EQ(counts.received + counts.missed, 200 * 65);
    for (const ReceivedFrame& frame : stream.received()) {
        const bool whole = frame.record.receiveStatus == VmbFrameStatusComplete;
        EXPECT_EQ(frame.record.ancillarySize, whole ? 48u : 0u);
    }
    stream.endCapture();
}

TEST_F(LinkPackets, OrderedDamageComesInsteadOfTheLinks) {
    const VmbHandle_t camera = openInRows();
    setLink(losing(900'000));
    allowRequests("0");
    ASSERT_EQ(VmbSimBreakFrames(kColourCamera, 100, VmbFrameStatusInvalid), VmbErrorSuccess);
    Stream stream(camera);
    acquire(stream, 95);
    const StreamCounts counts(camera);
    EXPECT_EQ(counts.dropped, 10);
    EXPECT_EQ(counts.missed, 10);
    EXPECT_EQ(counts.received, 10 * 63);
    for (const ReceivedFrame& frame : stream.received()) {
        EXPECT_EQ(frame.record.receiveStatus, VmbFrameStatusInvalid);
    }
    stream.endCapture();
}

TEST_F(LinkPackets, LinksAreChecked) {
    VmbSimLink link{};
    EXPECT_EQ(VmbSimSetLink("SimulatedNetwork9", &link), VmbErrorNotFound);
    EXPECT_EQ(VmbSimSetLink(nullptr, &link), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimSetLink(kInterface, nullptr), VmbErrorBadParameter);
    const auto refused = [](auto field, VmbUint32_t value) {
        VmbSimLink wrong{};
        wrong.*field = value;
        return VmbSimSetLink(kInterface, &wrong) == VmbErrorInvalidValue;
    };
    EXPECT_TRUE(refused(&VmbSimLink::largestPacket, 499));
    EXPECT_TRUE(refused(&VmbSimLink::largestPacket, 16'385));
    for (const auto field : {&VmbSimLink::lossPpm, &VmbSimLink::burstPpm, &VmbSimLink::burstPackets}) {
        EXPECT_TRUE(refused(field, 1'000'001));
        EXPECT_FALSE(refused(field, 1'000'000));
    }
}

TEST_F(LinkPackets, AFreshScenarioHasAFreshLink) {
    setLink(losing(1'000'000));
    restart();
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    acquire(stream, 25);
    EXPECT_EQ(stream.ids().size(), 3u);
    stream.endCapture();
}

}  // namespace
