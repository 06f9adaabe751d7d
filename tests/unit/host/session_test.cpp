#include "session.h"

#include <gmock/gmock.h>

#include "config_item_variant.h"
#include "fake_plugin.h"
#include "host_failure.h"
#include "message_teller.h"
#include "setting_text.h"

using host::ChannelMessage;
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
    board.subscribe(4, channel);
    channel->m_listener(exception_manager::Exception(0, "later", ""));
    EXPECT_THAT(board.take(), ElementsAre(ChannelMessage{4, "Cannot open camera 'left': busy"},
                                          ChannelMessage{4, "later"}));
    board.unsubscribeAll();
}

/// Tells of a message just when somebody begins to listen.
class HastyChannel : public host_test::FakeChannel {
  public:
    HastyChannel() : FakeChannel(0) {}
    void setMessageListener(MessageListener listener) override {
        if (listener) listener(*(m_last_message = exception_manager::Exception(0, "now", "")));
    }
};

TEST(MessageBoard, TellsAMessageOnceThatComesWhileItBeginsToListen) {
    host::MessageBoard board;
    board.subscribe(0, std::make_shared<HastyChannel>());
    EXPECT_THAT(board.take(), ElementsAre(ChannelMessage{0, "now"}));
}

TEST(MessageBoard, HandsOutTheSentencesOfOneChannelSinceACount) {
    const auto left = std::make_shared<host_test::FakeChannel>(0);
    const auto right = std::make_shared<host_test::FakeChannel>(1);
    host::MessageBoard board;
    board.subscribe(0, left);
    board.subscribe(1, right);
    const auto say = [](const auto& channel, const char* text) {
        channel->m_listener(exception_manager::Exception(0, text, ""));
    };
    say(left, "before");
    const std::uint64_t count = board.count();
    say(left, "first");
    say(right, "other");
    say(left, "second");
    EXPECT_EQ(count, 1u);
    EXPECT_THAT(board.takeFrom(0, count), ElementsAre("first", "second"));
    EXPECT_THAT(board.take(), ElementsAre(ChannelMessage{0, "before"}, ChannelMessage{1, "other"}));
    EXPECT_THAT(board.latest(), ElementsAre(testing::Pair(0u, "second"), testing::Pair(1u, "other")));
}

TEST(MessageTeller, TellsEveryMessageOnceAndTheRestAtItsEnd) {
    const auto channel = std::make_shared<host_test::FakeChannel>(2);
    host::MessageBoard board;
    board.subscribe(2, channel);
    const exception_manager::Exception message(0, "gone", "");
    for (const auto repetitions : {host::Repetitions::Tell, host::Repetitions::Drop}) {
        std::vector<std::string> told;
        {
            host::MessageTeller teller(
                board, [&](const std::string& text) { told.push_back(text); }, repetitions);
            channel->m_listener(message);
            teller.tell();
            teller.tell();
            EXPECT_THAT(told, ElementsAre("channel 2: gone"));
            EXPECT_THAT(teller.told(), ElementsAre(ChannelMessage{2, "gone"}));
            channel->m_listener(message);
        }
        EXPECT_EQ(told.size(), repetitions == host::Repetitions::Tell ? 2u : 1u);
    }
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

TEST(Session, WaitsAboutTwoSecondsForADeviceAndHalfASecondForMore) {
    EXPECT_EQ(host::patientOptions().attempts, 40);  // with 50 ms in between
    EXPECT_EQ(host::patientOptions().quietEnumerations, 10);
}

/// Cameras that answer one after the other, at these enumerations.
class SlowNetwork {
  public:
    explicit SlowNetwork(std::vector<int> answers) : m_answers(std::move(answers)) {
        m_creator.m_plugin->m_behaviour["enumerateDevices"] = [this] {
            ++m_enumerations;
            for (std::size_t id = 0; id < m_answers.size(); ++id) {
                if (m_answers[id] == m_enumerations) {
                    m_creator.m_plugin->addChannel(static_cast<std::uint32_t>(id));
                }
            }
            return true;
        };
        m_options.pause = [] { return true; };
        m_options.quietEnumerations = 3;
    }
    /// The channels found.
    std::size_t search(std::unique_ptr<host::VendorProbe> vendor = noVendor()) {
        Session session(m_creator.source(), m_options, std::move(vendor));
        return session.readChannels().size();
    }

    FakeCreator m_creator;
    SessionOptions m_options;
    int m_enumerations = 0;

  private:
    std::vector<int> m_answers;
};

TEST(Session, GoesOnUntilNoNewCameraHasAnsweredForAWhile) {
    SlowNetwork network({2, 5, 9});
    EXPECT_EQ(network.search(), 2u) << "the third one takes four enumerations more, one too many";
    EXPECT_EQ(network.m_enumerations, 8);
    SlowNetwork quick({2, 5, 8});
    EXPECT_EQ(quick.search(), 3u);
    EXPECT_EQ(quick.m_enumerations, 11);
}

TEST(Session, GoesOnUntilTheChosenCamerasAreThere) {
    SlowNetwork network({1, 30, 12});
    network.m_options.wanted = {0, 2};
    EXPECT_EQ(network.search(), 2u);
    EXPECT_EQ(network.m_enumerations, 12);
    SlowNetwork without({1});
    without.m_options.wanted = {0, 7};
    EXPECT_EQ(without.search(), 1u) << "who chooses the channels says that one is missing";
    EXPECT_EQ(without.m_enumerations, without.m_options.attempts);
}

const char* scenarioName() {
    return "two-cameras";
}

TEST(Session, DoesNotWaitForMoreSimulatedCameras) {
    SlowNetwork network({1, 2});
    auto library = std::make_shared<host_test::FakeLibrary>(network.m_creator.m_calls);
    library->m_symbols["VmbSimScenarioName"] = reinterpret_cast<void*>(&scenarioName);
    EXPECT_EQ(network.search(std::make_unique<host::VendorProbe>(library)), 1u);
    EXPECT_EQ(network.m_enumerations, 1);
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
        EXPECT_THAT(session.messages().take(),
                    ElementsAre(ChannelMessage{0, "Camera Manta is no longer connected"}));
        EXPECT_TRUE(session.messages().take().empty());
    }
    EXPECT_FALSE(channel->m_listener);
}

