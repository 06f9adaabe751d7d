// The small interfaces of the host, each called by slot number. The plug-in and the two configurations stand
// in files of their own, since the plug-in's base classes are mirrored alike.
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

#include "exception_manager.h"
#include "if_api_object.h"
#include "if_channel_messages.h"
#include "if_channel_sink.h"
#include "if_daq_plugin.h"
#include "if_master_clock.h"
#include "if_plugin_creator.h"
#include "mirror.h"
#include "mirror_configs.h"
#include "mirror_daq_plugin.h"
#include "mirror_services.h"

namespace {

using boost::uuids::uuid;
using slot_check::answered;
using slot_check::entryOf;
using slot_check::Mirror;
using slot_check::MirrorOf;
using slot_check::Operations;
using slot_check::recorded;

constexpr uuid kTypeId{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};

class RecordingCreator : public slot_check::EndOf<plugin_api::IfPluginCreator> {
  public:
    virtual std::uint32_t getInterfaceVersion() {
        answered("getInterfaceVersion");
        return 4000000000u;
    }
    virtual bool supportsPlugin(std::int32_t index, const uuid& typeId) {
        answered("supportsPlugin");
        return index == -3 && typeId == kTypeId;
    }
    virtual const char* getPluginName(std::int32_t index) {
        answered("getPluginName");
        return index == -4 ? "name" : nullptr;
    }
    virtual bool createPlugin(const char* name, const uuid& typeId, zelt::IfDAQPlugin** out) {
        answered("createPlugin");
        *out = nullptr;
        return std::string(name) == "made" && typeId == kTypeId;
    }
    virtual bool destroyPlugin(const uuid& typeId, zelt::IfDAQPlugin* plugin) {
        answered("destroyPlugin");
        return typeId == kTypeId && plugin == nullptr;
    }

    static Operations operations() {
        return {{"getInterfaceVersion", entryOf(&RecordingCreator::getInterfaceVersion)},
                {"supportsPlugin", entryOf(&RecordingCreator::supportsPlugin)},
                {"getPluginName", entryOf(&RecordingCreator::getPluginName)},
                {"createPlugin", entryOf(&RecordingCreator::createPlugin)},
                {"destroyPlugin", entryOf(&RecordingCreator::destroyPlugin)}};
    }

  protected:
    ~RecordingCreator() = default;
};

void callCreator(Mirror& mirror) {
    auto* plugin = reinterpret_cast<zelt::IfDAQPlugin*>(&mirror);
    EXPECT_EQ(mirror.slot<std::uint32_t()>(0)(), 4000000000u);
    EXPECT_TRUE((mirror.slot<bool(std::int32_t, const uuid&)>(1)(-3, kTypeId)));
    EXPECT_STREQ(mirror.slot<const char*(std::int32_t)>(2)(-4), "name");
    EXPECT_TRUE(
        (mirror.slot<bool(const char*, const uuid&, zelt::IfDAQPlugin**)>(3)("made", kTypeId, &plugin)));
    EXPECT_EQ(plugin, nullptr);
    EXPECT_TRUE((mirror.slot<bool(const uuid&, zelt::IfDAQPlugin*)>(4)(kTypeId, nullptr)));
}

const MirrorOf creator("plugin_api::IfPluginCreator", recorded<RecordingCreator>, callCreator);

class RecordingClock : public slot_check::EndOf<zelt::IfMasterClock> {
  public:
    virtual double getRate() {
        answered("getRate");
        return 1e9;
    }
    virtual std::uint64_t getTime() {
        answered("getTime");
        return std::numeric_limits<std::uint64_t>::max();
    }

    static Operations operations() {
        return {{"getRate", entryOf(&RecordingClock::getRate)},
                {"getTime", entryOf(&RecordingClock::getTime)}};
    }

  protected:
    ~RecordingClock() = default;
};

const MirrorOf masterClock("zelt::IfMasterClock", recorded<RecordingClock>, [](Mirror& mirror) {
    EXPECT_EQ(mirror.slot<double()>(0)(), 1e9);
    EXPECT_EQ(mirror.slot<std::uint64_t()>(1)(), std::numeric_limits<std::uint64_t>::max());
});

class RecordingSink : public slot_check::EndOf<zelt::IfChannelSink> {
  public:
    virtual void addSample(std::int64_t time, const void* data, std::uint64_t size) {
        answered("addSample");
        EXPECT_EQ(time, -5);
        EXPECT_EQ(data, &kTypeId);
        EXPECT_EQ(size, 6u);
    }

