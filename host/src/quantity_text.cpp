#include "quantity_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

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

std::string utcText(std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(floor<milliseconds>(time - day));
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                  static_cast<int>(clock.subseconds().count()));
    return text.data();
}

std::string frameCount(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

}  // namespace host
