#include <sys/mman.h>

#include "pages.h"

namespace platform {
namespace {

class PosixPages final : public PageAllocator {
  public:
    void* allocate(std::size_t size) noexcept override {
        if (size == 0) return nullptr;
        void* const pages = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        return pages == MAP_FAILED ? nullptr : pages;
    }
    void release(void* pages, std::size_t size) noexcept override { ::munmap(pages, size); }
};

}  // namespace

PageAllocator& systemPages() {
    static PosixPages pages;
    return pages;
}

}  // namespace platform
