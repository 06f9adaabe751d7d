#include "thread_role.h"

#include <cstring>

#if defined(__linux__)
#include <sys/prctl.h>
#endif

namespace simulator {
namespace {

thread_local ThreadRole t_role = ThreadRole::Host;
thread_local const void* t_invalidatedOwner = nullptr;
thread_local const char* t_invalidatedFeature = nullptr;

}  // namespace

ThreadRole currentThreadRole() {
    return t_role;
}

const char* threadRoleName(ThreadRole role) {
    switch (role) {
        case ThreadRole::Frame:
            return "frame";
        case ThreadRole::Event:
            return "event";
        case ThreadRole::Discovery:
            return "discovery";
        case ThreadRole::Host:
            break;
    }
    return "host";
}

void enterThread(ThreadRole role) {
    t_role = role;
#if defined(__linux__)
    // The default slack of 50 microseconds would be part of every delivery.
    prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    prctl(PR_SET_NAME, threadRoleName(role), 0UL, 0UL, 0UL);
#endif
}

InvalidationScope::InvalidationScope(const void* owner, const char* feature) {
    t_invalidatedOwner = owner;
    t_invalidatedFeature = feature;
}

InvalidationScope::~InvalidationScope() {
    t_invalidatedOwner = nullptr;
    t_invalidatedFeature = nullptr;
}

bool InvalidationScope::covers(const void* owner, const char* feature) {
    return t_invalidatedFeature != nullptr && t_invalidatedOwner == owner &&
           std::strcmp(t_invalidatedFeature, feature) == 0;
}

}  // namespace simulator
