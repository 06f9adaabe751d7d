/// Makes camera plug-ins for the host.
#pragma once

#include "if_plugin_creator.h"

namespace zelt_gige_camera {

/// Short name of the plug-in, by which the host asks for it.
inline constexpr const char* kPluginName = "GIGECAMERA";

/// Stateless. See plugin_api::IfPluginCreator for what each operation promises.
class CameraPluginCreator final : public plugin_api::IfPluginCreator {
  public:
    std::uint32_t getInterfaceVersion() override;
    bool supportsPlugin(std::int32_t index, const boost::uuids::uuid& typeId) override;
    const char* getPluginName(std::int32_t index) override;
    bool createPlugin(const char* name, const boost::uuids::uuid& typeId, zelt::IfDAQPlugin** out) override;
    bool destroyPlugin(const boost::uuids::uuid& typeId, zelt::IfDAQPlugin* plugin) override;
};

}  // namespace zelt_gige_camera
