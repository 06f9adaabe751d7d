#include "camera_row.h"

#include <charconv>

namespace simulator {

std::string ipText(std::uint32_t address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string(address >> shift & 0xFF) + (shift > 0 ? "." : "");
    }
    return text;
}

std::optional<std::uint32_t> ipOf(const std::string& text) {
    std::uint32_t address = 0;
    const char* next = text.data();
    const char* const end = next + text.size();
    for (int shift = 24; shift >= 0; shift -= 8) {
        std::uint8_t octet = 0;
        const auto [stop, error] = std::from_chars(next, end, octet);
        const bool goesOn = stop != end && *stop == '.';
        if (error != std::errc() || goesOn != (shift > 0)) return std::nullopt;
        address |= std::uint32_t{octet} << shift;
        next = goesOn ? stop + 1 : stop;
    }
    return next == end ? std::optional(address) : std::nullopt;
}

}  // namespace simulator
