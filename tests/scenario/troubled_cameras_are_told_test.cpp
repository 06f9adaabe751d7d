// The commands within this process, so that the test can do to the cameras what a user's day does.
#include <gmock/gmock.h>

#include "captured_console.h"
#include "checks.h"
#include "commands.h"
#include "host_failure.h"
#include "recorded_files.h"
#include "recording.h"
#include "simulator.h"

using host::CommandLine;
using host::ExitCode;
using scenario::kTimesHold;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using testing::HasSubstr;

namespace {

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

class TroubledCamerasAreTold : public testing::Test {
  protected:
    static CommandLine parse(std::vector<std::string> arguments) {
        std::vector<const char*> pointers{"zelt_host"};
        for (const std::string& argument : arguments) pointers.push_back(argument.c_str());
        return host::parseCommandLine(static_cast<int>(pointers.size()), pointers.data());
    }
    CommandLine recording(std::vector<std::string> more) const {
        more.insert(more.begin(), {"record", "--out", out().string(), "--seconds"});
        return parse(std::move(more));
    }
    scenario::fs::path out() const { return m_directory.path() / "recording"; }

    template <class Run>
    ExitCode run(Run command, const CommandLine& line) {
        const host::AssertionMonitor assertions(m_console.console());
        return command(line, m_console.console(), assertions);
    }
    template <class Run>
    std::string failure(Run command, const CommandLine& line, ExitCode code) {
        try {
            run(command, line);
        } catch (const host::HostFailure& error) {
            EXPECT_EQ(error.code(), code);
            return error.what();
        }
        return "nothing failed";
    }

