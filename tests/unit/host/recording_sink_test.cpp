#include "recording_sink.h"

#include <gtest/gtest.h>

#include "steady_master_clock.h"

using host::RecordingSink;
using host::RingFrame;

namespace {

class RecordingSinkTest : public testing::Test {
  protected:
    std::vector<std::int64_t> times() {
        std::vector<std::int64_t> times;
        for (RingFrame frame; m_sink.ring()->front(frame); m_sink.ring()->pop()) {
            (frame.isEnd ? m_ends : times).push_back(frame.time);
        }
        return times;
    }
    void add(std::int64_t time) { m_sink.addSample(time, "ab", 2); }

    std::vector<std::int64_t> m_ends;
    int m_wakes = 0;
    RecordingSink m_sink{1000, [this] { ++m_wakes; }};
};

TEST_F(RecordingSinkTest, KeepsFramesFromTheFirstUpToTheEndWithoutIt) {
    m_sink.makeRing(10, 2);
    for (const std::int64_t time : {500, 900, 1499}) add(time);
    EXPECT_FALSE(m_sink.isPastEnd());
    add(1500);
    EXPECT_TRUE(m_sink.isPastEnd());
    EXPECT_EQ(times(), (std::vector<std::int64_t>{500, 900, 1499}));
    EXPECT_EQ(m_wakes, 4);
    EXPECT_EQ(m_ends, (std::vector<std::int64_t>{1500})) << "to be looked at, not to be kept";
    EXPECT_EQ(m_sink.end(), 1500);
}

TEST_F(RecordingSinkTest, KeepsNothingAfterTheEnd) {
    m_sink.makeRing(10, 2);
    for (const std::int64_t time : {0, 1000, 999, 1001}) add(time);
    EXPECT_EQ(times(), (std::vector<std::int64_t>{0}));
    EXPECT_EQ(m_ends, (std::vector<std::int64_t>{1000}));
    EXPECT_EQ(m_sink.ring()->lost(), 0u);
}

TEST_F(RecordingSinkTest, BeginsWhereItIsToldTo) {
    RecordingSink sink(
        4, [] {}, 0);
    sink.makeRing(10, 2);
    for (const std::int64_t pulse : {2, 3, 5}) sink.addSample(pulse, "ab", 2);
    EXPECT_TRUE(sink.isPastEnd());
    EXPECT_EQ(sink.end(), 4);
    RingFrame frame;
    ASSERT_TRUE(sink.ring()->front(frame));
    EXPECT_EQ(frame.time, 2);
}

TEST_F(RecordingSinkTest, StartsAtAnyTimeAlsoBeforeZero) {
    m_sink.makeRing(10, 2);
    for (const std::int64_t time : {-700, 299, 300}) add(time);
    EXPECT_EQ(times(), (std::vector<std::int64_t>{-700, 299}));
}

TEST_F(RecordingSinkTest, KeepsNothingWithoutMemory) {
    add(0);
    m_sink.makeRing(10, 2);
    add(5000);
    EXPECT_EQ(times(), (std::vector<std::int64_t>{5000}));
}

TEST_F(RecordingSinkTest, NotesWhenAFrameWasHandedOver) {
    m_sink.makeRing(10, 2);
    const std::int64_t before = host::steadyNanoseconds();
    add(0);
    RingFrame frame;
    ASSERT_TRUE(m_sink.ring()->front(frame));
    EXPECT_GE(frame.arrival, before);
    EXPECT_LE(frame.arrival, host::steadyNanoseconds());
}

TEST_F(RecordingSinkTest, KeepsNothingOnceClosed) {
    m_sink.makeRing(10, 2);
    add(0);
    m_sink.close();
    add(1);
    EXPECT_EQ(times(), (std::vector<std::int64_t>{0}));
}

}  // namespace
