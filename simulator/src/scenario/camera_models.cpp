#include "camera_models.h"

namespace simulator {
namespace {

constexpr std::uint32_t kLinkLocalMask = 0xFFFF'0000;

// All oscillators are off, each its own way, so that nothing can take camera time for true time.
CameraRow colourCamera() {
    return {
        .model = "Manta_G-033C",
        .firmware = "00.01.54.11800",
        .partNumber = 503300,
        .subnetMask = kLinkLocalMask,
        .colour = true,
        .sensor = {.width = 656,
                   .height = 492,
                   .widthStep = 8,
                   .heightStep = 2,
                   .offsetXStep = 4,
                   .offsetYStep = 2,
                   .rowSeconds = 2.249e-5,
                   .skippedRowSeconds = 1.51e-6,
                   .readoutSeconds = 0.0001984,
                   .shortestExposureUs = 30},
        .pixelFormats = {{"Mono8", 0x01080001},
                         {"BayerRG8", 0x01080009},
                         {"YUV411Packed", 0x020C001E},
                         {"YUV422Packed", 0x0210001F},
                         {"RGB8Packed", 0x02180014},
                         {"BGR8Packed", 0x02180015}},
        .powerUpFormat = 0x01080009,
        .powerUpRate = 50,
        .hottestGain = 32,
        .memoryFrames = 69,
        .oscillator = {.errorPpb = 12'000},
    };
}

CameraRow monochromeCamera() {
    return {
        .model = "Manta_G-032B",
        .firmware = "00.01.54.11800",
        .partNumber = 503200,
        .subnetMask = kLinkLocalMask,
        .colour = false,
        .sensor = {.width = 656,
                   .height = 492,
                   .widthStep = 1,
                   .heightStep = 1,
                   .offsetXStep = 1,
                   .offsetYStep = 1,
                   .rowSeconds = 2.434e-5,
                   .skippedRowSeconds = 3.01e-6,
                   .readoutSeconds = 0.0004955,
                   .shortestExposureUs = 26},
        .pixelFormats = {{"Mono8", 0x01080001}, {"Mono12", 0x01100005}},
        .powerUpFormat = 0x01080001,
        .powerUpRate = 40,
        .hottestGain = 26,
        .memoryFrames = 103,
        .oscillator = {.errorPpb = -8'000},
    };
}

CameraRow vgaCamera() {
    CameraRow row = monochromeCamera();
    row.model = "Mako_G-030B";
    row.partNumber = 503333;
    row.sensor = {.width = 640,
                  .height = 480,
                  .widthStep = 8,
                  .heightStep = 2,
                  .offsetXStep = 2,
                  .offsetYStep = 2,
                  .rowSeconds = 6.4e-6,
                  .skippedRowSeconds = 6.4e-7,
                  .readoutSeconds = 0.00012,
                  .shortestExposureUs = 10};
    row.powerUpRate = 100;
    row.memoryFrames = 99;
    row.oscillator.errorPpb = 5'000;
    return row;
}

}  // namespace

const CameraRow* findCameraModel(std::string_view name) {
    static const auto& all = *new std::vector<CameraRow>{colourCamera(), monochromeCamera(), vgaCamera()};
    for (const CameraRow& model : all) {
        if (name == model.model) return &model;
    }
    return nullptr;
}

}  // namespace simulator
