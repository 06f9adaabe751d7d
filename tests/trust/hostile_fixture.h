/// A plug-in in virtual time on a vendor library that can be made to lie.
#pragma once

#include <string>

#include "hostile_vendor.h"
#include "long_run_fixture.h"

namespace test_support {

inline bool isFeature(const char* name, const char* wanted) {
    return name != nullptr && std::string(name) == wanted;
}

/// No camera is looked for yet.
class HostileTest : public PluginTest {
  protected:
    HostileTest() : PluginTest("two-cameras", /*virtualTime=*/true) { VmbSimUnplugCamera(kColourCamera); }

    /// The integer feature of every camera reads so.
    void lieAbout(const char* feature, VmbInt64_t value) {
        vendor.intGet.instead = [this, feature, value](VmbHandle_t handle, const char* name,
                                                       VmbInt64_t* read) {
            if (!isFeature(name, feature)) return vendor.intGet.honest(handle, name, read);
            *read = value;
            return VmbError_t{VmbErrorSuccess};
        };
    }
    void lieAboutFloat(const char* feature, double value) {
        vendor.floatGet.instead = [this, feature, value](VmbHandle_t handle, const char* name, double* read) {
            if (!isFeature(name, feature)) return vendor.floatGet.honest(handle, name, read);
            *read = value;
            return VmbError_t{VmbErrorSuccess};
        };
    }
    bool isListed(std::uint32_t id) { return plugin->getChannelIds().contains(id); }
    static bool setValue(channel_config::IfChannelConfig& config, const char* key, double value) {
        return config.setItem(key, config_items::ScalarConfigItem(value, ""));
    }
    /// Frames that arrive in a second of 20 per second, after everything was made honest again.
    std::size_t framesOfAnHonestSecond(std::uint32_t id) {
        RecordingSink sink;
        EXPECT_TRUE(setValue(*channel(id), "CAMERA/Exposure", 200));
        EXPECT_TRUE(setValue(*channel(id), config_keys::kCameraFrameSetting, 20));
        plugin->setChannelSink(id, &sink);
        start();
        EXPECT_EQ(VmbSimAdvance(kSecond), VmbErrorSuccess);
        stop();
        plugin->clearChannelSinks();
        return sink.samples().size();
    }

    HostileVendor& vendor = hostileVendor();
    HonestAfterwards honest;
};

/// The monochrome camera alone, found and set as in LongRun.
class HostileRecording : public LongRun {
  protected:
    HostileVendor& vendor = hostileVendor();
    HonestAfterwards honest;
};

}  // namespace test_support
