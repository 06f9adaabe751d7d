// A camera on the host's trigger output, recorded through the plug-in in virtual time.
#include <cstring>

#include "settings_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::PluginTest;
using ::testing::ElementsAre;

constexpr std::uint64_t kMillisecond = 1'000'000;

/// Indices of the samples.
class IndexSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void*, std::uint64_t) override { indices.push_back(time); }
    std::vector<std::int64_t> indices;
};

class TriggeredRecording : public PluginTest {
  protected:
    TriggeredRecording() : PluginTest("two-cameras", /*virtualTime=*/true) {
        enumerate();
        use(1, false);
        const auto config = channel(0);
        EXPECT_TRUE(config->setItem("CAMERA/Exposure", config_items::ScalarConfigItem(1000, "")));
        using Text = config_items::SingleValueConfigItem<std::string>;
        EXPECT_TRUE(config->setItem("CAMERA/TriggerMode", Text("GIGE/TriggerModeAux")));
        plugin->setChannelSink(0, &sink);
    }
    void drive(std::uint64_t frequency) {
        aux().setSyncOutAuxFrequency(static_cast<std::int64_t>(frequency), 1);
        const VmbSimRhythm rhythm{frequency, 1, 5 * kMillisecond, kMillisecond, 0};
        ASSERT_EQ(VmbSimDriveLine(nullptr, &rhythm), VmbErrorSuccess);
    }

    IndexSink sink;
};

TEST_F(TriggeredRecording, EveryPulseIsAFrameAndItsNumberIsTheFramesTime) {
    aux().setSyncOutAuxFrequency(20, 1);
    start();
    drive(20);
    // Pulses 5, 55, 105, 155 and 205 ms from here.
    EXPECT_EQ(VmbSimAdvance(240 * kMillisecond), VmbErrorSuccess);
    stop();
    EXPECT_THAT(sink.indices, ElementsAre(0, 1, 2, 3, 4));
}

TEST_F(TriggeredRecording, ASecondRecordingCountsFromTheBeginning) {
    aux().setSyncOutAuxFrequency(20, 1);
    for (int recording = 0; recording < 2; ++recording) {
        sink.indices.clear();
        start();
        drive(20);
        EXPECT_EQ(VmbSimAdvance(140 * kMillisecond), VmbErrorSuccess);
        stop();
        EXPECT_THAT(sink.indices, ElementsAre(0, 1, 2));
        VmbSimSilenceLine(nullptr);
    }
}

TEST_F(TriggeredRecording, AFrequencyThatChangesDuringARecordingCountsFromTheNextOn) {
    aux().setSyncOutAuxFrequency(20, 1);
    start();
    drive(20);
    EXPECT_EQ(VmbSimAdvance(140 * kMillisecond), VmbErrorSuccess);
    // The line itself stays as it is: by the new frequency every second pulse would be missing.
    aux().setSyncOutAuxFrequency(40, 1);
    EXPECT_EQ(VmbSimAdvance(100 * kMillisecond), VmbErrorSuccess);
    stop();
    EXPECT_THAT(sink.indices, ElementsAre(0, 1, 2, 3, 4));
}

}  // namespace
