// Windows binds no symbol of one library to another's by name alone, so the counting functions are written
// into the import tables of all loaded modules.
#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>

// clang-format off
#include <windows.h>
#include <psapi.h>  // needs the one above
// clang-format on

#include "allocation_counter.h"

namespace {

thread_local bool t_counting = false;
thread_local std::size_t t_count = 0;

using Malloc = void*(std::size_t);
using Calloc = void*(std::size_t, std::size_t);
using Realloc = void*(void*, std::size_t);

Malloc* s_malloc = nullptr;
Calloc* s_calloc = nullptr;
Realloc* s_realloc = nullptr;
Calloc* s_aligned = nullptr;

void countOne() {
    if (t_counting) ++t_count;
}

void* countedMalloc(std::size_t size) {
    countOne();
    return s_malloc(size);
}

void* countedCalloc(std::size_t count, std::size_t size) {
    countOne();
    return s_calloc(count, size);
}

void* countedRealloc(void* memory, std::size_t size) {
    countOne();
    return s_realloc(memory, size);
}

void* countedAligned(std::size_t size, std::size_t alignment) {
    countOne();
    return s_aligned(size, alignment);
}

struct Replacement {
    std::uintptr_t original;
    std::uintptr_t counting;
};

template <class Function>
Replacement replacement(const char* name, Function*& original, Function* counting) {
    original = std::bit_cast<Function*>(::GetProcAddress(::GetModuleHandleA("msvcrt.dll"), name));
    if (original == nullptr) throw std::runtime_error(std::string("the runtime has no ") + name);
    return {std::bit_cast<std::uintptr_t>(original), std::bit_cast<std::uintptr_t>(counting)};
}

using Replacements = std::array<Replacement, 4>;

const Replacements& replacements() {
    static const Replacements s_all{replacement("malloc", s_malloc, &countedMalloc),
                                    replacement("calloc", s_calloc, &countedCalloc),
                                    replacement("realloc", s_realloc, &countedRealloc),
                                    replacement("_aligned_malloc", s_aligned, &countedAligned)};
    return s_all;
}

void replaceIn(std::uintptr_t& entry) {
    for (const Replacement& one : replacements()) {
        if (entry != one.original) continue;
        DWORD before = 0;
        if (::VirtualProtect(&entry, sizeof entry, PAGE_READWRITE, &before) == FALSE) {
            throw std::runtime_error("an import table cannot be written");
        }
        entry = one.counting;
        ::VirtualProtect(&entry, sizeof entry, before, &before);
        return;
    }
}

void replaceIn(HMODULE module) {
    auto* const base = std::bit_cast<std::byte*>(module);
    const auto at = [&](auto*& out, std::size_t offset) {
        out = std::bit_cast<std::remove_reference_t<decltype(out)>>(base + offset);
    };
    const IMAGE_DOS_HEADER* dos = nullptr;
    at(dos, 0);
    const IMAGE_NT_HEADERS* header = nullptr;
    at(header, static_cast<std::size_t>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& imports = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.VirtualAddress == 0) return;
    const IMAGE_IMPORT_DESCRIPTOR* library = nullptr;
    at(library, imports.VirtualAddress);
    for (; library->Name != 0; ++library) {
        std::uintptr_t* entry = nullptr;
        at(entry, library->FirstThunk);
        for (; *entry != 0; ++entry) replaceIn(*entry);
    }
}

// Also for what was loaded since the last time; system libraries keep to themselves.
void replaceEverywhere() {
    std::array<HMODULE, 1024> modules{};
    DWORD bytes = 0;
    ::EnumProcessModules(::GetCurrentProcess(), modules.data(), sizeof modules, &bytes);
    for (std::size_t i = 0; i < bytes / sizeof(HMODULE) && i < modules.size(); ++i) {
        std::array<char, 32> runtime{};
        ::GetModuleBaseNameA(::GetCurrentProcess(), modules[i], runtime.data(), DWORD{runtime.size()});
        if (std::strcmp(runtime.data(), "msvcrt.dll") != 0) replaceIn(modules[i]);
    }
}

bool countsOwnAllocation() {
    t_count = 0;
    t_counting = true;
    void* volatile memory = std::malloc(1);
    t_counting = false;
    std::free(memory);
    return t_count == 1;
}

}  // namespace

namespace test_support {

AllocationCounter::AllocationCounter() {
    replaceEverywhere();
    // A counter that never counts would pass every test.
    if (!countsOwnAllocation()) throw std::runtime_error("allocations are not counted here");
    t_count = 0;
    t_counting = true;
}

AllocationCounter::~AllocationCounter() {
    t_counting = false;
}

std::size_t AllocationCounter::count() const {
    return t_count;
}

}  // namespace test_support
