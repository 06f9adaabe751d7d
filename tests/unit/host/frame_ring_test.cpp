#include "frame_ring.h"

#include <array>
#include <cstring>
#include <thread>

#include <gtest/gtest.h>

using host::FrameRing;
using host::RingFrame;

namespace {

bool push(FrameRing& ring, std::int64_t time, const std::string& text) {
    return ring.push(time, time + 7, text.data(), text.size());
}

std::string text(const RingFrame& frame) {
    std::string result(frame.bytes.size(), ' ');
    std::memcpy(result.data(), frame.bytes.data(), result.size());
    return result;
}

TEST(FrameRing, StartsEmpty) {
    const FrameRing ring(2, 8);
    RingFrame frame;
    EXPECT_FALSE(ring.front(frame));
    EXPECT_EQ(ring.lost(), 0u);
}

TEST(FrameRing, GivesFramesInOrderAcrossTheWrap) {
    FrameRing ring(2, 8);
    RingFrame frame;
    for (int i = 0; i < 7; ++i) {
        ASSERT_TRUE(push(ring, i, std::string(static_cast<std::size_t>(i), 'a')));
        ASSERT_TRUE(ring.front(frame));
        EXPECT_EQ(frame.time, i);
        EXPECT_EQ(frame.arrival, i + 7);
        EXPECT_EQ(text(frame), std::string(static_cast<std::size_t>(i), 'a'));
        ring.pop();
    }
    EXPECT_FALSE(ring.front(frame));
}

TEST(FrameRing, RefusesAndCountsWhenFull) {
    FrameRing ring(2, 8);
    EXPECT_TRUE(push(ring, 1, "one"));
    EXPECT_TRUE(push(ring, 2, "two"));
    EXPECT_FALSE(push(ring, 3, "three"));
    EXPECT_FALSE(push(ring, 4, "four"));
    EXPECT_EQ(ring.lost(), 2u);

    RingFrame frame;
    ASSERT_TRUE(ring.front(frame));
    EXPECT_EQ(text(frame), "one");
    ring.pop();
    ASSERT_TRUE(ring.front(frame));
    EXPECT_EQ(text(frame), "two");
    EXPECT_EQ(frame.lostBefore, 0u);
    ring.pop();
    EXPECT_TRUE(push(ring, 5, "five"));
    ASSERT_TRUE(ring.front(frame));
    EXPECT_EQ(text(frame), "five");
    EXPECT_EQ(frame.lostBefore, 2u);
}

TEST(FrameRing, RefusesAFrameLargerThanItsSlots) {
    FrameRing ring(2, 4);
    EXPECT_TRUE(push(ring, 1, "1234"));
    EXPECT_FALSE(push(ring, 2, "12345"));
    EXPECT_EQ(ring.lost(), 1u);
    EXPECT_EQ(ring.tooLarge(), 1u);
    EXPECT_TRUE(push(ring, 3, "1234"));
    EXPECT_FALSE(push(ring, 4, "1234"));
    EXPECT_EQ(ring.lost(), 2u);
    EXPECT_EQ(ring.tooLarge(), 1u);
}

TEST(FrameRing, HasRoomForTheEndAlsoWhenItIsFull) {
    FrameRing ring(1, 4);
    EXPECT_TRUE(push(ring, 1, "1234"));
    EXPECT_FALSE(push(ring, 2, "5678"));
    ring.pushEnd(3, 10, "abcd", 4);
    RingFrame frame;
    ASSERT_TRUE(ring.front(frame));
    EXPECT_FALSE(frame.isEnd);
    ring.pop();
    ASSERT_TRUE(ring.front(frame));
    EXPECT_TRUE(frame.isEnd);
    EXPECT_EQ(frame.time, 3);
    EXPECT_EQ(frame.arrival, 10);
    EXPECT_EQ(frame.lostBefore, 1u);
    EXPECT_EQ(text(frame), "abcd");
    EXPECT_EQ(ring.lost(), 1u);
    FrameRing small(1, 4);
    small.pushEnd(3, 10, "abcde", 5);
    ASSERT_TRUE(small.front(frame));
    EXPECT_EQ(frame.bytes.size(), 0u);
    EXPECT_EQ(small.lost(), 0u);
}

TEST(FrameRing, HasAtLeastOneSlot) {
    FrameRing ring(0, 4);
    EXPECT_TRUE(push(ring, 1, "1234"));
    EXPECT_FALSE(push(ring, 2, "5678"));
}

TEST(FrameRing, CarriesEveryFrameWholeBetweenTwoThreads) {
    constexpr std::int64_t kFrames = 20000;
    FrameRing ring(3, 64);
    std::thread producer([&] {
        std::array<std::byte, 64> bytes{};
        for (std::int64_t i = 0; i < kFrames; ++i) {
            bytes.fill(static_cast<std::byte>(i & 0xFF));
            while (!ring.push(i, i, bytes.data(), bytes.size())) std::this_thread::yield();
        }
    });
    std::int64_t next = 0;
    while (next < kFrames) {
        RingFrame frame;
        if (!ring.front(frame)) {
            std::this_thread::yield();
            continue;
        }
        ASSERT_EQ(frame.time, next);
        for (const std::byte byte : frame.bytes) ASSERT_EQ(byte, static_cast<std::byte>(next & 0xFF));
        ring.pop();
        ++next;
    }
    producer.join();
}

TEST(RingSlots, HoldTwoSecondsOfFrames) {
    EXPECT_EQ(host::ringSlots(50, 1000), 100u);
    EXPECT_EQ(host::ringSlots(33.3, 1000), 67u);
}

TEST(RingSlots, StayWithinTheMemoryAllowed) {
    EXPECT_EQ(host::ringSlots(50, 1000, 10'500), 10u);
    EXPECT_EQ(host::ringSlots(50, 968'256, 64u << 20u), 69u);  // 67108864 / 968256 = 69.3
}

TEST(RingSlots, AreAtLeastTwo) {
    EXPECT_EQ(host::ringSlots(50, 1000, 500), 2u);
    EXPECT_EQ(host::ringSlots(0.1, 1000), 2u);
    EXPECT_EQ(host::ringSlots(1, 0), 2u);
}

}  // namespace
