#include "zelt_gige_camera_channel_frame_counters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config_item_variant.h"
#include "config_items.h"
#include "counter_sink.h"

namespace {

using test_support::CounterSink;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using zelt_gige_camera::ChannelIdentity;
using zelt_gige_camera::FrameCounters;
using zelt_gige_camera::SubChannel;
using Flag = config_items::SingleValueConfigItem<bool>;
using Text = config_items::SingleValueConfigItem<std::string>;

const ChannelIdentity kCamera{{3, 0x0102}, "DEV_000F31000007", "Manta (7)", "Vendor/Manta/7"};

std::string text(const SubChannel& sub, const char* key) {
    return boost::apply_visitor([](const auto& item) { return item.toString(); }, sub.channel->getItem(key));
}

class Counters : public ::testing::Test {
  protected:
    FrameCounters counters{kCamera, true};
    const SubChannel& sent = counters.subChannels()[0];
    const SubChannel& received = counters.subChannels()[1];
};

TEST_F(Counters, AreDescribedByTheirCameraAndByWhatTheyCount) {
    EXPECT_EQ(text(sent, "DefaultName"), "CameraDEV_000F31000007 SentCNT");
    EXPECT_EQ(text(sent, "ShortId"), "Sent frames");
    EXPECT_EQ(text(sent, "Unit"), "frames");
    EXPECT_EQ(text(sent, "ID:CAMERA/ChannelIndex"), "258");
    EXPECT_EQ(text(sent, "ID:CAMERA/SubChannelId"), "CntSent");
    EXPECT_EQ(text(sent, "AdditionalChannelInfo2"), "Sent frames");
    EXPECT_EQ(text(received, "DefaultName"), "CameraDEV_000F31000007 RcvdCNT");
    EXPECT_EQ(text(received, "ShortId"), "Received frames");
    EXPECT_EQ(text(received, "Unit"), "frames");
    EXPECT_EQ(text(received, "ID:CAMERA/ChannelIndex"), "258");
    EXPECT_EQ(text(received, "ID:CAMERA/SubChannelId"), "CntReceived");
    EXPECT_EQ(text(received, "AdditionalChannelInfo2"), "Received frames");
}

TEST_F(Counters, HaveThreeSettingsMoreThanAnyEventCounter) {
    for (const SubChannel& sub : counters.subChannels()) {
        const std::vector<std::string>& keys = sub.channel->getKeys();
        ASSERT_EQ(keys.size(), 16u);
        EXPECT_EQ(keys[12], "SampleResolution");
        EXPECT_EQ(keys[13], "ID:CAMERA/ChannelIndex");
        EXPECT_EQ(keys[14], "ID:CAMERA/SubChannelId");
        EXPECT_EQ(keys[15], "AdditionalChannelInfo2");
    }
}

TEST_F(Counters, AllowNobodyToChangeWhatTheyAreCalled) {
    for (const char* key : {"ID:CAMERA/ChannelIndex", "ID:CAMERA/SubChannelId", "AdditionalChannelInfo2"}) {
        EXPECT_FALSE(sent.channel->setItem(key, Text("other"))) << key;
        EXPECT_NE(text(sent, key), "other");
    }
}

TEST_F(Counters, CarryTheCamerasIdInTheLowSixteenBitsOfTheirs) {
    EXPECT_EQ(sent.id, 0x00010102u);
    EXPECT_EQ(received.id, 0x00020102u);
}

TEST_F(Counters, AreFoundByTheirCameraAndTheirKind) {
    EXPECT_EQ(sent.key, "DEV_000F31000007/CntSent");
    EXPECT_EQ(received.key, "DEV_000F31000007/CntReceived");
}

TEST_F(Counters, NeedACameraIdOfSixteenBits) {
    EXPECT_TRUE(FrameCounters::isPossible(0));
    EXPECT_TRUE(FrameCounters::isPossible(0xFFFF));
    EXPECT_FALSE(FrameCounters::isPossible(0x10000));
    EXPECT_FALSE(FrameCounters::isPossible(0xFFFFFFFE));
}

TEST_F(Counters, AreUsedAsTheirCameraIsAtFirstAndThenOnTheirOwn) {
    FrameCounters unused(kCamera, false);
    for (const SubChannel& sub : unused.subChannels()) EXPECT_FALSE(sub.channel->isUsed());
    for (const SubChannel& sub : counters.subChannels()) EXPECT_TRUE(sub.channel->isUsed());
    sent.channel->setItem("Used", Flag(false));
    EXPECT_FALSE(sent.channel->isUsed());
    EXPECT_TRUE(received.channel->isUsed());
}

TEST_F(Counters, WriteTheNumberSentAndOneMoreReceivedForEachFrame) {
    CounterSink sentSink;
    CounterSink receivedSink;
    counters.setSink(0x00010102, &sentSink);
    counters.setSink(0x00020102, &receivedSink);
    counters.count(100, 0);
    counters.count(110, 1);
    counters.count(150, 5);
    EXPECT_THAT(sentSink.samples, ElementsAre(Pair(100, 0u), Pair(110, 1u), Pair(150, 5u)));
    EXPECT_THAT(receivedSink.samples, ElementsAre(Pair(100, 1u), Pair(110, 2u), Pair(150, 3u)));
}

TEST_F(Counters, TakeNoSinkOfAnotherChannelAndLoseTheirsTogether) {
    CounterSink sink;
    counters.setSink(0x0102, &sink);
    counters.setSink(0x00030102, &sink);
    counters.count(100, 0);
    EXPECT_THAT(sink.samples, IsEmpty());
    counters.setSink(sent.id, &sink);
    counters.setSink(received.id, &sink);
    counters.clearSinks();
    counters.count(110, 1);
    EXPECT_THAT(sink.samples, IsEmpty());
}

TEST_F(Counters, CountOnWhileNobodyUsesThem) {
    CounterSink sink;
    counters.setSink(received.id, &sink);
    received.channel->setItem("Used", Flag(false));
    counters.count(100, 0);
    counters.count(110, 1);
    EXPECT_THAT(sink.samples, IsEmpty());
    received.channel->setItem("Used", Flag(true));
    counters.count(120, 2);
    EXPECT_THAT(sink.samples, ElementsAre(Pair(120, 3u)));
}

TEST_F(Counters, BeginAgainAtZero) {
    counters.count(100, 4);
    counters.restart();
    EXPECT_EQ(sent.channel->getCount(), 0u);
    EXPECT_EQ(received.channel->getCount(), 0u);
}

}  // namespace
