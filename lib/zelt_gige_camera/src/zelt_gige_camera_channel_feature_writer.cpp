#include "zelt_gige_camera_channel_feature_writer.h"

#include <array>
#include <cmath>
#include <initializer_list>
#include <stdexcept>

#include "config_items.h"
#include "zelt_gige_camera_channel_feature_access.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

using zelt_gige_api::FeatureType;

struct Axis {
    Setting offset;
    Setting size;
};

constexpr std::array<Axis, 2> kAxes{
    {{Setting::FrameOffsetX, Setting::FrameWidth}, {Setting::FrameOffsetY, Setting::FrameHeight}}};

double heldBy(const NumberRow& row, double wanted) {
    const double value = row.whole ? std::round(wanted) : wanted;
    if (canHold(row, value)) return value;
    throw std::invalid_argument("The feature '" + std::string(row.feature) + "' cannot hold " +
                                config_items::ScalarConfigItem(wanted, {}).toString() +
                                ", choose a value within its range");
}

/// Takes over what the camera made of a value that was just written.
void readBack(ChannelWork& work, const NumberRow& row) {
    ChannelState& state = work.state;
    NumberValue& cached = state.*row.value;
    try {
        const double effective = getSelected(work.api, work.camera, row);
        erase(state.pending, row.setting);
        if (effective == cached.value) return;
        cached.value = effective;
    } catch (...) {
        // Nobody knows what the camera holds now, so that it is written again.
        insert(state.pending, row.setting);
        state.configurationPending = true;
        if (row.key != nullptr) work.news.changed(row.key);
        throw;
    }
    if (row.key != nullptr) work.news.changed(row.key);
}

/// What the camera does not have, or did not tell, is left out.
void writeNumber(ChannelWork& work, Setting setting) {
    const NumberRow& row = numberRow(setting);
    const NumberValue& cached = work.state.*row.value;
    if (cached.presence != Presence::Present) return;
    setNumber(work.api, work.camera, row, cached.value);
    readBack(work, row);
}

void writeAutomatic(ChannelWork& work, Setting setting) {
    const AutoRow& row = autoRow(setting);
    const AutoValue& cached = work.state.*row.value;
    if (cached.presence != Presence::Present) return;
    work.api.setEnumFeature(work.camera, row.feature, cached.value);
    erase(work.state.pending, setting);
}

bool isAutomatic(Setting setting) {
    return setting == Setting::ExposureAuto || setting == Setting::GainAuto ||
           setting == Setting::WhitebalanceAuto;
}

void write(ChannelWork& work, Setting setting) {
    if (isAutomatic(setting)) {
        writeAutomatic(work, setting);
    } else {
        writeNumber(work, setting);
    }
}

void writeInOrder(ChannelWork& work, std::initializer_list<Setting> settings) {
    for (const Setting setting : settings) write(work, setting);
}

void writeIfPending(ChannelWork& work, Setting setting) {
    if (contains(work.state.pending, setting)) write(work, setting);
}

bool grows(ChannelWork& work, Setting size) {
    const NumberRow& row = numberRow(size);
    return contains(work.state.pending, size) &&
           getNumber(work.api, work.camera, row) < (work.state.*row.value).value;
}

}  // namespace

void changeNumber(ChannelWork& work, Setting setting, double wanted) {
    const NumberRow& row = numberRow(setting);
    NumberValue& cached = work.state.*row.value;
    const double previous = cached.value;
    cached.value = heldBy(row, wanted);
    if (work.camera == 0) {
        insert(work.state.pending, setting);
        if (cached.value != wanted) work.news.changed(row.key);
        return;
    }
    try {
        setNumber(work.api, work.camera, row, cached.value);
    } catch (...) {
        cached.value = previous;
        throw;
    }
    readBack(work, row);
    if (cached.value != wanted) work.news.changed(row.key);
}

