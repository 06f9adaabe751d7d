#include <atomic>
#include <bit>
#include <cstdio>

#include <io.h>
#include <windows.h>

#include "host_platform.h"

namespace host::platform {

const char* const kPluginFileName = "zelt_gige_camera.dll";
const char* const kVendorFileName = "VimbaC.dll";

namespace {

std::atomic<bool> s_interrupted{false};

BOOL WINAPI onInterrupt(DWORD event) {
    if (s_interrupted.exchange(true)) return FALSE;
    // The system ends the program as soon as this returns, unless it was a key.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
    return TRUE;
}

class WindowsLibrary : public Library {
  public:
    explicit WindowsLibrary(HMODULE module) : m_module(module) {}
    ~WindowsLibrary() override {
        if (!m_keep) ::FreeLibrary(m_module);
    }
    WindowsLibrary(const WindowsLibrary&) = delete;
    WindowsLibrary& operator=(const WindowsLibrary&) = delete;

    void* symbol(const char* name) const override {
        return std::bit_cast<void*>(::GetProcAddress(m_module, name));
    }
    void keepLoaded() override { m_keep = true; }

  private:
    HMODULE m_module;
    bool m_keep = false;
};

// A missing library is told by the result, not in a window that waits for a click.
class NoErrorWindows {
  public:
    NoErrorWindows() { ::SetThreadErrorMode(SEM_FAILCRITICALERRORS, &m_previous); }
    ~NoErrorWindows() { ::SetThreadErrorMode(m_previous, nullptr); }
    NoErrorWindows(const NoErrorWindows&) = delete;
    NoErrorWindows& operator=(const NoErrorWindows&) = delete;

  private:
    DWORD m_previous = 0;
};

HMODULE load(const std::filesystem::path& file, DWORD& error) {
    const NoErrorWindows quiet;
    // With this flag what the library needs is looked for in its own folder first.
    HMODULE module = ::LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    error = module != nullptr ? ERROR_SUCCESS : ::GetLastError();
    return module;
}

std::filesystem::path folder(UINT WINAPI get(wchar_t*, UINT)) {
    std::wstring name(MAX_PATH, L'\0');
    name.resize(get(name.data(), MAX_PATH));
    return name;
}

// Where the loader looks for what a library in `directory` needs; the program's own folder is not among it.
std::wstring searchPath(const std::filesystem::path& directory) {
    const wchar_t* const more = ::_wgetenv(L"PATH");
    return directory.wstring() + L';' + folder(&::GetSystemDirectoryW).wstring() + L';' +
           folder(&::GetWindowsDirectoryW).wstring() + L";.;" + (more != nullptr ? more : L"");
}

// The loader does not say which library it missed, so the vendor's is tried alone.
DWORD vendorError(const std::filesystem::path& directory) {
    const std::filesystem::path name = kVendorFileName;
    std::wstring found(32768, L'\0');
    const auto size = static_cast<DWORD>(found.size());
    const DWORD length =
        ::SearchPathW(searchPath(directory).c_str(), name.c_str(), nullptr, size, found.data(), nullptr);
    if (length == 0 || length >= size) return ERROR_MOD_NOT_FOUND;
    found.resize(length);
    DWORD error = ERROR_SUCCESS;
    HMODULE module = load(found, error);
    if (module != nullptr) ::FreeLibrary(module);
    return error;
}

std::string numberText(DWORD error) {
    return "(error " + std::to_string(error) + ")";
}

std::string errorText(DWORD error) {
    wchar_t* wide = nullptr;
    ::FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        error, 0, std::bit_cast<wchar_t*>(&wide), 0, nullptr);
    std::wstring text = wide != nullptr ? wide : L"the loader gave no reason";
    ::LocalFree(wide);
    text.erase(text.find_last_not_of(L". \r\n") + 1);
    // A path knows how to convert.
    return std::filesystem::path(text).string() + ' ' + numberText(error);
}

HANDLE handleOf(Stream stream) {
    return ::GetStdHandle(stream == Stream::Out ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

}  // namespace

LoadProblem classifyLoadError(const std::string& text, bool fileExists) {
    if (!fileExists) return LoadProblem::Missing;
    if (text.rfind(kVendorFileName, 0) != 0) return LoadProblem::Other;
    return text.find(numberText(ERROR_MOD_NOT_FOUND)) != std::string::npos ? LoadProblem::VendorMissing
                                                                           : LoadProblem::VendorWrong;
}

std::unique_ptr<Library> loadLibrary(const std::filesystem::path& file, LoadError& error) {
    const std::filesystem::path absolute = std::filesystem::absolute(file);
    DWORD code = ERROR_SUCCESS;
    if (HMODULE module = load(absolute, code); module != nullptr) {
        return std::make_unique<WindowsLibrary>(module);
    }
    std::error_code ignored;
    const bool exists = std::filesystem::exists(absolute, ignored);
    error.text = errorText(code);
    if (exists) {
        const DWORD vendor = vendorError(absolute.parent_path());
        const bool lacksLibrary = vendor != ERROR_SUCCESS && (code == ERROR_MOD_NOT_FOUND || code == vendor);
        const bool lacksFunction = code == ERROR_PROC_NOT_FOUND && vendor == ERROR_SUCCESS;
        if (lacksLibrary) error.text = errorText(vendor);
        if (lacksLibrary || lacksFunction) error.text.insert(0, std::string(kVendorFileName) + ": ");
    }
    error.problem = classifyLoadError(error.text, exists);
    return nullptr;
}

std::unique_ptr<Library> findLoadedLibrary(const char* name) {
    HMODULE module = nullptr;
    if (::GetModuleHandleExA(0, name, &module) == FALSE) return nullptr;
    return std::make_unique<WindowsLibrary>(module);
}

std::filesystem::path executableDirectory() {
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = ::GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
        if (length < name.size()) return std::filesystem::path(name.substr(0, length)).parent_path();
        name.resize(name.size() * 2);
    }
}

bool isTerminal(Stream stream) {
    // A terminal here is one that can wipe a line; consoles do so only when asked for it.
    DWORD mode = 0;
    HANDLE handle = handleOf(stream);
    return ::GetConsoleMode(handle, &mode) != FALSE &&
           ::SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

int terminalWidth(Stream stream) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (::GetConsoleScreenBufferInfo(handleOf(stream), &info) == FALSE) return 80;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

bool showsUtf8() {
    return ::GetConsoleOutputCP() == CP_UTF8;
}

void catchInterrupts() {
    ::SetConsoleCtrlHandler(&onInterrupt, TRUE);
}

bool interruptRequested() {
    return s_interrupted;
}

void makeWriteErrorsReturn() {
    // They do: this system has no signals for them.
}

}  // namespace host::platform
