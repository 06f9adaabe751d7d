#include "scenario.h"

namespace simulator {
namespace {

// Both oscillators are off, each its own way, so that nothing can take camera time for true time.
CameraRow colourCamera() {
    return {
        .id = "DEV_000F31A10001",
        .model = "Manta_G-033C",
        .serial = "50-0503300001",
        .interfaceId = "SimulatedNetwork0",
        .colour = true,
        .sensor = {.width = 656,
                   .height = 492,
                   .widthStep = 8,
                   .heightStep = 2,
                   .offsetXStep = 4,
                   .offsetYStep = 2,
                   .rowSeconds = 2.249e-5,
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
        .clockPpb = 12'000,
    };
}

CameraRow monochromeCamera() {
    return {
        .id = "DEV_000F31A10002",
        .model = "Manta_G-032B",
        .serial = "50-0503200002",
        .interfaceId = "SimulatedNetwork0",
        .colour = false,
        .sensor = {.width = 656,
                   .height = 492,
                   .widthStep = 1,
                   .heightStep = 1,
                   .offsetXStep = 1,
                   .offsetYStep = 1,
                   .rowSeconds = 2.434e-5,
                   .readoutSeconds = 0.0004955,
                   .shortestExposureUs = 26},
        .pixelFormats = {{"Mono8", 0x01080001}, {"Mono12", 0x01100005}},
        .powerUpFormat = 0x01080001,
        .powerUpRate = 40,
        .hottestGain = 26,
        .clockPpb = -8'000,
    };
}

const std::vector<Scenario>& scenarios() {
    // Never destroyed: a client may leave cameras open when it exits.
    static const auto& all = *new std::vector<Scenario>{
        {kDefaultScenario, {colourCamera(), monochromeCamera()}},
        {"zero-cameras", {}},
    };
    return all;
}

}  // namespace

const Scenario* findScenario(std::string_view name) {
    for (const Scenario& scenario : scenarios()) {
        if (name == scenario.name) return &scenario;
    }
    return nullptr;
}

std::string scenarioNames() {
    std::string names;
    for (const Scenario& scenario : scenarios()) {
        names += (names.empty() ? "" : ", ") + std::string(scenario.name);
    }
    return names;
}

}  // namespace simulator
