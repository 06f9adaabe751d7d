#include <windows.h>

#include "pages.h"

namespace platform {
namespace {

class WindowsPages final : public PageAllocator {
  public:
    void* allocate(std::size_t size) noexcept override {
        return size == 0 ? nullptr : ::VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    }
    void release(void* pages, std::size_t) noexcept override { ::VirtualFree(pages, 0, MEM_RELEASE); }
};

}  // namespace

PageAllocator& systemPages() {
    static WindowsPages pages;
    return pages;
}

}  // namespace platform
