/// Describes the cameras and their counters to the host.
#pragma once

#include "zeltpu_system_topology_service_base.h"

namespace zelt_gige_camera {

/// All cameras stand in one enclosure of the local node, each with its counters inside its element.
class CameraSystemTopologyService final : public zelt::plugin_util::SystemTopologyServiceBase {
  public:
    /// `plugin`: a CameraPlugin that outlives this; null is an assertion, and the tree stays empty then.
    explicit CameraSystemTopologyService(zelt::IfDAQPlugin* plugin);

    void fillMeasurementTree(pugi::xml_node tree) override;
};

}  // namespace zelt_gige_camera
