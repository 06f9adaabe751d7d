#include "thread_role.h"

#if defined(__linux__)
#include <sys/prctl.h>
#endif

namespace simulator {
namespace {

thread_local ThreadRole t_role = ThreadRole::Host;

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

}  // namespace simulator
