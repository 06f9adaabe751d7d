/// Four cameras of 640 x 480 pixels at 50 Hz in real time, for tests of what happens at once.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "forwarding_camera_api.h"
#include "latch.h"
#include "plugin_fixture.h"
#include "zelt_gige_camera_plugin.h"
#include "zelt_gige_vmb_api.h"

namespace test_support {

inline constexpr std::uint32_t kCameras = 4;

inline std::string cameraId(unsigned number) {
    return "DEV_000F31B000" + std::string(number < 9 ? "0" : "") + std::to_string(number + 1);
}

/// Runs each job on a thread of its own, all from the same moment on; returns when all have ended.
inline void atOnce(const std::vector<std::function<void()>>& jobs) {
    test_support::Latch begin(static_cast<std::ptrdiff_t>(jobs.size()));
    std::vector<std::jthread> threads;
    for (const auto& job : jobs) {
        threads.emplace_back([&begin, &job] {
            begin.arrive_and_wait();
            job();
        });
    }
}

/// Calls `job` so many times; for the jobs of atOnce.
inline std::function<void()> repeated(int times, std::function<void(int)> job) {
    return [times, job = std::move(job)] {
        for (int i = 0; i < times; ++i) job(i);
    };
}

/// Calls `hook` with the name of a call ahead of some calls of the camera layer.
class HookedCameraApi final : public ForwardingCameraApi {
  public:
    using ForwardingCameraApi::ForwardingCameraApi;
    std::function<void(const std::string& call)> hook = [](const std::string&) {};

    Handle openCamera(const Text& id) override {
        hook("openCamera");
        return ForwardingCameraApi::openCamera(id);
    }
    void closeCamera(Handle handle) override {
        hook("closeCamera");
        ForwardingCameraApi::closeCamera(handle);
    }
    void registerCameraCallback(Handle handle, zelt_gige_api::IfCameraCallback* callback) override {
        hook("registerCameraCallback");
        ForwardingCameraApi::registerCameraCallback(handle, callback);
    }
    void unregisterCameraCallback(Handle handle) override {
        hook("unregisterCameraCallback");
        ForwardingCameraApi::unregisterCameraCallback(handle);
    }
    void startCapture(Handle handle, unsigned frames) override {
        hook("startCapture");
        ForwardingCameraApi::startCapture(handle, frames);
    }
    void endCapture(Handle handle) override {
        hook("endCapture");
        ForwardingCameraApi::endCapture(handle);
    }
    void runCommand(Handle handle, const char* name) override {
        hook(name);
        ForwardingCameraApi::runCommand(handle, name);
    }
    void setFloatFeature(Handle handle, const char* name, double value) override {
        hook(name);
        ForwardingCameraApi::setFloatFeature(handle, name, value);
    }
};

class FourCameras : public PluginTest {
  protected:
    FourCameras() : PluginTest("sixteen-cameras") {
        VmbSimSetWatchdog(kPatienceMs);
        for (unsigned number = kCameras; number < 16; ++number) {
            VmbSimUnplugCamera(cameraId(number).c_str());
        }
        destroy();
        api->startup();
        plugin = new zelt_gige_camera::CameraPlugin(0, api);
        wantFrameCounters(true);
        enumerate();
        for (std::uint32_t id = 0; id < kCameras; ++id) {
            channels.push_back(channel(id));
            EXPECT_TRUE(setNumber(id, config_keys::kCameraExposure, 1000));
            EXPECT_TRUE(setNumber(id, config_keys::kCameraFrameSetting, 50));
        }
    }
    ~FourCameras() override {
        channels.clear();
        destroy();
        VmbSimSetWatchdog(0);
    }
    bool setNumber(std::uint32_t id, const char* key, double value) {
        return channels[id]->setItem(key, config_items::ScalarConfigItem(value, ""));
    }
    bool setText(std::uint32_t id, const char* key, const std::string& value) {
        return channels[id]->setItem(key, config_items::SingleValueConfigItem<std::string>(value));
    }
    void useTrigger() {
        for (std::uint32_t id = 0; id < kCameras; ++id) {
            EXPECT_TRUE(setText(id, config_keys::kCameraTriggerMode, "GIGE/TriggerModeAux"));
        }
    }
    void turnCable(unsigned number) {
        VmbSimUnplugCamera(cameraId(number).c_str());
        EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
        VmbSimPlugCamera(cameraId(number).c_str());
        EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    }
    std::string shown(std::uint32_t id, const char* key) {
        return config_items::asItem(channels[id]->getItem(key)).toString();
    }
    /// Everything that a host may ask of a channel.
    static void readAll(channel_config::IfChannelConfig& channel) {
        for (const std::string& key : channel.getKeys()) {
            channel.getItem(key);
            channel.getConstraints(key);
        }
    }
    zelt_gige_camera::CameraChannel& camera(std::uint32_t id) {
        return dynamic_cast<zelt_gige_camera::CameraChannel&>(*channels[id]);
    }

    const std::shared_ptr<HookedCameraApi> api =
        std::make_shared<HookedCameraApi>(std::make_shared<zelt_gige_api::VimbaCameraApi>());
    std::vector<std::shared_ptr<channel_config::IfChannelConfig>> channels;
};

}  // namespace test_support
