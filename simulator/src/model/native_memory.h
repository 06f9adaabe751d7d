/// What the operating system knows about memory. One source per system.
#pragma once

#include <cstddef>

namespace simulator {

/// Can all of it be written? Also false, in a program built with the address sanitizer, for memory that was
/// given back to the heap; without it the heap's memory counts as there.
bool isWritableMemory(void* bytes, std::size_t size);

}  // namespace simulator
