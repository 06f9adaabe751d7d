// Calls that must not return while a callback of theirs runs.
#include "simulator_fixture.h"

namespace {

using test_support::Door;
using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kSystem;
using test_support::run;
using test_support::setInt;
using test_support::Stream;
using test_support::StreamTest;

/// Long enough for a call that does not wait to return.
void yieldALot() {
    for (int turn = 0; turn < 20'000; ++turn) std::this_thread::yield();
}

struct Waiting {
    const char* name;
    std::function<void(VmbHandle_t, VmbFrame_t&)> call;
};

void PrintTo(const Waiting& waiting, std::ostream* out) {
    *out << waiting.name;
}

class WaitsForFrameCallback : public StreamTest, public ::testing::WithParamInterface<Waiting> {};

TEST_P(WaitsForFrameCallback, OfTheCamera) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    Door entered;
    Door release;
    std::atomic<bool> returned{false};
    std::atomic<bool> early{false};
    VmbFrame_t* running = nullptr;
    stream.hook = [&](VmbFrame_t& frame) {
        if (entered.isOpen()) return;
        running = &frame;
        entered.open();
        release.wait();
        yieldALot();
        early = returned.load();
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    entered.wait();
    std::thread caller([&] {
        release.open();
        GetParam().call(camera, *running);
        returned = true;
    });
    caller.join();
    // Lets a callback that was not waited for come to its end, too.
    VmbShutdown();
    EXPECT_FALSE(early);
}

INSTANTIATE_TEST_SUITE_P(
    Every, WaitsForFrameCallback,
    ::testing::Values(
        Waiting{"CaptureEnd", [](VmbHandle_t h, VmbFrame_t&) { EXPECT_EQ(VmbCaptureEnd(h), 0); }},
        Waiting{"FrameRevokeAll", [](VmbHandle_t h, VmbFrame_t&) { EXPECT_EQ(VmbFrameRevokeAll(h), 0); }},
        Waiting{"FrameRevoke", [](VmbHandle_t h, VmbFrame_t& f) { EXPECT_EQ(VmbFrameRevoke(h, &f), 0); }},
        Waiting{"CameraClose", [](VmbHandle_t h, VmbFrame_t&) { EXPECT_EQ(VmbCameraClose(h), 0); }},
        Waiting{"Shutdown", [](VmbHandle_t, VmbFrame_t&) { VmbShutdown(); }},
        Waiting{"CaptureEndOfACameraThatIsGone",
                [](VmbHandle_t h, VmbFrame_t&) {
                    VmbSimUnplugCamera(kColourCamera);
                    EXPECT_EQ(VmbCaptureEnd(h), VmbErrorBadHandle);
                }},
        Waiting{"FlushOfACameraThatIsGone",
                [](VmbHandle_t h, VmbFrame_t&) {
                    VmbSimUnplugCamera(kColourCamera);
                    EXPECT_EQ(VmbCaptureQueueFlush(h), VmbErrorBadHandle);
                }},
        Waiting{"FrameRevokeAllOfACameraThatIsGone",
                [](VmbHandle_t h, VmbFrame_t&) {
                    VmbSimUnplugCamera(kColourCamera);
                    EXPECT_EQ(VmbFrameRevokeAll(h), VmbErrorBadHandle);
                }},
        Waiting{"CloseOfACameraThatIsGone",
                [](VmbHandle_t h, VmbFrame_t&) {
                    VmbSimUnplugCamera(kColourCamera);
                    EXPECT_EQ(VmbCameraClose(h), VmbErrorBadHandle);
                }}),
    [](const auto& tested) { return std::string(tested.param.name); });

class WaitsForEventCallback : public StreamTest, public ::testing::WithParamInterface<Waiting> {};

TEST_P(WaitsForEventCallback, OfTheCamera) {
    const VmbHandle_t camera = open();
    Invalidations notes;
    Door entered;
    Door release;
    std::atomic<bool> returned{false};
    std::atomic<bool> early{false};
    notes.hook = [&](VmbHandle_t, const char*) {
        entered.open();
        release.wait();
        yieldALot();
        early = returned.load();
    };
    notes.registerOn(camera, "Width");
    setInt(camera, "Width", 320);
    entered.wait();
    VmbFrame_t none{};
    std::thread caller([&] {
        release.open();
        GetParam().call(camera, none);
        returned = true;
    });
    caller.join();
    // Lets a callback that was not waited for come to its end, too.
    VmbShutdown();
    EXPECT_FALSE(early);
}

INSTANTIATE_TEST_SUITE_P(
    Every, WaitsForEventCallback,
    ::testing::Values(Waiting{"Unregister",
                              [](VmbHandle_t h, VmbFrame_t&) {
                                  EXPECT_EQ(VmbFeatureInvalidationUnregister(h, "Width", &Invalidations::on),
                                            0);
                              }},
                      Waiting{"CameraClose",
                              [](VmbHandle_t h, VmbFrame_t&) { EXPECT_EQ(VmbCameraClose(h), 0); }},
                      Waiting{"Shutdown", [](VmbHandle_t, VmbFrame_t&) { VmbShutdown(); }},
                      Waiting{"UnregisterOfACameraThatIsGone",
                              [](VmbHandle_t h, VmbFrame_t&) {
                                  VmbSimUnplugCamera(kColourCamera);
                                  EXPECT_EQ(VmbFeatureInvalidationUnregister(h, "Width", &Invalidations::on),
                                            VmbErrorBadHandle);
                              }}),
    [](const auto& tested) { return std::string(tested.param.name); });

/// Calls from a frame callback, where waiting would never end.
class InFrameCallback : public StreamTest {
  protected:
    /// Runs `body` in the first frame callback and waits for the second.
    void inCallback(const std::function<void(VmbHandle_t, VmbFrame_t&)>& body) {
        Stream stream(camera);
        std::atomic<bool> done{false};
        stream.hook = [&](VmbFrame_t& frame) {
            if (!done.exchange(true)) body(camera, frame);
            through.open();
        };
        stream.startCapture();
        run(camera, "AcquisitionStart");
        through.wait();
        VmbCaptureEnd(camera);
        VmbFrameRevokeAll(camera);
    }
    VmbHandle_t camera = openFast();
    Door through;
};

TEST_F(InFrameCallback, FeaturesAreReadButNotSet) {
    inCallback([](VmbHandle_t h, VmbFrame_t&) {
        EXPECT_EQ(test_support::intOf(h, "Width"), 656);
        EXPECT_EQ(VmbFeatureIntSet(h, "Width", 656), VmbErrorInvalidCall);
        EXPECT_EQ(VmbFeatureFloatSet(h, "Gain", -1), VmbErrorInvalidCall);
        EXPECT_EQ(VmbFeatureEnumSet(h, "GainAuto", "Off"), VmbErrorInvalidCall);
        EXPECT_EQ(VmbFeatureBoolSet(h, "StreamFrameRateConstrain", true), VmbErrorInvalidCall);
        EXPECT_EQ(VmbFeatureIntSet(kSystem, "GeVDiscoveryAllDuration", 1), VmbErrorInvalidCall);
        EXPECT_EQ(VmbFeatureIntSet(h, "?", 1), VmbErrorNotFound);
        EXPECT_EQ(VmbFeatureIntSet(h, "Gain", 1), VmbErrorWrongType);
    });
}

TEST_F(InFrameCallback, CamerasAreNeitherOpenedNorClosed) {
    inCallback([](VmbHandle_t h, VmbFrame_t&) {
        VmbHandle_t other = nullptr;
        EXPECT_EQ(VmbCameraOpen(kMonochromeCamera, VmbAccessModeFull, &other), VmbErrorInvalidCall);
        EXPECT_EQ(VmbCameraClose(h), VmbErrorInvalidCall);
        VmbShutdown();
        EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
        EXPECT_EQ(test_support::intOf(h, "Width"), 656);
    });
}

TEST_F(InFrameCallback, CommandsRunAndCaptureEndsWithoutWaiting) {
    inCallback([](VmbHandle_t h, VmbFrame_t&) {
        run(h, "AcquisitionStop");
        EXPECT_EQ(VmbCaptureEnd(h), VmbErrorSuccess);
        EXPECT_EQ(VmbCaptureQueueFlush(h), VmbErrorSuccess);
    });
}

TEST_F(InFrameCallback, TheFrameItselfCanBeRevokedAndThenNotQueued) {
    inCallback([](VmbHandle_t h, VmbFrame_t& frame) {
        EXPECT_EQ(VmbFrameRevoke(h, &frame), VmbErrorSuccess);
        EXPECT_EQ(VmbCaptureFrameQueue(h, &frame, nullptr), VmbErrorBadHandle);
        EXPECT_EQ(counts().first, 4u);
    });
}

TEST_F(InFrameCallback, EventsCanBeUnregistered) {
    Invalidations notes;
    notes.registerOn(camera, "Width");
    inCallback([](VmbHandle_t h, VmbFrame_t&) {
        EXPECT_EQ(VmbFeatureInvalidationUnregister(h, "Width", &Invalidations::on), VmbErrorSuccess);
    });
}

TEST_F(StreamTest, AFrameThatIsQueuedAgainWhileCaptureEndsIsNotLeftBehind) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera);
    Door entered;
    Door release;
    stream.hook = [&](VmbFrame_t&) {
        entered.open();
        release.wait();
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    entered.wait();
    std::thread opener([&] { release.open(); });
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorSuccess);
    opener.join();
    EXPECT_EQ(counts(), std::make_pair(5u, 0u));
    VmbFrameRevokeAll(camera);
}

}  // namespace
