#include "settings_file.h"

#include <fstream>

#include <gmock/gmock.h>

#include "host_failure.h"
#include "temporary_directory.h"

using host::ExitCode;
using host::HostFailure;
using host::SettingOrder;
using testing::HasSubstr;

namespace {

std::string complaint(const std::string& text) {
    try {
        host::parseSettingsFile(text, "rig.txt");
    } catch (const HostFailure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::SettingsFile);
        return failure.what();
    }
    return "accepted";
}

TEST(SettingsFile, IsOneLinePerSettingUnderTheChannelsLine) {
    const auto orders = host::parseSettingsFile(
        "# two cameras\r\n"
        "\n"
        "[channel 0]\r\n"
        "  FrameWidth =  640 pixel \r\n"
        "# Note = no setting\n"
        "Name=a = # b\n"
        "Empty =\n"
        "[channel DEV_2]\n"
        "FrameWidth = 8",
        "rig.txt");
    const auto texts = [](const SettingOrder& order) {
        return order.origin + '|' + order.channel + '|' + order.key + '|' + order.value;
    };
    std::vector<std::string> found;
    for (const SettingOrder& order : orders) found.push_back(texts(order));
    EXPECT_THAT(found, testing::ElementsAre("rig.txt:4|0|FrameWidth|640 pixel", "rig.txt:6|0|Name|a = # b",
                                            "rig.txt:7|0|Empty|", "rig.txt:9|DEV_2|FrameWidth|8"));
}

TEST(SettingsFile, MayBeginWithAByteOrderMark) {
    const auto orders = host::parseSettingsFile("\xef\xbb\xbf[channel 0]\nGain = 3\n", "rig.txt");
    ASSERT_EQ(orders.size(), 1u);
    EXPECT_EQ(orders[0].origin, "rig.txt:2");
    EXPECT_EQ(orders[0].channel, "0");
}

TEST(SettingsFile, NamesTheLineThatIsNone) {
    EXPECT_EQ(complaint("[channels 0]\n"),
              "rig.txt:1: \"[channels 0]\" is no beginning of a channel's settings; write [channel 0].");
    EXPECT_EQ(complaint("[channel\t0]\nGain = 3"), "accepted");
    EXPECT_EQ(complaint("[channel]"), "rig.txt:1: the channel has no id; write [channel 0].");
    EXPECT_EQ(complaint("[channel 0]\nFrameWidth 640\n"),
              "rig.txt:2: \"FrameWidth 640\" is no setting; write KEY = VALUE.");
    EXPECT_EQ(complaint("\n[camera 0]\n"),
              "rig.txt:2: \"[camera 0]\" is no beginning of a channel's settings; write [channel 0].");
    EXPECT_EQ(complaint("[channel 0\n"),
              "rig.txt:1: \"[channel 0\" is no beginning of a channel's settings; write [channel 0].");
    EXPECT_EQ(complaint("[channel ]"), "rig.txt:1: the channel has no id; write [channel 0].");
    EXPECT_EQ(complaint("[channel 0]\n= 5"),
              "rig.txt:2: the key before \"=\" is missing; write KEY = VALUE.");
    EXPECT_EQ(complaint("# hello\nGain = 3"),
              "rig.txt:2: Gain stands before the first channel; write [channel 0] above it.");
    EXPECT_EQ(complaint("[channel 0]\nGain = 3\n[channel 1]\nGain = 3\n[channel 0]\nGain = 4"),
              "rig.txt:6: Gain of channel 0 stands here a second time; take one out.");
}

TEST(SettingsFile, SaysThatItCannotBeRead) {
    const test_support::TemporaryDirectory directory;
    for (const auto& file : {directory.path() / "none.txt", directory.path()}) {
        try {
            host::readSettingsFile(file);
            ADD_FAILURE() << file;
        } catch (const HostFailure& failure) {
            EXPECT_EQ(failure.code(), ExitCode::SettingsFile);
            EXPECT_THAT(failure.what(), HasSubstr(file.string() + " cannot be read ("));
        }
    }
}

TEST(SettingsFile, HoldsWhatCanBeSetAndIsReadAgain) {
    host::ChannelInfo channel;
    channel.id = 3;
    channel.name = "Manta";
    channel.shortId = "DEV_3";
    host::SettingInfo width{"FrameWidth", true, "640", "pixel", {}, {}, host::Changeable::BetweenRecordings};
    host::SettingInfo gain{"CAMERA/Gain", true, "3.1", "", {}, {}, host::Changeable::Always};
    host::SettingInfo type{"CAMERA/Type", true, "GigE", "", {}, {}, host::Changeable::Never};
    host::SettingInfo used{"Used", true, "1", "", {}, {}, host::Changeable::ByChannelOption};
    host::SettingInfo action{"ACTION:X", true, "0", "", {}, {}, host::Changeable::AsAction};
    host::SettingInfo rate{"CAMERA/FrameSetting", false, "none", "", {}, {}, host::Changeable::Always};
    const std::string text = host::settingsFilePart(channel, {width, gain, type, used, action, rate});
    EXPECT_EQ(text, "# Manta\n[channel DEV_3]\nFrameWidth = 640 pixel\nCAMERA/Gain = 3.1\n");
    EXPECT_EQ(host::parseSettingsFile(text, "x").size(), 2u);
    channel.shortId.clear();
    EXPECT_THAT(host::settingsFilePart(channel, {}), HasSubstr("[channel 3]"));
}

}  // namespace
