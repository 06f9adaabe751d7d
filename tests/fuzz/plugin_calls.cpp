#include "plugin_calls.h"

#include <sstream>
#include <stdexcept>

#include <boost/uuid/string_generator.hpp>

#include "config_items.h"
#include "config_keys.h"
#include "exception_manager.h"
#include "if_sync_aux_service.h"
#include "if_system_topology_service.h"
#include "vimba_simulator.h"

namespace fuzz {
namespace {

constexpr const char* kAuxService = "{784229AE-48AB-4A05-8F83-9FB70F11827F}";
constexpr const char* kTopologyService = "{A5C594EA-1C7F-41BF-A588-9AC316FB5973}";
class VirtualHostClock final : public zelt::IfMasterClock {
  public:
    double getRate() override { return 1e9; }
    std::uint64_t getTime() override { return VmbSimTime(); }
};

boost::uuids::uuid typeId() {
    return boost::uuids::string_generator()("{D40250C7-33F6-4ECE-9A88-BAE8EE6D5FA5}");
}

/// But for calls on a library that is not started: a host that asks a plug-in for cameras after its end has
/// it ask the library, which says so.
std::string misuses() {
    std::string text(VmbSimMisuseText(nullptr, 0), '\0');
    VmbSimMisuseText(text.data(), text.size());
    text.pop_back();
    std::istringstream stream(text);
    std::string found;
    for (std::string line; std::getline(stream, line);) {
        if (!line.ends_with(": the library is not started")) found += line + '\n';
    }
    return found;
}

std::string textOf(const config_items::ConfigItemVariant& item) {
    return config_items::asItem(item).toString();
}

}  // namespace

void WatchfulSink::addSample(std::int64_t time, const void* data, std::uint64_t size) {
    if (isDead) wrong = "a sink was called that had been taken back";
    if (data == nullptr || size == 0) wrong = "a sample without data";
    if (time < m_last) wrong = "time runs backwards";
    m_last = time;
    // Reads all of it, for the sanitizer's eyes.
    const auto* const bytes = static_cast<const std::uint8_t*>(data);
    volatile std::uint8_t sum = 0;
    for (std::uint64_t i = 0; i < size; ++i) sum = static_cast<std::uint8_t>(sum ^ bytes[i]);
}

PluginCalls::PluginCalls(const std::string& scenario, const std::uint8_t* data, std::size_t size)
    : m_bytes(data, size) {
    VmbSimUseVirtualTime(true);
    if (VmbSimLoadScenario(scenario.c_str()) != VmbErrorSuccess) m_wrong = "the cameras' file is wrong";
    VmbSimForceFeature(nullptr, "GeVDiscoveryAllDuration", "1");
    VmbSimSetWatchdog(kHangMs);
}

PluginCalls::~PluginCalls() {
    m_held.clear();
    VmbSimUseVirtualTime(false);
}

void PluginCalls::begin() {
    m_creator.createPlugin("GIGECAMERA", typeId(), &m_plugin);
    m_plugin->createServices();
    m_factories.push_back(m_plugin->getServiceFactory());
    m_plugin->setSharedAcquisitionObject(std::make_shared<VirtualHostClock>());
    m_plugin->initialize();
    m_plugin->enumerateDevices();
}

std::string PluginCalls::run() {
    // Mostly what a host does first: from nothing, few sequences would come as far as a frame.
    if (m_bytes.ConsumeIntegralInRange(0, 7) > 0) begin();
    while (m_bytes.remaining_bytes() > 0 && m_wrong.empty()) {
        try {
            call();
        } catch (const std::exception&) {
        } catch (const exception_manager::Exception& told) {
            exception_manager::fillPlaceholders(told);
        } catch (const config_items::ConfigItemException&) {
        } catch (...) {
            m_wrong = "an exception that no host can name";
        }
        for (const WatchfulSink& sink : m_sinks) m_wrong += sink.wrong;
        if (m_wrong.empty()) m_wrong = misuses();
    }
    VmbSimClearFaults();
    destroy();
    // A channel's configuration that the host still holds answers.
    for (const Channel& channel : m_held) read(*channel);
    if (m_wrong.empty()) m_wrong = misuses();
    return m_wrong;
}

void PluginCalls::call() {
    switch (m_bytes.ConsumeIntegralInRange(0, 15)) {
        case 0:
            return makeOrDestroy();
        case 1:
        case 2:
            return callPlugin();
        case 3:
        case 4:
        case 5:
        case 6:
            return callAcquisition();
        case 7:
        case 8:
        case 9:
        case 10:
            return callChannel();
        case 11:
            return callServices();
        default:
            return disturb();
    }
}

void PluginCalls::makeOrDestroy() {
    if (m_plugin != nullptr) return destroy();
    m_creator.createPlugin("GIGECAMERA", typeId(), &m_plugin);
}

void PluginCalls::destroy() {
    for (plugin_api::IfServiceFactory* const factory : m_factories) factory->release();
    m_factories.clear();
    if (m_plugin != nullptr) m_creator.destroyPlugin(typeId(), m_plugin);
    m_plugin = nullptr;
    for (WatchfulSink& sink : m_sinks) sink.isDead = true;
}

void PluginCalls::callPlugin() {
    if (m_plugin == nullptr) return;
    switch (m_bytes.ConsumeIntegralInRange(0, 13)) {
        case 0:
            m_plugin->createServices();
            return;
        case 1:
            m_plugin->terminate();
            return;
        case 2:
            m_plugin->setInstanceIndex(m_bytes.ConsumeIntegral<std::uint32_t>());
            return;
        case 3:
            m_plugin->onHostEvent(nullptr);
            return;
        case 4:
            m_plugin->setHostValue(m_bytes.ConsumeIntegral<std::uint64_t>());
            return;
        case 5:
            m_plugin->findChannelId(m_bytes.ConsumeRandomLengthString(20));
            return;
        case 6:
            m_plugin->setSharedAcquisitionObject(m_bytes.ConsumeBool() ? std::make_shared<VirtualHostClock>()
                                                                       : nullptr);
            return;
        case 7:
            m_plugin->checkChannelSettings({anyChannel(), anyChannel()}, m_bytes.ConsumeBool());
            return;
        case 8:
            return setSink();
        case 9:
            m_plugin->clearChannelSinks();
            for (WatchfulSink& sink : m_sinks) sink.isDead = true;
            return;
        case 10: {
            const std::string key = m_bytes.ConsumeBool() ? config_keys::kFrameCounterChannels : anyKey();
            m_plugin->getPluginConfig()->setItem(key, anyValue(key));
            textOf(m_plugin->getPluginConfig()->getItem(key));
            textOf(m_plugin->getPluginConfig()->adaptItem(key, anyValue(key)));
            m_plugin->getPluginConfig()->getConstraints(key);
            return;
        }
        case 11:
            m_plugin->getNominalRate();
            m_plugin->isReadyForAcquisition();
            m_plugin->isAcquiring();
            return;
        default:
            if (const Channel channel = m_plugin->getChannel(anyChannel())) m_held.push_back(channel);
    }
}

void PluginCalls::setSink() {
    const std::uint32_t id = anyChannel();
    const auto which = m_bytes.ConsumeIntegralInRange<std::size_t>(0, 3);
    if (which == 3) {
        m_plugin->setChannelSink(id, nullptr);
        return;
    }
    // One sink for one channel: its times are those of that channel.
    if (!m_sinks[which].isDead) return;
    m_sinks[which].begin();
    m_sinks[which].isDead = false;
    m_plugin->setChannelSink(id, &m_sinks[which]);
}

void PluginCalls::callAcquisition() {
    if (m_plugin == nullptr) return;
    switch (m_bytes.ConsumeIntegralInRange(0, 10)) {
        case 0:
            m_plugin->initialize();
            return;
        case 1:
            m_plugin->enumerateDevices();
            return;
        case 2:
        case 3:
            m_plugin->prepareAcquisition();
            return;
        case 4:
            m_plugin->onAcquisitionPrepared();
            return;
        case 5:
        case 6:
            for (WatchfulSink& sink : m_sinks) sink.begin();
            m_plugin->startAcquisition();
            return;
        case 7:
            m_plugin->processAcquisition();
            return;
        case 8:
            m_plugin->stopAcquisition();
            return;
        case 9:
            m_plugin->onAcquisitionFinished();
            return;
        default:
            VmbSimAdvance(m_bytes.ConsumeIntegralInRange<std::uint64_t>(1, 300'000'000));
    }
}

void PluginCalls::callChannel() {
    if (m_plugin == nullptr && m_held.empty()) return;
    Channel channel;
    if (m_plugin == nullptr || (!m_held.empty() && m_bytes.ConsumeBool())) {
        channel = m_held[m_bytes.ConsumeIntegralInRange<std::size_t>(0, m_held.size() - 1)];
    } else {
        channel = m_plugin->getChannelConfig(anyChannel());
    }
    if (channel == nullptr) return;
    switch (m_bytes.ConsumeIntegralInRange(0, 9)) {
        case 0:
            return read(*channel);
        case 1:
            return listen(channel);
        case 2:
            channel->onHostEvent(nullptr);
            return;
        default:
            return set(*channel);
    }
}

void PluginCalls::set(channel_config::IfChannelConfig& channel) {
    const std::string key = anyKey();
    channel.setItem(key, anyValue(key));
    textOf(channel.getItem(key));
}

void PluginCalls::listen(const Channel& channel) {
    // From a change callback and from a listener the host may use configurations.
    const std::weak_ptr<channel_config::IfChannelConfig> weak = channel;
    channel->setChangeCallback([weak](const std::string& key) {
        if (const Channel self = weak.lock()) textOf(self->getItem(key));
    });
    auto* const messages = dynamic_cast<zelt::IfChannelMessages*>(channel.get());
    if (messages == nullptr) return;
    messages->setMessageListener(
        [](const exception_manager::Exception& message) { exception_manager::fillPlaceholders(message); });
    exception_manager::Exception last;
    messages->getLastMessage(last);
}

void PluginCalls::read(channel_config::IfChannelConfig& channel) {
    for (const std::string& key : channel.getKeys()) {
        if (channel.hasKey(key)) textOf(channel.getItem(key));
        for (const auto& constraint : channel.getConstraints(key)) {
            if (constraint == nullptr) m_wrong = "a constraint that is none, of " + key;
        }
    }
}

void PluginCalls::callServices() {
    if (m_plugin == nullptr) return;
    switch (m_bytes.ConsumeIntegralInRange(0, 4)) {
        case 0:
            if (auto* const factory = m_plugin->getServiceFactory()) m_factories.push_back(factory);
            return;
        case 1:
            if (m_factories.empty()) return;
            m_factories.back()->release();
            m_factories.pop_back();
            return;
        case 2:
            if (auto* const found = static_cast<zelt::IfSystemTopologyService*>(service(kTopologyService))) {
                found->setListener(m_bytes.ConsumeIntegral<std::uint64_t>());
                const auto take = [](void* context, const char* text, std::size_t length) {
                    static_cast<std::string*>(context)->assign(text, length);
                };
                std::string document;
                found->getTopology(0, take, &document);
                found->removeListener(m_bytes.ConsumeIntegral<std::uint64_t>());
            }
            return;
        default:
            if (auto* const found = static_cast<zelt::IfSyncAuxService*>(service(kAuxService))) {
                const bool isUsual = m_bytes.ConsumeBool();
                const auto numerator = isUsual ? m_bytes.ConsumeIntegralInRange<std::int64_t>(0, 120)
                                               : m_bytes.ConsumeIntegral<std::int64_t>();
                found->setSyncOutAuxFrequency(numerator,
                                              isUsual ? 1 : m_bytes.ConsumeIntegral<std::int64_t>());
            }
    }
}

plugin_api::IfService* PluginCalls::service(const char* id) {
    if (m_factories.empty()) return nullptr;
    plugin_api::IfService* found = nullptr;
    m_factories.back()->getService(boost::uuids::string_generator()(id), &found);
    return found;
}

}  // namespace fuzz
