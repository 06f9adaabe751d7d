#include "camera.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "camera_events.h"

namespace simulator {
namespace {

std::int64_t onGrid(std::int64_t value, const IntRange& range) {
    return value < range.min ? range.min : value - (value - range.min) % range.increment;
}

// Forced values may be anything, also no number.
double clamped(double value, double least, double most) {
    return value >= least ? std::min(value, most) : least;
}

}  // namespace

Camera::Camera(const CameraRow& row, const OscillatorRow& oscillator, Nanoseconds powerUp,
               std::shared_ptr<UserSets> sets)
    : m_row(row),
      m_features(cameraFeatureRows(row)),
      m_memory(row),
      m_clock(powerUp, oscillator),
      m_sets(std::move(sets)) {
    settle();
    for (const PowerUpValue& value : row.powerUpValues) preset(value);
    m_sets->remember(m_features);
    m_sets->load(m_sets->atPowerUp(), m_features);
    m_features.compute("UserSetDefaultSelector", m_sets->atPowerUp());
    replaceClock(oscillator, powerUp);
}

Result Camera::preset(const PowerUpValue& preset) {
    Feature* feature = m_features.find(preset.feature);
    if (feature == nullptr) return Result::NotFound;
    const bool isKept = !isInUserSets(feature->row) && feature->row.name != std::string_view("DeviceUserID");
    if (!isStreamable(feature->row) || isKept) return Result::InvalidAccess;
    FeatureValue value = preset.value;
    const Result accepted = m_features.accept(*feature, value);
    if (accepted != Result::Success) return accepted;
    round(*feature, value);
    m_features.value(*feature) = std::move(value);
    settleAfter(*feature);
    return Result::Success;
}

void Camera::replaceClock(const OscillatorRow& oscillator, Nanoseconds now) {
    m_clock = CameraClock(now, oscillator);
    m_features.compute("GevTimestampTickFrequency", oscillator.tickFrequency);
    m_lastTicks = 0;
    settle();
}

void Camera::round(const Feature& feature, FeatureValue& value) const {
    const std::string_view name = feature.row.name;
    if (name == "EventsEnable1") {
        // Bits of no event stay off.
        value = std::get<std::int64_t>(value) & feature.intRange.max;
    } else if (name == "AcquisitionFrameRateAbs") {
        value = rateOnGrid(std::get<double>(value), feature.floatRange.max);
    }
}

void Camera::settleAfter(const Feature& written) {
    const std::string_view name = written.row.name;
    if (name == "EventsEnable1") settleEventBits();
    if (name == "GVSPPacketSize") m_features.assign("GevSCPSPacketSize", m_features.value(written));
    if (name == "UserSetDefaultSelector") m_sets->useAtPowerUp(m_features.integer(name));
    settle();
}

void Camera::settle() {
    settleViews();
    settleSize();
    settleSubregion();
    const PictureShape picture = shape();
    const bool chunk = m_features.flag("ChunkModeActive");
    const auto payload = static_cast<std::int64_t>(picture.payload());
    m_features.compute("ImageSize", payload);
    m_features.compute("NonImagePayloadSize", static_cast<std::int64_t>(chunk ? kChunkSize : 0));
    m_sensor.trailer = chunk ? kChunkTrailerSize : 0;
    m_features.compute("PayloadSize", payload + static_cast<std::int64_t>(m_sensor.trailer));
    settleTiming(picture);
    settleTrigger();
    // A forced value may be anything; a lost packet must come to its end all the same.
    const std::int64_t requests =
        std::min(m_features.integer("GVSPMaxRequests"), m_features.at("GVSPMaxRequests").intRange.max);
    m_stream = {m_features.integer("GevSCPSPacketSize"), requests, m_features.integer("GVSPTiltingSize")};
}

void Camera::settleEventBits() {
    const std::int64_t bits = m_features.integer("EventsEnable1");
    Feature& switches = m_features.at("EventNotification");
    const auto& entries = m_features.at("EventSelector").row.entries;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const bool on = (bits & cameraEvent(entries[i].name).bit()) != 0;
        switches.values[i] = std::int64_t{on ? 1 : 0};
    }
    switches.forced = false;
}

void Camera::settleViews() {
    std::int64_t bits = 0;
    for (const CameraEventRow& event : cameraEvents()) {
        if (event.selectable && m_features.integer("EventNotification", event.name) == 1) bits |= event.bit();
    }
    m_notified = bits;
    m_features.compute("EventsEnable1", bits);
    m_features.compute("GVSPPacketSize", m_features.integer("GevSCPSPacketSize"));
    m_features.compute("PtpStatus", m_features.integer("PtpMode"));
}

void Camera::clampTo(const char* name, std::int64_t max) {
    Feature& feature = m_features.at(name);
    feature.intRange.max = onGrid(max, feature.intRange);
    m_features.compute(name, std::min(m_features.integer(name), feature.intRange.max));
}

