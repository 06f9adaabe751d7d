#include "scenario.h"

#include "feature_table.h"

namespace simulator {
namespace {

constexpr InterfaceRow kNetwork{"SimulatedNetwork0", "Simulated network 0", "02-000000-0000"};
constexpr std::uint32_t kLinkLocalMask = 0xFFFF'0000;

// Both oscillators are off, each its own way, so that nothing can take camera time for true time.
CameraRow colourCamera() {
    return {
        .id = "DEV_000F31A10001",
        .model = "Manta_G-033C",
        .serial = "50-0503300001",
        .firmware = "00.01.54.11800",
        .partNumber = 503300,
        .interfaceId = kNetwork.id,
        .ipAddress = 0xA9FE'0A01,
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
        .id = "DEV_000F31A10002",
        .model = "Manta_G-032B",
        .serial = "50-0503200002",
        .firmware = "00.01.54.11800",
        .partNumber = 503200,
        .interfaceId = kNetwork.id,
        .ipAddress = 0xA9FE'0A02,
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

// Cameras of VGA size, each on a link of its own, every oscillator with another error.
CameraRow vgaCamera(int number) {
    const std::string digits = std::string(number < 10 ? "0" : "") + std::to_string(number);
    CameraRow row = monochromeCamera();
    row.id = keptText("DEV_000F31B000" + digits);
    row.model = "Mako_G-030B";
    row.serial = keptText("50-05033300" + digits);
    row.partNumber = 503333;
    row.interfaceId = keptText("SimulatedNetwork" + std::to_string(number));
    row.ipAddress = 0xA9FE'0B00 + static_cast<std::uint32_t>(number) * 0x100;
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
    row.oscillator.errorPpb = std::int64_t{number - 8} * 3'000;
    return row;
}

Scenario sixteenCameras() {
    Scenario scenario{"sixteen-cameras", {}, {}};
    for (int number = 1; number <= 16; ++number) {
        scenario.cameras.push_back(vgaCamera(number));
        const char* id = scenario.cameras.back().interfaceId;
        scenario.interfaces.push_back({id, id, scenario.cameras.back().serial});
    }
    return scenario;
}

const std::vector<Scenario>& scenarios() {
    // Never destroyed: a client may leave cameras open when it exits.
    static const auto& all = *new std::vector<Scenario>{
        {kDefaultScenario, {kNetwork}, {colourCamera(), monochromeCamera()}},
        {"zero-cameras", {kNetwork}, {}},
        sixteenCameras(),
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

std::string ipText(std::uint32_t address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string(address >> shift & 0xFF) + (shift > 0 ? "." : "");
    }
    return text;
}

}  // namespace simulator
