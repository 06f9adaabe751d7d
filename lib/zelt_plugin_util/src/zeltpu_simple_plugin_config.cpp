#include "zeltpu_simple_plugin_config.h"

#include <utility>

#include "assertion.h"

namespace zelt::plugin_util {
namespace {

// True for a known key; an assertion for any other.
bool isKnown(bool found) {
    ZELT_ASSERT_AS(found, "it != m_items.end()", "key not found. config item does not exist.");
    return found;
}

}  // namespace

using config_items::ConfigItemVariant;

void SimplePluginConfig::addItem(const std::string& key, ConfigItemVariant item, Constraints constraints) {
    if (!hasItem(key)) m_keys.push_back(key);
    m_items[key] = std::move(item);
    m_constraints[key] = std::move(constraints);
}

bool SimplePluginConfig::setItem(const std::string& key, const ConfigItemVariant& value) {
    const auto it = m_items.find(key);
    if (!isKnown(it != m_items.end())) return false;
    it->second = adaptItem(key, value);
    return true;
}

ConfigItemVariant SimplePluginConfig::getItem(const std::string& key) {
    const auto it = m_items.find(key);
    if (!isKnown(it != m_items.end())) return config_items::InvalidConfigItem();
    return it->second;
}

bool SimplePluginConfig::hasItem(const std::string& key) {
    return m_items.contains(key);
}

std::vector<std::string> SimplePluginConfig::getKeys() {
    return m_keys;
}

SimplePluginConfig::Constraints SimplePluginConfig::getConstraints(const std::string& key) {
    const auto it = m_constraints.find(key);
    return it != m_constraints.end() ? it->second : Constraints();
}

ConfigItemVariant SimplePluginConfig::adaptItem(const std::string&, const ConfigItemVariant& value) {
    return value;
}

}  // namespace zelt::plugin_util
