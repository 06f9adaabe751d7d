#include "zelt_gige_camera_channel_frame_counters.h"

#include "config_item_variant.h"
#include "config_items.h"
#include "config_keys.h"

namespace zelt_gige_camera {
namespace {

using zelt::plugin_util::constantOption;
using zelt::plugin_util::EventCounterChannel;

/// What tells the two counters apart.
struct Kind {
    std::uint32_t idBit;
    const char* nameSuffix;
    const char* subChannelId;
    const char* description;
};
constexpr Kind kSent{0x00010000, " SentCNT", "CntSent", "Sent frames"};
constexpr Kind kReceived{0x00020000, " RcvdCNT", "CntReceived", "Received frames"};

SubChannel makeCounter(const ChannelIdentity& camera, const Kind& kind, bool used) {
    const auto text = [](const char* key, const std::string& value) {
        return constantOption<std::string>(key, value);
    };
    const std::string name = "Camera" + camera.cameraId + kind.nameSuffix;
    auto counter = std::make_shared<EventCounterChannel>(name, kind.description, "frames");
    counter->addOption(text(config_keys::kIdCameraChannelIndex, std::to_string(camera.id.second)));
    counter->addOption(text(config_keys::kIdCameraSubChannelId, kind.subChannelId));
    counter->addOption(text(config_keys::kAdditionalChannelInfo2, kind.description));
    counter->setItem(config_keys::kUsed, config_items::SingleValueConfigItem<bool>(used));
    return {kind.idBit | camera.id.second, camera.cameraId + "/" + kind.subChannelId, std::move(counter)};
}

}  // namespace

FrameCounters::FrameCounters(const ChannelIdentity& camera, bool used)
    : m_sub_channels{makeCounter(camera, kSent, used), makeCounter(camera, kReceived, used)} {}

void FrameCounters::setSink(std::uint32_t channelId, zelt::IfChannelSink* sink) {
    for (const SubChannel& sub : m_sub_channels) {
        if (sub.id == channelId) sub.channel->setSink(sink);
    }
}

void FrameCounters::clearSinks() {
    for (const SubChannel& sub : m_sub_channels) sub.channel->setSink(nullptr);
}

void FrameCounters::restart() {
    for (const SubChannel& sub : m_sub_channels) sub.channel->restart();
}

void FrameCounters::count(std::int64_t time, std::uint64_t sent) {
    m_sub_channels[0].channel->setCount(time, sent);
    m_sub_channels[1].channel->increment(time);
}

}  // namespace zelt_gige_camera
