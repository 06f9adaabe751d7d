/// A page allocator that counts and can refuse.
#pragma once

#include <cstdlib>
#include <set>

#include "pages.h"

namespace test_support {

class CountingPages final : public platform::PageAllocator {
  public:
    void* allocate(std::size_t size) noexcept override {
        sizes.insert(size);
        if (refuseAfter == 0 || size == 0) return nullptr;
        if (refuseAfter > 0) --refuseAfter;
        ++held;
        return take(size);
    }
    void release(void* pages, std::size_t size) noexcept override {
        --held;
        giveBack(pages, size);
    }

    int held = 0;                 ///< blocks given out and not yet returned
    int refuseAfter = -1;         ///< blocks still to be given out, negative for no limit
    std::set<std::size_t> sizes;  ///< all sizes ever asked for

  private:
#if defined(__SANITIZE_ADDRESS__)
    // The sanitizer's heap tells of every byte beyond a block, and of every use after its return.
    static void* take(std::size_t size) {
        return std::calloc(size, 1);
    }
    static void giveBack(void* pages, std::size_t) {
        std::free(pages);
    }
#else
    // Other heaps keep what they are given back, depending on all that was freed before; then it is not seen
    // that a buffer is gone.
    static void* take(std::size_t size) {
        return platform::systemPages().allocate(size);
    }
    static void giveBack(void* pages, std::size_t size) {
        platform::systemPages().release(pages, size);
    }
#endif
};

}  // namespace test_support
