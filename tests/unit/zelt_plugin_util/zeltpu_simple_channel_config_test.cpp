#include "zeltpu_simple_channel_config.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "channel_config_constraints.h"
#include "channel_config_fixture.h"
#include "config_keys.h"

namespace {

using config_items::asItem;
using config_items::ConfigItemVariant;
using config_items::InvalidConfigItem;
using test_support::AssertionCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt::plugin_util::ChannelConfigOption;
using zelt::plugin_util::GenericOption;

using BoolItem = config_items::SingleValueConfigItem<bool>;

constexpr const char* kSource = "lib/zelt_plugin_util/src/zeltpu_simple_channel_config";

std::string text(const ConfigItemVariant& item) {
    return asItem(item).toString();
}

TEST(SimpleChannelConfig, ListsAvailableOptionsInTheOrderOfRegistration) {
    const std::atomic<bool> off = false;
    OpenChannelConfig config;
    config.addOption(fixed("b"));
    config.addOption(switchable("x", off));
    config.addOption(fixed("a"));
    EXPECT_THAT(config.getKeys(), ElementsAre("b", "a"));
    EXPECT_TRUE(config.hasKey("a"));
    EXPECT_FALSE(config.hasKey("x"));
    EXPECT_FALSE(config.hasKey("A"));
}

TEST(SimpleChannelConfig, HasNoKeysAtFirst) {
    OpenChannelConfig config;
    EXPECT_THAT(config.getKeys(), IsEmpty());
    EXPECT_FALSE(config.hasKey(""));
}

TEST(SimpleChannelConfig, PutsANewlyAvailableKeyInItsPlaceAndTakesItOutAgain) {
    std::atomic<bool> first = false;
    std::atomic<bool> middle = false;
    std::atomic<bool> last = false;
    OpenChannelConfig config;
    config.addOption(switchable("first", first));
    config.addOption(fixed("1"));
    config.addOption(switchable("middle", middle));
    config.addOption(fixed("2"));
    config.addOption(switchable("last", last));
    EXPECT_THAT(config.getKeys(), ElementsAre("1", "2"));
    first = middle = last = true;
    EXPECT_THAT(config.getKeys(), ElementsAre("1", "2"));
    config.refreshAvailableKeys();
    EXPECT_THAT(config.getKeys(), ElementsAre("first", "1", "middle", "2", "last"));
    first = middle = false;
    config.refreshAvailableKeys();
    EXPECT_THAT(config.getKeys(), ElementsAre("1", "2", "last"));
}

TEST(SimpleChannelConfig, AsksEveryOptionOnceInARefresh) {
    std::string asked;
    OpenChannelConfig config;
    for (const std::string key : {"a", "b"}) {
        config.addOption(std::make_shared<GenericOption<bool>>(
            key, GenericOption<bool>::Callables{.isAvailable = [&asked, key] {
                asked += key;
                return true;
            }}));
    }
    asked.clear();
    config.refreshAvailableKeys();
    EXPECT_EQ(asked, "ab");
}

TEST(SimpleChannelConfig, KeepsListsThatItHandedOut) {
    std::atomic<bool> available = true;
    OpenChannelConfig config;
    config.addOption(fixed("1"));
    config.addOption(switchable("2", available));
    const auto& before = config.getKeys();
    available = false;
    config.refreshAvailableKeys();
    const auto& after = config.getKeys();
    EXPECT_THAT(before, ElementsAre("1", "2"));
    EXPECT_THAT(after, ElementsAre("1"));
}

TEST(SimpleChannelConfig, HandsOutTheSameListWhenNothingChangedOrAnEarlierOneCameBack) {
    std::atomic<bool> available = true;
    OpenChannelConfig config;
    config.addOption(switchable("1", available));
    const auto* const before = &config.getKeys();
    config.refreshAvailableKeys();
    EXPECT_EQ(&config.getKeys(), before);
    available = false;
    config.refreshAvailableKeys();
    EXPECT_NE(&config.getKeys(), before);
    available = true;
    config.refreshAvailableKeys();
    EXPECT_EQ(&config.getKeys(), before);
}

TEST(SimpleChannelConfig, AssertsThatAKeyIsNewAndLetsTheSecondOptionTakeOver) {
    const AssertionCapture assertions;
    OpenChannelConfig config;
    config.addOption(fixed("a", "first"));
    EXPECT_THAT(assertions.expressions(), IsEmpty());
    config.addOption(fixed("a", "second"));
    ASSERT_THAT(assertions.expressions(), ElementsAre("m_options.find(option->getKey()) == m_options.end()"));
    EXPECT_EQ(assertions.failures().front().file, kSource);
    EXPECT_EQ(text(config.getItem("a")), "second");
    EXPECT_THAT(config.getKeys(), ElementsAre("a", "a"));
}

TEST(SimpleChannelConfig, ListsAKeyOnceForEachOfItsOptionsThatIsAvailable) {
    const AssertionCapture assertions;
    std::atomic<bool> first = true;
    std::atomic<bool> between = true;
    OpenChannelConfig config;
    config.addOption(switchable("a", first));
    config.addOption(switchable("b", between));
    config.addOption(fixed("a"));
    first = false;
    config.refreshAvailableKeys();
    EXPECT_THAT(config.getKeys(), ElementsAre("b", "a"));
    between = false;
    config.refreshAvailableKeys();
    EXPECT_THAT(config.getKeys(), ElementsAre("a"));
}

TEST(SimpleChannelConfig, GivesAnInvalidItemAndNoConstraintsForAnUnknownKey) {
    const AssertionCapture assertions;
    OpenChannelConfig config;
    const ConfigItemVariant item = config.getItem("a");
    EXPECT_EQ(boost::get<InvalidConfigItem>(item).m_message, "");
    EXPECT_EQ(text(item), "Invalid ConfigItem");
    EXPECT_THAT(config.getConstraints("a"), IsEmpty());
    EXPECT_FALSE(config.setItem("a", BoolItem(true)));
    EXPECT_THAT(assertions.expressions(), IsEmpty());
}

TEST(SimpleChannelConfig, AssertsAvailabilityInGetAndAnswersAllTheSame) {
    const AssertionCapture assertions;
    const std::atomic<bool> off = false;
    OpenChannelConfig config;
    config.addOption(std::make_shared<GenericOption<bool>>(
        "a", GenericOption<bool>::Callables{.isAvailable = [&off] { return off.load(); },
                                            .get = [] { return true; },
                                            .getConstraints =
                                                [] {
                                                    return ChannelConfigOption::Constraints{
                                                        std::make_shared<channel_config::ReadOnlyConstraint>(
                                                            true)};
                                                }}));
    EXPECT_EQ(text(config.getItem("a")), "1");
    EXPECT_THAT(assertions.expressions(), ElementsAre("it->second->isAvailable()"));
    EXPECT_EQ(config.getConstraints("a").size(), 1u);
    EXPECT_THAT(assertions.expressions(),
                ElementsAre("it->second->isAvailable()", "it->second->isAvailable()"));
    for (const auto& failure : assertions.failures()) EXPECT_EQ(failure.file, kSource);
}

TEST(SimpleChannelConfig, SetsAnUnavailableOptionWithoutAsking) {
    const AssertionCapture assertions;
    bool set = false;
    OpenChannelConfig config;
    config.addOption(std::make_shared<GenericOption<bool>>(
        "a", GenericOption<bool>::Callables{.isAvailable = [] { return false; },
                                            .set = [&set](bool value) { return set = value; }}));
    EXPECT_TRUE(config.setItem("a", BoolItem(true)));
    EXPECT_TRUE(set);
    EXPECT_THAT(assertions.expressions(), IsEmpty());
}

TEST(SimpleChannelConfig, RefreshesItsKeysAfterASetItWhetherAcceptedOrNot) {
    std::atomic<bool> available = false;
    OpenChannelConfig config;
    config.addOption(switchable("shown", available));
    config.addOption(std::make_shared<GenericOption<bool>>(
        "accepts", GenericOption<bool>::Callables{.set = [&](bool value) {
            available = value;
            return true;
        }}));
    config.addOption(std::make_shared<GenericOption<bool>>(
        "refuses", GenericOption<bool>::Callables{.set = [&](bool value) {
            available = value;
            return false;
        }}));
    EXPECT_TRUE(config.setItem("accepts", BoolItem(true)));
    EXPECT_THAT(config.getKeys(), ElementsAre("shown", "accepts", "refuses"));
    EXPECT_FALSE(config.setItem("refuses", BoolItem(false)));
    EXPECT_THAT(config.getKeys(), ElementsAre("accepts", "refuses"));
}

struct FailingOption : ChannelConfigOption {
    using ChannelConfigOption::ChannelConfigOption;
    bool isAvailable() const override { return true; }
    ConfigItemVariant getItem() const override { throw std::domain_error("get"); }
    bool setItem(const ConfigItemVariant&) override { throw std::domain_error("set"); }
    Constraints getConstraints() const override { throw std::domain_error("constraints"); }
};

TEST(SimpleChannelConfig, TellsKeysApartByCase) {
    OpenChannelConfig config;
    config.addOption(fixed(config_keys::kCameraGain));
    EXPECT_TRUE(config.hasKey("CAMERA/Gain"));
    EXPECT_FALSE(config.hasKey("camera/gain"));
    EXPECT_EQ(text(config.getItem("camera/gain")), "Invalid ConfigItem");
}

TEST(SimpleChannelConfig, KeepsItsKeysAndPassesOnWhatAnAvailabilityCallableThrows) {
    OpenChannelConfig config;
    config.addOption(fixed("first"));
    bool broken = false;
    std::string stored;
    config.addOption(std::make_shared<GenericOption<std::string>>(
        "odd", GenericOption<std::string>::Callables{.isAvailable =
                                                         [&] {
                                                             if (broken) throw std::runtime_error("broken");
                                                             return true;
                                                         },
                                                     .set =
                                                         [&](const std::string& value) {
                                                             stored = value;
                                                             return true;
                                                         }}));
    broken = true;
    EXPECT_THROW(config.setItem("odd", config_items::SingleValueConfigItem<std::string>("x")),
                 std::runtime_error);
    EXPECT_EQ(stored, "x");
    EXPECT_THROW(config.refreshAvailableKeys(), std::runtime_error);
    EXPECT_THROW(config.addOption(fixed("last")), std::runtime_error);
    EXPECT_THAT(config.getKeys(), ElementsAre("first", "odd"));
    broken = false;
    config.refreshAvailableKeys();
    EXPECT_THAT(config.getKeys(), ElementsAre("first", "odd", "last"));
}

TEST(SimpleChannelConfig, PassesOnWhatAnOptionThrows) {
    OpenChannelConfig config;
    config.addOption(std::make_shared<FailingOption>("a"));
    EXPECT_THROW(config.getItem("a"), std::domain_error);
    EXPECT_THROW(config.setItem("a", BoolItem(true)), std::domain_error);
    EXPECT_THROW(config.getConstraints("a"), std::domain_error);
}

TEST(SimpleChannelConfig, IgnoresHostEvents) {
    OpenChannelConfig config;
    config.addOption(fixed("a"));
    int told = 0;
    config.setChangeCallback([&](const std::string&) { ++told; });
    const AssertionCapture assertions;
    config.onHostEvent(nullptr);
    config.onHostEvent(&told);
    EXPECT_THAT(config.getKeys(), ElementsAre("a"));
    EXPECT_EQ(text(config.getItem("a")), "value");
    EXPECT_EQ(told, 0);
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST(Refresh, IsOutdoneByOneThatBeganLater) {
    OpenChannelConfig config;
    bool present = true;
    bool nested = false;
    config.addOption(
        std::make_shared<GenericOption<bool>>("a", GenericOption<bool>::Callables{.isAvailable = [&] {
                                                  const bool seen = present;
                                                  if (nested) {
                                                      nested = false;
                                                      present = false;
                                                      config.refreshAvailableKeys();
                                                  }
                                                  return seen;
                                              }}));
    ASSERT_THAT(config.getKeys(), ElementsAre("a"));
    nested = true;
    config.refreshAvailableKeys();
    EXPECT_THAT(config.getKeys(), IsEmpty());
}

}  // namespace
