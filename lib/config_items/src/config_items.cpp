#include "config_items.h"

#include <algorithm>
#include <typeinfo>

#include <boost/lexical_cast.hpp>

#include "config_item_text.h"

template <>
std::atomic<std::int64_t>& uni::Countable<config_items::IfConfigItem>::counter() noexcept {
    static constinit std::atomic<std::int64_t> s_live{0};
    return s_live;
}

namespace config_items {
namespace {

uni::CountedType s_counted{"config_items::IfConfigItem", &IfConfigItem::getInstanceCount};
[[maybe_unused]] const bool s_registered = (uni::registerCountedType(s_counted), true);

template <class T>
bool sameValues(const T& a, const T& b) {
    return a == b;
}

bool sameValues(double a, double b) {
    return equalValues(a, b);
}

bool sameValues(const TupleValue<double, double>& a, const TupleValue<double, double>& b) {
    return a.equals(b);
}

template <class T>
std::string textOf(const T& value) {
    if constexpr (std::is_enum_v<T>) {
        return toText(static_cast<std::underlying_type_t<T>>(value));
    } else {
        return toText(value);
    }
}

template <class T>
void valueOf(const std::string& text, T& value) {
    if constexpr (std::is_enum_v<T>) {
        std::underlying_type_t<T> number = 0;
        fromText(text, number);
        value = static_cast<T>(number);
    } else {
        fromText(text, value);
    }
}

std::string withUnit(const std::string& number, const std::string& unit) {
    return unit.empty() ? number : number + " " + unit;
}

template <class Item>
bool equalsAs(const Item& item, const IfConfigItem& other) noexcept {
    try {
        const auto* const same = dynamic_cast<const Item*>(&other);
        return same != nullptr && item.equalsTyped(*same);
    } catch (...) {
        return false;
    }
}

}  // namespace

ConfigItemException::ConfigItemException(std::string message) : m_message(std::move(message)) {}

ConfigItemException::~ConfigItemException() = default;

IfConfigItem::~IfConfigItem() = default;

template <class T>
SingleValueConfigItem<T> SingleValueConfigItem<T>::fromText(const std::string& text) {
    try {
        T value{};
        valueOf(text, value);
        return SingleValueConfigItem(std::move(value));
    } catch (const boost::bad_lexical_cast&) {
        throw ConfigItemException("Can not convert '" + text + "' to type " + typeid(T).name());
    }
}

template <class T>
std::string SingleValueConfigItem<T>::toString() const {
    return textOf(m_value);
}

template <class T>
bool SingleValueConfigItem<T>::equals(const IfConfigItem& other) const {
    return equalsAs(*this, other);
}

template <class T>
bool SingleValueConfigItem<T>::equalsTyped(const SingleValueConfigItem& other) const {
    return sameValues(m_value, other.m_value);
}

template class SingleValueConfigItem<bool>;
template class SingleValueConfigItem<int>;
template class SingleValueConfigItem<unsigned int>;
template class SingleValueConfigItem<double>;
template class SingleValueConfigItem<std::string>;
template class SingleValueConfigItem<channel_config::ChannelID>;
template class SingleValueConfigItem<channel_config::PhysicalQuantity>;
template class SingleValueConfigItem<channel_config::UserScalingMode>;
template class SingleValueConfigItem<channel_config::DAQSampleResolution>;
template class SingleValueConfigItem<channel_config::SampleOccurrenceType>;
template class SingleValueConfigItem<channel_config::DAQChannelType>;

ScalarConfigItem::ScalarConfigItem(double value, std::string unit)
    : SingleValueConfigItem<double>(value), m_unit(std::move(unit)) {}

std::string ScalarConfigItem::toString() const {
    return withUnit(toText(m_value), m_unit);
}

bool ScalarConfigItem::equals(const IfConfigItem& other) const {
    return equalsAs(*this, other);
}

bool ScalarConfigItem::equalsTyped(const ScalarConfigItem& other) const {
    return equalValues(m_value, other.m_value) && m_unit == other.m_unit;
}

DecoratedNumberConfigItem::DecoratedNumberConfigItem(double value, std::string prefix, std::string suffix)
    : SingleValueConfigItem<double>(value), m_prefix(std::move(prefix)), m_suffix(std::move(suffix)) {}

std::string DecoratedNumberConfigItem::toString() const {
    return m_prefix + toText(m_value) + m_suffix;
}

bool DecoratedNumberConfigItem::equals(const IfConfigItem& other) const {
    return equalsAs(*this, other);
}

bool DecoratedNumberConfigItem::equalsTyped(const DecoratedNumberConfigItem& other) const {
    return equalValues(m_value, other.m_value) && m_prefix == other.m_prefix && m_suffix == other.m_suffix;
}

RationalScalarConfigItem::RationalScalarConfigItem(std::int64_t numerator, std::int64_t denominator,
                                                   std::string unit)
    : m_numerator(numerator), m_denominator(denominator), m_unit(std::move(unit)) {}

std::string RationalScalarConfigItem::toString() const {
    std::string number = toText(m_numerator);
    if (m_denominator != 1) number += "/" + toText(m_denominator);
    return withUnit(number, m_unit);
}

bool RationalScalarConfigItem::equals(const IfConfigItem& other) const {
    const auto* const same = dynamic_cast<const RationalScalarConfigItem*>(&other);
    return same != nullptr && m_numerator == same->m_numerator && m_denominator == same->m_denominator &&
           m_unit == same->m_unit;
}

template <class T>
RangeConfigItem<T>::RangeConfigItem(T min, T max, std::string minUnit, std::string maxUnit)
    : m_min(min), m_max(max), m_min_unit(std::move(minUnit)), m_max_unit(std::move(maxUnit)) {}

template <class T>
std::string RangeConfigItem<T>::toString() const {
    return withUnit(toStreamText(m_min), m_min_unit) + " .. " + withUnit(toStreamText(m_max), m_max_unit);
}

template <class T>
bool RangeConfigItem<T>::equals(const IfConfigItem& other) const {
    const auto* const same = dynamic_cast<const RangeConfigItem*>(&other);
    return same != nullptr && sameValues(m_min, same->m_min) && sameValues(m_max, same->m_max) &&
           m_min_unit == same->m_min_unit && m_max_unit == same->m_max_unit;
}

template class RangeConfigItem<double>;

template <class First, class Second>
bool TupleValue<First, Second>::equals(const TupleValue& other) const {
    return sameValues(m_first, other.m_first) && sameValues(m_second, other.m_second);
}

template class TupleValue<double, double>;

template <class T>
std::string ValueListConfigItem<T>::toString() const {
    std::string text;
    for (const T& value : m_values) {
        if (&value != &m_values.front()) text += ", ";
        text += textOf(value);
    }
    return text;
}

template <class T>
bool ValueListConfigItem<T>::equals(const IfConfigItem& other) const {
    const auto* const same = dynamic_cast<const ValueListConfigItem*>(&other);
    return same != nullptr &&
           std::equal(m_values.begin(), m_values.end(), same->m_values.begin(), same->m_values.end(),
                      [](const T& a, const T& b) { return sameValues(a, b); });
}

template class ValueListConfigItem<std::string>;
template class ValueListConfigItem<TupleValue<double, double>>;
template class ValueListConfigItem<channel_config::ChannelID>;

GenericEnumConfigItem::GenericEnumConfigItem(std::string valueName, std::string secondText)
    : m_value_name(std::move(valueName)), m_second_text(std::move(secondText)) {}

std::string GenericEnumConfigItem::toString() const {
    return m_value_name;
}

bool GenericEnumConfigItem::equals(const IfConfigItem& other) const {
    const auto* const same = dynamic_cast<const GenericEnumConfigItem*>(&other);
    return same != nullptr && m_value_name == same->m_value_name && m_second_text == same->m_second_text;
}

InvalidConfigItem::InvalidConfigItem(std::string message) : m_message(std::move(message)) {}

std::string InvalidConfigItem::toString() const {
    return m_message.empty() ? "Invalid ConfigItem" : m_message;
}

bool InvalidConfigItem::equals(const IfConfigItem&) const {
    return true;
}

}  // namespace config_items
