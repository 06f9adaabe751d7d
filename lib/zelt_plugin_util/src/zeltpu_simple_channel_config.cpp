#include "zeltpu_simple_channel_config.h"

#include <algorithm>
#include <utility>

#include "assertion.h"
#include "config_item_variant.h"

namespace zelt::plugin_util {

using platform::MutexLock;

void SimpleChannelConfig::addOption(std::shared_ptr<ChannelConfigOption> option) {
    ZELT_ASSERT(m_options.find(option->getKey()) == m_options.end());
    m_registered.push_back(option);
    m_options.insert_or_assign(option->getKey(), option);
    {
        const MutexLock lock(m_callback_mutex);
        option->connect(m_notifier.connected());
    }
    refreshAvailableKeys();
}

const std::vector<std::string>& SimpleChannelConfig::getKeys() {
    const MutexLock lock(m_keys_mutex);
    if (std::find(m_handed_out.begin(), m_handed_out.end(), m_available_keys) == m_handed_out.end()) {
        m_handed_out.push_back(m_available_keys);
    }
    return *m_available_keys;
}

void SimpleChannelConfig::onHostEvent(const void*) {}

bool SimpleChannelConfig::hasKey(const std::string& key) {
    std::shared_ptr<const Keys> keys;
    {
        const MutexLock lock(m_keys_mutex);
        keys = m_available_keys;
    }
    return std::find(keys->begin(), keys->end(), key) != keys->end();
}

config_items::ConfigItemVariant SimpleChannelConfig::getItem(const std::string& key) {
    const auto it = m_options.find(key);
    if (it == m_options.end()) return config_items::InvalidConfigItem();
    ZELT_ASSERT(it->second->isAvailable());
    return it->second->getItem();
}

SimpleChannelConfig::Constraints SimpleChannelConfig::getConstraints(const std::string& key) {
    const auto it = m_options.find(key);
    if (it == m_options.end()) return {};
    ZELT_ASSERT(it->second->isAvailable());
    return it->second->getConstraints();
}

bool SimpleChannelConfig::setItem(const std::string& key, const config_items::ConfigItemVariant& value) {
    const auto it = m_options.find(key);
    if (it == m_options.end()) return false;
    const bool accepted = it->second->setItem(value);
    refreshAvailableKeys();
    return accepted;
}

SimpleChannelConfig::ChangeCallback SimpleChannelConfig::setChangeCallback(ChangeCallback callback) {
    const auto shared = callback ? std::make_shared<const ChangeCallback>(callback) : nullptr;
    SharedChangeCallback previous;  // destroyed when the lock is gone
    const MutexLock lock(m_callback_mutex);
    previous = m_notifier.connected();
    m_notifier.connect(shared);
    for (const auto& option : m_registered) option->connect(shared);
    m_callback_as_given.swap(callback);
    return callback;
}

void SimpleChannelConfig::refreshAvailableKeys() {
    std::uint64_t refresh = 0;
    {
        const MutexLock lock(m_keys_mutex);
        refresh = ++m_last_refresh;
    }
    auto keys = std::make_shared<Keys>();
    for (const auto& option : m_registered) {
        if (option->isAvailable()) keys->push_back(option->getKey());
    }
    const MutexLock lock(m_keys_mutex);
    // One that began later knows more; what this one saw may be out of date.
    if (refresh < m_published_refresh) return;
    m_published_refresh = refresh;
    if (*keys == *m_available_keys) return;
    const auto known = std::find_if(m_handed_out.begin(), m_handed_out.end(),
                                    [&](const auto& list) { return *list == *keys; });
    m_available_keys = known != m_handed_out.end() ? *known : std::move(keys);
}

void SimpleChannelConfig::notifyChanged(const std::string& key) const {
    m_notifier.notify(key);
}

}  // namespace zelt::plugin_util
