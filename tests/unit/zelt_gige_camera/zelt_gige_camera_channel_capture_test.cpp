#include "zelt_gige_camera_channel_capture.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_camera_api.h"
#include "log_capture.h"

namespace {

using test_support::LogCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_api::CameraApiError;
using zelt_gige_camera::CameraCapture;

/// Captures, and fails to end if a test wants it to.
class CapturingCamera final : public test_support::FakeCameraApi {
  public:
    void startCapture(Handle, unsigned frames) override {
        calls.push_back("start " + std::to_string(frames));
    }
    void endCapture(Handle) override {
        calls.push_back("end");
        if (cannotEnd) throw CameraApiError("It goes on");
    }
    void runCommand(Handle, const char* name) override {
        calls.push_back(name);
        if (cannotAbort) throw CameraApiError("It refuses");
    }
    bool cannotEnd = false;
    bool cannotAbort = false;
};

class CaptureOfACamera : public ::testing::Test {
  protected:
    void start() {
        capture.claim(7, [this] { camera.calls.push_back("before restart"); });
        capture.start(7);
    }

    CapturingCamera camera;
    const std::string name = "Manta (7)";
    CameraCapture capture{camera, name};
    LogCapture log{UniLogSeverityLevel::Debug};
};

TEST_F(CaptureOfACamera, HasFiveBuffers) {
    start();
    EXPECT_THAT(camera.calls, ElementsAre("start 5"));
    EXPECT_TRUE(capture.isRunning());
}

TEST_F(CaptureOfACamera, IsEndedWhenItStops) {
    start();
    capture.stop(7);
    EXPECT_THAT(camera.calls, ElementsAre("start 5", "end"));
    EXPECT_FALSE(capture.isRunning());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Debug),
                ElementsAre("Camera Manta (7) stopping...", "Camera Manta (7) stopped successfully."));
}

TEST_F(CaptureOfACamera, ThatCannotBeEndedIsAnError) {
    camera.cannotEnd = true;
    start();
    capture.stop(7);
    EXPECT_FALSE(capture.isRunning());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre("Camera Manta (7) cannot be stopped."));
}

TEST_F(CaptureOfACamera, ThatDoesNotRunIsNotEnded) {
    capture.stop(7);
    EXPECT_THAT(camera.calls, IsEmpty());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Debug),
                ElementsAre("Camera Manta (7) stopping...", "Camera Manta (7) has not been started."));
}

TEST_F(CaptureOfACamera, ThatRunsIsAbortedAndEndedBeforeItStartsAfresh) {
    start();
    start();
    EXPECT_THAT(camera.calls, ElementsAre("start 5", "before restart", "AcquisitionAbort", "end", "start 5"));
    EXPECT_TRUE(capture.isRunning());
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                ElementsAre("Camera Manta (7) already starting, initiate restart..."));
}

TEST_F(CaptureOfACamera, ThatCannotBeAbortedIsEndedAllTheSame) {
    start();
    camera.cannotAbort = true;
    EXPECT_THROW(start(), CameraApiError);
    EXPECT_EQ(camera.calls.back(), "end");
    EXPECT_FALSE(capture.isRunning());
}

TEST_F(CaptureOfACamera, ThatCanNeitherBeAbortedNorEndedRunsNoMore) {
    start();
    camera.cannotAbort = camera.cannotEnd = true;
    EXPECT_THROW(start(), CameraApiError);
    EXPECT_FALSE(capture.isRunning());
}

}  // namespace
