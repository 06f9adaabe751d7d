#include <windows.h>

#include "held_memory.h"

namespace test_support {

std::size_t heldBytes() {
    const HANDLE heap = GetProcessHeap();
    std::size_t bytes = 0;
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry) != FALSE) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
    }
    HeapUnlock(heap);
    return bytes;
}

}  // namespace test_support
