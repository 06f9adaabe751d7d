// What watches every test of ours.
#include "hang_watch.h"

#include <latch>
#include <thread>

#include <gtest/gtest.h>

namespace {

#ifndef _WIN32
TEST(HangWatchDeathTest, ATestThatHangsEndsWithTheStacksOfItsThreads) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            test_support::beginLimit("A.Test", 1);
            std::latch never(1);
            std::thread([&never] { never.wait(); }).join();
        },
        "A\\.Test has lasted 1 s\\. All threads:\n"
        "(.|\n)*thread [0-9]+ \"unit_platform\"(.|\n)*thread [0-9]+ \"unit_platform\"");
}
#endif

TEST(HangWatch, ATestThatEndsInTimeIsLeftAlone) {
    test_support::beginLimit("A.Test", 1000);
    test_support::endLimit();
}

}  // namespace
