#include "feature_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <mutex>
#include <set>

namespace simulator {
namespace {

template <typename Number>
bool parse(std::string_view text, Number& number) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

template <typename Number>
Result numberFromText(std::string_view text, FeatureValue& value) {
    Number number{};
    if (!parse(text, number)) return Result::InvalidValue;
    value = number;
    return Result::Success;
}

Result boolFromText(std::string_view text, FeatureValue& value) {
    const bool isTrue = text == "true" || text == "1";
    if (!isTrue && text != "false" && text != "0") return Result::InvalidValue;
    value = isTrue;
    return Result::Success;
}

Result rawFromText(std::string_view text, FeatureValue& value) {
    if (text.size() % 2 != 0) return Result::InvalidValue;
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        std::uint8_t byte = 0;
        const char* end = text.data() + i + 2;
        const auto [stop, error] = std::from_chars(text.data() + i, end, byte, 16);
        if (error != std::errc() || stop != end) return Result::InvalidValue;
        bytes.push_back(static_cast<char>(byte));
    }
    value = std::move(bytes);
    return Result::Success;
}

std::string textOfRaw(const std::string& bytes) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += {kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
    return text;
}

template <typename Number>
std::string textOfNumber(Number number) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

double onGrid(const FeatureRow& row, const FloatRange& range, double value) {
    if (row.grid <= 0) return value;
    // Dividing by a whole number gives the double nearest to the decimal fraction; multiplying by 0.1 not.
    const double perUnit = std::round(1 / row.grid);
    const auto multiple = [&](double steps) { return perUnit > 1 ? steps / perUnit : steps * row.grid; };
    const double steps = std::round(value / row.grid);
    if (multiple(steps) > range.max) return multiple(steps - 1);
    return multiple(steps) < range.min ? multiple(steps + 1) : multiple(steps);
}

bool isWithin(const IntRange& range, std::int64_t number) {
    if (number < range.min || number > range.max) return false;
    const auto above = static_cast<std::uint64_t>(number) - static_cast<std::uint64_t>(range.min);
    return above % static_cast<std::uint64_t>(range.increment) == 0;
}

Result acceptedIf(bool fits) {
    return fits ? Result::Success : Result::InvalidValue;
}

}  // namespace

FeatureTable::FeatureTable(std::vector<FeatureRow> rows) {
    for (FeatureRow& row : rows) {
        Feature feature;
        feature.intRange = row.intRange;
        feature.floatRange = row.floatRange;
        feature.values = {row.initial};
        std::string name = row.name;
        feature.row = std::move(row);
        m_features.emplace(std::move(name), std::move(feature));
    }
    for (auto& [name, feature] : m_features) {
        if (feature.row.selector == nullptr) continue;
        feature.values = feature.row.perSelector;
        // A selector without entries is a number; whoever owns the table then computes the selected value.
        const std::size_t entries = at(feature.row.selector).row.entries.size();
        feature.values.resize(std::max<std::size_t>(1, entries), feature.row.initial);
    }
}

Feature* FeatureTable::find(std::string_view name) {
    const auto found = m_features.find(name);
    return found == m_features.end() || found->second.removed ? nullptr : &found->second;
}

Feature& FeatureTable::at(std::string_view name) {
    return m_features.find(name)->second;
}

const Feature& FeatureTable::at(std::string_view name) const {
    return m_features.find(name)->second;
}

std::size_t FeatureTable::slot(const Feature& feature) const {
    if (feature.row.selector == nullptr) return 0;
    const Feature& selector = at(feature.row.selector);
    const auto* number = std::get_if<std::int64_t>(&selector.values.front());
    for (std::size_t i = 0; number != nullptr && i < selector.row.entries.size(); ++i) {
        if (selector.row.entries[i].number == *number) return i;
    }
    return 0;
}

FeatureValue& FeatureTable::value(Feature& feature) {
    return feature.values[slot(feature)];
}

const FeatureValue& FeatureTable::value(const Feature& feature) const {
    return feature.values[slot(feature)];
}

std::int64_t FeatureTable::integer(std::string_view name) const {
    const auto* number = std::get_if<std::int64_t>(&value(at(name)));
    return number != nullptr ? *number : 0;
}

const FeatureValue* FeatureTable::valueUnder(std::string_view name, std::string_view selectorEntry) const {
    const Feature& feature = at(name);
    const auto& entries = at(feature.row.selector).row.entries;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (selectorEntry == entries[i].name) return &feature.values[i];
    }
    return nullptr;
}

std::int64_t FeatureTable::integer(std::string_view name, std::string_view selectorEntry) const {
    const FeatureValue* value = valueUnder(name, selectorEntry);
    const auto* number = value != nullptr ? std::get_if<std::int64_t>(value) : nullptr;
    return number != nullptr ? *number : 0;
}

double FeatureTable::number(std::string_view name, std::string_view selectorEntry) const {
    const FeatureValue* value = valueUnder(name, selectorEntry);
    const auto* number = value != nullptr ? std::get_if<double>(value) : nullptr;
    return number != nullptr ? *number : 0;
}

double FeatureTable::number(std::string_view name) const {
    const auto* number = std::get_if<double>(&value(at(name)));
    return number != nullptr ? *number : 0;
}

bool FeatureTable::flag(std::string_view name) const {
    const auto* flag = std::get_if<bool>(&value(at(name)));
    return flag != nullptr && *flag;
}

void FeatureTable::compute(std::string_view name, FeatureValue value) {
    Feature& feature = at(name);
    if (!feature.forced) this->value(feature) = std::move(value);
}

