/// A channel's state and news on a fake camera that has every feature.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_camera_api.h"
#include "zelt_gige_camera_channel_rows.h"
#include "zelt_gige_camera_channel_work.h"

namespace test_support {

/// Everything in a state that reading and writing touches, one line each.
inline std::vector<std::string> inWords(const zelt_gige_camera::ChannelState& state) {
    using namespace zelt_gige_camera;
    std::vector<std::string> words;
    const auto presence = [](Presence of) { return std::to_string(static_cast<int>(of)); };
    for (const NumberRow& row : numberRows()) {
        const NumberValue& value = state.*row.value;
        words.push_back(std::string(row.feature) + (row.selector != nullptr ? row.selector : "") + " " +
                        shortest(value.value) + " from " + shortest(value.min) + " to " +
                        shortest(value.max) + (value.hasRange ? " ranged " : " free ") +
                        presence(value.presence));
    }
    for (const AutoRow& row : autoRows()) {
        const AutoValue& value = state.*row.value;
        words.push_back(row.feature + (" " + value.value) + " " + presence(value.presence));
        words.insert(words.end(), value.entries.begin(), value.entries.end());
    }
    words.push_back("sensor " + shortest(state.sensorWidth) + " x " + shortest(state.sensorHeight));
    words.push_back("format " + state.pixelFormat);
    words.insert(words.end(), state.pixelFormatEntries.begin(), state.pixelFormatEntries.end());
    words.push_back("stream " + std::to_string(state.streamBytesPerSecond));
    words.push_back(state.triggerModeIsAux ? "AUX" : "fixed rate");
    words.push_back("ticks " + std::to_string(state.tickFrequency));
    words.push_back("model " + std::to_string(static_cast<unsigned>(state.modelKind)));
    words.push_back(state.wasOpened ? "opened" : "never opened");
    words.push_back("pending " + state.pending.to_string() + (state.configurationPending ? " all" : ""));
    return words;
}

/// No two features have the same value or range, so that none can be taken for another.
inline void addEveryFeature(FakeCameraApi& camera) {
    using Type = zelt_gige_api::FeatureType;
    const std::vector<std::string> autoEntries{"Off", "Once", "Continuous"};
    camera.number("OffsetX", Type::Int, 8);
    camera.number("OffsetY", Type::Int, 4);
    camera.number("Width", Type::Int, 640, 16, 650);
    camera.number("Height", Type::Int, 480, 12, 490);
    camera.number("WidthMax", Type::Int, 656);
    camera.number("HeightMax", Type::Int, 492);
    camera.number("AcquisitionFrameRateAbs", Type::Float, 25, 0.5, 90);
    camera.number("StreamBytesPerSecond", Type::Int, 115'000'000);
    camera.number("ExposureTimeAbs", Type::Float, 15'000, 30, 6e7);
    camera.number("ExposureAutoMax", Type::Int, 500'000);
    camera.number("Gain", Type::Float, 2.5, 0, 32);
    camera.number("GainAutoAdjustTol", Type::Int, 5, 1, 50);
    camera.number("GainAutoRate", Type::Int, 99, 2, 100);
    camera.number("Gamma", Type::Float, 0.75, 0.45, 1);
    camera.number("Hue", Type::Float, 10, -40, 41);
    camera.number("Saturation", Type::Float, 1.25, 0.1, 2);
    camera.text("BalanceRatioSelector", Type::Enum, "Red", {"Red", "Blue"});
    camera.number("BalanceRatioAbs[Red]", Type::Float, 1.5, 0.8, 3);
    camera.number("BalanceRatioAbs[Blue]", Type::Float, 1.75, 0.9, 3.5);
    camera.text("ExposureAuto", Type::Enum, "Off", autoEntries);
    camera.text("GainAuto", Type::Enum, "Once", {"Off", "Once"});
    camera.text("BalanceWhiteAuto", Type::Enum, "Continuous", {"Continuous", "Off"});
    camera.text("ExposureMode", Type::Enum, "External", {"Timed", "External"});
    camera.text("TriggerMode", Type::Enum, "Off", {"Off", "On"});
    camera.text("TriggerSource", Type::Enum, "Freerun", {"Freerun", "Line1", "FixedRate"});
    camera.text("PixelFormat", Type::Enum, "Mono8", {"Mono8", "RGB8Packed", "YUV422Packed"});
    camera.number("GevTimestampTickFrequency", Type::Int, 79'861'111);
    camera.text("DeviceModelName", Type::String, "Manta_G-032C");
}

class OnFakeCamera : public ::testing::Test {
  protected:
    using Setting = zelt_gige_camera::Setting;
    using Presence = zelt_gige_camera::Presence;

    OnFakeCamera() { addEveryFeature(camera); }

    /// The calls that `action` makes.
    std::vector<std::string> callsOf(const std::function<void()>& action) {
        camera.calls.clear();
        action();
        return camera.calls;
    }
    /// What the failure of `action` says.
    static std::string failureOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const std::exception& error) {
            return error.what();
        }
        return "nothing was thrown";
    }
    bool isPending(Setting setting) const { return contains(state.pending, setting); }

    FakeCameraApi camera;
    zelt_gige_camera::ChannelState state;
    zelt_gige_camera::ChannelNews news;
    zelt_gige_camera::ChannelWork work{camera, 7, state, news};
};

}  // namespace test_support
