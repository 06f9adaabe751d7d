// Clients and tests that use everything at once, in real time: for the thread sanitizer.
#include <thread>

#include "simulator_fixture.h"

namespace {

using test_support::Door;
using test_support::eventually;
using test_support::floatOf;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::Simulator;
using test_support::Stream;
using test_support::StreamTest;

using Concurrency = StreamTest;

/// Calls each of the bodies `rounds` times, on a thread of its own.
void atOnce(const std::vector<std::function<void()>>& bodies, int rounds) {
    std::vector<std::thread> threads;
    for (const auto& body : bodies) {
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) body();
        });
    }
    for (std::thread& thread : threads) thread.join();
}

TEST_F(Concurrency, TheLineMayBeDrivenAndDisturbedWhileItTriggers) {
    const VmbHandle_t camera = openFast();
    setInt(camera, "Width", 64);
    setInt(camera, "Height", 16);
    setFloat(camera, "ExposureTimeAbs", 30);
    setEnum(camera, "TriggerMode", "On");
    setEnum(camera, "TriggerSource", "Line1");
    const VmbSimOscillator oscillator{1'000'000'000, 0, 0, 0, 1, 5};
    ASSERT_EQ(VmbSimSetOscillator(kColourCamera, &oscillator), VmbErrorSuccess);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    atOnce({[] {
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
           200);
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
        // Refused when this thread came late.
        if (VmbSimPulseLine(nullptr, &at, 1, 1'000) != VmbErrorSuccess) continue;
        while (VmbSimTime() + 1'000 < at) continue;
        EXPECT_EQ(VmbSimSilenceLine(nullptr), VmbErrorSuccess);
    }
    stream.endCapture();
}

TEST_F(Concurrency, FaultsLightClocksAndMisuseMayBeUsedWhileFramesCome) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "ExposureAuto", "Continuous");
    const VmbHandle_t closed = open(kMonochromeCamera);
    ASSERT_EQ(VmbCameraClose(closed), VmbErrorSuccess);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    int brightness = 0;
    atOnce({[&] {
                const VmbSimScene scene{static_cast<double>(10 + brightness++ % 10), 1, 1};
                VmbSimSetScene(kColourCamera, &scene);
            },
            [] {
                const VmbSimOscillator oscillator{1'000'000, 0, 0, 0, 1, 5};
                VmbSimSetOscillator(kMonochromeCamera, &oscillator);
            },
            [] {
                VmbSimCableDuring(kMonochromeCamera, false, "VmbCameraOpen", "nobody", 1);
                VmbSimFailCall("VmbCameraOpen", "somebody", 1, VmbErrorOther);
                VmbHandle_t nobody = nullptr;
                VmbCameraOpen("nobody", VmbAccessModeFull, &nobody);
            },
            [] { VmbSimClearFaults(); },
            [=] { VmbFrameAnnounce(camera, &*std::make_unique<VmbFrame_t>(), sizeof(VmbFrame_t)); },
            [=] { VmbCaptureEnd(closed); }, [=] { VmbCaptureEnd(closed); }, [] { Simulator::misuses(); },
            [] {
                VmbSimBreakFrames(kColourCamera, 1, VmbFrameStatusIncomplete);
                VmbSimChoose(VmbSimChoiceFrameIdWidth, 1);
                VmbSimClearMisuse();
            }},
           1'000);
    stream.endCapture();
}

TEST_F(Concurrency, ClosingACameraAndShuttingDownBothWaitForItsCallback) {
    const VmbHandle_t camera = openFast();
    Door inCallback;
    Door goOn;
    Stream stream(camera);
    stream.requeue = false;
    stream.hook = [&](VmbFrame_t&) {
        inCallback.open();
        goOn.wait();
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    inCallback.wait();
    std::thread closer([=] { EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess); });
    EXPECT_TRUE(eventually([=] { return VmbCaptureStart(camera) == VmbErrorBadHandle; }));
    std::thread stopper([] { VmbShutdown(); });
    VmbUint32_t found = 0;
    EXPECT_TRUE(eventually([&] { return VmbCamerasList(nullptr, 0, &found, 0) == VmbErrorApiNotStarted; }));
    goOn.open();
    closer.join();
    stopper.join();
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
}

/// Frames of 50 hertz; while the frame thread is kept busy for some exposures, `change` is made.
std::vector<test_support::ReceivedFrame> framesAcrossAChange(VmbHandle_t camera,
                                                             const std::function<void()>& change) {
    setFloat(camera, "AcquisitionFrameRateAbs", 50);
    Stream stream(camera, 8);
    Door inCallback;
    Door goOn;
    stream.hook = [&](VmbFrame_t& frame) {
        if (frame.frameID != 2) return;
        inCallback.open();
        goOn.wait();
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    inCallback.wait();
    const std::uint64_t until = VmbSimTime() + 90'000'000;
    while (VmbSimTime() < until) std::this_thread::yield();
    change();
    goOn.open();
    EXPECT_EQ(VmbSimWaitForFrames(kColourCamera, 5, test_support::kPatienceMs), VmbErrorSuccess);
    stream.endCapture();
    return stream.received();
}

TEST_F(Concurrency, ASettingThatHasNothingToDoWithItDoesNotMoveTheExposures) {
    const VmbHandle_t camera = openFast();
    const auto frames = framesAcrossAChange(camera, [=] {
        setInt(camera, "GVCPCmdRetries", 4);
        setFloat(camera, "Gain", 3);
    });
    for (const auto& frame : frames) {
        const auto ticks = static_cast<double>(frame.record.timestamp - frames.front().record.timestamp);
        EXPECT_NEAR(ticks, static_cast<double>(frame.record.frameID - 1) * 20e6, 2);
    }
}

TEST_F(Concurrency, ExposuresThatWereDueBeforeASettingHappenThoughTheThreadIsLate) {
    const VmbHandle_t camera = openFast();
    const auto frames = framesAcrossAChange(camera, [=] { setFloat(camera, "AcquisitionFrameRateAbs", 25); });
    for (std::size_t i = 1; i < frames.size(); ++i) {
        const auto ids = static_cast<double>(frames[i].record.frameID - frames[i - 1].record.frameID);
        const auto ticks = static_cast<double>(frames[i].record.timestamp - frames[i - 1].record.timestamp);
        EXPECT_GE(ticks / ids, 20e6 - 2);
        EXPECT_LE(ticks / ids, 40e6 + 2);
    }
}

}  // namespace
