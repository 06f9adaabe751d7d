#include "zeltpu_daq_plugin_base.h"

#include <limits>
#include <type_traits>

#include <boost/uuid/uuid_io.hpp>
#include <gtest/gtest.h>

namespace {

/// Fills in what the base leaves open, with answers that are none of the base's defaults.
class Plugin : public zelt::plugin_util::DAQPluginBase {
  public:
    using DAQPluginBase::DAQPluginBase;

    const char* getDisplayName() override { return "test"; }
    boost::uuids::uuid getPluginId() override { return {}; }
    bool createServices() override { return false; }
    bool initialize() override { return false; }
    bool isSupported() override { return false; }
    void terminate() override {}
    std::shared_ptr<zelt::IfPluginConfig> getPluginConfig() override { return nullptr; }
    void onHostEvent(const void*) override {}
    void setHostValue(std::uint64_t) override {}
    void setChannelSink(std::uint32_t, zelt::IfChannelSink*) override {}
    void clearChannelSinks() override {}
    std::set<std::uint32_t> getChannelIds() override { return {}; }
    std::uint32_t findChannelId(const std::string&) override { return kNoChannel; }
    bool prepareAcquisition() override { return false; }
    bool isAcquiring() override { return false; }
    bool startAcquisition() override { return false; }
    bool stopAcquisition() override { return false; }
    bool processAcquisition() override { return false; }
    std::shared_ptr<channel_config::IfChannelConfig> getChannelConfig(std::uint32_t) override {
        return nullptr;
    }
    void setSharedAcquisitionObject(std::shared_ptr<zelt::IfMasterClock>) override {}
    bool checkChannelSettings(const std::vector<std::uint32_t>&, bool) override { return false; }
    std::shared_ptr<channel_config::IfChannelConfig> getChannel(std::uint32_t) override { return nullptr; }
    double getNominalRate() override { return 0; }
};

TEST(DAQPluginBase, KeepsItsInstanceIndex) {
    Plugin plugin(7);
    zelt::IfDAQPlugin& host = plugin;
    EXPECT_EQ(host.getInstanceIndex(), 7u);
    host.setInstanceIndex(0xFFFFFFFF);
    EXPECT_EQ(host.getInstanceIndex(), 0xFFFFFFFFu);
}

TEST(DAQPluginBase, ReportsTheTypeIdOfThisPlugin) {
    Plugin plugin(0);
    const boost::uuids::uuid expected = {
        {0xD4, 0x02, 0x50, 0xC7, 0x33, 0xF6, 0x4E, 0xCE, 0x9A, 0x88, 0xBA, 0xE8, 0xEE, 0x6D, 0x5F, 0xA5}};
    EXPECT_EQ(plugin.getPluginTypeId(), expected);
}

TEST(DAQPluginBase, HasNoServicesAndNoTopology) {
    Plugin plugin(0);
    EXPECT_EQ(plugin.getServiceFactory(), nullptr);
    EXPECT_FALSE(plugin.hasSystemTopology());
}

TEST(DAQPluginBase, AgreesToWhatItIsAskedAboutAcquisitions) {
    Plugin plugin(0);
    EXPECT_TRUE(plugin.isSupported2());
    EXPECT_TRUE(plugin.isReadyForAcquisition());
    EXPECT_TRUE(plugin.onAcquisitionPrepared());
    EXPECT_TRUE(plugin.onAcquisitionFinished());
}

TEST(DAQPluginBase, LeavesTheChannelsAsTheyAreOnEnumeration) {
    Plugin plugin(3);
    plugin.enumerateDevices();
    EXPECT_TRUE(plugin.getChannelIds().empty());
    EXPECT_EQ(plugin.getInstanceIndex(), 3u);
}

TEST(DAQPluginBase, IsNoPluginByItself) {
    EXPECT_TRUE(std::is_abstract_v<zelt::plugin_util::DAQPluginBase>);
}

}  // namespace
