/// Generators of items and constraints. Values come from small pools beside the whole range, so that equal
/// ones, infinities, NaN and empty texts meet often.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <rapidcheck.h>

#include "channel_config_constraints.h"
#include "config_item_variant.h"
#include "special_numbers.h"

namespace config_items {

inline void showValue(const ConfigItemVariant& value, std::ostream& os) {
    os << "alternative " << value.which() << " \"" << asItem(value).toString() << '"';
}

}  // namespace config_items

namespace property_tests {

using namespace config_items;

inline rc::Gen<double> anyDouble() {
    using test_support::kInf;
    using test_support::kNan;
    return rc::gen::oneOf(
        rc::gen::element(0.0, -0.0, 1.0, 0.1, -2.5, kInf, -kInf, kNan, -kNan,
                         std::numeric_limits<double>::max(), std::numeric_limits<double>::min(),
                         std::numeric_limits<double>::denorm_min(), 9007199254740993.0),
        rc::gen::arbitrary<double>());
}

inline rc::Gen<std::string> anyText() {
    return rc::gen::oneOf(rc::gen::element<std::string>("", "Hz", "fps", "1", "pixel"),
                          rc::gen::arbitrary<std::string>());
}

template <class T>
rc::Gen<T> anyNumber() {
    return rc::gen::oneOf(
        rc::gen::element<T>(0, 1, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()),
        rc::gen::arbitrary<T>());
}

inline rc::Gen<channel_config::ChannelID> anyChannelId() {
    return rc::gen::map(rc::gen::pair(anyNumber<std::uint32_t>(), anyNumber<std::uint32_t>()),
                        [](const auto& ids) {
                            return channel_config::ChannelID{ids.first, ids.second};
                        });
}

/// A value of any type that a single-value item may hold.
template <class T>
rc::Gen<T> anyValue() {
    if constexpr (std::is_same_v<T, bool>) {
        return rc::gen::arbitrary<bool>();
    } else if constexpr (std::is_same_v<T, double>) {
        return anyDouble();
    } else if constexpr (std::is_same_v<T, std::string>) {
        return anyText();
    } else if constexpr (std::is_same_v<T, channel_config::ChannelID>) {
        return anyChannelId();
    } else if constexpr (std::is_enum_v<T>) {
        return rc::gen::map(anyNumber<std::int32_t>(),
                            [](std::int32_t number) { return static_cast<T>(number); });
    } else {
        return anyNumber<T>();
    }
}

template <class T>
rc::Gen<SingleValueConfigItem<T>> anySingleValue() {
    return rc::gen::map(anyValue<T>(), [](const T& value) { return SingleValueConfigItem<T>(value); });
}

inline rc::Gen<ScalarConfigItem> anyScalar() {
    return rc::gen::map(rc::gen::pair(anyDouble(), anyText()),
                        [](const auto& parts) { return ScalarConfigItem(parts.first, parts.second); });
}

template <class T>
rc::Gen<ValueListConfigItem<T>> anyList(rc::Gen<T> element) {
    return rc::gen::map(rc::gen::container<std::vector<T>>(std::move(element)),
                        [](const std::vector<T>& values) { return ValueListConfigItem<T>(values); });
}

inline rc::Gen<TupleValue<double, double>> anyTuple() {
    return rc::gen::map(rc::gen::pair(anyDouble(), anyDouble()), [](const auto& parts) {
        return TupleValue<double, double>(parts.first, parts.second);
    });
}

template <class Item>
rc::Gen<ConfigItemVariant> asVariant(rc::Gen<Item> items) {
    return rc::gen::map(std::move(items), [](const Item& item) { return ConfigItemVariant(item); });
}

inline rc::Gen<RangeConfigItem<double>> anyRange() {
    return rc::gen::map(
        rc::gen::tuple(anyDouble(), anyDouble(), anyText(), anyText()),
        [](const auto& parts) { return std::make_from_tuple<RangeConfigItem<double>>(parts); });
}

inline rc::Gen<DecoratedNumberConfigItem> anyDecorated() {
    return rc::gen::map(rc::gen::tuple(anyDouble(), anyText(), anyText()), [](const auto& parts) {
        return std::make_from_tuple<DecoratedNumberConfigItem>(parts);
    });
}

inline rc::Gen<RationalScalarConfigItem> anyRational() {
    return rc::gen::map(
        rc::gen::tuple(anyNumber<std::int64_t>(), anyNumber<std::int64_t>(), anyText()),
        [](const auto& parts) { return std::make_from_tuple<RationalScalarConfigItem>(parts); });
}

inline rc::Gen<GenericEnumConfigItem> anyGenericEnum() {
    return rc::gen::map(rc::gen::pair(anyText(), anyText()),
                        [](const auto& parts) { return GenericEnumConfigItem(parts.first, parts.second); });
}

inline rc::Gen<InvalidConfigItem> anyInvalid() {
    return rc::gen::map(anyText(), [](const std::string& text) { return InvalidConfigItem(text); });
}

/// Items of one alternative, in the order of the union.
inline rc::Gen<ConfigItemVariant> anyItemOf(int alternative) {
    using namespace channel_config;
    switch (alternative) {
        case 0:
            return asVariant(anySingleValue<std::string>());
        case 1:
            return asVariant(anySingleValue<double>());
        case 2:
            return asVariant(anyScalar());
        case 3:
            return asVariant(anySingleValue<int>());
        case 4:
            return asVariant(anySingleValue<unsigned int>());
        case 5:
            return asVariant(anySingleValue<bool>());
        case 6:
            return asVariant(anyRange());
        case 7:
            return asVariant(anyList(anyText()));
        case 8:
            return asVariant(anyList(anyTuple()));
        case 9:
            return asVariant(anyDecorated());
        case 10:
            return asVariant(anySingleValue<UserScalingMode>());
        case 11:
            return asVariant(anySingleValue<DAQChannelType>());
        case 12:
            return asVariant(anySingleValue<SampleOccurrenceType>());
        case 13:
            return asVariant(anySingleValue<DAQSampleResolution>());
        case 14:
            return asVariant(anySingleValue<PhysicalQuantity>());
        case 15:
            return asVariant(anyGenericEnum());
        case 16:
            return asVariant(anySingleValue<ChannelID>());
        case 17:
            return asVariant(anyRational());
        case 18:
            return asVariant(anyList(anyChannelId()));
        default:
            return asVariant(anyInvalid());
    }
}

constexpr int kAlternatives = 20;

inline rc::Gen<ConfigItemVariant> anyItem() {
    return rc::gen::mapcat(rc::gen::inRange(0, kAlternatives), &anyItemOf);
}

}  // namespace property_tests
