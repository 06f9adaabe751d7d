/// Configuration items: the typed values in which host and plug-in exchange settings.
///
/// Items are plain values that own their strings and lists; they are not shared between threads without
/// outside locking. All texts are independent of the host's locale. Doubles are equal when they compare
/// equal, are both NaN, or are both infinite whatever their signs. The slot order of the virtual operations
/// is part of the contract with the host.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "channel_config_types.h"
#include "countable.h"
#include "zelt_base_export.h"

namespace config_items {
class IfConfigItem;
}

/// The counter of live items exists once per process, in the library of the items.
template <>
ZELT_BASE_API std::atomic<std::int64_t>& uni::Countable<config_items::IfConfigItem>::counter() noexcept;

namespace config_items {

/// Error of this library. Deliberately not derived from std::exception: handlers catch it by its own name.
class ZELT_BASE_API ConfigItemException {
  public:
    explicit ConfigItemException(std::string message);
    ConfigItemException(const ConfigItemException&) = default;
    ConfigItemException(ConfigItemException&&) = default;
    ConfigItemException& operator=(const ConfigItemException&) = default;
    ConfigItemException& operator=(ConfigItemException&&) = default;
    ~ConfigItemException();

    const std::string& getMessage() const { return m_message; }

  private:
    std::string m_message;
};

/// Root of all items.
class ZELT_BASE_API IfConfigItem : public uni::Countable<IfConfigItem> {
  public:
    virtual ~IfConfigItem();
    virtual std::string toString() const = 0;
    /// False when the items cannot be compared; never throws.
    virtual bool equals(const IfConfigItem& other) const = 0;

  protected:
    IfConfigItem() = default;
    IfConfigItem(const IfConfigItem&) = default;
    IfConfigItem(IfConfigItem&&) = default;
    IfConfigItem& operator=(const IfConfigItem&) = default;
    IfConfigItem& operator=(IfConfigItem&&) = default;
};

/// Items that hold one value.
class ZELT_BASE_API IfValueConfigItem : public IfConfigItem {};

/// Items that hold a list.
class ZELT_BASE_API IfValueListConfigItem : public IfConfigItem {};

/// One value: bool ("1" or "0"), int, unsigned int, double (17 digits), std::string, ChannelID (decimal
/// 64-bit number) or an enumeration (decimal number).
template <class T>
class ZELT_BASE_API SingleValueConfigItem : public IfValueConfigItem {
  public:
    SingleValueConfigItem() : m_value() {}
    explicit SingleValueConfigItem(T value) : m_value(std::move(value)) {}
    /// A literal is no bool; fromText converts texts.
    explicit SingleValueConfigItem(const char*) requires std::is_same_v<T, bool>
    = delete;

    /// Converts as boost::lexical_cast does in the classic locale. Throws ConfigItemException when the text
    /// is no such value.
    static SingleValueConfigItem fromText(const std::string& text);

    std::string toString() const override;
    /// Compares with an item of this type or derived from it, by value only.
    bool equals(const IfConfigItem& other) const override;
    virtual bool equalsTyped(const SingleValueConfigItem& other) const;

    T m_value;
};

ZELT_BASE_TEMPLATE(class SingleValueConfigItem<bool>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<int>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<unsigned int>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<double>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<std::string>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<channel_config::ChannelID>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<channel_config::PhysicalQuantity>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<channel_config::UserScalingMode>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<channel_config::DAQSampleResolution>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<channel_config::SampleOccurrenceType>);
ZELT_BASE_TEMPLATE(class SingleValueConfigItem<channel_config::DAQChannelType>);

/// A number with a unit, "20000 Hz"; without unit the number alone.
class ZELT_BASE_API ScalarConfigItem : public SingleValueConfigItem<double> {
  public:
    explicit ScalarConfigItem(double value, std::string unit = {});
    /// A text without its unit would be no scalar.
    static ScalarConfigItem fromText(const std::string& text) = delete;

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;
    using SingleValueConfigItem<double>::equalsTyped;
    /// Compares value and unit.
    virtual bool equalsTyped(const ScalarConfigItem& other) const;

    std::string m_unit;
};

/// A number between two texts, with nothing in between.
class ZELT_BASE_API DecoratedNumberConfigItem : public SingleValueConfigItem<double> {
  public:
    DecoratedNumberConfigItem(double value, std::string prefix, std::string suffix);
    static DecoratedNumberConfigItem fromText(const std::string& text) = delete;

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;
    using SingleValueConfigItem<double>::equalsTyped;
    /// Compares value, prefix and suffix.
    virtual bool equalsTyped(const DecoratedNumberConfigItem& other) const;

    std::string m_prefix;
    std::string m_suffix;
};

/// An exact fraction with a unit, "30000/1001 Hz"; kept, written and compared as given, never reduced.
class ZELT_BASE_API RationalScalarConfigItem : public IfValueConfigItem {
  public:
    RationalScalarConfigItem(std::int64_t numerator, std::int64_t denominator, std::string unit = {});

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;

    std::int64_t m_numerator;
    std::int64_t m_denominator;
    std::string m_unit;
};

/// A range, "0 pixel .. 1936 pixel". Its numbers are written with six digits, unlike those of all other
/// items.
template <class T>
class ZELT_BASE_API RangeConfigItem : public IfConfigItem {
  public:
    RangeConfigItem(T min, T max, std::string minUnit = {}, std::string maxUnit = {});

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;

    T m_min;
    T m_max;
    std::string m_min_unit;
    std::string m_max_unit;
};

ZELT_BASE_TEMPLATE(class RangeConfigItem<double>);

/// A pair of values, "(1, 2)".
template <class First, class Second>
class ZELT_BASE_API TupleValue final {
  public:
    TupleValue() : m_first(), m_second() {}
    TupleValue(First first, Second second) : m_first(first), m_second(second) {}

    virtual bool equals(const TupleValue& other) const;

    First m_first;
    Second m_second;
};

ZELT_BASE_TEMPLATE(class TupleValue<double, double>);

/// A list of values, their texts joined by ", ".
template <class T>
class ZELT_BASE_API ValueListConfigItem : public IfValueListConfigItem {
  public:
    ValueListConfigItem() = default;
    explicit ValueListConfigItem(std::vector<T> values) : m_values(std::move(values)) {}

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;

    std::vector<T> m_values;
};

ZELT_BASE_TEMPLATE(class ValueListConfigItem<std::string>);
ZELT_BASE_TEMPLATE(class ValueListConfigItem<TupleValue<double, double>>);
ZELT_BASE_TEMPLATE(class ValueListConfigItem<channel_config::ChannelID>);

/// A value of an enumeration that is known by name only.
class ZELT_BASE_API GenericEnumConfigItem : public IfConfigItem {
  public:
    explicit GenericEnumConfigItem(std::string valueName, std::string secondText = {});

    std::string toString() const override;
    bool equals(const IfConfigItem& other) const override;

    std::string m_value_name;
    std::string m_second_text;  ///< not part of the item's text
};

/// Stands for a value that cannot be had; its text is the reason, "Invalid ConfigItem" without one.
class ZELT_BASE_API InvalidConfigItem : public IfConfigItem {
  public:
    InvalidConfigItem() = default;
    explicit InvalidConfigItem(std::string message);

    std::string toString() const override;
    /// True for every item.
    bool equals(const IfConfigItem& other) const override;

    std::string m_message;
};

}  // namespace config_items
