/// One row of a feature table: everything about a feature that does not change while a camera lives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace simulator {

/// Numbers as in the vendor's feature records.
enum class FeatureType : std::uint32_t {
    Int = 1,
    Float = 2,
    Enum = 3,
    String = 4,
    Bool = 5,
    Command = 6,
    Raw = 7
};

/// Bits as in the vendor's feature records.
/// Four has no name; real features carry it beside kRead.
enum FeatureFlags : std::uint32_t { kRead = 1, kWrite = 2, kUnnamed = 4, kVolatile = 8 };

/// An enumeration feature holds its entry's number, or a text when that text is no entry. Raw bytes are a
/// string.
using FeatureValue = std::variant<std::int64_t, double, bool, std::string>;

struct EnumEntry {
    const char* name;
    std::int64_t number;
};

/// An entry that is implemented, but cannot be chosen.
struct Unavailable {
    const char* entry;
    const char* under = nullptr;  ///< only while the selector has this entry; null for always
};

struct IntRange {
    std::int64_t min = 0;
    std::int64_t max = 0;
    std::int64_t increment = 1;
};

struct FloatRange {
    double min = 0;
    double max = 0;
};

/// Texts are literals: clients keep pointers to them.
struct FeatureRow {
    const char* name = "";
    FeatureType type = FeatureType::Int;
    std::uint32_t flags = kRead;
    FeatureValue initial;
    const char* category = "";
    const char* unit = "";
    IntRange intRange;
    FloatRange floatRange;
    std::vector<EnumEntry> entries;         ///< ascending by number
    const char* selector = nullptr;         ///< the feature keeps one value per entry of this one
    std::vector<FeatureValue> perSelector;  ///< initial values where they differ between those entries
    std::vector<Unavailable> unavailable;
    double grid = 0;              ///< values are rounded to multiples of it, 0 for none
    bool gridTold = false;        ///< the grid is also the feature's increment
    std::uint32_t maxLength = 0;  ///< bytes; a text's includes its terminating zero
    bool locked = false;          ///< not writable while the camera acquires
    std::vector<const char*> affects;
    const char* description = "";

    FeatureRow&& in(const char* path) && {
        category = path;
        return std::move(*this);
    }
    FeatureRow&& of(const char* text) && {
        unit = text;
        return std::move(*this);
    }
    FeatureRow&& readOnly() && {
        flags = kRead;
        return std::move(*this);
    }
    FeatureRow&& changing() && {
        flags |= kVolatile;
        return std::move(*this);
    }
    FeatureRow&& whileIdle() && {
        locked = true;
        return std::move(*this);
    }
    FeatureRow&& per(const char* feature, std::vector<FeatureValue> values = {}) && {
        selector = feature;
        perSelector = std::move(values);
        return std::move(*this);
    }
    FeatureRow&& except(std::vector<Unavailable> list) && {
        unavailable = std::move(list);
        return std::move(*this);
    }
    FeatureRow&& roundedTo(double multiple) && {
        grid = multiple;
        return std::move(*this);
    }
    FeatureRow&& inSteps(double multiple) && {
        grid = multiple;
        gridTold = true;
        return std::move(*this);
    }
    FeatureRow&& writable(std::uint32_t longest) && {
        flags = kRead | kWrite;
        maxLength = longest;
        return std::move(*this);
    }
    FeatureRow&& affecting(std::vector<const char*> names) && {
        affects = std::move(names);
        return std::move(*this);
    }
    FeatureRow&& text(const char* sentence) && {
        description = sentence;
        return std::move(*this);
    }
};

/// Rows that are writable; `.readOnly()` takes that away.
FeatureRow intRow(const char* name, IntRange range, std::int64_t initial);
FeatureRow percentRow(const char* name, IntRange range, std::int64_t initial);
FeatureRow floatRow(const char* name, FloatRange range, double initial);
FeatureRow enumRow(const char* name, std::vector<EnumEntry> entries, std::int64_t initial);
FeatureRow boolRow(const char* name, bool initial);
FeatureRow commandRow(const char* name);
/// Read only; `.writable(longest)` changes that.
FeatureRow textRow(const char* name, const char* initial);
/// Writable bytes, all zero at first.
FeatureRow rawRow(const char* name, std::size_t size, std::uint32_t longest);
/// No raw feature takes more bytes.
inline constexpr std::uint32_t kLongestRaw = 1024;

/// Values that are saved and loaded: everything a client can set.
inline bool isStreamable(const FeatureRow& row) {
    return (row.flags & kWrite) != 0 && row.type != FeatureType::Command;
}

}  // namespace simulator
