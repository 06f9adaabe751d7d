/// A recording with both cameras after whatever has happened, as a host makes it.
#pragma once

#include <string>
#include <vector>

#include "fault_expectations.h"

namespace faults {

/// What is wrong, one sentence each; empty when nothing is.
using Complaints = std::vector<std::string>;

/// Brings the plug-in back to work, as far as its state demands, and records. Complains of every step that
/// does not go well, of frames that are missing or stamped wrongly, and of what is held meanwhile and after.
/// `unrevoked` frames are the library's until the end of that recording.
Complaints recordAgain(World& world, Recovery recovery, unsigned unrevoked = 0);

/// Destroys the plug-in and complains of what it has not given back, and of misuse that is not deliberate.
Complaints examineEnd(World& world, const std::set<std::string>& deliberate);

/// Every call that a host may make at any time, from a thread of its own; a lock that was left held ends the
/// program with the stacks of all threads.
void makeEveryCall(World& world);

}  // namespace faults
