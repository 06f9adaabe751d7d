/// What a channel knows of its camera: the values last read from it or written to it.
#pragma once

#include <bitset>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "mutex.h"
#include "zelt_gige_aux_frequency.h"
#include "zelt_gige_camera_model.h"

namespace zelt_gige_camera {

/// The camera's settings as the channel knows them, in the order in which the host lists them.
enum class Setting : unsigned {
    FrameOffsetX,
    FrameOffsetY,
    FrameWidth,
    FrameHeight,
    Exposure,
    ExposureAuto,
    Gain,
    GainAutoAdjustTol,
    GainAutoRate,
    GainAuto,
    Gamma,
    Hue,
    Saturation,
    WhitebalanceAuto,
    WhitebalanceRed,
    WhitebalanceBlue,
    TriggerMode,
    FrameFormat,
    FrameRate,
    ExposureAutoMax,  ///< follows from the others; not shown to the host
    Count
};

using SettingSet = std::bitset<static_cast<std::size_t>(Setting::Count)>;

inline bool contains(const SettingSet& set, Setting setting) {
    return set.test(static_cast<std::size_t>(setting));
}
inline void insert(SettingSet& set, Setting setting) {
    set.set(static_cast<std::size_t>(setting));
}
inline void erase(SettingSet& set, Setting setting) {
    set.reset(static_cast<std::size_t>(setting));
}

/// Whether the camera has a feature.
enum class Presence {
    Present,
    Absent,     ///< until the camera is opened again
    Unreadable  ///< at the last attempt; every reading of the cache tries again
};

/// A number of the camera's and its range, both in the unit of the feature.
struct NumberValue {
    double value = 0.0;
    double min = 0.0;
    double max = 0.0;
    bool hasRange = false;  ///< when false, min and max are 0
    Presence presence = Presence::Present;
};

/// One of the camera's automatic functions. Without one, or before it is known, it counts as "Off".
struct AutoValue {
    std::string value = "Off";         ///< in the camera's words
    std::vector<std::string> entries;  ///< as listed by the camera
    Presence presence = Presence::Present;
};

/// Plain values, guarded by the channel's mutex.
struct ChannelState {
    NumberValue frameOffsetX;  ///< pixels, as the three that follow
    NumberValue frameOffsetY;
    NumberValue frameWidth;
    NumberValue frameHeight;
    double sensorWidth = 0.0;  ///< greatest width, pixels; 0 when not known
    double sensorHeight = 0.0;
    std::string pixelFormat;                      ///< entry of "PixelFormat" that the channel uses, or empty
    std::vector<std::string> pixelFormatEntries;  ///< as listed by the camera
    NumberValue frameRate;                        ///< selected for fixed-rate mode, frames per second
    /// What streamBytesPerSecond allows, frames per second; infinite while a frame has no size.
    double bandwidthLimitedFrameRate = std::numeric_limits<double>::infinity();
    std::int64_t streamBytesPerSecond = 0;
    bool streamBytesPerSecondFixed = false;  ///< then no stream needs less; nothing sets it yet
    bool triggerModeIsAux = false;
    AuxFrequency auxFrequency;  ///< triggers per second; empty while the host has configured none
    NumberValue exposure;       ///< microseconds
    AutoValue exposureAuto;
    NumberValue exposureAutoMax;  ///< microseconds
    NumberValue gain;             ///< decibels
    AutoValue gainAuto;
    NumberValue gainAutoAdjustTol;  ///< percent
    NumberValue gainAutoRate;       ///< percent
    NumberValue gamma;
    NumberValue saturation;
    NumberValue hue;  ///< degrees
    AutoValue whitebalanceAuto;
    NumberValue whitebalanceRed;
    NumberValue whitebalanceBlue;
    std::int64_t tickFrequency = 0;  ///< of the camera's clock, ticks per second
    zelt_gige_api::CameraModelKind modelKind = zelt_gige_api::CameraModelKind::Other;

    bool wasOpened = false;            ///< what the camera lists is known
    SettingSet pending;                ///< the camera has not got the value yet; no reading overwrites it
    SettingSet chosen;                 ///< set by the host; survives a camera that loses its power
    bool configurationPending = true;  ///< something was set since the camera was configured
    int validationCode = 0;            ///< of the last validation
    bool captureFailed = false;        ///< the last start of capture failed

    /// Name of the pixel format's FourCC, or empty.
    std::string frameFormat() const;
    /// Bytes of one frame as it is configured; 0 while the format is not known.
    std::uint64_t payload() const;
    /// Greatest rate for the camera's model and height, frames per second; NaN when the model is not known.
    double modelFrameRate() const;
    /// Of the trigger mode in use, frames per second; 0 for external trigger without a frequency.
    double frameRateInUse() const;
    /// Greatest exposure within the frame period, microseconds; the end of the range when nothing limits it.
    double exposureMaximum() const;
};

/// A channel's state and the mutex that guards it. Features are read and written with it held, and a vendor
/// library may call back from within, so its holder may lock it again.
struct GuardedState {
    platform::ReentrantMutex mutex;
    ChannelState values ZELT_GUARDED_BY(mutex);
};

}  // namespace zelt_gige_camera
