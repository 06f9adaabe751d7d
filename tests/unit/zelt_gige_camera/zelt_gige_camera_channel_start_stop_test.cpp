// A channel through the plug-in: start, stop, close, disconnection.
#include "channel_fixture.h"
#include "throwing_log.h"

namespace {

using test_support::AssertionCapture;
using test_support::call;
using test_support::hostCalls;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kName;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::OneCamera;
using test_support::PluginTest;
using test_support::quoted;
using test_support::RecordingSink;
using test_support::Simulator;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

TEST_F(OneCamera, StartsAndStopsWithItsLogLines) {
    open();
    const LogCapture log(UniLogSeverityLevel::Debug);
    start();
    stop();
    const std::string camera = "Camera " + kName;
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Detail),
                AllOf(Contains(camera + " starting..."), Contains(camera + " started."),
                      Contains(camera + " starting acquisition...")));
    std::vector<std::string> debug = log.texts(UniLogSeverityLevel::Debug);
    std::erase_if(debug, [](const std::string& line) { return line.find("received") != std::string::npos; });
    EXPECT_THAT(debug, ElementsAre("Acquisition stopped for camera " + kName, camera + " stopping...",
                                   camera + " stopped successfully."));
}

TEST_F(OneCamera, StopsTheAcquisitionBeforeItEndsCapture) {
    open();
    start();
    VmbSimJournalStart();
    stop();
    EXPECT_THAT(hostCalls(),
                ElementsAre(call("VmbFeatureCommandRun", quoted("AcquisitionStop")), call("VmbCaptureEnd"),
                            call("VmbCaptureQueueFlush"), call("VmbFrameRevokeAll"),
                            call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionStart")),
                            call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionEnd"))));
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->stopAcquisition());
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(OneCamera, NeverStartedHasNothingToStop) {
    open();
    use(0, false);
    EXPECT_TRUE(plugin->startAcquisition());
    const LogCapture log(UniLogSeverityLevel::Debug);
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->stopAcquisition());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Debug),
                ElementsAre("Acquisition stopped for camera " + kName, "Camera " + kName + " stopping...",
                            "Camera " + kName + " has not been started."));
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(OneCamera, CannotStartWithoutAMasterClock) {
    open();
    plugin->setSharedAcquisitionObject(nullptr);
    EXPECT_TRUE(plugin->prepareAcquisition());
    const AssertionCapture assertions;
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_THROW(plugin->startAcquisition(), exception_manager::Exception);
    EXPECT_THAT(assertions.expressions(), ElementsAre("m_master_clock"));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Cannot start acquisition of camera %1:The host has set no master clock",
                            "Cannot start acquisition of camera %1"));
    EXPECT_EQ(lastMessage(0), "Cannot start acquisition of camera " + kName);
    EXPECT_FALSE(plugin->isAcquiring());
}

TEST_F(OneCamera, CannotStartUnprepared) {
    open();
    EXPECT_THROW(plugin->startAcquisition(), exception_manager::Exception);
    EXPECT_EQ(lastMessage(0), "Cannot start acquisition of camera " + kName);
}

TEST_F(OneCamera, ReportsAStartThatTheCameraRefuses) {
    open();
    EXPECT_TRUE(plugin->prepareAcquisition());
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStart", 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    try {
        plugin->startAcquisition();
        FAIL();
    } catch (const exception_manager::Exception& error) {
        EXPECT_EQ(exception_manager::fillPlaceholders(error), "Cannot start acquisition of camera " + kName);
    }
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Cannot start acquisition of camera %1:"
                            "The feature 'AcquisitionStart' is not supported",
                            "Cannot start acquisition of camera %1"));
}

TEST_F(OneCamera, WhoseStartFailedIsAbortedBeforeItIsConfiguredAgain) {
    open();
    EXPECT_TRUE(plugin->prepareAcquisition());
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStart", 1, VmbErrorOther);
    EXPECT_THROW(plugin->startAcquisition(), exception_manager::Exception);
    const std::string abort = call("VmbFeatureCommandRun", quoted("AcquisitionAbort"));
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(hostCalls().front(), abort);
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->startAcquisition());
    EXPECT_TRUE(plugin->stopAcquisition());
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(hostCalls(), Not(Contains(abort)));
}

TEST_F(OneCamera, ThatCouldNotBeStoppedIsAbortedBeforeItIsConfiguredAgain) {
    open();
    start();
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStop", 1, VmbErrorOther);
    EXPECT_THROW(plugin->stopAcquisition(), zelt_gige_api::CameraApiError);
    EXPECT_TRUE(plugin->onAcquisitionFinished());
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(hostCalls().front(), call("VmbFeatureCommandRun", quoted("AcquisitionAbort")));
}

