#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "program_run.h"

using nlohmann::json;
using scenario::ProgramResult;
using scenario::runProgram;
using scenario::fs::path;
using testing::HasSubstr;

namespace {

class CamerasTakeSettings : public testing::Test {
  protected:
    ProgramResult settings(std::vector<std::string> more) {
        more.insert(more.begin(), "settings");
        return runProgram(more);
    }
    json list(std::vector<std::string> more) {
        more.push_back("--json");
        const ProgramResult result = settings(more);
        EXPECT_EQ(result.code, 0) << result.error;
        return json::parse(result.out, nullptr, false);
    }
    static json find(const json& result, std::size_t channel, const std::string& key) {
        for (const json& setting : result["channels"][channel]["settings"]) {
            if (setting["key"] == key) return setting;
        }
        ADD_FAILURE() << key << " is not listed";
        return {};
    }
    /// Expects one sentence with these words and that code.
    void expect(const ProgramResult& result, int code, const std::vector<std::string>& words) {
        EXPECT_EQ(result.code, code) << result.out << result.error;
        ASSERT_EQ(result.sentences().size(), 1u) << result.error;
        for (const std::string& text : words) EXPECT_THAT(result.sentences()[0], HasSubstr(text));
    }
    path write(const std::string& text) const {
        const path file = m_directory.path() / "rig.txt";
        std::ofstream(file) << text;
        return file;
    }

