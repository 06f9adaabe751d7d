/// What the calling thread is to the library, and how the library's own threads begin.
#pragma once

namespace simulator {

enum class ThreadRole { Host, Frame, Event, Discovery };

/// Host for every thread that the library did not start.
ThreadRole currentThreadRole();

/// "host", "frame", "event" or "discovery".
const char* threadRoleName(ThreadRole role);

/// First thing on each thread of the library: names it and makes its wake-ups precise.
void enterThread(ThreadRole role);

/// While it lives, the calling thread delivers the invalidation of one feature of one owner.
class InvalidationScope {
  public:
    InvalidationScope(const void* owner, const char* feature);
    ~InvalidationScope();
    InvalidationScope(const InvalidationScope&) = delete;
    InvalidationScope& operator=(const InvalidationScope&) = delete;

    /// Does the calling thread deliver the invalidation of this feature?
    static bool covers(const void* owner, const char* feature);
};

}  // namespace simulator
