// The channels that count frames, as a host sees them.
#include "counter_sink.h"
#include "frames_by_hand_fixture.h"
#include "zelt_gige_channel_map.h"
#include "zelt_gige_vmb_api.h"

namespace {

using test_support::CounterSink;
using test_support::FramesByHand;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::PluginTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::uint32_t kSent = 0x00010000;
constexpr std::uint32_t kReceived = 0x00020000;

class FrameCounterChannels : public PluginTest {
  protected:
    void unplug(const char* camera) {
        VmbSimUnplugCamera(camera);
        VmbSimWaitForEvents(kPatienceMs);
    }
    void plug(const char* camera) {
        VmbSimPlugCamera(camera);
        VmbSimWaitForEvents(kPatienceMs);
    }
};

TEST_F(FrameCounterChannels, AreOfferedBesideEachCameraOnRequest) {
    wantFrameCounters(true);
    enumerate();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u, kSent, kSent | 1, kReceived, kReceived | 1));
}

TEST_F(FrameCounterChannels, AreNotOfferedUnlessTheHostWantsThem) {
    enumerate();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
    EXPECT_EQ(plugin->getChannelConfig(kSent), nullptr);
    EXPECT_EQ(plugin->getChannel(kReceived), nullptr);
}

TEST_F(FrameCounterChannels, AreNeitherAddedToNorTakenFromACameraThatIsKnown) {
    unplug(kMonochromeCamera);
    enumerate();
    wantFrameCounters(true);
    plug(kMonochromeCamera);
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u, kSent | 1, kReceived | 1));
    wantFrameCounters(false);
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u, kSent | 1, kReceived | 1));
}

TEST_F(FrameCounterChannels, GoWithTheirCamera) {
    wantFrameCounters(true);
    enumerate();
    unplug(kColourCamera);
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(1u, kSent | 1, kReceived | 1));
    EXPECT_EQ(plugin->getChannel(kSent), nullptr);
}

TEST_F(FrameCounterChannels, HaveTheirOwnConfiguration) {
    wantFrameCounters(true);
    enumerate();
    EXPECT_EQ(text(kSent | 1, "DefaultName"), std::string("Camera") + kMonochromeCamera + " SentCNT");
    EXPECT_EQ(text(kReceived | 1, "DefaultName"), std::string("Camera") + kMonochromeCamera + " RcvdCNT");
    EXPECT_EQ(text(kReceived | 1, "ID:CAMERA/ChannelIndex"), "1");
    EXPECT_EQ(plugin->getChannel(kSent), plugin->getChannelConfig(kSent));
    EXPECT_NE(plugin->getChannel(kSent), plugin->getChannel(0));
}

TEST_F(FrameCounterChannels, AreFoundByTheirKeys) {
    wantFrameCounters(true);
    enumerate();
    EXPECT_EQ(plugin->findChannelId(kMonochromeCamera), 1u);
    EXPECT_EQ(plugin->findChannelId(std::string(kColourCamera) + "/CntSent"), kSent);
    EXPECT_EQ(plugin->findChannelId(std::string(kMonochromeCamera) + "/CntReceived"), kReceived | 1);
    EXPECT_EQ(plugin->findChannelId(std::string(kColourCamera) + "/cntsent"), zelt::IfDAQPlugin::kNoChannel);
    EXPECT_EQ(plugin->findChannelId("/CntSent"), zelt::IfDAQPlugin::kNoChannel);
}

TEST_F(FrameCounterChannels, AreAlwaysRight) {
    wantFrameCounters(true);
    enumerate();
    EXPECT_TRUE(plugin->checkChannelSettings({kSent, kReceived | 1}, false));
    EXPECT_FALSE(plugin->checkChannelSettings({kSent, 0x00030000}, false));
}

TEST_F(FrameCounterChannels, AreUsedApartFromTheirCamera) {
    wantFrameCounters(true);
    enumerate();
    EXPECT_EQ(text(kSent, "Used"), "1");
    use(0, false);
    EXPECT_EQ(text(kSent, "Used"), "1");
    use(kReceived, false);
    EXPECT_EQ(text(kReceived, "Used"), "0");
    EXPECT_EQ(text(0, "Used"), "0");
    EXPECT_EQ(text(kSent, "Used"), "1");
}

