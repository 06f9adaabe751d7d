#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "fake_plugin.h"
#include "host_failure.h"
#include "regex_matcher.h"
#include "watch_report.h"

using host::Watch;
using host::WatchReport;
using host_test::FakeChannel;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr std::uint32_t kSent = 0x10000;
constexpr std::uint32_t kReceived = 0x20000;

class WatchTest : public testing::Test {
  protected:
    WatchTest() {
        plugin().addChannel(0);
        addCounter(kSent, "CntSent");
        addCounter(kReceived, "CntReceived");
        host::SessionOptions options;
        options.frameCounters = true;
        m_session = std::make_unique<host::Session>(m_creator.source(), options,
                                                    std::make_unique<host::VendorProbe>(nullptr));
        m_creator.m_calls.clear();
        m_options.interval = std::chrono::nanoseconds(0);
        m_hooks.isInterrupted = [this] { return m_asked++ == 2; };
        m_hooks.show = [this](const WatchReport& report) { m_shown.push_back(report); };
        m_hooks.tell = [this](const std::string& sentence) { m_told.push_back(sentence); };
    }

    host_test::FakePlugin& plugin() { return *m_creator.m_plugin; }
    void addCounter(std::uint32_t id, const char* kind) {
        const auto channel = std::make_shared<FakeChannel>(id);
        channel->add(config_keys::kIdCameraChannelIndex, host_test::textItem("0"));
        channel->add(config_keys::kIdCameraSubChannelId, host_test::textItem(kind));
        plugin().m_channels[id] = channel;
    }
    void count(std::uint32_t id, unsigned char count) {
        const std::array<unsigned char, 8> bytes{count, 1};  // 256 more, the lowest byte first
        plugin().m_sinks.at(id)->addSample(0, bytes.data(), bytes.size());
    }
    /// A frame, the camera's number of it and how many there were.
    void frame(unsigned char sent, unsigned char received) {
        plugin().m_sinks.at(0)->addSample(0, "x", 1);
        count(kSent, sent);
        count(kReceived, received);
    }
    WatchReport watch() { return Watch(*m_session, m_options, m_hooks).run(); }

    host_test::FakeCreator m_creator;
    std::unique_ptr<host::Session> m_session;
    host::WatchOptions m_options;
    host::WatchHooks m_hooks;
    int m_asked = 0;
    std::vector<WatchReport> m_shown;
    std::vector<std::string> m_told;
};

TEST_F(WatchTest, RunsTheCamerasInOrderAndLeavesNoSinkBehind) {
    watch();
    EXPECT_THAT(m_creator.m_calls,
                ElementsAre("setChannelSink", "setChannelSink", "setChannelSink", "prepareAcquisition",
                            "onAcquisitionPrepared", "startAcquisition", "stopAcquisition",
                            "onAcquisitionFinished", "clearChannelSinks"));
    EXPECT_TRUE(plugin().m_sinks.empty());
}

TEST_F(WatchTest, CountsFramesAndTellsLossesByTheCountersDifference) {
    plugin().m_behaviour["startAcquisition"] = [this] {
        frame(2, 1);
        frame(3, 2);
        frame(7, 3);  // 4, 5 and 6 are missing
        plugin().m_channels.at(0)->m_listener(exception_manager::Exception(0, "dark", ""));
        return true;
    };
    const WatchReport report = watch();
    ASSERT_EQ(report.channels.size(), 1u);
    EXPECT_EQ(report.channels[0].frames, 3u);
    EXPECT_EQ(report.channels[0].lost, 3u);
    EXPECT_EQ(report.channels[0].lastMessage, "dark");
    EXPECT_DOUBLE_EQ(report.channels[0].rate, 3 / report.seconds);
    EXPECT_THAT(m_told, ElementsAre("channel 0: dark"));
    ASSERT_EQ(m_shown.size(), 2u);
    EXPECT_GT(m_shown[0].channels[0].rate, 0);
    EXPECT_EQ(m_shown[1].channels[0].frames, 3u);
    EXPECT_EQ(m_shown[1].channels[0].rate, 0) << "nothing came since the first look";
}

