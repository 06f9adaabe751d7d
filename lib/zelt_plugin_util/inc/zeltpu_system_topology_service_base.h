/// What every plug-in's topology service has in common: the document, the host's callback, the listener.
#pragma once

#include <cstdint>

#include <pugixml.hpp>

#include "if_daq_plugin.h"
#include "if_system_topology_service.h"
#include "mutex.h"

namespace zelt::plugin_util {

/// See zelt::IfSystemTopologyService for what the host is promised.
class SystemTopologyServiceBase : public IfSystemTopologyService {
  public:
    SystemTopologyServiceBase(const SystemTopologyServiceBase&) = delete;
    SystemTopologyServiceBase& operator=(const SystemTopologyServiceBase&) = delete;

    std::uint32_t addRef() override { return 0; }
    std::uint32_t release() override { return 0; }
    void getTopology(std::uint64_t reserved, Callback callback, void* context) override;
    bool isTopologyDynamic() override { return false; }
    void setListener(std::uint64_t handle) override;
    bool removeListener(std::uint64_t handle) override;

    /// Adds what the plug-in contributes to the element "MeasurementTree". [host] No lock is held.
    virtual void fillMeasurementTree(pugi::xml_node tree) = 0;

  protected:
    /// `plugin` must outlive this; it may be null if fillMeasurementTree can do without.
    explicit SystemTopologyServiceBase(IfDAQPlugin* plugin) : m_plugin(plugin) {}
    ~SystemTopologyServiceBase() = default;

    IfDAQPlugin* getPlugin() const { return m_plugin; }

  private:
    IfDAQPlugin* const m_plugin;
    platform::Mutex m_mutex;
    std::uint64_t m_listener ZELT_GUARDED_BY(m_mutex) = 0;
};

}  // namespace zelt::plugin_util
