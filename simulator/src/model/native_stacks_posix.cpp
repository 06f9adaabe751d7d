#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <dirent.h>
#include <execinfo.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "native_stacks.h"

namespace simulator {
namespace {

std::atomic<int> s_printed{0};

void printOwnStack() {
    char name[17] = "";
    prctl(PR_GET_NAME, name, 0UL, 0UL, 0UL);
    dprintf(STDERR_FILENO, "thread %ld \"%s\"\n", syscall(SYS_gettid), name);
    void* frames[64];
    backtrace_symbols_fd(frames, backtrace(frames, 64), STDERR_FILENO);
}

void onSignal(int) {
    printOwnStack();
    ++s_printed;
}

}  // namespace

void printStacks() {
    // The first call loads a library, which a signal handler must not.
    void* frame = nullptr;
    backtrace(&frame, 1);
    const int signal = SIGRTMIN + 7;
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigaction(signal, &action, nullptr);
    printOwnStack();
    DIR* tasks = opendir("/proc/self/task");
    if (tasks == nullptr) return;
    int asked = 0;
    while (const dirent* task = readdir(tasks)) {
        const long id = std::atol(task->d_name);
        if (id <= 0 || id == syscall(SYS_gettid)) continue;
        if (syscall(SYS_tgkill, getpid(), id, signal) == 0) ++asked;
        // One after the other, so that they do not mix; a thread that ends meanwhile never answers.
        const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        while (s_printed < asked && std::chrono::steady_clock::now() < patience) continue;
    }
    closedir(tasks);
}

}  // namespace simulator
