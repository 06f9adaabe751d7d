#include "recording.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "config_item_variant.h"
#include "fake_plugin.h"
#include "host_failure.h"
#include "temporary_directory.h"

using host::ExitCode;
using host::HostFailure;
using host::Outcome;
using host::Recording;
using host::RecordingReport;
using host_test::FakeCreator;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr std::int64_t kPeriod = 20'000'000;

class RecordingTest : public testing::Test {
  protected:
    RecordingTest() {
        m_creator.m_plugin->addChannel(0);
        m_creator.m_plugin->addChannel(1);
        m_session = std::make_unique<host::Session>(m_creator.source(), host::SessionOptions{},
                                                    std::make_unique<host::VendorProbe>(nullptr));
        m_creator.m_calls.clear();
        m_hooks.tell = [this](const std::string& sentence) { m_told.push_back(sentence); };
        m_hooks.showProgress = [this](const host::Progress& progress) { m_progress = progress; };
        setStart([this] {
            for (const auto& [id, sink] : plugin().m_sinks) deliver(id, 51);
            return true;
        });
    }

    host_test::FakePlugin& plugin() { return *m_creator.m_plugin; }
    void setStart(std::function<bool()> start) {
        plugin().m_behaviour["startAcquisition"] = std::move(start);
    }

    /// `frames` frames of 4 x 2 pixels, 20 ms apart.
    void deliver(std::uint32_t id, int frames) {
        for (int i = 0; i < frames; ++i) {
            const std::string bytes(8, static_cast<char>(i));
            plugin().m_sinks.at(id)->addSample(1000 + i * kPeriod, bytes.data(), bytes.size());
        }
    }

    host::RecordingOptions options() {
        host::RecordingOptions options;
        options.seconds = 1;
        options.directory = m_directory.path() / "out";
        options.grace = std::chrono::nanoseconds(0);
        return options;
    }

    RecordingReport record() { return record(options()); }
    RecordingReport record(const host::RecordingOptions& options) {
        Recording recording(*m_session, options, m_hooks);
        return recording.run();
    }

    HostFailure failure(const host::RecordingOptions& options) {
        try {
            record(options);
        } catch (const HostFailure& failure) {
            return failure;
        }
        return {ExitCode::Ok, "nothing failed"};
    }

    std::vector<std::string> files() {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_directory.path() / "out")) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    test_support::TemporaryDirectory m_directory;
    FakeCreator m_creator;
    std::unique_ptr<host::Session> m_session;
    host::RecordingHooks m_hooks;
    std::vector<std::string> m_told;
    host::Progress m_progress;
};

TEST_F(RecordingTest, DrivesThePluginInOrderAndLeavesNoSinkBehind) {
    record();
    EXPECT_THAT(m_creator.m_calls, ElementsAre("setChannelSink", "setChannelSink", "prepareAcquisition",
                                               "onAcquisitionPrepared", "startAcquisition", "stopAcquisition",
                                               "onAcquisitionFinished", "clearChannelSinks"));
    EXPECT_TRUE(plugin().m_sinks.empty());
}

TEST_F(RecordingTest, RecordsEveryFrameOfItsLength) {
    const RecordingReport report = record();
    EXPECT_EQ(report.outcome, Outcome::Complete);
    ASSERT_EQ(report.channels.size(), 2u);
    for (const host::ChannelReport& channel : report.channels) {
        EXPECT_EQ(channel.frames, 50u);
        EXPECT_EQ(channel.lost, 0u);
        EXPECT_FALSE(channel.silent);
    }
    EXPECT_EQ(std::filesystem::file_size(m_directory.path() / "out" / "channel-1.raw"), 50u * 8u);
    EXPECT_THAT(files(),
                ElementsAre("channel-0-first.png", "channel-0-last.png", "channel-0.csv", "channel-0.raw",
                            "channel-1-first.png", "channel-1-last.png", "channel-1.csv", "channel-1.raw"));
    EXPECT_THAT(report.pictureFiles, ElementsAre("channel-0-first.png", "channel-0-last.png",
                                                 "channel-1-first.png", "channel-1-last.png"));
    EXPECT_EQ(m_progress.frames, 100u);
    EXPECT_EQ(m_progress.elapsed, m_progress.seconds);
}