void changeAutomatic(ChannelWork& work, Setting setting, const std::string& entry) {
    const AutoRow& row = autoRow(setting);
    if (work.camera == 0) {
        insert(work.state.pending, setting);
    } else {
        work.api.setEnumFeature(work.camera, row.feature, entry);
        erase(work.state.pending, setting);
    }
    (work.state.*row.value).value = entry;
}

void changePixelFormat(ChannelWork& work, const std::string& entry) {
    if (work.camera == 0) {
        insert(work.state.pending, Setting::FrameFormat);
    } else {
        work.api.setPixelFormat(work.camera, entry);
        erase(work.state.pending, Setting::FrameFormat);
    }
    work.state.pixelFormat = entry;
}

bool writePendingFormat(ChannelWork& work) {
    ChannelState& state = work.state;
    if (!contains(state.pending, Setting::FrameFormat)) return false;
    const bool differs = work.api.getEnumFeature(work.camera, "PixelFormat") != state.pixelFormat;
    if (differs) work.api.setPixelFormat(work.camera, state.pixelFormat);
    erase(state.pending, Setting::FrameFormat);
    return differs;
}

void writePendingGeometry(ChannelWork& work) {
    for (const Axis& axis : kAxes) {
        if (!grows(work, axis.size)) continue;
        // Pending from here on, so that whatever fails next, the offset comes back.
        insert(work.state.pending, axis.offset);
        setNumber(work.api, work.camera, numberRow(axis.offset), 0.0);
    }
    for (const Axis& axis : kAxes) writeIfPending(work, axis.size);
    for (const Axis& axis : kAxes) writeIfPending(work, axis.offset);
}

void writePendingValues(ChannelWork& work) {
    for (const Setting setting :
         {Setting::Exposure, Setting::ExposureAuto, Setting::Gain, Setting::GainAutoAdjustTol,
          Setting::GainAutoRate, Setting::GainAuto, Setting::Gamma, Setting::Saturation,
          Setting::WhitebalanceAuto, Setting::WhitebalanceRed, Setting::WhitebalanceBlue, Setting::Hue}) {
        writeIfPending(work, setting);
    }
}

bool writeExposureAndGain(ChannelWork& work) {
    if (work.api.getFeatureType(work.camera, "ExposureMode") != FeatureType::None) {
        work.api.setEnumFeature(work.camera, "ExposureMode", "Timed");
    }
    writeInOrder(work, {Setting::Exposure});
    const bool exposureChanged = writeExposureLimit(work);
    writeInOrder(work, {Setting::ExposureAuto, Setting::Gain, Setting::GainAutoAdjustTol,
                        Setting::GainAutoRate, Setting::GainAuto, Setting::Gamma});
    return exposureChanged;
}

void writeColours(ChannelWork& work) {
    writeInOrder(work, {Setting::Saturation, Setting::WhitebalanceAuto, Setting::WhitebalanceRed,
                        Setting::WhitebalanceBlue});
}

bool writeExposureLimit(ChannelWork& work) {
    ChannelState& state = work.state;
    if (!state.exposure.hasRange) return false;
    const double maximum = state.exposureMaximum();
    const double previous = state.exposure.value;
    if (previous > maximum && state.exposureAuto.value == "Continuous") {
        const NumberRow& row = numberRow(Setting::Exposure);
        setNumber(work.api, work.camera, row, maximum);
        state.exposure.value = maximum;
        work.news.changed(row.key);
        readBack(work, row);
    }
    const NumberRow& row = numberRow(Setting::ExposureAutoMax);
    const double whole = std::floor(maximum);
    if (state.exposureAutoMax.presence == Presence::Present && canHold(row, whole)) {
        GIGE_LOG(Detail) << "Limiting auto exposure to " << static_cast<std::int64_t>(whole);
        setNumber(work.api, work.camera, row, whole);
        state.exposureAutoMax.value = whole;
    }
    return state.exposure.value != previous;
}

}  // namespace zelt_gige_camera
