// A call that waits for good is told from one that only takes long.
#include <thread>

#include "callback_lock.h"
#include "virtual_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::kSystem;
using test_support::run;
using test_support::Stream;
using test_support::StreamTest;
using test_support::waitWithTheCallbacksLock;
using testing::HasSubstr;

using WatchdogDeathTest = StreamTest;

TEST_F(WatchdogDeathTest, ALockHeldAcrossAWaitIsReported) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            VmbSimSetWatchdog(300);
            const VmbHandle_t camera = openFast();
            waitWithTheCallbacksLock(camera, [=] { VmbCaptureEnd(camera); });
        },
        HasSubstr(
            "VimbaC simulator: VmbCaptureEnd has waited for 300 ms and nothing happened. All threads:\n"));
}

TEST_F(WatchdogDeathTest, ClosingShuttingDownAndWaitingForAFrameAreWatchedToo) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    static VmbFrame_t never{};
    const std::pair<const char*, std::function<void(VmbHandle_t)>> waits[] = {
        {"VmbCameraClose", [](VmbHandle_t camera) { VmbCameraClose(camera); }},
        {"VmbShutdown", [](VmbHandle_t) { VmbShutdown(); }},
        {"VmbCaptureFrameWait", [](VmbHandle_t camera) {
             static std::uint8_t image[1];
             never.buffer = image;
             never.bufferSize = 1;
             VmbFrameAnnounce(camera, &never, sizeof never);
             VmbCaptureFrameWait(camera, &never, VMBINFINITE);
         }}};
    for (const auto& [function, wait] : waits) {
        EXPECT_DEATH(
            {
                VmbSimSetWatchdog(300);
                const VmbHandle_t camera = openFast();
                waitWithTheCallbacksLock(camera, [=, &wait = wait] { wait(camera); });
            },
            HasSubstr(std::string("VimbaC simulator: ") + function +
                      " has waited for 300 ms and nothing happened"));
    }
}

TEST_F(WatchdogDeathTest, SoItIsInVirtualTime) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            VmbShutdown();
            VmbSimUseVirtualTime(true);
            VmbStartup();
            VmbSimSetWatchdog(300);
            const VmbHandle_t camera = openFast();
            std::mutex mutex;
            Stream stream(camera);
            const std::lock_guard lock(mutex);
            stream.hook = [&](VmbFrame_t&) { const std::lock_guard wanted(mutex); };
            stream.startCapture();
            VmbFeatureCommandRun(camera, "AcquisitionStart");
            VmbSimAdvance(1'000'000'000);
        },
        HasSubstr("VimbaC simulator: a control function has waited for 300 ms and nothing happened. All "
                  "threads:\n"));
}

TEST_F(StreamTest, WaitsThatEndByThemselvesAreLeftAlone) {
    VmbSimSetWatchdog(100);
    const VmbHandle_t camera = openFast();
    run(kSystem, "GeVDiscoveryAllOnce");  // 150 ms
    Stream stream(camera, 1);
    stream.announceAll();
    EXPECT_EQ(VmbCaptureFrameWait(camera, stream.frames.data(), 250), VmbErrorTimeout);
    EXPECT_EQ(VmbFrameRevokeAll(camera), VmbErrorSuccess);
    VmbSimSetWatchdog(0);
}

}  // namespace
