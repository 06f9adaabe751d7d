#include "session.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "config_item_variant.h"
#include "config_keys.h"
#include "host_failure.h"
#include "setting_text.h"
#include "steady_master_clock.h"

namespace host {

SessionOptions patientOptions(const std::set<std::uint32_t>& wanted, bool frameCounters) {
    SessionOptions options;
    options.wanted = wanted;
    options.quietEnumerations = 10;
    options.frameCounters = frameCounters;
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
    if (options.frameCounters) switchFrameCountersOn();
    findDevices(options);
    takeChannels(options.wanted);
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

void Session::switchFrameCountersOn() {
    const auto config = m_plugin.getPluginConfig();
    const config_items::SingleValueConfigItem<bool> on(true);
    if (config && config->hasItem(config_keys::kFrameCounterChannels) &&
        config->setItem(config_keys::kFrameCounterChannels, on)) {
        return;
    }
    throw HostFailure(ExitCode::NoService, "This plug-in has no frame counters; leave --counters out.");
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
    std::set<std::uint32_t> known;
    int quiet = 0;
    for (int attempt = 1;; ++attempt) {
        listDevices();
        const std::set<std::uint32_t> found = m_plugin.getChannelIds();
        quiet = found == known ? quiet + 1 : 0;
        known = found;
        if (isComplete(found, quiet, options)) return;
        if (attempt >= options.attempts) break;
        if (!options.pause()) {
            throw HostFailure(ExitCode::Interrupted,
                              "Interrupted while looking for cameras; nothing was recorded.");
        }
    }
    if (!known.empty()) return;
    throw HostFailure(
        ExitCode::NoCamera,
        "No camera was found; check power, cable and network of the camera (" + m_vendor->describe() + ").");
}

bool Session::isComplete(const std::set<std::uint32_t>& found, int quiet,
                         const SessionOptions& options) const {
    if (found.empty()) return false;
    // Simulated cameras are not on a network and answer together.
    if (!m_vendor->scenario().empty()) return true;
    if (options.wanted.empty()) return quiet >= options.quietEnumerations;
    return std::includes(found.begin(), found.end(), options.wanted.begin(), options.wanted.end());
}

void Session::takeChannels(const std::set<std::uint32_t>& wanted) {
    for (const std::uint32_t id : m_plugin.getChannelIds()) {
        auto config = m_plugin.getChannelConfig(id);
        const bool isCounter = config && takeCounter(id, *config);
        if (config && !isCounter) m_configs.emplace(id, std::move(config));
        const bool isUnused = !isCounter && !wanted.empty() && !wanted.contains(id);
        if (!isUnused) m_messages.subscribe(id, m_plugin.getChannel(id));
    }
}

bool Session::takeCounter(std::uint32_t id, channel_config::IfChannelConfig& config) {
    if (!config.hasKey(config_keys::kIdCameraSubChannelId)) return false;
    const std::string camera = valueText(config.getItem(config_keys::kIdCameraChannelIndex));
    FrameCounterIds& counters = m_counters[static_cast<std::uint32_t>(std::stoul(camera))];
    const std::string kind = valueText(config.getItem(config_keys::kIdCameraSubChannelId));
    if (kind == "CntSent") counters.sent = id;
    if (kind == "CntReceived") counters.received = id;
    return true;
}

std::optional<FrameCounterIds> Session::frameCounters(std::uint32_t camera) const {
    const auto found = m_counters.find(camera);
    const std::uint32_t none = zelt::IfDAQPlugin::kNoChannel;
    if (found == m_counters.end() || found->second.sent == none || found->second.received == none) return {};
    return found->second;
}

std::set<std::uint32_t> Session::chooseChannels(const std::set<std::uint32_t>& wanted) {
    std::set<std::uint32_t> known;
    std::string names;
    for (const auto& [id, config] : m_configs) {
        known.insert(id);
        names += (names.empty() ? "" : ", ") + std::to_string(id);
    }
    for (const std::uint32_t id : wanted) {
        if (known.contains(id)) continue;
        throw HostFailure(ExitCode::UnknownChannel,
                          "There is no channel " + std::to_string(id) + "; the channels are " + names + ".");
    }
    return wanted.empty() ? known : wanted;
}

std::set<std::uint32_t> Session::usedChannels() {
    std::set<std::uint32_t> used;
    for (const auto& [id, config] : m_configs) {
        if (isUsed(*config)) used.insert(id);
    }
    return used;
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