void Camera::settleSize() {
    const auto divisor = [this](const char* axis) {
        const auto of = [&](const char* kind) {
            return std::max<std::int64_t>(1, m_features.integer(std::string(kind) + axis));
        };
        return of("Binning") * of("Decimation");
    };
    // The two exclude each other, on both axes.
    const auto limit = [this](const std::string& kind, const std::string& other, std::int64_t most) {
        const bool excluded =
            m_features.integer(other + "Horizontal") > 1 || m_features.integer(other + "Vertical") > 1;
        m_features.at(kind + "Horizontal").intRange.max = excluded ? 1 : most;
        m_features.at(kind + "Vertical").intRange.max = excluded ? 1 : most;
    };
    limit("Binning", "Decimation", m_row.sensor.mostBinning);
    limit("Decimation", "Binning", m_row.sensor.mostDecimation);
    const auto axis = [&](const char* name, std::int64_t whole, const char* max, const char* size,
                          const char* offset) {
        const std::int64_t most = whole / divisor(name);
        m_features.compute(max, most);
        clampTo(size, most);
        clampTo(offset, most - m_features.integer(size));
        m_features.at(size).intRange.max =
            onGrid(most - m_features.integer(offset), m_features.at(size).intRange);
    };
    axis("Horizontal", m_row.sensor.width, "WidthMax", "Width", "OffsetX");
    axis("Vertical", m_row.sensor.height, "HeightMax", "Height", "OffsetY");
}

void Camera::settleSubregion() {
    const auto edges = [this](const char* first, const char* behind, std::int64_t most) {
        m_features.at(behind).intRange.min = 1;
        clampTo(behind, most);
        clampTo(first, m_features.integer(behind) - 1);
        m_features.at(behind).intRange.min = m_features.integer(first) + 1;
    };
    edges("DSPSubregionLeft", "DSPSubregionRight", m_features.integer("WidthMax"));
    edges("DSPSubregionTop", "DSPSubregionBottom", m_features.integer("HeightMax"));
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

void Camera::settleTiming(const PictureShape& picture) {
    const std::int64_t bytesPerSecond = std::max<std::int64_t>(1, m_features.integer("StreamBytesPerSecond"));
    const bool constrained = m_features.flag("StreamFrameRateConstrain");
    const double exposureUs = clamped(m_features.number("ExposureTimeAbs"), 1, 1e9);
    const std::uint64_t payload = picture.payload() + m_sensor.trailer;
    const double limit =
        frameRateLimit(m_row.sensor, {picture.height, payload}, exposureUs, constrained ? bytesPerSecond : 0);
    m_features.compute("AcquisitionFrameRateLimit", limit);
    m_features.at("AcquisitionFrameRateAbs").floatRange.max = limit;

    const double rate = clamped(m_features.number("AcquisitionFrameRateAbs"), 1e-3, 1e6);
    m_sensor.shape = picture;
    m_sensor.exposure = std::llround(exposureUs * 1e3);
    m_sensor.readout = readoutTime(m_row.sensor, picture.height);
    m_sensor.transfer = transferTime(payload, bytesPerSecond);
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
    m_sensor.triggerDelay =
        std::llround(clamped(m_features.number("TriggerDelayAbs", "FrameStart"), 0, 1e9) * 1e3);
    m_sensor.latchesTrigger = entry("TriggerOverlap") == "PreviousFrame";
    m_sensor.holdsStream = m_features.has("StreamHoldEnable") && m_features.integer("StreamHoldEnable") == 1;
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

Result Camera::saveUserSet() {
    return m_sets->save(m_features.integer("UserSetSelector"), m_features);
}

void Camera::loadUserSet() {
    m_sets->load(m_features.integer("UserSetSelector"), m_features);
    settle();
}

void Camera::resetClock(Nanoseconds now) {
    const Feature& status = m_features.at("PtpStatus");
    const bool isMaster = entryName(status, m_features.value(status)) == std::string_view("Master");
    if (!isMaster) m_clock.reset(now);
}

void Camera::latchClock(Nanoseconds now) {
    m_features.compute("GevTimestampValue", static_cast<std::int64_t>(m_clock.ticks(now)));
}

void Camera::adjustPacketSize(std::int64_t largest) {
    m_features.compute("GevSCPSPacketSize", largest);
    settle();
}

unsigned Camera::noteExposure() {
    const unsigned changes = m_autoFunctions.evaluate(m_features, m_scene);
    if (changes != 0) settle();
    return changes;
}

ChunkData Camera::chunkData(std::int64_t nth) const {
    ChunkData data;
    data.acquisitionCount = static_cast<std::uint32_t>(nth);
    data.exposureUs = static_cast<std::uint32_t>(std::clamp(m_features.number("ExposureTimeAbs"), 0.0, 4e9));
    data.gainDb = static_cast<std::uint32_t>(std::clamp(std::round(m_features.number("Gain")), 0.0, 4e9));
    data.inputs = static_cast<std::uint16_t>(m_features.integer("SyncInLevels"));
    data.outputs = static_cast<std::uint16_t>(m_features.integer("SyncOutLevels"));
    return data;
}

}  // namespace simulator