TEST_F(WatchTest, EndsAfterItsSeconds) {
    m_hooks.isInterrupted = [] { return false; };
    m_options.seconds = 0.01;
    const WatchReport report = watch();
    EXPECT_GE(report.seconds, 0.01);
    EXPECT_FALSE(report.cutShort);
    EXPECT_EQ(host::watchCode(report), host::ExitCode::Ok);
}

TEST_F(WatchTest, IsCutShortOnlyWhenItHadAnEnd) {
    EXPECT_FALSE(watch().cutShort);
    m_options.seconds = 600;
    m_asked = 0;
    const WatchReport report = watch();
    EXPECT_TRUE(report.cutShort);
    EXPECT_EQ(host::watchCode(report), host::ExitCode::Interrupted);
    EXPECT_THAT(host::watchFailure(report), test_support::FindsRegex("^Interrupted after 0\\.[0-9] s\\.$"));
}

TEST_F(WatchTest, DoesNotCallAFrameLostThatIsBeingCounted) {
    plugin().m_behaviour["startAcquisition"] = [this] {
        frame(2, 1);
        count(kSent, 3);
        return true;
    };
    // At the first look a frame counts as sent and not as received, at the second one it has been received
    // and the next two are missing, at the third one it is still so.
    m_hooks.isInterrupted = [this] {
        ++m_asked;
        if (m_asked == 2) {
            count(kReceived, 2);
            frame(6, 3);
        }
        return m_asked == 4;
    };
    watch();
    ASSERT_EQ(m_shown.size(), 3u);
    EXPECT_EQ(m_shown[0].channels[0].lost, 0u);
    EXPECT_EQ(m_shown[2].channels[0].lost, 2u);
}

TEST_F(WatchTest, SaysWhyTheCamerasCannotBeStartedOrStopped) {
    plugin().m_behaviour["stopAcquisition"] = []() -> bool { throw std::runtime_error("camera gone"); };
    EXPECT_EQ(watch().stopFailure, "camera gone");
    plugin().m_behaviour["startAcquisition"] = []() -> bool { throw std::runtime_error("busy"); };
    try {
        watch();
        ADD_FAILURE();
    } catch (const host::HostFailure& failure) {
        EXPECT_EQ(failure.code(), host::ExitCode::CameraFailed);
        EXPECT_THAT(failure.what(), HasSubstr("could not be started: busy;"));
    }
    EXPECT_TRUE(plugin().m_sinks.empty());
}

TEST(WatchReport, IsALineForEverySecondAndATableAtTheEnd) {
    host::ChannelInfo camera;
    camera.name = "Manta";
    WatchReport report;
    report.seconds = 3.02;
    report.channels = {{camera, 150, 2, 49.96, ""}, {camera, 1, 0, 0, "gone"}};
    report.channels[1].channel.id = 4;
    EXPECT_EQ(host::watchLine(report),
              "   3 s   channel 0: 150 frames, 2 lost, 50.0 fps   channel 4: 1 frame, 0 lost, 0.0 fps");
    EXPECT_EQ(host::watchText(report),
              "  id  camera  frames  lost       rate  last message\n"
              "   0  Manta      150     2  49.96 fps  none\n"
              "   4  Manta        1     0   0.00 fps  gone\n");
    const auto json = nlohmann::json::parse(host::watchJson(report));
    EXPECT_EQ(json["exit_code"], 0);
    EXPECT_EQ(json["seconds"], 3.02);
    EXPECT_EQ(json["channels"][0],
              nlohmann::json::parse(R"({"id": 0, "name": "Manta", "frames": 150, "lost": 2, "rate_fps": 49.96,
                                        "last_message": null})"));
    EXPECT_EQ(json["channels"][1]["last_message"], "gone");
    report.stopFailure = "camera gone";
    EXPECT_EQ(nlohmann::json::parse(host::watchJson(report))["exit_code"], 12);
}

}  // namespace
