#include "frame_numbers.h"

#include <vector>

#include <gtest/gtest.h>

using host::FrameNumbers;

namespace {

/// All numbers missing before these, one after the other.
std::uint64_t missing(FrameNumbers& numbers, const std::vector<std::uint64_t>& frames) {
    std::uint64_t sum = 0;
    for (const std::uint64_t frame : frames) sum += numbers.add(frame).value_or(0);
    return sum;
}

TEST(FrameNumbers, TellWhatIsMissingBetweenThem) {
    FrameNumbers numbers;
    EXPECT_EQ(numbers.add(7), std::nullopt) << "nobody knows with what the camera began";
    EXPECT_EQ(numbers.add(8), 0u);
    EXPECT_EQ(numbers.add(11), 2u);
    EXPECT_EQ(numbers.doubled() + numbers.restarts(), 0u);
}

TEST(FrameNumbers, ThatCameAgainOrLateAreDoubled) {
    FrameNumbers numbers;
    EXPECT_EQ(missing(numbers, {7, 8, 11, 11, 10, 12, 14}), 3u);  // 9, 10, 13
    EXPECT_EQ(numbers.doubled(), 2u);
    EXPECT_EQ(numbers.restarts(), 0u);
}

TEST(FrameNumbers, Of16BitsGoOnWithOne) {
    FrameNumbers numbers;
    EXPECT_EQ(missing(numbers, {65534, 65535, 1, 2}), 0u);
    FrameNumbers gap;
    EXPECT_EQ(missing(gap, {65533, 3, 4}), 4u);  // 65534, 65535, 1, 2
    EXPECT_EQ(numbers.doubled() + gap.doubled() + numbers.restarts() + gap.restarts(), 0u);
}

TEST(FrameNumbers, Of64BitsDoNotBeginAgain) {
    FrameNumbers numbers;
    EXPECT_EQ(missing(numbers, {65535, 65536, 65537}), 0u);
    EXPECT_EQ(numbers.add(1), std::nullopt);
    EXPECT_EQ(numbers.doubled(), 1u);
}

TEST(FrameNumbers, OfACameraThatBeginsAnewAreToldOnceAndLossesAfterwardsSeen) {
    FrameNumbers numbers;
    EXPECT_EQ(missing(numbers, {100, 101, 1, 2, 3}), 0u);
    EXPECT_EQ(numbers.restarts(), 1u);
    EXPECT_EQ(numbers.doubled(), 0u);
    EXPECT_EQ(missing(numbers, {6, 7}), 2u);
    EXPECT_EQ(numbers.restarts(), 1u);
    FrameNumbers loses;
    EXPECT_EQ(missing(loses, {100, 1, 4}), 2u) << "2 and 3";
    EXPECT_EQ(loses.restarts(), 1u);
}

}  // namespace
