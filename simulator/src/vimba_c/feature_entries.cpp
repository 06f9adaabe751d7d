// Entries of enumeration features.
#include "feature_records.h"
#include "vendor_call.h"

using namespace simulator;

namespace {

/// `use(facts)` gets the entry of that name.
template <typename Use>
VmbError_t withEntry(VmbHandle_t handle, const char* name, const char* entry, const Given& given, Use&& use) {
    const Given all{name != nullptr && entry != nullptr && given.arguments, given.structSize};
    return withModule(handle, all, [&](FeatureModule& module) {
        EntryFacts facts;
        const Result known = module.entry(name, entry, facts);
        if (known == Result::Success) use(facts);
        return known;
    });
}

}  // namespace

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

VmbError_t VmbFeatureEnumIsAvailable(const VmbHandle_t handle, const char* name, const char* value,
                                     VmbBool_t* available) {
    return vendorCall("VmbFeatureEnumIsAvailable", {handle, name, value}, {available}, [&] {
        return withEntry(handle, name, value, {available != nullptr},
                         [=](const EntryFacts& facts) { *available = facts.available; });
    });
}

VmbError_t VmbFeatureEnumAsInt(const VmbHandle_t handle, const char* name, const char* value,
                               VmbInt64_t* number) {
    return vendorCall("VmbFeatureEnumAsInt", {handle, name, value}, {number}, [&] {
        return withEntry(handle, name, value, {number != nullptr},
                         [=](const EntryFacts& facts) { *number = facts.entry.number; });
    });
}

VmbError_t VmbFeatureEnumAsString(const VmbHandle_t handle, const char* name, VmbInt64_t number,
                                  const char** value) {
    return vendorCall("VmbFeatureEnumAsString", {handle, name, number}, {value}, [&] {
        return withModule(handle, {name != nullptr && value != nullptr},
                          [&](FeatureModule& module) { return module.entryOf(name, number, *value); });
    });
}

VmbError_t VmbFeatureEnumEntryGet(const VmbHandle_t handle, const char* name, const char* entryName,
                                  VmbFeatureEnumEntry_t* entry, VmbUint32_t sizeofEntry) {
    return vendorCall("VmbFeatureEnumEntryGet", {handle, name, entryName, sizeofEntry}, {}, [&] {
        return withEntry(handle, name, entryName, {entry != nullptr, sizeofEntry == sizeof *entry},
                         [=](const EntryFacts& facts) { *entry = entryInfo(facts.entry); });
    });
}
