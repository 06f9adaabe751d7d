#include "zelt_gige_camera_channel_feature_reader.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

#include "assertion.h"
#include "config_keys.h"
#include "zelt_gige_camera_channel_feature_access.h"
#include "zelt_gige_fourcc.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

using zelt_gige_api::CameraApi;
using zelt_gige_api::CameraApiError;
using zelt_gige_api::CameraHandle;
using zelt_gige_api::FeatureType;
using zelt_gige_api::UnsupportedFeature;
using zelt_gige_api::UnusableValue;

/// The trigger input that the host's pulses come in on.
constexpr const char* kAuxLine = "Line1";

/// Reads into a copy of the state, which takes the original's place when everything was read.
class Reading {
  public:
    explicit Reading(ChannelWork& work) : m_work(work), m_fresh(work.state) {}

    ChannelState& fresh() { return m_fresh; }

    void numbers(std::initializer_list<Setting> settings) {
        for (const Setting setting : settings) number(numberRow(setting));
    }
    void number(const NumberRow& row);
    void automatic(Setting setting);
    void triggerSource();
    void range(Setting setting);
    void pixelFormats() { entries("PixelFormat", m_fresh.pixelFormatEntries); }
    /// What was listed before stays when the camera does not tell.
    void entries(const char* feature, std::vector<std::string>& known) {
        auto listed = m_work.api.getEnumFeatureRange(m_work.camera, feature);
        if (!listed.empty()) known = std::move(listed);
    }
    void commit();

  private:
    bool isPending(Setting setting) const { return contains(m_fresh.pending, setting); }
    Presence presenceOf(const char* feature) const {
        return m_work.api.getFeatureType(m_work.camera, feature) == FeatureType::None ? Presence::Absent
                                                                                      : Presence::Unreadable;
    }

    ChannelWork& m_work;
    ChannelState m_fresh;
};

void Reading::number(const NumberRow& row) {
    NumberValue& cached = m_fresh.*row.value;
    if (cached.presence == Presence::Absent) return;
    try {
        const double value = getNumber(m_work.api, m_work.camera, row);
        cached.presence = Presence::Present;
        if (!isPending(row.setting)) cached.value = value;
    } catch (const UnsupportedFeature&) {
        if (!row.optional) throw;
        cached.presence = presenceOf(row.feature);
        const bool needsSelector = row.selector != nullptr && cached.presence != Presence::Absent;
        if (needsSelector) cached.presence = presenceOf(kSelector);
    } catch (const UnusableValue&) {
        if (!row.optional) throw;
        cached.presence = Presence::Unreadable;
    }
}

void Reading::automatic(Setting setting) {
    const AutoRow& row = autoRow(setting);
    AutoValue& cached = m_fresh.*row.value;
    if (cached.presence == Presence::Absent) return;
    try {
        std::string value = m_work.api.getEnumFeature(m_work.camera, row.feature);
        cached.presence = Presence::Present;
        if (!isPending(setting)) cached.value = std::move(value);
    } catch (const UnsupportedFeature&) {
        cached.presence = presenceOf(row.feature);
        if (cached.presence == Presence::Absent) cached.value = "Off";
    }
}

void Reading::triggerSource() {
    const bool isAux = m_work.api.getEnumFeature(m_work.camera, "TriggerSource") == kAuxLine;
    if (!isPending(Setting::TriggerMode)) m_fresh.triggerModeIsAux = isAux;
}

void Reading::range(Setting setting) {
    const NumberRow& row = numberRow(setting);
    NumberValue& cached = m_fresh.*row.value;
    cached.hasRange = false;
    cached.min = cached.max = 0.0;
    const bool isSelectable = row.selector == nullptr || cached.presence == Presence::Present;
    if (cached.presence == Presence::Absent || !isSelectable) return;
    try {
        select(m_work.api, m_work.camera, row);
    } catch (const UnsupportedFeature&) {
        // Not known to be absent yet, when the values could not be read.
        if (!row.optional || presenceOf(kSelector) != Presence::Absent) throw;
        cached.presence = Presence::Absent;
        return;
    }
    const auto take = [&cached](const auto& range) {
        const auto min = static_cast<double>(range.min);
        const auto max = static_cast<double>(range.max);
        if (!range.valid || std::isnan(min) || std::isnan(max)) return;
        cached.hasRange = true;
        cached.min = min;
        cached.max = max;
    };
    if (row.whole) {
        take(m_work.api.getIntFeatureRange(m_work.camera, row.feature));
    } else {
        take(m_work.api.getFloatFeatureRange(m_work.camera, row.feature));
    }
}

