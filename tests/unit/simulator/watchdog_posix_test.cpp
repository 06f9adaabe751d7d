// Stacks are shown on these systems only.
#include "callback_lock.h"
#include "virtual_fixture.h"

namespace {

using test_support::waitWithTheCallbacksLock;
using WatchdogPosixDeathTest = test_support::StreamTest;

TEST_F(WatchdogPosixDeathTest, ALockHeldAcrossAWaitIsReportedWithTheStacksOfAllThreads) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            VmbSimSetWatchdog(300);
            const VmbHandle_t camera = openFast();
            waitWithTheCallbacksLock(camera, [=] { VmbCaptureEnd(camera); });
        },
        "VimbaC simulator: VmbCaptureEnd has waited for 300 ms and nothing happened\\. All threads:\n"
        "thread [0-9]+ \"simulator_tests\"\n(.|\n)*VmbCaptureEnd(.|\n)*thread [0-9]+ \"frame\"");
}

}  // namespace
