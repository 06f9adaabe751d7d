/// What a host and its user are told of a vendor call that fails, by what the plug-in was at.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "fault_calls.h"

namespace faults {

/// How the next recording comes about.
enum class Recovery {
    Prepare,       ///< the host prepares again
    PrepareTwice,  ///< the first attempt finds a capture that the library did not end, and says so
    Initialise,    ///< only after the plug-in was terminated and initialised
    NewPlugin      ///< only with a plug-in made anew, which is deliberate
};

struct Expected {
    Answer answer = Answer::Yes;
    std::string thrown;            ///< text of the exception
    std::vector<std::string> log;  ///< records from Warning on, in order
    std::string message;           ///< new latest message of the camera; empty for none
    Recovery recovery = Recovery::Prepare;
    unsigned unrevoked = 0;  ///< frames that the next recording finds still announced
    /// What the simulator takes for misuse and is deliberate.
    std::set<std::string> misuses;
};

Expected expectedOf(const Call& call, VmbError_t code);

/// What the log says in a phase that goes well.
std::vector<std::string> logOf(Phase phase);

/// Names of the cameras as the user reads them.
std::string nameOf(const std::string& camera);

}  // namespace faults
