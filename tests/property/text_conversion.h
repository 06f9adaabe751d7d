/// What a text becomes as a value of a type, compared with the lexical cast's answer.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>

#include <boost/lexical_cast.hpp>

#include "config_items.h"

namespace property_tests {

/// What the lexical cast makes of a text, in the classic locale that these programs have; null when it
/// refuses.
template <class T>
std::unique_ptr<T> lexicalCast(const std::string& text) {
    try {
        if constexpr (std::is_enum_v<T>) {
            return std::make_unique<T>(static_cast<T>(boost::lexical_cast<std::int32_t>(text)));
        } else if constexpr (std::is_same_v<T, channel_config::ChannelID>) {
            const auto number = boost::lexical_cast<std::uint64_t>(text);
            return std::make_unique<T>(
                T{static_cast<std::uint32_t>(number >> 32), static_cast<std::uint32_t>(number)});
        } else {
            return std::make_unique<T>(boost::lexical_cast<T>(text));
        }
    } catch (const boost::bad_lexical_cast&) {
        return nullptr;
    }
}

/// Converts a text to an item and the item to text and back. The first thing that is not as it should be, in
/// words; empty when all is well.
template <class T>
std::string conversionDifference(const std::string& text) {
    using Item = config_items::SingleValueConfigItem<T>;
    const std::unique_ptr<T> expected = lexicalCast<T>(text);
    try {
        const Item item = Item::fromText(text);
        if (expected == nullptr) return "accepted";
        const std::string written = item.toString();
        if (written != Item(*expected).toString()) return "another value, " + written;
        const Item back = Item::fromText(written);
        if (!back.equals(item) || back.toString() != written) return "does not come back from " + written;
    } catch (const config_items::ConfigItemException& error) {
        if (expected != nullptr) return "refused";
        const std::string message = "Can not convert '" + text + "' to type " + typeid(T).name();
        if (error.getMessage() != message) return "refused with " + error.getMessage();
    }
    return {};
}

}  // namespace property_tests
