/// A plug-in brought up to the point where its channels are known.
#pragma once

#include <functional>
#include <map>
#include <memory>

#include "channel_info.h"
#include "message_board.h"
#include "plugin_handle.h"
#include "vendor_probe.h"

namespace host {

struct SessionOptions {
    /// How often devices are asked for until there is one, and what happens in between: tells whether to
    /// ask again.
    int attempts = 40;
    std::function<bool()> pause;
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
    /// The channels by id, as they are now.
    std::map<std::uint32_t, ChannelInfo> readChannels();
    std::shared_ptr<channel_config::IfChannelConfig> config(std::uint32_t id) { return m_configs.at(id); }
    /// "GIGE Camera plug-in GIGECAMERA · vendor library ..."
    std::string title();

  private:
    void bringUp();
    void listDevices();
    void findDevices(const SessionOptions& options);
    void takeChannels();

    PluginHandle m_plugin;
    std::unique_ptr<VendorProbe> m_vendor;
    std::map<std::uint32_t, std::shared_ptr<channel_config::IfChannelConfig>> m_configs;
    MessageBoard m_messages;
};

/// Asks for about two seconds, until there is a device or the user interrupts.
SessionOptions patientOptions();

}  // namespace host
