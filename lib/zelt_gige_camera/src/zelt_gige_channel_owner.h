/// What a channel asks of the plug-in it belongs to.
#pragma once

#include <cstdint>
#include <functional>

#include "zelt_gige_aux_frequency.h"

namespace zelt_gige_camera {

/// Shared state of plug-in and channels. A channel keeps it alive and may outlive the plug-in by it.
class IfChannelOwner {
  public:
    virtual ~IfChannelOwner() = default;
    /// Bandwidth that all used channels need together, bytes per second. [any thread] Takes no channel's
    /// mutex and not the plug-in's.
    virtual std::uint64_t getTotalRequiredBandwidth() const = 0;
    /// Calls `store` with the frequency of the host's trigger output, or with none when the plug-in is gone.
    /// No change comes between the two. [host] Takes the AUX service's mutex, so that the channel's must not
    /// be held; `store` may take it.
    virtual void deliverAuxFrequency(const std::function<void(const AuxFrequency&)>& store) const = 0;
};

}  // namespace zelt_gige_camera
