#include "watchdog.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "misuse_log.h"
#include "native_stacks.h"

namespace simulator {
namespace {

std::atomic<std::int64_t> s_limit{0};

}  // namespace

void Watchdog::setLimit(std::chrono::milliseconds limit) {
    s_limit = limit.count();
}

std::chrono::milliseconds Watchdog::limit() {
    return std::chrono::milliseconds(s_limit.load());
}

void Watchdog::bark() {
    const CurrentCall* call = CurrentCall::get();
    std::fprintf(stderr, "VimbaC simulator: %s has waited for %lld ms and nothing happened. All threads:\n",
                 call != nullptr ? call->function() : "a control function",
                 static_cast<long long>(s_limit.load()));
    printStacks();
    std::abort();
}

}  // namespace simulator
