// What watches every test of ours.
#include "hang_watch.h"

#include <latch>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

TEST(HangWatchDeathTest, ATestThatHangsEndsWithItsName) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            test_support::beginLimit("A.Test", 1);
            std::latch never(1);
            std::thread([&never] { never.wait(); }).join();
        },
        ::testing::StartsWith("A.Test has lasted 1 s. All threads:\n"));
}

TEST(HangWatch, ATestThatEndsInTimeIsLeftAlone) {
    test_support::beginLimit("A.Test", 1000);
    test_support::endLimit();
}

}  // namespace
