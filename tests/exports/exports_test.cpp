// The built plug-in library as a host meets it: loaded from its file, nothing of its inside linked.
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <boost/uuid/string_generator.hpp>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "config_item_variant.h"
#include "if_daq_plugin.h"
#include "if_plugin_creator.h"

namespace {

using ::testing::UnorderedElementsAre;

std::string libraryPath() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "libzelt_gige_camera.so";
}

std::vector<std::string> exportedNames() {
    const std::string command = "nm -D --defined-only --format=posix " + libraryPath();
    const std::unique_ptr<FILE, int (*)(FILE*)> listing(popen(command.c_str(), "r"), &pclose);
    std::vector<std::string> names;
    std::array<char, 1024> line{};
    while (std::fgets(line.data(), line.size(), listing.get()) != nullptr) {
        const std::string text(line.data());
        names.push_back(text.substr(0, text.find(' ')));
    }
    return names;
}

class LoadedLibrary : public ::testing::Test {
  protected:
    template <typename Function>
    Function* symbol(const char* name) {
        return reinterpret_cast<Function*>(dlsym(library, name));
    }
    ~LoadedLibrary() override { close(); }
    plugin_api::IfPluginCreator* creator() { return symbol<ZeltGetPluginFactory>("ZELT_getPluginFactory")(); }
    zelt::IfDAQPlugin* createPlugin() {
        zelt::IfDAQPlugin* plugin = nullptr;
        EXPECT_TRUE(creator()->createPlugin("GIGECAMERA", typeId, &plugin));
        return plugin;
    }
    static void* open() { return dlopen(libraryPath().c_str(), RTLD_NOW | RTLD_LOCAL); }
    void close() {
        if (library != nullptr) dlclose(library);
        library = nullptr;
    }
    void* library = open();
    const boost::uuids::uuid typeId =
        boost::uuids::string_generator()("{D40250C7-33F6-4ECE-9A88-BAE8EE6D5FA5}");
};

TEST(Exports, AreExactlyTheTwoFunctions) {
    EXPECT_THAT(exportedNames(), UnorderedElementsAre("ZELT_getPluginDllName", "ZELT_getPluginFactory"));
}

TEST_F(LoadedLibrary, TellsItsName) {
    ASSERT_NE(library, nullptr) << dlerror();
    auto* const name = symbol<ZeltGetPluginDllName>("ZELT_getPluginDllName");
    ASSERT_NE(name, nullptr);
    EXPECT_STREQ(name(), "GIGECAMERA");
    EXPECT_EQ(name(), name());
}

TEST_F(LoadedLibrary, HandsOutOneCreator) {
    ASSERT_NE(library, nullptr) << dlerror();
    auto* const factory = symbol<ZeltGetPluginFactory>("ZELT_getPluginFactory");
    ASSERT_NE(factory, nullptr);
    ASSERT_NE(factory(), nullptr);
    EXPECT_EQ(factory(), factory());
    EXPECT_EQ(factory()->getInterfaceVersion(), 1u);
    EXPECT_STREQ(factory()->getPluginName(0), "GIGECAMERA");
}

TEST_F(LoadedLibrary, RaisesItsAssertionsThroughTheHookOfTheProcess) {
    ASSERT_NE(library, nullptr) << dlerror();
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
    ASSERT_NE(library, nullptr) << dlerror();
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
        ASSERT_NE(library, nullptr) << dlerror();
        zelt::IfDAQPlugin* const plugin = createPlugin();
        ASSERT_NE(plugin, nullptr);
        ASSERT_TRUE(plugin->initialize());
        plugin->enumerateDevices();
        EXPECT_EQ(plugin->getChannelIds().size(), 2u);
        plugin->terminate();
        EXPECT_TRUE(creator()->destroyPlugin(typeId, plugin));
        close();
        EXPECT_EQ(dlopen(libraryPath().c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr);
        library = open();
    }
}

}  // namespace
