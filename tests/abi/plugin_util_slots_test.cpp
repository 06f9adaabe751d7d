// The plug-in framework's classes behind the host's interfaces, and the options, called by slot number.
#include <atomic>

#include <gtest/gtest.h>

#include "mirror.h"
#include "mirror_configs.h"
#include "mirror_daq_plugin.h"
#include "mirror_services.h"
#include "zeltpu_daq_plugin_base.h"
#include "zeltpu_event_counter_channel.h"
#include "zeltpu_service_factory.h"
#include "zeltpu_simple_channel_config.h"
#include "zeltpu_simple_channel_config_options.h"
#include "zeltpu_simple_plugin_config.h"
#include "zeltpu_system_topology_service_base.h"

namespace {

using config_items::ScalarConfigItem;
using slot_check::answered;
using slot_check::Constraints;
using slot_check::entryOf;
using slot_check::Mirror;
using slot_check::MirrorOf;
using slot_check::Operations;
using slot_check::recorded;
using slot_check::Variant;

namespace util = zelt::plugin_util;

using RecordingPluginBase = slot_check::RecordingDAQPlugin<util::DAQPluginBase>;
const MirrorOf pluginBase(
    "zelt::plugin_util::DAQPluginBase", [] { return recorded<RecordingPluginBase>(0u); },
    slot_check::callDAQPlugin);

using RecordingSimplePluginConfig = slot_check::RecordingPluginConfig<util::SimplePluginConfig>;
const MirrorOf simplePluginConfig("zelt::plugin_util::SimplePluginConfig",
                                  recorded<RecordingSimplePluginConfig>, slot_check::callPluginConfig);

using RecordingSimpleChannelConfig = slot_check::RecordingChannelConfig<util::SimpleChannelConfig>;
const MirrorOf simpleChannelConfig("zelt::plugin_util::SimpleChannelConfig",
                                   recorded<RecordingSimpleChannelConfig>, slot_check::callChannelConfig);

using RecordingEventCounter = slot_check::RecordingChannelConfig<util::EventCounterChannel>;
const MirrorOf eventCounter(
    "zelt::plugin_util::EventCounterChannel",
    [] {
        const std::string text;
        return recorded<RecordingEventCounter>(text, text, text);
    },
    slot_check::callChannelConfig);

class RecordingTopologyBase : public slot_check::RecordingTopologyService<util::SystemTopologyServiceBase> {
  public:
    RecordingTopologyBase() : RecordingTopologyService(nullptr) {}

    virtual void fillMeasurementTree(pugi::xml_node tree) {
        answered("fillMeasurementTree");
        tree.append_child("Filled");
    }

    static Operations operations() {
        Operations all = RecordingTopologyService::operations();
        all.push_back({"fillMeasurementTree", entryOf(&RecordingTopologyBase::fillMeasurementTree)});
        return all;
    }
};

const MirrorOf topologyBase("zelt::plugin_util::SystemTopologyServiceBase", recorded<RecordingTopologyBase>,
                            [](Mirror& mirror) {
                                slot_check::callTopologyService(mirror);
                                pugi::xml_document document;
                                mirror.slot<void(pugi::xml_node)>(6)(document);
                                EXPECT_TRUE(document.child("Filled"));
                            });

// Nothing can derive from a final class, so the real operations answer, and where its table ends is not seen.
class PublishedService final : public plugin_api::IfService {
  public:
    std::uint32_t addRef() override { return m_references++; }
    std::uint32_t release() override { return m_references--; }
    std::uint32_t references() const { return m_references; }

