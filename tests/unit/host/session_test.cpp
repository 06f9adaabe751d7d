#include "session.h"

#include <gmock/gmock.h>

#include "config_item_variant.h"
#include "fake_plugin.h"
#include "host_failure.h"
#include "message_board.h"

using host::ExitCode;
using host::HostFailure;
using host::Session;
using host::SessionOptions;
using host_test::FakeCreator;
using testing::ElementsAre;

namespace {

std::unique_ptr<host::VendorProbe> noVendor() {
    return std::make_unique<host::VendorProbe>(nullptr);
}

ExitCode codeOf(FakeCreator& creator, const SessionOptions& options) {
    try {
        const Session session(creator.source(), options, noVendor());
    } catch (const HostFailure& failure) {
        return failure.code();
    }
    return ExitCode::Ok;
}

TEST(MessageBoard, TellsWhatAChannelSaidBeforeAnybodyListenedAndWhatItSaysAfterwards) {
    const auto channel = std::make_shared<host_test::FakeChannel>(0);
    exception_manager::Exception earlier(0, "Cannot open camera '%1': %2", "ZELT_GIGE_CAMERA");
    earlier.addArgument("Camera Name", "left");
    earlier.addArgument("Exception Argument", "busy");
    channel->m_last_message = earlier;
    host::MessageBoard board;
    board.subscribe(channel);
    channel->m_listener(exception_manager::Exception(0, "later", ""));
    EXPECT_THAT(board.take(), ElementsAre("Cannot open camera 'left': busy", "later"));
    board.unsubscribeAll();
}

TEST(Session, SaysThatTheCameraLibraryCannotBeStarted) {
    for (const bool throws : {false, true}) {
        FakeCreator creator;
        creator.m_plugin->m_behaviour["initialize"] = [throws]() -> bool {
            if (throws) throw std::runtime_error("The feature 'GeVTLIsPresent' is not supported");
            return false;
        };
        try {
            const Session session(creator.source(), {}, noVendor());
            ADD_FAILURE();
        } catch (const HostFailure& failure) {
            EXPECT_EQ(failure.code(), ExitCode::CameraLibrary);
            EXPECT_THAT(failure.what(), testing::HasSubstr("could not be started"));
            EXPECT_EQ(std::string(failure.what()).find("GeVTLIsPresent") != std::string::npos, throws);
        }
    }
}

TEST(Session, BringsThePluginUpInOrder) {
    FakeCreator creator;
    creator.m_plugin->addChannel(0);
    Session session(creator.source(), {}, noVendor());
    EXPECT_THAT(creator.m_calls,
                ElementsAre("createPlugin", "setInstanceIndex", "setHostValue", "setSharedAcquisitionObject",
                            "createServices", "initialize", "enumerateDevices"));
    ASSERT_NE(creator.m_plugin->m_clock, nullptr);
    EXPECT_EQ(creator.m_plugin->m_clock->getRate(), 1e9);
    EXPECT_EQ(session.title(), "GIGE Camera plug-in GIGECAMERA \u00b7 vendor library of unknown version");
}

TEST(Session, AsksAgainUntilADeviceIsThere) {
    FakeCreator creator;
    creator.m_plugin->m_enumerations_until_found = 3;
    int pauses = 0;
    SessionOptions options;
    options.pause = [&] { return ++pauses > 0; };
    Session session(creator.source(), options, noVendor());
    EXPECT_EQ(session.readChannels().size(), 1u);
    EXPECT_EQ(pauses, 2);
}

TEST(Session, GivesUpAfterItsAttempts) {
    FakeCreator creator;
    int pauses = 0;
    SessionOptions options;
    options.attempts = 4;
    options.pause = [&] { return ++pauses > 0; };
    EXPECT_EQ(codeOf(creator, options), ExitCode::NoCamera);
    EXPECT_EQ(pauses, 3);
    EXPECT_EQ(std::count(creator.m_calls.begin(), creator.m_calls.end(), "enumerateDevices"), 4);
    EXPECT_EQ(creator.m_calls.back(), "unload");
}

TEST(Session, WaitsAboutTwoSecondsForADevice) {
    EXPECT_EQ(host::patientOptions().attempts, 40);  // with 50 ms in between
}

TEST(Session, StopsAskingWhenInterrupted) {
    FakeCreator creator;
    SessionOptions options;
    options.pause = [] { return false; };
    EXPECT_EQ(codeOf(creator, options), ExitCode::Interrupted);
}

TEST(Session, ReportsACameraLibraryThatDoesNotStart) {
    FakeCreator creator;
    creator.m_plugin->m_behaviour["initialize"] = [] { return false; };
    EXPECT_EQ(codeOf(creator, {}), ExitCode::CameraLibrary);
    EXPECT_EQ(creator.m_calls.back(), "unload");
}

TEST(Session, ReportsACameraLibraryThatCannotListCameras) {
    FakeCreator creator;
    creator.m_plugin->m_behaviour["enumerateDevices"] = []() -> bool { throw std::runtime_error("fault"); };
    EXPECT_EQ(codeOf(creator, {}), ExitCode::CameraLibrary);
}

TEST(Session, ListensToItsChannelsAsLongAsItLives) {
    FakeCreator creator;
    creator.m_plugin->addChannel(0);
    const auto channel = creator.m_plugin->m_channels.at(0);
    {
        Session session(creator.source(), {}, noVendor());
        exception_manager::Exception message(0, "Camera %1 is no longer connected", "TEST");
        message.addArgument("Camera Name", "Manta");
        channel->m_listener(message);
        EXPECT_THAT(session.messages().take(), ElementsAre("Camera Manta is no longer connected"));
        EXPECT_TRUE(session.messages().take().empty());
    }
    EXPECT_FALSE(channel->m_listener);
}

TEST(ChannelInfo, IsReadFromTheItems) {
    host_test::FakeChannel channel(5);
    const host::ChannelInfo info = host::readChannelInfo(5, channel);
    EXPECT_EQ(info.id, 5u);
    EXPECT_EQ(info.name, "Camera");
    EXPECT_EQ(info.shortId, "DEV_5");
    EXPECT_EQ(info.type, "GigE");
    EXPECT_EQ(info.format, "Y800");
    EXPECT_EQ(info.width, 4u);
    EXPECT_EQ(info.height, 2u);
    EXPECT_EQ(info.rate, 50.0);
}

TEST(ChannelInfo, TakesARationalRateAndNoneFromAnInvalidItem) {
    host_test::FakeChannel channel(0);
    auto& rate = channel.m_items[config_keys::kCameraFrameSetting];
    rate = config_items::RationalScalarConfigItem(30000, 1001, "fps");
    EXPECT_DOUBLE_EQ(host::readChannelInfo(0, channel).rate.value(), 30000.0 / 1001.0);
    rate = config_items::RationalScalarConfigItem(1, 0, "fps");
    EXPECT_FALSE(host::readChannelInfo(0, channel).rate);
    rate = config_items::InvalidConfigItem();
    EXPECT_FALSE(host::readChannelInfo(0, channel).rate);
    rate = config_items::ScalarConfigItem(0, "fps");
    EXPECT_FALSE(host::readChannelInfo(0, channel).rate);
}

TEST(ChannelInfo, HasNoTextAndNoSizeWithoutItems) {
    host_test::FakeChannel channel(0);
    channel.m_items.clear();
    const host::ChannelInfo info = host::readChannelInfo(0, channel);
    EXPECT_EQ(info.name, "");
    EXPECT_EQ(info.format, "");
    EXPECT_EQ(info.width, 0u);
}

TEST(ChannelInfo, KnowsTheBytesOfAPicture) {
    host::ChannelInfo info;
    info.width = 656;
    info.height = 492;
    info.format = "Y800";
    EXPECT_EQ(info.pictureBytes(), 322'752u);
    info.format = "Y422";
    EXPECT_EQ(info.pictureBytes(), 645'504u);
    info.format = "RGB";
    EXPECT_EQ(info.pictureBytes(), 968'256u);
    info.format = "other";
    EXPECT_EQ(info.pictureBytes(), 968'256u);
}

}  // namespace
