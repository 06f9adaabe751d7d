// The document through the plug-in, byte for byte.
#include "if_system_topology_service.h"
#include "plugin_fixture.h"
#include "zelt_gige_camera_channel.h"
#include "zelt_gige_camera_plugin.h"

namespace {

using test_support::AssertionCapture;
using test_support::kMonochromeCamera;
using test_support::LogCapture;
using test_support::PluginTest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using zelt::plugin_util::constantOption;

constexpr const char* kEmpty = "<?xml version=\"1.0\"?>\n<MeasurementTree />\n";

/// Everything around the channels.
std::string documentOf(const std::string& channels) {
    return "<?xml version=\"1.0\"?>\n"
           "<MeasurementTree>\n"
           "\t<MeasurementNode Name=\"LocalNode\" Id=\"0\" IsLocalNode=\"true\">\n"
           "\t\t<Enclosure PluginId=\"eeec3c46-9973-487d-ad18-36cd7dda58da\" Name=\"GIGE-Cameras\" "
           "Id=\"1634650641\">\n"
           "\t\t\t<Slot Id=\"0\">\n"
           "\t\t\t\t<Device Name=\"Local GIGE Cameras\">\n"
           "\t\t\t\t\t<ChannelGroup Type=\"Video\">\n" +
           channels +
           "\t\t\t\t\t</ChannelGroup>\n"
           "\t\t\t\t</Device>\n"
           "\t\t\t</Slot>\n"
           "\t\t</Enclosure>\n"
           "\t</MeasurementNode>\n"
           "</MeasurementTree>\n";
}

class Topology : public PluginTest {
  protected:
    explicit Topology(const char* scenario = "two-cameras") : PluginTest(scenario) {}

