#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

#include "hang_watch.h"
#include "native_stacks.h"

namespace test_support {
namespace {

std::array<char, 300> s_sentence;

void onAlarm(int) {
    // What a handler must not do: the process ends here, and a lock held by what hangs only costs the stacks.
    std::fputs(s_sentence.data(), stderr);
    simulator::printStacks();
    std::abort();
}

}  // namespace

void beginLimit(const std::string& name, unsigned seconds) {
    std::snprintf(s_sentence.data(), s_sentence.size(), "%s has lasted %u s. All threads:\n", name.c_str(),
                  seconds);
    struct sigaction action {};
    action.sa_handler = onAlarm;
    sigaction(SIGALRM, &action, nullptr);
    alarm(seconds);
}

void endLimit() {
    alarm(0);
}

}  // namespace test_support
