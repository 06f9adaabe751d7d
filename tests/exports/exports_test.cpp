// The built plug-in library as a host meets it: loaded from its file, nothing of its inside linked.
#include <cstdint>
#include <memory>
#include <string>

#include <boost/uuid/string_generator.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "config_item_variant.h"
#include "host_platform.h"
#include "if_daq_plugin.h"
#include "if_plugin_creator.h"
#include "test_system.h"

namespace {

using ::testing::UnorderedElementsAre;

const std::filesystem::path kLibrary =
    test_support::programDirectory() / test_support::libraryFileName("zelt_plugin_gige_camera");

class LoadedLibrary : public ::testing::Test {
  protected:
    template <typename Function>
    Function* symbol(const char* name) {
        return reinterpret_cast<Function*>(library->symbol(name));
    }
    plugin_api::IfPluginCreator* creator() { return symbol<ZeltGetPluginFactory>("ZELT_getPluginFactory")(); }
    zelt::IfDAQPlugin* createPlugin() {
        zelt::IfDAQPlugin* plugin = nullptr;
        EXPECT_TRUE(creator()->createPlugin("GIGECAMERA", typeId, &plugin));
        return plugin;
    }
    std::unique_ptr<host::platform::Library> open() { return host::platform::loadLibrary(kLibrary, error); }

    host::platform::LoadError error;
    std::unique_ptr<host::platform::Library> library = open();
    const boost::uuids::uuid typeId =
        boost::uuids::string_generator()("{D40250C7-33F6-4ECE-9A88-BAE8EE6D5FA5}");
};

TEST(Exports, AreExactlyTheTwoFunctions) {
    EXPECT_THAT(test_support::exportedNames(kLibrary),
                UnorderedElementsAre("ZELT_getPluginDllName", "ZELT_getPluginFactory"));
}

TEST_F(LoadedLibrary, TellsItsName) {
    ASSERT_NE(library, nullptr) << error.text;
    auto* const name = symbol<ZeltGetPluginDllName>("ZELT_getPluginDllName");
    ASSERT_NE(name, nullptr);
    EXPECT_STREQ(name(), "GIGECAMERA");
    EXPECT_EQ(name(), name());
}

TEST_F(LoadedLibrary, HandsOutOneCreator) {
    ASSERT_NE(library, nullptr) << error.text;
    auto* const factory = symbol<ZeltGetPluginFactory>("ZELT_getPluginFactory");
    ASSERT_NE(factory, nullptr);
    ASSERT_NE(factory(), nullptr);
    EXPECT_EQ(factory(), factory());
    EXPECT_EQ(factory()->getInterfaceVersion(), 1u);
    EXPECT_STREQ(factory()->getPluginName(0), "GIGECAMERA");
}

TEST_F(LoadedLibrary, RaisesItsAssertionsThroughTheHookOfTheProcess) {
    ASSERT_NE(library, nullptr) << error.text;
    zelt::IfDAQPlugin* const plugin = createPlugin();
    ASSERT_NE(plugin, nullptr);
    {
        const test_support::AssertionCapture capture;
        plugin->getPluginConfig()->getItem("NoSuchKey");
        ASSERT_EQ(capture.failures().size(), 1u);
        EXPECT_EQ(capture.failures()[0].message, "key not found. config item does not exist.");
    }
    EXPECT_TRUE(creator()->destroyPlugin(typeId, plugin));
}

TEST_F(LoadedLibrary, CountsItsItemsInTheCounterOfTheProcess) {
    ASSERT_NE(library, nullptr) << error.text;
    constexpr std::int64_t kSettings = 2;
    const std::int64_t before = config_items::IfConfigItem::getInstanceCount();
    zelt::IfDAQPlugin* const plugin = createPlugin();
    ASSERT_NE(plugin, nullptr);
    const std::int64_t during = config_items::IfConfigItem::getInstanceCount();
    EXPECT_GE(during, before + kSettings);

    const auto types = uni::getCountedTypes();
    ASSERT_EQ(types.count("config_items::IfConfigItem"), 1u);
    EXPECT_EQ(types.at("config_items::IfConfigItem")(), during);

    EXPECT_TRUE(creator()->destroyPlugin(typeId, plugin));
    EXPECT_EQ(config_items::IfConfigItem::getInstanceCount(), before);
}

TEST_F(LoadedLibrary, LeavesNothingBehindWhenItIsUnloadedAfterUse) {
    for (int round = 0; round < 2; ++round) {
        ASSERT_NE(library, nullptr) << error.text;
        zelt::IfDAQPlugin* const plugin = createPlugin();
        ASSERT_NE(plugin, nullptr);
        ASSERT_TRUE(plugin->initialize());
        plugin->enumerateDevices();
        EXPECT_EQ(plugin->getChannelIds().size(), 2u);
        plugin->terminate();
        EXPECT_TRUE(creator()->destroyPlugin(typeId, plugin));
        library.reset();
        EXPECT_EQ(host::platform::findLoadedLibrary(kLibrary.string().c_str()), nullptr);
        library = open();
    }
}

}  // namespace