    zelt::IfSystemTopologyService& service() {
        aux();
        plugin_api::IfService* found = nullptr;
        EXPECT_TRUE(services->getService(
            boost::uuids::string_generator()("{A5C594EA-1C7F-41BF-A588-9AC316FB5973}"), &found));
        return dynamic_cast<zelt::IfSystemTopologyService&>(*found);
    }
    std::string document() {
        std::string text;
        const auto keep = [](void* context, const char* told, std::size_t length) {
            static_cast<std::string*>(context)->append(told, length);
        };
        service().getTopology(0, keep, &text);
        return text;
    }
    zelt::plugin_util::SimpleChannelConfig& options(std::uint32_t id) {
        return dynamic_cast<zelt::plugin_util::SimpleChannelConfig&>(*plugin->getChannel(id));
    }
};

class TopologyWithoutCameras : public Topology {
  protected:
    TopologyWithoutCameras() : Topology("zero-cameras") {}
};

TEST_F(TopologyWithoutCameras, IsAnEmptyTree) {
    enumerate();
    EXPECT_EQ(document(), kEmpty);
}

TEST_F(Topology, IsAnEmptyTreeBeforeTheCamerasWereEnumerated) {
    EXPECT_EQ(document(), kEmpty);
}

TEST_F(Topology, HasOneElementPerCamera) {
    VmbSimUnplugCamera(kMonochromeCamera);
    enumerate();
    EXPECT_EQ(document(), documentOf("\t\t\t\t\t\t<Channel ChannelID=\"0x0000000000000000\" "
                                     "Name=\"Manta_G-033C (50-0503300001)\" />\n"));
}

TEST_F(Topology, HasTheCountersInsideTheirCameras) {
    wantFrameCounters(true);
    plugin->setInstanceIndex(0xABCDEF01);
    enumerate();
    EXPECT_EQ(document(), documentOf("\t\t\t\t\t\t<Channel ChannelID=\"0xABCDEF0100000000\" "
                                     "Name=\"Manta_G-033C (50-0503300001)\">\n"
                                     "\t\t\t\t\t\t\t<Channel ChannelID=\"0xABCDEF0100010000\" "
                                     "Name=\"CameraDEV_000F31A10001 SentCNT\" />\n"
                                     "\t\t\t\t\t\t\t<Channel ChannelID=\"0xABCDEF0100020000\" "
                                     "Name=\"CameraDEV_000F31A10001 RcvdCNT\" />\n"
                                     "\t\t\t\t\t\t</Channel>\n"
                                     "\t\t\t\t\t\t<Channel ChannelID=\"0xABCDEF0100000001\" "
                                     "Name=\"Manta_G-032B (50-0503200002)\">\n"
                                     "\t\t\t\t\t\t\t<Channel ChannelID=\"0xABCDEF0100010001\" "
                                     "Name=\"CameraDEV_000F31A10002 SentCNT\" />\n"
                                     "\t\t\t\t\t\t\t<Channel ChannelID=\"0xABCDEF0100020001\" "
                                     "Name=\"CameraDEV_000F31A10002 RcvdCNT\" />\n"
                                     "\t\t\t\t\t\t</Channel>\n"));
}

TEST_F(Topology, UsesTheInstanceIndexOfNow) {
    VmbSimUnplugCamera(kMonochromeCamera);
    enumerate();
    plugin->setInstanceIndex(3);
    EXPECT_THAT(document(), HasSubstr("ChannelID=\"0x0000000300000000\""));
}

TEST_F(Topology, IsThatOfTheLatestEnumeration) {
    enumerate();
    VmbSimUnplugCamera(kMonochromeCamera);
    EXPECT_EQ(VmbSimWaitForEvents(test_support::kPatienceMs), VmbErrorSuccess);
    EXPECT_THAT(document(), HasSubstr("Manta_G-032B"));
    plugin->enumerateDevices();
    EXPECT_THAT(document(), ::testing::Not(HasSubstr("Manta_G-032B")));
}

TEST_F(Topology, LeavesOutAChannelThatVanishesWhileItIsWritten) {
    enumerate();
    const AssertionCapture twice;
    const auto vanishing = [&] {
        VmbSimUnplugCamera(kMonochromeCamera);
        EXPECT_EQ(VmbSimWaitForEvents(test_support::kPatienceMs), VmbErrorSuccess);
        plugin->enumerateDevices();
        return std::string("left");
    };
    options(0).addOption(std::make_shared<zelt::plugin_util::GenericOption<std::string>>(
        "DefaultName", zelt::plugin_util::GenericOption<std::string>::Callables{.get = vanishing}));
    EXPECT_EQ(document(), documentOf("\t\t\t\t\t\t<Channel ChannelID=\"0x0000000000000000\" "
                                     "Name=\"left\" />\n"));
}

TEST_F(Topology, EscapesWhatHasAMeaningInTheDocument) {
    VmbSimUnplugCamera(kMonochromeCamera);
    enumerate();
    const AssertionCapture twice;
    options(0).addOption(constantOption<std::string>("DefaultName", "<A & \"B\">'\t\xC3\xBC"));
    EXPECT_EQ(document(), documentOf("\t\t\t\t\t\t<Channel ChannelID=\"0x0000000000000000\" "
                                     "Name=\"&lt;A &amp; &quot;B&quot;>'&#09;\xC3\xBC\" />\n"));
}

TEST_F(Topology, CannotNameAChannelWhoseNameIsNoText) {
    enumerate();
    const AssertionCapture twice;
    options(0).addOption(constantOption<bool>("DefaultName", true));
    EXPECT_THROW(document(), boost::bad_get);
    // Nothing stays locked.
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
}

TEST_F(Topology, PutsACounterWithoutACameraBesideTheCameras) {
    VmbSimUnplugCamera(kMonochromeCamera);
    enumerate();
    options(0).addOption(constantOption<std::string>("ID:CAMERA/SubChannelId", "CntSent"));
    const LogCapture log(UniLogSeverityLevel::Warning);
    EXPECT_THAT(document(), HasSubstr("\t\t\t\t\t\t<Channel ChannelID=\"0x0000000000000000\""));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                ElementsAre("The topology has no channel 0x0000000000000000 for its counter "
                            "0x0000000000000000"));
}

TEST_F(Topology, IsAServiceThatKeepsAListener) {
    service().setListener(7);
    EXPECT_FALSE(service().removeListener(8));
    EXPECT_TRUE(service().removeListener(7));
    EXPECT_FALSE(service().isTopologyDynamic());
    EXPECT_FALSE(plugin->hasSystemTopology());
}

TEST(TopologyOfNoPlugin, IsAProgrammingErrorAndEmpty) {
    const AssertionCapture assertions;
    zelt_gige_camera::CameraSystemTopologyService service(nullptr);
    EXPECT_THAT(assertions.expressions(), ElementsAre("m_camera_plugin"));
    pugi::xml_document document;
    service.fillMeasurementTree(document);
    EXPECT_THAT(assertions.expressions(), ElementsAre("m_camera_plugin", "plugin"));
    EXPECT_FALSE(document.first_child());
}

}  // namespace
