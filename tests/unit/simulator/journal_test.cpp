// The journal of vendor calls.
#include <cstring>

#include "simulator_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::kSystem;
using test_support::run;
using test_support::setInt;
using test_support::Simulator;
using test_support::SimulatorTest;
using test_support::Stream;
using test_support::StreamTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kId = kColourCamera;

TEST_F(SimulatorTest, TheJournalIsOffUntilItIsStartedAndStartsEmpty) {
    VmbSimJournalStart();
    VmbSimJournalStop();
    VmbHandle_t camera = open();
    EXPECT_THAT(Simulator::journal(), IsEmpty());
    VmbSimJournalStart();
    VmbCameraClose(camera);
    EXPECT_THAT(Simulator::journal(), ElementsAre("VmbCameraClose(" + kId + ") = 0"));
    VmbSimJournalStop();
    camera = open();
    EXPECT_EQ(Simulator::journal().size(), 1u);
    VmbSimJournalStart();
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(SimulatorTest, TheJournalShowsArgumentsResultsAndValues) {
    VmbShutdown();
    VmbSimJournalStart();
    VmbVersionInfo_t version;
    VmbVersionQuery(&version, sizeof version);
    VmbStartup();
    VmbUint32_t found = 0;
    setInt(kSystem, "GeVDiscoveryAllDuration", 1);
    run(kSystem, "GeVDiscoveryAllOnce");
    VmbCameraInfo_t cameras[2];
    VmbCamerasList(nullptr, 0, &found, sizeof cameras[0]);
    VmbCamerasList(cameras, 1, &found, sizeof cameras[0]);
    VmbHandle_t camera = nullptr;
    VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera);
    VmbCameraOpen("DEV_1", VmbAccessModeFull, &camera);
    VmbShutdown();
    EXPECT_THAT(Simulator::journal(),
                ElementsAre("VmbVersionQuery(12) = 0", "VmbStartup() = 0",
                            "VmbFeatureIntSet(system, \"GeVDiscoveryAllDuration\", 1) = 0",
                            "VmbFeatureCommandRun(system, \"GeVDiscoveryAllOnce\") = 0",
                            "VmbCamerasList(0, 48) = 0, 2", "VmbCamerasList(1, 48) = -9",
                            "VmbCameraOpen(\"" + kId + "\", 1) = 0, " + kId,
                            "VmbCameraOpen(\"DEV_1\", 1) = -3", "VmbShutdown()"));
}

TEST_F(SimulatorTest, TheJournalShowsFeatureCallsOfEveryType) {
    const VmbHandle_t camera = open();
    VmbSimJournalStart();
    VmbInt64_t number = 0;
    VmbInt64_t most = 0;
    double real = 0;
    double highest = 0;
    bool flag = false;
    bool writable = false;
    const char* text = nullptr;
    char buffer[32];
    VmbUint32_t filled = 0;
    VmbFeatureInfo_t info;
    VmbFeatureIntGet(camera, "Width", &number);
    VmbFeatureIntSet(camera, "Width", 7);
    VmbFeatureIntRangeQuery(camera, "Width", &number, &most);
    VmbFeatureIntIncrementQuery(camera, "Width", &number);
    VmbFeatureFloatGet(camera, "ExposureTimeAbs", &real);
    VmbFeatureFloatSet(camera, "Gain", 1.25);
    VmbFeatureFloatRangeQuery(camera, "Gain", &real, &highest);
    VmbFeatureEnumGet(camera, "GainAuto", &text);
    VmbFeatureEnumSet(camera, "GainAuto", "Off");
    VmbFeatureEnumRangeQuery(camera, "GainAuto", nullptr, 0, &filled);
    VmbFeatureStringGet(camera, "DeviceID", nullptr, 0, &filled);
    VmbFeatureStringGet(camera, "DeviceID", buffer, 32, nullptr);
    VmbFeatureBoolGet(camera, "StreamFrameRateConstrain", &flag);
    VmbFeatureBoolSet(camera, "StreamFrameRateConstrain", false);
    VmbFeatureCommandIsDone(camera, "AcquisitionStop", &flag);
    VmbFeatureAccessQuery(camera, "Width", &flag, &writable);
    VmbFeatureInfoQuery(camera, "Width", &info, sizeof info);
    VmbFeaturesList(camera, nullptr, 0, nullptr, sizeof info);
    VmbFeatureIntGet(camera, nullptr, &number);
    EXPECT_THAT(
        Simulator::journal(),
        ElementsAre("VmbFeatureIntGet(" + kId + ", \"Width\") = 0, 656",
                    "VmbFeatureIntSet(" + kId + ", \"Width\", 7) = -11",
                    "VmbFeatureIntRangeQuery(" + kId + ", \"Width\") = 0, 8, 656",
                    "VmbFeatureIntIncrementQuery(" + kId + ", \"Width\") = 0, 8",
                    "VmbFeatureFloatGet(" + kId + ", \"ExposureTimeAbs\") = 0, 15000",
                    "VmbFeatureFloatSet(" + kId + ", \"Gain\", 1.25) = 0",
                    "VmbFeatureFloatRangeQuery(" + kId + ", \"Gain\") = 0, 0, 32",
                    "VmbFeatureEnumGet(" + kId + ", \"GainAuto\") = 0, \"Off\"",
                    "VmbFeatureEnumSet(" + kId + ", \"GainAuto\", \"Off\") = 0",
                    "VmbFeatureEnumRangeQuery(" + kId + ", \"GainAuto\", 0) = 0, 3",
                    "VmbFeatureStringGet(" + kId + ", \"DeviceID\", 0) = 0, 14",
                    "VmbFeatureStringGet(" + kId + ", \"DeviceID\", 32) = 0, \"50-0503300001\"",
                    "VmbFeatureBoolGet(" + kId + ", \"StreamFrameRateConstrain\") = 0, 1",
                    "VmbFeatureBoolSet(" + kId + ", \"StreamFrameRateConstrain\", 0) = 0",
                    "VmbFeatureCommandIsDone(" + kId + ", \"AcquisitionStop\") = 0, 1",
                    "VmbFeatureAccessQuery(" + kId + ", \"Width\") = 0, 1, 1",
                    "VmbFeatureInfoQuery(" + kId + ", \"Width\", 96) = 0",
                    "VmbFeaturesList(" + kId + ", 0, 96) = -7", "VmbFeatureIntGet(" + kId + ", null) = -7"));
}

