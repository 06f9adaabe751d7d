/// A channel configuration whose protected operations tests may call, and options to fill it with.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "config_item_variant.h"
#include "zeltpu_simple_channel_config.h"

struct OpenChannelConfig : zelt::plugin_util::SimpleChannelConfig {
    using SimpleChannelConfig::notifyChanged;
    using SimpleChannelConfig::refreshAvailableKeys;
};

/// A text setting that is available as long as `available` says so.
inline std::shared_ptr<zelt::plugin_util::ChannelConfigOption> switchable(
    const std::string& key, const std::atomic<bool>& available) {
    return std::make_shared<zelt::plugin_util::GenericOption<std::string>>(
        key, zelt::plugin_util::GenericOption<std::string>::Callables{
                 .isAvailable = [&available] { return available.load(); }, .get = [key] { return key; }});
}

/// A text setting that is always there.
inline std::shared_ptr<zelt::plugin_util::ChannelConfigOption> fixed(const std::string& key,
                                                                     const std::string& value = "value") {
    return std::make_shared<zelt::plugin_util::ConstantGenericOption<std::string>>(key, value);
}