TEST_F(RecordingTest, TellsWithWhichSettingsItWasMade) {
    plugin().m_channels.at(0)->add("FrameWidth", config_items::ScalarConfigItem(4, "pixel"));
    plugin().m_channels.at(0)->add("ACTION:Once", config_items::SingleValueConfigItem<bool>(false));
    host::RecordingOptions triggered = options();
    triggered.options = {{"--seconds", {"1"}}};
    const RecordingReport report = record(triggered);
    EXPECT_EQ(report.channels[0].settings,
              (std::vector<std::pair<std::string, std::string>>{{"FrameWidth", "4 pixel"}}));
    EXPECT_EQ(report.trigger, "");
    ASSERT_EQ(report.options.size(), 1u);
    EXPECT_EQ(report.options[0].name, "--seconds");
    EXPECT_THAT(report.startedUtc, testing::MatchesRegex("20..-..-..T..:..:..\\....Z"));
}

TEST_F(RecordingTest, UsesOnlyTheChannelsAskedFor) {
    host::RecordingOptions only = options();
    only.cameras.channels = {1};
    const RecordingReport report = record(only);
    ASSERT_EQ(report.channels.size(), 1u);
    EXPECT_EQ(report.channels[0].channel.id, 1u);
    EXPECT_FALSE(plugin().m_channels.at(0)->isUsed());
    EXPECT_TRUE(plugin().m_channels.at(1)->isUsed());
    record([&] {
        host::RecordingOptions all = options();
        all.directory = m_directory.path() / "second";
        return all;
    }());
    EXPECT_TRUE(plugin().m_channels.at(0)->isUsed());
}

TEST_F(RecordingTest, RefusesAnUnknownChannelAndNamesTheKnownOnes) {
    host::RecordingOptions wrong = options();
    wrong.cameras.channels = {0, 7};
    const HostFailure error = failure(wrong);
    EXPECT_EQ(error.code(), ExitCode::UnknownChannel);
    EXPECT_STREQ(error.what(), "There is no channel 7; the channels are 0, 1.");
    EXPECT_FALSE(std::filesystem::exists(wrong.directory));
}

TEST_F(RecordingTest, TakesSizeAndFormatAsTheyAreAfterPreparation) {
    plugin().m_behaviour["prepareAcquisition"] = [this] {
        plugin().m_channels.at(0)->m_items[config_keys::kFrameWidth] =
            config_items::ScalarConfigItem(2, "pixel");
        plugin().m_channels.at(0)->m_items[config_keys::kFrameFormat] = host_test::textItem("Y422");
        return true;
    };
    EXPECT_EQ(record().channels[0].channel.pictureBytes(), 2u * 2u * 2u);
}

TEST_F(RecordingTest, TellsMessagesOfPreparationOnce) {
    plugin().m_behaviour["prepareAcquisition"] = [this] {
        plugin().m_channels.at(0)->m_listener(
            exception_manager::Exception(0, "Too little bandwidth", "TEST"));
        return true;
    };
    EXPECT_THAT(record().messages, ElementsAre("channel 0: Too little bandwidth"));
    EXPECT_THAT(m_told, ElementsAre("channel 0: Too little bandwidth"));
}

TEST_F(RecordingTest, KeepsInMindThatACameraCannotFollowTheTrigger) {
    plugin().m_behaviour["prepareAcquisition"] = [this] {
        plugin().m_channels.at(1)->m_listener(
            exception_manager::Exception(0, "Sync Out AUX frequency is too fast for the camera", "TEST"));
        return true;
    };
    const RecordingReport report = record();
    EXPECT_FALSE(report.channels[0].warnedTooFast);
    EXPECT_TRUE(report.channels[1].warnedTooFast);
}

