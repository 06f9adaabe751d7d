#include "setting_changes.h"

#include <gmock/gmock.h>

#include "camera_setup.h"
#include "channel_config_constraints.h"
#include "fake_plugin.h"
#include "host_failure.h"
#include "session.h"
#include "setting_info.h"

using config_items::OptionConstraint;
using config_items::ScalarConfigItem;
using config_items::ValueRangeConstraint;
using host::Changeable;
using host::ExitCode;
using host::SettingChange;
using host::SettingOrder;
using host_test::textItem;
using testing::ElementsAre;
using testing::HasSubstr;
template <class T>
using Single = config_items::SingleValueConfigItem<T>;

namespace {

auto range(double least, double greatest) {
    return std::make_shared<ValueRangeConstraint<double>>(least, greatest, "1");
}

auto choice(const char* text) {
    return std::make_shared<OptionConstraint<Single<std::string>>>(Single<std::string>(text));
}

SettingOrder set(const std::string& key, const std::string& value, const std::string& channel = {}) {
    return {"--set", channel, key, value, SettingOrder::Kind::Set, !channel.empty()};
}

class SettingChanges : public testing::Test {
  protected:
    SettingChanges() {
        for (const std::uint32_t id : {0u, 1u}) {
            m_creator.m_plugin->addChannel(id);
            auto& channel = *m_creator.m_plugin->m_channels.at(id);
            channel.add("Width", ScalarConfigItem(640, "pixel"), range(8, 640));
            channel.add("Offset", ScalarConfigItem(0, "pixel"), range(0, 0));
            channel.add("Group/Gain", ScalarConfigItem(0), range(0, 26));
            channel.add("Mode", textItem("Off"), choice("Off"), choice("On"));
            channel.add("Type", textItem("GigE"), std::make_shared<channel_config::ReadOnlyConstraint>(true));
            channel.add("ACTION:Once", Single<bool>(false));
            channel.add(config_keys::kUsed, Single<bool>(true));
        }
        m_session = std::make_unique<host::Session>(m_creator.source(), host::SessionOptions{},
                                                    std::make_unique<host::VendorProbe>(nullptr));
    }

    void addTriggerModes() {
        for (const std::uint32_t id : {0u, 1u}) {
            channel(id).add(config_keys::kCameraTriggerMode, textItem("GIGE/TriggerModeFixed"),
                            choice("GIGE/TriggerModeAux"), choice("GIGE/TriggerModeFixed"));
        }
    }
    host_test::FakeChannel& channel(std::uint32_t id) { return *m_creator.m_plugin->m_channels.at(id); }
    double number(std::uint32_t id, const char* key) {
        return boost::get<ScalarConfigItem>(channel(id).m_items.at(key)).m_value;
    }
    std::vector<std::string> carryOut(const std::vector<SettingOrder>& orders,
                                      const std::set<std::uint32_t>& chosen = {0}) {
        std::vector<std::string> texts;
        host::carryOut(*m_session, orders, chosen,
                       [&](const SettingChange& change) { texts.push_back(host::changeText(change)); });
        return texts;
    }
    std::string complaint(const std::vector<SettingOrder>& orders, ExitCode code = ExitCode::SettingWrong) {
        try {
            carryOut(orders);
        } catch (const host::HostFailure& failure) {
            EXPECT_EQ(failure.code(), code);
            return failure.what();
        }
        return "accepted";
    }

