#include "feature_records.h"

#include <string>

namespace simulator {
namespace {

constexpr const char* kNamespace = "Custom";

// "GevTimestampValue" reads "Gev Timestamp Value".
const char* displayName(const char* name) {
    std::string spaced;
    for (const char* c = name; *c != '\0'; ++c) {
        const bool begins = *c >= 'A' && *c <= 'Z' && c != name && (c[-1] < 'A' || c[-1] > 'Z');
        if (begins) spaced += ' ';
        spaced += *c;
    }
    return keptText(spaced);
}

}  // namespace

VmbFeatureInfo_t featureInfo(const FeatureFacts& facts) {
    const FeatureRow& row = *facts.row;
    VmbFeatureInfo_t info{};
    info.name = row.name;
    info.featureDataType = static_cast<VmbFeatureData_t>(row.type);
    info.featureFlags = row.flags;
    info.category = row.category;
    info.displayName = displayName(row.name);
    info.unit = *row.unit != '\0' ? row.unit : facts.absent;
    info.representation = facts.absent;
    info.visibility = VmbFeatureVisibilityBeginner;
    info.tooltip = facts.absent;
    info.description = row.description;
    info.sfncNamespace = kNamespace;
    info.isStreamable = facts.streamable;
    info.hasAffectedFeatures = !row.affects.empty();
    info.hasSelectedFeatures = facts.selects;
    return info;
}

VmbFeatureEnumEntry_t entryInfo(const EnumEntry& entry) {
    VmbFeatureEnumEntry_t info{};
    info.name = entry.name;
    info.displayName = displayName(entry.name);
    info.visibility = VmbFeatureVisibilityBeginner;
    info.tooltip = "";
    info.description = "";
    info.sfncNamespace = kNamespace;
    info.intValue = entry.number;
    return info;
}

}  // namespace simulator
