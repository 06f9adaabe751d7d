#include "zelt_gige_camera_channel_settings.h"

#include <algorithm>
#include <utility>

#include "channel_config_constraints.h"
#include "config_item_variant.h"
#include "config_keys.h"
#include "zelt_gige_camera_channel_rows.h"
#include "zelt_gige_camera_channel_setting_constraints.h"
#include "zelt_gige_camera_channel_value_maps.h"

namespace zelt_gige_camera {
namespace {

using config_items::ConfigItemVariant;
using config_items::InvalidConfigItem;
using config_items::RationalScalarConfigItem;
using config_items::ScalarConfigItem;
using zelt::plugin_util::ChannelConfigOption;
using zelt::plugin_util::ChannelUsedOption;
using zelt::plugin_util::constantOption;
using zelt::plugin_util::GenericOption;
using zelt::plugin_util::readOnlyTextOption;

/// Makes the options that depend on the channel's state.
class OptionMaker {
  public:
    OptionMaker(GuardedState& state, SettingActions actions)
        : m_state(state), m_actions(std::move(actions)) {}

    void number(const NumberRow& row);
    void automatic(const AutoRow& row);
    void triggerMode();
    void frameFormat();
    void action(const AutoRow& row);
    void frameSetting();
    /// A setting that shows what `get` reads from the state.
    template <class T, class Get>
    void shown(const char* key, Get get);
    void add(std::shared_ptr<ChannelConfigOption> option) { m_options.push_back(std::move(option)); }
    std::vector<std::shared_ptr<ChannelConfigOption>> take() { return std::move(m_options); }

  private:
    /// A callable that gives what `get` reads from the state.
    template <class Get>
    auto reading(Get get) const {
        return [&state = m_state, get] {
            const platform::MutexLock lock(state.mutex);
            return get(state.values);
        };
    }
    template <class T>
    void add(const char* key, typename GenericOption<T>::Callables callables) {
        m_options.push_back(std::make_shared<GenericOption<T>>(key, std::move(callables)));
    }

