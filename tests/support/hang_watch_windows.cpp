#include <array>
#include <cstdio>
#include <cstdlib>

#include <windows.h>

#include "hang_watch.h"
#include "native_stacks.h"

namespace test_support {
namespace {

std::array<char, 300> s_sentence;
HANDLE s_timer = nullptr;

void CALLBACK onTimer(void*, BOOLEAN) {
    std::fputs(s_sentence.data(), stderr);
    simulator::printStacks();
    std::fflush(stderr);
    std::abort();
}

}  // namespace

void beginLimit(const std::string& name, unsigned seconds) {
    std::snprintf(s_sentence.data(), s_sentence.size(), "%s has lasted %u s. All threads:\n", name.c_str(),
                  seconds);
    ::CreateTimerQueueTimer(&s_timer, nullptr, &onTimer, nullptr, seconds * 1000, 0, WT_EXECUTEONLYONCE);
}

void endLimit() {
    if (s_timer != nullptr) ::DeleteTimerQueueTimer(nullptr, s_timer, nullptr);
    s_timer = nullptr;
}

}  // namespace test_support
