// Frames and events of four cameras, two of them triggered, while everything else happens at once.
#include <array>
#include <atomic>

#include "four_cameras_fixture.h"

namespace {

using test_support::atOnce;
using test_support::cameraId;
using test_support::FourCameras;
using test_support::kCameras;
using test_support::kPatienceMs;
using test_support::repeated;

constexpr std::uint32_t kLast = kCameras - 1;

/// Three channels a camera: pictures, sent, received.
constexpr std::uint32_t pictures(std::uint32_t camera) {
    return camera;
}
constexpr std::uint32_t sent(std::uint32_t camera) {
    return 0x00010000 | camera;
}
constexpr std::uint32_t received(std::uint32_t camera) {
    return 0x00020000 | camera;
}

class CountingSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t, const void*, std::uint64_t) override { ++samples; }
    std::atomic<int> samples{0};
};

class FramesAmongThreads : public FourCameras {
  protected:
    FramesAmongThreads() {
        for (const std::uint32_t id : {2u, 3u}) {
            EXPECT_TRUE(setText(id, config_keys::kCameraTriggerMode, "GIGE/TriggerModeAux"));
        }
        aux().setSyncOutAuxFrequency(50, 1);
        const VmbSimRhythm rhythm{50, 1, 1'000'000, 1'000'000, 0};
        EXPECT_EQ(VmbSimDriveLine(nullptr, &rhythm), VmbErrorSuccess);
        setSinks();
    }
    ~FramesAmongThreads() override { plugin->clearChannelSinks(); }

    void setSinks() {
        for (std::uint32_t camera = 0; camera < kCameras; ++camera) {
            plugin->setChannelSink(pictures(camera), &sinks[camera][0]);
            plugin->setChannelSink(sent(camera), &sinks[camera][1]);
            plugin->setChannelSink(received(camera), &sinks[camera][2]);
        }
    }
    void waitForFrames(std::uint32_t camera, std::uint64_t count) {
        EXPECT_EQ(VmbSimWaitForFrames(cameraId(camera).c_str(), count, kPatienceMs), VmbErrorSuccess)
            << camera;
    }
    void stopAlthoughACameraWasAway() {
        try {
            plugin->stopAcquisition();
        } catch (const zelt_gige_api::CameraApiError&) {
            // The one whose cable was turned.
        }
        plugin->onAcquisitionFinished();
    }

    std::array<std::array<CountingSink, 3>, kCameras> sinks;
};

TEST_F(FramesAmongThreads, AreDeliveredAndCountedWhileEverythingElseHappens) {
    auto& service = aux();
    for (int acquisition = 0; acquisition < 2; ++acquisition) {
        start();
        atOnce({repeated(30,
                         [&](int i) {
                             setNumber(0, config_keys::kCameraGain, i % 2);
                             setNumber(1, config_keys::kCameraExposure, 1000 + i % 2);
                             setNumber(2, config_keys::kCameraGamma, 0.5 + 0.5 * (i % 2));
                         }),
                repeated(30,
                         [&](int i) {
                             service.setSyncOutAuxFrequency(i % 3 == 0 ? 0 : 25 * (i % 3),
                                                            i % 3 == 0 ? 0 : 1);
                         }),
                repeated(10,
                         [&](int) {
                             plugin->clearChannelSinks();
                             setSinks();
                         }),
                repeated(20,
                         [&](int i) {
                             use(sent(static_cast<std::uint32_t>(i) % kCameras), i % 2 != 0);
                             for (const std::uint32_t id : plugin->getChannelIds()) {
                                 readAll(*plugin->getChannelConfig(id));
                             }
                             EXPECT_TRUE(plugin->processAcquisition());
                         }),
                repeated(20,
                         [&](int) {
                             plugin->setSharedAcquisitionObject(std::make_shared<test_support::TestClock>());
                         }),
                [&] { turnCable(kLast); },
                [&] {
                    for (std::uint32_t camera = 0; camera < kLast; ++camera) waitForFrames(camera, 25);
                }});
        stopAlthoughACameraWasAway();
        service.setSyncOutAuxFrequency(50, 1);
    }
    for (std::uint32_t camera = 0; camera < kLast; ++camera) {
        EXPECT_GT(sinks[camera][0].samples, 0) << camera;
        EXPECT_GT(sinks[camera][2].samples, 0) << camera;
    }
    // The camera that was away is there again as well.
    for (auto& camera : sinks) {
        for (CountingSink& sink : camera) sink.samples = 0;
    }
    for (std::uint32_t camera = 0; camera < kCameras; ++camera) use(sent(camera), true);
    start();
    for (std::uint32_t camera = 0; camera < kCameras; ++camera) waitForFrames(camera, 3);
    stop();
    for (auto& camera : sinks) {
        EXPECT_GT(camera[0].samples, 0);
        // Every delivered picture was counted twice.
        EXPECT_EQ(camera[1].samples, camera[0].samples);
        EXPECT_EQ(camera[2].samples, camera[0].samples);
    }
}

}  // namespace
