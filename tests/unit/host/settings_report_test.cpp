#include "settings_report.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using host::Changeable;
using host::CheckResult;
using host::SettingInfo;
using nlohmann::json;

namespace {

host::ChannelSettings manta() {
    host::ChannelInfo channel;
    channel.id = 2;
    channel.name = "Manta";
    channel.shortId = "DEV_2";
    channel.width = 640;
    channel.height = 480;
    return {
        channel,
        {SettingInfo{
             "Width", true, "640", "pixel", host::SettingRange{8, 656}, {}, Changeable::BetweenRecordings},
         SettingInfo{"Mode", true, "Off", "", {}, {"Off", "On"}, Changeable::Always},
         SettingInfo{"Rate", false, "no frequency", "", {}, {}, Changeable::Never},
         SettingInfo{"ACTION:Once", true, "0", "", {}, {}, Changeable::AsAction}}};
}

TEST(SettingsReport, IsATableForEveryChannel) {
    EXPECT_EQ(host::settingsText({manta()}),
              "channel 2 \u00b7 Manta\n"
              "  key                   value  unit   allowed   changeable\n"
              "  Width                   640  pixel  8 .. 656  between recordings\n"
              "  Mode                    Off         Off, On   yes\n"
              "  Rate         (no frequency)                   no\n"
              "  ACTION:Once                                   by --action\n");
    EXPECT_EQ(host::settingsText({}), "");
}

TEST(SettingsReport, TellsProgramsSettingsChangesAndMessages) {
    const json result = json::parse(host::settingsJson(
        {{2, "Width", "643", "640 pixel", ""}, {2, "ACTION:Once", "", "", ""}, {2, "Mode", "On", "", "why"}},
        {manta()}, {{2, "too wide"}}, ""));
    EXPECT_EQ(result["exit_code"], 0);
    EXPECT_EQ(result["changes"][0],
              json::parse(R"({"channel": 2, "key": "Width", "asked": "643", "became": "640 pixel",
                              "left_out": null})"));
    EXPECT_EQ(result["changes"][2]["left_out"], "why");
    EXPECT_EQ(result["changes"][1]["asked"], nullptr);
    EXPECT_EQ(result["channels"][0]["short_id"], "DEV_2");
    const json settings = result["channels"][0]["settings"];
    EXPECT_EQ(settings[0], json::parse(R"({"key": "Width", "value": "640", "unit": "pixel",
        "range": {"least": 8.0, "greatest": 656.0}, "choices": [], "changeable": "between recordings"})"));
    EXPECT_EQ(settings[1]["choices"], json::parse(R"(["Off", "On"])"));
    EXPECT_EQ(settings[1]["range"], nullptr);
    EXPECT_EQ(settings[2]["value"], nullptr);
    EXPECT_EQ(result["messages"], json::parse(R"([{"channel": 2, "text": "too wide"}])"));
}

TEST(SettingsReport, ShowsNoSettingsOfACameraThatIsNotOpen) {
    host::ChannelSettings closed = manta();
    closed.channel.width = 0;
    closed.settings.clear();
    EXPECT_EQ(host::settingsText({closed}), "channel 2 \u00b7 Manta \u00b7 not open\n");
    const json result = json::parse(host::settingsJson({}, {closed}, {}, "Camera 2 is held."));
    EXPECT_EQ(result["exit_code"], 12);
    EXPECT_EQ(result["error"], "Camera 2 is held.");
    EXPECT_EQ(result["channels"][0]["open"], false);
    EXPECT_EQ(result["channels"][0]["settings"], json::array());
}

TEST(CheckReport, SaysWhetherTheCamerasCanRecord) {
    CheckResult result{true, 2, {}};
    EXPECT_EQ(host::checkText(result), "2 channels checked: the cameras can record as they are set\n");
    EXPECT_EQ(host::checkFailure(result), "");
    EXPECT_EQ(json::parse(host::checkJson(result, {}))["exit_code"], 0);
    result = {false, 1, {{0, "too fast"}}};
    EXPECT_EQ(host::checkText(result), "1 channel checked: the cameras cannot record as they are set\n");
    const json failed = json::parse(host::checkJson(result, {{0, "Width", "8", "8 pixel", ""}}));
    EXPECT_EQ(failed["exit_code"], 13);
    EXPECT_EQ(failed["passed"], false);
    EXPECT_EQ(failed["error"], host::checkFailure(result));
    EXPECT_EQ(failed["messages"][0]["text"], "too fast");
    EXPECT_EQ(failed["changes"][0]["became"], "8 pixel");
}

}  // namespace
