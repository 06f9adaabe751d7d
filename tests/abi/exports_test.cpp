// The built plug-in library as a host meets it: loaded from its file, nothing linked.
#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <boost/uuid/string_generator.hpp>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    static void* open() { return dlopen(libraryPath().c_str(), RTLD_NOW | RTLD_LOCAL); }
    void close() {
        if (library != nullptr) dlclose(library);
        library = nullptr;
    }
    void* library = open();
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

TEST_F(LoadedLibrary, LeavesNothingBehindWhenItIsUnloadedAfterUse) {
    for (int round = 0; round < 2; ++round) {
        ASSERT_NE(library, nullptr) << dlerror();
        plugin_api::IfPluginCreator* const creator = symbol<ZeltGetPluginFactory>("ZELT_getPluginFactory")();
        const auto typeId = boost::uuids::string_generator()("{D40250C7-33F6-4ECE-9A88-BAE8EE6D5FA5}");
        zelt::IfDAQPlugin* plugin = nullptr;
        ASSERT_TRUE(creator->createPlugin("GIGECAMERA", typeId, &plugin));
        ASSERT_TRUE(plugin->initialize());
        plugin->enumerateDevices();
        EXPECT_EQ(plugin->getChannelIds().size(), 2u);
        plugin->terminate();
        EXPECT_TRUE(creator->destroyPlugin(typeId, plugin));
        close();
        EXPECT_EQ(dlopen(libraryPath().c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr);
        library = open();
    }
}

}  // namespace
