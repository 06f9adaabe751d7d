// Frame buffers, capture, acquisition events.
#include "capture_fixture.h"
#include "throwing_log.h"

namespace {

using test_support::AssertionCapture;
using test_support::CameraCall;
using test_support::Capture;
using test_support::kColourCamera;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::Simulator;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using zelt_gige_api::CameraApiError;
using zelt_gige_api::UnsupportedFeature;

const std::string kColourId = kColourCamera;

/// The vendor calls of a startCapture with two frames.
std::vector<std::string> startCalls() {
    return {"VmbFeatureCommandRun(" + kColourId + ", \"GVSPAdjustPacketSize\") = 0",
            "VmbFeatureEnumSet(" + kColourId + ", \"EventSelector\", \"AcquisitionStart\") = 0",
            "VmbFeatureEnumSet(" + kColourId + ", \"EventNotification\", \"On\") = 0",
            "VmbFeatureEnumSet(" + kColourId + ", \"EventSelector\", \"AcquisitionEnd\") = 0",
            "VmbFeatureEnumSet(" + kColourId + ", \"EventNotification\", \"On\") = 0",
            "VmbFeatureInvalidationRegister(" + kColourId + ", \"EventAcquisitionStart\") = 0",
            "VmbFeatureInvalidationRegister(" + kColourId + ", \"EventAcquisitionEnd\") = 0",
            "VmbFeatureIntGet(" + kColourId + ", \"PayloadSize\") = 0, 322752",
            "VmbFrameAnnounce(" + kColourId + ", frame 1, 104) = 0",
            "VmbFrameAnnounce(" + kColourId + ", frame 2, 104) = 0",
            "VmbCaptureStart(" + kColourId + ") = 0",
            "VmbCaptureFrameQueue(" + kColourId + ", frame 1) = 0",
            "VmbCaptureFrameQueue(" + kColourId + ", frame 2) = 0"};
}

TEST_F(Capture, StartsInTheFixedOrder) {
    VmbSimJournalStart();
    api.startCapture(camera, 2);
    EXPECT_THAT(Simulator::journal(), ElementsAreArray(startCalls()));
    EXPECT_EQ(pages.held, 2);
    EXPECT_THAT(pages.sizes, ElementsAre(656u * 492u));
    EXPECT_EQ(queued(), 2u);
    api.endCapture(camera);
}

TEST_F(Capture, EndsInTheFixedOrder) {
    api.startCapture(camera, 5);
    VmbSimJournalStart();
    api.endCapture(camera);
    EXPECT_THAT(
        Simulator::journal(),
        ElementsAre("VmbCaptureEnd(" + kColourId + ") = 0", "VmbCaptureQueueFlush(" + kColourId + ") = 0",
                    "VmbFrameRevokeAll(" + kColourId + ") = 0",
                    "VmbFeatureInvalidationUnregister(" + kColourId + ", \"EventAcquisitionStart\") = 0",
                    "VmbFeatureInvalidationUnregister(" + kColourId + ", \"EventAcquisitionEnd\") = 0"));
    EXPECT_EQ(pages.held, 0);
    EXPECT_EQ(announced(), 0u);
}

struct StartFailure {
    const char* function;
    const char* argument;  ///< null for any
    int nth;
    const char* message;
    bool handlersStay;
};

class FailingStart : public Capture, public ::testing::WithParamInterface<StartFailure> {};

TEST_P(FailingStart, ThrowsItsMessageAndLeavesNoBuffer) {
    const StartFailure& failure = GetParam();
    VmbSimFailCall(failure.function, failure.argument, failure.nth, VmbErrorOther);
    std::int32_t code = 0;
    EXPECT_EQ(messageOf([&] { api.startCapture(camera, 3); }, &code), failure.message);
    EXPECT_EQ(code, -13);
    EXPECT_EQ(pages.held, 0);
    EXPECT_EQ(announced(), 0u);
    EXPECT_EQ(queued(), 0u);
    // Handlers stay until endCapture: what was registered can be unregistered now.
    VmbSimJournalStart();
    api.endCapture(camera);
    const std::string start =
        "VmbFeatureInvalidationUnregister(" + kColourId + ", \"EventAcquisitionStart\") = ";
    EXPECT_THAT(Simulator::journal(), Contains(start + (failure.handlersStay ? "0" : "-3")));
    api.startCapture(camera, 3);
    EXPECT_EQ(pages.held, 3);
    api.endCapture(camera);
}

INSTANTIATE_TEST_SUITE_P(
    AtEachCall, FailingStart,
    ::testing::Values(
        StartFailure{"VmbFeatureCommandRun", "GVSPAdjustPacketSize", 1,
                     "The feature 'GVSPAdjustPacketSize' is not supported", false},
        StartFailure{"VmbFeatureEnumSet", "EventSelector", 1, "The feature 'EventSelector' is not supported",
                     false},
        StartFailure{"VmbFeatureEnumSet", "EventNotification", 1,
                     "The feature 'EventNotification' is not supported", false},
        StartFailure{"VmbFeatureEnumSet", "EventSelector", 2, "The feature 'EventSelector' is not supported",
                     false},
        StartFailure{"VmbFeatureEnumSet", "EventNotification", 2,
                     "The feature 'EventNotification' is not supported", false},
        StartFailure{"VmbFeatureInvalidationRegister", "EventAcquisitionStart", 1,
                     "Cannot register the start event handler: Other error", false},
        StartFailure{"VmbFeatureInvalidationRegister", "EventAcquisitionEnd", 1,
                     "Cannot register the end event handler: Other error", true},
        StartFailure{"VmbFeatureIntGet", "PayloadSize", 1, "The feature 'PayloadSize' is not supported",
                     true},
        StartFailure{"VmbFrameAnnounce", nullptr, 1, "Could not announce frame buffer: Other error", true},
        StartFailure{"VmbFrameAnnounce", nullptr, 2, "Could not announce frame buffer: Other error", true},
        StartFailure{"VmbFrameAnnounce", nullptr, 3, "Could not announce frame buffer: Other error", true},
        StartFailure{"VmbCaptureStart", nullptr, 1, "VmbCaptureStart failed: Other error", true}));

TEST_F(Capture, WithoutAFeatureItNeedsFailsBeforeAnyBufferExists) {
    VmbSimRemoveFeature(kColourCamera, "GVSPAdjustPacketSize");
    EXPECT_THROW(api.startCapture(camera, 5), UnsupportedFeature);
    EXPECT_THAT(pages.sizes, IsEmpty());
}

TEST_F(Capture, DoesNotLookAtTheResultsOfQueueing) {
    VmbSimFailCall("VmbCaptureFrameQueue", nullptr, 1, VmbErrorOther);
    api.startCapture(camera, 3);
    EXPECT_EQ(queued(), 2u);
    api.endCapture(camera);
}

TEST_F(Capture, FailsWithoutFrameMemoryAtEachFrameAndLeavesNone) {
    for (int frame = 0; frame < 3; ++frame) {
        pages.refuseAfter = frame;
        std::int32_t code = -1;
        EXPECT_EQ(messageOf([&] { api.startCapture(camera, 3); }, &code), "Could not allocate frame memory.");
        EXPECT_EQ(code, 0);
        EXPECT_EQ(pages.held, 0);
        EXPECT_EQ(announced(), 0u);
        pages.refuseAfter = -1;
        api.endCapture(camera);
    }
}

TEST_F(Capture, FailsWithAPayloadThatNoBufferCanHave) {
    for (const char* payload : {"0", "-1", "4294967296"}) {
        VmbSimForceFeature(kColourCamera, "PayloadSize", payload);
        EXPECT_EQ(messageOf([&] { api.startCapture(camera, 3); }), "Could not allocate frame memory.");
        EXPECT_EQ(pages.held, 0);
        api.endCapture(camera);
    }
}

TEST_F(Capture, LogsWhenTheCleanUpCannotRevoke) {
    misuses.reasons = {
        "the memory of an announced or queued frame is gone"};  // the frames could not be revoked
    const LogCapture log(UniLogSeverityLevel::Warning);
    VmbSimFailCall("VmbCaptureStart", nullptr, 1, VmbErrorOther);
    VmbSimFailCall("VmbFrameRevokeAll", nullptr, 1, VmbErrorTimeout);
    EXPECT_THROW(api.startCapture(camera, 3), CameraApiError);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                ElementsAre("Cannot deallocate buffers: Timeout during wait"));
    EXPECT_EQ(pages.held, 0);
    api.endCapture(camera);
}