    host_test::FakeCreator m_creator;
    std::unique_ptr<host::Session> m_session;
};

TEST_F(SettingChanges, ReachTheChosenChannels) {
    EXPECT_THAT(carryOut({set("Group/Gain", "3")}, {0, 1}),
                ElementsAre("channel 0: Group/Gain is 3 now", "channel 1: Group/Gain is 3 now"));
    EXPECT_THAT(carryOut({set("Group/Gain", "4")}, {1}), ElementsAre("channel 1: Group/Gain is 4 now"));
    EXPECT_EQ(number(0, "Group/Gain"), 3);
    EXPECT_EQ(number(1, "Group/Gain"), 4);
}

TEST_F(SettingChanges, ForOneCameraLeaveTheOthersAlone) {
    EXPECT_THAT(carryOut({set("Width", "8", "DEV_1"), set("Width", "16", "0")}, {0, 1}),
                ElementsAre("channel 1: Width is 8 pixel now", "channel 0: Width is 16 pixel now"));
    EXPECT_THAT(carryOut({set("Width", "32", "1")}, {0}), ElementsAre()) << "not chosen";
    EXPECT_EQ(number(1, "Width"), 8);
    EXPECT_THAT(complaint({set("Width", "8", "DEV_9")}, ExitCode::UnknownChannel),
                HasSubstr("there is no channel or camera \"DEV_9\""));
}

TEST_F(SettingChanges, TellWhatTheCameraMadeOfTheValue) {
    channel(0).m_set = [&](const std::string& key, const host_test::ConfigItemVariant&) {
        channel(0).m_items[key] = ScalarConfigItem(3.1);
        return true;
    };
    EXPECT_THAT(carryOut({set("Group/Gain", "3.14")}),
                ElementsAre("channel 0: Group/Gain is 3.1 now (asked for 3.14)"));
}

TEST_F(SettingChanges, ThatDependOnEachOtherComeInAnyOrder) {
    // The picture must fit a sensor of 640 columns.
    channel(0).m_set = [&](const std::string& key, const host_test::ConfigItemVariant& value) {
        channel(0).m_items[key] = value;
        channel(0).m_constraints["Offset"] = {range(0, 640 - number(0, "Width"))};
        channel(0).m_constraints["Width"] = {range(8, 640 - number(0, "Offset"))};
        return true;
    };
    EXPECT_THAT(carryOut({set("Offset", "100"), set("Width", "540")}),
                ElementsAre("channel 0: Width is 540 pixel now", "channel 0: Offset is 100 pixel now"));
    EXPECT_THAT(carryOut({set("Width", "640"), set("Offset", "0")}),
                ElementsAre("channel 0: Offset is 0 pixel now", "channel 0: Width is 640 pixel now"));
    EXPECT_EQ(complaint({set("Offset", "100"), set("Width", "541")}),
              "--set: Offset of channel 0 cannot be 100; it goes from 0 to 99 pixel.");
}

TEST_F(SettingChanges, ThatAreReadOnlyOrNotThereOrRefusedForNowAreTriedAgain) {
    channel(0).m_constraints["Group/Gain"] = {std::make_shared<channel_config::ReadOnlyConstraint>(true)};
    channel(0).m_set = [&](const std::string& key, const host_test::ConfigItemVariant& value) {
        if (key == "Offset" && number(0, "Width") != 8) return false;
        channel(0).m_items[key] = value;
        if (key == "Mode") {
            channel(0).m_constraints["Group/Gain"] = {range(0, 26)};
            channel(0).add("Level", ScalarConfigItem(0), range(0, 9));
        }
        return true;
    };
    EXPECT_THAT(carryOut({set("Group/Gain", "3"), set("Level", "4"), set("Offset", "0"), set("Width", "8"),
                          set("Mode", "On")}),
                ElementsAre("channel 0: Width is 8 pixel now", "channel 0: Mode is On now",
                            "channel 0: Group/Gain is 3 now", "channel 0: Level is 4 now",
                            "channel 0: Offset is 0 pixel now"));
}

TEST_F(SettingChanges, OfOneCameraUnderTwoNamesAreRefused) {
    auto first = set("Width", "8", "0");
    auto second = set("Width", "16", "DEV_0");
    first.origin = "rig.txt:2";
    second.origin = "rig.txt:5";
    EXPECT_EQ(complaint({first, set("Width", "24", "1"), set("Width", "32"), second}, ExitCode::SettingsFile),
              "rig.txt:5: Width of channel 0 stands at rig.txt:2 too; take one out.");
    EXPECT_EQ(number(0, "Width"), 640);
}

TEST_F(SettingChanges, OfAnUnknownKeyNameTheNearestOnes) {
    EXPECT_EQ(
        complaint({set("gain", "3")}),
        "--set: channel 0 has no setting \"gain\" now; near to it are Group/Gain, Mode, Type, zelt_host "
        "settings lists all.");
}

TEST_F(SettingChanges, OutOfTheRangeNameIt) {
    for (const char* value : {"7.9", "641"}) {
        EXPECT_EQ(
            complaint({set("Width", value)}),
            "--set: Width of channel 0 cannot be " + std::string(value) + "; it goes from 8 to 640 pixel.");
    }
    EXPECT_THAT(carryOut({set("Width", "8"), set("Width", "640")}).size(), 2u) << "both ends are included";
    EXPECT_EQ(complaint({set("Group/Gain", "27")}),
              "--set: Group/Gain of channel 0 cannot be 27; it goes from 0 to 26.");
}

TEST_F(SettingChanges, ThatAreNoChoiceNameTheChoices) {
    EXPECT_EQ(complaint({set("Mode", "off")}),
              "--set: Mode of channel 0 cannot be \"off\"; the choices are Off, On.");
    EXPECT_THAT(carryOut({set("Mode", "On")}), ElementsAre("channel 0: Mode is On now"));
}

TEST_F(SettingChanges, OfWhatCannotBeSetSaySo) {
    EXPECT_EQ(complaint({set("Type", "x")}), "--set: Type of channel 0 is read-only; leave it out.");
    EXPECT_EQ(complaint({set(config_keys::kUsed, "0")}),
              "--set: Used of channel 0 is set by the host; name the channels to use with --channel.");
    EXPECT_EQ(complaint({set("ACTION:Once", "1")}),
              "--set: ACTION:Once of channel 0 is an action; run it with --action.");
    EXPECT_EQ(
        complaint({set("Width", "wide")}),
        "--set: Width of channel 0: \"wide\" is no number; a number is written like 640 or 0.5, a fraction "
        "like 30000/1001.");
}

TEST_F(SettingChanges, RefusedByTheCameraTellItsMessage) {
    channel(0).m_listener(exception_manager::Exception(0, "an older one", ""));
    channel(0).m_set = [&](const std::string&, const host_test::ConfigItemVariant&) {
        exception_manager::Exception message(0, "Cannot configure camera '%1': busy.", "");
        message.addArgument("Camera Name", "Manta");
        channel(1).m_listener(exception_manager::Exception(0, "another channel's", ""));
        channel(0).m_listener(message);
        return false;
    };
    EXPECT_EQ(complaint({set("Width", "8")}),
              "--set: Width of channel 0 = 8 was refused: Cannot configure camera 'Manta': busy; check the "
              "camera, --log-level info tells more.");
    EXPECT_THAT(m_session->messages().take(), ElementsAre(host::ChannelMessage{0, "an older one"},
                                                          host::ChannelMessage{1, "another channel's"}));
    channel(0).m_set = [](const std::string&, const host_test::ConfigItemVariant&) { return false; };
    EXPECT_THAT(complaint({set("Width", "8")}), HasSubstr("was refused: it gave no reason;"));
}

TEST_F(SettingChanges, RefusedThoughInTheRangeNameItAndThatThereMayBeSteps) {
    channel(0).m_set = [&](const std::string&, const host_test::ConfigItemVariant&) {
        channel(0).m_listener(exception_manager::Exception(0, "The feature 'Width' is not supported", ""));
        return false;
    };
    EXPECT_EQ(complaint({set("Width", "321")}),
              "--set: Width of channel 0 cannot be 321: the camera refused it (The feature 'Width' is not "
              "supported). Allowed is 8 .. 640 pixel, and the camera may take steps only: try values near to "
              "it.");
}

TEST_F(SettingChanges, OfOneChannelNeedNoFile) {
    SettingOrder order = set("Width", "16", "DEV_1");
    order.ofFile = false;
    std::vector<std::string> texts;
    host::carryOut(*m_session, {order, order}, {0, 1},
                   [&](const auto& change) { texts.push_back(host::changeText(change)); });
    EXPECT_THAT(texts, ElementsAre("channel 1: Width is 16 pixel now", "channel 1: Width is 16 pixel now"));
    EXPECT_EQ(number(0, "Width"), 640);
}

TEST_F(SettingChanges, OfAChannelThatIsNotChosenAreRefusedWithoutAFile) {
    SettingOrder order = set("Width", "16", "1");
    order.ofFile = false;
    const auto carry = [&] { host::carryOut(*m_session, {order}, {0}, [](const auto&) {}); };
    EXPECT_THROW(carry(), host::HostFailure);
    order.ofFile = true;
    EXPECT_NO_THROW(carry());
}

TEST_F(SettingChanges, RunActions) {
    const SettingOrder action{"--action", {}, "ACTION:Once", {}, SettingOrder::Kind::RunAction};
    EXPECT_THAT(carryOut({action}), ElementsAre("channel 0: ACTION:Once was started"));
    EXPECT_TRUE(boost::get<Single<bool>>(channel(0).m_items.at("ACTION:Once")).m_value);
    const SettingOrder wrong{"--action", {}, "Width", {}, SettingOrder::Kind::RunAction};
    EXPECT_EQ(complaint({wrong}), "--action: Width of channel 0 is no action; set it with --set.");
}

TEST_F(SettingChanges, EndWithTheFirstThatIsWrong) {
    EXPECT_THAT(complaint({set("Width", "8"), set("Offset", "far"), set("Group/Gain", "5")}),
                HasSubstr("\"far\""));
    EXPECT_EQ(number(0, "Width"), 8);
    EXPECT_EQ(number(0, "Group/Gain"), 0);
}

TEST_F(SettingChanges, OfASetupComeBehindTheSwitchingAndTheTriggeredMode) {
    addTriggerModes();
    host::CameraSetup setup;
    setup.channels = {1};
    setup.aux = host::Fraction{30000, 1001};
    std::vector<std::string> texts;
    const auto chosen = host::setUpCameras(*m_session, setup, {set("Width", "8")}, [&](const auto& change) {
        texts.push_back(host::changeText(change));
    });
    EXPECT_THAT(chosen, ElementsAre(1));
    EXPECT_FALSE(channel(0).isUsed());
    EXPECT_TRUE(channel(1).isUsed());
    EXPECT_EQ(m_creator.m_calls.back(), "aux 30000/1001");
    EXPECT_THAT(texts, ElementsAre("channel 1: CAMERA/TriggerMode is GIGE/TriggerModeAux now",
                                   "channel 1: Width is 8 pixel now"));
    EXPECT_EQ(number(0, "Width"), 640);
}

TEST_F(SettingChanges, OfAFileDoNotUndoTheTriggeredMode) {
    addTriggerModes();
    host::CameraSetup setup;
    setup.aux = host::Fraction{20, 1};
    auto fixed = set(config_keys::kCameraTriggerMode, "GIGE/TriggerModeFixed", "DEV_1");
    auto rate = set(config_keys::kCameraFrameSetting, "40", "DEV_1");
    fixed.origin = "rig.txt:2";
    rate.origin = "rig.txt:3";
    const auto aux = set(config_keys::kCameraTriggerMode, "GIGE/TriggerModeAux", "0");
    std::vector<std::string> texts;
    host::setUpCameras(*m_session, setup, {fixed, aux, rate, set("Width", "8", "1")},
                       [&](const auto& change) { texts.push_back(host::changeText(change)); });
    EXPECT_THAT(texts,
                ElementsAre("channel 0: CAMERA/TriggerMode is GIGE/TriggerModeAux now",
                            "channel 1: CAMERA/TriggerMode is GIGE/TriggerModeAux now",
                            "channel 1: CAMERA/TriggerMode = GIGE/TriggerModeFixed was left out (rig.txt:2: "
                            "--aux decides it)",
                            "channel 1: CAMERA/FrameSetting = 40 was left out (rig.txt:3: --aux decides it)",
                            "channel 0: CAMERA/TriggerMode is GIGE/TriggerModeAux now",
                            "channel 1: Width is 8 pixel now"));
    EXPECT_EQ(host::readChannelInfo(1, channel(1)).timeBase, host::TimeBase::Pulses);
    setup.aux.reset();
    host::setUpCameras(*m_session, setup, {fixed}, [](const auto&) {});
    EXPECT_EQ(host::readChannelInfo(1, channel(1)).timeBase, host::TimeBase::Nanoseconds);
}

TEST_F(SettingChanges, OfASetupFailWhenACameraLeavesTheTriggeredMode) {
    addTriggerModes();
    channel(1).m_set = [&](const std::string& key, const host_test::ConfigItemVariant& value) {
        channel(1).m_items[key] = value;
        if (key == "Width") {
            channel(1).m_items[config_keys::kCameraTriggerMode] = textItem("GIGE/TriggerModeFixed");
        }
        return true;
    };
    host::CameraSetup setup;
    setup.aux = host::Fraction{20, 1};
    try {
        host::setUpCameras(*m_session, setup, {set("Width", "8")}, [](const auto&) {});
        ADD_FAILURE();
    } catch (const host::HostFailure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::CameraFailed);
        EXPECT_THAT(failure.what(), HasSubstr("Channel 1 does not follow the trigger output of --aux "
                                              "(CAMERA/TriggerMode is GIGE/TriggerModeFixed)"));
    }
}

