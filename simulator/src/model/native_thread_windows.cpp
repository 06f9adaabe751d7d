#include <bit>
#include <string>

// clang-format off
#include <windows.h>
#include <timeapi.h>  // needs the one above
// clang-format on

#include "native_thread.h"

namespace simulator {

// Waits end at whole milliseconds, as a rule at the one after next.
const Nanoseconds kWakeUpLatency = 2 * kMillisecond;

namespace {

bool prepareLibrary() {
    // Threads of the library may still run when a client unloads it without VmbShutdown.
    HMODULE self = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                         reinterpret_cast<const wchar_t*>(&prepareLibraryThread), &self);
    // Ordinary wake-ups come every 15.6 milliseconds.
    return ::timeBeginPeriod(1) == TIMERR_NOERROR;
}

void nameThread(const char* name) {
    using Function = HRESULT WINAPI(HANDLE, const wchar_t*);
    // Not every release of mingw-w64 declares it.
    static auto* const s_describe = std::bit_cast<Function*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription"));
    if (s_describe == nullptr) return;
    const std::wstring wide(name, name + std::char_traits<char>::length(name));
    s_describe(::GetCurrentThread(), wide.c_str());
}

}  // namespace

void prepareLibraryThread(const char* name) {
    [[maybe_unused]] static const bool s_prepared = prepareLibrary();
    nameThread(name);
}

}  // namespace simulator
