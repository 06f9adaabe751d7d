/// A page allocator that counts and can refuse.
#pragma once

#include <map>
#include <memory>
#include <set>

#include "far_pages.h"
#include "pages.h"

namespace test_support {

class CountingPages final : public platform::PageAllocator {
  public:
    void* allocate(std::size_t size) noexcept override {
        sizes.insert(size);
        if (refuseAfter == 0 || size == 0) return nullptr;
        if (refuseAfter > 0) --refuseAfter;
        ++held;
        auto block = std::make_unique<FarPages>(size);
        void* const pages = block->get();
        m_blocks[pages] = std::move(block);
        return pages;
    }
    void release(void* pages, std::size_t) noexcept override {
        --held;
        m_blocks.erase(pages);
    }

    int held = 0;                 ///< blocks given out and not yet returned
    int refuseAfter = -1;         ///< blocks still to be given out, negative for no limit
    std::set<std::size_t> sizes;  ///< all sizes ever asked for

  private:
    std::map<void*, std::unique_ptr<FarPages>> m_blocks;
};

}  // namespace test_support
