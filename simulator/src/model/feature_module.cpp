#include "feature_module.h"

#include <algorithm>
#include <cstring>

namespace simulator {

namespace {

bool isSelectedBy(const FeatureRow& row, const FeatureRow& selector) {
    return row.selector != nullptr && std::strcmp(row.selector, selector.name) == 0;
}

}  // namespace

Result FeatureModule::find(const char* name, Feature*& feature) {
    if (!isAlive()) return Result::BadHandle;
    feature = features().find(name);
    return feature != nullptr ? Result::Success : Result::NotFound;
}

Result FeatureModule::find(const char* name, FeatureType type, Feature*& feature) {
    const Result found = find(name, feature);
    if (found != Result::Success) return found;
    return feature->row.type == type ? Result::Success : Result::WrongType;
}

FeatureFacts FeatureModule::facts(const Feature& feature) {
    const auto all = features().visible();
    const bool selects = std::any_of(
        all.begin(), all.end(), [&](const Feature* other) { return isSelectedBy(other->row, feature.row); });
    return {&feature.row, selects, isStored(feature.row), absentText()};
}

bool FeatureModule::isWritable(const Feature& feature) const {
    return (feature.row.flags & kWrite) != 0 && m_writable && !isLocked(feature);
}

Result FeatureModule::list(std::vector<FeatureFacts>& features) {
    const Lock lock(mutex());
    if (!isAlive()) return Result::BadHandle;
    for (const Feature* feature : this->features().visible()) features.push_back(facts(*feature));
    return Result::Success;
}

Result FeatureModule::describe(const char* name, FeatureFacts& facts) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, feature);
    if (found == Result::Success) facts = this->facts(*feature);
    return found;
}

Result FeatureModule::listAffected(const char* name, std::vector<FeatureFacts>& features) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, feature);
    if (found != Result::Success) return found;
    for (const char* affected : feature->row.affects) {
        if (const Feature* known = this->features().find(affected)) features.push_back(facts(*known));
    }
    return Result::Success;
}

Result FeatureModule::listSelected(const char* name, std::vector<FeatureFacts>& features) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, feature);
    if (found != Result::Success) return found;
    for (const Feature* other : this->features().visible()) {
        if (isSelectedBy(other->row, feature->row)) features.push_back(facts(*other));
    }
    return Result::Success;
}

Result FeatureModule::access(const char* name, bool& readable, bool& writable) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, feature);
    if (found != Result::Success) return found;
    readable = (feature->row.flags & kRead) != 0;
    writable = isWritable(*feature);
    return Result::Success;
}

Result FeatureModule::read(const char* name, FeatureType type, FeatureValue& value) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, type, feature);
    if (found != Result::Success) return found;
    refresh(*feature);
    value = features().value(*feature);
    return Result::Success;
}

Result FeatureModule::readEntry(const char* name, const char*& entry) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Enum, feature);
    if (found == Result::Success) entry = entryName(*feature, features().value(*feature));
    return found;
}

Result FeatureModule::write(const char* name, FeatureType type, FeatureValue value) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, type, feature);
    if (found != Result::Success) return found;
    const bool inFrameCallback = currentThreadRole() == ThreadRole::Frame;
    if (inFrameCallback || m_events.isInvalidating(name)) {
        m_library.misuses.add(kSetInCallback);
        const std::uint32_t option = m_library.choices.option(Choice::SetInCallback);
        if (option == 0 || (option == 1 && inFrameCallback)) return Result::InvalidCall;
    }
    if (!isWritable(*feature)) return Result::InvalidAccess;
    const Result accepted = features().accept(*feature, value);
    if (accepted != Result::Success) return accepted;
    onChanging();
    round(*feature, value);
    features().value(*feature) = std::move(value);
    feature->forced = false;
    onChanged(*feature);
    invalidate(*feature);
    return Result::Success;
}

void FeatureModule::invalidate(const Feature& feature) {
    Event event;
    event.features.push_back(feature.row.name);
    for (const char* affected : feature.row.affects) {
        if (features().find(affected) != nullptr) event.features.push_back(affected);
    }
    m_events.post(std::move(event));
}

