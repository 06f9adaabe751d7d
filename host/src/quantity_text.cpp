#include "quantity_text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace host {

std::string decimals(double value, int digits) {
    std::array<char, 400> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, digits);
    return {buffer.data(), end.ptr};
}

std::string duration(std::int64_t nanoseconds) {
    const double value = static_cast<double>(nanoseconds);
    const double size = std::abs(value);
    // The bounds lie where the smaller unit would round up to its limit.
    if (size < 999.5) return decimals(value, 0) + " ns";
    if (size < 999.5e3) return decimals(value / 1e3, size < 9.95e3 ? 1 : 0) + " \u00b5s";
    if (size < 999.995e6) return decimals(value / 1e6, 2) + " ms";
    return decimals(value / 1e9, 3) + " s";
}

std::string frameCount(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

}  // namespace host