TEST_F(OneCamera, ThatCouldNotBeAbortedEitherIsAbortedTheNextTime) {
    open();
    start();
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStop", 1, VmbErrorOther);
    EXPECT_THROW(plugin->stopAcquisition(), zelt_gige_api::CameraApiError);
    EXPECT_TRUE(plugin->onAcquisitionFinished());
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionAbort", 1, VmbErrorOther);
    plugin->prepareAcquisition();
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(hostCalls().front(), call("VmbFeatureCommandRun", quoted("AcquisitionAbort")));
    EXPECT_TRUE(plugin->startAcquisition());
    stop();
}

TEST_F(OneCamera, ThatWasNeverStartedIsNotAborted) {
    open();
    plugin->setSharedAcquisitionObject(nullptr);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THROW(plugin->startAcquisition(), exception_manager::Exception);
    VmbSimJournalStart();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_THAT(hostCalls(), Not(Contains(call("VmbFeatureCommandRun", quoted("AcquisitionAbort")))));
}

TEST_F(PluginTest, AStartThatFailsBringsEveryChannelBack) {
    enumerate();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(plugin->onAcquisitionPrepared());
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStart", 2, VmbErrorOther);
    VmbSimJournalStart();
    EXPECT_THROW(plugin->startAcquisition(), exception_manager::Exception);
    EXPECT_FALSE(plugin->isAcquiring());
    const std::vector<std::string> calls = hostCalls();
    EXPECT_THAT(calls, Contains(call("VmbFeatureCommandRun", quoted("AcquisitionStop"))));
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd")));
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd", "", kMonochromeCamera)));
    const AssertionCapture assertions;
    start();
    stop();
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST_F(PluginTest, AStartThatFailsIsWhatTheHostHearsAlthoughTheWayBackFailsToo) {
    enumerate();
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(plugin->onAcquisitionPrepared());
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStart", 2, VmbErrorOther);
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStop", 1, VmbErrorOther);
    VmbSimJournalStart();
    try {
        plugin->startAcquisition();
        FAIL();
    } catch (const exception_manager::Exception& error) {
        EXPECT_THAT(exception_manager::fillPlaceholders(error), HasSubstr("Cannot start acquisition of"));
    }
    EXPECT_FALSE(plugin->isAcquiring());
    const std::vector<std::string> calls = hostCalls();
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd")));
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd", "", kMonochromeCamera)));
    start();
    stop();
}

TEST_F(PluginTest, StopsEveryCameraBeforeItEndsTheFirstCapture) {
    enumerate();
    start();
    VmbSimJournalStart();
    stop();
    std::vector<std::string> calls = hostCalls();
    const std::string command = "VmbFeatureCommandRun";
    std::erase_if(calls, [&](const std::string& line) {
        return line.rfind(command, 0) != 0 && line.rfind("VmbCaptureEnd", 0) != 0;
    });
    const std::string stopCommand = quoted("AcquisitionStop");
    EXPECT_THAT(calls, ElementsAre(call(command, stopCommand), call(command, stopCommand, kMonochromeCamera),
                                   call("VmbCaptureEnd"), call("VmbCaptureEnd", "", kMonochromeCamera)));
}

TEST_F(PluginTest, StopsEveryOtherChannelWhenOneCannotBeStopped) {
    enumerate();
    start();
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStop", 1, VmbErrorOther);
    VmbSimJournalStart();
    EXPECT_THROW(plugin->stopAcquisition(), zelt_gige_api::UnsupportedFeature);
    const std::vector<std::string> calls = hostCalls();
    EXPECT_THAT(calls, Contains(call("VmbFeatureCommandRun", quoted("AcquisitionStop"), kMonochromeCamera)));
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd")));
    EXPECT_THAT(calls, Contains(call("VmbCaptureEnd", "", kMonochromeCamera)));
    EXPECT_FALSE(plugin->isAcquiring());
}

TEST_F(PluginTest, PreparesEveryOtherChannelWhenOneCannotBeOpened) {
    VmbSimFailCall("VmbCameraOpen", kColourCamera, -1, VmbErrorInvalidAccess);
    enumerate();
    VmbSimJournalStart();
    EXPECT_THROW(plugin->prepareAcquisition(), exception_manager::Exception);
    EXPECT_THAT(hostCalls(), Contains(call("VmbCaptureStart", "", kMonochromeCamera)));
}

TEST_F(PluginTest, TracesItsPreparation) {
    const LogCapture log;
    plugin->prepareAcquisition();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Trace),
                ElementsAre("Entering CameraPlugin::prepareAcquisition() ...",
                            "... exiting CameraPlugin::prepareAcquisition()."));
}

