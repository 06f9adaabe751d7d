/// The simulator under test in virtual time: what is due happens when a test says so, to the nanosecond.
#pragma once

#include "simulator_fixture.h"

namespace test_support {

inline constexpr std::uint64_t kMicrosecond = 1'000;
inline constexpr std::uint64_t kMillisecond = 1'000'000;
inline constexpr std::uint64_t kSecond = 1'000'000'000;

class VirtualTimeTest : public ::testing::Test {
  protected:
    VirtualTimeTest() {
        EXPECT_EQ(VmbSimUseVirtualTime(true), VmbErrorSuccess);
        EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
    }
    ~VirtualTimeTest() override {
        VmbShutdown();
        EXPECT_EQ(VmbSimUseVirtualTime(false), VmbErrorSuccess);
    }
    /// Everything afresh, at zero o'clock.
    static void restart() {
        VmbShutdown();
        ASSERT_EQ(VmbSimUseVirtualTime(true), VmbErrorSuccess);
        ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
    }
    static VmbHandle_t open(const char* id = kColourCamera) {
        VmbHandle_t camera = nullptr;
        EXPECT_EQ(VmbCameraOpen(id, VmbAccessModeFull, &camera), VmbErrorSuccess);
        return camera;
    }
    /// 8-bit grey, small pictures, an exposure of 1 ms, free running at `rate` in hertz.
    static VmbHandle_t openFast(const char* id = kColourCamera, double rate = 100) {
        const VmbHandle_t camera = open(id);
        setEnum(camera, "PixelFormat", "Mono8");
        setEnum(camera, "TriggerMode", "Off");
        setInt(camera, "Width", 64);
        setInt(camera, "Height", 16);
        setFloat(camera, "ExposureTimeAbs", 1000);
        setFloat(camera, "AcquisitionFrameRateAbs", rate);
        return camera;
    }
    static void advance(std::uint64_t ns) { ASSERT_EQ(VmbSimAdvance(ns), VmbErrorSuccess); }

    Simulator simulator;
};

}  // namespace test_support
