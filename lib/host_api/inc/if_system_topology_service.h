#pragma once

#include <cstddef>
#include <cstdint>

#include "if_service.h"

namespace zelt {

/// Describes the measurement hardware that a plug-in contributes, as an XML document. Lives as long as the
/// plug-in; addRef and release do nothing and return 0.
class IfSystemTopologyService : public plugin_api::IfService {
  public:
    /// `text` is valid during the call only, `length` its bytes.
    using Callback = void (*)(void* context, const char* text, std::size_t length);

    /// Calls `callback` once with the document of the channels as they are now; a null callback is not
    /// called. The first argument has no effect. [host threads] Waits for the plug-in's operations, so the
    /// host must not call this from a callback of the plug-in's. Throws boost::bad_get, without a call of
    /// `callback`, when a channel has a name that is no text.
    virtual void getTopology(std::uint64_t reserved, Callback callback, void* context) = 0;
    /// Whether the document changes without a new enumeration of the devices.
    virtual bool isTopologyDynamic() = 0;
    /// Keeps the host's handle of a listener, in place of an earlier one. [any thread]
    virtual void setListener(std::uint64_t handle) = 0;
    /// Forgets the listener if it is this one; true then. [any thread]
    virtual bool removeListener(std::uint64_t handle) = 0;

  protected:
    ~IfSystemTopologyService() = default;
};

}  // namespace zelt
