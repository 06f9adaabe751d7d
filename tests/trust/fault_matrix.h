/// Every vendor function that the plug-in calls x every error code x first, middle and last call, in every
/// phase of a plug-in's life.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "fault_expectations.h"
#include "fault_recording.h"

namespace faults {

struct Fault {
    Call call;
    VmbError_t code = VmbErrorSuccess;
};

/// "Stop: call 1 of VmbCaptureEnd (...) fails with -12".
std::string describe(const Fault& fault);

/// What a phase is without a fault.
struct Baseline {
    std::vector<Call> calls;
    /// Of each camera after the recording that follows.
    std::map<std::string, std::map<std::string, std::string>> settings;
};

/// Throws std::runtime_error when the phase does not go well without a fault.
Baseline baselineOf(World& world, Phase phase);

/// The faults of a phase; all of them, or two codes for each call, which rotate.
std::vector<Fault> faultsOf(const Baseline& baseline, bool all);

/// Lets one call fail and complains of everything that is not as expected, then and afterwards.
Complaints examine(World& world, const Baseline& baseline, const Fault& fault);

}  // namespace faults