TEST_F(Capture, EndGoesOnThroughEveryFailureAndLogsThree) {
    misuses.reasons = {
        "the memory of an announced or queued frame is gone"};  // the frames could not be revoked
    api.startCapture(camera, 5);
    for (const char* function : {"VmbCaptureEnd", "VmbCaptureQueueFlush", "VmbFrameRevokeAll"}) {
        VmbSimFailCall(function, nullptr, 1, VmbErrorOther);
    }
    VmbSimFailCall("VmbFeatureInvalidationUnregister", nullptr, 1, VmbErrorOther);
    const LogCapture log(UniLogSeverityLevel::Warning);
    VmbSimJournalStart();
    api.endCapture(camera);
    EXPECT_THAT(Simulator::calledFunctions(),
                ElementsAre("VmbCaptureEnd", "VmbCaptureQueueFlush", "VmbFrameRevokeAll",
                            "VmbFeatureInvalidationUnregister", "VmbFeatureInvalidationUnregister"));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                ElementsAre("Cannot end capture: Other error", "Cannot flush the capture queue: Other error",
                            "Cannot deallocate buffers: Other error"));
    EXPECT_EQ(pages.held, 0);
}

TEST_F(Capture, EndGoesOnWhenTheLogDoesNotTakeItsFailure) {
    api.startCapture(camera, 5);
    VmbSimFailCall("VmbCaptureEnd", nullptr, 1, VmbErrorOther);
    const test_support::ThrowingLog log("Cannot end capture");
    api.endCapture(camera);
    EXPECT_EQ(pages.held, 0);
}

