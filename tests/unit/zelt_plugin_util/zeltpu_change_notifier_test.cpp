#include "zeltpu_change_notifier.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "channel_config_fixture.h"

namespace {

using config_items::asItem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt::plugin_util::ChannelConfigOption;
using zelt::plugin_util::GenericOption;

using BoolItem = config_items::SingleValueConfigItem<bool>;
using ChangeCallback = channel_config::IfChannelConfig::ChangeCallback;

TEST(ChangeCallback, IsEmptyAtFirstAndReturnedWhenReplaced) {
    std::string told;
    OpenChannelConfig config;
    EXPECT_FALSE(config.setChangeCallback([&](const std::string& key) { told += "first " + key; }));
    const ChangeCallback first = config.setChangeCallback({});
    ASSERT_TRUE(first);
    first("a");
    EXPECT_EQ(told, "first a");
    EXPECT_FALSE(config.setChangeCallback({}));
}

TEST(ChangeCallback, IsCalledByTheChannelAndByEveryOptionWithTheKey) {
    std::vector<std::string> told;
    OpenChannelConfig config;
    const auto before = fixed("before");
    const auto after = fixed("after");
    config.addOption(before);
    config.setChangeCallback([&](const std::string& key) { told.push_back(key); });
    config.addOption(after);
    config.notifyChanged("channel");
    before->notifyChanged();
    after->notifyChanged();
    EXPECT_THAT(told, ElementsAre("channel", "before", "after"));
}

TEST(ChangeCallback, IsNotCalledAnyMoreOnceReplacedOrSwitchedOff) {
    int first = 0;
    int second = 0;
    OpenChannelConfig config;
    const auto option = fixed("a");
    config.addOption(option);
    config.setChangeCallback([&](const std::string&) { ++first; });
    config.setChangeCallback([&](const std::string&) { ++second; });
    config.notifyChanged("a");
    option->notifyChanged();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 2);
    config.setChangeCallback({});
    config.notifyChanged("a");
    option->notifyChanged();
    EXPECT_EQ(second, 2);
}

TEST(ChangeCallback, IsNotCalledByReadingSettingOrRefreshing) {
    int told = 0;
    std::atomic<bool> used = true;
    std::atomic<bool> available = true;
    OpenChannelConfig config;
    config.addOption(std::make_shared<zelt::plugin_util::ChannelUsedOption>("Used", used, false));
    config.addOption(switchable("a", available));
    config.setChangeCallback([&](const std::string&) { ++told; });
    config.setItem("Used", BoolItem(false));
    config.getItem("Used");
    available = false;
    config.refreshAvailableKeys();
    EXPECT_EQ(told, 0);
}

TEST(ChangeCallback, MayUseTheConfigurationAndReplaceItself) {
    std::string told;
    OpenChannelConfig config;
    const auto option = fixed("a");
    config.addOption(option);
    config.setChangeCallback([&](const std::string& key) {
        told += asItem(config.getItem(key)).toString();
        told += config.hasKey(key) && config.getKeys().size() == 1 ? "!" : "?";
        config.refreshAvailableKeys();
        config.setChangeCallback([&](const std::string& next) { told += " next " + next; });
    });
    option->notifyChanged();
    config.notifyChanged("b");
    EXPECT_EQ(told, "value! next b");
}

TEST(ChangeCallback, PassesOnWhatTheHostThrows) {
    OpenChannelConfig config;
    config.setChangeCallback([](const std::string&) { throw std::domain_error("host"); });
    EXPECT_THROW(config.notifyChanged("a"), std::domain_error);
}

TEST(ChangeCallback, IsReturnedAsItWasGivenWhateverItDidSince) {
    int calls = 0;
    OpenChannelConfig config;
    config.setChangeCallback([&calls, own = 0](const std::string&) mutable { calls = ++own; });
    config.notifyChanged("a");
    config.notifyChanged("a");
    EXPECT_EQ(calls, 2);
    const ChangeCallback previous = config.setChangeCallback({});
    previous("a");
    EXPECT_EQ(calls, 1);
}

TEST(ChangeNotifier, CallsTheCallbackConnectedLast) {
    zelt::plugin_util::ChangeNotifier notifier;
    std::vector<std::string> told;
    notifier.notify("nobody");
    notifier.connect(
        std::make_shared<const ChangeCallback>([&](const std::string& key) { told.push_back(key); }));
    EXPECT_NE(notifier.connected(), nullptr);
    notifier.notify("a");
    notifier.connect(nullptr);
    EXPECT_EQ(notifier.connected(), nullptr);
    notifier.notify("b");
    EXPECT_THAT(told, ElementsAre("a"));
}

}  // namespace
