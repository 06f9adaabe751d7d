#include "zelt_gige_camera_channel_trigger_program.h"

#include <array>
#include <span>

#include "zelt_gige_camera_channel_feature_access.h"

namespace zelt_gige_camera {
namespace {

struct Step {
    const char* feature;
    const char* entry;  ///< null when the feature is a number
    double number = 0.0;
};

// The mode goes on last: a camera must not be triggered by whatever source it had.
constexpr std::array<Step, 6> kAux{{
    {"TriggerSelector", "FrameStart"},
    {"TriggerSource", "Line1"},
    {"TriggerActivation", "RisingEdge"},
    {"TriggerDelayAbs", nullptr, 0.0},
    {"TriggerOverlap", "Off"},
    {"TriggerMode", "On"},
}};

// The mode goes off before the source changes: a camera must not wait for a trigger in between.
constexpr std::array<Step, 3> kFixedRate{{
    {"TriggerSelector", "FrameStart"},
    {"TriggerMode", "Off"},
    {"TriggerSource", "FixedRate"},
}};

void run(std::span<const Step> program, zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera) {
    for (const Step& step : program) {
        if (step.entry != nullptr) {
            api.setEnumFeature(camera, step.feature, step.entry);
        } else {
            api.setFloatFeature(camera, step.feature, step.number);
        }
    }
}

}  // namespace

void programAux(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera) {
    run(kAux, api, camera);
}

double programFixedRate(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera, double frameRate) {
    run(kFixedRate, api, camera);
    api.setFloatFeature(camera, "AcquisitionFrameRateAbs", frameRate);
    return getNumber(api, camera, numberRow(Setting::FrameRate));
}

}  // namespace zelt_gige_camera
