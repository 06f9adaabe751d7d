#include "accuracy_cases.h"

#include <cmath>
#include <cstdio>

namespace test_support {
namespace {

constexpr std::uint64_t kGigahertz = 1'000'000'000;
/// 12 millionths fast; stamps jitter by 2 microseconds.
constexpr VmbSimOscillator kUsualClock{kGigahertz, 0, 12'000, 0, 1, 2'000};
constexpr VmbSimOscillator kSteadyClock{kGigahertz, 0, 0, 0, 1, 0};
/// Those of the scenario drifting-clock.
constexpr VmbSimOscillator kSlowSwing{kGigahertz, 0, 30'000, 20'000, 600, 200};
constexpr VmbSimOscillator kFastSwing{kGigahertz, 0, -45'000, 5'000, 120, 1'000};
constexpr VmbSimOscillator kCoarseClock{36'858'974, 0, 12'000, 0, 1, 0};
constexpr Waits kBusy{40'000, 1'000'000};

VmbSimLink late(std::uint32_t ppm, std::uint64_t ns) {
    VmbSimLink link{};
    link.latePpm = ppm;
    link.lateNs = ns;
    return link;
}

VmbSimLink losing(std::uint32_t ppm) {
    VmbSimLink link{};
    link.lossPpm = ppm;
    return link;
}

std::vector<AccuracyCase> makeCases() {
    const std::uint64_t since1970 = 1'700'000'000 * kGigahertz;
    return {
        {"steady", 300, kSteadyClock, {}, {}, Incident::None, 1, {0.003, 0.003, 0.003, 0.003}},
        {"slow swing", 600, kSlowSwing, {}, {}, Incident::None, 1, {0.31, 44, 83, 85}},
        {"fast swing", 600, kFastSwing, {}, {}, Incident::None, 1, {2.8, 33, 54, 56}},
        {"jitter", 300, kUsualClock, {}, {}, Incident::None, 1, {0.31, 1.1, 2.4, 3.2}},
        {"coarse clock", 300, kCoarseClock, kBusy, {}, Incident::None, 1, {0.5, 0.055, 0.41, 36}},
        {"busy host", 300, kUsualClock, kBusy, {}, Incident::None, 1, {0.42, 1.1, 2.5, 4.5}},
        {"clock of 1970", 300, kUsualClock, kBusy, {}, Incident::None, since1970, {0.67, 1.3, 2.8, 4.7}},
        {"late callbacks",
         300,
         kUsualClock,
         kBusy,
         late(50'000, 1'000'000),
         Incident::None,
         1,
         {14, 19, 160, 480}},
        {"heavy load",
         300,
         kUsualClock,
         kBusy,
         late(500'000, 4'000'000),
         Incident::None,
         1,
         {980, 210, 1'200, 2'900}},
        {"lost frames", 300, kUsualClock, kBusy, {}, Incident::LostFrames, 1, {0.45, 1.1, 2.5, 4.4}},
        {"lost packets", 300, kUsualClock, kBusy, losing(50'000), Incident::None, 1, {54, 58, 250, 300}},
        {"camera away", 600, kSlowSwing, kBusy, {}, Incident::Hiccup, 1, {3.6, 44, 180, 550}},
        {"new acquisition", 120, kUsualClock, kBusy, {}, Incident::NewAcquisition, 1, {0.41, 1.1, 2.9, 4.5}},
        {"clock reset by others",
         180,
         kSteadyClock,
         kBusy,
         {},
         Incident::ClockReset,
         1,
         {0.55, 0.21, 60'000'000, 61'000'000}},
    };
}

}  // namespace

const std::vector<AccuracyCase>& accuracyCases() {
    static const std::vector<AccuracyCase> cases = makeCases();
    return cases;
}

const AccuracyBounds& triggeredBounds() {
    static constexpr AccuracyBounds kBounds{0.51, 51, 99, 4'100};
    return kBounds;
}

double statedMicroseconds(double nanoseconds) {
    if (nanoseconds <= 0) return 0;
    const double place = std::pow(10.0, std::floor(std::log10(nanoseconds)) - 1);
    return std::ceil(nanoseconds / place - 1e-9) * place / 1'000;
}

std::string inWords(double microseconds) {
    char text[40];
    std::snprintf(text, sizeof text, "%.12g", microseconds);
    return text;
}

}  // namespace test_support
