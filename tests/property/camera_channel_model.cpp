#include "camera_channel_model.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "config_items.h"
#include "config_keys.h"
#include "simulator.h"

namespace property_tests {
namespace {

using namespace config_keys;
using config_items::ScalarConfigItem;
using Kind = SettingRow::Kind;

constexpr double kLink = 115'000'000;  // bytes per second
constexpr double kInfinite = std::numeric_limits<double>::infinity();

double bytesPerFrame(const ValidationFigures& figures) {
    const int bits = figures.format == "Y800"   ? 8
                     : figures.format == "Y422" ? 16
                     : figures.format == "RGB"  ? 24
                                                : 0;
    return std::floor(bits * figures.width * figures.height / 8);
}

double rateInUse(const ValidationFigures& figures) {
    if (!figures.aux) return figures.fixedRate;
    if (!figures.auxFrequency) return 0;
    return static_cast<double>(figures.auxFrequency->first) /
           static_cast<double>(figures.auxFrequency->second);
}

/// By the readout of the model's sensor; the bandwidth's while the model is not known.
double cameraRate(const ValidationFigures& figures, double bandwidthRate) {
    const double height = figures.height;
    if (figures.model == 33) return 1 / ((492 - height) * 1.51e-6 + height * 2.249e-5 + 0.0001984);
    if (figures.model == 32) return 1 / ((492 - height) * 3.01e-6 + height * 2.434e-5 + 0.0004955);
    return bandwidthRate;
}

double shortestExposure(int model) {
    return model == 33 ? 30 : model == 32 ? 26 : 0;
}

/// What the host should see of a number that it sets.
std::string textToShow(const SettingRow& row, const config_items::ConfigItemVariant& value) {
    const auto* const scalar = boost::get<ScalarConfigItem>(&value);
    if (scalar == nullptr) return config_items::asItem(value).toString();
    return ScalarConfigItem(row.kind == Kind::Whole ? std::round(scalar->m_value) : scalar->m_value, row.unit)
        .toString();
}

}  // namespace

double requiredBytes(const ValidationFigures& figures) {
    if (!figures.used) return 0;
    const double required = std::ceil(bytesPerFrame(figures) * rateInUse(figures));
    return std::isfinite(required) ? std::max(required, 0.0) : 0;
}

int validationCode(const ValidationFigures& figures) {
    if (!figures.used) return 0;
    if (figures.aux && !figures.auxFrequency) return 2;
    const double bytes = bytesPerFrame(figures);
    const double bandwidthRate = bytes > 0 ? figures.streamBytes / bytes : kInfinite;
    const double rate = rateInUse(figures);
    if (rate > cameraRate(figures, bandwidthRate) || rate > bandwidthRate) return 1;
    const double exposureRate = 1 / ((shortestExposure(figures.model) + figures.exposure) * 1e-6);
    if (rate > exposureRate && !figures.continuous) return 1;
    const double total = requiredBytes(figures) + figures.othersRequired;
    if (total == 0) return 0;
    return requiredBytes(figures) >= std::floor(requiredBytes(figures) / total * kLink) ? 1 : 0;
}

WatchedChannel::WatchedChannel(std::shared_ptr<zelt_gige_camera::CameraChannel> watched,
                               ForwardingCameraApi& api)
    : channel(std::move(watched)), m_api(api) {
    // The channel puts the camera into the format that it prefers when it is prepared.
    uncertain.insert(kFrameFormat);
    channel->setMessageListener([this](const exception_manager::Exception& message) {
        messages.push_back(exception_manager::fillPlaceholders(message));
    });
    begin();
}

WatchedChannel::~WatchedChannel() {
    channel->setChangeCallback({});
    channel->setMessageListener({});
}

std::string WatchedChannel::shown(const std::string& key) const {
    return config_items::asItem(channel->getItem(key)).toString();
}

double WatchedChannel::number(const std::string& key) const {
    const auto item = channel->getItem(key);
    const auto* const scalar = boost::get<ScalarConfigItem>(&item);
    return scalar != nullptr ? scalar->m_value : 0;
}

bool WatchedChannel::hasFailed() const {
    return std::any_of(messages.begin(), messages.end(),
                       [](const std::string& text) { return text.rfind("Cannot", 0) == 0; });
}

ValidationFigures WatchedChannel::figures() {
    lookAtCamera();
    ValidationFigures figures;
    figures.used = channel->isUsed();
    figures.aux = isAux();
    figures.fixedRate = number(kCameraFrameSetting);
    if (m_was_opened) figures.model = id() == test_support::kColourCamera ? 33 : 32;
    figures.width = number(kFrameWidth);
    figures.height = number(kFrameHeight);
    figures.format = shown(kFrameFormat);
    figures.exposure = number(kCameraExposure);
    figures.continuous =
        channel->hasKey(kCameraExposureAuto) && shown(kCameraExposureAuto) == "GIGE/AutoSettingContinuous";
    figures.streamBytes = m_stream_bytes;
    return figures;
}

void WatchedChannel::lookAtCamera() {
    if (!isConnected()) return;
    m_was_opened = true;
    m_stream_bytes = static_cast<double>(m_api.getIntFeature(m_api.handleOf(id()), "StreamBytesPerSecond"));
}

void WatchedChannel::begin() {
    lookAtCamera();
    told.clear();
    messages.clear();
    m_own.clear();
    m_before.clear();
    for (const SettingRow& row : settingRows()) {
        if (channel->hasKey(row.key)) m_before[row.key] = shown(row.key);
    }
}

void WatchedChannel::wasSet(const SettingRow& row, std::size_t index, bool accepted, bool faulty) {
    const config_items::ConfigItemVariant& value = row.values[index];
    const bool isSafe = index < row.safe;
    if (accepted) m_own[row.key] = textToShow(row, value);
    if (accepted && isSafe) {
        wanted[row.key] = textToShow(row, value);
    } else if (accepted || faulty) {
        wanted.erase(row.key);
    }
    if (accepted && isConnected()) uncertain.erase(row.key);
    const bool partly = !accepted && row.kind == Kind::Mode;
    if (!isConnected() || faulty || partly || row.kind == Kind::Rate) uncertain.insert(row.key);
    if (faulty) uncertain.insert(kCameraExposure);
}

void WatchedChannel::wasPrepared(bool noFrequency, bool faulty) {
    if (!channel->isUsed()) return;
    const auto isStart = [](const std::string& text) { return text.rfind("Cannot start camera", 0) == 0; };
    const bool startFailed = std::any_of(messages.begin(), messages.end(), isStart);
    std::erase_if(messages, isStart);
    const bool notConfigured = hasFailed();
    captureFailed = startFailed || (captureFailed && (notConfigured || noFrequency));
    // What failed at the start was no earlier call.
    if ((faulty && !startFailed) || notConfigured) return trustNothing();
    uncertain.clear();
    if (noFrequency) uncertain = {kCameraFrameSetting, kCameraTriggerMode};
    validationUnsure = false;
}

void WatchedChannel::trustNothing() {
    for (const SettingRow& row : settingRows()) uncertain.insert(row.key);
    validationUnsure = true;
}

void WatchedChannel::noteAutomaticFunctions() {
    for (const SettingRow& row : settingRows()) {
        if (!channel->hasKey(row.key)) continue;
        if (row.kind == Kind::Automatic && shown(row.key) == kOnce) {
            uncertain.insert(row.key);
            wanted.erase(row.key);
        }
        if (row.automatic == nullptr || !channel->hasKey(row.automatic)) continue;
        const bool offInCamera =
            !isConnected() || cameraText(m_api, m_api.handleOf(id()), *findRow(row.automatic)) == kOff;
        if (offInCamera && shown(row.automatic) == kOff) continue;
        uncertain.insert(row.key);
        wanted.erase(row.key);
    }
}

std::string WatchedChannel::difference(const Frequency& frequency, bool silentRate) {
    noteAutomaticFunctions();
    for (const std::string& text : {unexplainedChange(silentRate), lostChoice(), otherThanTheCamera()}) {
        if (!text.empty()) return id() + ": " + text;
    }
    if (isAux()) {
        const std::string rate =
            frequency ? config_items::RationalScalarConfigItem(frequency->first, frequency->second, "fps")
                            .toString()
                      : config_items::InvalidConfigItem().toString();
        if (shown(kCameraFrameSetting) != rate) {
            return id() + ": shows the trigger frequency " + shown(kCameraFrameSetting) + ", not " + rate;
        }
    }
    if (validationUnsure) return {};
    const bool valid = shown(kValid) == "1";
    if ((expectedCode == 0 && !captureFailed) != valid) return id() + ": \"Valid\" is " + shown(kValid);
    return {};
}

std::string WatchedChannel::unexplainedChange(bool silentRate) const {
    for (const SettingRow& row : settingRows()) {
        const auto before = m_before.find(row.key);
        if (before == m_before.end() || !channel->hasKey(row.key)) continue;
        const bool rateTold = row.kind == Kind::Rate && (silentRate || wasTold(kSampleRate));
        if (wasTold(row.key) || rateTold) continue;
        const auto own = m_own.find(row.key);
        const std::string& expected = own != m_own.end() ? own->second : before->second;
        if (shown(row.key) != expected) {
            return std::string(row.key) + " became " + shown(row.key) + " instead of " + expected;
        }
    }
    return {};
}

std::string WatchedChannel::lostChoice() const {
    for (const auto& [key, text] : wanted) {
        if (!channel->hasKey(key) || (key == kCameraFrameSetting && isAux())) continue;
        if (shown(key) != text) return key + " is " + shown(key) + ", but the host chose " + text;
    }
    return {};
}

std::string WatchedChannel::otherThanTheCamera() {
    if (!isConnected()) return {};
    for (const SettingRow& row : settingRows()) {
        if (!channel->hasKey(row.key) || uncertain.count(row.key) != 0) continue;
        if (row.kind == Kind::Rate && isAux()) continue;
        const std::string camera = cameraText(m_api, m_api.handleOf(id()), row);
        if (shown(row.key) != camera) {
            return std::string(row.key) + " is " + shown(row.key) + ", the camera has " + camera;
        }
    }
    return {};
}

}  // namespace property_tests
