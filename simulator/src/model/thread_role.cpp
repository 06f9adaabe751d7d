#include "thread_role.h"

#include "native_thread.h"

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
        case ThreadRole::Scenario:
            return "scenario";
        case ThreadRole::Host:
            break;
    }
    return "host";
}

void enterThread(ThreadRole role) {
    t_role = role;
    prepareLibraryThread(threadRoleName(role));
}

}  // namespace simulator
