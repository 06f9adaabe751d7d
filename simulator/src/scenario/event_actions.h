/// What a scenario's events can do.
#pragma once

#include "scenario.h"
#include "scenario_error.h"

namespace simulator {

using EventAct = std::function<Result(Simulation&)>;

/// Oscillator, link, light, rhythm and fault as the schema describes them; what is left out is that of
/// `base`.
OscillatorRow readOscillator(const Json& object, OscillatorRow base);
LinkRow readLink(const Json& object, LinkRow base);
Scene readScene(const Json& object, Scene base);
ScenarioRhythm readRhythm(const Json& object, const Place& at);
PulseFaultRow readPulseFault(const Json& object);

/// Throws ScenarioError for a camera that the scenario does not have.
const ScenarioCamera& findCamera(const Scenario& scenario, const std::string& id, const Place& at);

/// Drives the line of one camera, or of every camera for an empty id.
EventAct driveLine(const std::string& camera, const ScenarioRhythm& rhythm);

/// The action of an event, which the schema found in order: its name with its arguments. Throws
/// ScenarioError when it means a camera, an interface, a feature or a function that there is not.
EventAct readAction(const Json& action, const Place& at, const Scenario& scenario);

}  // namespace simulator
