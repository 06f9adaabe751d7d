#include "channel_info.h"

#include <cmath>
#include <limits>

#include "config_item_variant.h"
#include "config_keys.h"
#include "setting_text.h"

namespace host {
namespace {

using config_items::ConfigItemVariant;

std::string text(channel_config::IfChannelConfig& config, const char* key) {
    const ConfigItemVariant value = config.getItem(key);
    if (boost::get<config_items::InvalidConfigItem>(&value) != nullptr) return {};
    return config_items::asItem(value).toString();
}

std::uint32_t size(channel_config::IfChannelConfig& config, const char* key) {
    const std::optional<double> value = itemNumber(config.getItem(key));
    if (!value || !(*value >= 0 && *value <= std::numeric_limits<std::uint32_t>::max())) return 0;
    return static_cast<std::uint32_t>(std::llround(*value));
}

}  // namespace

const char* timeColumn(TimeBase base) {
    return base == TimeBase::Pulses ? "pulse" : "host_time_ns";
}

std::uint64_t ChannelInfo::pictureBytes() const {
    const std::uint64_t bytesPerPixel = format == "Y800" ? 1 : format == "Y422" ? 2 : 3;
    return std::uint64_t{width} * height * bytesPerPixel;
}

ChannelInfo readChannelInfo(std::uint32_t id, channel_config::IfChannelConfig& config) {
    ChannelInfo info;
    info.id = id;
    info.name = text(config, config_keys::kDefaultName);
    info.shortId = text(config, config_keys::kShortId);
    info.type = text(config, config_keys::kCameraType);
    info.format = text(config, config_keys::kFrameFormat);
    info.width = size(config, config_keys::kFrameWidth);
    info.height = size(config, config_keys::kFrameHeight);
    info.rate = itemNumber(config.getItem(config_keys::kCameraFrameSetting));
    if (info.rate && !(std::isfinite(*info.rate) && *info.rate > 0)) info.rate.reset();
    const bool isTriggered = text(config, config_keys::kCameraTriggerMode) == kTriggeredMode;
    if (isTriggered) info.timeBase = TimeBase::Pulses;
    return info;
}

bool isUsed(channel_config::IfChannelConfig& config) {
    const auto item = config.getItem(config_keys::kUsed);
    const auto* used = boost::get<config_items::SingleValueConfigItem<bool>>(&item);
    return used != nullptr && used->m_value;
}

bool setUsed(channel_config::IfChannelConfig& config, bool used) {
    return config.setItem(config_keys::kUsed, config_items::SingleValueConfigItem<bool>(used));
}

}  // namespace host
