#pragma once

#include <memory>
#include <string>
#include <vector>

#include "config_items_fwd.h"

namespace zelt {

/// Plug-in-wide settings by key. Shared by reference count; it may outlive the plug-in, but not its library.
///
/// [host threads] One at a time, and none while the plug-in enumerates devices, which reads settings. An
/// unknown key is an assertion in setItem and getItem. Any item is stored, of whatever type.
class IfPluginConfig {
  public:
    virtual ~IfPluginConfig() = default;
    /// Stores a value under a known key; false for an unknown one.
    virtual bool setItem(const std::string& key, const config_items::ConfigItemVariant& value) = 0;
    /// The value; an InvalidConfigItem for an unknown key.
    virtual config_items::ConfigItemVariant getItem(const std::string& key) = 0;
    /// Whether a key is known.
    virtual bool hasItem(const std::string& key) = 0;
    /// Known keys, in the order in which the plug-in defines them.
    virtual std::vector<std::string> getKeys() = 0;
    /// What the value must satisfy; empty for an unknown key. Nothing here enforces it.
    virtual std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>> getConstraints(
        const std::string& key) = 0;
    /// The value that a set request would store.
    virtual config_items::ConfigItemVariant adaptItem(const std::string& key,
                                                      const config_items::ConfigItemVariant& value) = 0;
};

}  // namespace zelt
