#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "if_channel_config.h"
#include "if_channel_sink.h"
#include "if_master_clock.h"
#include "if_plugin_common.h"
#include "if_service_factory.h"

namespace zelt {

/// An acquisition plug-in. The slot order is the contract; the order of calls is
/// createServices, initialize, enumerateDevices, setChannelSink, then per acquisition prepareAcquisition,
/// onAcquisitionPrepared, startAcquisition, processAcquisition (repeated), stopAcquisition,
/// onAcquisitionFinished, and at the end clearChannelSinks and terminate.
///
/// [host threads] Operations may come from several threads; most wait for each other.
class IfDAQPlugin : public IfPluginCommon {
  public:
    /// Answer of findChannelId when there is none; never the id of a channel.
    static constexpr std::uint32_t kNoChannel = ~std::uint32_t{0};

    /// Brings the channels in line with the devices that are there now. Ids of channels that stay are kept.
    virtual void enumerateDevices() = 0;
    /// The services, with one reference added for the caller; null without any.
    virtual plugin_api::IfServiceFactory* getServiceFactory() = 0;
    /// A value of the host's that is handed to every channel made afterwards.
    virtual void setHostValue(std::uint64_t value) = 0;
    /// As isSupported. [any thread]
    virtual bool isSupported2() = 0;
    /// Sets the receiver of a channel's samples; null for none. Nothing happens for an unknown id. The old
    /// one is not called after this returned.
    virtual void setChannelSink(std::uint32_t channelId, IfChannelSink* sink) = 0;
    /// Drops all sinks; none of them is called after this returned.
    virtual void clearChannelSinks() = 0;
    /// Ids of all channels, cameras' and counters', as of the last enumeration.
    virtual std::set<std::uint32_t> getChannelIds() = 0;
    /// Id of the channel with a persistent identity text; kNoChannel without any.
    virtual std::uint32_t findChannelId(const std::string& key) = 0;
    /// Opens, configures and arms every used channel. False when one cannot run as it is set; throws
    /// exception_manager::Exception when a camera cannot be opened. All channels are visited in any case.
    virtual bool prepareAcquisition() = 0;
    /// Whether an acquisition was started and not stopped since. [any thread]
    virtual bool isAcquiring() = 0;
    /// False before initialize; a camera that is away does not make it false. [any thread]
    virtual bool isReadyForAcquisition() = 0;
    /// False: the topology is described by a service alone. [any thread]
    virtual bool hasSystemTopology() = 0;
    /// Starts every used channel; needs the master clock. Throws exception_manager::Exception when a channel
    /// cannot start; nothing runs then, and the next attempt begins with prepareAcquisition.
    virtual bool startAcquisition() = 0;
    /// Stops every channel. Throws the first failure after all channels were visited.
    virtual bool stopAcquisition() = 0;
    /// The host is about to start; from here on the channels count as acquiring. True.
    virtual bool onAcquisitionPrepared() = 0;
    /// The acquisition has ended. True.
    virtual bool onAcquisitionFinished() = 0;
    /// To be called about once a second while acquiring; brings in what the cameras change by themselves.
    /// False before initialize.
    virtual bool processAcquisition() = 0;
    /// Configuration of a channel; null for an unknown id.
    virtual std::shared_ptr<channel_config::IfChannelConfig> getChannelConfig(std::uint32_t channelId) = 0;
    /// The host's time base, for all channels; empty for none.
    virtual void setSharedAcquisitionObject(std::shared_ptr<IfMasterClock> clock) = 0;
    /// Checks settings of the channels named; false when one is unknown or cannot run as it is set, or before
    /// initialize. `flag` has no effect.
    virtual bool checkChannelSettings(const std::vector<std::uint32_t>& channelIds, bool flag) = 0;
    /// A channel; empty for an unknown id.
    virtual std::shared_ptr<channel_config::IfChannelConfig> getChannel(std::uint32_t channelId) = 0;
    /// Samples per second; NaN: the channels have rates of their own.
    virtual double getNominalRate() = 0;
};

}  // namespace zelt
