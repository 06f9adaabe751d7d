#include "session.h"

#include <chrono>
#include <thread>

#include "host_failure.h"
#include "steady_master_clock.h"

namespace host {

SessionOptions patientOptions() {
    SessionOptions options;
    options.pause = [] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        return !platform::interruptRequested();
    };
    return options;
}

Session::Session(PluginSource source, const SessionOptions& options)
    : Session(std::move(source), options, std::make_unique<VendorProbe>()) {}

Session::Session(PluginSource source, const SessionOptions& options, std::unique_ptr<VendorProbe> vendor)
    : m_plugin(std::move(source)), m_vendor(std::move(vendor)) {
    bringUp();
    findDevices(options);
    takeChannels();
}

void Session::bringUp() {
    m_plugin.setInstanceIndex(0);
    m_plugin.setHostValue(0);
    m_plugin.setSharedAcquisitionObject(std::make_shared<SteadyMasterClock>());
    m_plugin.createServices();
    std::string reason;
    try {
        if (m_plugin.initialize()) return;
    } catch (const PluginError& failure) {
        reason = std::string(" (") + failure.what() + ")";
    }
    throw HostFailure(ExitCode::CameraLibrary, "The camera vendor's library (" + m_vendor->describe() +
                                                   ") could not be started" + reason +
                                                   "; --log-level info shows what it reported.");
}

void Session::listDevices() {
    try {
        m_plugin.enumerateDevices();
    } catch (const PluginError& failure) {
        throw HostFailure(ExitCode::CameraLibrary, "The camera vendor's library (" + m_vendor->describe() +
                                                       ") could not list the cameras (" + failure.what() +
                                                       "); --log-level info shows what it reported.");
    }
}

void Session::findDevices(const SessionOptions& options) {
    for (int attempt = 1;; ++attempt) {
        listDevices();
        if (!m_plugin.getChannelIds().empty()) return;
        if (attempt >= options.attempts) break;
        if (!options.pause()) {
            throw HostFailure(ExitCode::Interrupted,
                              "Interrupted while looking for cameras; nothing was recorded.");
        }
    }
    throw HostFailure(
        ExitCode::NoCamera,
        "No camera was found; check power, cable and network of the camera (" + m_vendor->describe() + ").");
}

void Session::takeChannels() {
    for (const std::uint32_t id : m_plugin.getChannelIds()) {
        if (auto config = m_plugin.getChannelConfig(id)) m_configs.emplace(id, std::move(config));
        m_messages.subscribe(m_plugin.getChannel(id));
    }
}

std::map<std::uint32_t, ChannelInfo> Session::readChannels() {
    std::map<std::uint32_t, ChannelInfo> channels;
    for (const auto& [id, config] : m_configs) channels.emplace(id, readChannelInfo(id, *config));
    return channels;
}

std::string Session::title() {
    return m_plugin.getDisplayName() + " plug-in " + m_plugin.name() + " \u00b7 " + m_vendor->describe();
}

}  // namespace host
