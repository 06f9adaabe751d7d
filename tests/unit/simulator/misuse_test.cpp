// What no client should do is recorded.
#include "far_pages.h"
#include "virtual_fixture.h"

namespace {

using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSystem;
using test_support::run;
using test_support::setFloat;
using test_support::Simulator;
using test_support::Stream;

const std::string kCamera = "DEV_000F31A10001";

class Misuse : public test_support::VirtualTimeTest {
  protected:
    static std::string taken() {
        const std::string text = Simulator::misuses();
        VmbSimClearMisuse();
        return text;
    }
    /// One frame's worth of time, with the hook run in its callback.
    static void inFrameCallback(VmbHandle_t camera, const std::function<void()>& body) {
        Stream stream(camera, 1);
        stream.requeue = false;
        stream.hook = [&](VmbFrame_t&) { body(); };
        stream.startCapture();
        run(camera, "AcquisitionStart");
        advance(15 * kMillisecond);
        stream.endCapture();
    }
};

TEST_F(Misuse, AProperClientLeavesNone) {
    run(kSystem, "GeVDiscoveryAllOnce");
    const VmbHandle_t camera = openFast();
    Invalidations seen;
    seen.registerOn(camera, "Gain");
    setFloat(camera, "Gain", 1);
    Stream stream(camera);
    for (int round = 0; round < 2; ++round) {
        stream.startCapture();
        run(camera, "AcquisitionStart");
        advance(50 * kMillisecond);
        stream.endCapture();
    }
    EXPECT_EQ(VmbFeatureInvalidationUnregister(camera, "Gain", &Invalidations::on), VmbErrorSuccess);
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess);
    EXPECT_EQ(taken(), "");
}

TEST_F(Misuse, ACallAfterClose) {
    const VmbHandle_t camera = openFast();
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess);
    double gain = 0;
    EXPECT_EQ(VmbFeatureFloatGet(camera, "Gain", &gain), VmbErrorBadHandle);
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorBadHandle);
    EXPECT_EQ(taken(),
              "[host] VmbFeatureFloatGet(bad handle, \"Gain\"): misuse: the handle was closed before\n"
              "[host] VmbCaptureStart(bad handle): misuse: the handle was closed before\n");
}

TEST_F(Misuse, ANumberThatNeverWasAHandleIsNone) {
    int object = 0;
    EXPECT_EQ(VmbCaptureStart(&object), VmbErrorBadHandle);
    EXPECT_EQ(VmbCaptureStart(nullptr), VmbErrorBadHandle);
    EXPECT_EQ(taken(), "");
}

TEST_F(Misuse, ACameraThatWasUnpluggedIsNone) {
    const VmbHandle_t camera = openFast();
    EXPECT_EQ(VmbSimUnplugCamera(kColourCamera), VmbErrorSuccess);
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorBadHandle);
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorBadHandle);
    EXPECT_EQ(taken(), "");
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorBadHandle);
    EXPECT_EQ(taken(), "[host] VmbCameraClose(bad handle): misuse: the handle was closed before\n");
}

TEST_F(Misuse, ACallWithoutStartup) {
    VmbShutdown();
    EXPECT_EQ(VmbCaptureStart(kSystem), VmbErrorApiNotStarted);
    EXPECT_EQ(taken(), "[host] VmbCaptureStart(system): misuse: the library is not started\n");
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
}

TEST_F(Misuse, AFrameQueuedTwice) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 1);
    stream.startCapture();
    EXPECT_EQ(stream.queue(0), VmbErrorInvalidCall);
    EXPECT_EQ(taken(),
              "[host] VmbCaptureFrameQueue(" + kCamera + ", frame 1): misuse: the frame is queued already\n");
    stream.endCapture();
}

TEST_F(Misuse, AFrameAnnouncedTwice) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 1);
    stream.announceAll();
    EXPECT_EQ(VmbFrameAnnounce(camera, stream.frames.data(), sizeof(VmbFrame_t)), VmbErrorBadParameter);
    EXPECT_EQ(taken(), "[host] VmbFrameAnnounce(" + kCamera +
                           ", frame 1, 104): misuse: the frame was announced already\n");
    stream.endCapture();
}

