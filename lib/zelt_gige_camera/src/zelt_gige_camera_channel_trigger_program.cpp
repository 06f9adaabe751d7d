#include "zelt_gige_camera_channel_trigger_program.h"

#include <array>
#include <span>

namespace zelt_gige_camera {
namespace {

struct EnumStep {
    const char* feature;
    const char* entry;
};

// The mode goes off before the source changes: a camera must not wait for a trigger in between.
constexpr std::array<EnumStep, 3> kFixedRate{{
    {"TriggerSelector", "FrameStart"},
    {"TriggerMode", "Off"},
    {"TriggerSource", "FixedRate"},
}};

void run(std::span<const EnumStep> program, zelt_gige_api::CameraApi& api,
         zelt_gige_api::CameraHandle camera) {
    for (const EnumStep& step : program) api.setEnumFeature(camera, step.feature, step.entry);
}

}  // namespace

double programFixedRate(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera, double frameRate) {
    run(kFixedRate, api, camera);
    api.setFloatFeature(camera, "AcquisitionFrameRateAbs", frameRate);
    return api.getFloatFeature(camera, "AcquisitionFrameRateAbs");
}

}  // namespace zelt_gige_camera
