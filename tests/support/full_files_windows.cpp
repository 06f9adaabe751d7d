// Windows knows neither a limit nor a device that is always full, so a function that minds both stands
// between the runtime and the system.
#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <limits>
#include <stdexcept>

#include "full_files.h"
#include "import_tables.h"

namespace test_support {
namespace {

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

std::atomic<std::uint64_t> s_limit{kNoLimit};
// Folder and name: the folder is a temporary one, of a name that no other has.
std::filesystem::path s_full;
std::atomic<bool> s_has_full{false};

std::filesystem::path lastTwo(const std::filesystem::path& file) {
    return file.parent_path().filename() / file.filename();
}

bool isFull(HANDLE file) {
    if (!s_has_full) return false;
    std::array<wchar_t, 4096> name{};
    const DWORD length = ::GetFinalPathNameByHandleW(file, name.data(), DWORD{name.size()}, 0);
    return lastTwo(std::wstring(name.data(), length)) == s_full;
}

std::uint64_t roomIn(HANDLE file) {
    // What a failed expectation says is written, wherever it goes.
    const bool isStream =
        file == ::GetStdHandle(STD_OUTPUT_HANDLE) || file == ::GetStdHandle(STD_ERROR_HANDLE);
    if (isStream || ::GetFileType(file) != FILE_TYPE_DISK) return kNoLimit;
    if (isFull(file)) return 0;
    const std::uint64_t limit = s_limit;
    LARGE_INTEGER at{};
    if (limit == kNoLimit || ::SetFilePointerEx(file, LARGE_INTEGER{}, &at, FILE_CURRENT) == FALSE) {
        return kNoLimit;
    }
    return limit - std::min(limit, static_cast<std::uint64_t>(at.QuadPart));
}

BOOL WINAPI writeWithin(HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
    const std::uint64_t room = roomIn(file);
    if (room >= size) return ::WriteFile(file, bytes, size, written, overlapped);
    // What fits lies there, but the caller learns only that it was not all.
    if (room != 0) ::WriteFile(file, bytes, static_cast<DWORD>(room), written, overlapped);
    if (written != nullptr) *written = 0;
    ::SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

void mindWrites() {
    static bool s_done = false;
    if (s_done) return;
    std::size_t replaced = 0;
    // The runtime may take the function from either.
    for (const wchar_t* const library : {L"kernel32.dll", L"kernelbase.dll"}) {
        const auto original =
            std::bit_cast<std::uintptr_t>(::GetProcAddress(::GetModuleHandleW(library), "WriteFile"));
        replaced += replaceImport(::GetModuleHandleW(L"msvcrt.dll"), original,
                                  std::bit_cast<std::uintptr_t>(&writeWithin));
    }
    if (replaced == 0) throw std::runtime_error("the runtime writes by another function");
    s_done = true;
}

}  // namespace

const char* const kTooLarge = kNoRoom;

FileSizeLimit::FileSizeLimit(std::uint64_t bytes) {
    mindWrites();
    s_limit = bytes;
}

FileSizeLimit::~FileSizeLimit() {
    s_limit = kNoLimit;
}

FullFile::FullFile(const std::filesystem::path& file) {
    mindWrites();
    s_full = lastTwo(file);
    s_has_full = true;
}

FullFile::~FullFile() {
    s_has_full = false;
}

}  // namespace test_support
