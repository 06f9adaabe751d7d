#include "feature_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <mutex>
#include <set>

namespace simulator {
namespace {

const EnumEntry* findEntry(const Feature& feature, std::string_view name) {
    for (const EnumEntry& entry : feature.row.entries) {
        if (name == entry.name) return &entry;
    }
    return nullptr;
}

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

Result fromText(const Feature& feature, std::string_view text, FeatureValue& value) {
    switch (feature.row.type) {
        case FeatureType::Int:
            return numberFromText<std::int64_t>(text, value);
        case FeatureType::Float:
            return numberFromText<double>(text, value);
        case FeatureType::Bool:
            return boolFromText(text, value);
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
        feature.values.resize(at(feature.row.selector).row.entries.size(), feature.row.initial);
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

std::int64_t FeatureTable::integer(std::string_view name, std::string_view selectorEntry) const {
    const Feature& feature = at(name);
    const auto& entries = at(feature.row.selector).row.entries;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (selectorEntry != entries[i].name) continue;
        const auto* number = std::get_if<std::int64_t>(&feature.values[i]);
        return number != nullptr ? *number : 0;
    }
    return 0;
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

void FeatureTable::assign(std::string_view name, FeatureValue value) {
    Feature& feature = at(name);
    feature.forced = false;
    this->value(feature) = std::move(value);
}

Result FeatureTable::accept(const Feature& feature, FeatureValue& value) {
    switch (feature.row.type) {
        case FeatureType::Int: {
            const auto number = std::get<std::int64_t>(value);
            const IntRange& range = feature.intRange;
            if (number < range.min || number > range.max) return Result::InvalidValue;
            const auto above = static_cast<std::uint64_t>(number) - static_cast<std::uint64_t>(range.min);
            return above % static_cast<std::uint64_t>(range.increment) == 0 ? Result::Success
                                                                            : Result::InvalidValue;
        }
        case FeatureType::Float: {
            const double number = std::get<double>(value);
            // Written so that not-a-number fails.
            const bool inside = number >= feature.floatRange.min && number <= feature.floatRange.max;
            return inside ? Result::Success : Result::InvalidValue;
        }
        case FeatureType::Enum: {
            const EnumEntry* entry = findEntry(feature, std::get<std::string>(value));
            if (entry == nullptr) return Result::InvalidValue;
            value = entry->number;
            return Result::Success;
        }
        default:
            return Result::Success;
    }
}

Result FeatureTable::force(std::string_view name, std::string_view text) {
    Feature* feature = find(name);
    if (feature == nullptr) return Result::NotFound;
    FeatureValue parsed;
    const Result readable = fromText(*feature, text, parsed);
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

std::vector<const Feature*> FeatureTable::visible() const {
    std::vector<const Feature*> features;
    for (const auto& [name, feature] : m_features) {
        if (!feature.removed) features.push_back(&feature);
    }
    return features;
}

const char* entryName(const Feature& feature, const FeatureValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return keptText(*text);
    for (const EnumEntry& entry : feature.row.entries) {
        if (entry.number == std::get<std::int64_t>(value)) return entry.name;
    }
    return "";
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
