#include <algorithm>
#include <array>
#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

#include "native_memory.h"

// Of the address sanitizer's runtime, where the program has one: the first bad byte, or null.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is the sanitizer's
extern "C" __attribute__((weak)) void* __asan_region_is_poisoned(void* bytes, std::size_t size);

namespace simulator {

bool isWritableMemory(void* bytes, std::size_t size) {
    if (&__asan_region_is_poisoned != nullptr && __asan_region_is_poisoned(bytes, size) != nullptr)
        return false;
    static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    std::array<unsigned char, 1024> pages;
    auto begin = reinterpret_cast<std::uintptr_t>(bytes) / page * page;
    const std::uintptr_t end = reinterpret_cast<std::uintptr_t>(bytes) + size;
    for (; begin < end; begin += pages.size() * page) {
        const std::uintptr_t span = std::min(end - begin, pages.size() * page);
        // Fails when a page is not mapped.
        // NOLINTNEXTLINE(performance-no-int-to-ptr): an address that was rounded down
        if (mincore(reinterpret_cast<void*>(begin), span, pages.data()) != 0) return false;
    }
    return true;
}

}  // namespace simulator
