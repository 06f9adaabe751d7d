#include "setting_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <numeric>

namespace host {
namespace {

using config_items::ConfigItemVariant;
using config_items::RationalScalarConfigItem;
using config_items::ScalarConfigItem;
template <class T>
using Single = config_items::SingleValueConfigItem<T>;

constexpr const char* kNumberHelp = "; a number is written like 640 or 0.5, a fraction like 30000/1001";

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

template <class Number>
std::optional<Number> parseWhole(const std::string& text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

template <class Number>
Number parseNumber(const std::string& text) {
    const auto number = parseWhole<Number>(text);
    if (!number) throw BadValue(quoted(text) + " is no number" + kNumberHelp);
    return *number;
}

Fraction reduced(std::int64_t numerator, std::int64_t denominator) {
    const std::int64_t divisor = std::gcd(numerator, denominator);
    return {numerator / divisor, denominator / divisor};
}

Fraction quotient(const std::string& text, std::size_t slash) {
    const auto numerator = parseWhole<std::int64_t>(text.substr(0, slash));
    const auto denominator = parseWhole<std::int64_t>(text.substr(slash + 1));
    if (!numerator || !denominator || *numerator == std::numeric_limits<std::int64_t>::min()) {
        throw BadValue(quoted(text) + " is no fraction of two whole numbers; it is written like 30000/1001");
    }
    if (*denominator <= 0) {
        throw BadValue(quoted(text) + " is no fraction; the number below the line must be greater than 0");
    }
    return reduced(*numerator, *denominator);
}

Fraction decimal(const std::string& text) {
    std::string digits = text;
    std::int64_t denominator = 1;
    if (const std::size_t point = text.find('.'); point != std::string::npos) {
        digits.erase(point, 1);
        const std::size_t places = digits.size() - point;
        // 10^18 is the greatest power of ten of 64 bits.
        if (places == 0 || places > 18) throw BadValue(quoted(text) + " is no number" + kNumberHelp);
        for (std::size_t i = 0; i < places; ++i) denominator *= 10;
    }
    const auto numerator = parseWhole<std::int64_t>(digits);
    if (!numerator || *numerator == std::numeric_limits<std::int64_t>::min()) {
        throw BadValue(quoted(text) + " is no number" + kNumberHelp);
    }
    return reduced(*numerator, denominator);
}

double parseScalar(const std::string& text) {
    const double value =
        text.find('/') != std::string::npos ? fractionFromText(text).value() : parseNumber<double>(text);
    if (!std::isfinite(value)) throw BadValue(quoted(text) + " is no number" + kNumberHelp);
    return value;
}

std::string withoutUnit(const std::string& text, const std::string& unit) {
    if (unit.empty() || !text.ends_with(unit)) return text;
    std::string number = text.substr(0, text.size() - unit.size());
    number.erase(number.find_last_not_of(' ') + 1);
    return number;
}

/// Refuses a number with another unit than the setting's.
void refuseOtherUnit(const std::string& text, const std::string& unit) {
    double number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr == end) return;
    const std::string digits(text.data(), result.ptr);
    std::string rest(result.ptr, end);
    rest.erase(0, rest.find_first_not_of(' '));
    const bool isWord = rest.find_first_of("0123456789./+-") == std::string::npos;
    if (rest == unit || rest.empty() || !isWord) return;
    throw BadValue(quoted(text) + " is no number; " +
                   (unit.empty() ? "this setting has no unit: write " + digits
                                 : "the unit is " + unit + ": write " + digits + ' ' + unit));
}

/// Value and unit by the kind of item; what is not named is shown by its own text.
struct Shown {
    std::string operator()(const ScalarConfigItem& item) const { return numberText(item.m_value); }
    std::string operator()(const Single<double>& item) const { return numberText(item.m_value); }
    std::string operator()(const RationalScalarConfigItem& item) const {
        return std::to_string(item.m_numerator) + '/' + std::to_string(item.m_denominator);
    }
    template <class Item>
    std::string operator()(const Item& item) const {
        return item.toString();
    }
};

struct Unit {
    std::string operator()(const ScalarConfigItem& item) const { return item.m_unit; }
    std::string operator()(const RationalScalarConfigItem& item) const { return item.m_unit; }
    template <class Item>
    std::string operator()(const Item&) const {
        return {};
    }
};

struct Read {
    const std::string& text;

    ConfigItemVariant operator()(const Single<std::string>&) const { return Single<std::string>(text); }
    ConfigItemVariant operator()(const Single<double>&) const { return Single<double>(parseScalar(text)); }
    ConfigItemVariant operator()(const Single<int>&) const { return Single<int>(parseNumber<int>(text)); }
    ConfigItemVariant operator()(const Single<unsigned int>&) const {
        return Single<unsigned int>(parseNumber<unsigned int>(text));
    }
    ConfigItemVariant operator()(const Single<bool>&) const {
        for (const char* yes : {"1", "true"}) {
            if (text == yes) return Single<bool>(true);
        }
        for (const char* no : {"0", "false"}) {
            if (text == no) return Single<bool>(false);
        }
        throw BadValue(quoted(text) + " is neither yes nor no; write 1 or 0");
    }
    ConfigItemVariant operator()(const ScalarConfigItem& item) const {
        refuseOtherUnit(text, item.m_unit);
        return ScalarConfigItem(parseScalar(withoutUnit(text, item.m_unit)), item.m_unit);
    }
    ConfigItemVariant operator()(const RationalScalarConfigItem& item) const {
        const Fraction fraction = fractionFromText(withoutUnit(text, item.m_unit));
        return RationalScalarConfigItem(fraction.numerator, fraction.denominator, item.m_unit);
    }
    ConfigItemVariant operator()(const config_items::InvalidConfigItem&) const {
        throw BadValue("the setting has no value now, so none can be given");
    }
    template <class Item>
    ConfigItemVariant operator()(const Item&) const {
        throw BadValue("values of this kind cannot be given as text");
    }
};

}  // namespace

Fraction fractionFromText(const std::string& text) {
    const std::size_t slash = text.find('/');
    return slash != std::string::npos ? quotient(text, slash) : decimal(text);
}

std::string numberText(double value) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), end.ptr};
}

std::string valueText(const ConfigItemVariant& item) {
    return boost::apply_visitor(Shown{}, item);
}

std::string unitText(const ConfigItemVariant& item) {
    return boost::apply_visitor(Unit{}, item);
}

ConfigItemVariant itemFromText(const ConfigItemVariant& present, const std::string& text) {
    return boost::apply_visitor(Read{text}, present);
}

std::optional<double> itemNumber(const ConfigItemVariant& item) {
    if (const auto* scalar = boost::get<ScalarConfigItem>(&item)) return scalar->m_value;
    if (const auto* number = boost::get<Single<double>>(&item)) return number->m_value;
    if (const auto* ratio = boost::get<RationalScalarConfigItem>(&item)) {
        if (ratio->m_denominator == 0) return std::nullopt;
        return static_cast<double>(ratio->m_numerator) / static_cast<double>(ratio->m_denominator);
    }
    return std::nullopt;
}

}  // namespace host
