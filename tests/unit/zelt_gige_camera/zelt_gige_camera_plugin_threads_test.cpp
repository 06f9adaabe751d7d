// Several host threads on one plug-in with four cameras, in real time.
#include <atomic>

#include "four_cameras_fixture.h"
#include "latch.h"

namespace {

using config_keys::kCameraExposure;
using config_keys::kCameraExposureAuto;
using config_keys::kCameraFrameSetting;
using config_keys::kCameraGain;
using config_keys::kFrameWidth;
using config_keys::kSampleRate;
using config_keys::kValid;
using test_support::atOnce;
using test_support::cameraId;
using test_support::FourCameras;
using test_support::kCameras;
using test_support::kPatienceMs;
using test_support::repeated;

class SeveralThreads : public FourCameras {
  protected:
    /// One acquisition; a camera that is away fails it.
    void record() {
        try {
            plugin->prepareAcquisition();
            plugin->onAcquisitionPrepared();
            plugin->startAcquisition();
            plugin->processAcquisition();
            plugin->stopAcquisition();
        } catch (const exception_manager::Exception&) {
        } catch (const zelt_gige_api::CameraApiError&) {
        }
        plugin->onAcquisitionFinished();
    }
    /// Reads in the callbacks, as a host does that shows what it is told.
    void listen() {
        for (std::uint32_t id = 0; id < kCameras; ++id) {
            channels[id]->setChangeCallback([this, id](const std::string& key) {
                channels[id]->getItem(key);
                ++told;
            });
            camera(id).setMessageListener([this, id](const exception_manager::Exception&) {
                channels[id]->getItem(kValid);
                ++heard;
            });
        }
    }
    void listenNoMore() {
        for (std::uint32_t id = 0; id < kCameras; ++id) {
            channels[id]->setChangeCallback({});
            // The kept channel: one whose camera was away may have left the plug-in.
            camera(id).setMessageListener({});
        }
    }
    /// One thread's settings for one camera; the last round leaves exposure 1001 and gain 1.
    void change(std::uint32_t id, int i) {
        setNumber(id, kCameraGain, i % 2);
        setNumber(id, kCameraExposure, 1000 + i % 2);
        setNumber(id, kFrameWidth, 320 + 8 * (i % 2));
        setNumber(id, kCameraFrameSetting, 20 + 5 * (i % 2));
        setText(id, kCameraExposureAuto, i % 2 == 0 ? "GIGE/AutoSettingContinuous" : "GIGE/AutoSettingOff");
        setNumber(id, kCameraGain, -1);
    }

    std::atomic<int> told{0};
    std::atomic<int> heard{0};
};

TEST_F(SeveralThreads, UseEverythingAtOnce) {
    listen();
    auto& service = aux();
    const auto changing = [&](std::uint32_t id) {
        return repeated(20, [this, id](int i) { change(id, i); });
    };
    atOnce({changing(0), changing(1), changing(2), changing(3),
            repeated(20,
                     [&](int i) { service.setSyncOutAuxFrequency(i % 2 == 0 ? 0 : 25, i % 2 == 0 ? 0 : 1); }),
            repeated(4, [&](int) { record(); }), repeated(3, [&](int) { turnCable(3); }),
            repeated(20,
                     [&](int i) {
                         readAll(*channels[static_cast<std::size_t>(i) % kCameras]);
                         EXPECT_EQ(plugin->findChannelId(cameraId(1)), 1u);
                         plugin->isReadyForAcquisition();
                         plugin->checkChannelSettings({0, 1, 2, 3}, false);
                     }),
            repeated(2, [&](int) { plugin->enumerateDevices(); })});
    EXPECT_GT(told, 0);
    EXPECT_GT(heard, 0);
    listenNoMore();
    for (std::uint32_t id = 0; id < 3; ++id) EXPECT_EQ(shown(id, kCameraGain), "1") << id;
    // A camera that was away at an enumeration has a new channel by now.
    plugin->enumerateDevices();
    // Opens the camera that was away, if it is not open again yet.
    plugin->prepareAcquisition();
    // A gain out of range that was set while the camera was closed waits for a better one, and a channel that
    // is new has the camera's own exposure, which is too long for its rate.
    EXPECT_TRUE(channel(3)->setItem(kCameraExposure, config_items::ScalarConfigItem(1000, "")));
    EXPECT_TRUE(channel(3)->setItem(kCameraGain, config_items::ScalarConfigItem(1, "")));
    start();
    for (unsigned number = 0; number < kCameras; ++number) {
        EXPECT_EQ(VmbSimWaitForFrames(cameraId(number).c_str(), 1, kPatienceMs), VmbErrorSuccess) << number;
    }
    stop();
}

TEST_F(SeveralThreads, FindChannelsWhileCamerasComeAndGo) {
    atOnce({repeated(5,
                     [&](int) {
                         VmbSimUnplugCamera(cameraId(3).c_str());
                         plugin->enumerateDevices();
                         VmbSimPlugCamera(cameraId(3).c_str());
                         plugin->enumerateDevices();
                     }),
            repeated(2'000, [&](int) {
                EXPECT_EQ(plugin->findChannelId(cameraId(0)), 0u);
                EXPECT_TRUE(plugin->isReadyForAcquisition());
            })});
}

