/// An open camera in Mono8 with a recording callback, ready for capture.
#pragma once

#include <utility>

#include "vmb_api_fixture.h"

namespace test_support {

class Capture : public VmbApiTest {
  protected:
    Capture() : camera(open()) {
        api.setPixelFormat(camera, "Mono8");
        api.registerCameraCallback(camera, &callback);
    }

    static std::uint32_t announced() { return counts().first; }
    static std::uint32_t queued() { return counts().second; }
    static std::pair<std::uint32_t, std::uint32_t> counts() {
        std::uint32_t announcedFrames = 0;
        std::uint32_t queuedFrames = 0;
        VmbSimFrameCounts(kColourCamera, &announcedFrames, &queuedFrames);
        return {announcedFrames, queuedFrames};
    }
    void waitForFrames(std::uint64_t count) {
        ASSERT_EQ(VmbSimWaitForFrames(kColourCamera, count, kPatienceMs), VmbErrorSuccess);
    }

    zelt_gige_api::CameraHandle camera;
    RecordingCamera callback;
};

}  // namespace test_support
