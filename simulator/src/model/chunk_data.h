/// What a camera sends behind a picture in chunk mode: 48 bytes, the highest byte of each number first.
#pragma once

#include <cstddef>
#include <cstdint>

#include "result.h"

namespace simulator {

struct ChunkData {
    std::uint32_t acquisitionCount = 0;  ///< of the frame within its acquisition, from 1
    std::uint32_t exposureUs = 0;
    std::uint32_t gainDb = 0;
    std::uint16_t inputs = 0;  ///< levels of the lines
    std::uint16_t outputs = 0;
};

/// Bytes of the data alone, and with the chunk's identifier and length behind them.
inline constexpr std::size_t kChunkSize = 40;
inline constexpr std::size_t kChunkTrailerSize = 48;

void writeChunkTrailer(std::uint8_t* bytes, const ChunkData& data);

/// NotFound when there is no such trailer.
Result readChunkTrailer(const std::uint8_t* bytes, ChunkData& data);

}  // namespace simulator
