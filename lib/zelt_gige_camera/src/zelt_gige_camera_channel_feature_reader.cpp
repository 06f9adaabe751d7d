#include "zelt_gige_camera_channel_feature_reader.h"

#include <algorithm>

#include "assertion.h"
#include "config_keys.h"
#include "zelt_gige_fourcc.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

using zelt_gige_api::CameraApi;
using zelt_gige_api::CameraApiError;
using zelt_gige_api::CameraHandle;
using zelt_gige_api::FeatureType;

constexpr const char* kSourcePath = "lib/zelt_gige_camera/src/zelt_gige_camera_channel_feature_reader";

/// The trigger input that the host's pulses come in on.
constexpr const char* kAuxLine = "Line1";

const char* typeText(FeatureType type) {
    switch (type) {
        case FeatureType::Bool:
            return "Bool";
        case FeatureType::Int:
            return "Int64";
        case FeatureType::Float:
            return "Float64";
        case FeatureType::String:
            return "String";
        case FeatureType::Enum:
            return "Enum";
        case FeatureType::Command:
            return "Command";
        default:
            return "Unknown";
    }
}

/// Features that the channel's settings show, in the order in which they are read.
void readValues(CameraApi& api, CameraHandle camera, ChannelState& state) {
    state.frameOffsetX = static_cast<std::uint32_t>(api.getOffsetX(camera));
    state.frameOffsetY = static_cast<std::uint32_t>(api.getOffsetY(camera));
    state.frameWidth = static_cast<std::uint32_t>(api.getWidth(camera));
    state.frameHeight = static_cast<std::uint32_t>(api.getHeight(camera));
    state.frameRate = api.getFloatFeature(camera, "AcquisitionFrameRateAbs");
    state.streamBytesPerSecond = api.getIntFeature(camera, "StreamBytesPerSecond");
    state.triggerModeIsAux = api.getEnumFeature(camera, "TriggerSource") == kAuxLine;
    state.pixelFormatEntries = api.getEnumFeatureRange(camera, "PixelFormat");
}

std::vector<std::string> changedKeys(const ChannelState& before, const ChannelState& after) {
    std::vector<std::string> keys;
    const auto compare = [&keys](const auto& a, const auto& b, const char* key) {
        if (a != b) keys.emplace_back(key);
    };
    compare(before.frameOffsetX, after.frameOffsetX, config_keys::kFrameOffsetX);
    compare(before.frameOffsetY, after.frameOffsetY, config_keys::kFrameOffsetY);
    compare(before.frameWidth, after.frameWidth, config_keys::kFrameWidth);
    compare(before.frameHeight, after.frameHeight, config_keys::kFrameHeight);
    compare(before.pixelFormatEntries, after.pixelFormatEntries, config_keys::kFrameFormat);
    if (before.frameRate != after.frameRate || before.triggerModeIsAux != after.triggerModeIsAux) {
        keys.emplace_back(config_keys::kCameraFrameSetting);
        keys.emplace_back(config_keys::kSampleRate);
    }
    return keys;
}

/// The camera's current format does not count: the channel uses the best one that it can pass on.
void chooseFrameFormat(ChannelState& state) {
    const auto& entries = state.pixelFormatEntries;
    state.pixelFormat.clear();
    state.frameFormat.clear();
    for (const PixelFormatName& name : pixelFormatNames()) {
        if (std::find(entries.begin(), entries.end(), name.cameraEntry) == entries.end()) continue;
        state.pixelFormat = name.cameraEntry;
        state.frameFormat = name.fourCc;
        break;
    }
    state.formatPending = !state.pixelFormat.empty();
    ZELT_ASSERT_AS(state.formatPending, "frame_format_found", kSourcePath);
}

}  // namespace

std::vector<std::string> readCaches(CameraApi& api, CameraHandle camera, ChannelState& state) {
    ChannelState fresh = state;
    readValues(api, camera, fresh);
    std::vector<std::string> changed = changedKeys(state, fresh);
    state = std::move(fresh);
    return changed;
}

void readConfiguration(CameraApi& api, CameraHandle camera, const std::string& cameraName,
                       ChannelState& state) {
    state.tickFrequency = api.getIntFeature(camera, "GevTimestampTickFrequency");
    state.pixelFormatEntries = api.getEnumFeatureRange(camera, "PixelFormat");
    chooseFrameFormat(state);
    state.frameRate = api.getFloatFeature(camera, "AcquisitionFrameRateAbs");
    api.getEnumFeature(camera, "TriggerMode");
    state.triggerModeIsAux = api.getEnumFeature(camera, "TriggerSource") == kAuxLine;
    try {
        state.modelKind = zelt_gige_api::cameraModelKind(api.getDeviceModelName(camera));
    } catch (const CameraApiError& error) {
        state.modelKind = zelt_gige_api::CameraModelKind::Other;
        GIGE_LOG(Warning) << "Camera " << cameraName << " model name unreadable: " << error.what();
    }
}

void dumpFeatures(CameraApi& api, CameraHandle camera) {
    try {
        for (const zelt_gige_api::FeatureInfo& feature : api.listFeatures(camera)) {
            GIGE_LOG(Debug) << "feature: " << feature.name << " Type: " << typeText(feature.type);
        }
    } catch (const CameraApiError& error) {
        GIGE_LOG(Error) << "Cannot gather camera features. Error: " << error.what();
    }
}

}  // namespace zelt_gige_camera