TEST_F(OneCamera, OpensAReplacedCameraAgain) {
    open();
    start();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_THROW(plugin->stopAcquisition(), zelt_gige_api::UnsupportedFeature);
    plugin->onAcquisitionFinished();
    VmbSimPlugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    plugin->enumerateDevices();
    RecordingSink sink;
    plugin->setChannelSink(0, &sink);
    start();
    EXPECT_TRUE(sink.waitFor(3));
    stop();
    plugin->clearChannelSinks();
}

TEST_F(OneCamera, ClosedBeforeItWasStoppedIsAProgrammingErrorAndClosesAllTheSame) {
    open();
    start();
    const AssertionCapture assertions;
    VmbSimJournalStart();
    dynamic_cast<zelt_gige_camera::CameraChannel&>(*channel(0)).close();
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].expression, "m_acquisition_started.load_relaxed() == false");
    EXPECT_EQ(assertions.failures()[0].message, "The camera must be stopped before closing it");
    EXPECT_EQ(assertions.failures()[0].file, "lib/zelt_gige_camera/src/zelt_gige_camera_channel");
    EXPECT_THAT(hostCalls(),
                ElementsAre(call("VmbFeatureCommandRun", quoted("AcquisitionStop")), call("VmbCaptureEnd"),
                            call("VmbCaptureQueueFlush"), call("VmbFrameRevokeAll"),
                            call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionStart")),
                            call("VmbFeatureInvalidationUnregister", quoted("EventAcquisitionEnd")),
                            call("VmbFrameRevokeAll"), call("VmbCameraClose")));
}

TEST_F(OneCamera, TerminatedInTheMiddleOfAnAcquisitionIsClosedWithoutAProgrammingError) {
    open();
    start();
    const AssertionCapture assertions;
    VmbSimJournalStart();
    plugin->terminate();
    EXPECT_THAT(assertions.failures(), IsEmpty());
    EXPECT_THAT(hostCalls(), Contains(call("VmbFeatureCommandRun", quoted("AcquisitionStop"))));
    EXPECT_THAT(hostCalls(), Contains(call("VmbCameraClose")));
}

TEST_F(OneCamera, RemovedInTheMiddleOfAnAcquisitionIsClosedWithoutAProgrammingError) {
    open();
    start();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    const AssertionCapture assertions;
    plugin->enumerateDevices();
    EXPECT_THAT(assertions.failures(), IsEmpty());
    EXPECT_THAT(plugin->getChannelIds(), IsEmpty());
}

TEST_F(OneCamera, IsClosedEvenWhenTheLogCannotBeWritten) {
    open();
    start();
    {
        const test_support::ThrowingLog log;
        VmbSimJournalStart();
        plugin->terminate();
    }
    EXPECT_THAT(hostCalls(), Contains(call("VmbCaptureEnd")));
    EXPECT_THAT(hostCalls(), Contains(call("VmbCameraClose")));
}

TEST_F(OneCamera, IsClosedAgainWhenTheLogCannotBeWrittenWhileItOpens) {
    plugin->initialize();
    {
        const test_support::ThrowingLog log("opened successfully");
        EXPECT_ANY_THROW(plugin->enumerateDevices());
    }
    plugin->enumerateDevices();
    EXPECT_TRUE(plugin->prepareAcquisition());
}

TEST_F(OneCamera, ThatVanishesWhileItIsFirstOpenedIsOpenedAgain) {
    plugin->initialize();
    {
        // The cable is pulled right after the open call, before the plug-in can know the channel.
        test_support::LogAction pull("opened successfully", [] {
            VmbSimUnplugCamera(kColourCamera);
            VmbSimWaitForEvents(kPatienceMs);
            VmbSimPlugCamera(kColourCamera);
            VmbSimWaitForEvents(kPatienceMs);
        });
        plugin->enumerateDevices();
    }
    EXPECT_TRUE(plugin->prepareAcquisition());
}

TEST_F(OneCamera, LogsItsClosing) {
    open();
    const LogCapture log(UniLogSeverityLevel::Debug);
    plugin->terminate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Debug), ElementsAre("Camera " + kName + " closed."));
}

TEST_F(OneCamera, LogsThatItCannotBeClosed) {
    open();
    VmbSimFailCall("VmbCameraClose", nullptr, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Error);
    plugin->terminate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre("Cannot close camera " + kName));
}

}  // namespace
