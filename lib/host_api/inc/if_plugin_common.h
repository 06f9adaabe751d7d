#pragma once

#include <cstdint>
#include <memory>

#include <boost/uuid/uuid.hpp>

#include "if_plugin_config.h"

namespace zelt {

/// What every plug-in of the host offers. The slot order is the contract.
class IfPluginCommon {
  public:
    virtual ~IfPluginCommon() = default;
    virtual const char* getDisplayName() = 0;
    virtual boost::uuids::uuid getPluginId() = 0;
    /// Number of this plug-in among those of the host; pairs with a channel's id to a host-wide id.
    virtual std::uint32_t getInstanceIndex() = 0;
    virtual void setInstanceIndex(std::uint32_t index) = 0;
    virtual boost::uuids::uuid getPluginTypeId() = 0;
    /// Makes the services that getServiceFactory hands out. Called once, before initialize.
    virtual bool createServices() = 0;
    /// Starts the camera library and device discovery; false when it cannot, with the reason in the log.
    virtual bool initialize() = 0;
    virtual bool isSupported() = 0;
    /// Stops discovery, closes every channel and stops the camera library. May be initialized again.
    virtual void terminate() = 0;
    virtual std::shared_ptr<IfPluginConfig> getPluginConfig() = 0;
    /// An event of the host; without effect.
    virtual void onHostEvent(const void* event) = 0;
};

}  // namespace zelt
