// Values of features, by type.
#include <algorithm>
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

Result copyBytes(const std::string& bytes, char* buffer, VmbUint32_t size, VmbUint32_t* filled) {
    const auto needed = static_cast<VmbUint32_t>(bytes.size());
    if (filled != nullptr) *filled = needed;
    if (buffer == nullptr) return Result::Success;
    if (size < needed) return Result::MoreData;
    std::copy_n(bytes.data(), needed, buffer);
    return Result::Success;
}

/// `use(text)` gets the value of a text or raw feature.
template <typename Use>
VmbError_t withBytes(VmbHandle_t handle, const char* name, FeatureType type, bool given, Use&& use) {
    return withModule(handle, {name != nullptr && given}, [&](FeatureModule& module) {
        FeatureValue value;
        const Result read = module.read(name, type, value);
        return read == Result::Success ? use(std::get<std::string>(value)) : read;
    });
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

VmbError_t VmbFeatureFloatIncrementQuery(const VmbHandle_t handle, const char* name, VmbBool_t* hasIncrement,
                                         double* increment) {
    return vendorCall("VmbFeatureFloatIncrementQuery", {handle, name}, {hasIncrement, increment}, [&] {
        const bool given = name != nullptr && (hasIncrement != nullptr || increment != nullptr);
        return withModule(handle, {given}, [&](FeatureModule& module) {
            double step = 0;
            const Result known = module.floatIncrement(name, step);
            if (known == Result::Success && hasIncrement != nullptr) *hasIncrement = step > 0;
            if (known == Result::Success && increment != nullptr) *increment = step;
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

VmbError_t VmbFeatureStringGet(const VmbHandle_t handle, const char* name, char* buffer, VmbUint32_t size,
                               VmbUint32_t* filled) {
    const auto outputs = [&] { return buffer != nullptr ? Output(buffer) : Output(filled); };
    return vendorCall("VmbFeatureStringGet", {handle, name, size}, {outputs()}, [&] {
        return withBytes(handle, name, FeatureType::String, buffer != nullptr || filled != nullptr,
                         [=](const std::string& text) { return copyText(text, buffer, size, filled); });
    });
}

VmbError_t VmbFeatureStringSet(const VmbHandle_t handle, const char* name, const char* value) {
    return vendorCall("VmbFeatureStringSet", {handle, name, value}, {}, [&] {
        return withModule(handle, {name != nullptr && value != nullptr}, [&](FeatureModule& module) {
            return module.write(name, FeatureType::String, std::string(value));
        });
    });
}

VmbError_t VmbFeatureStringMaxlengthQuery(const VmbHandle_t handle, const char* name,
                                          VmbUint32_t* maxLength) {
    return vendorCall("VmbFeatureStringMaxlengthQuery", {handle, name}, {maxLength}, [&] {
        return withModule(handle, {name != nullptr && maxLength != nullptr},
                          [&](FeatureModule& module) { return module.maxLength(name, *maxLength); });
    });
}

VmbError_t VmbFeatureRawGet(const VmbHandle_t handle, const char* name, char* buffer, VmbUint32_t size,
                            VmbUint32_t* filled) {
    return vendorCall("VmbFeatureRawGet", {handle, name, size}, {filled}, [&] {
        return withBytes(handle, name, FeatureType::Raw, buffer != nullptr || filled != nullptr,
                         [=](const std::string& bytes) { return copyBytes(bytes, buffer, size, filled); });
    });
}

VmbError_t VmbFeatureRawSet(const VmbHandle_t handle, const char* name, const char* buffer,
                            VmbUint32_t size) {
    return vendorCall("VmbFeatureRawSet", {handle, name, size}, {}, [&] {
        return withModule(handle, {name != nullptr && buffer != nullptr}, [&](FeatureModule& module) {
            // A size that is refused anyway need not be true: no more is read than shows it to be too long.
            return module.write(name, FeatureType::Raw, std::string(buffer, std::min(size, kLongestRaw + 1)));
        });
    });
}

VmbError_t VmbFeatureRawLengthQuery(const VmbHandle_t handle, const char* name, VmbUint32_t* length) {
    return vendorCall("VmbFeatureRawLengthQuery", {handle, name}, {length}, [&] {
        return withBytes(handle, name, FeatureType::Raw, length != nullptr, [=](const std::string& bytes) {
            *length = static_cast<VmbUint32_t>(bytes.size());
            return Result::Success;
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
