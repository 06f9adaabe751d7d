/// Mirrors of the plug-in interface and of what implements it.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "if_daq_plugin.h"
#include "mirror.h"

namespace slot_check {

inline constexpr boost::uuids::uuid kPluginId{{1, 1, 2, 3, 5, 8, 13, 21, 34, 55, 89, 144, 233, 0, 0, 0}};
inline constexpr boost::uuids::uuid kOtherId{{2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41, 43, 47, 53}};
inline const int kHostEvent = 0;

/// Answers a pointer that is shared with nobody and belongs to nobody.
template <class T>
std::shared_ptr<T> sharedAt(const void* address) {
    return {std::shared_ptr<void>(), static_cast<T*>(const_cast<void*>(address))};
}

template <class Plugin>
class RecordingPluginCommon : public EndOf<Plugin> {
  public:
    using EndOf<Plugin>::EndOf;

    virtual const char* getDisplayName() { return answer("getDisplayName", "display name"); }
    virtual boost::uuids::uuid getPluginId() { return answer("getPluginId", kPluginId); }
    virtual std::uint32_t getInstanceIndex() { return answer("getInstanceIndex", 4000000003u); }
    virtual void setInstanceIndex(std::uint32_t index) { return answerIf("setInstanceIndex", index == 4); }
    virtual boost::uuids::uuid getPluginTypeId() { return answer("getPluginTypeId", kOtherId); }
    virtual bool createServices() { return answer("createServices", true); }
    virtual bool initialize() { return answer("initialize", true); }
    virtual bool isSupported() { return answer("isSupported", true); }
    virtual void terminate() { answered("terminate"); }
    virtual std::shared_ptr<zelt::IfPluginConfig> getPluginConfig() {
        return answer("getPluginConfig", sharedAt<zelt::IfPluginConfig>(&kPluginId));
    }
    virtual void onHostEvent(const void* event) { return answerIf("onHostEvent", event == &kHostEvent); }

    static Operations operations() {
        return {{"getDisplayName", entryOf(&RecordingPluginCommon::getDisplayName)},
                {"getPluginId", entryOf(&RecordingPluginCommon::getPluginId)},
                {"getInstanceIndex", entryOf(&RecordingPluginCommon::getInstanceIndex)},
                {"setInstanceIndex", entryOf(&RecordingPluginCommon::setInstanceIndex)},
                {"getPluginTypeId", entryOf(&RecordingPluginCommon::getPluginTypeId)},
                {"createServices", entryOf(&RecordingPluginCommon::createServices)},
                {"initialize", entryOf(&RecordingPluginCommon::initialize)},
                {"isSupported", entryOf(&RecordingPluginCommon::isSupported)},
                {"terminate", entryOf(&RecordingPluginCommon::terminate)},
                {"getPluginConfig", entryOf(&RecordingPluginCommon::getPluginConfig)},
                {"onHostEvent", entryOf(&RecordingPluginCommon::onHostEvent)}};
    }
};

template <class Plugin>
class RecordingDAQPlugin : public RecordingPluginCommon<Plugin> {
  public:
    using Common = RecordingPluginCommon<Plugin>;
    using Common::Common;
    using Config = channel_config::IfChannelConfig;

    virtual void enumerateDevices() { answered("enumerateDevices"); }
    virtual plugin_api::IfServiceFactory* getServiceFactory() {
        return answer("getServiceFactory", sharedAt<plugin_api::IfServiceFactory>(&kOtherId).get());
    }
    virtual void setHostValue(std::uint64_t value) { return answerIf("setHostValue", value == 1ull << 63); }
    virtual bool isSupported2() { return answer("isSupported2", true); }
    virtual void setChannelSink(std::uint32_t channelId, zelt::IfChannelSink* sink) {
        return answerIf("setChannelSink", channelId == 16 && sink == nullptr);
    }
    virtual void clearChannelSinks() { answered("clearChannelSinks"); }
    virtual std::set<std::uint32_t> getChannelIds() {
        return answer("getChannelIds", std::set<std::uint32_t>{3, 2, 1});
    }
    virtual std::uint32_t findChannelId(const std::string& key) {
        return answer("findChannelId", key == "a key longer than a short string" ? 19u : 0u);
    }
    virtual bool prepareAcquisition() { return answer("prepareAcquisition", true); }
    virtual bool isAcquiring() { return answer("isAcquiring", true); }
    virtual bool isReadyForAcquisition() { return answer("isReadyForAcquisition", true); }
    virtual bool hasSystemTopology() { return answer("hasSystemTopology", true); }
    virtual bool startAcquisition() { return answer("startAcquisition", true); }
    virtual bool stopAcquisition() { return answer("stopAcquisition", true); }
    virtual bool onAcquisitionPrepared() { return answer("onAcquisitionPrepared", true); }
    virtual bool onAcquisitionFinished() { return answer("onAcquisitionFinished", true); }
    virtual bool processAcquisition() { return answer("processAcquisition", true); }
    virtual std::shared_ptr<Config> getChannelConfig(std::uint32_t channelId) {
        return answer("getChannelConfig", sharedAt<Config>(channelId == 29 ? &kPluginId : nullptr));
    }
    virtual void setSharedAcquisitionObject(std::shared_ptr<zelt::IfMasterClock> clock) {
        const void* const given = clock.get();
        return answerIf("setSharedAcquisitionObject", given == &kPluginId);
    }
    virtual bool checkChannelSettings(const std::vector<std::uint32_t>& channelIds, bool flag) {
        return answer("checkChannelSettings", channelIds == std::vector<std::uint32_t>{31} && flag);
    }
    virtual std::shared_ptr<Config> getChannel(std::uint32_t channelId) {
        return answer("getChannel", sharedAt<Config>(channelId == 32 ? &kOtherId : nullptr));
    }
    virtual double getNominalRate() { return answer("getNominalRate", 33.5); }

