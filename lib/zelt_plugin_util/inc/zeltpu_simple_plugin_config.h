/// Plug-in-wide settings, held by key.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "config_item_variant.h"
#include "if_plugin_config.h"

namespace zelt::plugin_util {

/// Filled by its owner before the host sees it. Does not lock.
class SimplePluginConfig : public IfPluginConfig {
  public:
    using Constraints = std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>;

    /// Adds a key with its first value; a key that is there keeps its place and gets the new ones.
    void addItem(const std::string& key, config_items::ConfigItemVariant item, Constraints constraints = {});

    /// Asserts that the key is known.
    bool setItem(const std::string& key, const config_items::ConfigItemVariant& value) override;
    /// Asserts that the key is known.
    config_items::ConfigItemVariant getItem(const std::string& key) override;
    bool hasItem(const std::string& key) override;
    /// In the order in which they were added.
    std::vector<std::string> getKeys() override;
    Constraints getConstraints(const std::string& key) override;
    /// The value unchanged; derived configurations normalise here.
    config_items::ConfigItemVariant adaptItem(const std::string& key,
                                              const config_items::ConfigItemVariant& value) override;

  private:
    std::vector<std::string> m_keys;
    std::map<std::string, config_items::ConfigItemVariant> m_items;
    std::map<std::string, Constraints> m_constraints;
};

}  // namespace zelt::plugin_util
