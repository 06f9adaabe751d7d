#include "feature_module.h"

#include <algorithm>
#include <cstring>

namespace simulator {

Result FeatureModule::find(const char* name, FeatureType type, Feature*& feature) {
    if (!isAlive()) return Result::BadHandle;
    feature = features().find(name);
    if (feature == nullptr) return Result::NotFound;
    return feature->row.type == type ? Result::Success : Result::WrongType;
}

FeatureFacts FeatureModule::facts(const Feature& feature) {
    const auto all = features().visible();
    const bool selects = std::any_of(all.begin(), all.end(), [&](const Feature* other) {
        return other->row.selector != nullptr && std::strcmp(other->row.selector, feature.row.name) == 0;
    });
    return {&feature.row, selects};
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
    if (!isAlive()) return Result::BadHandle;
    const Feature* feature = features().find(name);
    if (feature == nullptr) return Result::NotFound;
    facts = this->facts(*feature);
    return Result::Success;
}

Result FeatureModule::access(const char* name, bool& readable, bool& writable) {
    const Lock lock(mutex());
    if (!isAlive()) return Result::BadHandle;
    const Feature* feature = features().find(name);
    if (feature == nullptr) return Result::NotFound;
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
    const bool inCallback = currentThreadRole() == ThreadRole::Frame || m_events.isInvalidating(name);
    if (inCallback) return Result::InvalidCall;
    if (!isWritable(*feature)) return Result::InvalidAccess;
    const Result accepted = FeatureTable::accept(*feature, value);
    if (accepted != Result::Success) return accepted;
    round(*feature, value);
    features().value(*feature) = std::move(value);
    feature->forced = false;
    onChanged();
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

Result FeatureModule::entries(const char* name, std::vector<EnumEntry>& entries) {
    const Lock lock(mutex());
    Feature* feature = nullptr;
    const Result found = find(name, FeatureType::Enum, feature);
    if (found == Result::Success) entries = feature->row.entries;
    return found;
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
    m_events.add(name, callback, context);
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
