#include "time_checks.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "good_report.h"
#include "report_json.h"
#include "report_text.h"

using host::RecordingReport;
using host_test::failedSentences;
using host_test::goodReport;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::string textOf(const RecordingReport& report) {
    return host::recordingText(report, host::makeChecks(report));
}

TEST(TimeChecks, DemandTheWayOfTheConstantPartWhateverTheSpread) {
    RecordingReport report = goodReport();
    const auto passes = [&](std::int64_t constantNs, std::int64_t spreadP99Ns) {
        report.channels[0].timeError = {constantNs, 5'000'000, 300, spreadP99Ns, 9'000'000};
        return failedSentences(report).empty();
    };
    // Half a millisecond to either side.
    for (const std::int64_t spread : {88, 900'000}) {
        EXPECT_TRUE(passes(4'500'000, spread));
        EXPECT_FALSE(passes(4'499'999, spread));
        EXPECT_TRUE(passes(5'500'000, spread));
        EXPECT_FALSE(passes(5'500'001, spread));
    }
    EXPECT_THAT(failedSentences(report),
                ElementsAre("channel 0: constant part of the time error 5.50 ms differs from the way of "
                            "5.00 ms within 500 \u00b5s"));
}

TEST(TimeChecks, DemandTheSpreadAskedFor) {
    RecordingReport report = goodReport();
    report.channels[0].timeError->spreadP99Ns = 999'999;
    EXPECT_THAT(failedSentences(report), IsEmpty());
    report.channels[0].timeError->spreadP99Ns = 1'000'000;
    EXPECT_THAT(failedSentences(report),
                ElementsAre("channel 0: spread of the time error of 99 % of the frames 1.00 ms is not below "
                            "1.00 ms (--max-spread)"));
    report.maxSpreadNs = 1'000'001;
    EXPECT_THAT(failedSentences(report), IsEmpty());
    report.maxSpreadNs = 41'000;
    report.channels[0].timeError->spreadP99Ns = 41'000;
    EXPECT_EQ(failedSentences(report).size(), 1u);
}

TEST(TimeChecks, NameTheSpreadOnceWhenTheConstantPartSuffersToo) {
    RecordingReport report = goodReport();
    report.channels[0].timeError = {9'000'000, 5'000'000, 300, 4'000'000, 30'000'000};
    EXPECT_THAT(failedSentences(report), ElementsAre(HasSubstr("spread of the time error of 99 %")));
}

TEST(TimeChecks, DemandASpreadOfLessThanHalfAFramePeriod) {
    RecordingReport report = goodReport();  // 50 fps: half a period is 10 ms
    report.channels[0].timeError->spreadMaxNs = 9'999'999;
    EXPECT_THAT(failedSentences(report), IsEmpty());
    report.channels[0].timeError->spreadMaxNs = 10'000'000;
    EXPECT_THAT(failedSentences(report),
                ElementsAre("channel 0: spread of the time error of all frames 10.00 ms is not below half a "
                            "frame period of 10.00 ms"));
}

TEST(TimeChecks, RefuseTimesEarlierThanThePictureCanHaveArrived) {
    RecordingReport report = goodReport();  // 250 frames: 1 % are 2.5
    report.channels[0].timeError->early = 2;
    EXPECT_THAT(failedSentences(report), IsEmpty());
    report.channels[0].timeError->early = 3;
    EXPECT_THAT(failedSentences(report),
                ElementsAre("channel 0: 3 of 250 frames have times more than 500 \u00b5s earlier than their "
                            "pictures can have arrived (1 % allowed)"));
}

TEST(TimeChecks, DemandTheRightSlopeOfTwoSecondsAndMore) {
    RecordingReport report = goodReport();
    for (const double ppm : {-200.0, 200.0}) {
        report.channels[0].slopePpm = ppm;
        EXPECT_THAT(failedSentences(report), IsEmpty()) << ppm;
    }
    for (const double ppm : {-200.1, 200.1}) {
        report.channels[0].slopePpm = ppm;
        EXPECT_EQ(failedSentences(report).size(), 1u) << ppm;
    }
    // 19.878 ms instead of 20 ms are 6100 millionths too little.
    report.channels[0].slopePpm = -6100;
    EXPECT_THAT(failedSentences(report),
                ElementsAre("channel 0: slope of recorded time over true time is -6100.0 ppm off (least "
                            "squares over all frames, 200 ppm allowed)"));
    report.recordedSeconds = 1.9;
    report.outcome = host::Outcome::Interrupted;
    EXPECT_THAT(failedSentences(report), IsEmpty()) << "too short to tell";
}

TEST(TimeChecks, CompareARealCamerasTimesWithItsNominalRate) {
    RecordingReport report = goodReport();
    report.channels[0].stamped = false;
    report.channels[0].timeError.reset();
    report.channels[0].slopePpm = 300;
    EXPECT_THAT(failedSentences(report),
                ElementsAre("channel 0: slope of recorded time over frame numbers at the nominal rate is "
                            "300.0 ppm off (least squares over all frames, 200 ppm allowed)"));
    EXPECT_THAT(textOf(report), HasSubstr("\ntimes are not good\n"));
}

TEST(TimeChecks, EndTheReportWithHowGoodTimesAre) {
    RecordingReport report = goodReport();
    report.channels.push_back(report.channels[0]);
    report.channels[1].timeError->spreadP99Ns = 6'200;
    EXPECT_THAT(textOf(report), EndsWith("\ntimes are good to 41 \u00b5s (spread of 99 % of the frames)\n"));
    EXPECT_EQ(nlohmann::json::parse(host::recordingJson(report, {}))["times_spread_ns"], 41'000);
    report.channels[1].timeError->early = 250;
    EXPECT_THAT(textOf(report),
                EndsWith("\ntimes are not good (spread of 99 % of the frames: 41 \u00b5s)\n"));
    report.channels[1].timeError->early = 0;
    report.channels[1].lost = 1;
    EXPECT_THAT(textOf(report), HasSubstr("\ntimes are good to 41 \u00b5s"))
        << "a lost frame is another matter";
}

TEST(TimeChecks, SayWhatIsNotKnown) {
    RecordingReport report = goodReport();
    report.channels[0].stamped = false;
    report.channels[0].timeError.reset();
    EXPECT_THAT(textOf(report), EndsWith("\nchannel 0: how good times are is not known, no picture says when "
                                         "it was exposed\n"));
    report.channels[0].pulses = host::PulseReport{};
    report.channels[0].channel.rate = 30000.0 / 1001;
    // 1001 s / 30000 pulses.
    EXPECT_THAT(textOf(report), EndsWith("\nchannel 0: times are pulse numbers; pulse n came n \u00d7 "
                                         "0.033366667 s after pulse 0\n"));
    EXPECT_EQ(nlohmann::json::parse(host::recordingJson(report, {}))["times_spread_ns"], nullptr);
}

}  // namespace
