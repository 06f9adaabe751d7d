/// Settings that a camera keeps without power. [any thread]
#pragma once

#include <cstdint>
#include <map>
#include <mutex>

#include "feature_table.h"

namespace simulator {

/// Everything a client can set but what the camera keeps on its own: its name, its address, the sets.
bool isInUserSets(const FeatureRow& row);

class UserSets {
  public:
    static constexpr std::int64_t kDefault = 0;

    /// What a set that was never saved holds: the settings that the camera comes with.
    void remember(const FeatureTable& features);
    /// InvalidAccess for the default set, which cannot be changed.
    Result save(std::int64_t set, const FeatureTable& features);
    void load(std::int64_t set, FeatureTable& features) const;

    std::int64_t atPowerUp() const;
    void useAtPowerUp(std::int64_t set);

  private:
    mutable std::mutex m_mutex;
    FeatureValues m_default;
    std::map<std::int64_t, FeatureValues> m_saved;
    std::int64_t m_atPowerUp = kDefault;
};

}  // namespace simulator
