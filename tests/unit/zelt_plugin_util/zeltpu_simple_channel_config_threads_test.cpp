#include <array>
#include <map>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "channel_config_fixture.h"
#include "latch.h"

namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;

constexpr int kRounds = 2000;

TEST(ChannelConfigThreads, ReadersSeeWholeListsWhileAnotherThreadRefreshes) {
    std::atomic<bool> available = true;
    OpenChannelConfig config;
    config.addOption(fixed("first"));
    config.addOption(switchable("second", available));
    config.addOption(fixed("third"));
    std::atomic<int> readers = 2;
    test_support::Latch start(3);
    const auto read = [&] {
        start.arrive_and_wait();
        const std::unique_ptr<std::atomic<int>, void (*)(std::atomic<int>*)> leave(
            &readers, [](std::atomic<int>* count) { --*count; });
        for (int i = 0; i < kRounds; ++i) {
            const std::vector<std::string>& keys = config.getKeys();
            ASSERT_THAT(keys, AnyOf(ElementsAre("first", "third"), ElementsAre("first", "second", "third")));
            ASSERT_TRUE(config.hasKey("third"));
            ASSERT_FALSE(config.hasKey("fourth"));
        }
    };
    const std::jthread one(read);
    const std::jthread two(read);
    start.arrive_and_wait();
    while (readers > 0) {
        available = !available;
        config.refreshAvailableKeys();
    }
}

TEST(ChannelConfigThreads, SettingsAreReadAndSetWhileOthersListThem) {
    using SwitchOption = zelt::plugin_util::GenericOption<bool>;
    std::atomic<bool> available = true;
    std::atomic<bool> used = true;
    OpenChannelConfig config;
    config.addOption(std::make_shared<zelt::plugin_util::ChannelUsedOption>("Used", used, false));
    config.addOption(switchable("second", available));
    config.addOption(std::make_shared<SwitchOption>("flips", SwitchOption::Callables{.set = [&](bool value) {
                                                        available = value;
                                                        return true;
                                                    }}));
    test_support::Latch start(3);
    const auto set = [&](const std::string& key) {
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i)
            ASSERT_TRUE(config.setItem(key, config_items::SingleValueConfigItem<bool>(i % 2 == 0)));
    };
    {
        const std::jthread one([&] { set("flips"); });
        const std::jthread two([&] { set("Used"); });
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i) {
            for (const std::string& key : config.getKeys()) ASSERT_NE(key, "");
            ASSERT_EQ(config.getConstraints("Used").size(), 3u);
            boost::get<config_items::SingleValueConfigItem<bool>>(config.getItem("Used"));
        }
    }
    EXPECT_THAT(config.getKeys(), ElementsAre("Used", "flips"));  // the last value set was false
}

TEST(ChannelConfigThreads, TheLastRefreshWinsWhenSeveralThreadsRefresh) {
    using SwitchOption = zelt::plugin_util::GenericOption<bool>;
    std::array<std::atomic<bool>, 3> available{};
    OpenChannelConfig config;
    for (std::size_t i = 0; i < available.size(); ++i) {
        // Between answer and publication there is time for another thread to be quicker.
        config.addOption(std::make_shared<SwitchOption>(
            std::to_string(i), SwitchOption::Callables{.isAvailable = [&flag = available[i]] {
                const bool seen = flag;
                std::this_thread::yield();
                return seen;
            }}));
    }
    for (int round = 0; round < kRounds / 4; ++round) {
        for (auto& flag : available) flag = false;
        config.refreshAvailableKeys();
        test_support::Latch start(3);
        std::vector<std::jthread> threads;
        for (auto& flag : available) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                flag = true;
                config.refreshAvailableKeys();
            });
        }
        threads.clear();
        ASSERT_THAT(config.getKeys(), ElementsAre("0", "1", "2"));
    }
}

TEST(ChannelConfigThreads, TheCallbackIsReplacedWhileOtherThreadsNotify) {
    OpenChannelConfig config;
    const auto option = fixed("option");
    config.addOption(option);
    std::atomic<int> told = 0;
    const auto callback = [&told](std::string expected) {
        // A text of its own, so that a callback which dies while it runs is noticed.
        return [&told, expected = std::move(expected)](const std::string& key) {
            if (key == expected || key == "option") ++told;
        };
    };
    config.setChangeCallback(callback("a key that is too long for a short text"));
    test_support::Latch start(3);
    std::atomic<int> notifiers = 2;
    const std::jthread byChannel([&] {
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i) config.notifyChanged("a key that is too long for a short text");
        --notifiers;
    });
    const std::jthread byOption([&] {
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i) option->notifyChanged();
        --notifiers;
    });
    start.arrive_and_wait();
    while (notifiers > 0) {
        ASSERT_TRUE(config.setChangeCallback(callback("a key that is too long for a short text")));
    }
    EXPECT_EQ(told, 2 * kRounds);
}

TEST(ChannelConfigThreads, ChannelAndOptionsEndWithTheSameCallbackWhenTwoThreadsReplaceIt) {
    OpenChannelConfig config;
    std::vector<std::shared_ptr<zelt::plugin_util::ChannelConfigOption>> options;
    for (int i = 0; i < 200; ++i) {
        options.push_back(fixed(std::to_string(i)));
        config.addOption(options.back());
    }
    for (int round = 0; round < 100; ++round) {
        std::map<int, int> told;
        test_support::Latch start(2);
        const auto replace = [&](int who) {
            start.arrive_and_wait();
            for (int i = 0; i < 10; ++i) {
                config.setChangeCallback([&told, who](const std::string&) { ++told[who]; });
            }
        };
        {
            const std::jthread one(replace, 1);
            const std::jthread two(replace, 2);
        }
        config.notifyChanged("channel");
        for (const auto& option : options) option->notifyChanged();
        ASSERT_EQ(told.size(), 1u);
        ASSERT_EQ(told.begin()->second, 201);
    }
}

}  // namespace