    static Operations operations() {
        Operations all = Common::operations();
        const Operations added{
            {"enumerateDevices", entryOf(&RecordingDAQPlugin::enumerateDevices)},
            {"getServiceFactory", entryOf(&RecordingDAQPlugin::getServiceFactory)},
            {"setHostValue", entryOf(&RecordingDAQPlugin::setHostValue)},
            {"isSupported2", entryOf(&RecordingDAQPlugin::isSupported2)},
            {"setChannelSink", entryOf(&RecordingDAQPlugin::setChannelSink)},
            {"clearChannelSinks", entryOf(&RecordingDAQPlugin::clearChannelSinks)},
            {"getChannelIds", entryOf(&RecordingDAQPlugin::getChannelIds)},
            {"findChannelId", entryOf(&RecordingDAQPlugin::findChannelId)},
            {"prepareAcquisition", entryOf(&RecordingDAQPlugin::prepareAcquisition)},
            {"isAcquiring", entryOf(&RecordingDAQPlugin::isAcquiring)},
            {"isReadyForAcquisition", entryOf(&RecordingDAQPlugin::isReadyForAcquisition)},
            {"hasSystemTopology", entryOf(&RecordingDAQPlugin::hasSystemTopology)},
            {"startAcquisition", entryOf(&RecordingDAQPlugin::startAcquisition)},
            {"stopAcquisition", entryOf(&RecordingDAQPlugin::stopAcquisition)},
            {"onAcquisitionPrepared", entryOf(&RecordingDAQPlugin::onAcquisitionPrepared)},
            {"onAcquisitionFinished", entryOf(&RecordingDAQPlugin::onAcquisitionFinished)},
            {"processAcquisition", entryOf(&RecordingDAQPlugin::processAcquisition)},
            {"getChannelConfig", entryOf(&RecordingDAQPlugin::getChannelConfig)},
            {"setSharedAcquisitionObject", entryOf(&RecordingDAQPlugin::setSharedAcquisitionObject)},
            {"checkChannelSettings", entryOf(&RecordingDAQPlugin::checkChannelSettings)},
            {"getChannel", entryOf(&RecordingDAQPlugin::getChannel)},
            {"getNominalRate", entryOf(&RecordingDAQPlugin::getNominalRate)}};
        all.insert(all.end(), added.begin(), added.end());
        return all;
    }
};

/// Slots 0 to 11.
inline void callPluginCommon(Mirror& mirror) {
    mirror.destroys(0);
    EXPECT_STREQ(mirror.slot<const char*()>(1)(), "display name");
    EXPECT_EQ(mirror.slot<boost::uuids::uuid()>(2)(), kPluginId);
    EXPECT_EQ(mirror.slot<std::uint32_t()>(3)(), 4000000003u);
    mirror.slot<void(std::uint32_t)>(4)(4);
    EXPECT_EQ(mirror.slot<boost::uuids::uuid()>(5)(), kOtherId);
    EXPECT_TRUE(mirror.slot<bool()>(6)());
    EXPECT_TRUE(mirror.slot<bool()>(7)());
    EXPECT_TRUE(mirror.slot<bool()>(8)());
    mirror.slot<void()>(9)();
    const void* const config = mirror.slot<std::shared_ptr<zelt::IfPluginConfig>()>(10)().get();
    EXPECT_EQ(config, &kPluginId);
    mirror.slot<void(const void*)>(11)(&kHostEvent);
}

/// Slots 0 to 33.
inline void callDAQPlugin(Mirror& mirror) {
    using ChannelConfig = std::shared_ptr<channel_config::IfChannelConfig>;
    using Clock = std::shared_ptr<zelt::IfMasterClock>;
    using Ids = std::vector<std::uint32_t>;
    callPluginCommon(mirror);
    mirror.slot<void()>(12)();
    const void* const factory = mirror.slot<plugin_api::IfServiceFactory*()>(13)();
    EXPECT_EQ(factory, &kOtherId);
    mirror.slot<void(std::uint64_t)>(14)(1ull << 63);
    EXPECT_TRUE(mirror.slot<bool()>(15)());
    mirror.slot<void(std::uint32_t, zelt::IfChannelSink*)>(16)(16, nullptr);
    mirror.slot<void()>(17)();
    EXPECT_EQ(mirror.slot<std::set<std::uint32_t>()>(18)(), (std::set<std::uint32_t>{1, 2, 3}));
    EXPECT_EQ(mirror.slot<std::uint32_t(const std::string&)>(19)("a key longer than a short string"), 19u);
    for (std::size_t number = 20; number <= 28; ++number) EXPECT_TRUE(mirror.slot<bool()>(number)());
    const void* const config = mirror.slot<ChannelConfig(std::uint32_t)>(29)(29).get();
    EXPECT_EQ(config, &kPluginId);
    mirror.slot<void(Clock)>(30)(sharedAt<zelt::IfMasterClock>(&kPluginId));
    EXPECT_TRUE((mirror.slot<bool(const Ids&, bool)>(31)({31}, true)));
    const void* const channel = mirror.slot<ChannelConfig(std::uint32_t)>(32)(32).get();
    EXPECT_EQ(channel, &kOtherId);
    EXPECT_EQ(mirror.slot<double()>(33)(), 33.5);
}

}  // namespace slot_check