    scenario::TemporaryDirectory m_directory;
};

TEST_F(CamerasTakeSettings, AreListedWithRangesAndChoices) {
    const json result = list({});
    ASSERT_EQ(result["channels"].size(), 2u);
    EXPECT_EQ(find(result, 0, "FrameWidth"),
              json::parse(R"({"key": "FrameWidth", "value": "656", "unit": "pixel", "choices": [],
                              "range": {"least": 8.0, "greatest": 656.0}, "changeable": "between recordings"})"));
    EXPECT_EQ(find(result, 0, "FrameFormat")["choices"], json::parse(R"(["Y422", "RGB", "Y800"])"));
    EXPECT_EQ(find(result, 1, "FrameFormat")["choices"], json::parse(R"(["Y800"])"));
    EXPECT_EQ(find(result, 1, "CAMERA/FrameSetting")["value"], "40");
    EXPECT_EQ(find(result, 0, "CAMERA/Type")["changeable"], "no");
    EXPECT_EQ(find(result, 0, "ACTION:Camera/AutoGain")["changeable"], "by --action");
    const ProgramResult text = settings({"--channel", "1"});
    EXPECT_THAT(text.out, HasSubstr(scenario::shown("channel 1 \u00b7 Manta_G-032B (50-0503200002)\n")));
    EXPECT_THAT(text.out, testing::Not(HasSubstr("channel 0")));
}

TEST_F(CamerasTakeSettings, AndTellWhatTheyMadeOfThem) {
    // The cameras set gain in steps of 0.1 dB, and the width of the colour camera in steps of 8 pixels.
    const ProgramResult result =
        settings({"--channel", "0", "--set", "CAMERA/Gain=3.14", "--set", "FrameWidth=640 pixel"});
    EXPECT_EQ(result.code, 0) << result.error;
    EXPECT_EQ(result.out,
              "channel 0: CAMERA/Gain is 3.1 now (asked for 3.14)\n"
              "channel 0: FrameWidth is 640 pixel now\n");
    const json changed = list({"--channel", "0", "--set", "CAMERA/Gain=3.14"});
    EXPECT_EQ(changed["changes"][0]["became"], "3.1");
    EXPECT_EQ(find(changed, 0, "CAMERA/Gain")["value"], "3.1");
}

TEST_F(CamerasTakeSettings, AndRunActions) {
    const ProgramResult result = settings({"--action", "ACTION:Camera/AutoGain"});
    EXPECT_EQ(result.code, 0) << result.error;
    EXPECT_EQ(result.out,
              "channel 0: ACTION:Camera/AutoGain was started\n"
              "channel 1: ACTION:Camera/AutoGain was started\n");
}

TEST_F(CamerasTakeSettings, FromAFileThatHoldsThem) {
    const path file = m_directory.path() / "rig.txt";
    const json stored = list({"--set", "FrameWidth=600", "--set", "FrameOffsetX=8", "--set",
                              "CAMERA/FrameSetting=30", "--to", file.string()});
    const json loaded = list({"--from", file.string()});
    EXPECT_EQ(settings({"--channel", "0", "--to", (m_directory.path() / "one").string()}).out,
              "wrote the settings of 1 camera to " + (m_directory.path() / "one").string() + '\n');
    EXPECT_EQ(loaded["channels"], stored["channels"]);
    EXPECT_EQ(find(loaded, 0, "FrameOffsetX")["value"], "8");
    EXPECT_EQ(find(loaded, 1, "FrameWidth")["value"], "600");
    EXPECT_NE(loaded["channels"], list({})["channels"]);
}

TEST_F(CamerasTakeSettings, UnlessTheFileIsWrong) {
    const std::string file = write("[channel 0]\nFrameWidth 640\n").string();
    expect(settings({"--from", file}), 15, {file + ":2: \"FrameWidth 640\" is no setting"});
    write("[channel DEV_000F31A10002]\n\nFrameWdth = 640\n");
    expect(settings({"--from", file}), 14,
           {file + ":3: channel 1 has no setting \"FrameWdth\"", "FrameWidth"});
    write("[channel 0]\nFrameWidth = 9999\n");
    expect(settings({"--from", file}), 14, {file + ":2: FrameWidth of channel 0 cannot be 9999"});
    write("[channel DEV_9]\nFrameWidth = 640\n");
    expect(settings({"--from", file}), 9, {file + ":2: there is no channel or camera \"DEV_9\""});
    expect(settings({"--from", file + ".none"}), 15, {file + ".none cannot be read", "--from"});
    expect(settings({"--to", (m_directory.path() / "none" / "x").string()}), 15, {"Cannot write", "--to"});
}

TEST_F(CamerasTakeSettings, ButNoneThatIsWrong) {
    expect(settings({"--set", "FrameWidth=657"}), 14,
           {"--set: FrameWidth of channel 0 cannot be 657; it goes from 8 to 656 pixel."});
    expect(settings({"--set", "0/FrameWidth=321"}), 14,
           {"FrameWidth of channel 0 cannot be 321: the camera refused it", "Allowed is 8 .. 656 pixel",
            "steps"});
    expect(settings({"--set", "CAMERA/Exposure=5000 us"}), 14, {"this setting has no unit: write 5000."});
    expect(settings({"--set", "Gian=3"}), 14, {"channel 0 has no setting \"Gian\""});
    expect(settings({"--set", "CAMERA/TriggerMode=Aux"}), 14,
           {"cannot be \"Aux\"; the choices are GIGE/TriggerModeAux, GIGE/TriggerModeFixed."});
    expect(settings({"--set", "CAMERA/Type=USB"}), 14, {"CAMERA/Type of channel 0 is read-only"});
    expect(settings({"--set", "CAMERA/FrameSetting=30000/0"}), 14, {"\"30000/0\" is no fraction"});
    expect(settings({"--set", "CAMERA/Exposure=long"}), 14, {"\"long\" is no number"});
    // With external trigger the rate is the trigger output's.
    expect(settings({"--set", "CAMERA/TriggerMode=GIGE/TriggerModeAux", "--set", "CAMERA/FrameSetting=30"}),
           14, {"CAMERA/FrameSetting of channel 0 is read-only"});
    expect(settings({"--action", "CAMERA/Gain"}), 14, {"is no action; set it with --set"});
    expect(settings({"--channel", "7"}), 9, {"There is no channel 7; the channels are 0, 1."});
}

TEST_F(CamerasTakeSettings, AndAreCheckedTogether) {
    const ProgramResult right = runProgram({"check"});
    EXPECT_EQ(right.code, 0);
    EXPECT_EQ(right.out, "2 channels checked: the cameras can record as they are set\n");

    // 100 Hz is beyond the 66 frames per second that the sensors allow.
    const ProgramResult fast = runProgram({"check", "--aux", "100", "--channel", "1"});
    EXPECT_EQ(fast.code, 13);
    EXPECT_THAT(fast.out,
                testing::EndsWith("1 channel checked: the cameras cannot record as they are set\n"));
    const std::string message = "channel 1: Sync Out AUX frequency is too fast for the camera\n";
    const std::size_t first = fast.error.find(message);
    ASSERT_NE(first, std::string::npos) << fast.error;
    EXPECT_EQ(fast.error.find(message, first + 1), std::string::npos) << "told once";

    // 14000 us and the shortest exposure of 26 us leave room for 71 pulses a second.
    EXPECT_EQ(runProgram({"check", "--aux", "60", "--channel", "1", "--set", "CAMERA/Exposure=14000"}).code,
              0);
    const ProgramResult json = runProgram({"check", "--aux", "30000/1001", "--json"});
    EXPECT_EQ(nlohmann::json::parse(json.out)["passed"], true) << json.out;
    expect(runProgram({"check", "--set", "CAMERA/TriggerMode=GIGE/TriggerModeAux"}), 13, {"--set"});
}

}  // namespace
