/// What a channel asks of the plug-in it belongs to.
#pragma once

#include <cstdint>

namespace zelt_gige_camera {

/// Shared state of plug-in and channels. A channel keeps it alive and may outlive the plug-in by it.
class IfChannelOwner {
  public:
    virtual ~IfChannelOwner() = default;
    /// Bandwidth that all used channels need together, bytes per second. [any thread] Takes no channel's
    /// mutex and not the plug-in's.
    virtual std::uint64_t getTotalRequiredBandwidth() const = 0;
};

}  // namespace zelt_gige_camera