class FailingEnd : public Capture,
                   public ::testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(FailingEnd, GoesOnAndLeavesNoBuffer) {
    if (std::string(GetParam().first) == "VmbFrameRevokeAll") {
        misuses.reasons = {"the memory of an announced or queued frame is gone"};
    }
    api.startCapture(camera, 5);
    api.acquisitionStart(camera);
    waitForFrames(2);
    VmbSimFailCall(GetParam().first, GetParam().second, 1, VmbErrorOther);
    VmbSimJournalStart();
    api.endCapture(camera);
    EXPECT_THAT(Simulator::calledFunctions(),
                ElementsAre("VmbCaptureEnd", "VmbCaptureQueueFlush", "VmbFrameRevokeAll",
                            "VmbFeatureInvalidationUnregister", "VmbFeatureInvalidationUnregister"));
    EXPECT_EQ(pages.held, 0);
}

INSTANTIATE_TEST_SUITE_P(
    AtEachCall, FailingEnd,
    ::testing::Values(std::pair{"VmbCaptureEnd", static_cast<const char*>(nullptr)},
                      std::pair{"VmbCaptureQueueFlush", static_cast<const char*>(nullptr)},
                      std::pair{"VmbFrameRevokeAll", static_cast<const char*>(nullptr)},
                      std::pair{"VmbFeatureInvalidationUnregister", "EventAcquisitionStart"},
                      std::pair{"VmbFeatureInvalidationUnregister", "EventAcquisitionEnd"}));

TEST_F(Capture, EndOfACameraThatIsGoneLogsAndReturns) {
    VmbSimUnplugCamera(kColourCamera);
    const LogCapture log(UniLogSeverityLevel::Warning);
    api.endCapture(camera);
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Warning),
        ElementsAre("Cannot end capture: Error code -4", "Cannot flush the capture queue: Error code -4",
                    "Cannot deallocate buffers: Error code -4"));
}

TEST_F(Capture, AHandlerThatWasNotUnregisteredIsNotRegisteredTwice) {
    for (const char* event : {"EventAcquisitionStart", "EventAcquisitionEnd"}) {
        api.startCapture(camera, 2);
        VmbSimFailCall("VmbFeatureInvalidationUnregister", event, 1, VmbErrorTimeout);
        api.endCapture(camera);
    }
    api.startCapture(camera, 2);
    VmbSimHoldings held{};
    VmbSimCountHoldings(&held);
    EXPECT_EQ(held.registrations, 2u);
    api.endCapture(camera);
    VmbSimCountHoldings(&held);
    EXPECT_EQ(held.registrations, 0u);
    EXPECT_EQ(Simulator::misuses(), "");
}

TEST_F(Capture, FramesThatWereNotRevokedAreInNobodysWay) {
    misuses.reasons = {"the memory of an announced or queued frame is gone"};
    for (int turn = 0; turn < 3; ++turn) {
        api.startCapture(camera, 2);
        VmbSimFailCall("VmbFrameRevokeAll", nullptr, 1, VmbErrorTimeout);
        api.endCapture(camera);
        EXPECT_EQ(pages.held, 0);
    }
    EXPECT_EQ(announced(), 6u);
    api.startCapture(camera, 2);
    api.endCapture(camera);
    EXPECT_EQ(announced(), 0u);
}

TEST_F(Capture, ASecondStartWithoutEndIsAProgrammingErrorAndLosesNoBuffer) {
    api.startCapture(camera, 5);
    const AssertionCapture assertions;
    api.startCapture(camera, 4);
    EXPECT_THAT(assertions.expressions(), ElementsAre("frames.empty()"));
    EXPECT_EQ(pages.held, 4);
    EXPECT_EQ(announced(), 4u);
    api.endCapture(camera);
    EXPECT_EQ(pages.held, 0);
}

TEST_F(Capture, DeliversCompleteFramesWithTheirRecord) {
    api.startCapture(camera, 5);
    api.acquisitionStart(camera);
    waitForFrames(7);
    api.endCapture(camera);
    const std::vector<CameraCall> frames = callback.calls("frame");
    ASSERT_GE(frames.size(), 7u);
    for (std::size_t at = 0; at < frames.size(); ++at) {
        EXPECT_EQ(frames[at].frameid, at + 1);
        EXPECT_TRUE(at == 0 || frames[at].timestamp > frames[at - 1].timestamp);
    }
    EXPECT_EQ(callback.lastFrame.width, 656u);
    EXPECT_EQ(callback.lastFrame.height, 492u);
    EXPECT_EQ(callback.lastFrame.imageSize, 656u * 492u);
}

