#include "zelt_gige_camera_system_topology_service.h"

#include <cstdio>
#include <string>

#include <boost/uuid/uuid_io.hpp>

#include "assertion.h"
#include "config_items.h"
#include "config_keys.h"
#include "zelt_gige_camera_plugin.h"
#include "zelt_gige_log.h"
#include "zeltpu_xml.h"

namespace zelt_gige_camera {
namespace {

using zelt::plugin_util::appendElement;
using zelt::plugin_util::setAttribute;

/// The same on every host, so that recordings of one camera can be compared.
constexpr std::uint32_t kEnclosureId = 1634650641;
constexpr std::uint32_t kParentBits = 0xFFFF;

std::string channelIdText(std::uint32_t instanceIndex, std::uint32_t channelId) {
    char text[] = "0x0000000000000000";
    std::snprintf(text, sizeof text, "0x%08X%08X", instanceIndex, channelId);
    return text;
}

pugi::xml_node addChannelGroup(pugi::xml_node tree, CameraPlugin& plugin) {
    const pugi::xml_node node = appendElement(tree, "MeasurementNode");
    setAttribute(node, "Name", "LocalNode");
    setAttribute(node, "Id", "0");
    setAttribute(node, "IsLocalNode", "true");
    const pugi::xml_node enclosure = appendElement(node, "Enclosure");
    setAttribute(enclosure, "PluginId", boost::uuids::to_string(plugin.getPluginId()));
    setAttribute(enclosure, "Name", "GIGE-Cameras");
    setAttribute(enclosure, "Id", std::to_string(kEnclosureId));
    const pugi::xml_node slot = appendElement(enclosure, "Slot");
    setAttribute(slot, "Id", "0");
    const pugi::xml_node device = appendElement(slot, "Device");
    setAttribute(device, "Name", "Local GIGE Cameras");
    const pugi::xml_node group = appendElement(device, "ChannelGroup");
    setAttribute(group, "Type", "Video");
    return group;
}

/// The element below which a channel stands: its camera's for a counter, otherwise the group.
pugi::xml_node parentOf(pugi::xml_node group, channel_config::IfChannelConfig& channel,
                        std::uint32_t instanceIndex, std::uint32_t channelId) {
    if (!channel.hasKey(config_keys::kIdCameraSubChannelId)) return group;
    const std::string parentId = channelIdText(instanceIndex, channelId & kParentBits);
    const pugi::xml_node parent = group.find_child_by_attribute("Channel", "ChannelID", parentId.c_str());
    if (parent) return parent;
    GIGE_LOG(Warning) << "The topology has no channel " << parentId << " for its counter "
                      << channelIdText(instanceIndex, channelId);
    return group;
}

}  // namespace

CameraSystemTopologyService::CameraSystemTopologyService(zelt::IfDAQPlugin* plugin)
    : SystemTopologyServiceBase(plugin) {
    ZELT_ASSERT_AS(plugin != nullptr, "m_camera_plugin");
}

void CameraSystemTopologyService::fillMeasurementTree(pugi::xml_node tree) {
    auto* const plugin = dynamic_cast<CameraPlugin*>(getPlugin());
    ZELT_ASSERT(plugin);
    if (plugin == nullptr) return;
    const auto channelIds = plugin->getChannelIds();
    if (channelIds.empty()) return;
    const pugi::xml_node group = addChannelGroup(tree, *plugin);
    const std::uint32_t instanceIndex = plugin->getInstanceIndex();
    for (const std::uint32_t id : channelIds) {
        const auto channel = plugin->getChannel(id);
        // Another thread may have taken it away since the ids were read.
        if (channel == nullptr) continue;
        const auto name = channel->getItem(config_keys::kDefaultName);
        const pugi::xml_node element = appendElement(parentOf(group, *channel, instanceIndex, id), "Channel");
        setAttribute(element, "ChannelID", channelIdText(instanceIndex, id));
        setAttribute(element, "Name",
                     boost::get<config_items::SingleValueConfigItem<std::string>>(name).m_value);
    }
}

}  // namespace zelt_gige_camera