TEST_F(SettingChanges, OfASetupFailWithoutATriggerService) {
    m_creator.m_plugin->factory().m_has_services = false;
    host::CameraSetup setup;
    setup.aux = host::Fraction{100, 1};
    try {
        host::setUpCameras(*m_session, setup, {}, [](const auto&) {});
        ADD_FAILURE();
    } catch (const host::HostFailure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::NoService);
        EXPECT_THAT(failure.what(), HasSubstr("leave --aux out"));
    }
}

TEST(NearestKeys, ContainTheWordOrDifferByFewLetters) {
    const std::vector<std::string> known{"FrameWidth", "CAMERA/Gain", "CAMERA/Gamma", "CAMERA/GainAuto"};
    EXPECT_THAT(
        host::nearestKeys("gain", known),
        ElementsAre("CAMERA/Gain", "CAMERA/GainAuto", "FrameWidth"));  // 0, 0, 8 letters; Gamma needs 10
    EXPECT_THAT(host::nearestKeys("FrameWdth", known).front(), "FrameWidth");
    EXPECT_THAT(host::nearestKeys("CAMERA/Gamme", known).front(), "CAMERA/Gamma");
    EXPECT_THAT(host::nearestKeys("x", {}), ElementsAre());
}

TEST(SettingInfo, IsReadFromItemAndConstraints) {
    host_test::FakeChannel channel(0);
    channel.add("Width", ScalarConfigItem(640, "pixel"), range(8, 656),
                std::make_shared<channel_config::ConfigurableDuringAcquisitionConstraint>(false));
    channel.add("Gain", ScalarConfigItem(0.5), range(0, 26.5),
                std::make_shared<channel_config::ConfigurableDuringAcquisitionConstraint>(true),
                std::make_shared<channel_config::ReadOnlyConstraint>(false));
    channel.add("Mode", textItem("Off"), choice("Off"), choice("On"));
    channel.add("Type", textItem("GigE"),
                std::make_shared<channel_config::ConfigurableDuringAcquisitionConstraint>(false),
                std::make_shared<channel_config::ReadOnlyConstraint>(true));
    channel.add("Rate", config_items::InvalidConfigItem("no frequency"));
    channel.add("ACTION:Once", Single<bool>(false));
    const auto settings = host::readSettings(channel);
    ASSERT_EQ(settings.size(), 6u);
    EXPECT_EQ(settings[0].valueWithUnit(), "640 pixel");
    EXPECT_EQ(settings[0].allowed(), "8 .. 656");
    EXPECT_EQ(settings[0].changeable, Changeable::BetweenRecordings);
    EXPECT_EQ(settings[1].valueWithUnit(), "0.5");
    EXPECT_EQ(settings[1].allowed(), "0 .. 26.5");
    EXPECT_EQ(settings[1].changeable, Changeable::Always);
    EXPECT_EQ(settings[2].allowed(), "Off, On");
    EXPECT_EQ(settings[3].changeable, Changeable::Never);
    EXPECT_EQ(settings[3].allowed(), "");
    EXPECT_FALSE(settings[4].hasValue);
    EXPECT_EQ(settings[4].value, "no frequency");
    EXPECT_EQ(settings[5].changeable, Changeable::AsAction);
}

}  // namespace
