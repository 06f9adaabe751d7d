#include "feature_row.h"

namespace simulator {
namespace {

constexpr std::uint32_t kLongestText = 256;

FeatureRow row(const char* name, FeatureType type, std::uint32_t flags, FeatureValue initial) {
    FeatureRow result;
    result.name = name;
    result.type = type;
    result.flags = flags;
    result.initial = std::move(initial);
    return result;
}

}  // namespace

FeatureRow intRow(const char* name, IntRange range, std::int64_t initial) {
    FeatureRow result = row(name, FeatureType::Int, kRead | kWrite, initial);
    result.intRange = range;
    return result;
}

FeatureRow percentRow(const char* name, IntRange range, std::int64_t initial) {
    return intRow(name, range, initial).of("%");
}

FeatureRow floatRow(const char* name, FloatRange range, double initial) {
    FeatureRow result = row(name, FeatureType::Float, kRead | kWrite, initial);
    result.floatRange = range;
    return result;
}

FeatureRow enumRow(const char* name, std::vector<EnumEntry> entries, std::int64_t initial) {
    FeatureRow result = row(name, FeatureType::Enum, kRead | kWrite, initial);
    result.entries = std::move(entries);
    return result;
}

FeatureRow boolRow(const char* name, bool initial) {
    return row(name, FeatureType::Bool, kRead | kWrite, initial);
}

FeatureRow commandRow(const char* name) {
    return row(name, FeatureType::Command, kWrite, std::int64_t{0});
}

FeatureRow textRow(const char* name, const char* initial) {
    FeatureRow result = row(name, FeatureType::String, kRead, std::string(initial));
    result.maxLength = kLongestText;
    return result;
}

FeatureRow rawRow(const char* name, std::size_t size, std::uint32_t longest) {
    return row(name, FeatureType::Raw, kRead, std::string(size, '\0')).writable(longest);
}

}  // namespace simulator
