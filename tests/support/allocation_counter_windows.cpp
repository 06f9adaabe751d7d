// Windows binds no symbol of one library to another's by name alone, so the counting functions are written
// into the import tables of all loaded modules.
#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

// clang-format off
#include <windows.h>
#include <psapi.h>  // needs the one above
// clang-format on

#include "allocation_counter.h"
#include "import_tables.h"

namespace {

// The compiler's own variables of a thread allocate at first use, which the counting functions must not.
// Zero: this thread does not count; else one more than what it has counted.
const DWORD s_slot = ::TlsAlloc();

std::uintptr_t slot() {
    return std::bit_cast<std::uintptr_t>(::TlsGetValue(s_slot));
}

void setSlot(std::uintptr_t value) {
    ::TlsSetValue(s_slot, std::bit_cast<void*>(value));
}

using Malloc = void*(std::size_t);
using Calloc = void*(std::size_t, std::size_t);
using Realloc = void*(void*, std::size_t);

Malloc* s_malloc = nullptr;
Calloc* s_calloc = nullptr;
Realloc* s_realloc = nullptr;
Calloc* s_aligned = nullptr;

void countOne() {
    if (const std::uintptr_t value = slot(); value != 0) setSlot(value + 1);
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

// Also for what was loaded since the last time; system libraries keep to themselves.
void replaceEverywhere() {
    std::array<HMODULE, 1024> modules{};
    DWORD bytes = 0;
    ::EnumProcessModules(::GetCurrentProcess(), modules.data(), sizeof modules, &bytes);
    // It takes milliseconds, and tests count in every frame.
    static std::array<HMODULE, 1024> s_done{};
    if (std::exchange(s_done, modules) == modules) return;
    for (std::size_t i = 0; i < bytes / sizeof(HMODULE) && i < modules.size(); ++i) {
        std::array<char, 32> runtime{};
        ::GetModuleBaseNameA(::GetCurrentProcess(), modules[i], runtime.data(), DWORD{runtime.size()});
        if (std::strcmp(runtime.data(), "msvcrt.dll") == 0) continue;
        for (const Replacement& one : replacements()) {
            test_support::replaceImport(modules[i], one.original, one.counting);
        }
    }
}

bool countsOwnAllocation() {
    setSlot(1);
    void* volatile memory = std::malloc(1);
    const std::uintptr_t value = slot();
    setSlot(0);
    std::free(memory);
    return value == 2;
}

}  // namespace

namespace test_support {

AllocationCounter::AllocationCounter() {
    replaceEverywhere();
    // A counter that never counts would pass every test.
    if (!countsOwnAllocation()) throw std::runtime_error("allocations are not counted here");
    setSlot(1);
}

AllocationCounter::~AllocationCounter() {
    setSlot(0);
}

std::size_t AllocationCounter::count() const {
    return slot() - 1;
}

}  // namespace test_support
