#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

// clang-format off
#include <windows.h>
#include <tlhelp32.h>  // needs the one above
// clang-format on

#include "import_tables.h"
#include "test_system.h"

namespace test_support {
namespace {

std::filesystem::path fileOf(HMODULE module) {
    std::array<wchar_t, 4096> name{};
    const DWORD length = ::GetModuleFileNameW(module, name.data(), DWORD{name.size()});
    return std::wstring(name.data(), length);
}

std::wstring nameOfThread(DWORD id) {
    using Function = HRESULT WINAPI(HANDLE, wchar_t**);
    // Not every release of mingw-w64 declares it.
    static auto* const s_describe = std::bit_cast<Function*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "GetThreadDescription"));
    HANDLE thread = ::OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, id);
    wchar_t* text = nullptr;
    std::wstring name;
    if (s_describe != nullptr && s_describe(thread, &text) >= 0) name = text;
    ::LocalFree(text);
    ::CloseHandle(thread);
    return name;
}

}  // namespace

void setEnvironment(const std::string& name, const std::string& value) {
    _putenv_s(name.c_str(), value.c_str());
    // The runtime takes an empty value for none; processes started from here do not.
    if (value.empty()) ::SetEnvironmentVariableA(name.c_str(), "");
}

void clearEnvironment(const std::string& name) {
    _putenv_s(name.c_str(), "");
}

std::filesystem::path makeTemporaryDirectory() {
    static std::atomic<unsigned> s_number{0};
    const std::filesystem::path parent = std::filesystem::temp_directory_path();
    for (;;) {
        const std::string name =
            "zelt_test_" + std::to_string(::GetCurrentProcessId()) + '_' + std::to_string(++s_number);
        std::error_code error;
        if (std::filesystem::create_directory(parent / name, error)) return parent / name;
        if (error) throw std::runtime_error("no temporary directory");
    }
}

std::filesystem::path programDirectory() {
    return fileOf(nullptr).parent_path();
}

std::string programFileName(const std::string& name) {
    return name + ".exe";
}

std::string libraryFileName(const std::string& name) {
    return name + ".dll";
}

std::filesystem::path libraryHolding(const void* address) {
    HMODULE module = nullptr;
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (::GetModuleHandleExW(flags, static_cast<const wchar_t*>(address), &module) == FALSE) {
        throw std::runtime_error("no library holds that address");
    }
    return fileOf(module);
}

void* loadedSymbol(const std::string& libraryFile, const std::string& name) {
    HMODULE const module = ::GetModuleHandleA(libraryFile.c_str());
    return module == nullptr ? nullptr : std::bit_cast<void*>(::GetProcAddress(module, name.c_str()));
}

std::set<std::string> exportedNames(const std::filesystem::path& library) {
    HMODULE const module = ::LoadLibraryExW(library.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    if (module == nullptr) throw std::runtime_error("no library " + library.string());
    const LoadedModule image(module);
    std::set<std::string> names;
    const IMAGE_DATA_DIRECTORY& entry = image.directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
    const auto* const table = image.at<IMAGE_EXPORT_DIRECTORY>(entry.VirtualAddress);
    const auto* const texts = image.at<DWORD>(table->AddressOfNames);
    for (DWORD i = 0; i < table->NumberOfNames; ++i) names.insert(image.at<char>(texts[i]));
    // What is exported by number only would have no name here.
    if (table->NumberOfFunctions != table->NumberOfNames) names.insert("(nameless)");
    ::FreeLibrary(module);
    return names;
}

bool hasThreadNamed(const std::string& name) {
    const std::wstring wanted(name.begin(), name.end());
    HANDLE const threads = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    bool found = false;
    for (BOOL more = ::Thread32First(threads, &entry); more != FALSE && !found;
         more = ::Thread32Next(threads, &entry)) {
        found =
            entry.th32OwnerProcessID == ::GetCurrentProcessId() && nameOfThread(entry.th32ThreadID) == wanted;
    }
    ::CloseHandle(threads);
    return found;
}

void* reserveFarPages(std::size_t size) {
    static std::atomic<std::uintptr_t> s_next{std::uintptr_t{1} << 42};
    constexpr std::size_t kGap = std::size_t{1} << 20;
    for (;;) {
        auto* const where = std::bit_cast<void*>(s_next.fetch_add((size / kGap + 2) * kGap));
        void* const pages = ::VirtualAlloc(where, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
        if (pages != nullptr) return pages;
        if (::GetLastError() != ERROR_INVALID_ADDRESS) throw std::runtime_error("no far memory");
    }
}

void releaseFarPages(void* pages, std::size_t) {
    ::VirtualFree(pages, 0, MEM_RELEASE);
}

}  // namespace test_support
