#include "zelt_gige_camera_plugin_creator.h"

#include "plugin_fixture.h"

namespace {
bool s_memoryIsShort = false;
}

/// The creator asks for the plug-in's memory this way; everything else as ever.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (s_memoryIsShort) return nullptr;
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace {

using test_support::pluginTypeId;
using test_support::Simulator;
using ::testing::ElementsAre;

const boost::uuids::uuid kOtherId =
    boost::uuids::string_generator()("{D40250C7-33F6-4ECE-9A88-BAE8EE6D5FA6}");

class Creator : public ::testing::Test {
  protected:
    Simulator simulator;
    zelt_gige_camera::CameraPluginCreator creator;
    zelt::IfDAQPlugin* plugin = nullptr;
};

TEST_F(Creator, HasInterfaceVersionOne) {
    EXPECT_EQ(creator.getInterfaceVersion(), 1u);
}

TEST_F(Creator, SupportsItsTypeAtIndexZeroOnly) {
    EXPECT_TRUE(creator.supportsPlugin(0, pluginTypeId()));
    EXPECT_FALSE(creator.supportsPlugin(0, kOtherId));
    EXPECT_FALSE(creator.supportsPlugin(0, boost::uuids::uuid{}));
    EXPECT_FALSE(creator.supportsPlugin(1, pluginTypeId()));
    EXPECT_FALSE(creator.supportsPlugin(-1, pluginTypeId()));
}

TEST_F(Creator, NamesThePluginAtIndexZeroOnly) {
    EXPECT_STREQ(creator.getPluginName(0), "GIGECAMERA");
    EXPECT_EQ(creator.getPluginName(1), nullptr);
    EXPECT_EQ(creator.getPluginName(-1), nullptr);
}

TEST_F(Creator, MakesThePluginOfTheRightNameAndId) {
    EXPECT_TRUE(creator.createPlugin("GIGECAMERA", pluginTypeId(), &plugin));
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->getPluginTypeId(), pluginTypeId());
    EXPECT_EQ(plugin->getInstanceIndex(), 0u);
    EXPECT_TRUE(creator.destroyPlugin(pluginTypeId(), plugin));
}

TEST_F(Creator, RefusesEveryOtherNameWithNull) {
    for (const char* name : {"", "gigecamera", "GIGECAMERA ", "GIGECAMER", "GIGECAMERAS", " GIGECAMERA"}) {
        plugin = reinterpret_cast<zelt::IfDAQPlugin*>(this);
        EXPECT_FALSE(creator.createPlugin(name, pluginTypeId(), &plugin)) << name;
        EXPECT_EQ(plugin, nullptr) << name;
    }
    plugin = reinterpret_cast<zelt::IfDAQPlugin*>(this);
    EXPECT_FALSE(creator.createPlugin(nullptr, pluginTypeId(), &plugin));
    EXPECT_EQ(plugin, nullptr);
}

TEST_F(Creator, RefusesAnotherIdWithNull) {
    plugin = reinterpret_cast<zelt::IfDAQPlugin*>(this);
    EXPECT_FALSE(creator.createPlugin("GIGECAMERA", kOtherId, &plugin));
    EXPECT_EQ(plugin, nullptr);
}

TEST_F(Creator, RefusesToMakeAPluginForNowhere) {
    EXPECT_FALSE(creator.createPlugin("GIGECAMERA", pluginTypeId(), nullptr));
}

TEST_F(Creator, StartsTheCameraLibraryBeforeThePluginIsInitialized) {
    VmbSimJournalStart();
    creator.createPlugin("GIGECAMERA", pluginTypeId(), &plugin);
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbVersionQuery", "VmbStartup"));
    creator.destroyPlugin(pluginTypeId(), plugin);
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbVersionQuery", "VmbStartup", "VmbShutdown"));
}

TEST_F(Creator, MakesAPluginAlsoWhenTheCameraLibraryDoesNotStart) {
    VmbSimFailCall("VmbStartup", nullptr, 1, VmbErrorOther);
    const test_support::LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_TRUE(creator.createPlugin("GIGECAMERA", pluginTypeId(), &plugin));
    ASSERT_NE(plugin, nullptr);
    EXPECT_FALSE(plugin->initialize());
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Error),
        ElementsAre("Not able to initialize Vimba GIGE Camera API: Other error", "Invalid camera API"));
    creator.destroyPlugin(pluginTypeId(), plugin);
}

TEST_F(Creator, WithoutMemoryMakesNoneAndShutsTheCameraLibraryDown) {
    plugin = reinterpret_cast<zelt::IfDAQPlugin*>(this);
    VmbSimJournalStart();
    s_memoryIsShort = true;
    EXPECT_TRUE(creator.createPlugin("GIGECAMERA", pluginTypeId(), &plugin));
    s_memoryIsShort = false;
    EXPECT_EQ(plugin, nullptr);
    EXPECT_THAT(Simulator::calledFunctions(), ElementsAre("VmbVersionQuery", "VmbStartup", "VmbShutdown"));
}

TEST_F(Creator, DestroysNothingWithAWrongId) {
    creator.createPlugin("GIGECAMERA", pluginTypeId(), &plugin);
    EXPECT_FALSE(creator.destroyPlugin(kOtherId, plugin));
    EXPECT_STREQ(plugin->getDisplayName(), "GIGE Camera");
    EXPECT_TRUE(creator.destroyPlugin(pluginTypeId(), plugin));
}

TEST_F(Creator, HasNothingToDestroyForNullWhateverTheId) {
    EXPECT_TRUE(creator.destroyPlugin(pluginTypeId(), nullptr));
    EXPECT_TRUE(creator.destroyPlugin(kOtherId, nullptr));
}

}  // namespace
