// Values of features, by type.
#include <cstring>

#include "vendor_call.h"

using namespace simulator;

namespace {

template <typename Value, typename Target>
VmbError_t getValue(VmbHandle_t handle, const char* name, FeatureType type, Target* target) {
    return withModule(handle, {name != nullptr && target != nullptr}, [&](FeatureModule& module) {
        FeatureValue value;
        const Result read = module.read(name, type, value);
        if (read == Result::Success) *target = std::get<Value>(value);
        return read;
    });
}

VmbError_t setValue(VmbHandle_t handle, const char* name, FeatureType type, FeatureValue value) {
    return withModule(handle, {name != nullptr},
                      [&](FeatureModule& module) { return module.write(name, type, std::move(value)); });
}

Result copyText(const std::string& text, char* buffer, VmbUint32_t size, VmbUint32_t* filled) {
    const auto needed = static_cast<VmbUint32_t>(text.size() + 1);
    if (filled != nullptr) *filled = needed;
    if (buffer == nullptr) return Result::Success;
    if (size < needed) return Result::MoreData;
    std::memcpy(buffer, text.c_str(), needed);
    return Result::Success;
}

}  // namespace

VmbError_t VmbFeatureIntGet(const VmbHandle_t handle, const char* name, VmbInt64_t* value) {
    return vendorCall("VmbFeatureIntGet", {handle, name}, {value},
                      [&] { return getValue<std::int64_t>(handle, name, FeatureType::Int, value); });
}

VmbError_t VmbFeatureIntSet(const VmbHandle_t handle, const char* name, VmbInt64_t value) {
    return vendorCall("VmbFeatureIntSet", {handle, name, value}, {},
                      [&] { return setValue(handle, name, FeatureType::Int, value); });
}

VmbError_t VmbFeatureIntRangeQuery(const VmbHandle_t handle, const char* name, VmbInt64_t* min,
                                   VmbInt64_t* max) {
    return vendorCall("VmbFeatureIntRangeQuery", {handle, name}, {min, max}, [&] {
        const bool given = name != nullptr && (min != nullptr || max != nullptr);
        return withModule(handle, {given}, [&](FeatureModule& module) {
            IntRange range;
            const Result known = module.intRange(name, range);
            if (known == Result::Success && min != nullptr) *min = range.min;
            if (known == Result::Success && max != nullptr) *max = range.max;
            return known;
        });
    });
}

VmbError_t VmbFeatureIntIncrementQuery(const VmbHandle_t handle, const char* name, VmbInt64_t* increment) {
    return vendorCall("VmbFeatureIntIncrementQuery", {handle, name}, {increment}, [&] {
        return withModule(handle, {name != nullptr && increment != nullptr}, [&](FeatureModule& module) {
            IntRange range;
            const Result known = module.intRange(name, range);
            if (known == Result::Success) *increment = range.increment;
            return known;
        });
    });
}

VmbError_t VmbFeatureFloatGet(const VmbHandle_t handle, const char* name, double* value) {
    return vendorCall("VmbFeatureFloatGet", {handle, name}, {value},
                      [&] { return getValue<double>(handle, name, FeatureType::Float, value); });
}

VmbError_t VmbFeatureFloatSet(const VmbHandle_t handle, const char* name, double value) {
    return vendorCall("VmbFeatureFloatSet", {handle, name, value}, {},
                      [&] { return setValue(handle, name, FeatureType::Float, value); });
}

VmbError_t VmbFeatureFloatRangeQuery(const VmbHandle_t handle, const char* name, double* min, double* max) {
    return vendorCall("VmbFeatureFloatRangeQuery", {handle, name}, {min, max}, [&] {
        const bool given = name != nullptr && (min != nullptr || max != nullptr);
        return withModule(handle, {given}, [&](FeatureModule& module) {
            FloatRange range;
            const Result known = module.floatRange(name, range);
            if (known == Result::Success && min != nullptr) *min = range.min;
            if (known == Result::Success && max != nullptr) *max = range.max;
            return known;
        });
    });
}

VmbError_t VmbFeatureEnumGet(const VmbHandle_t handle, const char* name, const char** value) {
    return vendorCall("VmbFeatureEnumGet", {handle, name}, {value}, [&] {
        return withModule(handle, {name != nullptr && value != nullptr},
                          [&](FeatureModule& module) { return module.readEntry(name, *value); });
    });
}

VmbError_t VmbFeatureEnumSet(const VmbHandle_t handle, const char* name, const char* value) {
    return vendorCall("VmbFeatureEnumSet", {handle, name, value}, {}, [&] {
        return withModule(handle, {name != nullptr && value != nullptr}, [&](FeatureModule& module) {
            return module.write(name, FeatureType::Enum, std::string(value));
        });
    });
}

VmbError_t VmbFeatureEnumRangeQuery(const VmbHandle_t handle, const char* name, const char** array,
                                    VmbUint32_t length, VmbUint32_t* filled) {
    return vendorCall("VmbFeatureEnumRangeQuery", {handle, name, length}, {filled}, [&] {
        const bool given = name != nullptr && (array != nullptr || filled != nullptr);
        return withModule(handle, {given}, [&](FeatureModule& module) {
            std::vector<EnumEntry> entries;
            const Result known = module.entries(name, entries);
            if (known != Result::Success) return known;
            return fillList(entries, array, length, filled,
                            [](const EnumEntry& entry) { return entry.name; });
        });
    });
}

VmbError_t VmbFeatureStringGet(const VmbHandle_t handle, const char* name, char* buffer, VmbUint32_t size,
                               VmbUint32_t* filled) {
    const auto outputs = [&] { return buffer != nullptr ? Output(buffer) : Output(filled); };
    return vendorCall("VmbFeatureStringGet", {handle, name, size}, {outputs()}, [&] {
        const bool given = name != nullptr && (buffer != nullptr || filled != nullptr);
        return withModule(handle, {given}, [&](FeatureModule& module) {
            FeatureValue value;
            const Result read = module.read(name, FeatureType::String, value);
            if (read != Result::Success) return read;
            return copyText(std::get<std::string>(value), buffer, size, filled);
        });
    });
}

VmbError_t VmbFeatureBoolGet(const VmbHandle_t handle, const char* name, VmbBool_t* value) {
    return vendorCall("VmbFeatureBoolGet", {handle, name}, {value},
                      [&] { return getValue<bool>(handle, name, FeatureType::Bool, value); });
}

VmbError_t VmbFeatureBoolSet(const VmbHandle_t handle, const char* name, VmbBool_t value) {
    return vendorCall("VmbFeatureBoolSet", {handle, name, value}, {},
                      [&] { return setValue(handle, name, FeatureType::Bool, value); });
}
