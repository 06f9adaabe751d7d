#include "setting_info.h"

#include <algorithm>

#include "channel_config_constraints.h"
#include "config_item_variant.h"
#include "config_keys.h"
#include "setting_text.h"

namespace host {
namespace {

using config_items::IfConfigItemConstraint;
using config_items::OptionConstraint;

template <class Item>
bool addChoice(const IfConfigItemConstraint& constraint, std::vector<std::string>& choices) {
    const auto* option = dynamic_cast<const OptionConstraint<Item>*>(&constraint);
    if (option == nullptr) return false;
    choices.push_back(valueText(option->getItem()));
    return true;
}

/// True for a property whose flag is that.
template <class Property>
bool says(const IfConfigItemConstraint& constraint, bool flag) {
    const auto* property = dynamic_cast<const Property*>(&constraint);
    return property != nullptr && property->getFlag() == flag;
}

void addConstraint(const IfConfigItemConstraint& constraint, SettingInfo& setting) {
    if (const auto* range = dynamic_cast<const config_items::ValueRangeConstraint<double>*>(&constraint)) {
        setting.range = {range->getMin(), range->getMax()};
    }
    const bool isChoice =
        addChoice<config_items::SingleValueConfigItem<std::string>>(constraint, setting.choices) ||
        addChoice<config_items::ScalarConfigItem>(constraint, setting.choices) ||
        addChoice<config_items::SingleValueConfigItem<bool>>(constraint, setting.choices);
    if (isChoice) return;
    if (says<channel_config::ReadOnlyConstraint>(constraint, true)) {
        setting.changeable = Changeable::Never;
    } else if (says<channel_config::ConfigurableDuringAcquisitionConstraint>(constraint, false) &&
               setting.changeable == Changeable::Always) {
        setting.changeable = Changeable::BetweenRecordings;
    }
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
    return all;
}

}  // namespace

std::string SettingInfo::allowed() const {
    if (range) return numberText(range->least) + " .. " + numberText(range->greatest);
    return joined(choices);
}

SettingInfo readSetting(channel_config::IfChannelConfig& config, const std::string& key) {
    const config_items::ConfigItemVariant item = config.getItem(key);
    SettingInfo setting;
    setting.key = key;
    setting.hasValue = boost::get<config_items::InvalidConfigItem>(&item) == nullptr;
    setting.value = valueText(item);
    setting.unit = unitText(item);
    for (const auto& constraint : config.getConstraints(key)) addConstraint(*constraint, setting);
    if (key == config_keys::kUsed) setting.changeable = Changeable::ByChannelOption;
    if (key.starts_with("ACTION:")) setting.changeable = Changeable::AsAction;
    return setting;
}

std::vector<SettingInfo> readSettings(channel_config::IfChannelConfig& config) {
    std::vector<SettingInfo> settings;
    for (const std::string& key : config.getKeys()) settings.push_back(readSetting(config, key));
    return settings;
}

const char* changeableText(Changeable changeable) {
    switch (changeable) {
        case Changeable::Always:
            return "yes";
        case Changeable::BetweenRecordings:
            return "between recordings";
        case Changeable::ByChannelOption:
            return "by --channel";
        case Changeable::AsAction:
            return "by --action";
        case Changeable::Never:
            return "no";
    }
    return "";
}

bool isStored(const SettingInfo& setting) {
    return setting.hasValue &&
           (setting.changeable == Changeable::Always || setting.changeable == Changeable::BetweenRecordings);
}

}  // namespace host