std::shared_ptr<host_test::FakeChannel> counter(std::uint32_t id, const char* camera, const char* kind) {
    const auto channel = std::make_shared<host_test::FakeChannel>(id);
    channel->add(config_keys::kIdCameraChannelIndex, host_test::textItem(camera));
    channel->add(config_keys::kIdCameraSubChannelId, host_test::textItem(kind));
    return channel;
}

TEST(Session, SwitchesFrameCountersOnBeforeItLooksForDevices) {
    FakeCreator creator;
    host_test::FakePlugin& plugin = *creator.m_plugin;
    plugin.addChannel(5);
    plugin.m_channels[0x10005] = counter(0x10005, "5", "CntSent");
    plugin.m_channels[0x20005] = counter(0x20005, "5", "CntReceived");
    bool on = false;
    plugin.m_behaviour["enumerateDevices"] = [&] {
        on = boost::get<config_items::SingleValueConfigItem<bool>>(
                 plugin.m_config->m_items.at(config_keys::kFrameCounterChannels))
                 .m_value;
        return true;
    };
    SessionOptions options;
    options.frameCounters = true;
    Session session(creator.source(), options, noVendor());
    EXPECT_TRUE(on);
    EXPECT_THAT(session.readChannels(), ElementsAre(testing::Key(5u))) << "counters are no cameras";
    ASSERT_TRUE(session.frameCounters(5));
    EXPECT_EQ(session.frameCounters(5)->sent, 0x10005u);
    EXPECT_EQ(session.frameCounters(5)->received, 0x20005u);
    EXPECT_FALSE(session.frameCounters(4));
}

TEST(Session, LeavesFrameCountersOffUnlessAskedFor) {
    FakeCreator creator;
    creator.m_plugin->addChannel(0);
    const auto config = creator.m_plugin->m_config;
    Session session(creator.source(), {}, noVendor());
    EXPECT_EQ(host::valueText(config->m_items.at(config_keys::kFrameCounterChannels)), "0");
}

TEST(Session, SaysThatThePluginHasNoFrameCounters) {
    FakeCreator creator;
    creator.m_plugin->addChannel(0);
    creator.m_plugin->m_config->m_items.clear();
    SessionOptions options;
    options.frameCounters = true;
    EXPECT_EQ(codeOf(creator, options), ExitCode::NoService);
}

TEST(Session, ListensOnlyToTheChannelsThatAreUsed) {
    FakeCreator creator;
    for (const std::uint32_t id : {0u, 1u}) creator.m_plugin->addChannel(id);
    SessionOptions options;
    options.wanted = {1};
    const Session session(creator.source(), options, noVendor());
    EXPECT_FALSE(creator.m_plugin->m_channels.at(0)->m_listener);
    EXPECT_TRUE(creator.m_plugin->m_channels.at(1)->m_listener);
}

TEST(Session, KnowsTheChannelsThatAreSwitchedOn) {
    FakeCreator creator;
    for (const std::uint32_t id : {0u, 1u}) creator.m_plugin->addChannel(id);
    Session session(creator.source(), SessionOptions{}, noVendor());
    EXPECT_TRUE(host::setUsed(*session.config(0), false));
    EXPECT_EQ(session.usedChannels(), std::set<std::uint32_t>{1});
}

TEST(Session, ChoosesAllChannelsOrThoseAskedFor) {
    FakeCreator creator;
    for (const std::uint32_t id : {0u, 1u, 4u}) creator.m_plugin->addChannel(id);
    Session session(creator.source(), {}, noVendor());
    EXPECT_THAT(session.chooseChannels({}), ElementsAre(0, 1, 4));
    EXPECT_THAT(session.chooseChannels({4, 1}), ElementsAre(1, 4));
    EXPECT_THROW(session.chooseChannels({2}), HostFailure);
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
