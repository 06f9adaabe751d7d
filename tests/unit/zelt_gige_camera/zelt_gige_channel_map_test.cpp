#include "zelt_gige_channel_map.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using zelt_gige_camera::ChannelMap;
using zelt_gige_camera::freeChannelId;
using zelt_gige_camera::nextChannelId;
using zelt_gige_camera::PublishedChannels;

constexpr std::uint32_t kLargest = ~std::uint32_t{0};

ChannelMap withIds(std::initializer_list<std::uint32_t> ids) {
    ChannelMap channels;
    for (const std::uint32_t id : ids) channels.emplace(id, nullptr);
    return channels;
}

TEST(ChannelIds, BeginAtZero) {
    EXPECT_EQ(nextChannelId({}), 0u);
}

TEST(ChannelIds, FollowTheLargest) {
    EXPECT_EQ(nextChannelId(withIds({0, 7, 3})), 8u);
}

TEST(ChannelIds, BeginAgainAfterTheLargestNumber) {
    EXPECT_EQ(nextChannelId(withIds({0, kLargest})), 0u);
}

TEST(ChannelIds, AreTheCandidateWhenItIsFree) {
    EXPECT_EQ(freeChannelId(withIds({0, 1}), 5), 5u);
}

TEST(ChannelIds, SkipThoseInUse) {
    EXPECT_EQ(freeChannelId(withIds({0, 1, 3}), 0), 2u);
}

TEST(ChannelIds, AreNeverTheOneThatMeansNoChannel) {
    EXPECT_EQ(freeChannelId(withIds({0}), kLargest), 1u);
    EXPECT_EQ(freeChannelId({}, kLargest), 0u);
}

TEST(PublishedChannelsTest, StartEmptyAndNeverNull) {
    PublishedChannels published(nullptr);
    ASSERT_NE(published.snapshot(), nullptr);
    EXPECT_TRUE(published.snapshot()->empty());
    EXPECT_EQ(published.getTotalRequiredBandwidth(), 0u);
}

TEST(PublishedChannelsTest, LeaveAnEarlierSnapshotAsItWas) {
    PublishedChannels published(nullptr);
    const auto before = published.snapshot();
    published.publish(withIds({4}));
    EXPECT_TRUE(before->empty());
    EXPECT_EQ(published.snapshot()->count(4), 1u);
}

TEST(PublishedChannelsTest, HaveNoTriggerFrequencyWithoutTheServiceThatKeepsIt) {
    const PublishedChannels published(nullptr);
    std::vector<zelt_gige_camera::AuxFrequency> told;
    published.deliverAuxFrequency([&](const auto& frequency) { told.push_back(frequency); });
    ASSERT_EQ(told.size(), 1u);
    EXPECT_FALSE(told[0].has_value());
}

TEST(PublishedChannelsTest, AddUpTheBandwidthWhileAnotherThreadPublishes) {
    PublishedChannels published(nullptr);
    std::atomic<bool> done{false};
    std::thread publisher([&] {
        while (!done) published.publish({});
    });
    std::uint64_t total = 0;
    for (int round = 0; round < 20'000; ++round) total += published.getTotalRequiredBandwidth();
    done = true;
    publisher.join();
    EXPECT_EQ(total, 0u);
}

}  // namespace