TEST_F(FrameCounterChannels, CannotBelongToACameraWithALongerId) {
    zelt_gige_api::CameraInfo info;
    info.modelName = "Manta";
    info.serialNumber = "7";
    zelt_gige_camera::CameraChannel camera({0, 0x10000}, info,
                                           std::make_shared<zelt_gige_camera::PublishedChannels>(nullptr),
                                           std::make_shared<zelt_gige_api::VimbaCameraApi>(), 0);
    const LogCapture log(UniLogSeverityLevel::Warning);
    camera.createFrameCounters();
    EXPECT_THAT(log.lines(), SizeIs(1));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                ElementsAre("Camera Manta (7) gets no frame counters: its channel id 65536 "
                            "does not fit 16 bits"));
    EXPECT_THAT(camera.getSubChannels(), IsEmpty());
}

class CountedFrames : public FramesByHand {
  protected:
    CountedFrames() : FramesByHand(/*withCounters=*/true) {
        plugin->setChannelSink(kSent, &sent);
        plugin->setChannelSink(kReceived, &received);
    }
    ~CountedFrames() override {
        if (plugin != nullptr) plugin->clearChannelSinks();
    }
    /// Counts of a counter's samples, whose times must be those of the images.
    std::vector<std::uint64_t> counts(const CounterSink& counter) const {
        std::vector<std::int64_t> stamped;
        std::vector<std::uint64_t> found;
        for (const auto& [time, count] : counter.samples) {
            stamped.push_back(time);
            found.push_back(count);
        }
        EXPECT_EQ(stamped, times());
        return found;
    }

    CounterSink sent;
    CounterSink received;
};

TEST_F(CountedFrames, LostOnTheWayAreTheGrowthOfSentLessReceived) {
    std::uint64_t ticks = 0;
    for (const std::uint64_t id : {1u, 2u, 5u, 6u, 9u}) deliver(id, ticks += 1000);
    EXPECT_THAT(counts(sent), ElementsAre(0u, 1u, 4u, 5u, 8u));
    EXPECT_THAT(counts(received), ElementsAre(1u, 2u, 3u, 4u, 5u));
}

TEST_F(CountedFrames, ThatRunBackwardsCountNeitherAsSentNorAsReceived) {
    deliver(1, 1000);
    clock->fixed = 500'000'000'000;
    deliver(2, 2000);
    clock->fixed = 1'000'100'000'000;
    deliver(3, 3000);
    EXPECT_THAT(counts(sent), ElementsAre(0u, 2u));
    EXPECT_THAT(counts(received), ElementsAre(1u, 2u));
}

TEST_F(CountedFrames, CountFromZeroInEveryAcquisition) {
    deliver(1, 1000);
    deliver(4, 2000);
    stop();
    sent.samples.clear();
    received.samples.clear();
    clock->fixed = 0;
    start();
    VmbSimWaitForEvents(kPatienceMs);
    clock->fixed = 2'000'000'000'000;
    deliver(1, 1000);
    ASSERT_THAT(sent.samples, SizeIs(1));
    EXPECT_EQ(sent.samples[0].second, 0u);
    EXPECT_EQ(received.samples.at(0).second, 1u);
}

TEST_F(CountedFrames, CountOnWhenNobodyTakesThePictures) {
    plugin->setChannelSink(0, nullptr);
    deliver(1, 1000);
    deliver(2, 2000);
    EXPECT_THAT(received.samples, SizeIs(2));
}

TEST_F(CountedFrames, CountOnWhileACounterIsNotUsed) {
    use(kReceived, false);
    deliver(1, 1000);
    use(kReceived, true);
    deliver(2, 2000);
    EXPECT_THAT(counts(sent), ElementsAre(0u, 1u));
    ASSERT_THAT(received.samples, SizeIs(1));
    EXPECT_EQ(received.samples[0].second, 2u);
}

TEST_F(CountedFrames, AreToldToNobodyOnceTheSinksAreCleared) {
    plugin->clearChannelSinks();
    deliver(1, 1000);
    EXPECT_THAT(sent.samples, IsEmpty());
    EXPECT_THAT(received.samples, IsEmpty());
}

TEST_F(CountedFrames, CostNoAllocation) {
    plugin->setChannelSink(0, nullptr);
    sent.samples.reserve(100);
    received.samples.reserve(100);
    std::size_t allocations = 0;
    for (std::uint64_t id = 1; id <= 100; ++id) {
        clock->fixed = 1'000'000'000'000 + id * 20'000'000;
        // Every tenth frame is lost on the way.
        if (id % 10 == 0) continue;
        allocations += deliver(id, id * 20'000'000);
    }
    EXPECT_THAT(received.samples, SizeIs(90));
    EXPECT_EQ(allocations, 0u);
}

}  // namespace
