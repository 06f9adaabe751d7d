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
    /// Name for users, UTF-8; valid until the library is unloaded.
    virtual const char* getDisplayName() = 0;
    /// The same for every plug-in of this kind.
    virtual boost::uuids::uuid getPluginId() = 0;
    /// Number of this plug-in among those of the host; pairs with a channel's id to a host-wide id.
    virtual std::uint32_t getInstanceIndex() = 0;
    /// To be set before devices are enumerated: channels keep the number that they were made with. Any 32-bit
    /// number.
    virtual void setInstanceIndex(std::uint32_t index) = 0;
    /// What IfPluginCreator takes.
    virtual boost::uuids::uuid getPluginTypeId() = 0;
    /// Makes the services that getServiceFactory hands out. Called once, before initialize.
    virtual bool createServices() = 0;
    /// Starts the camera library and device discovery; false when it cannot, with the reason in the log.
    virtual bool initialize() = 0;
    /// Whether the plug-in can be used in this installation. [any thread]
    virtual bool isSupported() = 0;
    /// Stops discovery, closes every channel and stops the camera library. May be initialized again.
    virtual void terminate() = 0;
    /// Never null, always the same object.
    virtual std::shared_ptr<IfPluginConfig> getPluginConfig() = 0;
    /// An event of the host; without effect.
    virtual void onHostEvent(const void* event) = 0;
};

}  // namespace zelt
