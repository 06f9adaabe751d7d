/// The one way through which the host drives a plug-in.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "if_daq_plugin.h"
#include "plugin_library.h"

namespace host {

/// An operation was called out of order; the plug-in has not been reached.
class WrongOrder : public std::logic_error {
  public:
    using std::logic_error::logic_error;
};

/// The plug-in reported a failure by an exception; carries its text with all placeholders filled.
class PluginError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Owns a plug-in from its creation to its destruction. Operations are named as the plug-in's; they throw
/// WrongOrder when called out of order and PluginError when the plug-in throws. The destructor undoes
/// whatever was done, in reverse order. [one thread]
class PluginHandle {
  public:
    /// Creates the library's first plug-in. Throws HostFailure when the creator refuses.
    explicit PluginHandle(PluginSource source);
    ~PluginHandle();
    PluginHandle(const PluginHandle&) = delete;
    PluginHandle& operator=(const PluginHandle&) = delete;

    const std::string& name() const { return m_source.name; }
    std::string getDisplayName();

    void setInstanceIndex(std::uint32_t index);
    void setHostValue(std::uint64_t value);
    void setSharedAcquisitionObject(std::shared_ptr<zelt::IfMasterClock> clock);
    void createServices();
    /// The services; the handle keeps the reference and gives it back.
    plugin_api::IfServiceFactory& getServiceFactory();
    /// Of the trigger output's service; numerator and denominator 0 for none. PluginError without the
    /// service.
    void setSyncOutAuxFrequency(std::int64_t numerator, std::int64_t denominator);
    /// The document of the topology service; empty without the service. The plug-in must know its devices.
    std::optional<std::string> getTopology();
    /// Settings of the plug-in itself; they are read when devices are enumerated, so only before that.
    std::shared_ptr<zelt::IfPluginConfig> getPluginConfig();
    bool initialize();
    void enumerateDevices();
    std::set<std::uint32_t> getChannelIds();
    std::shared_ptr<channel_config::IfChannelConfig> getChannelConfig(std::uint32_t id);
    std::shared_ptr<channel_config::IfChannelConfig> getChannel(std::uint32_t id);
    /// Not while an acquisition is under way.
    bool checkChannelSettings(const std::vector<std::uint32_t>& ids);
    void setChannelSink(std::uint32_t id, zelt::IfChannelSink* sink);
    bool prepareAcquisition();
    bool onAcquisitionPrepared();
    bool startAcquisition();
    bool processAcquisition();
    bool stopAcquisition();
    bool onAcquisitionFinished();
    void clearChannelSinks();
    void terminate();
    /// Ends an acquisition wherever it stands and drops the sinks; failures are swallowed.
    void cancelAcquisition() noexcept;

  private:
    enum class Stage { Created, Services, Initialized, Enumerated, Prepared, Armed, Running, Stopped };

    plugin_api::IfService* findService(const char* id);
    void require(bool allowed, const char* operation, const char* needs) const;
    std::shared_ptr<channel_config::IfChannelConfig> lend(
        std::shared_ptr<channel_config::IfChannelConfig> channel);
    void undo();
    void destroy();
    bool isIdle() const { return m_stage == Stage::Enumerated || m_stage == Stage::Prepared; }

    PluginSource m_source;
    zelt::IfDAQPlugin* m_plugin = nullptr;
    plugin_api::IfServiceFactory* m_factory = nullptr;
    std::map<std::string, plugin_api::IfService*> m_services;
    Stage m_stage = Stage::Created;
    bool m_has_sinks = false;
    std::vector<std::weak_ptr<channel_config::IfChannelConfig>> m_lent;
};

}  // namespace host
