#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <dirent.h>
#include <execinfo.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "native_stacks.h"

namespace simulator {
namespace {

std::atomic<bool> s_printed{false};

void printOwnStack() {
    char name[17] = "";
    prctl(PR_GET_NAME, name, 0UL, 0UL, 0UL);
    char text[64];
    const int length = std::snprintf(text, sizeof text, "thread %ld \"%s\"\n", syscall(SYS_gettid), name);
    if (write(STDERR_FILENO, text, static_cast<std::size_t>(length)) < 0) return;
    void* frames[64];
    backtrace_symbols_fd(frames, backtrace(frames, 64), STDERR_FILENO);
}

void printSilentThread(long id) {
    std::ifstream file("/proc/self/task/" + std::to_string(id) + "/comm");
    std::string name;
    std::getline(file, name);
    std::fprintf(stderr, "thread %ld \"%s\" does not answer\n", id, name.c_str());
}

void onSignal(int) {
    const int error = errno;
    printOwnStack();
    s_printed = true;
    errno = error;
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
    while (const dirent* task = readdir(tasks)) {
        const long id = std::atol(task->d_name);
        if (id <= 0 || id == syscall(SYS_gettid)) continue;
        // One after the other, so that they do not mix.
        s_printed = false;
        if (syscall(SYS_tgkill, getpid(), id, signal) != 0) continue;
        const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        while (!s_printed && std::chrono::steady_clock::now() < patience) continue;
        if (!s_printed) printSilentThread(id);
    }
    closedir(tasks);
}

}  // namespace simulator
