#include "zelt_gige_camera_channel_settings.h"

#include <array>
#include <utility>

#include "channel_config_constraints.h"
#include "config_item_variant.h"
#include "config_keys.h"

namespace zelt_gige_camera {
namespace {

using config_items::ConfigItemVariant;
using config_items::InvalidConfigItem;
using config_items::ScalarConfigItem;
using zelt::plugin_util::ChannelConfigOption;
using zelt::plugin_util::ChannelUsedOption;
using zelt::plugin_util::constantOption;
using zelt::plugin_util::GenericOption;
using zelt::plugin_util::readOnlyTextOption;

using Options = std::vector<std::shared_ptr<ChannelConfigOption>>;

constexpr const char* kFramesPerSecond = "fps";
constexpr const char* kPixels = "pixel";

struct GeometryRow {
    const char* key;
    std::uint32_t ChannelState::*value;
};

constexpr std::array<GeometryRow, 4> kGeometry{{
    {config_keys::kFrameOffsetX, &ChannelState::frameOffsetX},
    {config_keys::kFrameOffsetY, &ChannelState::frameOffsetY},
    {config_keys::kFrameWidth, &ChannelState::frameWidth},
    {config_keys::kFrameHeight, &ChannelState::frameHeight},
}};

ChannelConfigOption::Constraints readOnly() {
    return {std::make_shared<channel_config::ReadOnlyConstraint>(true)};
}

/// A setting that shows what `get` reads from the state.
template <typename T, typename Get>
std::shared_ptr<ChannelConfigOption> shown(const char* key, GuardedState& state, Get get) {
    typename GenericOption<T>::Callables callables;
    callables.get = [&state, get]() -> T {
        const platform::MutexLock lock(state.mutex);
        return get(state.values);
    };
    callables.getConstraints = &readOnly;
    return std::make_shared<GenericOption<T>>(key, std::move(callables));
}

/// In triggered mode the rate is the AUX frequency; without one there is no value to show.
ConfigItemVariant frameRateItem(const ChannelState& state) {
    if (state.triggerModeIsAux) return InvalidConfigItem();
    return ScalarConfigItem(state.frameRate, kFramesPerSecond);
}

void addCameraSettings(Options& options, const ChannelIdentity& identity, GuardedState& state) {
    for (const GeometryRow& row : kGeometry) {
        options.push_back(shown<ScalarConfigItem>(row.key, state, [value = row.value](const ChannelState& s) {
            return ScalarConfigItem(s.*value, kPixels);
        }));
    }
    options.push_back(constantOption<std::string>(config_keys::kPixelAspectRatio, "1"));
    options.push_back(shown<std::string>(config_keys::kFrameFormat, state,
                                         [](const ChannelState& s) { return s.frameFormat; }));
    options.push_back(
        constantOption<std::string>(config_keys::kIdCameraChannelIndex, std::to_string(identity.id.second)));
    options.push_back(constantOption<std::string>(config_keys::kCameraType, "GigE"));
    options.push_back(shown<ConfigItemVariant>(config_keys::kCameraFrameSetting, state, &frameRateItem));
}

}  // namespace

Options makeChannelOptions(const ChannelIdentity& identity, GuardedState& state, std::atomic<bool>& used,
                           std::function<void(bool)> onUsedChanged) {
    Options options;
    addCameraSettings(options, identity, state);
    options.push_back(readOnlyTextOption(config_keys::kDefaultName, identity.name));
    options.push_back(readOnlyTextOption(config_keys::kShortId, identity.cameraId));
    options.push_back(readOnlyTextOption(config_keys::kAdditionalChannelInfo2, identity.path));
    options.push_back(constantOption(config_keys::kChannelType, channel_config::DAQChannelType::Video));
    options.push_back(
        constantOption(config_keys::kSampleUpdateType, channel_config::SampleOccurrenceType::Asynchronous));
    options.push_back(
        constantOption(config_keys::kSampleResolution, channel_config::DAQSampleResolution::Video));
    options.push_back(
        std::make_shared<ChannelUsedOption>(config_keys::kUsed, used, false, std::move(onUsedChanged)));
    options.push_back(
        shown<bool>(config_keys::kValid, state, [](const ChannelState& s) { return !s.captureFailed; }));
    options.push_back(shown<ConfigItemVariant>(config_keys::kSampleRate, state, &frameRateItem));
    return options;
}

}  // namespace zelt_gige_camera
