// Stacks are shown on these systems only.
#include <latch>
#include <thread>

#include <gtest/gtest.h>

#include "hang_watch.h"

namespace {

TEST(HangWatchPosixDeathTest, ATestThatHangsEndsWithTheStacksOfItsThreads) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            test_support::beginLimit("A.Test", 1);
            std::latch never(1);
            std::thread([&never] { never.wait(); }).join();
        },
        "All threads:\n(.|\n)*thread [0-9]+ \"unit_platform\"(.|\n)*thread [0-9]+ \"unit_platform\"");
}

}  // namespace
