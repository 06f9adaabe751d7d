/// The stamp at the beginning of a picture, with a checksum over the whole picture.
///
/// Layout, native byte order: 0 magic, 8 the stamp's fields in order, 48 bytes of the picture, 56 the
/// magic's complement, 64 checksum; the picture goes on at 72. The checksum covers everything but itself.
///
/// Checksum: the bytes are taken as 64-bit words (the last one filled up with zeros) and dealt to eight
/// lanes in turn; each lane is lane := rotate((lane xor word) * odd constant, 29). Every step can be undone,
/// so a change within one word always shows; the lanes are joined in the same way.
#pragma once

#include <cstddef>
#include <cstdint>

#include "result.h"

namespace simulator {

struct FrameStamp {
    std::uint64_t frameId = 0;
    std::uint64_t cameraTicks = 0;
    std::uint64_t exposureStart = 0;  ///< true nanoseconds
    std::uint64_t way = 0;            ///< nanoseconds
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// Bytes of the stamp; a smaller picture carries none.
inline constexpr std::size_t kStampSize = 72;

/// Stamps a finished picture.
void writeStamp(std::uint8_t* image, std::size_t size, const FrameStamp& stamp);

/// NotFound: no stamp. Incomplete: a stamp, but not of these bytes.
Result readStamp(const std::uint8_t* image, std::size_t size, FrameStamp& stamp);

}  // namespace simulator
