/// A plug-in brought up to the point where its channels are known.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include "channel_info.h"
#include "message_board.h"
#include "plugin_handle.h"
#include "vendor_probe.h"

namespace host {

struct SessionOptions {
    /// How often devices are asked for at most, and what happens in between: tells whether to ask again.
    int attempts = 40;
    std::function<bool()> pause;
    /// Cameras of a network answer one after the other. The search ends when these channels are there, or,
    /// without any, when so many enumerations in a row brought nothing new to what was found. What other
    /// channels tell is not listened to.
    std::set<std::uint32_t> wanted;
    int quietEnumerations = 0;
    /// Every camera gets two channels beside it that count its frames.
    bool frameCounters = false;
};

/// The two channels that count a camera's frames.
struct FrameCounterIds {
    std::uint32_t sent = zelt::IfDAQPlugin::kNoChannel;
    std::uint32_t received = zelt::IfDAQPlugin::kNoChannel;
};

/// Owns the plug-in and everything that hangs on it, in the order in which it has to go. [main thread]
class Session {
  public:
    /// Creates the plug-in, starts it and finds its channels. Throws HostFailure.
    Session(PluginSource source, const SessionOptions& options);
    /// The same with the vendor library given instead of looked up.
    Session(PluginSource source, const SessionOptions& options, std::unique_ptr<VendorProbe> vendor);

    PluginHandle& plugin() { return m_plugin; }
    const VendorProbe& vendor() const { return *m_vendor; }
    MessageBoard& messages() { return m_messages; }
    /// The cameras' channels by id, as they are now.
    std::map<std::uint32_t, ChannelInfo> readChannels();
    std::shared_ptr<channel_config::IfChannelConfig> config(std::uint32_t id) { return m_configs.at(id); }
    /// The cameras' channels that are switched on.
    std::set<std::uint32_t> usedChannels();
    /// Those asked for, or all when none is. Throws HostFailure for an unknown one.
    std::set<std::uint32_t> chooseChannels(const std::set<std::uint32_t>& wanted);
    /// The counters of a camera; empty without any.
    std::optional<FrameCounterIds> frameCounters(std::uint32_t camera) const;
    /// "GIGE Camera plug-in GIGECAMERA · vendor library ..."
    std::string title();

  private:
    void bringUp();
    void switchFrameCountersOn();
    void listDevices();
    void findDevices(const SessionOptions& options);
    bool isComplete(const std::set<std::uint32_t>& found, int quiet, const SessionOptions& options) const;
    void takeChannels(const std::set<std::uint32_t>& wanted);
    bool takeCounter(std::uint32_t id, channel_config::IfChannelConfig& config);

    PluginHandle m_plugin;
    std::unique_ptr<VendorProbe> m_vendor;
    std::map<std::uint32_t, std::shared_ptr<channel_config::IfChannelConfig>> m_configs;
    std::map<std::uint32_t, FrameCounterIds> m_counters;
    MessageBoard m_messages;
};

/// Asks for about two seconds at most, until the channels wanted are there, or, without any, until no new
/// camera has answered for half a second, or the user interrupts.
SessionOptions patientOptions(const std::set<std::uint32_t>& wanted = {}, bool frameCounters = false);

}  // namespace host
