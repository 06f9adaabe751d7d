#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "config_items_fwd.h"

namespace channel_config {

/// One channel as the host sees it: its settings by key. Shared by reference count; it may outlive the
/// plug-in, and then answers from its last known values. It must not outlive the plug-in's library, nor must
/// a constraint that it gave out.
///
/// [host threads] Operations may be called from several threads. An error inside a setting reaches the host
/// as an invalid item or a refused value; an exception that does not passes through.
///
/// Change callbacks come on host threads, also on several at once, one call per key, with no lock of the
/// plug-in's held but the plug-in mutex: from one the host may use channel configurations, not plug-in
/// operations. A callback must not throw: it would end the operation that called it.
class IfChannelConfig {
  public:
    /// Told which setting changed; `key` is valid during the call only.
    using ChangeCallback = std::function<void(const std::string& key)>;

    virtual ~IfChannelConfig() = default;
    /// Keys of the settings available now, in registration order. The reference stays valid as long as the
    /// channel; a later change makes a new list.
    virtual const std::vector<std::string>& getKeys() = 0;
    /// An event of the host; without effect.
    virtual void onHostEvent(const void* event) = 0;
    /// Whether a setting is available now.
    virtual bool hasKey(const std::string& key) = 0;
    /// The setting's value; an InvalidConfigItem when it cannot be had, with the reason as its text, or for
    /// an unknown key, without one. Asserts that the setting is available, and gives its value in any case.
    virtual config_items::ConfigItemVariant getItem(const std::string& key) = 0;
    /// What a value must satisfy, built anew on each call; empty for an unknown key. Asserts that the setting
    /// is available.
    virtual std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>> getConstraints(
        const std::string& key) = 0;
    /// Sets a value; false when the key is unknown or the value was not accepted. Unlike reading, this does
    /// not ask whether the setting is available.
    virtual bool setItem(const std::string& key, const config_items::ConfigItemVariant& value) = 0;
    /// Sets the callback that is told of changed settings; returns the previous one as it was given. Empty
    /// switches it off. A call of the previous one that is under way on another thread may end later.
    virtual ChangeCallback setChangeCallback(ChangeCallback callback) = 0;
};

}  // namespace channel_config
