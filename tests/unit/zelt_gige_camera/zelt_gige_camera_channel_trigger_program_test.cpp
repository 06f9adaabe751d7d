#include "zelt_gige_camera_channel_trigger_program.h"

#include "feature_fixture.h"

namespace {

using namespace zelt_gige_camera;
using test_support::FakeCameraApi;
using test_support::OnFakeCamera;
using zelt_gige_api::FeatureType;
using zelt_gige_api::UnsupportedFeature;

constexpr zelt_gige_api::CameraHandle kCamera = 7;

const std::vector<std::string> kAuxCalls{
    "setEnum TriggerSelector FrameStart",   "setEnum TriggerSource Line1",
    "setEnum TriggerActivation RisingEdge", "setFloat TriggerDelayAbs 0",
    "setEnum TriggerOverlap Off",           "setEnum TriggerMode On",
};
const std::vector<std::string> kFixedRateCalls{
    "setEnum TriggerSelector FrameStart", "setEnum TriggerMode Off",
    "setEnum TriggerSource FixedRate",    "setFloat AcquisitionFrameRateAbs 29.97",
    "getFloat AcquisitionFrameRateAbs",
};

class TriggerProgram : public OnFakeCamera {
  protected:
    TriggerProgram() {
        for (const char* name : {"TriggerSelector", "TriggerActivation", "TriggerOverlap"}) {
            camera.text(name, FeatureType::Enum, "");
        }
        camera.number("TriggerDelayAbs", FeatureType::Float, 5);
    }
    void aux() { programAux(camera, kCamera); }
    double fixedRate() { return programFixedRate(camera, kCamera, 29.97); }

    /// A step that fails is the last one, and its failure comes out.
    void expectThatEachStepCanFail(const std::vector<std::string>& steps, const std::function<void()>& run) {
        for (std::size_t at = 0; at < steps.size(); ++at) {
            camera.forgive();
            camera.refuse(steps[at]);
            const auto calls = callsOf([&] { EXPECT_THROW(run(), UnsupportedFeature) << steps[at]; });
            EXPECT_EQ(calls, std::vector<std::string>(steps.begin(),
                                                      steps.begin() + static_cast<std::ptrdiff_t>(at) + 1));
        }
    }
};

TEST_F(TriggerProgram, OfTheTriggeredModeSwitchesItOnLast) {
    EXPECT_EQ(callsOf([&] { aux(); }), kAuxCalls);
}

TEST_F(TriggerProgram, OfTheFixedRateSwitchesTheTriggerOffBeforeItsSourceChanges) {
    EXPECT_EQ(callsOf([&] { fixedRate(); }), kFixedRateCalls);
}

TEST_F(TriggerProgram, OfTheFixedRateGivesTheRateThatTheCameraTook) {
    EXPECT_EQ(fixedRate(), 29.97);
    camera.features["AcquisitionFrameRateAbs"].rounding = [](double) { return 29.5; };
    EXPECT_EQ(fixedRate(), 29.5);
}

TEST_F(TriggerProgram, OfTheTriggeredModeEndsWithTheStepThatFails) {
    expectThatEachStepCanFail(kAuxCalls, [&] { aux(); });
}

TEST_F(TriggerProgram, OfTheFixedRateEndsWithTheStepThatFails) {
    expectThatEachStepCanFail(kFixedRateCalls, [&] { fixedRate(); });
}

}  // namespace
