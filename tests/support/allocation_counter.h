/// Counts calls of malloc and its relatives, operator new included, by the current thread.
#pragma once

#include <cstddef>

namespace test_support {

/// Counts while it lives. A test program that uses it has its malloc replaced (or hooked, where a sanitizer
/// brings its own).
class AllocationCounter {
  public:
    AllocationCounter();
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    std::size_t count() const;
};

}  // namespace test_support
