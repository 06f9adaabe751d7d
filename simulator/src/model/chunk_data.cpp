#include "chunk_data.h"

#include <algorithm>

namespace simulator {
namespace {

constexpr std::uint32_t kChunkId = 1000;
constexpr std::size_t kCountAt = 0;
constexpr std::size_t kExposureAt = 8;
constexpr std::size_t kGainAt = 12;
constexpr std::size_t kInputsAt = 16;
constexpr std::size_t kOutputsAt = 18;
constexpr std::size_t kIdAt = kChunkSize;
constexpr std::size_t kLengthAt = kIdAt + 4;
static_assert(kLengthAt + 4 == kChunkTrailerSize);

template <typename Number>
void put(std::uint8_t* bytes, Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i) {
        bytes[i] = static_cast<std::uint8_t>(number >> 8 * (sizeof number - 1 - i) & 0xFF);
    }
}

template <typename Number>
Number get(const std::uint8_t* bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i) number = number << 8 | bytes[i];
    return static_cast<Number>(number);
}

}  // namespace

void writeChunkTrailer(std::uint8_t* bytes, const ChunkData& data) {
    std::fill_n(bytes, kChunkTrailerSize, std::uint8_t{0});
    put(bytes + kCountAt, data.acquisitionCount);
    put(bytes + kExposureAt, data.exposureUs);
    put(bytes + kGainAt, data.gainDb);
    put(bytes + kInputsAt, data.inputs);
    put(bytes + kOutputsAt, data.outputs);
    put(bytes + kIdAt, kChunkId);
    put(bytes + kLengthAt, static_cast<std::uint32_t>(kChunkSize));
}

Result readChunkTrailer(const std::uint8_t* bytes, ChunkData& data) {
    const bool known =
        get<std::uint32_t>(bytes + kIdAt) == kChunkId && get<std::uint32_t>(bytes + kLengthAt) == kChunkSize;
    if (!known) return Result::NotFound;
    data = {get<std::uint32_t>(bytes + kCountAt), get<std::uint32_t>(bytes + kExposureAt),
            get<std::uint32_t>(bytes + kGainAt), get<std::uint16_t>(bytes + kInputsAt),
            get<std::uint16_t>(bytes + kOutputsAt)};
    return Result::Success;
}

}  // namespace simulator
