#include "zelt_gige_camera_model.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zelt_gige_api {
namespace {

struct Model {
    CameraModelKind kind;
    std::string_view prefix;
    double secondsPerSkippedRow;
    double secondsPerRow;
    double secondsPerFrame;
};

constexpr std::array<Model, 3> kModels{{
    {CameraModelKind::MantaG031, "MANTA_G-031", 2.53e-6, 1.57e-5, 0.00025274},
    {CameraModelKind::MantaG032, "MANTA_G-032", 3.01e-6, 2.434e-5, 0.0004955},
    {CameraModelKind::MantaG033, "MANTA_G-033", 1.51e-6, 2.249e-5, 0.0001984},
}};

char upperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool beginsWith(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(),
                      [](char wanted, char given) { return wanted == upperCase(given); });
}

}  // namespace

CameraModelKind cameraModelKind(std::string_view modelName) {
    for (const Model& model : kModels) {
        if (beginsWith(modelName, model.prefix)) return model.kind;
    }
    return CameraModelKind::Other;
}

double maximumFrameRate(CameraModelKind kind, std::uint32_t height) {
    for (const Model& model : kModels) {
        if (model.kind != kind) continue;
        // Unsigned on purpose: rows beyond the sensor's make the term huge instead of negative.
        const std::uint32_t skippedRows = 492u - height;
        return 1.0 / (skippedRows * model.secondsPerSkippedRow + height * model.secondsPerRow +
                      model.secondsPerFrame);
    }
    return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace zelt_gige_api