TEST_F(Misuse, QueuedFramesRevoked) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 2);
    stream.startCapture();
    EXPECT_EQ(VmbFrameRevoke(camera, stream.frames.data()), VmbErrorSuccess);
    EXPECT_EQ(VmbFrameRevokeAll(camera), VmbErrorSuccess);
    EXPECT_EQ(taken(), "[host] VmbFrameRevoke(" + kCamera +
                           ", unknown frame): misuse: the frame was still queued\n"
                           "[host] VmbFrameRevokeAll(" +
                           kCamera + "): misuse: frames were still queued\n");
    stream.endCapture();
}

class FreedMemory : public Misuse {
  protected:
    static constexpr std::size_t kSize = 64 * 16;

    FreedMemory() {
        frame.buffer = memory.get();
        frame.bufferSize = kSize;
        EXPECT_EQ(VmbFrameAnnounce(camera, &frame, sizeof frame), VmbErrorSuccess);
    }

    const VmbHandle_t camera = openFast();
    test_support::FarPages memory{kSize};
    VmbFrame_t frame{};
};

TEST_F(FreedMemory, IsSeenWhenThePictureIsDue) {
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    EXPECT_EQ(VmbCaptureFrameQueue(camera, &frame, nullptr), VmbErrorSuccess);
    memory.release();
    run(camera, "AcquisitionStart");
    advance(15 * kMillisecond);
    EXPECT_EQ(taken(),
              "[frame] " + kCamera + ": misuse: the memory of an announced or queued frame is gone\n");
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorSuccess);
}

TEST_F(FreedMemory, IsSeenWhenTheFrameIsRevoked) {
    memory.release();
    EXPECT_EQ(VmbFrameRevoke(camera, &frame), VmbErrorSuccess);
    EXPECT_EQ(taken(), "[host] VmbFrameRevoke(" + kCamera +
                           ", unknown frame): misuse: the memory of an announced or queued frame is gone\n");
}

TEST_F(FreedMemory, IsSeenWhenAllFramesAreRevoked) {
    memory.release();
    EXPECT_EQ(VmbFrameRevokeAll(camera), VmbErrorSuccess);
    EXPECT_EQ(taken(), "[host] VmbFrameRevokeAll(" + kCamera +
                           "): misuse: the memory of an announced or queued frame is gone\n");
}

TEST_F(FreedMemory, IsSeenWhenTheCameraIsClosed) {
    memory.release();
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess);
    EXPECT_EQ(taken(),
              "[host] VmbCameraClose(bad handle): misuse: the memory of an announced or queued frame "
              "is gone\n");
}

TEST_F(Misuse, ACallbackRegisteredTwice) {
    const VmbHandle_t camera = openFast();
    Invalidations seen;
    seen.registerOn(camera, "Gain");
    seen.registerOn(camera, "Gain");
    EXPECT_EQ(taken(), "[host] VmbFeatureInvalidationRegister(" + kCamera +
                           ", \"Gain\"): misuse: the callback was registered already\n");
}

TEST_F(Misuse, ASetInAFrameCallback) {
    const VmbHandle_t camera = openFast();
    inFrameCallback(camera, [=] { EXPECT_EQ(VmbFeatureFloatSet(camera, "Gain", 3), VmbErrorInvalidCall); });
    EXPECT_EQ(taken(),
              "[frame] VmbFeatureFloatSet(" + kCamera + ", \"Gain\", 3): misuse: a set inside a callback\n");
}

