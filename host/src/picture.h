#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

/// A picture of three bytes per pixel: red, green, blue.
struct RgbPicture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> bytes;
};

/// Converts a camera's picture. Formats: "Y800" (grey), "RGB", and "Y422" (two pixels in the byte order U, Y,
/// V, Y; BT.601, all values from 0 to 255). Empty when the format is unknown or the bytes are too few.
std::optional<RgbPicture> toRgb(const std::string& format, std::uint32_t width, std::uint32_t height,
                                std::span<const std::byte> bytes);

}  // namespace host