TEST_F(SeveralThreads, SetAndClearTheTriggerFrequency) {
    useTrigger();
    auto& service = aux();
    atOnce({repeated(30, [&](int i) { service.setSyncOutAuxFrequency(i + 1, 2); }),
            repeated(30, [&](int) { service.setSyncOutAuxFrequency(0, 0); }),
            repeated(30, [&](int) { shown(2, kSampleRate); })});
    // Whatever came last, all channels got it last.
    for (std::uint32_t id = 1; id < kCameras; ++id) EXPECT_EQ(shown(id, kSampleRate), shown(0, kSampleRate));
    service.setSyncOutAuxFrequency(50, 1);
    for (std::uint32_t id = 0; id < kCameras; ++id) EXPECT_EQ(shown(id, kSampleRate), "50 fps");
}

// A setter waits in the middle of a vendor call and keeps its channel's mutex meanwhile: preparation and the
// new frequency both have to wait for it, in any order.
TEST_F(SeveralThreads, ChangeTheTriggerFrequencyDuringPreparationAndItIsNotLost) {
    useTrigger();
    auto& service = aux();
    service.setSyncOutAuxFrequency(10, 1);
    for (std::int64_t frequency = 11; frequency < 51; ++frequency) {
        test_support::Latch inSetter(1);
        test_support::Latch twoWait(2);
        std::atomic<bool> isFirst = true;
        api->hook = [&](const std::string& call) {
            if (call != "Gamma" || !isFirst.exchange(false)) return;
            inSetter.count_down();
            twoWait.wait();
            // The two go on to the channel's mutex in no time.
            for (int i = 0; i < 100; ++i) std::this_thread::yield();
        };
        const auto arrive = [&] {
            inSetter.wait();
            twoWait.count_down();
        };
        atOnce({[&] { setNumber(0, config_keys::kCameraGamma, 0.5); },
                [&] {
                    arrive();
                    EXPECT_TRUE(plugin->prepareAcquisition());
                },
                [&] {
                    arrive();
                    service.setSyncOutAuxFrequency(frequency, 1);
                }});
        for (std::uint32_t id = 0; id < kCameras; ++id) {
            ASSERT_EQ(shown(id, kSampleRate), std::to_string(frequency) + " fps") << id;
        }
    }
    api->hook = [](const std::string&) {};
}

TEST_F(SeveralThreads, ValidateTwoChannelsAtTheSameMoment) {
    const auto validating = [&](std::uint32_t id) {
        return repeated(50, [this, id](int i) { setNumber(id, kFrameWidth, 320 + 8 * (i % 2)); });
    };
    atOnce({validating(0), validating(1), repeated(50, [&](int) {
                EXPECT_TRUE(plugin->checkChannelSettings({2, 3}, false));
            })});
    for (std::uint32_t id = 0; id < 2; ++id) EXPECT_EQ(shown(id, kFrameWidth), "328 pixel");
}

}  // namespace
