/// Values of settings as texts, and back.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "config_item_variant.h"

namespace host {

/// A text that is no value of the kind asked for; says what is wrong and what would be right.
class BadValue : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// An exact fraction, in lowest terms with a denominator greater than 0.
struct Fraction {
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;

    double value() const { return static_cast<double>(numerator) / static_cast<double>(denominator); }
    /// "30000/1001", or "100" for a whole number.
    std::string text() const {
        return std::to_string(numerator) + (denominator == 1 ? "" : '/' + std::to_string(denominator));
    }
};

/// "30000/1001", "100" or "29.97", the last one as 2997/100. Throws BadValue.
Fraction fractionFromText(const std::string& text);

/// The shortest text that gives the same number again, with a point in every locale.
std::string numberText(double value);

/// A value without its unit; the reason when it cannot be had.
std::string valueText(const config_items::ConfigItemVariant& item);
/// Its unit; empty without one.
std::string unitText(const config_items::ConfigItemVariant& item);

/// An item of the kind of `present` with the value of a text: a number or fraction, with the item's unit or
/// without, "1", "0", "true" or "false", or any text. Throws BadValue.
config_items::ConfigItemVariant itemFromText(const config_items::ConfigItemVariant& present,
                                             const std::string& text);

/// The number in an item; empty when there is none.
std::optional<double> itemNumber(const config_items::ConfigItemVariant& item);

}  // namespace host
