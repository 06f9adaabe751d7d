/// What keeps the frames of two cameras off each other's memory.
#pragma once

#include <cstddef>

namespace platform {

/// Bytes. What is written with every frame of a camera begins at a multiple of it and shares none with
/// another's, lest cores wait for each other where nothing is shared: one hands memory to another by lines of
/// 64 bytes, and fetches the line beside the one that it needs.
inline constexpr std::size_t kInterferenceSize = 128;

}  // namespace platform