TEST_F(RecordingTest, PutsTheReasonOfAFailedPreparationIntoOneSentence) {
    plugin().m_behaviour["prepareAcquisition"] = [this] {
        exception_manager::Exception message(0, "Cannot configure camera '%1': %2", "TEST");
        message.addArgument("Camera Name", "Manta");
        message.addArgument("Exception Argument", "busy.");
        plugin().m_channels.at(0)->m_listener(message);
        return false;
    };
    const HostFailure error = failure(options());
    EXPECT_EQ(error.code(), ExitCode::CameraFailed);
    EXPECT_STREQ(error.what(),
                 "The cameras could not be prepared: Cannot configure camera 'Manta': busy; check the camera "
                 "and its settings, --log-level info tells more.");
    EXPECT_TRUE(m_told.empty());
    EXPECT_TRUE(files().empty());
}

TEST_F(RecordingTest, SaysAThrownReasonOnceThatWasAlsoReported) {
    setStart([this]() -> bool {
        exception_manager::Exception message(0, "Cannot start acquisition of camera %1", "TEST");
        message.addArgument("Camera Name", "Manta");
        plugin().m_channels.at(0)->m_listener(message);
        throw message;
    });
    const HostFailure error = failure(options());
    EXPECT_EQ(error.code(), ExitCode::CameraFailed);
    EXPECT_STREQ(error.what(),
                 "The cameras could not be started: Cannot start acquisition of camera Manta; check the "
                 "camera and its settings, --log-level info tells more.");
    EXPECT_TRUE(files().empty()) << "so that the directory can be used again";
    EXPECT_TRUE(plugin().m_sinks.empty());
}

TEST_F(RecordingTest, EndsAfterItsPatienceAndNamesTheSilentChannel) {
    setStart([this] {
        deliver(0, 3);
        deliver(1, 4);
        return true;
    });
    host::RecordingOptions shortOne = options();
    shortOne.seconds = 0.05;  // three frames, the fourth is past the end
    const RecordingReport report = record(shortOne);
    EXPECT_EQ(report.outcome, Outcome::Complete);
    EXPECT_TRUE(report.channels[0].silent);
    EXPECT_FALSE(report.channels[1].silent);
    EXPECT_EQ(report.channels[0].frames, 3u);
    EXPECT_EQ(report.channels[1].frames, 3u);
}

TEST_F(RecordingTest, LeavesNothingBehindWhenInterruptedBeforeItBegins) {
    m_hooks.isInterrupted = [] { return true; };
    const HostFailure error = failure(options());
    EXPECT_EQ(error.code(), ExitCode::Interrupted);
    EXPECT_STREQ(error.what(), "Interrupted before the recording began; nothing was recorded.");
    EXPECT_TRUE(files().empty());
    EXPECT_THAT(m_creator.m_calls, testing::Not(testing::Contains("startAcquisition")));
    EXPECT_TRUE(plugin().m_sinks.empty());
}

TEST_F(RecordingTest, TellsOfAPictureThatCannotBeWritten) {
    setStart([this] {
        for (const auto& [id, sink] : plugin().m_sinks) deliver(id, 51);
        std::filesystem::create_directory(m_directory.path() / "out" / "channel-1-last.png");
        return true;
    });
    const RecordingReport report = record();
    EXPECT_THAT(report.pictureFiles,
                ElementsAre("channel-0-first.png", "channel-0-last.png", "channel-1-first.png"));
    EXPECT_THAT(report.failedPictures, ElementsAre("channel-1-last.png"));
    EXPECT_THAT(m_told, ElementsAre("The picture channel-1-last.png could not be written; the frames "
                                    "themselves are intact."));
}