Result FeatureModule::intRange(const char* name, IntRange& range) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Int, feature);
    if (found == Result::Success) range = feature->intRange;
    return found;
}

Result FeatureModule::floatRange(const char* name, FloatRange& range) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Float, feature);
    if (found == Result::Success) range = feature->floatRange;
    return found;
}

Result FeatureModule::floatIncrement(const char* name, double& increment) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Float, feature);
    if (found == Result::Success) increment = feature->row.gridTold ? feature->row.grid : 0;
    return found;
}

Result FeatureModule::entries(const char* name, std::vector<EnumEntry>& entries) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Enum, feature);
    if (found == Result::Success) entries = feature->row.entries;
    return found;
}

Result FeatureModule::entry(const char* name, const char* entry, EntryFacts& facts) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Enum, feature);
    if (found != Result::Success) return found;
    const EnumEntry* known = findEntry(*feature, entry);
    if (known == nullptr) return Result::InvalidValue;
    facts = {*known, features().isAvailable(*feature, *known)};
    return Result::Success;
}

Result FeatureModule::entryOf(const char* name, std::int64_t number, const char*& entry) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Enum, feature);
    if (found != Result::Success) return found;
    const EnumEntry* known = findEntry(*feature, number);
    if (known == nullptr) return Result::InvalidValue;
    entry = known->name;
    return Result::Success;
}

Result FeatureModule::maxLength(const char* name, std::uint32_t& bytes) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::String, feature);
    if (found == Result::Success) bytes = feature->row.maxLength;
    return found;
}

Result FeatureModule::store(std::vector<StoredFeature>& features) {
    const Lock lock(mutex());
    if (!isAlive()) return Result::BadHandle;
    for (const Feature* feature : this->features().visible()) {
        if (!isStored(feature->row)) continue;
        StoredFeature stored{&feature->row, {}};
        for (std::size_t i = 0; i < feature->values.size(); ++i) {
            const char* selector = feature->row.selector;
            const char* entry =
                selector != nullptr ? this->features().at(selector).row.entries[i].name : nullptr;
            stored.values.emplace_back(entry, textOf(*feature, feature->values[i]));
        }
        features.push_back(std::move(stored));
    }
    return Result::Success;
}

Result FeatureModule::writeText(const char* name, std::string_view text) {
    FeatureType type{};
    FeatureValue value;
    {
        const Lock lock(mutex());
        Feature* feature = nullptr;
        const Result found = find(name, feature);
        if (found != Result::Success) return found;
        type = feature->row.type;
        if (type == FeatureType::Enum) {
            value = std::string(text);
        } else if (const Result read = valueOf(*feature, text, value); read != Result::Success) {
            return read;
        }
    }
    return write(name, type, std::move(value));
}

Result FeatureModule::run(const char* name) {
    Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Command, feature);
    if (found != Result::Success) return found;
    if (!isWritable(*feature)) return Result::InvalidAccess;
    const Result done = execute(lock, feature->row.name);
    if (done == Result::Success) invalidate(*feature);
    return done;
}

Result FeatureModule::isDone(const char* name, bool& done) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Command, feature);
    if (found == Result::Success) done = true;  // Every command takes effect before its call returns.
    return found;
}

Result FeatureModule::registerInvalidation(const char* name, InvalidationCallback callback, void* context) {
    const Lock lock(mutex());
    if (!isAlive()) return Result::BadHandle;
    if (features().find(name) == nullptr) return Result::NotFound;
    const bool again = m_events.add(name, callback, context);
    if (again) m_library.misuses.add("the callback was registered already");
    return Result::Success;
}

Result FeatureModule::unregisterInvalidation(const char* name, InvalidationCallback callback) {
    // Without the mutex: it waits for callbacks, and they may use any feature.
    const Result removed = m_events.remove(name, callback);
    return isAlive() ? removed : Result::BadHandle;
}

void FeatureModule::assign(const std::vector<std::pair<const char*, FeatureValue>>& values) {
    const Lock lock(mutex());
    for (const auto& [name, value] : values) features().assign(name, value);
}

}  // namespace simulator