TEST_F(Capture, QueuesAnIncompleteFrameAgainWithoutACallback) {
    api.startCapture(camera, 5);
    VmbSimBreakFrames(kColourCamera, 8, VmbFrameStatusIncomplete);
    api.acquisitionStart(camera);
    waitForFrames(10);
    api.endCapture(camera);
    ASSERT_FALSE(callback.calls("frame").empty());
    EXPECT_EQ(callback.calls("frame").front().frameid, 9u);
}

TEST_F(Capture, ACameraWithoutACallbackConsumesItsFrames) {
    api.unregisterCameraCallback(camera);
    api.startCapture(camera, 2);
    api.acquisitionStart(camera);
    waitForFrames(5);
    api.endCapture(camera);
    EXPECT_THAT(callback.calls("frame"), IsEmpty());
}

TEST_F(Capture, DeliversTheAcquisitionEventsWithTheirValues) {
    api.startCapture(camera, 5);
    api.acquisitionStart(camera);
    waitForFrames(2);
    api.acquisitionStop(camera);
    VmbSimWaitForEvents(kPatienceMs);
    const std::int64_t startTicks = api.getIntFeature(camera, "EventAcquisitionStartTimestamp");
    const std::int64_t startId = api.getIntFeature(camera, "EventAcquisitionStartFrameID");
    const std::int64_t endTicks = api.getIntFeature(camera, "EventAcquisitionEndTimestamp");
    const std::int64_t endId = api.getIntFeature(camera, "EventAcquisitionEndFrameID");
    api.endCapture(camera);
    ASSERT_EQ(callback.calls("started").size(), 1u);
    EXPECT_EQ(callback.calls("started")[0].timestamp, static_cast<std::uint64_t>(startTicks));
    EXPECT_EQ(callback.calls("started")[0].frameid, static_cast<std::uint64_t>(startId));
    EXPECT_EQ(startId, 1);
    ASSERT_EQ(callback.calls("ended").size(), 1u);
    EXPECT_EQ(callback.calls("ended")[0].timestamp, static_cast<std::uint64_t>(endTicks));
    EXPECT_EQ(callback.calls("ended")[0].frameid, static_cast<std::uint64_t>(endId));
}

TEST_F(Capture, EventStepsReadTheTimestampThenTheFrameId) {
    VmbSimForceFeature(kColourCamera, "EventAcquisitionEndTimestamp", "4711");
    VmbSimForceFeature(kColourCamera, "EventAcquisitionEndFrameID", "12");
    VmbSimJournalStart();
    api.handleCameraEvent(camera, "EventAcquisitionEnd");
    EXPECT_THAT(Simulator::journal(),
                ElementsAre("VmbFeatureIntGet(" + kColourId + ", \"EventAcquisitionEndTimestamp\") = 0, 4711",
                            "VmbFeatureIntGet(" + kColourId + ", \"EventAcquisitionEndFrameID\") = 0, 12"));
    ASSERT_EQ(callback.calls("ended").size(), 1u);
    EXPECT_EQ(callback.calls("ended")[0].timestamp, 4711u);
    EXPECT_EQ(callback.calls("ended")[0].frameid, 12u);
}

TEST_F(Capture, EventStepsIgnoreOtherNames) {
    VmbSimJournalStart();
    api.handleCameraEvent(camera, "EventAcquisitionStartTimestamp");
    api.handleCameraEvent(camera, "eventacquisitionstart");
    EXPECT_THAT(Simulator::journal(), IsEmpty());
    EXPECT_THAT(callback.calls("started"), IsEmpty());
}

TEST_F(Capture, EventStepsReadNothingForACameraWithoutACallback) {
    api.unregisterCameraCallback(camera);
    VmbSimJournalStart();
    api.handleCameraEvent(camera, "EventAcquisitionStart");
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

TEST_F(Capture, EventStepsCatchNothingAndReleaseTheCallback) {
    VmbSimFailCall("VmbFeatureIntGet", "EventAcquisitionStartFrameID", 1, VmbErrorOther);
    EXPECT_THROW(api.handleCameraEvent(camera, "EventAcquisitionStart"), UnsupportedFeature);
    api.unregisterCameraCallback(camera);
}

TEST_F(Capture, FrameStepsIgnoreANullRecord) {
    VmbSimJournalStart();
    zelt_gige_api::VimbaCameraApi::handleFrame(camera, nullptr);
    EXPECT_THAT(Simulator::journal(), IsEmpty());
}

}  // namespace
