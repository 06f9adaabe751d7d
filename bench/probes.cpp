#include "probes.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <stdexcept>

#include <boost/log/core.hpp>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <ucontext.h>
#include <unistd.h>

#include "allocation_counter.h"

namespace bench {
namespace {

/// Shared with the copy of the process in which calls are counted.
std::atomic<std::uint64_t>* s_calls = nullptr;
std::atomic<std::uint64_t> s_touched{0};

void onSystemCall(int, siginfo_t*, void* context) {
    ++*s_calls;
    // The call is left out, and fails.
    static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_RAX] = -ENOSYS;
}

void onForbiddenPage(int, siginfo_t* info, void*) {
    ++s_touched;
    const auto page = reinterpret_cast<std::uintptr_t>(info->si_addr) & ~std::uintptr_t{4095};
    if (::mprotect(reinterpret_cast<void*>(page), 4096, PROT_READ | PROT_WRITE) != 0) ::_exit(139);
}

void handle(int signal, void (*handler)(int, siginfo_t*, void*)) {
    struct sigaction action {};
    action.sa_sigaction = handler;
    action.sa_flags = SA_SIGINFO;
    ::sigaction(signal, &action, nullptr);
}

/// From here on every system call but the end of the process becomes a signal.
bool trapSystemCalls() {
    handle(SIGSYS, &onSystemCall);
    std::array<sock_filter, 5> program{{
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
        {BPF_JMP | BPF_JEQ | BPF_K, 2, 0, SYS_rt_sigreturn},
        {BPF_JMP | BPF_JEQ | BPF_K, 1, 0, SYS_exit_group},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_TRAP},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
    }};
    const sock_fprog filter{program.size(), program.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

[[noreturn]] void workCounted(const Work& work) {
    // One call of our own shows that calls are counted at all.
    if (!trapSystemCalls() || (::syscall(SYS_getppid), s_calls->load() != 1)) ::_exit(2);
    *s_calls = 0;
    try {
        work();
    } catch (...) {
        ::_exit(3);
    }
    ::_exit(0);
}

void use(bool logging, const boost::log::filter& filter) {
    boost::log::core::get()->set_logging_enabled(logging);
    boost::log::core::get()->set_filter(filter);
}

}  // namespace

std::uint64_t systemCallsOf(const Work& work) {
    void* const shared =
        ::mmap(nullptr, sizeof(*s_calls), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) throw std::runtime_error("No memory to count system calls in");
    s_calls = new (shared) std::atomic<std::uint64_t>(0);
    const pid_t child = ::fork();
    if (child == 0) workCounted(work);
    int status = 0;
    const bool ended = child > 0 && ::waitpid(child, &status, 0) == child;
    const std::uint64_t calls = *s_calls;
    ::munmap(shared, sizeof(*s_calls));
    if (!ended || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("System calls cannot be counted here");
    }
    return calls;
}

std::uint64_t threadSwitchesOf(const Work& work) {
    rusage before{};
    rusage after{};
    ::getrusage(RUSAGE_THREAD, &before);
    work();
    ::getrusage(RUSAGE_THREAD, &after);
    return static_cast<std::uint64_t>(after.ru_nvcsw - before.ru_nvcsw);
}

std::uint64_t allocationsOf(const Work& work) {
    const test_support::AllocationCounter counter;
    work();
    return counter.count();
}

ForbiddenPages::ForbiddenPages() {
    s_touched = 0;
    handle(SIGSEGV, &onForbiddenPage);
}

ForbiddenPages::~ForbiddenPages() {
    std::signal(SIGSEGV, SIG_DFL);
}

void* ForbiddenPages::allocate(std::size_t size) noexcept {
    void* const pages = ::mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

void ForbiddenPages::release(void* pages, std::size_t size) noexcept {
    ::munmap(pages, size);
}

std::uint64_t ForbiddenPages::touched() {
    return s_touched;
}

void switchLogOff() {
    use(false, {});
}

FilteredLog::FilteredLog() {
    use(true, [](const boost::log::attribute_value_set&) { return false; });
}

FilteredLog::~FilteredLog() {
    switchLogOff();
}

}  // namespace bench
