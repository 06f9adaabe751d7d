/// What the calling thread is to the library, and how the library's own threads begin.
#pragma once

namespace simulator {

enum class ThreadRole { Host, Frame, Event, Discovery, Scenario };

/// Host for every thread that the library did not start.
ThreadRole currentThreadRole();

/// "host", "frame", "event", "discovery" or "scenario".
const char* threadRoleName(ThreadRole role);

/// First thing on each thread of the library: names it and makes its wake-ups precise.
void enterThread(ThreadRole role);

}  // namespace simulator
