// Notice of changed features.
#include "simulator_fixture.h"

namespace {

using test_support::Door;
using test_support::intOf;
using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kPatienceMs;
using test_support::kSystem;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::SimulatorTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Invalidation : public SimulatorTest {
  protected:
    ~Invalidation() override { VmbShutdown(); }
    std::vector<std::string> heard() {
        EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
        const std::vector<std::string> names = notes.names();
        notes.clear();
        return names;
    }
    Invalidations notes;
    VmbHandle_t camera = open();
};

TEST_F(Invalidation, ASetGivesOneCallAlsoForTheSameValue) {
    notes.registerOn(camera, "Height");
    setInt(camera, "Height", 240);
    EXPECT_THAT(heard(), ElementsAre("Height"));
    setInt(camera, "Height", 240);
    EXPECT_THAT(heard(), ElementsAre("Height"));
    EXPECT_EQ(VmbFeatureIntSet(camera, "Height", -1), VmbErrorInvalidValue);
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(Invalidation, AffectedFeaturesFollowTheirCause) {
    for (const char* name : {"PayloadSize", "Width", "OffsetX", "Height", "AcquisitionFrameRateLimit"}) {
        notes.registerOn(camera, name);
    }
    setInt(camera, "Width", 320);
    EXPECT_THAT(heard(), ElementsAre("Width", "OffsetX", "PayloadSize", "AcquisitionFrameRateLimit"));
    setEnum(camera, "PixelFormat", "Mono8");
    EXPECT_THAT(heard(), ElementsAre("PayloadSize", "AcquisitionFrameRateLimit"));
    setFloat(camera, "ExposureTimeAbs", 20'000);
    EXPECT_THAT(heard(), ElementsAre("AcquisitionFrameRateLimit"));
    setInt(camera, "StreamBytesPerSecond", 2'000'000);
    EXPECT_THAT(heard(), ElementsAre("AcquisitionFrameRateLimit"));
    test_support::run(camera, "GVSPAdjustPacketSize");
    EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(Invalidation, ComesOnTheCamerasEventThread) {
    notes.hook = [](VmbHandle_t handle, const char*) { intOf(handle, "Width"); };
    notes.registerOn(camera, "Width");
    VmbSimJournalStart();
    setInt(camera, "Width", 320);
    heard();
    EXPECT_THAT(test_support::Simulator::journal("event"),
                ElementsAre(std::string("VmbFeatureIntGet(") + kColourCamera + ", \"Width\") = 0, 320"));
}

TEST_F(Invalidation, RegisteringAgainReplacesTheContext) {
    Invalidations other;
    notes.registerOn(camera, "Width");
    other.registerOn(camera, "Width");
    setInt(camera, "Width", 320);
    EXPECT_THAT(heard(), IsEmpty());
    EXPECT_THAT(other.names(), ElementsAre("Width"));
    EXPECT_EQ(VmbFeatureInvalidationUnregister(camera, "Width", &Invalidations::on), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureInvalidationUnregister(camera, "Width", &Invalidations::on), VmbErrorNotFound);
    setInt(camera, "Width", 328);
    EXPECT_THAT(heard(), IsEmpty());
    EXPECT_EQ(other.names().size(), 1u);
}

TEST_F(Invalidation, DifferentCallbacksOfAFeatureAreAllCalled) {
    static std::atomic<int> calls;
    calls = 0;
    const auto second = [](const VmbHandle_t, const char*, void*) { ++calls; };
    notes.registerOn(camera, "Width");
    EXPECT_EQ(VmbFeatureInvalidationRegister(camera, "Width", second, nullptr), VmbErrorSuccess);
    setInt(camera, "Width", 320);
    EXPECT_THAT(heard(), ElementsAre("Width"));
    EXPECT_EQ(calls, 1);
}

TEST_F(Invalidation, ARegistrationThatAnEarlierCallbackTookAwayIsNotCalled) {
    static std::atomic<int> calls;
    calls = 0;
    static constexpr auto second = [](const VmbHandle_t, const char*, void*) { ++calls; };
    notes.hook = [](VmbHandle_t handle, const char* name) {
        EXPECT_EQ(VmbFeatureInvalidationUnregister(handle, name, second), VmbErrorSuccess);
    };
    notes.registerOn(camera, "Width");
    EXPECT_EQ(VmbFeatureInvalidationRegister(camera, "Width", second, nullptr), VmbErrorSuccess);
    setInt(camera, "Width", 320);
    EXPECT_THAT(heard(), ElementsAre("Width"));
    EXPECT_EQ(calls, 0);
}

TEST_F(Invalidation, InItsCallbackTheFeatureItselfCannotBeSet) {
    VmbError_t own = 1;
    VmbError_t other = 1;
    VmbError_t command = 1;
    VmbInt64_t value = 0;
    notes.hook = [&](VmbHandle_t handle, const char*) {
        own = VmbFeatureIntSet(handle, "Width", 328);
        other = VmbFeatureIntSet(handle, "Height", 240);
        command = VmbFeatureCommandRun(handle, "GevTimestampControlLatch");
        value = intOf(handle, "Width");
    };
    notes.registerOn(camera, "Width");
    setInt(camera, "Width", 320);
    heard();
    EXPECT_EQ(own, VmbErrorInvalidCall);
    EXPECT_EQ(other, VmbErrorSuccess);
    EXPECT_EQ(command, VmbErrorSuccess);
    EXPECT_EQ(value, 320);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 328), VmbErrorSuccess);
    heard();
}

TEST_F(Invalidation, UnregisteringFromTheOwnCallbackDoesNotWait) {
    VmbError_t result = 1;
    notes.hook = [&](VmbHandle_t handle, const char* name) {
        result = VmbFeatureInvalidationUnregister(handle, name, &Invalidations::on);
    };
    notes.registerOn(camera, "Width");
    setInt(camera, "Width", 320);
    setInt(camera, "Width", 328);
    EXPECT_THAT(heard(), ElementsAre("Width"));
    EXPECT_EQ(result, VmbErrorSuccess);
}

TEST_F(Invalidation, ClosingFromTheCamerasOwnCallbackIsRefused) {
    VmbError_t closed = 1;
    VmbError_t opened = 1;
    notes.hook = [&](VmbHandle_t handle, const char*) {
        closed = VmbCameraClose(handle);
        VmbHandle_t other = nullptr;
        opened = VmbCameraOpen(test_support::kMonochromeCamera, VmbAccessModeFull, &other);
        VmbShutdown();
    };
    notes.registerOn(camera, "Width");
    setInt(camera, "Width", 320);
    heard();
    EXPECT_EQ(closed, VmbErrorInvalidCall);
    EXPECT_EQ(opened, VmbErrorSuccess);
    EXPECT_EQ(intOf(camera, "Width"), 320);
}

TEST_F(Invalidation, ADiscoveryCallbackMayCloseACamera) {
    VmbError_t closed = 1;
    notes.hook = [&](VmbHandle_t, const char*) { closed = VmbCameraClose(camera); };
    notes.registerOn(kSystem, "DiscoveryCameraEvent");
    VmbSimRaiseDiscoveryEvent("Missing", kColourCamera);
    heard();
    EXPECT_EQ(closed, VmbErrorSuccess);
}

TEST_F(Invalidation, WaitingForEventsInACallbackIsRefused) {
    VmbError_t waited = 1;
    notes.hook = [&](VmbHandle_t, const char*) { waited = VmbSimWaitForEvents(kPatienceMs); };
    notes.registerOn(camera, "Width");
    setInt(camera, "Width", 320);
    heard();
    EXPECT_EQ(waited, VmbErrorInvalidCall);
}

TEST_F(Invalidation, WaitingForEventsEndsInTime) {
    Door release;
    notes.hook = [&](VmbHandle_t, const char*) { release.wait(); };
    notes.registerOn(camera, "Width");
    setInt(camera, "Width", 320);
    EXPECT_EQ(VmbSimWaitForEvents(20), VmbErrorTimeout);
    release.open();
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
}

TEST_F(Invalidation, RegistrationsEndWithTheHandle) {
    notes.registerOn(camera, "Width");
    VmbCameraClose(camera);
    camera = open();
    setInt(camera, "Width", 320);
    EXPECT_THAT(heard(), IsEmpty());
}

}  // namespace
