#include "frame_stamp.h"

#include <bit>
#include <cstring>

namespace simulator {
namespace {

constexpr std::uint64_t kMagic = 0x315a'4d41'5453'5a56;
constexpr std::uint64_t kFactor = 0x9fb2'1c65'1e98'df25;
constexpr std::size_t kLanes = 8;
constexpr std::size_t kFieldsAt = 8;
constexpr std::size_t kSizeAt = 48;
constexpr std::size_t kComplementAt = 56;
constexpr std::size_t kChecksumAt = 64;
static_assert(sizeof(FrameStamp) == kSizeAt - kFieldsAt);

std::uint64_t wordAt(const std::uint8_t* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

std::uint64_t mixed(std::uint64_t lane, std::uint64_t word) {
    return std::rotl((lane ^ word) * kFactor, 29);
}

std::uint64_t joined(const std::uint64_t* lanes, std::uint64_t start) {
    std::uint64_t sum = start;
    for (std::size_t lane = 0; lane < kLanes; ++lane) sum = mixed(sum, lanes[lane]);
    return sum;
}

std::uint64_t checksum(const std::uint8_t* image, std::size_t size) {
    std::uint64_t lanes[kLanes];
    for (std::size_t lane = 0; lane < kLanes; ++lane) lanes[lane] = wordAt(image + lane * 8);

    const std::uint8_t* bytes = image + kStampSize;
    std::size_t left = size - kStampSize;
    for (; left >= kLanes * 8; left -= kLanes * 8, bytes += kLanes * 8) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            lanes[lane] = mixed(lanes[lane], wordAt(bytes + lane * 8));
        }
    }
    std::uint8_t rest[kLanes * 8] = {};
    std::memcpy(rest, bytes, left);
    for (std::size_t lane = 0; lane < kLanes; ++lane)
        lanes[lane] = mixed(lanes[lane], wordAt(rest + lane * 8));
    return joined(lanes, kMagic);
}

}  // namespace

void writeStamp(std::uint8_t* image, std::size_t size, const FrameStamp& stamp) {
    if (size < kStampSize) return;
    const std::uint64_t total = size;
    const std::uint64_t complement = ~kMagic;
    std::memcpy(image, &kMagic, sizeof kMagic);
    std::memcpy(image + kFieldsAt, &stamp, sizeof stamp);
    std::memcpy(image + kSizeAt, &total, sizeof total);
    std::memcpy(image + kComplementAt, &complement, sizeof complement);
    const std::uint64_t sum = checksum(image, size);
    std::memcpy(image + kChecksumAt, &sum, sizeof sum);
}

Result readStamp(const std::uint8_t* image, std::size_t size, FrameStamp& stamp) {
    if (size < kStampSize) return Result::NotFound;
    // Either magic will do, so that damage to one of them is told from a picture without a stamp.
    const bool first = wordAt(image) == kMagic;
    const bool second = wordAt(image + kComplementAt) == ~kMagic;
    if (!first && !second) return Result::NotFound;
    std::memcpy(&stamp, image + kFieldsAt, sizeof stamp);
    const bool whole =
        wordAt(image + kSizeAt) == size && wordAt(image + kChecksumAt) == checksum(image, size);
    return whole ? Result::Success : Result::Incomplete;
}

}  // namespace simulator
