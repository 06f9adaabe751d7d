#include "camera_channel_calls.h"

#include <algorithm>
#include <array>

#include <boost/uuid/string_generator.hpp>

#include "config_items.h"
#include "config_keys.h"
#include "simulator.h"
#include "zelt_gige_vmb_api.h"

namespace property_tests {
namespace {

using namespace config_keys;
using config_items::SingleValueConfigItem;
using test_support::kPatienceMs;
using zelt_gige_api::CameraApiError;

constexpr const char* kCameras[] = {test_support::kColourCamera, test_support::kMonochromeCamera};
/// Settings that bear on the timing, so that the channel is validated with every change of them.
const std::array<std::string, 9> kChecked{kFrameOffsetX,       kFrameOffsetY,      kFrameWidth,
                                          kFrameHeight,        kFrameFormat,       kCameraExposure,
                                          kCameraExposureAuto, kCameraTriggerMode, kCameraFrameSetting};
constexpr const char* kActions[] = {kActionCameraAutoExposure, kActionCameraAutoGain,
                                    kActionCameraAutoWhitebalance};

struct Fault {
    const char* function;
    const char* argument = nullptr;
};
constexpr std::array<Fault, 33> kFaults{{
    {nullptr},
    {"VmbFeatureFloatSet", "Gain"},
    {"VmbFeatureFloatGet", "Gain"},
    {"VmbFeatureFloatSet", "ExposureTimeAbs"},
    {"VmbFeatureFloatGet", "ExposureTimeAbs"},
    {"VmbFeatureIntSet", "ExposureAutoMax"},
    {"VmbFeatureEnumSet", "ExposureAuto"},
    {"VmbFeatureEnumSet", "TriggerSource"},
    {"VmbFeatureEnumGet", "TriggerSource"},
    {"VmbFeatureEnumSet", "TriggerMode"},
    {"VmbFeatureFloatSet", "AcquisitionFrameRateAbs"},
    {"VmbFeatureFloatGet", "AcquisitionFrameRateAbs"},
    {"VmbFeatureIntSet", "Width"},
    {"VmbFeatureIntGet", "Width"},
    {"VmbFeatureIntSet", "OffsetX"},
    {"VmbFeatureEnumSet", "PixelFormat"},
    {"VmbFeatureEnumGet", "PixelFormat"},
    {"VmbFeatureFloatSet", "BalanceRatioAbs"},
    {"VmbFeatureFloatGet", "BalanceRatioAbs"},
    {"VmbFeatureEnumSet", "BalanceRatioSelector"},
    {"VmbFeatureEnumSet", "GainAuto"},
    {"VmbFeatureIntGet", "GainAutoRate"},
    {"VmbFeatureFloatSet", "Hue"},
    {"VmbFeatureFloatGet", "Hue"},
    {"VmbFeatureIntSet", "StreamBytesPerSecond"},
    {"VmbFeatureEnumSet", "AcquisitionMode"},
    {"VmbFeatureIntGet", "GevTimestampTickFrequency"},
    {"VmbFeatureCommandRun", "GevTimestampControlReset"},
    {"VmbFeatureCommandRun", "AcquisitionStart"},
    {"VmbFeatureCommandRun", "AcquisitionStop"},
    {"VmbCaptureStart"},
    {"VmbFrameAnnounce"},
    {"VmbCameraOpen"},
}};

const std::array<Frequency, 8> kFrequencies{
    {std::nullopt, {{25, 1}}, {{10, 1}}, {{30'000, 1001}}, {{0, 1}}, {{-5, 2}}, {{100, 1}}, {{1, 3}}}};

const Fault& faultOf(unsigned number) {
    return kFaults[number % kFaults.size()];
}

bool isFault(unsigned number) {
    return faultOf(number).function != nullptr;
}

void arm(unsigned number) {
    if (isFault(number))
        VmbSimFailCall(faultOf(number).function, faultOf(number).argument, 1, VmbErrorTimeout);
}

const SettingRow& rowOf(const Command& command) {
    return settingRows()[command.which % settingRows().size()];
}

const config_items::ConfigItemVariant& valueOf(const Command& command) {
    const auto& values = rowOf(command).values;
    return values[command.value % values.size()];
}

zelt::IfSyncAuxService* auxServiceOf(zelt_gige_camera::CameraPlugin& plugin) {
    plugin.createServices();
    plugin_api::IfServiceFactory* const factory = plugin.getServiceFactory();
    plugin_api::IfService* service = nullptr;
    factory->getService(boost::uuids::string_generator()("{784229AE-48AB-4A05-8F83-9FB70F11827F}"), &service);
    factory->release();
    return dynamic_cast<zelt::IfSyncAuxService*>(service);
}

class SimulatedClock final : public zelt::IfMasterClock {
  public:
    double getRate() override { return 1e9; }
    std::uint64_t getTime() override { return VmbSimTime(); }
};

}  // namespace

void showValue(const Command& command, std::ostream& os) {
    const std::string camera = command.camera % 2 == 0 ? "colour" : "monochrome";
    switch (command.what) {
        case Command::Set:
            os << "set " << camera << ' ' << rowOf(command).key << " to "
               << config_items::asItem(valueOf(command)).toString() << " (alternative "
               << valueOf(command).which() << ")";
            break;
        case Command::Action:
            os << camera << ' ' << kActions[command.which % 3];
            break;
        case Command::Used:
            os << "use " << camera << ": " << command.value % 2;
            break;
        case Command::Aux:
            if (const Frequency& frequency = kFrequencies[command.value % kFrequencies.size()]) {
                os << "trigger frequency " << frequency->first << '/' << frequency->second;
            } else {
                os << "no trigger frequency";
            }
            break;
        case Command::Cable:
            os << "turn the cable of " << camera;
            break;
        default:
            os << std::array{"prepare", "start", "advance", "process", "stop", "enumerate", "", "check"}.at(
                static_cast<std::size_t>(command.what - Command::Prepare));
    }
    if (isFault(command.fault)) {
        const char* const argument = faultOf(command.fault).argument;
        os << " while " << faultOf(command.fault).function << ' ' << (argument != nullptr ? argument : "")
           << " fails";
    }
}

CameraChannelCalls::CameraChannelCalls(unsigned faultAtOpen) {
    VmbSimUseVirtualTime(true);
    VmbSimSetWatchdog(kPatienceMs);
    m_api = std::make_shared<ForwardingCameraApi>(std::make_shared<zelt_gige_api::VimbaCameraApi>());
    m_api->startup();
    m_plugin = std::make_unique<zelt_gige_camera::CameraPlugin>(0, m_api);
    m_aux = auxServiceOf(*m_plugin);
    m_plugin->setSharedAcquisitionObject(std::make_shared<SimulatedClock>());
    expect(m_plugin->initialize(), "initialize");
    arm(faultAtOpen);
    enumerate();
    VmbSimClearFaults();
    watch(isFault(faultAtOpen));
}

CameraChannelCalls::~CameraChannelCalls() {
    m_channels.clear();
    m_plugin.reset();
    m_api.reset();
    VmbSimUseVirtualTime(false);
}

void CameraChannelCalls::run(const std::vector<Command>& commands) {
    for (const Command& command : commands) {
        for (const auto& channel : m_channels) channel->begin();
        arm(command.fault);
        call(command);
        VmbSimClearFaults();
        watch(isFault(command.fault));
        compare(command);
        if (!m_difference.empty()) return;
    }
}

void CameraChannelCalls::call(const Command& command) {
    const bool faulty = isFault(command.fault);
    switch (command.what) {
        case Command::Set:
            return set(command);
        case Command::Action:
            return act(command);
        case Command::Used:
            return use(command);
        case Command::Aux:
            return setFrequency(command.value);
        case Command::Prepare:
            return prepare(faulty);
        case Command::Start:
            return start(faulty);
        case Command::Advance:
            VmbSimAdvance(std::array{1'000'000u, 100'000'000u, 1'200'000'000u}[command.value % 3]);
            return;
        case Command::Process:
            expect(m_plugin->processAcquisition(), "process");
            return;
        case Command::Stop:
            return stop(faulty);
        case Command::Enumerate:
            return enumerate();
        case Command::Cable:
            return turnCable(command.camera % 2);
        default:
            return check();
    }
}

void CameraChannelCalls::set(const Command& command) {
    WatchedChannel* const channel = find(command.camera);
    if (channel == nullptr) return;
    const SettingRow& row = rowOf(command);
    const bool accepted = channel->channel->setItem(row.key, valueOf(command));
    const bool isChecked = std::find(kChecked.begin(), kChecked.end(), row.key) != kChecked.end();
    expect(!accepted || !isChecked || channel->wasTold(kValid), std::string(row.key) + " was not checked");
    channel->wasSet(row, command.value % row.values.size(), accepted, isFault(command.fault));
}

void CameraChannelCalls::act(const Command& command) {
    WatchedChannel* const channel = find(command.camera);
    const char* const key = kActions[command.which % 3];
    if (channel == nullptr || !channel->channel->hasKey(key)) return;
    channel->channel->setItem(key, SingleValueConfigItem<bool>(true));
    if (isFault(command.fault)) channel->uncertain.insert(kCameraExposure);
}

void CameraChannelCalls::use(const Command& command) {
    WatchedChannel* const channel = find(command.camera);
    if (channel == nullptr) return;
    m_used_later = true;
    const bool wasUsed = channel->channel->isUsed();
    expect(channel->channel->setItem(kUsed, SingleValueConfigItem<bool>(command.value % 2 == 0)), "use");
    expect(channel->channel->isUsed() == wasUsed || channel->wasTold(kValid), "the use was not checked");
}

void CameraChannelCalls::setFrequency(unsigned value) {
    m_frequency = kFrequencies[value % kFrequencies.size()];
    m_aux->setSyncOutAuxFrequency(m_frequency ? m_frequency->first : 0,
                                  m_frequency ? m_frequency->second : 0);
    for (const auto& channel : m_channels) {
        const bool wasTold = channel->wasTold(kValid) && channel->wasTold(kSampleRate);
        expect(!channel->channel->isUsed() || wasTold, "the frequency was not checked");
    }
}

void CameraChannelCalls::prepare(bool faulty) {
    if (m_acquiring) return;
    m_used_later = false;
    try {
        m_prepared = m_plugin->prepareAcquisition();
    } catch (const exception_manager::Exception& error) {
        m_prepared = false;
        expect(faulty || !allConnected(), "prepare throws " + error.getMessage());
    }
    for (const auto& channel : m_channels) {
        channel->wasPrepared(channel->isAux() && !m_frequency, faulty);
        const bool isThere = m_plugged[channel->id() == kCameras[0] ? 0 : 1];
        const bool mustConnect = channel->channel->isUsed() && isThere && !faulty;
        expect(!mustConnect || channel->isConnected(), channel->id() + " was not opened again");
    }
}

void CameraChannelCalls::start(bool faulty) {
    if (m_acquiring || !m_prepared) return;
    m_plugin->onAcquisitionPrepared();
    try {
        m_acquiring = m_plugin->startAcquisition();
        expect(m_acquiring, "start");
    } catch (const exception_manager::Exception& error) {
        m_prepared = false;
        const bool noFrequency = std::any_of(m_channels.begin(), m_channels.end(), [&](const auto& channel) {
            return channel->isAux() && !m_frequency;
        });
        expect(faulty || noFrequency || m_used_later || !allConnected(),
               "start throws " + error.getMessage());
    }
}

void CameraChannelCalls::stop(bool faulty) {
    if (!m_acquiring) return;
    m_acquiring = m_prepared = false;
    try {
        expect(m_plugin->stopAcquisition(), "stop");
    } catch (const CameraApiError& error) {
        expect(faulty || !allConnected(), std::string("stop throws ") + error.what());
    }
    m_plugin->onAcquisitionFinished();
}

void CameraChannelCalls::enumerate() {
    if (m_acquiring) return;
    m_prepared = false;
    m_plugin->enumerateDevices();
}

void CameraChannelCalls::turnCable(unsigned camera) {
    m_plugged[camera] = !m_plugged[camera];
    m_plugged[camera] ? VmbSimPlugCamera(kCameras[camera]) : VmbSimUnplugCamera(kCameras[camera]);
    expect(VmbSimWaitForEvents(kPatienceMs) == VmbErrorSuccess, "events of the cable");
}

void CameraChannelCalls::check() {
    const auto ids = m_plugin->getChannelIds();
    const bool valid = m_plugin->checkChannelSettings({ids.begin(), ids.end()}, false);
    bool expected = true;
    bool unsure = false;
    for (const auto& channel : m_channels) {
        validated(*channel);
        expected = expected && channel->expectedCode == 0;
        unsure = unsure || channel->validationUnsure;
    }
    expect(unsure || valid == expected, "check says " + std::to_string(valid));
}

WatchedChannel* CameraChannelCalls::find(unsigned camera) {
    const auto found = std::find_if(m_channels.begin(), m_channels.end(), [&](const auto& channel) {
        return channel->id() == kCameras[camera % 2];
    });
    return found != m_channels.end() ? found->get() : nullptr;
}

void CameraChannelCalls::watch(bool faulty) {
    std::vector<std::shared_ptr<zelt_gige_camera::CameraChannel>> current;
    for (const std::uint32_t id : m_plugin->getChannelIds()) {
        current.push_back(
            std::dynamic_pointer_cast<zelt_gige_camera::CameraChannel>(m_plugin->getChannel(id)));
    }
    std::erase_if(m_channels, [&](const auto& watched) {
        return std::find(current.begin(), current.end(), watched->channel) == current.end();
    });
    for (const auto& channel : current) {
        const bool known = std::any_of(m_channels.begin(), m_channels.end(),
                                       [&](const auto& watched) { return watched->channel == channel; });
        if (known) continue;
        auto watched = std::make_unique<WatchedChannel>(channel, *m_api);
        channel->setChangeCallback([this, raw = watched.get()](const std::string& key) {
            raw->told.insert(key);
            if (key == kValid) validated(*raw);
        });
        if (faulty) watched->trustNothing();
        m_channels.push_back(std::move(watched));
    }
}

ValidationFigures CameraChannelCalls::figures(WatchedChannel& channel) {
    ValidationFigures figures = channel.figures();
    figures.auxFrequency = m_frequency;
    return figures;
}

void CameraChannelCalls::validated(WatchedChannel& channel) {
    ValidationFigures now = figures(channel);
    for (const auto& other : m_channels) {
        if (other.get() != &channel) now.othersRequired += requiredBytes(figures(*other));
    }
    channel.expectedCode = validationCode(now);
}

bool CameraChannelCalls::allConnected() const {
    return std::all_of(m_channels.begin(), m_channels.end(),
                       [](const auto& channel) { return channel->isConnected(); });
}

void CameraChannelCalls::compare(const Command& command) {
    for (const auto& channel : m_channels) {
        const bool silentRate = !channel->channel->isUsed() && command.what == Command::Aux;
        const std::string difference = channel->difference(m_frequency, silentRate);
        expect(difference.empty(), difference);
    }
    expect(test_support::Simulator::misuses().empty(), test_support::Simulator::misuses());
    for (const std::string& failed : m_assertions.expressions()) {
        expect(failed == "frequency.numerator() != 0" || failed == "m_aux_clock_frequency", failed);
    }
}

void CameraChannelCalls::expect(bool holds, const std::string& what) {
    if (!holds && m_difference.empty()) m_difference = what;
}

}  // namespace property_tests