TEST_F(StreamTest, TheJournalShowsACaptureFromBeginningToEnd) {
    const VmbHandle_t camera = open();
    test_support::Invalidations notes;
    Stream stream(camera, 2);
    VmbSimJournalStart();
    notes.registerOn(camera, "Width");
    stream.startCapture();
    VmbFrameRevoke(camera, &stream.frames[0]);
    stream.endCapture();
    VmbFeatureInvalidationUnregister(camera, "Width", &test_support::Invalidations::on);
    VmbCameraClose(camera);
    VmbCameraClose(camera);
    EXPECT_THAT(
        Simulator::journal(),
        ElementsAre(
            "VmbFeatureInvalidationRegister(" + kId + ", \"Width\") = 0",
            "VmbFrameAnnounce(" + kId + ", frame 1, 104) = 0",
            "VmbFrameAnnounce(" + kId + ", frame 2, 104) = 0", "VmbCaptureStart(" + kId + ") = 0",
            "VmbCaptureFrameQueue(" + kId + ", frame 1) = 0",
            "VmbCaptureFrameQueue(" + kId + ", frame 2) = 0", "VmbFrameRevoke(" + kId + ", frame 1) = 0",
            "VmbFeatureCommandRun(" + kId + ", \"AcquisitionStop\") = 0", "VmbCaptureEnd(" + kId + ") = 0",
            "VmbCaptureQueueFlush(" + kId + ") = 0", "VmbFrameRevokeAll(" + kId + ") = 0",
            "VmbFeatureInvalidationUnregister(" + kId + ", \"Width\") = 0", "VmbCameraClose(" + kId + ") = 0",
            "VmbCameraClose(bad handle) = -4"));
}

TEST_F(StreamTest, FramesAreNumberedAnewWhenNoneIsAnnounced) {
    const VmbHandle_t camera = open();
    Stream stream(camera, 1);
    VmbSimJournalStart();
    for (int round = 0; round < 2; ++round) {
        stream.announceAll();
        VmbFrameRevokeAll(camera);
    }
    VmbFrameRevoke(camera, &stream.frames[0]);
    EXPECT_THAT(
        Simulator::journal(),
        ElementsAre("VmbFrameAnnounce(" + kId + ", frame 1, 104) = 0", "VmbFrameRevokeAll(" + kId + ") = 0",
                    "VmbFrameAnnounce(" + kId + ", frame 1, 104) = 0", "VmbFrameRevokeAll(" + kId + ") = 0",
                    "VmbFrameRevoke(" + kId + ", unknown frame) = -7"));
}

TEST_F(StreamTest, TheJournalNamesTheCallingThread) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 3);
    stream.startCapture();
    VmbSimJournalStart();
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    VmbSimJournalStop();
    EXPECT_EQ(Simulator::journal("frame").at(0), "VmbCaptureFrameQueue(" + kId + ", frame 1) = 0");
    EXPECT_EQ(Simulator::journal("host").at(0),
              "VmbFeatureCommandRun(" + kId + ", \"AcquisitionStart\") = 0");
    stream.endCapture();
}

TEST_F(SimulatorTest, AFaultLeavesItsCodeInTheJournal) {
    VmbSimFailCall("VmbCameraOpen", nullptr, 1, VmbErrorResources);
    VmbSimJournalStart();
    VmbHandle_t camera = nullptr;
    VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera);
    EXPECT_THAT(Simulator::journal(), ElementsAre("VmbCameraOpen(\"" + kId + "\", 1) = -14"));
}

TEST_F(SimulatorTest, TheJournalIsCopiedAsFarAsTheBufferGoes) {
    VmbSimJournalStart();
    VmbCaptureEnd(nullptr);
    const std::string line = "[host] VmbCaptureEnd(bad handle) = -4\n";
    EXPECT_EQ(VmbSimJournalText(nullptr, 0), line.size() + 1);
    char text[64];
    std::memset(text, 'x', sizeof text);
    EXPECT_EQ(VmbSimJournalText(text, 7), line.size() + 1);
    EXPECT_STREQ(text, "[host]");
    EXPECT_EQ(text[7], 'x');
    EXPECT_EQ(VmbSimJournalText(text, sizeof text), line.size() + 1);
    EXPECT_EQ(text, line);
    EXPECT_EQ(VmbSimJournalText(text, 0), line.size() + 1);
    EXPECT_EQ(text, line);
}

}  // namespace
