/// What the operating system has to know about a thread of the library. One source per system.
#pragma once

namespace simulator {

/// Names the calling thread and makes its wake-ups as precise as the system can.
void prepareLibraryThread(const char* name);

}  // namespace simulator
