// Faults that generated sequences of calls found, as the shortest sequences that show them.
#include "plugin_fixture.h"

namespace {

using config_items::ScalarConfigItem;
using config_items::SingleValueConfigItem;
using test_support::PluginTest;

constexpr std::uint32_t kCameras = 4;

/// Four cameras of 640 x 480 pixels in 8 bits, triggered together.
class TriggeredCameras : public PluginTest {
  protected:
    TriggeredCameras() : PluginTest("sixteen-cameras") {
        for (int number = kCameras + 1; number <= 16; ++number) {
            const std::string digits = (number < 10 ? "0" : "") + std::to_string(number);
            VmbSimUnplugCamera(("DEV_000F31B000" + digits).c_str());
        }
        enumerate();
        for (std::uint32_t id = 0; id < kCameras; ++id) {
            EXPECT_TRUE(channel(id)->setItem(config_keys::kCameraExposure, ScalarConfigItem(1000, "")));
            EXPECT_TRUE(channel(id)->setItem(config_keys::kCameraTriggerMode,
                                             SingleValueConfigItem<std::string>("GIGE/TriggerModeAux")));
        }
    }
    std::string validOnes() {
        std::string all;
        for (std::uint32_t id = 0; id < kCameras; ++id) all += text(id, config_keys::kValid);
        return all;
    }
};

// 4 x 640 x 480 bytes: at 100 Hz 122.88 million bytes per second, more than the link has; at 10 Hz a tenth.
TEST_F(TriggeredCameras, AreValidatedWithTheBandwidthThatAllOfThemNeedAtTheNewFrequency) {
    aux().setSyncOutAuxFrequency(10, 1);
    EXPECT_EQ(validOnes(), "1111");
    aux().setSyncOutAuxFrequency(100, 1);
    EXPECT_EQ(validOnes(), "0000");
    aux().setSyncOutAuxFrequency(10, 1);
    EXPECT_EQ(validOnes(), "1111");
}

}  // namespace
