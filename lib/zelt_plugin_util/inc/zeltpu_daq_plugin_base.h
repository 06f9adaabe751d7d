/// Base of every acquisition plug-in: the defaults of the host's plug-in interface.
#pragma once

#include <atomic>
#include <cstdint>

#include "if_daq_plugin.h"

namespace zelt::plugin_util {

/// Operations not listed here have no default. [any thread]
class DAQPluginBase : public IfDAQPlugin {
  public:
    explicit DAQPluginBase(std::uint32_t instanceIndex);

    std::uint32_t getInstanceIndex() override;
    void setInstanceIndex(std::uint32_t index) override;
    boost::uuids::uuid getPluginTypeId() override;
    /// Does nothing.
    void enumerateDevices() override;
    /// Null: no services.
    plugin_api::IfServiceFactory* getServiceFactory() override;
    /// True.
    bool isSupported2() override;
    /// True.
    bool isReadyForAcquisition() override;
    /// False.
    bool hasSystemTopology() override;
    /// True.
    bool onAcquisitionPrepared() override;
    /// True.
    bool onAcquisitionFinished() override;

  private:
    std::atomic<std::uint32_t> m_instance_index;
};

}  // namespace zelt::plugin_util
