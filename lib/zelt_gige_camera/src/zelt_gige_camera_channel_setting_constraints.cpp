#include "zelt_gige_camera_channel_setting_constraints.h"

#include <algorithm>
#include <optional>

#include "channel_config_constraints.h"

namespace zelt_gige_camera {
namespace {

using config_items::OptionConstraint;
using config_items::ValueRangeConstraint;

struct Range {
    double min;
    double max;
};

/// A picture of this size at this offset must fit the sensor.
std::optional<Range> geometryRange(const ChannelState& state, Setting setting) {
    const bool isHorizontal = setting == Setting::FrameOffsetX || setting == Setting::FrameWidth;
    const double sensor = isHorizontal ? state.sensorWidth : state.sensorHeight;
    if (sensor <= 0.0) return std::nullopt;
    const NumberValue& offset = isHorizontal ? state.frameOffsetX : state.frameOffsetY;
    const NumberValue& size = isHorizontal ? state.frameWidth : state.frameHeight;
    const bool isOffset = setting == Setting::FrameOffsetX || setting == Setting::FrameOffsetY;
    if (isOffset) return Range{0.0, sensor - size.value};
    return Range{size.hasRange ? size.min : 1.0, sensor - offset.value};
}

std::optional<Range> rangeOf(const ChannelState& state, const NumberRow& row) {
    if (isGeometry(row.setting)) return geometryRange(state, row.setting);
    const NumberValue& value = state.*row.value;
    if (!value.hasRange) return std::nullopt;
    return Range{value.min, row.setting == Setting::Exposure ? state.exposureMaximum() : value.max};
}

/// A constraint insists on a unit, which it does not keep; most items have none.
std::string constraintUnit(const NumberRow& row) {
    if (*row.unit != '\0') return row.unit;
    return row.setting == Setting::Exposure ? "us" : "1";
}

}  // namespace

Constraints numberConstraints(const ChannelState& state, const NumberRow& row) {
    // With external trigger the rate is the host's trigger output's.
    if (row.setting == Setting::FrameRate && state.triggerModeIsAux) return readOnlyConstraints();
    Constraints constraints;
    if (const auto range = rangeOf(state, row)) {
        constraints.push_back(std::make_shared<ValueRangeConstraint<double>>(
            range->min, std::max(range->min, range->max), constraintUnit(row)));
    }
    if (isGeometry(row.setting)) {
        constraints.push_back(
            std::make_shared<channel_config::ConfigurableDuringAcquisitionConstraint>(false));
    }
    return constraints;
}

Constraints choiceConstraints(const std::vector<std::string>& choices) {
    using Text = config_items::SingleValueConfigItem<std::string>;
    Constraints constraints;
    for (const std::string& choice : choices) {
        constraints.push_back(std::make_shared<OptionConstraint<Text>>(Text(choice)));
    }
    return constraints;
}

Constraints readOnlyConstraints() {
    return {std::make_shared<channel_config::ReadOnlyConstraint>(true)};
}

}  // namespace zelt_gige_camera
