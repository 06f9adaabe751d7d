// A channel's settings: what the host changes, and what follows from it.
#include <exception>
#include <utility>

#include "config_keys.h"
#include "trace_scope.h"
#include "zelt_gige_camera_channel.h"
#include "zelt_gige_camera_channel_bandwidth.h"
#include "zelt_gige_camera_channel_exposure_limit.h"
#include "zelt_gige_camera_channel_feature_reader.h"
#include "zelt_gige_camera_channel_feature_writer.h"
#include "zelt_gige_camera_channel_rows.h"
#include "zelt_gige_camera_channel_trigger_program.h"
#include "zelt_gige_camera_channel_value_maps.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

using zelt_gige_api::CameraApiError;

/// Seconds between two polls of a camera's automatic values, at least.
constexpr double kPollInterval = 1.0;

constexpr const char* kOnce = "Once";
constexpr const char* kOff = "Off";

}  // namespace

bool CameraChannel::change(const std::function<bool(ChannelNews&)>& what) {
    letFramePass();
    ChannelNews news;
    bool accepted = false;
    try {
        accepted = what(news);
    } catch (const std::exception& error) {
        {
            const platform::MutexLock lock(m_state.mutex);
            checkWhatWasDone(news);
        }
        news.add(notConfigured({}, error));
    }
    tell(news);
    return accepted;
}

bool CameraChannel::set(Setting setting, const SettingValue& value) {
    return change([&](ChannelNews& news) {
        const platform::MutexLock lock(m_state.mutex);
        if (!apply(setting, value, news)) return false;
        insert(m_state.values.chosen, setting);
        m_state.values.configurationPending = true;
        if (!news.hasFailure()) return true;
        // Refused on account of what should have followed; the value itself is the camera's by now.
        news.changed(settingKey(setting));
        return false;
    });
}

bool CameraChannel::apply(Setting setting, const SettingValue& value, ChannelNews& news) {
    switch (setting) {
        case Setting::FrameOffsetX:
        case Setting::FrameOffsetY:
        case Setting::FrameWidth:
        case Setting::FrameHeight:
            return applyGeometry(setting, std::get<double>(value), news);
        case Setting::Exposure:
            return applyExposure(std::get<double>(value), news);
        case Setting::FrameRate:
            return applyFrameRate(std::get<double>(value), news);
        case Setting::FrameFormat:
            return applyFrameFormat(std::get<std::string>(value), news);
        case Setting::TriggerMode:
            return applyTriggerMode(std::get<std::string>(value), news);
        case Setting::ExposureAuto:
        case Setting::GainAuto:
        case Setting::WhitebalanceAuto:
            return applyAutomatic(setting, autoSettingFromHost(std::get<std::string>(value)), news);
        default:
            return applyNumber(setting, std::get<double>(value), news);
    }
}

bool CameraChannel::applyNumber(Setting setting, double wanted, ChannelNews& news) {
    ChannelWork at = work(news);
    changeNumber(at, setting, wanted);
    return true;
}

bool CameraChannel::applyGeometry(Setting setting, double wanted, ChannelNews& news) {
    if (isAcquiring()) return false;
    applyNumber(setting, wanted, news);
    validate(news);
    news.changed(config_keys::kValid);
    return true;
}

bool CameraChannel::applyExposure(double wanted, ChannelNews& news) {
    limitExposure(news);
    applyNumber(Setting::Exposure, wanted, news);
    validate(news);
    news.changed(config_keys::kValid);
    return true;
}

bool CameraChannel::applyFrameRate(double wanted, ChannelNews& news) {
    if (m_state.values.triggerModeIsAux) return false;
    applyNumber(Setting::FrameRate, wanted, news);
    // Also when the camera has it: the bandwidth share may yet make it another one.
    insert(m_state.values.pending, Setting::FrameRate);
    limitAndValidate(news);
    news.changed(config_keys::kSampleRate);
    news.changed(config_keys::kValid);
    return true;
}

bool CameraChannel::applyFrameFormat(const std::string& wanted, ChannelNews& news) {
    if (isAcquiring()) return false;
    ChannelWork at = work(news);
    changePixelFormat(at, pixelFormatFromHost(wanted));
    // Another format may have other settings.
    if (m_device_handle != 0) updateCaches(news);
    validate(news);
    news.changed(config_keys::kValid);
    return true;
}

bool CameraChannel::applyTriggerMode(const std::string& wanted, ChannelNews& news) {
    ChannelState& state = m_state.values;
    const bool previous = std::exchange(state.triggerModeIsAux, triggerModeFromHost(wanted));
    insert(state.pending, Setting::TriggerMode);
    if (m_device_handle != 0 && !programTrigger(news)) {
        // Still pending: the camera may have got a part of the other mode's program.
        state.triggerModeIsAux = previous;
        state.configurationPending = true;
        return false;
    }
    limitAndValidate(news);
    news.changed(config_keys::kSampleRate);
    news.changed(config_keys::kValid);
    return true;
}

bool CameraChannel::applyAutomatic(Setting setting, const std::string& entry, ChannelNews& news) {
    const AutoValue& function = m_state.values.*autoRow(setting).value;
    if (m_state.values.wasOpened && function.entries.empty()) return false;
    const bool isExposure = setting == Setting::ExposureAuto;
    if (isExposure && entry != kOff) limitExposure(news);
    ChannelWork at = work(news);
    changeAutomatic(at, setting, entry);
    if (!isExposure) return true;
    validate(news);
    news.changed(config_keys::kValid);
    return true;
}