TEST_F(RecordingTest, KeepsWhatIsThereWhenInterrupted) {
    bool hasStarted = false;
    setStart([&] {
        deliver(0, 5);
        hasStarted = true;
        return true;
    });
    m_hooks.isInterrupted = [&] { return hasStarted; };
    const RecordingReport report = record();
    EXPECT_EQ(report.outcome, Outcome::Interrupted);
    EXPECT_EQ(report.channels[0].frames, 5u);
    EXPECT_EQ(std::filesystem::file_size(m_directory.path() / "out" / "channel-0.raw"), 40u);
    EXPECT_THAT(m_creator.m_calls, testing::Contains("stopAcquisition"));
    EXPECT_TRUE(plugin().m_sinks.empty());
}

TEST_F(RecordingTest, ReportsAStopThatFailed) {
    plugin().m_behaviour["stopAcquisition"] = []() -> bool { throw std::runtime_error("camera gone"); };
    const RecordingReport report = record();
    EXPECT_EQ(report.stopFailure, "camera gone");
    EXPECT_EQ(report.channels[0].frames, 50u);
    EXPECT_TRUE(plugin().m_sinks.empty());
}

TEST_F(RecordingTest, RefusesADirectoryThatHoldsARecording) {
    std::filesystem::create_directories(m_directory.path() / "out");
    std::ofstream(m_directory.path() / "out" / "summary.json") << "{}";
    const HostFailure error = failure(options());
    EXPECT_EQ(error.code(), ExitCode::OutputDirectory);
    EXPECT_THAT(error.what(), HasSubstr((m_directory.path() / "out").string()));
    EXPECT_THAT(error.what(), HasSubstr("already holds a recording (summary.json)"));
}

TEST_F(RecordingTest, RefusesADirectoryWithTheFilesOfAChannel) {
    std::filesystem::create_directories(m_directory.path() / "out");
    std::ofstream(m_directory.path() / "out" / "channel-9.csv") << "x";
    EXPECT_EQ(failure(options()).code(), ExitCode::OutputDirectory);
}

TEST_F(RecordingTest, TakesADirectoryWithOtherFiles) {
    std::filesystem::create_directories(m_directory.path() / "out");
    std::ofstream(m_directory.path() / "out" / "notes.txt") << "x";
    EXPECT_EQ(record().outcome, Outcome::Complete);
}

TEST_F(RecordingTest, RefusesADirectoryBelowAFileOrInItsPlace) {
    std::ofstream(m_directory.path() / "file") << "x";
    host::RecordingOptions wrong = options();
    for (const char* name : {"file", "file/out"}) {
        wrong.directory = m_directory.path() / name;
        const HostFailure error = failure(wrong);
        EXPECT_EQ(error.code(), ExitCode::OutputDirectory);
        EXPECT_THAT(error.what(), HasSubstr(wrong.directory.string()));
    }
}

TEST_F(RecordingTest, CountsInPulsesWhenTheCameraIsTriggered) {
    for (auto& [id, channel] : plugin().m_channels) {
        channel->m_items[config_keys::kCameraTriggerMode] = host_test::textItem("GIGE/TriggerModeAux");
        channel->m_items[config_keys::kCameraFrameSetting] =
            config_items::RationalScalarConfigItem(3, 2, "fps");
    }
    setStart([this] {
        const std::string bytes(8, 'x');
        for (const auto& [id, sink] : plugin().m_sinks) {
            for (const std::int64_t pulse : {0, 1, 3, 4, 5}) sink->addSample(pulse, bytes.data(), 8);
        }
        return true;
    });
    host::RecordingOptions triggered = options();
    triggered.seconds = 2.5;  // at 1.5 pulses a second 3.75 pulses, so four with the last one whole
    const RecordingReport report = record(triggered);
    EXPECT_EQ(report.channels[0].frames, 3u) << "pulses 0, 1 and 3";
    EXPECT_FALSE(report.channels[0].silent);
    EXPECT_EQ(report.channels[0].pulses->unclear, (std::vector<host::PulseSpan>{{2, 2}}));
    EXPECT_EQ(test_support::readFile(triggered.directory / "channel-1.csv"),
              "frame,pulse,offset,bytes\n0,0,0,8\n1,1,8,8\n2,3,16,8\n");
}

}  // namespace
