#include <algorithm>
#include <cstddef>

#include "test_picture.h"

namespace simulator {
namespace {

// The formats that the scenarios' cameras offer, by the vendor's numbers.
constexpr std::uint32_t kMono12 = 0x01100005;
constexpr std::uint32_t kBayerRg8 = 0x01080009;
constexpr std::uint32_t kRgb8 = 0x02180014;
constexpr std::uint32_t kBgr8 = 0x02180015;
constexpr std::uint32_t kYuv411 = 0x020C001E;
constexpr std::uint32_t kYuv422 = 0x0210001F;

std::uint8_t clamped(int value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

// Full-range luminance and colour differences with the weights of standard-definition television.
std::uint8_t luminance(const Colour& c) {
    return clamped((77 * c.red + 150 * c.green + 29 * c.blue + 128) / 256);
}
std::uint8_t blueDifference(const Colour& c) {
    return clamped((128 * c.blue - 43 * c.red - 85 * c.green) / 256 + 128);
}
std::uint8_t redDifference(const Colour& c) {
    return clamped((128 * c.red - 107 * c.green - 21 * c.blue) / 256 + 128);
}

void appendBayer(std::vector<std::uint8_t>& row, const Colour& c, std::size_t x, std::uint32_t y) {
    if (y % 2 == 0) {
        row.push_back(x % 2 == 0 ? c.red : c.green);
    } else {
        row.push_back(x % 2 == 0 ? c.green : c.blue);
    }
}

void appendYuv422(std::vector<std::uint8_t>& row, const Colour& left, const Colour& right) {
    row.insert(row.end(), {blueDifference(left), luminance(left), redDifference(left), luminance(right)});
}

void appendYuv411(std::vector<std::uint8_t>& row, const Colour* four) {
    row.insert(row.end(), {blueDifference(four[0]), luminance(four[0]), luminance(four[1]),
                           redDifference(four[0]), luminance(four[2]), luminance(four[3])});
}

}  // namespace

std::vector<std::uint8_t> encodeRow(std::uint32_t format, const std::vector<Colour>& pixels,
                                    std::uint32_t y) {
    std::vector<std::uint8_t> row;
    const std::size_t width = pixels.size();
    for (std::size_t x = 0; x < width; ++x) {
        const Colour& c = pixels[x];
        switch (format) {
            case kRgb8:
                row.insert(row.end(), {c.red, c.green, c.blue});
                break;
            case kBgr8:
                row.insert(row.end(), {c.blue, c.green, c.red});
                break;
            case kBayerRg8:
                appendBayer(row, c, x, y);
                break;
            case kMono12: {
                const auto grey = static_cast<std::uint16_t>(luminance(c) << 4);
                row.push_back(static_cast<std::uint8_t>(grey & 0xFF));
                row.push_back(static_cast<std::uint8_t>(grey >> 8));
                break;
            }
            case kYuv422:
                if (x % 2 == 0 && x + 1 < width) appendYuv422(row, c, pixels[x + 1]);
                break;
            case kYuv411:
                if (x % 4 == 0 && x + 3 < width) appendYuv411(row, &c);
                break;
            default:
                row.push_back(luminance(c));
                break;
        }
    }
    // Pixels that fill no group of their format, and formats that are not told apart above.
    row.resize(width * (format >> 16 & 0xFF) / 8);
    return row;
}

}  // namespace simulator
