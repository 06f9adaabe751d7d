#include "user_sets.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace simulator {
namespace {

constexpr std::string_view kKept[] = {
    "DeviceUserID",           "GevIPConfigurationMode",  "GevPersistentDefaultGateway",
    "GevPersistentIPAddress", "GevPersistentSubnetMask", "UserSetDefaultSelector",
    "UserSetSelector"};

FeatureValues settings(const FeatureTable& features) {
    return features.values([](const FeatureRow& row) { return isInUserSets(row); });
}

}  // namespace

bool isInUserSets(const FeatureRow& row) {
    return isStreamable(row) && std::find(std::begin(kKept), std::end(kKept), row.name) == std::end(kKept);
}

void UserSets::remember(const FeatureTable& features) {
    const std::lock_guard lock(m_mutex);
    m_default = settings(features);
}

Result UserSets::save(std::int64_t set, const FeatureTable& features) {
    if (set == kDefault) return Result::InvalidAccess;
    const std::lock_guard lock(m_mutex);
    m_saved[set] = settings(features);
    return Result::Success;
}

void UserSets::load(std::int64_t set, FeatureTable& features) const {
    const std::lock_guard lock(m_mutex);
    const auto saved = m_saved.find(set);
    features.restore(saved != m_saved.end() ? saved->second : m_default);
}

std::int64_t UserSets::atPowerUp() const {
    const std::lock_guard lock(m_mutex);
    return m_atPowerUp;
}

void UserSets::useAtPowerUp(std::int64_t set) {
    const std::lock_guard lock(m_mutex);
    m_atPowerUp = set;
}

}  // namespace simulator
