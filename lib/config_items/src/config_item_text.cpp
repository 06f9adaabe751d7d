#include "config_item_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>
#include <string_view>
#include <typeinfo>

#include <boost/lexical_cast.hpp>

namespace config_items {
namespace {

constexpr int kItemDigits = 17;
constexpr int kStreamDigits = 6;

// The lexical cast reads numbers by the global locale (decimal sign, grouping). This stream reads the same
// texts by the classic one: the whole text, no blanks.
template <class T>
void fromClassicStream(const std::string& text, T& value) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    stream.unsetf(std::ios::skipws);
    if (!(stream >> value) || stream.get() != std::istringstream::traits_type::eof()) {
        throw boost::bad_lexical_cast(typeid(std::string), typeid(T));
    }
}

bool namesNoDigits(const std::string& text) {
    const std::size_t first = text.find_first_not_of("+-");
    return first != std::string::npos && std::string_view("nNiI").find(text[first]) != std::string_view::npos;
}

// Not through a stream: some run-time libraries switch the whole process's locale while one writes a number.
std::string withDigits(double value, int digits) {
    const char* const sign = std::signbit(value) ? "-" : "";
    if (std::isnan(value)) return std::string(sign) + "nan";
    if (std::isinf(value)) return std::string(sign) + "inf";
    std::array<char, 32> text{};
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, digits);
    return {text.data(), result.ptr};
}

}  // namespace

std::string toText(bool value) {
    return value ? "1" : "0";
}

std::string toText(int value) {
    return std::to_string(value);
}

std::string toText(unsigned int value) {
    return std::to_string(value);
}

std::string toText(std::int64_t value) {
    return std::to_string(value);
}

std::string toText(double value) {
    return withDigits(value, kItemDigits);
}

std::string toText(const std::string& value) {
    return value;
}

std::string toText(const channel_config::ChannelID& value) {
    return std::to_string((std::uint64_t{value.first} << 32) + value.second);
}

std::string toText(const TupleValue<double, double>& value) {
    return "(" + toText(value.m_first) + ", " + toText(value.m_second) + ")";
}

void fromText(const std::string& text, bool& value) {
    value = boost::lexical_cast<bool>(text);  // no locale bears on it
}

void fromText(const std::string& text, int& value) {
    fromClassicStream(text, value);
}

void fromText(const std::string& text, unsigned int& value) {
    fromClassicStream(text, value);
}

void fromText(const std::string& text, double& value) {
    if (namesNoDigits(text)) {
        value = boost::lexical_cast<double>(text);  // "nan", "inf": streams do not read them, no locale bears
    } else {
        fromClassicStream(text, value);
    }
}

void fromText(const std::string& text, std::string& value) {
    value = text;
}

void fromText(const std::string& text, channel_config::ChannelID& value) {
    std::uint64_t number = 0;
    fromClassicStream(text, number);
    value.first = static_cast<std::uint32_t>(number >> 32);
    value.second = static_cast<std::uint32_t>(number);
}

std::string toStreamText(double value) {
    return withDigits(value, kStreamDigits);
}

bool equalValues(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b)) || (std::isinf(a) && std::isinf(b));
}

}  // namespace config_items