/// Whether the host sees another rate, or another kind of rate.
bool frameRateDiffers(const ChannelState& before, const ChannelState& after) {
    if (before.triggerModeIsAux != after.triggerModeIsAux) return true;
    return !after.triggerModeIsAux && before.frameRate.value != after.frameRate.value;
}

void Reading::commit() {
    ChannelState& before = m_work.state;
    ChannelNews& news = m_work.news;
    for (const NumberRow& row : numberRows()) {
        if (row.key == nullptr || row.setting == Setting::FrameRate) continue;
        if ((before.*row.value).value != (m_fresh.*row.value).value) news.changed(row.key);
    }
    for (const AutoRow& row : autoRows()) {
        if ((before.*row.value).value != (m_fresh.*row.value).value) news.changed(row.key);
    }
    if (before.triggerModeIsAux != m_fresh.triggerModeIsAux) news.changed(config_keys::kCameraTriggerMode);
    if (before.pixelFormatEntries != m_fresh.pixelFormatEntries ||
        before.pixelFormat != m_fresh.pixelFormat) {
        news.changed(config_keys::kFrameFormat);
    }
    if (frameRateDiffers(before, m_fresh)) {
        news.changed(config_keys::kCameraFrameSetting);
        news.changed(config_keys::kSampleRate);
    }
    before = std::move(m_fresh);
}

/// The camera's current format does not count: the channel uses the best one that it can pass on, if any.
void chooseBestFormat(ChannelState& state) {
    if (contains(state.chosen, Setting::FrameFormat)) return;
    const auto& entries = state.pixelFormatEntries;
    state.pixelFormat.clear();
    erase(state.pending, Setting::FrameFormat);
    for (const PixelFormatName& name : pixelFormatNames()) {
        if (std::find(entries.begin(), entries.end(), name.cameraEntry) == entries.end()) continue;
        state.pixelFormat = name.cameraEntry;
        insert(state.pending, Setting::FrameFormat);
        break;
    }
}

void chooseFrameFormat(ChannelState& state) {
    chooseBestFormat(state);
    ZELT_ASSERT_AS(!state.pixelFormat.empty(), "frame_format_found");
}

/// The sensor's extent by its own feature, else the greatest size that the camera takes now; 0 for none.
double sensorExtent(CameraApi& api, CameraHandle camera, const char* feature, const NumberValue& size) {
    try {
        return static_cast<double>(api.getIntFeature(camera, feature));
    } catch (const UnsupportedFeature&) {
        return size.max;
    }
}

/// All times of a recording follow from it, so that no camera is taken at a word that cannot be.
std::int64_t readTickFrequency(ChannelWork& work) {
    constexpr const char* kFeature = "GevTimestampTickFrequency";
    // A tick of a picosecond: no camera is near it, and what is computed from it stays within 64 bits.
    constexpr std::int64_t kGreatest = 1'000'000'000'000;
    const std::int64_t frequency = work.api.getIntFeature(work.camera, kFeature);
    if (frequency > 0 && frequency <= kGreatest) return frequency;
    throw UnusableValue(kFeature, std::to_string(frequency));
}

void readModelKind(ChannelWork& work, const std::string& cameraName, ChannelState& state) {
    try {
        state.modelKind = zelt_gige_api::cameraModelKind(work.api.getDeviceModelName(work.camera));
    } catch (const CameraApiError& error) {
        state.modelKind = zelt_gige_api::CameraModelKind::Other;
        GIGE_LOG(Warning) << "Camera " << cameraName << " model name unreadable: " << error.what();
    }
}

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

}  // namespace