void FeatureTable::compute(std::string_view name, std::string_view selectorEntry, FeatureValue value) {
    // The table is not const here, so neither is the value.
    auto* place = const_cast<FeatureValue*>(valueUnder(name, selectorEntry));
    if (place != nullptr && !at(name).forced) *place = std::move(value);
}

void FeatureTable::assign(std::string_view name, FeatureValue value) {
    Feature& feature = at(name);
    feature.forced = false;
    this->value(feature) = std::move(value);
}

bool FeatureTable::isAvailable(const Feature& feature, const EnumEntry& entry) const {
    if (feature.row.unavailable.empty()) return true;
    const std::string_view selected =
        feature.row.selector != nullptr ? at(feature.row.selector).row.entries[slot(feature)].name : "";
    return std::none_of(feature.row.unavailable.begin(), feature.row.unavailable.end(),
                        [&](const Unavailable& out) {
                            return std::string_view(out.entry) == entry.name &&
                                   (out.under == nullptr || selected == out.under);
                        });
}

Result FeatureTable::accept(const Feature& feature, FeatureValue& value) const {
    switch (feature.row.type) {
        case FeatureType::Int:
            return acceptedIf(isWithin(feature.intRange, std::get<std::int64_t>(value)));
        case FeatureType::Float: {
            const double number = std::get<double>(value);
            // Written so that not-a-number fails.
            const bool inside = number >= feature.floatRange.min && number <= feature.floatRange.max;
            if (inside) value = onGrid(feature.row, feature.floatRange, number);
            return acceptedIf(inside);
        }
        case FeatureType::Enum: {
            const EnumEntry* entry = findEntry(feature, std::get<std::string>(value));
            if (entry == nullptr || !isAvailable(feature, *entry)) return Result::InvalidValue;
            value = entry->number;
            return Result::Success;
        }
        case FeatureType::String:
            return acceptedIf(std::get<std::string>(value).size() < feature.row.maxLength);
        case FeatureType::Raw:
            return std::get<std::string>(value).size() <= feature.row.maxLength ? Result::Success
                                                                                : Result::BadParameter;
        case FeatureType::Bool:
        case FeatureType::Command:
            break;
    }
    return Result::Success;
}

Result FeatureTable::force(std::string_view name, std::string_view text) {
    Feature* feature = find(name);
    if (feature == nullptr) return Result::NotFound;
    FeatureValue parsed;
    const Result readable = valueOf(*feature, text, parsed);
    if (readable != Result::Success) return readable;
    value(*feature) = std::move(parsed);
    feature->forced = true;
    return Result::Success;
}

Result FeatureTable::remove(std::string_view name) {
    Feature* feature = find(name);
    if (feature == nullptr) return Result::NotFound;
    feature->removed = true;
    return Result::Success;
}

FeatureValues FeatureTable::values(const std::function<bool(const FeatureRow&)>& chosen) const {
    FeatureValues values;
    for (const auto& [name, feature] : m_features) {
        if (chosen(feature.row)) values.emplace(name, feature.values);
    }
    return values;
}

void FeatureTable::restore(const FeatureValues& values) {
    for (const auto& [name, saved] : values) {
        Feature& feature = at(name);
        feature.values = saved;
        feature.forced = false;
    }
}

std::vector<const Feature*> FeatureTable::visible() const {
    std::vector<const Feature*> features;
    for (const auto& [name, feature] : m_features) {
        if (!feature.removed) features.push_back(&feature);
    }
    return features;
}

const EnumEntry* findEntry(const Feature& feature, std::string_view name) {
    for (const EnumEntry& entry : feature.row.entries) {
        if (name == entry.name) return &entry;
    }
    return nullptr;
}

const EnumEntry* findEntry(const Feature& feature, std::int64_t number) {
    for (const EnumEntry& entry : feature.row.entries) {
        if (number == entry.number) return &entry;
    }
    return nullptr;
}

std::string textOf(const Feature& feature, const FeatureValue& value) {
    if (feature.row.type == FeatureType::Enum) return entryName(feature, value);
    if (feature.row.type == FeatureType::Raw) return textOfRaw(std::get<std::string>(value));
    if (const auto* number = std::get_if<std::int64_t>(&value)) return textOfNumber(*number);
    if (const auto* number = std::get_if<double>(&value)) return textOfNumber(*number);
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    return std::get<std::string>(value);
}

Result valueOf(const Feature& feature, std::string_view text, FeatureValue& value) {
    switch (feature.row.type) {
        case FeatureType::Int:
            return numberFromText<std::int64_t>(text, value);
        case FeatureType::Float:
            return numberFromText<double>(text, value);
        case FeatureType::Bool:
            return boolFromText(text, value);
        case FeatureType::Raw:
            return rawFromText(text, value);
        case FeatureType::Command:
            return Result::WrongType;
        case FeatureType::Enum:
        case FeatureType::String:
            break;
    }
    const EnumEntry* entry = findEntry(feature, text);
    value = entry != nullptr ? FeatureValue(entry->number) : FeatureValue(std::string(text));
    return Result::Success;
}

const char* entryName(const Feature& feature, const FeatureValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return keptText(*text);
    const EnumEntry* entry = findEntry(feature, std::get<std::int64_t>(value));
    return entry != nullptr ? entry->name : "";
}

const char* keptText(std::string_view text) {
    static std::mutex mutex;
    // Never destroyed: clients hold pointers into it.
    static auto& texts = *new std::set<std::string, std::less<>>;
    const std::lock_guard lock(mutex);
    auto found = texts.find(text);
    if (found == texts.end()) found = texts.emplace(text).first;
    return found->c_str();
}

}  // namespace simulator
