/// Memory that can be given back under the simulator's eyes: it lies far from all other, so that nothing else
/// takes its place once it is gone.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <sys/mman.h>

namespace test_support {

class FarPages {
  public:
    explicit FarPages(std::size_t size) : m_size(size) {
        void* near = map(nullptr);
        munmap(near, m_size);
        m_memory = map(static_cast<std::uint8_t*>(near) - nextDistance(m_size));
    }
    ~FarPages() { release(); }
    FarPages(const FarPages&) = delete;
    FarPages& operator=(const FarPages&) = delete;

    void* get() const { return m_memory; }
    void release() {
        if (m_memory != nullptr) munmap(m_memory, m_size);
        m_memory = nullptr;
    }

  private:
    /// Every block has a place of its own.
    static std::ptrdiff_t nextDistance(std::size_t size) {
        static std::atomic<std::ptrdiff_t> distance{std::ptrdiff_t{64} << 30};
        constexpr std::size_t kGap = std::size_t{1} << 20;
        return distance += static_cast<std::ptrdiff_t>((size / kGap + 2) * kGap);
    }
    void* map(void* where) const {
        return mmap(where, m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    }

    const std::size_t m_size;
    void* m_memory = nullptr;
};

}  // namespace test_support