void readCache(ChannelWork& work) {
    Reading reading(work);
    reading.numbers({Setting::FrameOffsetX, Setting::FrameOffsetY, Setting::FrameWidth, Setting::FrameHeight,
                     Setting::FrameRate});
    reading.fresh().streamBytesPerSecond = work.api.getIntFeature(work.camera, "StreamBytesPerSecond");
    reading.triggerSource();
    reading.numbers({Setting::Exposure});
    reading.automatic(Setting::ExposureAuto);
    reading.numbers({Setting::ExposureAutoMax, Setting::Gain});
    reading.automatic(Setting::GainAuto);
    reading.numbers({Setting::GainAutoAdjustTol, Setting::GainAutoRate, Setting::Gamma, Setting::Saturation});
    reading.automatic(Setting::WhitebalanceAuto);
    reading.numbers({Setting::WhitebalanceRed, Setting::WhitebalanceBlue});
    // The hue is no part of the cache, but one that could not be read is tried again.
    if (work.state.hue.presence == Presence::Unreadable) reading.numbers({Setting::Hue});
    reading.pixelFormats();
    reading.commit();
}

void readDomainCache(ChannelWork& work) {
    Reading reading(work);
    for (const Setting setting :
         {Setting::Gain, Setting::Exposure, Setting::WhitebalanceRed, Setting::WhitebalanceBlue,
          Setting::GainAutoAdjustTol, Setting::GainAutoRate, Setting::Gamma, Setting::Hue,
          Setting::Saturation, Setting::FrameRate, Setting::FrameWidth, Setting::FrameHeight}) {
        reading.range(setting);
    }
    ChannelState& fresh = reading.fresh();
    fresh.sensorWidth = sensorExtent(work.api, work.camera, "WidthMax", fresh.frameWidth);
    fresh.sensorHeight = sensorExtent(work.api, work.camera, "HeightMax", fresh.frameHeight);
    for (const AutoRow& row : autoRows()) {
        AutoValue& cached = fresh.*row.value;
        if (cached.presence == Presence::Absent) {
            cached.entries.clear();
        } else {
            reading.entries(row.feature, cached.entries);
        }
    }
    reading.commit();
}

void readConfiguration(ChannelWork& work, const std::string& cameraName) {
    Reading reading(work);
    ChannelState& fresh = reading.fresh();
    fresh.tickFrequency = readTickFrequency(work);
    reading.pixelFormats();
    chooseFrameFormat(fresh);
    reading.numbers({Setting::FrameRate, Setting::Exposure});
    reading.automatic(Setting::ExposureAuto);
    reading.numbers({Setting::Gain});
    reading.automatic(Setting::GainAuto);
    reading.numbers({Setting::GainAutoAdjustTol, Setting::GainAutoRate, Setting::Gamma, Setting::Hue,
                     Setting::Saturation});
    reading.automatic(Setting::WhitebalanceAuto);
    reading.numbers({Setting::WhitebalanceRed, Setting::WhitebalanceBlue});
    work.api.getEnumFeature(work.camera, "TriggerMode");
    reading.triggerSource();
    readModelKind(work, cameraName, fresh);
    fresh.wasOpened = true;
    reading.commit();
}

void chooseMissingFormat(ChannelWork& work) {
    if (!work.state.pixelFormat.empty()) return;
    Reading reading(work);
    reading.pixelFormats();
    chooseBestFormat(reading.fresh());
    reading.commit();
}

bool trackAutomaticValues(ChannelWork& work) {
    bool exposureChanged = false;
    const auto track = [&](const AutoValue& function, Setting setting) {
        const NumberRow& row = numberRow(setting);
        NumberValue& cached = work.state.*row.value;
        if (function.value == "Off" || cached.presence == Presence::Absent) return;
        if (contains(work.state.pending, setting)) return;
        try {
            const double value = getNumber(work.api, work.camera, row);
            if (value == cached.value) return;
            cached.value = value;
            work.news.changed(row.key);
            exposureChanged = exposureChanged || setting == Setting::Exposure;
        } catch (const CameraApiError&) {
            // Left out; the next pass tries again.
        }
    };
    track(work.state.gainAuto, Setting::Gain);
    track(work.state.exposureAuto, Setting::Exposure);
    track(work.state.whitebalanceAuto, Setting::WhitebalanceRed);
    track(work.state.whitebalanceAuto, Setting::WhitebalanceBlue);
    return exposureChanged;
}

void dumpFeatures(CameraApi& api, CameraHandle camera) {
    try {
        for (const zelt_gige_api::FeatureInfo& feature : api.listFeatures(camera)) {
            GIGE_LOG(Debug) << "feature: " << feature.name << " Type: " << typeText(feature.type);
        }
    } catch (const CameraApiError&) {
        GIGE_LOG(Error) << "Cannot gather camera features";
    }
}

}  // namespace zelt_gige_camera
