#include <cerrno>

#include "allocation_counter.h"
#include "sanitized.h"

#if ZELT_SANITIZED
// Offered by the sanitizers' run-time libraries; the compiler package does not install their header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void*, std::size_t),
                                                         void (*freed)(const volatile void*));
#endif

namespace {

thread_local bool t_counting = false;
thread_local std::size_t t_count = 0;

void countOne() {
    if (t_counting) ++t_count;
}

}  // namespace

#if ZELT_SANITIZED

namespace {

void allocated(const volatile void*, std::size_t) {
    countOne();
}
void freed(const volatile void*) {}

const int s_installed = __sanitizer_install_malloc_and_free_hooks(&allocated, &freed);

}  // namespace

#else

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
    countOne();
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) {
    countOne();
    return __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void* realloc(void* memory, std::size_t size) {
    countOne();
    return __libc_realloc(memory, size);
}

__attribute__((visibility("default"))) void* aligned_alloc(std::size_t alignment, std::size_t size) {
    countOne();
    return __libc_memalign(alignment, size);
}

__attribute__((visibility("default"))) int posix_memalign(void** out, std::size_t alignment,
                                                          std::size_t size) {
    countOne();
    *out = __libc_memalign(alignment, size);
    return *out != nullptr ? 0 : ENOMEM;
}

}  // extern "C"

#endif

namespace test_support {

AllocationCounter::AllocationCounter() {
    t_count = 0;
    t_counting = true;
}

AllocationCounter::~AllocationCounter() {
    t_counting = false;
}

std::size_t AllocationCounter::count() const {
    return t_count;
}

}  // namespace test_support
