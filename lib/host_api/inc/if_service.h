#pragma once

#include <cstdint>

#include "if_api_object.h"

namespace plugin_api {

/// An object that a plug-in publishes under a UUID.
class IfService : public rym::IfApiObject {
  public:
    /// Adds a reference; returns the count before. [any thread]
    virtual std::uint32_t addRef() = 0;
    /// Gives a reference back; returns the count before. [any thread]
    virtual std::uint32_t release() = 0;

  protected:
    ~IfService() = default;
};

}  // namespace plugin_api
