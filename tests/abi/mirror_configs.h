/// Mirrors of the plug-in's and the channels' configurations and of what implements them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "config_item_constraints.h"
#include "config_item_variant.h"
#include "if_channel_config.h"
#include "if_plugin_config.h"
#include "mirror.h"

namespace slot_check {

using Variant = config_items::ConfigItemVariant;
using Constraints = std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>;
using ChangeCallback = std::function<void(const std::string&)>;
inline const int kConfigEvent = 0;

/// A value that says who made it.
inline Variant textItem(const std::string& text) {
    return config_items::SingleValueConfigItem<std::string>(text);
}

inline std::string textOf(const Variant& value) {
    return config_items::asItem(value).toString();
}

template <class Config>
class RecordingPluginConfig : public EndOf<Config> {
  public:
    virtual bool setItem(const std::string& key, const Variant& value) {
        answered("setItem");
        return key == "key 1" && textOf(value) == "value 1";
    }
    virtual Variant getItem(const std::string& key) {
        answered("getItem");
        return textItem("item of " + key);
    }
    virtual bool hasItem(const std::string& key) {
        answered("hasItem");
        return key == "key 3";
    }
    virtual std::vector<std::string> getKeys() {
        answered("getKeys");
        return {"first", "second"};
    }
    virtual Constraints getConstraints(const std::string& key) {
        answered("getConstraints");
        return Constraints(key.size());
    }
    virtual Variant adaptItem(const std::string& key, const Variant& value) {
        answered("adaptItem");
        return textItem(key + " of " + textOf(value));
    }

    static Operations operations() {
        return {{"setItem", entryOf(&RecordingPluginConfig::setItem)},
                {"getItem", entryOf(&RecordingPluginConfig::getItem)},
                {"hasItem", entryOf(&RecordingPluginConfig::hasItem)},
                {"getKeys", entryOf(&RecordingPluginConfig::getKeys)},
                {"getConstraints", entryOf(&RecordingPluginConfig::getConstraints)},
                {"adaptItem", entryOf(&RecordingPluginConfig::adaptItem)}};
    }
};

inline void callPluginConfig(Mirror& mirror) {
    mirror.destroys(0);
    EXPECT_TRUE((mirror.slot<bool(const std::string&, const Variant&)>(1)("key 1", textItem("value 1"))));
    EXPECT_EQ(textOf(mirror.slot<Variant(const std::string&)>(2)("key 2")), "item of key 2");
    EXPECT_TRUE(mirror.slot<bool(const std::string&)>(3)("key 3"));
    EXPECT_EQ(mirror.slot<std::vector<std::string>()>(4)(), (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(mirror.slot<Constraints(const std::string&)>(5)("five!").size(), 5u);
    EXPECT_EQ(textOf(mirror.slot<Variant(const std::string&, const Variant&)>(6)("six", textItem("six"))),
              "six of six");
}

template <class Config>
class RecordingChannelConfig : public EndOf<Config> {
  public:
    using EndOf<Config>::EndOf;

    virtual const std::vector<std::string>& getKeys() {
        static const std::vector<std::string> keys{"first", "second"};
        answered("getKeys");
        return keys;
    }
    virtual void onHostEvent(const void* event) {
        answered("onHostEvent");
        EXPECT_EQ(event, &kConfigEvent);
    }
    virtual bool hasKey(const std::string& key) {
        answered("hasKey");
        return key == "key 3";
    }
    virtual Variant getItem(const std::string& key) {
        answered("getItem");
        return textItem("item of " + key);
    }
    virtual Constraints getConstraints(const std::string& key) {
        answered("getConstraints");
        return Constraints(key.size());
    }
    virtual bool setItem(const std::string& key, const Variant& value) {
        answered("setItem");
        return key == "key 6" && textOf(value) == "value 6";
    }
    virtual ChangeCallback setChangeCallback(ChangeCallback callback) {
        answered("setChangeCallback");
        return [callback](const std::string& key) { callback("previous " + key); };
    }

    static Operations operations() {
        return {{"getKeys", entryOf(&RecordingChannelConfig::getKeys)},
                {"onHostEvent", entryOf(&RecordingChannelConfig::onHostEvent)},
                {"hasKey", entryOf(&RecordingChannelConfig::hasKey)},
                {"getItem", entryOf(&RecordingChannelConfig::getItem)},
                {"getConstraints", entryOf(&RecordingChannelConfig::getConstraints)},
                {"setItem", entryOf(&RecordingChannelConfig::setItem)},
                {"setChangeCallback", entryOf(&RecordingChannelConfig::setChangeCallback)}};
    }
};

inline void callChannelConfig(Mirror& mirror) {
    mirror.destroys(0);
    EXPECT_EQ(mirror.slot<const std::vector<std::string>&()>(1)(),
              (std::vector<std::string>{"first", "second"}));
    mirror.slot<void(const void*)>(2)(&kConfigEvent);
    EXPECT_TRUE(mirror.slot<bool(const std::string&)>(3)("key 3"));
    EXPECT_EQ(textOf(mirror.slot<Variant(const std::string&)>(4)("key 4")), "item of key 4");
    EXPECT_EQ(mirror.slot<Constraints(const std::string&)>(5)("five!").size(), 5u);
    EXPECT_TRUE((mirror.slot<bool(const std::string&, const Variant&)>(6)("key 6", textItem("value 6"))));
    std::string told;
    const ChangeCallback callback = [&](const std::string& key) { told = key; };
    mirror.slot<ChangeCallback(ChangeCallback)>(7)(callback)("callback");
    EXPECT_EQ(told, "previous callback");
}

}  // namespace slot_check
