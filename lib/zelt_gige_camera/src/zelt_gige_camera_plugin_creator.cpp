#include "zelt_gige_camera_plugin_creator.h"

#include <memory>
#include <new>
#include <string_view>

#include <boost/uuid/string_generator.hpp>

#include "zelt_gige_camera_plugin.h"
#include "zelt_gige_vmb_api.h"
#include "zeltpu_plugin_type_id.h"

namespace zelt_gige_camera {
namespace {

constexpr std::uint32_t kInterfaceVersion = 1;
constexpr std::uint32_t kFirstInstance = 0;

bool isPluginType(const boost::uuids::uuid& id) {
    return id == boost::uuids::string_generator()(zelt::plugin_util::kPluginTypeId);
}

}  // namespace

std::uint32_t CameraPluginCreator::getInterfaceVersion() {
    return kInterfaceVersion;
}

bool CameraPluginCreator::supportsPlugin(std::int32_t index, const boost::uuids::uuid& typeId) {
    return index == 0 && isPluginType(typeId);
}

const char* CameraPluginCreator::getPluginName(std::int32_t index) {
    return index == 0 ? kPluginName : nullptr;
}

bool CameraPluginCreator::createPlugin(const char* name, const boost::uuids::uuid& typeId,
                                       zelt::IfDAQPlugin** out) {
    if (out == nullptr) return false;
    *out = nullptr;
    if (name == nullptr || std::string_view(name) != kPluginName || !isPluginType(typeId)) return false;
    std::shared_ptr<zelt_gige_api::CameraApi> api = std::make_shared<zelt_gige_api::VimbaCameraApi>();
    // A plug-in without a camera API is made all the same; the host learns of it from initialize.
    if (!api->startup()) api.reset();
    *out = new (std::nothrow) CameraPlugin(kFirstInstance, std::move(api));
    return true;
}

bool CameraPluginCreator::destroyPlugin(const boost::uuids::uuid& typeId, zelt::IfDAQPlugin* plugin) {
    if (plugin == nullptr) return true;
    if (!isPluginType(typeId)) return false;
    delete plugin;
    return true;
}

}  // namespace zelt_gige_camera