    GuardedState& m_state;
    const SettingActions m_actions;
    std::vector<std::shared_ptr<ChannelConfigOption>> m_options;
};

void OptionMaker::number(const NumberRow& row) {
    GenericOption<ScalarConfigItem>::Callables callables;
    callables.isAvailable =
        reading([&row](const ChannelState& s) { return (s.*row.value).presence == Presence::Present; });
    callables.get =
        reading([&row](const ChannelState& s) { return ScalarConfigItem((s.*row.value).value, row.unit); });
    callables.set = [set = m_actions.set, &row](const ScalarConfigItem& item) {
        return set(row.setting, item.m_value);
    };
    callables.getConstraints = reading([&row](const ChannelState& s) { return numberConstraints(s, row); });
    add<ScalarConfigItem>(row.key, std::move(callables));
}

void OptionMaker::automatic(const AutoRow& row) {
    GenericOption<std::string>::Callables callables;
    callables.isAvailable =
        reading([&row](const ChannelState& s) { return (s.*row.value).presence == Presence::Present; });
    callables.get =
        reading([&row](const ChannelState& s) { return autoSettingFromCamera((s.*row.value).value); });
    callables.set = [set = m_actions.set, &row](const std::string& text) { return set(row.setting, text); };
    callables.getConstraints = reading([&row](const ChannelState& s) {
        return choiceConstraints(autoSettingChoices((s.*row.value).entries));
    });
    add<std::string>(row.key, std::move(callables));
}

void OptionMaker::triggerMode() {
    GenericOption<std::string>::Callables callables;
    callables.get = reading([](const ChannelState& s) { return triggerModeToHost(s.triggerModeIsAux); });
    callables.set = [set = m_actions.set](const std::string& text) {
        return set(Setting::TriggerMode, text);
    };
    callables.getConstraints = [] { return choiceConstraints(triggerModeChoices()); };
    add<std::string>(config_keys::kCameraTriggerMode, std::move(callables));
}

void OptionMaker::frameFormat() {
    GenericOption<std::string>::Callables callables;
    callables.get = reading([](const ChannelState& s) { return s.frameFormat(); });
    callables.set = [set = m_actions.set](const std::string& text) {
        return set(Setting::FrameFormat, text);
    };
    callables.getConstraints = reading(
        [](const ChannelState& s) { return choiceConstraints(frameFormatChoices(s.pixelFormatEntries)); });
    add<std::string>(config_keys::kFrameFormat, std::move(callables));
}

void OptionMaker::action(const AutoRow& row) {
    GenericOption<bool>::Callables callables;
    callables.isAvailable = reading([&row](const ChannelState& s) {
        const AutoValue& function = s.*row.value;
        const auto& entries = function.entries;
        return function.presence == Presence::Present &&
               std::find(entries.begin(), entries.end(), "Once") != entries.end();
    });
    callables.get = [] { return false; };
    callables.set = [runOnce = m_actions.runOnce, &row](bool) { return runOnce(row.setting); };
    add<bool>(row.actionKey, std::move(callables));
}

/// In triggered mode the rate is the AUX frequency; without one there is no value to show.
ConfigItemVariant frameRateItem(const ChannelState& state) {
    const NumberRow& row = numberRow(Setting::FrameRate);
    if (!state.triggerModeIsAux) return ScalarConfigItem(state.frameRate.value, row.unit);
    if (!state.auxFrequency) return InvalidConfigItem();
    return RationalScalarConfigItem(state.auxFrequency->numerator(), state.auxFrequency->denominator(),
                                    row.unit);
}

void OptionMaker::frameSetting() {
    GenericOption<ConfigItemVariant>::Callables callables;
    callables.get = reading(&frameRateItem);
    callables.set = [set = m_actions.set](const ConfigItemVariant& item) {
        const auto* const rate = boost::get<ScalarConfigItem>(&item);
        return rate != nullptr && set(Setting::FrameRate, rate->m_value);
    };
    callables.getConstraints =
        reading([](const ChannelState& s) { return numberConstraints(s, numberRow(Setting::FrameRate)); });
    add<ConfigItemVariant>(config_keys::kCameraFrameSetting, std::move(callables));
}

template <class T, class Get>
void OptionMaker::shown(const char* key, Get get) {
    typename GenericOption<T>::Callables callables;
    callables.get = reading(get);
    callables.getConstraints = &readOnlyConstraints;
    add<T>(key, std::move(callables));
}

void addCameraSettings(OptionMaker& maker, const ChannelIdentity& identity) {
    const auto numbers = [&](std::initializer_list<Setting> settings) {
        for (const Setting setting : settings) maker.number(numberRow(setting));
    };
    numbers({Setting::FrameOffsetX, Setting::FrameOffsetY, Setting::FrameWidth, Setting::FrameHeight,
             Setting::Exposure});
    maker.automatic(autoRow(Setting::ExposureAuto));
    numbers({Setting::Gain, Setting::GainAutoAdjustTol, Setting::GainAutoRate});
    maker.automatic(autoRow(Setting::GainAuto));
    numbers({Setting::Gamma, Setting::Hue, Setting::Saturation});
    maker.automatic(autoRow(Setting::WhitebalanceAuto));
    numbers({Setting::WhitebalanceRed, Setting::WhitebalanceBlue});
    maker.triggerMode();
    maker.add(constantOption<std::string>(config_keys::kPixelAspectRatio, "1"));
    maker.frameFormat();
    for (const Setting setting : {Setting::GainAuto, Setting::ExposureAuto, Setting::WhitebalanceAuto}) {
        maker.action(autoRow(setting));
    }
    maker.add(
        constantOption<std::string>(config_keys::kIdCameraChannelIndex, std::to_string(identity.id.second)));
    maker.add(constantOption<std::string>(config_keys::kCameraType, "GigE"));
    maker.frameSetting();
}

void addGenericSettings(OptionMaker& maker, const ChannelIdentity& identity) {
    maker.add(readOnlyTextOption(config_keys::kDefaultName, identity.name));
    maker.add(readOnlyTextOption(config_keys::kShortId, identity.cameraId));
    maker.add(readOnlyTextOption(config_keys::kAdditionalChannelInfo2, identity.path));
    maker.add(constantOption(config_keys::kChannelType, channel_config::DAQChannelType::Video));
    maker.add(
        constantOption(config_keys::kSampleUpdateType, channel_config::SampleOccurrenceType::Asynchronous));
    maker.add(constantOption(config_keys::kSampleResolution, channel_config::DAQSampleResolution::Video));
}

}  // namespace

std::vector<std::shared_ptr<ChannelConfigOption>> makeChannelOptions(const ChannelIdentity& identity,
                                                                     GuardedState& state,
                                                                     std::atomic<bool>& used,
                                                                     const SettingActions& actions) {
    OptionMaker maker(state, actions);
    addCameraSettings(maker, identity);
    addGenericSettings(maker, identity);
    maker.add(std::make_shared<ChannelUsedOption>(config_keys::kUsed, used, false,
                                                  [changed = actions.usedChanged](bool) { changed(); }));
    maker.shown<bool>(config_keys::kValid,
                      [](const ChannelState& s) { return s.validationCode == 0 && !s.captureFailed; });
    maker.shown<ConfigItemVariant>(config_keys::kSampleRate, &frameRateItem);
    return maker.take();
}

}  // namespace zelt_gige_camera
