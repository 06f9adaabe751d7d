#pragma once

#include <cstdint>

#include <boost/uuid/uuid.hpp>

namespace zelt {
class IfDAQPlugin;
}

namespace plugin_api {

/// Makes and destroys the plug-ins of a library. One static object per library, valid until it is unloaded.
class IfPluginCreator {
  public:
    /// Version of this interface: 1.
    virtual std::uint32_t getInterfaceVersion() = 0;
    /// True for index 0 and the library's plug-in type id.
    virtual bool supportsPlugin(std::int32_t index, const boost::uuids::uuid& typeId) = 0;
    /// Name of the plug-in at `index`, null beyond the last. The caller must not free it.
    virtual const char* getPluginName(std::int32_t index) = 0;
    /// Makes a plug-in, owned by the host until handed to destroyPlugin. A wrong name (case-sensitive) or id
    /// gives null and false. Out of memory gives null and true.
    virtual bool createPlugin(const char* name, const boost::uuids::uuid& typeId,
                              zelt::IfDAQPlugin** out) = 0;
    /// Destroys a plug-in in whatever state it is. Null is accepted; a wrong id gives false and does nothing.
    virtual bool destroyPlugin(const boost::uuids::uuid& typeId, zelt::IfDAQPlugin* plugin) = 0;

  protected:
    ~IfPluginCreator() = default;
};

}  // namespace plugin_api

/// Names and types of the two functions that a plug-in library exports.
extern "C" {
using ZeltGetPluginDllName = const char*();
using ZeltGetPluginFactory = plugin_api::IfPluginCreator*();
}