TEST_F(Misuse, ASetOfTheInvalidatedFeatureInItsCallback) {
    const VmbHandle_t camera = openFast();
    Invalidations seen;
    seen.hook = [=](VmbHandle_t, const char*) {
        EXPECT_EQ(VmbFeatureFloatSet(camera, "Gain", 3), VmbErrorInvalidCall);
    };
    seen.registerOn(camera, "Gain");
    setFloat(camera, "Gain", 1);
    advance(0);
    EXPECT_EQ(taken(),
              "[event] VmbFeatureFloatSet(" + kCamera + ", \"Gain\", 3): misuse: a set inside a callback\n");
}

TEST_F(Misuse, ASetInACallbackThatIsAccepted) {
    const VmbHandle_t camera = openFast();
    EXPECT_EQ(VmbSimChoose(VmbSimChoiceSetInCallback, 2), VmbErrorSuccess);
    inFrameCallback(camera, [=] { EXPECT_EQ(VmbFeatureFloatSet(camera, "Gain", 3), VmbErrorSuccess); });
    EXPECT_EQ(taken(),
              "[frame] VmbFeatureFloatSet(" + kCamera + ", \"Gain\", 3): misuse: a set inside a callback\n");
}

TEST_F(Misuse, OfHandlesIsToldByWhatTheyWere) {
    VmbHandle_t handle = nullptr;
    ASSERT_EQ(VmbInterfaceOpen("SimulatedNetwork0", &handle), VmbErrorSuccess);
    EXPECT_EQ(VmbCaptureStart(handle), VmbErrorBadHandle);
    EXPECT_EQ(taken(), "");
    EXPECT_EQ(VmbInterfaceClose(handle), VmbErrorSuccess);
    EXPECT_EQ(VmbInterfaceClose(handle), VmbErrorBadHandle);
    EXPECT_EQ(VmbAncillaryDataClose(handle), VmbErrorBadHandle);
    const std::string why = "(bad handle): misuse: the handle was closed before\n";
    EXPECT_EQ(taken(), "[host] VmbInterfaceClose" + why + "[host] VmbAncillaryDataClose" + why);
}

TEST_F(Misuse, AWaitInsideACallback) {
    const VmbHandle_t camera = openFast();
    const VmbHandle_t other = open(kMonochromeCamera);
    VmbFrame_t frame{};
    inFrameCallback(camera, [&] {
        EXPECT_EQ(VmbCaptureEnd(other), VmbErrorSuccess);
        EXPECT_EQ(VmbCaptureFrameWait(camera, &frame, 0), VmbErrorInvalidCall);
        EXPECT_EQ(VmbCameraClose(other), VmbErrorInvalidCall);
        VmbShutdown();
        run(kSystem, "GeVDiscoveryAllOnce");
    });
    const std::string why = ": misuse: a wait inside a callback\n";
    EXPECT_EQ(taken(), "[frame] VmbCaptureEnd(DEV_000F31A10002)" + why +  //
                           "[frame] VmbCaptureFrameWait(" + kCamera + ", unknown frame, 0)" + why +
                           "[frame] VmbCameraClose(DEV_000F31A10002)" + why + "[frame] VmbShutdown()" + why +
                           "[frame] VmbFeatureCommandRun(system, \"GeVDiscoveryAllOnce\")" + why);
}

TEST_F(Misuse, IsAlsoInTheJournalBehindItsCall) {
    const VmbHandle_t camera = openFast();
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess);
    VmbSimJournalStart();
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorBadHandle);
    std::string text(VmbSimJournalText(nullptr, 0), '\0');
    VmbSimJournalText(text.data(), text.size());
    EXPECT_STREQ(text.c_str(),
                 "[host] VmbCaptureEnd(bad handle) = -4\n"
                 "[host] VmbCaptureEnd(bad handle): misuse: the handle was closed before\n");
}

TEST_F(Misuse, IsForgottenWithTheScenario) {
    VmbShutdown();
    EXPECT_EQ(VmbCaptureStart(kSystem), VmbErrorApiNotStarted);
    EXPECT_EQ(VmbSimUseVirtualTime(true), VmbErrorSuccess);
    EXPECT_EQ(taken(), "");
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
}

}  // namespace
