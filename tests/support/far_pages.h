/// Memory that can be given back under the simulator's eyes: it lies far from all other, so that nothing else
/// takes its place once it is gone.
#pragma once

#include "test_system.h"

namespace test_support {

class FarPages {
  public:
    explicit FarPages(std::size_t size) : m_size(size), m_memory(reserveFarPages(size)) {}
    ~FarPages() { release(); }
    FarPages(const FarPages&) = delete;
    FarPages& operator=(const FarPages&) = delete;

    void* get() const { return m_memory; }
    void release() {
        if (m_memory != nullptr) releaseFarPages(m_memory, m_size);
        m_memory = nullptr;
    }

  private:
    const std::size_t m_size;
    void* m_memory;
};

}  // namespace test_support
