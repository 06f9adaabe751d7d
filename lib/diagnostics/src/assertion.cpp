#include "assertion.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdio>

namespace diagnostics {
namespace {

int goOn(const char*, const char*, const char*, int) {
    return 1;
}

std::atomic<AssertionHook> s_hook{&goOn};

}  // namespace

AssertionHook setAssertionHook(AssertionHook hook) noexcept {
    return s_hook.exchange(hook);
}

int assertFailed(const char* expression, const char* file, int line, const char* format, ...) noexcept {
    std::array<char, 256> message{};
    if (format != nullptr) {
        std::va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(message.data(), message.size(), format, arguments);
        va_end(arguments);
    }
    const AssertionHook hook = s_hook.load();
    return hook == nullptr ? 1 : hook(expression, format != nullptr ? message.data() : nullptr, file, line);
}

void breakIntoDebugger() noexcept {
#if defined(_MSC_VER)
    __debugbreak();
#elif defined(__x86_64__)
    __asm__ volatile("int3");
#else
    std::raise(SIGTRAP);
#endif
}

}  // namespace diagnostics
