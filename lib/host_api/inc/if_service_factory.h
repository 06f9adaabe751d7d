#pragma once

#include <boost/uuid/uuid.hpp>

#include "if_service.h"

namespace plugin_api {

/// Registry of a plug-in's services. Reference counted: it deletes itself with the last release. The host
/// gives every reference back before it destroys the plug-in.
class IfServiceFactory : public IfService {
  public:
    /// Finds a service. With `out` null: only tells whether it exists. Otherwise stores it there with one
    /// reference added for the caller, or null, and tells whether it was found. [any thread]
    virtual bool getService(const boost::uuids::uuid& id, IfService** out) = 0;

    virtual ~IfServiceFactory() = default;
};

}  // namespace plugin_api