    static Operations operations() { return {{"addSample", entryOf(&RecordingSink::addSample)}}; }

  protected:
    ~RecordingSink() = default;
};

const MirrorOf channelSink("zelt::IfChannelSink", recorded<RecordingSink>, [](Mirror& mirror) {
    mirror.slot<void(std::int64_t, const void*, std::uint64_t)>(0)(-5, &kTypeId, 6);
});

using exception_manager::Exception;
using MessageListener = std::function<void(const Exception&)>;

class RecordingMessages : public slot_check::EndOf<zelt::IfChannelMessages> {
  public:
    virtual bool getLastMessage(Exception& out) {
        answered("getLastMessage");
        out = Exception(7, "message", "source");
        return true;
    }
    virtual void setMessageListener(MessageListener listener) {
        answered("setMessageListener");
        listener(Exception(8, "message", "source"));
    }

    static Operations operations() {
        return {{"getLastMessage", entryOf(&RecordingMessages::getLastMessage)},
                {"setMessageListener", entryOf(&RecordingMessages::setMessageListener)}};
    }

  protected:
    ~RecordingMessages() = default;
};

const MirrorOf channelMessages("zelt::IfChannelMessages", recorded<RecordingMessages>, [](Mirror& mirror) {
    Exception message;
    EXPECT_TRUE(mirror.slot<bool(Exception&)>(0)(message));
    EXPECT_EQ(message.getCode(), 7u);
    std::uint32_t heard = 0;
    mirror.slot<void(MessageListener)>(1)([&](const Exception& told) { heard = told.getCode(); });
    EXPECT_EQ(heard, 8u);
});

class RecordingException : public slot_check::EndOf<Exception> {
  public:
    static Operations operations() { return {}; }
};

const MirrorOf exception("exception_manager::Exception", recorded<RecordingException>,
                         [](Mirror& mirror) { mirror.destroys(0); });

using RecordingService = slot_check::RecordingService<plugin_api::IfService>;
const MirrorOf service("plugin_api::IfService", recorded<RecordingService>, slot_check::callService);
const MirrorOf serviceFactory("plugin_api::IfServiceFactory", recorded<slot_check::RecordingServiceFactory>,
                              [](Mirror& mirror) {
                                  slot_check::callServiceFactory(mirror);
                                  mirror.destroys(3);
                              });
const MirrorOf syncAuxService("zelt::IfSyncAuxService", recorded<slot_check::RecordingSyncAuxService>,
                              slot_check::callSyncAuxService);
using RecordingTopologyService = slot_check::RecordingTopologyService<zelt::IfSystemTopologyService>;
const MirrorOf topologyService("zelt::IfSystemTopologyService", recorded<RecordingTopologyService>,
                               slot_check::callTopologyService);

using RecordingCommon = slot_check::RecordingPluginCommon<zelt::IfPluginCommon>;
const MirrorOf pluginCommon("zelt::IfPluginCommon", recorded<RecordingCommon>, slot_check::callPluginCommon);
using RecordingPlugin = slot_check::RecordingDAQPlugin<zelt::IfDAQPlugin>;
const MirrorOf plugin("zelt::IfDAQPlugin", recorded<RecordingPlugin>, slot_check::callDAQPlugin);

using RecordingPluginConfig = slot_check::RecordingPluginConfig<zelt::IfPluginConfig>;
const MirrorOf pluginConfig("zelt::IfPluginConfig", recorded<RecordingPluginConfig>,
                            slot_check::callPluginConfig);
using RecordingChannelConfig = slot_check::RecordingChannelConfig<channel_config::IfChannelConfig>;
const MirrorOf channelConfig("channel_config::IfChannelConfig", recorded<RecordingChannelConfig>,
                             slot_check::callChannelConfig);

TEST(HostApi, RootHasNoVirtualOperations) {
    EXPECT_FALSE(std::is_polymorphic_v<rym::IfApiObject>);
}

TEST(HostApi, RootCannotBeDestroyedThroughIt) {
    EXPECT_FALSE(std::is_destructible_v<rym::IfApiObject>);
}

}  // namespace
