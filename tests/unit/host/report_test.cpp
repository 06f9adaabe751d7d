#include <set>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "checks.h"
#include "good_report.h"
#include "quantity_text.h"
#include "report_json.h"
#include "report_text.h"

using host::ChannelReport;
using host::ExitCode;
using host::Outcome;
using host::RecordingReport;
using host_test::colourCamera;
using host_test::goodReport;
using host_test::triggeredCamera;
using testing::HasSubstr;

namespace {

TEST(RecordingText, NamesPulsesAndCounters) {
    RecordingReport report = goodReport();
    report.channels[0].pulses = host::PulseReport{{{12, 12}, {15, 17}}, {}, {}, {{20, 20}}, 1, 0};
    report.channels[0].counters = host::CounterReport{250, 249, 0};
    const std::string text = host::recordingText(report, host::makeChecks(report));
    EXPECT_THAT(text, HasSubstr("channel 0: pulses skipped: 12, 15-17; lost: none; doubled: 20\n"
                                "channel 0: counters: 250 sent, 249 received\n"
                                "wrote 1 raw + CSV, 2 counter CSV, 2 PNG, summary.json\n"));
    const auto json = nlohmann::json::parse(host::recordingJson(report, host::makeChecks(report)));
    EXPECT_EQ(json["channels"][0]["pulses"],
              nlohmann::json::parse(R"({"skipped": [[12, 12], [15, 17]], "lost": [], "skipped_or_lost": [],
                                        "doubled": [[20, 20]], "misplaced": 0})"));
    EXPECT_EQ(json["channels"][0]["counters"],
              nlohmann::json::parse(R"({"sent": 250, "received": 249, "unusable": 0})"));
    const auto plain = nlohmann::json::parse(host::recordingJson(goodReport(), {}));
    EXPECT_EQ(plain["channels"][0]["pulses"], nullptr);
    EXPECT_EQ(plain["channels"][0]["counters"], nullptr);
}

TEST(DevicesText, AlignsItsColumns) {
    EXPECT_EQ(host::devicesText({{0, colourCamera()}, {12, triggeredCamera()}}),
              "  id  camera                        type  format  size          rate\n"
              "   0  Manta_G-033C (50-0503300001)  GigE  Y422    656\u00d7492  50.00 fps\n"
              "  12  Other                         GigE  Y800    640\u00d7480        n/a\n");
}

TEST(DevicesText, SaysWhichCamerasAreSwitchedOff) {
    EXPECT_EQ(host::devicesText({{0, colourCamera()}, {12, triggeredCamera()}}, {0}),
              "  id  camera                        type  format  size               rate\n"
              "   0  Manta_G-033C (50-0503300001)  GigE  Y422    656\u00d7492       50.00 fps\n"
              "  12  Other                         GigE          switched off\n");
}

TEST(DevicesText, SaysThatACameraIsNotOpen) {
    host::ChannelInfo closed = triggeredCamera();
    closed.format.clear();
    closed.width = 0;
    closed.height = 0;
    EXPECT_EQ(host::devicesText({{12, closed}}),
              "  id  camera  type  format  size      rate\n"
              "  12  Other   GigE  n/a     not open   n/a\n");
    EXPECT_EQ(nlohmann::json::parse(host::devicesJson("P", {}, {{12, closed}}))["channels"][0]["open"],
              false);
}

TEST(RecordingText, ShowsATableTheFilesAndTheVerdict) {
    const RecordingReport report = goodReport();
    EXPECT_EQ(host::recordingText(report, host::makeChecks(report)),
              "  id  frames  lost  pictures intact  time error: constant (way) / spread p99 / spread max\n"
              "   0     250     0  250 of 250       37.02 ms (36.99 ms) / 41 \u00b5s / 88 \u00b5s\n"
              "wrote 1 raw + CSV, 2 PNG, summary.json\n"
              "all 9 checks passed: the recording can be trusted\n"
              "times are good to 41 \u00b5s (spread of 99 % of the frames)\n");
}

TEST(RecordingText, NamesFailedChecksAndAssertions) {
    RecordingReport report = goodReport();
    report.channels[0].lost = 1;
    report.assertionFailures = 2;
    const std::string text = host::recordingText(report, host::makeChecks(report));
    EXPECT_THAT(text, HasSubstr("\ncheck failed: 2 assertions of the plug-in failed\n"));
    EXPECT_THAT(text, HasSubstr("\ncheck failed: channel 0: 1 frame lost\n"));
    EXPECT_THAT(text, HasSubstr("\n2 of 10 checks failed: the recording cannot be trusted\n"));
}

TEST(RecordingText, SaysWhenItWasCutShort) {
    RecordingReport report = goodReport();
    report.outcome = Outcome::Interrupted;
    EXPECT_THAT(host::recordingText(report, host::makeChecks(report)),
                HasSubstr("\nthe recording was cut short; what is there passed all 8 checks\n"));
    report.channels[0].lost = 1;
    EXPECT_THAT(host::recordingText(report, host::makeChecks(report)),
                HasSubstr("\nthe recording was cut short; 1 of 8 checks failed: the recording cannot be "
                          "trusted\n"));
}

TEST(RecordingText, HasNothingToSayOfStampsThatAreNotThere) {
    RecordingReport report = goodReport();
    report.channels[0].stamped = false;
    report.channels[0].timeError.reset();
    EXPECT_THAT(host::recordingText(report, host::makeChecks(report)),
                HasSubstr("   0     250     0  n/a              n/a\n"));
}

TEST(DevicesJson, HoldsWhatTheTableShows) {
    const auto json = nlohmann::json::parse(
        host::devicesJson("GIGECAMERA", {"1.9.1", ""}, {{0, colourCamera()}, {12, triggeredCamera()}}));
    EXPECT_EQ(json["exit_code"], 0);
    EXPECT_EQ(json["plugin"], "GIGECAMERA");
    EXPECT_EQ(json["vendor_library"]["version"], "1.9.1");
    EXPECT_TRUE(json["vendor_library"]["simulator"].is_null());
    ASSERT_EQ(json["channels"].size(), 2u);
    const auto& first = json["channels"][0];
    EXPECT_EQ(first["id"], 0);
    EXPECT_EQ(first["name"], "Manta_G-033C (50-0503300001)");
    EXPECT_EQ(first["short_id"], "DEV_1");
    EXPECT_EQ(first["type"], "GigE");
    EXPECT_EQ(first["format"], "Y422");
    EXPECT_EQ(first["width"], 656);
    EXPECT_EQ(first["height"], 492);
    EXPECT_EQ(first["rate_fps"], 50.0);
    EXPECT_TRUE(json["channels"][1]["rate_fps"].is_null());
}

TEST(RecordingJson, HoldsTheWholeResult) {
    RecordingReport report = goodReport();
    report.messages = {"Camera X is no longer connected"};
    const auto json = nlohmann::json::parse(host::recordingJson(report, host::makeChecks(report)));
    EXPECT_EQ(json["exit_code"], 0);
    EXPECT_TRUE(json["error"].is_null());
    EXPECT_EQ(json["trusted"], true);
    EXPECT_EQ(json["outcome"], "complete");
    EXPECT_EQ(json["directory"], "out");
    EXPECT_EQ(json["seconds"], 5.0);
    EXPECT_EQ(json["vendor_library"]["simulator"], "two-cameras");
    EXPECT_EQ(json["messages"][0], "Camera X is no longer connected");
    EXPECT_EQ(json["pictures"].size(), 2u);
    EXPECT_EQ(json["checks"].size(), 9u);
    const auto& channel = json["channels"][0];
    EXPECT_EQ(channel["frames"], 250);
    EXPECT_EQ(channel["frames_expected"], 250.0);
    EXPECT_EQ(channel["lost"], 0);
    EXPECT_EQ(channel["lost_in_host"], 0);
    EXPECT_EQ(channel["underruns"], nullptr) << "only simulated cameras tell";
    EXPECT_EQ(channel["doubled"], 0);
    EXPECT_EQ(channel["matches"], 250);
    EXPECT_EQ(channel["mismatches"], 0);
    EXPECT_EQ(channel["silent"], false);
    EXPECT_EQ(channel["time_error"]["constant_ns"], 37'020'000);
    EXPECT_EQ(channel["time_error"]["way_ns"], 36'990'000);
    EXPECT_EQ(channel["time_error"]["delay_p99_ns"], 20'000);
    EXPECT_EQ(channel["time_error"]["spread_p99_ns"], 41'000);
    EXPECT_EQ(channel["time_error"]["spread_max_ns"], 88'400);
    EXPECT_EQ(channel["time_error"]["early"], 0);
    EXPECT_EQ(channel["slope_ppm"], 1.5);
}

TEST(RecordingJson, SaysHowItCameAbout) {
    RecordingReport report = goodReport();
    EXPECT_EQ(nlohmann::json::parse(host::recordingJson(report, {}))["trigger"], nullptr);
    report.startedUtc = "2026-11-21T03:36:35.123Z";
    report.trigger = "30000/1001";
    report.options = {{"--seconds", {"5"}}, {"--set", {"A=1", "B=2"}}, {"--from", {}}};
    report.channels[0].settings = {{"FrameWidth", "656 pixel"}, {"CAMERA/Gain", "3"}};
    const auto json = nlohmann::json::parse(host::recordingJson(report, {}));
    EXPECT_EQ(json["started_utc"], "2026-11-21T03:36:35.123Z");
    EXPECT_EQ(json["trigger"], "30000/1001");
    EXPECT_EQ(json["options"],
              nlohmann::json::parse(R"({"--seconds": ["5"], "--set": ["A=1", "B=2"], "--from": []})"));
    EXPECT_EQ(json["channels"][0]["settings"],
              nlohmann::json::parse(R"({"FrameWidth": "656 pixel", "CAMERA/Gain": "3"})"));
}

TEST(RecordingText, SaysThatTheTimesOfATriggeredCameraArePulseNumbers) {
    RecordingReport report = goodReport();
    report.channels[0].timeError.reset();
    report.channels[0].pulses = host::PulseReport{};
    EXPECT_THAT(host::recordingText(report, {}), HasSubstr("  250 of 250       times are pulse numbers\n"));
}

TEST(UtcText, HasSecondsAndMilliseconds) {
    using namespace std::chrono;
    const auto day = sys_days(year(2026) / 11 / 21);
    EXPECT_EQ(host::utcText(day + hours(3) + minutes(4) + seconds(5) + milliseconds(6)),
              "2026-11-21T03:04:05.006Z");
    EXPECT_EQ(host::utcText(day - microseconds(1)), "2026-11-20T23:59:59.999Z");
}

TEST(RecordingJson, SaysWhyARecordingIsNotToBeTrusted) {
    RecordingReport report = goodReport();
    report.channels[0].lost = 1;
    const auto json = nlohmann::json::parse(host::recordingJson(report, host::makeChecks(report)));
    EXPECT_EQ(json["exit_code"], 13);
    EXPECT_EQ(json["trusted"], false);
    EXPECT_THAT(json["error"].get<std::string>(), HasSubstr("1 frame lost"));
    EXPECT_EQ(json["checks"][1]["passed"], false);
}

TEST(RecordingJson, IsNotTrustedWhenCutShort) {
    RecordingReport report = goodReport();
    report.outcome = Outcome::Interrupted;
    const auto json = nlohmann::json::parse(host::recordingJson(report, host::makeChecks(report)));
    EXPECT_EQ(json["exit_code"], 130);
    EXPECT_EQ(json["outcome"], "interrupted");
    EXPECT_EQ(json["trusted"], false);
}

TEST(RecordingJson, LeavesStampsOfARealCameraOut) {
    RecordingReport report = goodReport();
    report.channels[0].stamped = false;
    report.channels[0].timeError.reset();
    const auto json = nlohmann::json::parse(host::recordingJson(report, host::makeChecks(report)));
    for (const char* key : {"doubled", "restarts", "matches", "mismatches", "time_error"}) {
        EXPECT_TRUE(json["channels"][0][key].is_null()) << key;
    }
}

TEST(RecordingJson, SurvivesATextThatIsNoUtf8) {
    RecordingReport report = goodReport();
    report.channels[0].channel.name = "bad \xff name";
    const auto json = nlohmann::json::parse(host::recordingJson(report, host::makeChecks(report)));
    EXPECT_EQ(json["channels"][0]["name"], "bad \xef\xbf\xbd name");
}

TEST(FailureJson, HoldsCodeAndSentence) {
    const auto json = nlohmann::json::parse(host::failureJson(ExitCode::NoCamera, "No camera."));
    EXPECT_EQ(json["exit_code"], 8);
    EXPECT_EQ(json["error"], "No camera.");
}

TEST(ExitCodes, AreDistinctAscendingAndExplained) {
    std::set<int> codes;
    int previous = -1;
    for (const auto& row : host::kExitCodes) {
        const int code = static_cast<int>(row.code);
        EXPECT_GT(code, previous);
        previous = code;
        codes.insert(code);
        EXPECT_STRNE(row.meaning, "");
    }
    EXPECT_EQ(codes, (std::set<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 130}));
}

TEST(ExitCodes, StandInTheHelp) {
    const std::string help = host::exitCodeHelp();
    EXPECT_THAT(help, HasSubstr("\n    8  no camera found\n"));
    EXPECT_THAT(help, HasSubstr("\n  130  interrupted by Ctrl-C; what was recorded is intact\n"));
}

}  // namespace
