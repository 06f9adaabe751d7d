#include "camera.h"

#include <algorithm>
#include <cmath>

namespace simulator {
namespace {

constexpr std::int64_t kLargestPassingPacket = 8999;

std::int64_t onGrid(std::int64_t value, const IntRange& range) {
    return value < range.min ? range.min : value - (value - range.min) % range.increment;
}

}  // namespace

Camera::Camera(const CameraRow& row, const OscillatorRow& oscillator, Nanoseconds powerUp)
    : m_row(row), m_features(cameraFeatureRows(row)), m_memory(row), m_clock(powerUp, oscillator) {
    replaceClock(oscillator, powerUp);
}

void Camera::replaceClock(const OscillatorRow& oscillator, Nanoseconds now) {
    m_clock = CameraClock(now, oscillator);
    m_features.compute("GevTimestampTickFrequency", oscillator.tickFrequency);
    m_lastTicks = 0;
    settle();
}

void Camera::round(const Feature& feature, FeatureValue& value) const {
    const std::string_view name = feature.row.name;
    if (name == "ExposureTimeAbs") {
        value = std::round(std::get<double>(value));
    } else if (name == "AcquisitionFrameRateAbs") {
        value = rateOnGrid(std::get<double>(value), feature.floatRange.max);
    }
}

void Camera::settle() {
    const PictureShape picture = shape();
    m_features.compute("ImageSize", static_cast<std::int64_t>(picture.payload()));
    m_features.compute("PayloadSize", static_cast<std::int64_t>(picture.payload()));
    settleRanges();
    settleTiming(picture);
    settleTrigger();
    settleEvents();
}

PictureShape Camera::shape() const {
    // Forced values may be anything; a picture must exist all the same.
    const auto within = [this](const char* name, std::int64_t least, std::int64_t most) {
        return static_cast<std::uint32_t>(std::clamp(m_features.integer(name), least, most));
    };
    PictureShape picture;
    picture.width = within("Width", 1, m_row.sensor.width);
    picture.height = within("Height", 1, m_row.sensor.height);
    picture.offsetX = within("OffsetX", 0, m_row.sensor.width);
    picture.offsetY = within("OffsetY", 0, m_row.sensor.height);
    const std::int64_t format = m_features.integer("PixelFormat");
    picture.format = static_cast<std::uint32_t>(format != 0 ? format : m_row.powerUpFormat);
    return picture;
}

void Camera::settleRanges() {
    const auto limit = [this](const char* name, std::int64_t whole, const char* taken) {
        Feature& feature = m_features.at(name);
        feature.intRange.max = onGrid(whole - m_features.integer(taken), feature.intRange);
    };
    limit("Width", m_row.sensor.width, "OffsetX");
    limit("Height", m_row.sensor.height, "OffsetY");
    limit("OffsetX", m_row.sensor.width, "Width");
    limit("OffsetY", m_row.sensor.height, "Height");
}

void Camera::settleTiming(const PictureShape& picture) {
    const std::int64_t bytesPerSecond = std::max<std::int64_t>(1, m_features.integer("StreamBytesPerSecond"));
    const bool constrained = m_features.flag("StreamFrameRateConstrain");
    const double exposureUs = std::clamp(m_features.number("ExposureTimeAbs"), 1.0, 1e9);
    const double limit = frameRateLimit(m_row.sensor, picture, exposureUs, constrained ? bytesPerSecond : 0);
    m_features.compute("AcquisitionFrameRateLimit", limit);
    m_features.at("AcquisitionFrameRateAbs").floatRange.max = limit;

    const double rate = std::clamp(m_features.number("AcquisitionFrameRateAbs"), 1e-3, 1e6);
    m_sensor.shape = picture;
    m_sensor.exposure = std::llround(exposureUs * 1e3);
    m_sensor.readout = readoutTime(m_row.sensor, picture.height);
    m_sensor.transfer = transferTime(picture.payload(), bytesPerSecond);
    m_sensor.period = std::llround(1e9 / rate);
    m_sensor.shortestPeriod = std::llround(1e9 / limit);
    m_sensor.frameLimit = frameLimit();
}

void Camera::settleTrigger() {
    const auto entry = [this](const char* feature) {
        return std::string_view(
            entryName(m_features.at(feature), FeatureValue(m_features.integer(feature, "FrameStart"))));
    };
    const std::string_view source = entry("TriggerSource");
    const bool paced = entry("TriggerMode") == "Off" || source == "FixedRate";
    m_sensor.trigger = paced                  ? TriggerKind::FixedRate
                       : source == "Freerun"  ? TriggerKind::Freerun
                       : source == "Software" ? TriggerKind::Software
                                              : TriggerKind::External;
    m_sensor.isLine1 = source == "Line1";
    m_sensor.activation = static_cast<Activation>(m_features.integer("TriggerActivation", "FrameStart"));
    m_sensor.triggerDelay = std::llround(m_features.number("TriggerDelayAbs", "FrameStart") * 1e3);
    m_sensor.latchesTrigger = entry("TriggerOverlap") == "PreviousFrame";
    m_sensor.holdsStream = m_features.has("StreamHoldEnable") && m_features.integer("StreamHoldEnable") == 1;
}

void Camera::settleEvents() {
    m_notified = 0;
    for (std::size_t i = 0; i < kCameraEventNames.size(); ++i) {
        const bool on = m_features.integer("EventNotification", kCameraEventNames[i]) == 1;
        m_notified |= static_cast<std::uint32_t>(on) << i;
    }
}

std::int64_t Camera::frameLimit() const {
    const std::string_view mode =
        entryName(m_features.at("AcquisitionMode"), FeatureValue(m_features.integer("AcquisitionMode")));
    if (mode == "SingleFrame") return 1;
    return mode == "MultiFrame" ? m_features.integer("AcquisitionFrameCount") : 0;
}

std::string Camera::userName() const {
    const auto* name = std::get_if<std::string>(&m_features.value(m_features.at("DeviceUserID")));
    return name != nullptr ? *name : "";
}

void Camera::latchClock(Nanoseconds now) {
    m_features.compute("GevTimestampValue", static_cast<std::int64_t>(m_clock.ticks(now)));
}

void Camera::adjustPacketSize() {
    m_features.compute("GevSCPSPacketSize", kLargestPassingPacket);
}

unsigned Camera::noteExposure() {
    const unsigned changes = m_autoFunctions.evaluate(m_features, m_scene);
    if (changes != 0) settle();
    return changes;
}

void Camera::resetStatistics() {
    for (const char* name : {"StatFrameDelivered", "StatFrameDropped", "StatFrameUnderrun"}) {
        m_features.compute(name, std::int64_t{0});
    }
    m_features.compute("StatFrameRate", 0.0);
    m_lastTicks = 0;
}

void Camera::count(const char* statistic) {
    m_features.compute(statistic, m_features.integer(statistic) + 1);
}

void Camera::noteStamp(std::uint64_t ticks) {
    if (m_lastTicks != 0 && ticks > m_lastTicks) {
        m_features.compute("StatFrameRate", static_cast<double>(m_clock.tickFrequency()) /
                                                static_cast<double>(ticks - m_lastTicks));
    }
    m_lastTicks = ticks;
}

}  // namespace simulator
