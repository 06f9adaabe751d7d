/// What the process holds of the heap, for tests that let time pass and look for leaks.
#pragma once

#include <cstddef>

namespace test_support {

/// Bytes that are allocated and not freed, by all threads and libraries.
std::size_t heldBytes();

}  // namespace test_support
