#include <windows.h>

#include "native_memory.h"

namespace simulator {

bool isWritableMemory(void* bytes, std::size_t size) {
    auto* begin = static_cast<char*>(bytes);
    const char* end = begin + size;
    while (begin < end) {
        MEMORY_BASIC_INFORMATION region{};
        if (VirtualQuery(begin, &region, sizeof region) == 0) return false;
        const bool writable =
            (region.Protect & (PAGE_READWRITE | PAGE_EXECUTE_READWRITE | PAGE_WRITECOPY)) != 0;
        if (region.State != MEM_COMMIT || !writable) return false;
        begin = static_cast<char*>(region.BaseAddress) + region.RegionSize;
    }
    return true;
}

}  // namespace simulator
