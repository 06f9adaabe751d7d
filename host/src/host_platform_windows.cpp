#include <atomic>
#include <bit>
#include <cstdio>
#include <cstdlib>

#include <io.h>
#include <windows.h>

#include "host_platform.h"

namespace host::platform {

const char* const kPluginFileName = "zelt_plugin_gige_camera.dll";
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

// With the default what the library needs is looked for in its own folder first.
HMODULE load(const std::filesystem::path& file, DWORD& error, DWORD how = LOAD_WITH_ALTERED_SEARCH_PATH) {
    const NoErrorWindows quiet;
    HMODULE module = ::LoadLibraryExW(file.c_str(), nullptr, how);
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
HMODULE loadVendor(const std::filesystem::path& directory, DWORD& error) {
    const std::filesystem::path name = kVendorFileName;
    std::wstring found(32768, L'\0');
    const auto size = static_cast<DWORD>(found.size());
    const DWORD length =
        ::SearchPathW(searchPath(directory).c_str(), name.c_str(), nullptr, size, found.data(), nullptr);
    error = ERROR_MOD_NOT_FOUND;
    if (length == 0 || length >= size) return nullptr;
    found.resize(length);
    return load(found, error);
}

template <class Structure>
const Structure* at(HMODULE image, std::size_t offset) {
    // The lowest bits of a mapped library's handle say how it is mapped.
    return std::bit_cast<const Structure*>((std::bit_cast<std::uintptr_t>(image) & ~std::uintptr_t{3}) +
                                           offset);
}

const IMAGE_IMPORT_DESCRIPTOR* importsOfVendor(HMODULE image) {
    const auto* header =
        at<IMAGE_NT_HEADERS64>(image, static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(image, 0)->e_lfanew));
    const DWORD imports = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (imports == 0) return nullptr;
    for (const auto* entry = at<IMAGE_IMPORT_DESCRIPTOR>(image, imports); entry->Name != 0; ++entry) {
        if (::_stricmp(at<char>(image, entry->Name), kVendorFileName) == 0) return entry;
    }
    return nullptr;
}

// Nor does it say which function it missed, and Wine's loader goes on without it; empty when all are there.
std::string missingFunction(HMODULE image, HMODULE vendor) {
    const IMAGE_IMPORT_DESCRIPTOR* imports = importsOfVendor(image);
    if (imports == nullptr) return {};
    const auto* thunk = at<IMAGE_THUNK_DATA64>(image, imports->OriginalFirstThunk);
    for (; thunk->u1.AddressOfData != 0; ++thunk) {
        if (IMAGE_SNAP_BY_ORDINAL64(thunk->u1.Ordinal)) continue;
        const char* name = at<IMAGE_IMPORT_BY_NAME>(image, thunk->u1.AddressOfData)->Name;
        if (::GetProcAddress(vendor, name) == nullptr) return name;
    }
    return {};
}

std::string missingVendorFunction(const std::filesystem::path& plugin, HMODULE vendor) {
    DWORD ignored = ERROR_SUCCESS;
    HMODULE image = load(plugin, ignored, LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    if (image == nullptr) return {};
    std::string name = missingFunction(image, vendor);
    ::FreeLibrary(image);
    return name;
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
    if (text.rfind(L"%1", 0) == 0) text.replace(0, 2, L"the file");
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
    HMODULE module = load(absolute, code);
    DWORD vendorCode = ERROR_SUCCESS;
    HMODULE vendor = loadVendor(absolute.parent_path(), vendorCode);
    const std::string missing = vendor != nullptr ? missingVendorFunction(absolute, vendor) : "";
    if (vendor != nullptr) ::FreeLibrary(vendor);
    if (module != nullptr && missing.empty()) return std::make_unique<WindowsLibrary>(module);

    if (module != nullptr) ::FreeLibrary(module);
    std::error_code ignored;
    const bool exists = std::filesystem::exists(absolute, ignored);
    error.text = errorText(code);
    const bool lacksLibrary =
        vendorCode != ERROR_SUCCESS && (code == ERROR_MOD_NOT_FOUND || code == vendorCode);
    if (exists && lacksLibrary) error.text = std::string(kVendorFileName) + ": " + errorText(vendorCode);
    if (!missing.empty()) error.text = std::string(kVendorFileName) + ": it has no function " + missing;
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