bool CameraChannel::runOnce(Setting setting) {
    return change([&](ChannelNews& news) {
        const platform::MutexLock lock(m_state.mutex);
        if (m_device_handle == 0) throw CameraApiError("The camera is not open");
        if (!applyAutomatic(setting, kOnce, news)) return false;
        news.changed(autoRow(setting).key);
        return true;
    });
}

void CameraChannel::usedChanged() {
    change([&](ChannelNews& news) {
        const platform::MutexLock lock(m_state.mutex);
        validate(news);
        news.changed(config_keys::kValid);
        return true;
    });
}

void CameraChannel::storeAuxFrequency(const AuxFrequency& frequency) {
    const platform::MutexLock lock(m_state.mutex);
    m_state.values.auxFrequency = frequency;
    updateBandwidth();
}

void CameraChannel::onSyncOutAuxFrequencyChanged(const AuxFrequency& frequency) noexcept {
    const diagnostics::TraceScope trace(diagnostics::unilogger_zelt_plugin_gige_camera(),
                                        "CameraChannel::onSyncOutAuxFrequencyChanged()");
    try {
        storeAuxFrequency(frequency);
        if (!m_used) return;
        ChannelNews news;
        {
            const platform::MutexLock lock(m_state.mutex);
            limitAndValidate(news, kCannotConfigure);
        }
        news.changed(config_keys::kSampleRate);
        news.changed(config_keys::kValid);
        tell(news);
    } catch (...) {
        // The other channels must be told, too.
    }
}

bool CameraChannel::checkSettings() {
    bool valid = false;
    change([&](ChannelNews& news) {
        const platform::MutexLock lock(m_state.mutex);
        revalidate(news);
        valid = m_state.values.validationCode == ValidationCode::kValid;
        return true;
    });
    return valid;
}

void CameraChannel::pollAutomaticValues(double now) noexcept {
    try {
        change([&](ChannelNews& news) {
            const platform::MutexLock lock(m_state.mutex);
            if (isPollDue(now)) track(news);
            return true;
        });
    } catch (...) {
        // A host that fails to take the news keeps no camera from being asked again.
    }
}

bool CameraChannel::isPollDue(double now) {
    const bool acquiring = m_used && m_connected && m_device_handle != 0 && isAcquiring();
    if (!acquiring) return false;
    const double elapsed = now - m_last_poll;
    if (elapsed > 0.0 && elapsed <= kPollInterval) return false;
    m_last_poll = now;
    // A clock that was set back tells nothing of how long ago the last poll was.
    return elapsed > 0.0;
}

void CameraChannel::track(ChannelNews& news) {
    ChannelWork at = work(news);
    if (zelt_gige_camera::trackAutomaticValues(at)) revalidate(news);
}

void CameraChannel::revalidate(ChannelNews& news) {
    const int before = m_state.values.validationCode;
    if (validate(news) != before) news.changed(config_keys::kValid);
}

void CameraChannel::checkWhatWasDone(ChannelNews& news) {
    if (!news.keys().empty()) revalidate(news);
}

bool CameraChannel::limitExposure(ChannelNews& news) {
    if (m_device_handle == 0) return false;
    ChannelWork at = work(news);
    if (!writeExposureLimit(at)) return false;
    exposureLimited(news);
    return true;
}

void CameraChannel::exposureLimited(ChannelNews& news) {
    news.changed(config_keys::kCameraExposure);
    validate(news);
    news.changed(config_keys::kValid);
}

void CameraChannel::limitAndValidate(ChannelNews& news, const char* logPrefix) {
    bool validated = false;
    try {
        validated = limitExposure(news);
    } catch (const CameraApiError& error) {
        news.add(notConfigured(logPrefix, error));
    }
    if (!validated) validate(news);
}

int CameraChannel::validate(ChannelNews& news) {
    updateBandwidth();
    ChannelState& state = m_state.values;
    ValidationInput input;
    input.used = m_used;
    input.triggerModeIsAux = state.triggerModeIsAux;
    input.auxFrequency = state.auxFrequency;
    input.frameRate = state.frameRate.value;
    input.modelFrameRate = state.modelFrameRate();
    input.bandwidthLimitedFrameRate = state.bandwidthLimitedFrameRate;
    input.exposure = state.exposure.value;
    input.exposureMinimum = state.exposure.min;
    input.exposureAuto = state.exposureAuto.value;
    input.requiredBandwidth = m_required_bandwidth;
    input.totalRequiredBandwidth = m_owner->getTotalRequiredBandwidth();
    const Verdict verdict = zelt_gige_camera::validate(input);
    state.validationCode = verdict.code;
    news.add(verdict);
    return verdict.code;
}

void CameraChannel::updateBandwidth() {
    ChannelState& state = m_state.values;
    state.bandwidthLimitedFrameRate = bandwidthLimitedFrameRate(state.streamBytesPerSecond, state.payload());
    const std::int64_t fixed = state.streamBytesPerSecondFixed ? state.streamBytesPerSecond : 0;
    m_required_bandwidth = m_used ? requiredBandwidth(state.payload(), state.frameRateInUse(), fixed) : 0;
}

}  // namespace zelt_gige_camera
