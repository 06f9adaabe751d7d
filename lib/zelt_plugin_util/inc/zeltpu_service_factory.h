/// Registry through which a plug-in publishes its services.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

#include <boost/uuid/uuid.hpp>

#include "if_service_factory.h"

namespace zeltpu {

/// The text under which a service is kept: 32 upper-case hexadecimal digits, the bytes in storage order.
std::string serviceKeyText(const boost::uuids::uuid& id);

/// Reference counted: made with new and a count of 0, destroyed by its last release, which gives back the
/// references to its services in key order.
///
/// Services are registered before the factory is handed out; lookups afterwards only read.
class ServiceFactory final : public plugin_api::IfServiceFactory {
  public:
    ServiceFactory() = default;
    ServiceFactory(const ServiceFactory&) = delete;
    ServiceFactory& operator=(const ServiceFactory&) = delete;

    std::uint32_t addRef() override;
    /// Asserts that there is a reference to give back; without one the count wraps and nothing is destroyed.
    std::uint32_t release() override;
    bool getService(const boost::uuids::uuid& id, plugin_api::IfService** out) override;

    /// Publishes a service and adds a reference to it. The first registration of an id stays: a second one
    /// adds a reference that is never given back, and is not stored. Asserts that the service is not null;
    /// null is not stored and gives false, all else true.
    bool registerService(const boost::uuids::uuid& id, plugin_api::IfService* service);

  private:
    ~ServiceFactory() override;

    std::map<std::string, plugin_api::IfService*> m_services;
    std::atomic<std::uint32_t> m_ref_count{0};
};

}  // namespace zeltpu
