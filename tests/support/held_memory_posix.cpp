#include <malloc.h>

#include "held_memory.h"
#include "sanitized.h"

#if ZELT_SANITIZED
// Offered by the sanitizers' run-time libraries, which have a heap of their own.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace test_support {

std::size_t heldBytes() {
#if ZELT_SANITIZED
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
#endif
}

}  // namespace test_support
