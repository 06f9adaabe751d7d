#include "picture.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

std::uint8_t at(std::span<const std::byte> bytes, std::size_t index) {
    return std::to_integer<std::uint8_t>(bytes[index]);
}

std::uint8_t clamped(double value) {
    return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

void addYuv(std::vector<std::uint8_t>& out, double y, double u, double v) {
    out.push_back(clamped(y + 1.402 * (v - 128)));
    out.push_back(clamped(y - 0.344136 * (u - 128) - 0.714136 * (v - 128)));
    out.push_back(clamped(y + 1.772 * (u - 128)));
}

void convertGrey(std::span<const std::byte> bytes, std::size_t pixels, std::vector<std::uint8_t>& out) {
    for (std::size_t i = 0; i < pixels; ++i) out.insert(out.end(), 3, at(bytes, i));
}

void convertRgb(std::span<const std::byte> bytes, std::size_t pixels, std::vector<std::uint8_t>& out) {
    for (std::size_t i = 0; i < 3 * pixels; ++i) out.push_back(at(bytes, i));
}

void convertYuv422(std::span<const std::byte> bytes, std::size_t pixels, std::vector<std::uint8_t>& out) {
    for (std::size_t pair = 0; pair + 1 < pixels; pair += 2) {
        const std::size_t first = 2 * pair;
        const std::uint8_t u = at(bytes, first);
        const std::uint8_t v = at(bytes, first + 2);
        addYuv(out, at(bytes, first + 1), u, v);
        addYuv(out, at(bytes, first + 3), u, v);
    }
    // The last of an odd number of pixels has a U of its own but no V.
    if (pixels % 2 == 1) addYuv(out, at(bytes, 2 * pixels - 1), at(bytes, 2 * pixels - 2), 128);
}

struct Format {
    const char* name;
    std::size_t bytesPerPixel;
    void (*convert)(std::span<const std::byte>, std::size_t, std::vector<std::uint8_t>&);
};

constexpr Format kFormats[] = {
    {"Y800", 1, &convertGrey}, {"Y422", 2, &convertYuv422}, {"RGB", 3, &convertRgb}};

}  // namespace

std::optional<RgbPicture> toRgb(const std::string& format, std::uint32_t width, std::uint32_t height,
                                std::span<const std::byte> bytes) {
    const std::size_t pixels = std::size_t{width} * height;
    for (const Format& row : kFormats) {
        if (format != row.name) continue;
        if (pixels == 0 || bytes.size() < pixels * row.bytesPerPixel) return std::nullopt;
        RgbPicture picture{width, height, {}};
        picture.bytes.reserve(3 * pixels);
        row.convert(bytes, pixels, picture.bytes);
        return picture;
    }
    return std::nullopt;
}

}  // namespace host