    scenario::TemporaryDirectory m_directory;
    test_support::Simulator m_simulator;
    test_support::ExpectedMisuses m_misuses;
    host_test::CapturedConsole m_console{true};
};

TEST_F(TroubledCamerasAreTold, WhenAnotherProgramHoldsOne) {
    ASSERT_EQ(VmbSimTakeControl(kMonochromeCamera, 1), VmbErrorSuccess);
    EXPECT_EQ(run(&host::runDevices, parse({"devices"})), ExitCode::Ok);
    EXPECT_EQ(occurrences(m_console.error(), "channel 1: "), 1u) << m_console.error();
    EXPECT_THAT(m_console.error(), HasSubstr("Manta_G-032B"));
    EXPECT_THAT(failure(&host::runRecord, recording({"1"}), ExitCode::CameraFailed),
                HasSubstr("Manta_G-032B"));
    EXPECT_FALSE(exists(out() / "channel-0.raw"));
    EXPECT_THAT(failure(&host::runSettings, parse({"settings", "--set", "Gian=1"}), ExitCode::SettingWrong),
                HasSubstr("Gian"));
    EXPECT_EQ(occurrences(m_console.error(), "channel 1: "), 3u)
        << "each command once, also when it fails: " << m_console.error();
    EXPECT_EQ(run(&host::runCheck, parse({"check", "--channel", "0"})), ExitCode::Ok);
}

TEST_F(TroubledCamerasAreTold, WhenOneIsPulledOutInTheMiddleOfARecording) {
    ASSERT_EQ(VmbSimCableDuring(kMonochromeCamera, 0, "VmbCaptureFrameQueue", nullptr, 40), VmbErrorSuccess);
    EXPECT_EQ(run(&host::runRecord, recording({"2"})), ExitCode::CheckFailed) << m_console.out();
    EXPECT_EQ(occurrences(m_console.error(),
                          "channel 1: Camera Manta_G-032B (50-0503200002) is no longer connected\n"),
              1u)
        << m_console.error();
    EXPECT_THAT(m_console.error(), HasSubstr("channel 1: fell silent before the end"));
    EXPECT_GT(scenario::checkChannelFiles(out(), 1, scenario::kGreyBytes), 0u);
    EXPECT_GT(scenario::checkChannelFiles(out(), 0, scenario::kColourBytes), 40u) << "the other one goes on";
}

TEST_F(TroubledCamerasAreTold, WithTheFirstAndTheLastPulsesToo) {
    host::RecordingOptions options;
    options.seconds = 2;  // 40 pulses
    options.directory = out();
    options.cameras.aux = host::Fraction{20, 1};
    bool isTroubled = false;
    host::RecordingHooks hooks;
    hooks.showProgress = [&](const host::Progress& progress) {
        if (isTroubled || progress.frames < 6) return;
        isTroubled = true;
        EXPECT_EQ(VmbSimDisturbLine(kColourCamera, VmbSimPulseMissing, 40, 1), VmbErrorSuccess);
    };
    host::Session session(host::loadPlugin(scenario::binaries() / host::platform::kPluginFileName),
                          host::patientOptions({}, true));
    ASSERT_EQ(VmbSimLoseFrames(kMonochromeCamera, 3), VmbErrorSuccess);
    const host::RecordingReport report = host::Recording(session, options, hooks).run();
    ASSERT_EQ(report.channels.size(), 2u);
    const host::ChannelReport& colour = report.channels[0];
    const host::ChannelReport& grey = report.channels[1];
    ASSERT_TRUE(colour.pulses && grey.pulses && colour.counters && grey.counters);
    if (!kTimesHold) return;
    EXPECT_EQ(colour.pulses->skipped, (std::vector<host::PulseSpan>{{39, 39}}));
    EXPECT_EQ(colour.lost, 0u);
    EXPECT_EQ(colour.counters->sent, 39u);
    EXPECT_EQ(colour.counters->received, 39u);
    EXPECT_EQ(grey.pulses->lost, (std::vector<host::PulseSpan>{{0, 2}}));
    EXPECT_EQ(grey.lost, 3u);
    EXPECT_EQ(grey.counters->sent, 40u);
    EXPECT_EQ(grey.counters->received, 37u);
    EXPECT_EQ(colour.pulses->misplaced + grey.pulses->misplaced, 0u);
    for (const host::Check& check : host::makeChecks(report)) {
        const bool isPulses = check.sentence.find("of 40 pulses") != std::string::npos;
        const bool isCounters = check.sentence.find("counters say") != std::string::npos;
        if (isPulses || isCounters) {
            EXPECT_TRUE(check.passed) << check.sentence;
        }
    }
}

TEST_F(TroubledCamerasAreTold, WithThePulsesThatHaveNoPictureOfTheirOwn) {
    host::RecordingOptions options;
    options.seconds = 3;
    options.directory = out();
    options.cameras.aux = host::Fraction{20, 1};
    bool isTroubled = false;
    host::RecordingHooks hooks;
    hooks.showProgress = [&](const host::Progress& progress) {
        if (isTroubled || progress.frames < 6) return;
        isTroubled = true;
        // Pulses are counted from 1, and these are a second away.
        EXPECT_EQ(VmbSimDisturbLine(kColourCamera, VmbSimPulseMissing, 31, 2), VmbErrorSuccess);
        EXPECT_EQ(VmbSimDisturbLine(kColourCamera, VmbSimPulseDoubled, 46, 1), VmbErrorSuccess);
        EXPECT_EQ(VmbSimLoseFrames(kMonochromeCamera, 3), VmbErrorSuccess);
    };
    host::Session session(host::loadPlugin(scenario::binaries() / host::platform::kPluginFileName),
                          host::patientOptions({}, true));
    const host::RecordingReport report = host::Recording(session, options, hooks).run();
    ASSERT_EQ(report.channels.size(), 2u);
    const host::ChannelReport& colour = report.channels[0];
    const host::ChannelReport& grey = report.channels[1];
    ASSERT_TRUE(colour.pulses && grey.pulses && colour.counters && grey.counters);
    if (!kTimesHold) return;
    EXPECT_EQ(colour.pulses->skipped, (std::vector<host::PulseSpan>{{30, 31}}));
    EXPECT_EQ(colour.pulses->doubled, (std::vector<host::PulseSpan>{{45, 45}}));
    EXPECT_EQ(host::pulseCount(colour.pulses->lost), 0u);
    EXPECT_EQ(colour.pulses->misplaced, 0u);
    EXPECT_EQ(grey.pulses->misplaced, 0u);
    EXPECT_EQ(colour.counters->sent, colour.counters->received);
    EXPECT_EQ(host::pulseCount(grey.pulses->lost), 3u);
    EXPECT_EQ(host::pulseCount(grey.pulses->skipped), 0u);
    EXPECT_EQ(grey.lost, 3u);
    EXPECT_EQ(grey.counters->sent, 60u);
    EXPECT_EQ(grey.counters->received, 57u);
}

}  // namespace
