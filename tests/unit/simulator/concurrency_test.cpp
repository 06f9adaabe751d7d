// Clients and tests that use everything at once, in real time: for the thread sanitizer.
#include <thread>

#include "simulator_fixture.h"

namespace {

using test_support::eventually;
using test_support::floatOf;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::Latch;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::Simulator;
using test_support::Stream;
using test_support::StreamTest;

using Concurrency = StreamTest;

/// Calls `body` again and again on threads of their own until `enough`.
void everywhere(const std::vector<std::function<void()>>& bodies, const std::function<void()>& enough) {
    std::atomic<bool> over{false};
    std::vector<std::thread> threads;
    for (const auto& body : bodies) {
        threads.emplace_back([&] {
            while (!over) body();
        });
    }
    enough();
    over = true;
    for (std::thread& thread : threads) thread.join();
}

TEST_F(Concurrency, TheLineMayBeDrivenAndDisturbedWhileItTriggers) {
    const VmbHandle_t camera = openFast();
    setInt(camera, "Width", 64);
    setInt(camera, "Height", 16);
    setFloat(camera, "ExposureTimeAbs", 30);
    setEnum(camera, "TriggerMode", "On");
    setEnum(camera, "TriggerSource", "Line1");
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    everywhere({[] {
                    const VmbSimRhythm rhythm{500, 1, 200'000, 100'000, 10'000};
                    VmbSimDriveLine(nullptr, &rhythm);
                    VmbSimWaitForFrames(kColourCamera, UINT64_MAX, 3);
                },
                [] { VmbSimSilenceLine(kMonochromeCamera); },
                [] {
                    const std::uint64_t at = VmbSimTime() + 100'000;
                    VmbSimPulseLine(kMonochromeCamera, &at, 1, 1'000);
                },
                [] { VmbSimDisturbLine(nullptr, VmbSimPulseBouncing, 1, 1); }, [] { VmbSimSeed(3); }},
               [] { waitForFrames(100); });
    stream.endCapture();
}

TEST_F(Concurrency, ASilencedLineTakesItsEdgesBack) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "TriggerMode", "On");
    setEnum(camera, "TriggerSource", "Line1");
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    for (int round = 0; round < 2'000; ++round) {
        const std::uint64_t at = VmbSimTime() + 20'000;
        EXPECT_EQ(VmbSimPulseLine(nullptr, &at, 1, 1'000), VmbErrorSuccess);
        while (VmbSimTime() + 1'000 < at) continue;
        EXPECT_EQ(VmbSimSilenceLine(nullptr), VmbErrorSuccess);
    }
    stream.endCapture();
}

TEST_F(Concurrency, FaultsLightClocksAndMisuseMayBeUsedWhileFramesCome) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "ExposureAuto", "Continuous");
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    int brightness = 0;
    everywhere({[&] {
                    const VmbSimScene scene{static_cast<double>(10 + brightness++ % 10), 1, 1};
                    VmbSimSetScene(kColourCamera, &scene);
                },
                [] {
                    const VmbSimOscillator oscillator{1'000'000, 0, 0, 0, 1, 5};
                    VmbSimSetOscillator(kMonochromeCamera, &oscillator);
                },
                [] {
                    VmbSimCableDuring(kMonochromeCamera, false, "VmbCameraOpen", "nobody", 1);
                    VmbSimFailCall("VmbCameraOpen", "nobody", 1, VmbErrorOther);
                    VmbSimClearFaults();
                },
                [=] { VmbFrameAnnounce(camera, &*std::make_unique<VmbFrame_t>(), sizeof(VmbFrame_t)); },
                [] { VmbCaptureEnd(reinterpret_cast<VmbHandle_t>(std::uintptr_t{0x7A00'0000'0000'0010})); },
                [] { Simulator::misuses(); },
                [] {
                    VmbSimLoseFrames(kColourCamera, 1);
                    VmbSimChoose(VmbSimChoiceFrameIdWidth, 1);
                    VmbSimClearMisuse();
                }},
               [] { waitForFrames(30); });
    stream.endCapture();
}

TEST_F(Concurrency, ClosingACameraAndShuttingDownAtOnceIsSafe) {
    for (int round = 0; round < 50; ++round) {
        const VmbHandle_t camera = open();
        std::thread closer([=] { VmbCameraClose(camera); });
        VmbShutdown();
        closer.join();
        ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
    }
}

TEST_F(Concurrency, ASettingThatHasNothingToDoWithItDoesNotMoveTheExposures) {
    const VmbHandle_t camera = openFast();
    setFloat(camera, "AcquisitionFrameRateAbs", 50);
    Stream stream(camera, 8);
    Latch inCallback;
    Latch goOn;
    stream.hook = [&](VmbFrame_t& frame) {
        if (frame.frameID != 2) return;
        inCallback.open();
        goOn.wait();
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    inCallback.wait();
    // The frame thread is busy for some exposures; they are due all the same.
    const std::uint64_t until = VmbSimTime() + 70'000'000;
    while (VmbSimTime() < until) std::this_thread::yield();
    setInt(camera, "GVCPCmdRetries", 4);
    setFloat(camera, "Gain", 3);
    goOn.open();
    waitForFrames(5);
    stream.endCapture();
    const auto frames = stream.received();
    for (const auto& frame : frames) {
        const auto ticks = static_cast<double>(frame.record.timestamp - frames.front().record.timestamp);
        EXPECT_NEAR(ticks, static_cast<double>(frame.record.frameID - 1) * 20e6, 2);
    }
}

}  // namespace
