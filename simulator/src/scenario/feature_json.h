/// Values of features as a scenario writes them.
#pragma once

#include <memory>

#include "camera.h"
#include "scenario_error.h"

namespace simulator {

/// A camera that is there only to try out what a scenario wants of one. `row` must outlive it.
class FeatureProbe {
  public:
    explicit FeatureProbe(const CameraRow& row);

    /// Sets the feature; throws ScenarioError when the camera would not take the value.
    PowerUpValue preset(const std::string& name, const Json& value, const Place& at);
    /// The text form of a value that the feature can be forced to.
    std::string forcedText(const std::string& name, const Json& value, const Place& at);

  private:
    Camera m_camera;
};

/// The same for a feature of the library itself.
std::string forcedSystemText(const std::string& name, const Json& value, const Place& at);

}  // namespace simulator
