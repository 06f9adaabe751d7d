/// Whole memory pages from the operating system, for frame buffers.
#pragma once

#include <cstddef>

namespace platform {

class PageAllocator {
  public:
    virtual ~PageAllocator() = default;
    /// `size` bytes of committed, readable, writable, zeroed memory; null when there is none or size is 0.
    virtual void* allocate(std::size_t size) noexcept = 0;
    /// Gives back what allocate returned for this size.
    virtual void release(void* pages, std::size_t size) noexcept = 0;
};

/// The operating system's pages. [any thread]
PageAllocator& systemPages();

}  // namespace platform
