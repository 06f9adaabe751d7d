#include "fault_world.h"

#include <stdexcept>
#include <utility>

#include <boost/variant.hpp>

#include "zelt_gige_vmb_api.h"

namespace faults {
namespace {

constexpr std::uint64_t kMillisecondNs = 1'000'000;
/// Discovery, events and whatever else a phase has set going are through by then.
constexpr std::uint64_t kSettleNs = 10 * kMillisecondNs;

using Settings = std::vector<std::pair<const char*, const char*>>;

/// What all recordings are made with; pictures are small so that they cost no time. What a camera does not
/// have is left out.
const Settings& recordedWith(const char* camera) {
    static const Settings common{{"FrameWidth", "32"},
                                 {"FrameHeight", "4"},
                                 {"FrameOffsetX", "8"},
                                 {"FrameOffsetY", "2"},
                                 {"CAMERA/ExposureAuto", "GIGE/AutoSettingOff"},
                                 {"CAMERA/GainAuto", "GIGE/AutoSettingOff"},
                                 {"CAMERA/WhitebalanceAuto", "GIGE/AutoSettingOff"},
                                 {"CAMERA/Exposure", "200"},
                                 {"CAMERA/Gain", "3"},
                                 {"CAMERA/GainAutoAdjustTol", "7"},
                                 {"CAMERA/GainAutoRate", "50"},
                                 {"CAMERA/Gamma", "1"},
                                 {"CAMERA/Hue", "2"},
                                 {"CAMERA/Saturation", "1.5"},
                                 {"CAMERA/WhitebalanceRed", "1.25"},
                                 {"CAMERA/WhitebalanceBlue", "1.5"},
                                 {"CAMERA/TriggerMode", "GIGE/TriggerModeFixed"}};
    const auto with = [](const char* format, const char* rate) {
        Settings all = common;
        all.insert(all.begin(), {"FrameFormat", format});
        all.emplace_back("CAMERA/FrameSetting", rate);
        return all;
    };
    static const Settings colour = with("RGB", "50");
    static const Settings monochrome = with("Y800", "40");
    return camera == kCameras[0] ? colour : monochrome;
}

std::string itemText(const config_items::ConfigItemVariant& item) {
    return boost::apply_visitor([](const auto& value) { return value.toString(); }, item);
}

/// Numbers are set as numbers, the rest as texts.
config_items::ConfigItemVariant itemOf(const std::string& value) {
    if (value.find_first_not_of("0123456789.") == std::string::npos) {
        return config_items::ScalarConfigItem(std::stod(value), "");
    }
    return config_items::SingleValueConfigItem<std::string>(value);
}

bool hasKey(const channel_config::IfChannelConfig& config, const std::string& key) {
    const auto& keys = const_cast<channel_config::IfChannelConfig&>(config).getKeys();
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

void require(bool done, const char* what) {
    if (!done) throw std::runtime_error(std::string("not possible: ") + what);
}

}  // namespace

const char* nameOf(Phase phase) {
    constexpr const char* kNames[] = {"Create",  "Initialise", "Enumerate", "Open",     "Configure",
                                      "Prepare", "Start",      "Stream",    "Settings", "Stop",
                                      "Close",   "Terminate",  "Destroy"};
    return kNames[static_cast<int>(phase)];
}

World::World() {
    require(VmbSimUseVirtualTime(true) == VmbErrorSuccess, "virtual time");
    VmbSimSetWatchdog(test_support::kPatienceMs);
}

World::~World() {
    destroy();
    VmbSimSetWatchdog(0);
    VmbSimUseVirtualTime(false);
}

void World::advance(std::uint64_t ns) {
    require(VmbSimAdvance(ns) == VmbErrorSuccess, "time that passes");
}

void World::create() {
    auto api = std::make_shared<zelt_gige_api::VimbaCameraApi>(pages);
    require(api->startup(), "the vendor's library");
    m_plugin = new zelt_gige_camera::CameraPlugin(0, std::move(api), m_hours);
    m_counts_pages = true;
}

void World::destroy() {
    if (m_plugin == nullptr) return;
    if (m_services != nullptr) m_services->release();
    m_services = nullptr;
    m_creator.destroyPlugin(test_support::pluginTypeId(), std::exchange(m_plugin, nullptr));
}

zelt::IfSyncAuxService& World::aux() {
    if (m_services == nullptr) {
        m_plugin->createServices();
        m_services = m_plugin->getServiceFactory();
    }
    plugin_api::IfService* service = nullptr;
    m_services->getService(boost::uuids::string_generator()("{784229AE-48AB-4A05-8F83-9FB70F11827F}"),
                           &service);
    return static_cast<zelt::IfSyncAuxService&>(*service);
}

bool World::initialise() {
    m_plugin->setSharedAcquisitionObject(m_clock);
    m_plugin->getPluginConfig()->setItem(config_keys::kFrameCounterChannels,
                                         config_items::SingleValueConfigItem<bool>(true));
    const bool initialised = m_plugin->initialize();
    advance(kSettleNs);
    return initialised;
}

bool World::set(const char* camera, const std::string& key, const std::string& value) {
    const auto config = m_plugin->getChannelConfig(channelOf(camera));
    if (config == nullptr) return false;
    return !hasKey(*config, key) || config->setItem(key, itemOf(value));
}

bool World::applySettings() {
    bool all = true;
    for (const char* camera : kCameras) {
        for (const auto& [key, value] : recordedWith(camera)) {
            const std::map<std::string, std::string> now = settingsOf(camera);
            const auto current = now.find(key);
            // Behind a number stands its unit.
            if (current != now.end() && current->second.substr(0, current->second.find(' ')) == value)
                continue;
            all = set(camera, key, value) && all;
        }
    }
    return all;
}

std::string World::messageOf(const char* camera) {
    if (m_plugin == nullptr) return {};
    const auto channel = m_plugin->getChannel(channelOf(camera));
    auto* const messages = dynamic_cast<zelt::IfChannelMessages*>(channel.get());
    exception_manager::Exception message;
    if (messages == nullptr || !messages->getLastMessage(message)) return {};
    return exception_manager::fillPlaceholders(message);
}

std::map<std::string, std::string> World::settingsOf(const char* camera) {
    std::map<std::string, std::string> settings;
    const auto config = m_plugin->getChannelConfig(channelOf(camera));
    if (config == nullptr) return settings;
    for (const std::string& key : config->getKeys()) settings[key] = itemText(config->getItem(key));
    return settings;
}

/// What a user does to one camera: every setting, both trigger modes, the actions.
bool World::changeSettings(const char* camera) {
    bool all = true;
    const auto change = [&](const std::string& key, const std::string& value) {
        all = set(camera, key, value) && all;
    };
    for (const auto& [key, value] : recordedWith(camera)) change(key, value);
    change("CAMERA/TriggerMode", "GIGE/TriggerModeAux");
    change("CAMERA/TriggerMode", "GIGE/TriggerModeFixed");
    const auto config = m_plugin->getChannelConfig(channelOf(camera));
    for (const char* name : {"Gain", "Exposure", "Whitebalance"}) {
        const std::string action = std::string("ACTION:Camera/Auto") + name;
        if (!hasKey(*config, action)) continue;
        all = config->setItem(action, config_items::SingleValueConfigItem<bool>(true)) && all;
        change(std::string("CAMERA/") + name + "Auto", "GIGE/AutoSettingOff");
    }
    return all;
}

bool World::runSettings() {
    aux().setSyncOutAuxFrequency(30, 1);
    bool all = true;
    for (const char* camera : kCameras) all = changeSettings(camera) && all;
    return all;
}

void World::bringTo(Phase phase) {
    destroy();
    VmbSimClearFaults();
    require(VmbSimLoadScenario("two-cameras") == VmbErrorSuccess, "a scenario: the library is still started");
    VmbSimForceFeature(nullptr, "GeVDiscoveryAllDuration", "1");
    if (phase == Phase::Create) return;
    create();
    arrange(phase);
}

/// Everything from a plug-in that was just made to a phase.
void World::arrange(Phase phase) {
    if (phase == Phase::Initialise) return;
    const bool late = phase == Phase::Open;
    for (const char* camera : kCameras) VmbSimTakeControl(camera, late);
    require(initialise(), "initialisation");
    if (phase == Phase::Enumerate) return;
    m_plugin->enumerateDevices();
    for (const char* camera : kCameras) VmbSimTakeControl(camera, false);
    if (phase == Phase::Settings) return;
    require(applySettings(), "settings");
    if (phase == Phase::Open || phase == Phase::Configure) return;
    require(m_plugin->prepareAcquisition(), "preparation");
    if (phase == Phase::Prepare) return;
    if (phase == Phase::Close) {
        // The cameras cannot be found, yet all that is held of them can be given back.
        for (const char* camera : kCameras) VmbSimHiccup(camera, 1000 * kMillisecondNs);
        advance(kSettleNs);
        return;
    }
    if (phase == Phase::Start) return;
    require(run(Phase::Start).answer == Answer::Yes, "a start");
    if (phase == Phase::Stream) {
        for (const char* camera : kCameras) {
            for (const char* key : {"CAMERA/GainAuto", "CAMERA/ExposureAuto", "CAMERA/WhitebalanceAuto"}) {
                require(set(camera, key, "GIGE/AutoSettingContinuous"), key);
            }
        }
        return;
    }
    advance(100 * kMillisecondNs);
    if (phase == Phase::Terminate) require(run(Phase::Stop).answer == Answer::Yes, "a stop");
}

bool World::start() {
    m_plugin->onAcquisitionPrepared();
    const bool started = m_plugin->startAcquisition();
    advance(kSettleNs);
    return started;
}

bool World::stop() {
    const bool stopped = m_plugin->stopAcquisition();
    m_plugin->onAcquisitionFinished();
    advance(kSettleNs);
    return stopped;
}

Outcome World::run(Phase phase) {
    return attempt([&] {
        switch (phase) {
            case Phase::Create:
                m_counts_pages = false;
                return m_creator.createPlugin("GIGECAMERA", test_support::pluginTypeId(), &m_plugin);
            case Phase::Initialise:
                return initialise();
            case Phase::Enumerate:
            case Phase::Close:
                m_plugin->enumerateDevices();
                return true;
            case Phase::Open:
            case Phase::Configure:
            case Phase::Prepare:
                return m_plugin->prepareAcquisition();
            case Phase::Start:
                return start();
            case Phase::Stream:
                advance(100 * kMillisecondNs);
                return m_plugin->processAcquisition();
            case Phase::Settings:
                return runSettings();
            case Phase::Stop:
                return stop();
            case Phase::Terminate:
                m_plugin->terminate();
                return true;
            case Phase::Destroy:
                destroy();
                return true;
        }
        return false;
    });
}

}  // namespace faults
