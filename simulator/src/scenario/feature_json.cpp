#include "feature_json.h"

namespace simulator {
namespace {

Feature& findFeature(FeatureTable& features, const std::string& name, const Place& at) {
    if (Feature* feature = features.find(name)) return *feature;
    std::vector<std::string> names;
    for (const Feature* known : features.visible()) names.emplace_back(known->row.name);
    refuseUnknown(at, "feature", name, names);
}

const char* typeInWords(FeatureType type) {
    switch (type) {
        case FeatureType::Int:
            return "a whole number";
        case FeatureType::Float:
            return "a number";
        case FeatureType::Bool:
            return "true or false";
        case FeatureType::Enum:
            return "the text of an entry";
        case FeatureType::Raw:
            return "a text of hexadecimal digits, two for each byte";
        case FeatureType::String:
        case FeatureType::Command:
            break;
    }
    return "a text";
}

std::string textOf(const Json& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

bool fits(FeatureType type, const Json& value) {
    if (type == FeatureType::Bool) return value.is_boolean();
    if (type == FeatureType::Int) return value.is_number_integer();
    return type == FeatureType::Float ? value.is_number() : value.is_string();
}

FeatureValue valueOf(const Feature& feature, const Json& value, const Place& at) {
    const FeatureType type = feature.row.type;
    if (type == FeatureType::Command) refuse(at, "a command has no value");
    FeatureValue parsed;
    // An unknown entry of an enumeration stays the text that it is.
    const bool taken = fits(type, value) && valueOf(feature, textOf(value), parsed) == Result::Success;
    if (!taken) refuse(at, written(value) + " is not " + typeInWords(type));
    if (type == FeatureType::Enum) parsed = value.get<std::string>();
    return parsed;
}

/// Why the feature did not take the value.
[[noreturn]] void refuseValue(const Feature& feature, const Json& value, const Place& at) {
    const auto range = [&](auto least, auto most) {
        return written(value) + " is not within " + written(Json(least)) + " to " + written(Json(most));
    };
    if (feature.row.type == FeatureType::Enum) {
        std::vector<std::string> entries;
        for (const EnumEntry& entry : feature.row.entries) entries.emplace_back(entry.name);
        refuseUnknown(at, "entry that can be chosen named", value.get<std::string>(), entries);
    }
    if (feature.row.type == FeatureType::Float)
        refuse(at, range(feature.floatRange.min, feature.floatRange.max));
    if (feature.row.type == FeatureType::Int) {
        const auto& [least, most, increment] = feature.intRange;
        refuse(at, range(least, most) + (increment > 1 ? " in steps of " + std::to_string(increment) : ""));
    }
    refuse(at, written(value) + " is too long");
}

}  // namespace

FeatureProbe::FeatureProbe(const CameraRow& row)
    : m_camera(row, row.oscillator, 0, std::make_shared<UserSets>()) {}

PowerUpValue FeatureProbe::preset(const std::string& name, const Json& value, const Place& at) {
    const Feature& feature = findFeature(m_camera.features(), name, at);
    PowerUpValue preset{feature.row.name, valueOf(feature, value, at)};
    const Result result = m_camera.preset(preset);
    if (result == Result::InvalidAccess) {
        refuse(at, "the feature has no power-up value that a scenario could choose; an event can force it");
    }
    if (result != Result::Success) refuseValue(feature, value, at);
    return preset;
}

std::string FeatureProbe::forcedText(const std::string& name, const Json& value, const Place& at) {
    valueOf(findFeature(m_camera.features(), name, at), value, at);
    return textOf(value);
}

std::string forcedSystemText(const std::string& name, const Json& value, const Place& at) {
    FeatureTable features(systemFeatureRows());
    valueOf(findFeature(features, name, at), value, at);
    return textOf(value);
}

}  // namespace simulator