  private:
    std::uint32_t m_references = 0;
};

PublishedService& publishedService() {
    static PublishedService service;
    return service;
}

slot_check::Recorded realServiceFactory() {
    using Factory = zeltpu::ServiceFactory;
    const Operations operations{{"addRef", entryOf(&Factory::addRef)},
                                {"release", entryOf(&Factory::release)},
                                {"getService", entryOf(&Factory::getService)}};
    slot_check::Recorded result;
    slot_check::layOut(result, operations, 5, true);
    result.records = false;
    result.make = [] {
        auto* const factory = new Factory;
        factory->registerService(slot_check::kServiceId, &publishedService());
        return static_cast<void*>(factory);
    };
    result.destroy = [](void* object) {
        auto* const factory = static_cast<Factory*>(object);
        factory->addRef();
        while (factory->release() > 1) {
        }
    };
    return result;
}

const MirrorOf serviceFactory("zeltpu::ServiceFactory", realServiceFactory, [](Mirror& mirror) {
    using boost::uuids::uuid;
    using plugin_api::IfService;
    EXPECT_EQ(mirror.slot<std::uint32_t()>(0)(), 0u);
    EXPECT_EQ(mirror.slot<std::uint32_t()>(0)(), 1u);
    EXPECT_EQ(mirror.slot<std::uint32_t()>(1)(), 2u);
    IfService* found = nullptr;
    EXPECT_TRUE((mirror.slot<bool(const uuid&, IfService**)>(2)(slot_check::kServiceId, &found)));
    EXPECT_EQ(found, &publishedService());
    EXPECT_FALSE((mirror.slot<bool(const uuid&, IfService**)>(2)(uuid{}, &found)));
    EXPECT_EQ(found, nullptr);
    // Each factory that is destroyed gives its one reference back.
    const std::uint32_t references = publishedService().references();
    mirror.destroys(3);
    EXPECT_EQ(publishedService().references(), references);
});

template <class Option>
class RecordingOption : public slot_check::EndOf<Option> {
  public:
    using slot_check::EndOf<Option>::EndOf;

    virtual bool isAvailable() const {
        answered("isAvailable");
        return true;
    }
    virtual Variant getItem() const {
        answered("getItem");
        return slot_check::textItem("the item");
    }
    virtual bool setItem(const Variant& value) {
        answered("setItem");
        return slot_check::textOf(value) == "a value";
    }
    virtual Constraints getConstraints() const {
        answered("getConstraints");
        return Constraints(3);
    }

    static Operations operations() {
        return {{"isAvailable", entryOf(&RecordingOption::isAvailable)},
                {"getItem", entryOf(&RecordingOption::getItem)},
                {"setItem", entryOf(&RecordingOption::setItem)},
                {"getConstraints", entryOf(&RecordingOption::getConstraints)}};
    }
};

void callOption(Mirror& mirror) {
    EXPECT_TRUE(mirror.slot<bool()>(0)());
    EXPECT_EQ(slot_check::textOf(mirror.slot<Variant()>(1)()), "the item");
    EXPECT_TRUE(mirror.slot<bool(const Variant&)>(2)(slot_check::textItem("a value")));
    EXPECT_EQ(mirror.slot<Constraints()>(3)().size(), 3u);
    mirror.destroys(4);
}

const std::string kKey = "key";

/// `args` are the constructor's after the key.
template <class Option, class... Args>
MirrorOf optionMirror(const std::string& name, Args... args) {
    return {"zelt::plugin_util::" + name,
            [args...] { return recorded<RecordingOption<Option>>(kKey, args...); }, callOption};
}

template <class T>
MirrorOf genericMirror(const std::string& type) {
    using Option = util::GenericOption<T>;
    return optionMirror<Option>("GenericOption<" + type + ">", typename Option::Callables{});
}

template <class T>
MirrorOf constantMirror(const std::string& type) {
    return optionMirror<util::ConstantGenericOption<T>>("ConstantGenericOption<" + type + ">", T{});
}

std::atomic<bool> used{true};

const MirrorOf options[] = {
    optionMirror<util::ChannelConfigOption>("ChannelConfigOption"),
    genericMirror<bool>("bool"),
    genericMirror<std::string>("std::string"),
    genericMirror<ScalarConfigItem>("config_items::ScalarConfigItem"),
    genericMirror<Variant>("config_items::ConfigItemVariant"),
    constantMirror<std::string>("std::string"),
    constantMirror<bool>("bool"),
    constantMirror<channel_config::DAQChannelType>("channel_config::DAQChannelType"),
    constantMirror<channel_config::SampleOccurrenceType>("channel_config::SampleOccurrenceType"),
    constantMirror<channel_config::DAQSampleResolution>("channel_config::DAQSampleResolution"),
    optionMirror<util::ChannelUsedOption>("ChannelUsedOption", std::ref(used), false),
    optionMirror<util::SimpleOptionBase>("SimpleOptionBase", false, true),
    optionMirror<util::SimpleStringOption>("SimpleStringOption", std::string("value"), false, true),
    optionMirror<util::ConstantRangeOption>("ConstantRangeOption",
                                            config_items::RangeConfigItem<double>(1.0, 2.0)),
    optionMirror<util::SimpleScalarOption>("SimpleScalarOption", ScalarConfigItem(1.0, "Hz"), true, 0.0, 2.0),
};

}  // namespace
