#include "checks.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "good_report.h"
#include "report_json.h"
#include "report_text.h"

using host::ChannelReport;
using host::Check;
using host::ExitCode;
using host::Outcome;
using host::RecordingReport;
using host_test::failedSentences;
using host_test::goodReport;
using testing::HasSubstr;

namespace {

ExitCode codeOf(const RecordingReport& report) {
    return host::exitCode(report, host::makeChecks(report));
}

TEST(Checks, WordEveryConditionOfAGoodRecording) {
    std::vector<std::string> sentences;
    for (const Check& check : host::makeChecks(goodReport())) {
        EXPECT_TRUE(check.passed) << check.sentence;
        sentences.push_back(check.sentence);
    }
    EXPECT_THAT(sentences,
                testing::ElementsAre(
                    "channel 0: 250 frames of 250.0 expected (within one frame and 100 ppm of the "
                    "camera's clock)",
                    "channel 0: 0 frames lost", "channel 0: 0 frames doubled",
                    "channel 0: 0 of 250 pictures differ from what the camera sent",
                    "channel 0: spread of the time error of 99 % of the frames 41 \u00b5s is below "
                    "1.00 ms (--max-spread)",
                    "channel 0: spread of the time error of all frames 88 \u00b5s is below half a frame "
                    "period of 10.00 ms",
                    "channel 0: constant part of the time error 37.02 ms equals the way of 36.99 ms within "
                    "500 \u00b5s",
                    "channel 0: 0 of 250 frames have times more than 500 \u00b5s earlier than their "
                    "pictures can have arrived (1 % allowed)",
                    "channel 0: slope of recorded time over true time is 1.5 ppm off (least squares over "
                    "all frames, 200 ppm allowed)"));
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

TEST(Checks, AllowForTheOscillatorOfTheCamera) {
    RecordingReport report = goodReport();
    report.seconds = 28 * 60;
    // 1680 s at 50 fps are 84000 frames; 100 ppm of them are 8.4, so 9.4 more or less.
    for (const std::uint64_t frames : {83991u, 84000u, 84009u}) {
        report.channels[0].frames = frames;
        EXPECT_TRUE(failedSentences(report).empty()) << frames;
    }
    for (const std::uint64_t frames : {83990u, 84010u}) {
        report.channels[0].frames = frames;
        EXPECT_EQ(failedSentences(report).size(), 1u) << frames;
    }
}

TEST(Checks, CountEveryPulseExactly) {
    RecordingReport report = goodReport();
    report.channels[0].pulses = host::PulseReport{};
    EXPECT_EQ(host::makeChecks(report)[0].sentence,
              "channel 0: 250 pulses with a frame and 0 without make 250 of 250 pulses");
    report.channels[0].frames = 249;
    EXPECT_THAT(
        failedSentences(report),
        testing::ElementsAre("channel 0: 249 pulses with a frame and 0 without make 249 of 250 pulses"));
    report.channels[0].frames = 246;
    report.channels[0].pulses = host::PulseReport{{{1, 1}}, {{3, 4}}, {{6, 6}, {8, 9}}, {{0, 0}}, 2, 0};
    EXPECT_TRUE(host::makeChecks(report)[0].passed) << "246 - 2 + 1 + 2 + 3";
}

TEST(Checks, FailWithoutAnyFrame) {
    RecordingReport report = goodReport();
    report.seconds = 0.001;
    report.channels[0].frames = 0;
    EXPECT_THAT(failedSentences(report), testing::ElementsAre("channel 0: no frame was recorded"));
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

TEST(Checks, SayThatFramesFoundNoBufferWhenSomeAreLost) {
    RecordingReport report = goodReport();
    report.channels[0].underruns = 4;
    EXPECT_THAT(failedSentences(report), testing::IsEmpty()) << "they came behind the end";
    report.channels[0].lost = 3;
    EXPECT_THAT(failedSentences(report),
                testing::ElementsAre("channel 0: 3 frames lost; 4 frames came when all buffers were in use, "
                                     "as on a machine that is too slow"));
    report.channels[0].underruns = 0;
    EXPECT_THAT(failedSentences(report), testing::ElementsAre("channel 0: 3 frames lost"));
}

TEST(Checks, SayWhyTheHostRefusedFrames) {
    RecordingReport report = goodReport();
    report.channels[0].lost = 3;
    report.channels[0].lostInHost = 3;
    report.channels[0].tooLarge = 1;
    EXPECT_THAT(
        failedSentences(report),
        testing::ElementsAre("channel 0: 3 frames lost, 2 of them because the disk was too slow, 1 of "
                             "them because they were larger than expected"));
    report.channels[0].tooLarge = 3;
    EXPECT_THAT(
        failedSentences(report),
        testing::ElementsAre("channel 0: 3 frames lost, 3 of them because they were larger than expected"));
}

TEST(Checks, SayHowSureALossIs) {
    RecordingReport report = goodReport();
    ChannelReport& channel = report.channels[0];
    channel.stamped = false;
    channel.timeError.reset();
    channel.slopePpm.reset();
    channel.lost = 2;
    EXPECT_THAT(failedSentences(report),
                testing::ElementsAre("channel 0: 2 frames lost, told by gaps in time"));
    channel.tooSmall = true;
    EXPECT_THAT(failedSentences(report),
                testing::ElementsAre("channel 0: 2 frames lost, told by gaps in time (the pictures are too "
                                     "small to carry a stamp)"));
    channel.tooSmall = false;
    channel.frames = 248;
    channel.pulses = host::PulseReport{};
    channel.pulses->unclear = {{7, 8}};
    EXPECT_THAT(failedSentences(report),
                testing::ElementsAre("channel 0: 2 frames lost, or their pulses skipped",
                                     "channel 0: 2 pulses skipped or lost"));
    const std::string text = host::recordingText(report, host::makeChecks(report));
    EXPECT_THAT(text, HasSubstr("   0     248  up to 2  n/a              times are pulse numbers\n"));
    EXPECT_THAT(text, HasSubstr("lost: none; skipped or lost: 7-8; doubled: none\n"));
    const auto json = nlohmann::json::parse(host::recordingJson(report, {}));
    EXPECT_EQ(json["channels"][0]["lost_is_certain"], false);
    EXPECT_EQ(json["channels"][0]["pulses"]["skipped_or_lost"], nlohmann::json::parse("[[7, 8]]"));
}

TEST(Checks, SayThatACameraBeganToCountAnew) {
    RecordingReport report = goodReport();
    report.channels[0].restarts = 1;
    EXPECT_THAT(failedSentences(report),
                testing::ElementsAre("channel 0: the camera began to count its frames anew 1 time, and what "
                                     "was lost there is not known"));
}

TEST(Checks, NameThePulsesWithoutAPictureOfTheirOwn) {
    RecordingReport report = goodReport();
    report.channels[0].pulses = host::PulseReport{};
    EXPECT_TRUE(failedSentences(report).empty());
    EXPECT_EQ(host::makeChecks(report).size(), host::makeChecks(goodReport()).size() + 4);
    report.channels[0].frames = 247;
    report.channels[0].pulses = host::PulseReport{{{12, 12}}, {{15, 17}, {20, 20}}, {}, {{30, 31}}, 2, 1};
    EXPECT_THAT(failedSentences(report),
                testing::ElementsAre("channel 0: 1 pulse skipped", "channel 0: 4 pulses lost",
                                     "channel 0: 2 pulses doubled",
                                     "channel 0: 1 frame with the number of another pulse than the one that "
                                     "exposed"));
    report.channels[0].stamped = false;
    EXPECT_EQ(failedSentences(report).size(), 3u) << "without stamps nobody knows";
}

TEST(Checks, NameTheCauseOfSkippedPulsesThatTheCameraToldBefore) {
    RecordingReport report = goodReport();
    report.channels[0].frames = 249;
    report.channels[0].pulses = host::PulseReport{};
    report.channels[0].pulses->skipped = {{12, 12}};
    report.channels[0].warnedTooFast = true;
    EXPECT_THAT(
        failedSentences(report),
        testing::ElementsAre("channel 0: 1 pulse skipped, as the frequency is too fast for the camera"));
    const std::string text = host::recordingText(report, host::makeChecks(report));
    EXPECT_THAT(text, HasSubstr("channel 0: pulses skipped: 12; lost: none"));
    EXPECT_EQ(text.find("12", text.find("skipped: 12") + 11), std::string::npos) << "the list stands once";
    report.channels[0].pulses->skipped.clear();
    report.channels[0].frames = 250;
    EXPECT_TRUE(failedSentences(report).empty());
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
    EXPECT_EQ(complaint({253, 250, 0}, 3, 0), "");
    EXPECT_EQ(complaint({255, 252, 0}, 5, 2), "") << "of the host's own losses the counters know nothing";
    EXPECT_EQ(complaint({253, 250, 0}, 2, 0),
              "channel 0: counters say 253 sent and 250 received, the host got 250 frames and found 2 frames "
              "lost on the way");
    EXPECT_THAT(complaint({250, 251, 0}, 0, 0), HasSubstr("251 received"));
    EXPECT_THAT(complaint({252, 252, 0}, 0, 0), HasSubstr("the host got 250 frames"));
    EXPECT_EQ(complaint({250, 250, 4}, 0, 0),
              "channel 0: counters say 250 sent and 250 received, the host got 250 frames and found 0 frames "
              "lost on the way; 4 counts are missing");
    report.channels[0].lostBehindEnd = 1;
    EXPECT_EQ(complaint({253, 250, 0}, 2, 0), "") << "the counters go on to the frame behind the end";
}

TEST(Checks, FailForDoubledAndWrongPictures) {
    RecordingReport report = goodReport();
    report.channels[0].doubled = 1;
    report.channels[0].mismatches = 2;
    EXPECT_THAT(failedSentences(report),
                testing::ElementsAre("channel 0: 1 frame doubled",
                                     "channel 0: 2 of 250 pictures differ from what the camera sent"));
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
    report.channels[0].slopePpm.reset();
    EXPECT_EQ(host::makeChecks(report).size(), 2u);
    EXPECT_EQ(codeOf(report), ExitCode::Ok);
}

}  // namespace
