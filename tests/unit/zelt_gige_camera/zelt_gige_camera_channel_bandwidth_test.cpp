#include "zelt_gige_camera_channel_bandwidth.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace zelt_gige_camera;

TEST(RequiredBandwidth, IsPayloadTimesRateRoundedUp) {
    EXPECT_EQ(requiredBandwidth(645'504, 50.0), 32'275'200u);
    EXPECT_EQ(requiredBandwidth(3, 0.5), 2u);
    EXPECT_EQ(requiredBandwidth(10, 0.01), 1u);
}

TEST(RequiredBandwidth, IsZeroWithoutAUsableRate) {
    for (const double rate : {0.0, -1.0, std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300}) {
        EXPECT_EQ(requiredBandwidth(1000, rate), 0u) << rate;
    }
}

TEST(RequiredBandwidth, IsAtLeastWhatTheStreamWasGiven) {
    EXPECT_EQ(requiredBandwidth(645'504, 50.0, 32'275'199), 32'275'200u);
    EXPECT_EQ(requiredBandwidth(645'504, 50.0, 32'275'201), 32'275'201u);
    EXPECT_EQ(requiredBandwidth(645'504, 0.0, 1000), 1000u);
    EXPECT_EQ(requiredBandwidth(645'504, std::nan(""), 1000), 1000u);
}

TEST(RequiredBandwidth, IsNotRaisedByAStreamThatWasGivenNothing) {
    EXPECT_EQ(requiredBandwidth(3, 0.5, 0), 2u);
    EXPECT_EQ(requiredBandwidth(3, 0.5, -1), 2u);
    EXPECT_EQ(requiredBandwidth(3, -0.5, std::numeric_limits<std::int64_t>::min()), 0u);
}

TEST(BandwidthShare, IsRoundedDownToAWholeByteAlsoWhenAlmostTheWholeLinkIsNeeded) {
    // 100000000 / 114999999 of 115000000 is 100000000.87, 14999999 / 114999999 of it 14999999.13.
    EXPECT_EQ(bandwidthShare(100'000'000, 114'999'999), 100'000'000);
    EXPECT_EQ(bandwidthShare(14'999'999, 114'999'999), 14'999'999);
    EXPECT_EQ(bandwidthShare(60'000'000, 120'000'000), 57'500'000);
}

TEST(BandwidthShare, IsTheChannelsPartOfTheLinkRoundedDown) {
    EXPECT_EQ(bandwidthShare(1, 1), 115'000'000);
    EXPECT_EQ(bandwidthShare(1, 3), 38'333'333);
    EXPECT_EQ(bandwidthShare(32'275'200, 45'185'280), 82'142'857);
    EXPECT_EQ(bandwidthShare(0, 5), 0);
}

TEST(BandwidthShare, IsZeroWhenNobodyNeedsAnything) {
    EXPECT_EQ(bandwidthShare(0, 0), 0);
}

TEST(BandwidthLimitedRate, IsTheStreamLimitOverThePayload) {
    EXPECT_DOUBLE_EQ(bandwidthLimitedFrameRate(115'000'000, 645'504), 178.15536387071185);
    EXPECT_TRUE(std::isinf(bandwidthLimitedFrameRate(115'000'000, 0)));
}

}  // namespace
