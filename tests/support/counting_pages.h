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
        return std::calloc(size, 1);
    }
    void release(void* pages, std::size_t) noexcept override {
        --held;
        std::free(pages);
    }

    int held = 0;                 ///< blocks given out and not yet returned
    int refuseAfter = -1;         ///< blocks still to be given out, negative for no limit
    std::set<std::size_t> sizes;  ///< all sizes ever asked for
};

}  // namespace test_support
