/// The vendor calls of a phase, as the simulator's journal tells them, and what the plug-in is at with each.
#pragma once

#include <string>
#include <vector>

#include "fault_world.h"

namespace faults {

/// Parts of the plug-in's work whose failures are told in the same way.
enum class Step {
    None,           ///< the function alone says what becomes of a failure
    Cache,          ///< reading of the values that may change
    Domain,         ///< reading of their ranges
    Configuration,  ///< reading of a camera just opened
    Write,          ///< of settings
    Trigger,        ///< programming of a trigger mode
    AuxChange,      ///< a new frequency of the trigger output
    Capture         ///< start of capture
};

struct Call {
    std::string thread;  ///< "host", or the library's own
    std::string function;
    std::string object;    ///< camera id, "system", or empty
    std::string argument;  ///< feature name, or empty
    int nth = 1;           ///< of the function's calls in this phase, on any thread
    int ofKind = 1;        ///< of the calls with this function, object and argument on this thread
    Phase phase = Phase::Create;
    Step step = Step::None;
    bool isAux = false;  ///< the trigger mode that is programmed
};

std::string describe(const Call& call);

/// Calls in the order in which they returned.
std::vector<Call> callsOf(Phase phase, const std::vector<std::string>& journal);

/// Lines of the journal, all threads.
std::vector<std::string> journalLines();

}  // namespace faults
