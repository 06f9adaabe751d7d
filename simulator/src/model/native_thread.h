/// What the operating system has to know about a thread of the library. One source per system.
#pragma once

#include "clock.h"

namespace simulator {

/// A sleeping thread of the library is late by up to about this much on an idle machine.
extern const Nanoseconds kWakeUpLatency;

/// Names the calling thread and makes its wake-ups as precise as the system can.
void prepareLibraryThread(const char* name);

}  // namespace simulator
