#include "channel_config_types.h"

#include <type_traits>

#include <gtest/gtest.h>

namespace {

using namespace channel_config;

TEST(ChannelConfigTypes, HaveTheValuesThatTheHostExpects) {
    EXPECT_EQ(static_cast<int>(DAQChannelType::Video), 13);
    EXPECT_EQ(static_cast<int>(DAQChannelType::Counter), 3);
    EXPECT_EQ(static_cast<int>(SampleOccurrenceType::Asynchronous), 1);
    EXPECT_EQ(static_cast<int>(DAQSampleResolution::Video), 15);
    EXPECT_EQ(static_cast<int>(DAQSampleResolution::Count), 3);
}

TEST(ChannelConfigTypes, AreSigned32BitNumbers) {
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<PhysicalQuantity>, std::int32_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<UserScalingMode>, std::int32_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<DAQSampleResolution>, std::int32_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<SampleOccurrenceType>, std::int32_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<DAQChannelType>, std::int32_t>));
}

TEST(ChannelID, IsEqualOnlyWhenBothFieldsAre) {
    const ChannelID id{1, 2};
    EXPECT_TRUE((id == ChannelID{1, 2}));
    EXPECT_FALSE((id == ChannelID{3, 2}));
    EXPECT_FALSE((id == ChannelID{1, 3}));
}

}  // namespace
