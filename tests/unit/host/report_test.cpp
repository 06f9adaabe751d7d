#include <set>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "checks.h"
#include "host_failure.h"
#include "report_json.h"
#include "report_text.h"

using host::ChannelReport;
using host::Check;
using host::ExitCode;
using host::Outcome;
using host::RecordingReport;
using testing::HasSubstr;

namespace {

host::ChannelInfo colourCamera() {
    return {0, "Manta_G-033C (50-0503300001)", "DEV_1", "GigE", "Y422", 656, 492, 50.0};
}

host::ChannelInfo triggeredCamera() {
    return {12, "Other", "DEV_2", "GigE", "Y800", 640, 480, std::nullopt};
}

ChannelReport goodChannel() {
    ChannelReport channel;
    channel.channel = colourCamera();
    channel.frames = 250;
    channel.stamped = true;
    channel.matches = 250;
    channel.timeError = {37'020'000, 36'990'000, 20'000, 41'000, 88'400};
    return channel;
}

RecordingReport goodReport() {
    RecordingReport report;
    report.plugin = "GIGECAMERA";
    report.vendorVersion = "1.9.1";
    report.scenario = "two-cameras";
    report.seconds = 5;
    report.recordedSeconds = 5.04;
    report.directory = "out";
    report.channels = {goodChannel()};
    report.pictureFiles = {"channel-0-first.png", "channel-0-last.png"};
    return report;
}

std::vector<std::string> failedSentences(const RecordingReport& report) {
    std::vector<std::string> sentences;
    for (const Check& check : host::makeChecks(report)) {
        if (!check.passed) sentences.push_back(check.sentence);
    }
    return sentences;
}

ExitCode codeOf(const RecordingReport& report) {
    return host::exitCode(report, host::makeChecks(report));
}

TEST(Checks, WordEveryConditionOfAGoodRecording) {
    std::vector<std::string> sentences;
    for (const Check& check : host::makeChecks(goodReport())) {
        EXPECT_TRUE(check.passed) << check.sentence;
        sentences.push_back(check.sentence);
    }
    EXPECT_THAT(
        sentences,
        testing::ElementsAre("channel 0: 250 frames of 250.0 expected (within one frame)",
                             "channel 0: 0 frames lost", "channel 0: 0 frames doubled",
                             "channel 0: 0 of 250 pictures differ from what the camera sent",
                             "channel 0: constant part of the time error 37.02 ms equals the way of "
                             "36.99 ms within the spread of 88 \u00b5s and the 500 \u00b5s that a thread may "
                             "wake up late"));
    EXPECT_EQ(codeOf(goodReport()), ExitCode::Ok);
    EXPECT_EQ(host::failureSentence(goodReport(), host::makeChecks(goodReport())), "");
}

TEST(Checks, AllowOneFrameMoreOrLess) {
    RecordingReport report = goodReport();
    for (const std::uint64_t frames : {249u, 250u, 251u}) {
        report.channels[0].frames = frames;
        EXPECT_TRUE(failedSentences(report).empty()) << frames;
    }
    for (const std::uint64_t frames : {248u, 252u}) {
        report.channels[0].frames = frames;
        EXPECT_EQ(failedSentences(report).size(), 1u) << frames;
        EXPECT_EQ(codeOf(report), ExitCode::CheckFailed);
    }
}

TEST(Checks, NameWhatIsLostAndWhere) {
    RecordingReport report = goodReport();
    report.channels[0].lost = 3;
    EXPECT_THAT(failedSentences(report), testing::ElementsAre("channel 0: 3 frames lost"));
    report.channels[0].lostInHost = 2;
    EXPECT_THAT(failedSentences(report),
                testing::ElementsAre("channel 0: 3 frames lost, 2 of them because the disk was too slow"));
    EXPECT_EQ(host::failureSentence(report, host::makeChecks(report)),
              "The recording in out cannot be trusted: channel 0: 3 frames lost, 2 of them because the disk "
              "was too slow; find the cause and record again.");
}

TEST(Checks, NameThePulsesWithoutAPictureOfTheirOwn) {
    RecordingReport report = goodReport();
    report.channels[0].pulses = host::PulseReport{};
    EXPECT_TRUE(failedSentences(report).empty());
    EXPECT_EQ(host::makeChecks(report).size(), host::makeChecks(goodReport()).size() + 4);
    report.channels[0].pulses = host::PulseReport{{{12, 12}}, {{15, 17}, {20, 20}}, {{30, 31}}, 1};
    EXPECT_THAT(
        failedSentences(report),
        testing::ElementsAre("channel 0: 1 pulse skipped (12)", "channel 0: 4 pulses lost (15-17, 20)",
                             "channel 0: 2 pulses doubled (30-31)",
                             "channel 0: 1 frame with the number of another pulse than the one that "
                             "exposed"));
    report.channels[0].stamped = false;
    EXPECT_EQ(failedSentences(report).size(), 3u) << "without stamps nobody knows";
}

TEST(Checks, CompareTheCamerasCountersWithTheHostsOwnCount) {
    RecordingReport report = goodReport();
    const auto complaint = [&](host::CounterReport counters, std::uint64_t lost, std::uint64_t lostInHost) {
        report.channels[0].counters = counters;
        report.channels[0].lost = lost;
        report.channels[0].lostInHost = lostInHost;
        const std::vector<Check> checks = host::makeChecks(report);
        return checks[3].passed ? std::string() : checks[3].sentence;
    };
    EXPECT_EQ(complaint({250, 250, 0}, 0, 0), "");
    EXPECT_EQ(complaint({250, 247, 0}, 3, 0), "");
    EXPECT_EQ(complaint({250, 247, 0}, 5, 2), "") << "of the host's own losses the counters know nothing";
    EXPECT_EQ(complaint({250, 247, 0}, 2, 0),
              "channel 0: counters say 250 sent and 247 received, the host found 2 frames lost on the way");
    EXPECT_THAT(complaint({250, 251, 0}, 0, 0), HasSubstr("251 received"));
    EXPECT_EQ(complaint({250, 250, 4}, 0, 0),
              "channel 0: counters say 250 sent and 250 received, the host found 0 frames lost on the way; 4 "
              "counts are missing");
}

TEST(RecordingText, NamesPulsesAndCounters) {
    RecordingReport report = goodReport();
    report.channels[0].pulses = host::PulseReport{{{12, 12}, {15, 17}}, {}, {{20, 20}}, 0};
    report.channels[0].counters = host::CounterReport{250, 249, 0};
    const std::string text = host::recordingText(report, host::makeChecks(report));
    EXPECT_THAT(text, HasSubstr("channel 0: pulses skipped: 12, 15-17; lost: none; doubled: 20\n"
                                "channel 0: counters: 250 sent, 249 received\n"
                                "wrote 1 raw + CSV, 2 counter CSV, 2 PNG, summary.json\n"));
    const auto json = nlohmann::json::parse(host::recordingJson(report, host::makeChecks(report)));
    EXPECT_EQ(json["channels"][0]["pulses"],
              nlohmann::json::parse(R"({"skipped": [[12, 12], [15, 17]], "lost": [], "doubled": [[20, 20]],
                                        "misplaced": 0})"));
    EXPECT_EQ(json["channels"][0]["counters"],
              nlohmann::json::parse(R"({"sent": 250, "received": 249, "unusable": 0})"));
    const auto plain = nlohmann::json::parse(host::recordingJson(goodReport(), {}));
    EXPECT_EQ(plain["channels"][0]["pulses"], nullptr);
    EXPECT_EQ(plain["channels"][0]["counters"], nullptr);
}

TEST(Checks, FailForDoubledAndWrongPictures) {
    RecordingReport report = goodReport();
    report.channels[0].doubled = 1;
    report.channels[0].mismatches = 2;
    EXPECT_THAT(failedSentences(report),
                testing::ElementsAre("channel 0: 1 frame doubled",
                                     "channel 0: 2 of 250 pictures differ from what the camera sent"));
}

TEST(Checks, CompareTheConstantPartWithTheWay) {
    RecordingReport report = goodReport();
    const auto passes = [&](std::int64_t constantNs) {
        report.channels[0].timeError = {constantNs, 1'000'000, 300, 10, 88};
        return failedSentences(report).empty();
    };
    // 88 ns of spread and half a millisecond to either side.
    EXPECT_TRUE(passes(499'912));
    EXPECT_FALSE(passes(499'911));
    EXPECT_TRUE(passes(1'500'088));
    EXPECT_FALSE(passes(1'500'089));
    EXPECT_THAT(failedSentences(report), testing::ElementsAre(HasSubstr("differs from the way of 1.00 ms")));
}

TEST(Checks, FailForSilenceAssertionsAndABadStop) {
    RecordingReport report = goodReport();
    report.channels[0].silent = true;
    report.assertionFailures = 4;
    report.stopFailure = "camera gone";
    EXPECT_THAT(
        failedSentences(report),
        testing::ElementsAre("channel 0: fell silent before the end", "4 assertions of the plug-in failed",
                             "the cameras did not stop properly (camera gone)"));
}

TEST(Checks, ExpectNoNumberOfFramesWithoutARate) {
    RecordingReport report = goodReport();
    report.channels[0].channel.rate.reset();
    report.channels[0].frames = 3;
    EXPECT_TRUE(failedSentences(report).empty());
}

TEST(Checks, ExpectNoNumberOfFramesOfARecordingCutShort) {
    RecordingReport report = goodReport();
    report.channels[0].frames = 115;
    report.channels[0].silent = true;
    report.recordedSeconds = 2.31;
    report.outcome = Outcome::Interrupted;
    EXPECT_TRUE(failedSentences(report).empty());
    EXPECT_EQ(codeOf(report), ExitCode::Interrupted);
    EXPECT_EQ(host::failureSentence(report, host::makeChecks(report)),
              "Interrupted after 2.3 s of 5.0 s; the 115 frames in out are intact.");

    report.outcome = Outcome::WriteFailed;
    report.writeFailure = "No space left on device";
    EXPECT_EQ(codeOf(report), ExitCode::WriteFailed);
    EXPECT_EQ(host::failureSentence(report, host::makeChecks(report)),
              "Writing to out failed after 115 frames (No space left on device); what is there is intact, "
              "make room and record again into another directory.");
}

TEST(Checks, LeaveOutTheStampsOfARealCamera) {
    RecordingReport report = goodReport();
    report.channels[0].stamped = false;
    report.channels[0].matches = 0;
    report.channels[0].timeError.reset();
    EXPECT_EQ(host::makeChecks(report).size(), 2u);
    EXPECT_EQ(codeOf(report), ExitCode::Ok);
}

TEST(DevicesText, AlignsItsColumns) {
    EXPECT_EQ(host::devicesText({{0, colourCamera()}, {12, triggeredCamera()}}),
              "  id  camera                        type  format  size          rate\n"
              "   0  Manta_G-033C (50-0503300001)  GigE  Y422    656\u00d7492  50.00 fps\n"
              "  12  Other                         GigE  Y800    640\u00d7480        n/a\n");
}

TEST(RecordingText, ShowsATableTheFilesAndTheVerdict) {
    const RecordingReport report = goodReport();
    EXPECT_EQ(
        host::recordingText(report, host::makeChecks(report)),
        "  id  frames  lost  picture matches stamp  time error: constant (way) / spread p99 / spread max\n"
        "   0     250     0  250 of 250             37.02 ms (36.99 ms) / 41 \u00b5s / 88 \u00b5s\n"
        "wrote 1 raw + CSV, 2 PNG, summary.json\n"
        "all 5 checks passed: the recording can be trusted\n");
}

TEST(RecordingText, NamesFailedChecksAndAssertions) {
    RecordingReport report = goodReport();
    report.channels[0].lost = 1;
    report.assertionFailures = 2;
    const std::string text = host::recordingText(report, host::makeChecks(report));
    EXPECT_THAT(text, HasSubstr("\ncheck failed: 2 assertions of the plug-in failed\n"));
    EXPECT_THAT(text, HasSubstr("\ncheck failed: channel 0: 1 frame lost\n"));
    EXPECT_THAT(text, testing::EndsWith("2 of 6 checks failed: the recording cannot be trusted\n"));
}

TEST(RecordingText, SaysWhenItWasCutShort) {
    RecordingReport report = goodReport();
    report.outcome = Outcome::Interrupted;
    EXPECT_THAT(host::recordingText(report, host::makeChecks(report)),
                testing::EndsWith("the recording was cut short; what is there passed all 4 checks\n"));
}

TEST(RecordingText, HasNothingToSayOfStampsThatAreNotThere) {
    RecordingReport report = goodReport();
    report.channels[0].stamped = false;
    report.channels[0].timeError.reset();
    EXPECT_THAT(host::recordingText(report, host::makeChecks(report)),
                HasSubstr("   0     250     0  n/a                    n/a\n"));
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
    EXPECT_EQ(json["checks"].size(), 5u);
    const auto& channel = json["channels"][0];
    EXPECT_EQ(channel["frames"], 250);
    EXPECT_EQ(channel["frames_expected"], 250.0);
    EXPECT_EQ(channel["lost"], 0);
    EXPECT_EQ(channel["lost_in_host"], 0);
    EXPECT_EQ(channel["doubled"], 0);
    EXPECT_EQ(channel["matches"], 250);
    EXPECT_EQ(channel["mismatches"], 0);
    EXPECT_EQ(channel["silent"], false);
    EXPECT_EQ(channel["time_error"]["constant_ns"], 37'020'000);
    EXPECT_EQ(channel["time_error"]["way_ns"], 36'990'000);
    EXPECT_EQ(channel["time_error"]["delay_p99_ns"], 20'000);
    EXPECT_EQ(channel["time_error"]["spread_p99_ns"], 41'000);
    EXPECT_EQ(channel["time_error"]["spread_max_ns"], 88'400);
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
    for (const char* key : {"doubled", "matches", "mismatches", "time_error"}) {
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
