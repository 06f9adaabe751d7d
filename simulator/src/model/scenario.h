/// Which interfaces and cameras there are, and what happens to them when.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "auto_functions.h"
#include "camera_row.h"
#include "choices.h"
#include "line_input.h"

namespace simulator {

class Simulation;

struct ScenarioCamera {
    CameraRow row;
    Scene scene;
    std::vector<PulseFaultRow> pulseFaults;
    bool taken = false;  ///< another program controls it
    bool plugged = true;
};

struct ScenarioRhythm {
    LineRhythm rhythm;
    Nanoseconds phase = 0;  ///< from when it is set to the first rising edge
};

struct ScenarioEvent {
    Nanoseconds at = 0;     ///< after its zero
    std::string after;      ///< zero is the first AcquisitionStart of this camera; empty: the library's start
    Nanoseconds every = 0;  ///< again and again with this period
    std::uint64_t times = 1;  ///< 0 for ever
    std::string sentence;     ///< for the journal
    std::function<Result(Simulation&)> act;
};

struct Scenario {
    const char* name = "";
    std::vector<InterfaceRow> interfaces;
    std::vector<ScenarioCamera> cameras;  ///< each on one of the interfaces
    std::uint64_t seed = 0;
    std::vector<std::pair<Choice, std::uint32_t>> choices;
    std::vector<ScenarioEvent> events;
};

/// What came of looking for a scenario. One that was found stays for good: clients keep pointers to its
/// texts.
struct FoundScenario {
    const Scenario* scenario = nullptr;
    Result result = Result::Success;  ///< NotFound, or BadParameter for a file that is wrong
    std::string error;                ///< a sentence with its point
};

/// By its name, or from a file: a name with a slash or with the ending ".json" is a path.
FoundScenario findScenario(const std::string& name);

inline constexpr const char* kDefaultScenario = "two-cameras";

}  // namespace simulator
