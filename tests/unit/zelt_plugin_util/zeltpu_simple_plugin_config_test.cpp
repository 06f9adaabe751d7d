#include "zeltpu_simple_plugin_config.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "channel_config_constraints.h"

namespace {

using config_items::asItem;
using config_items::ConfigItemVariant;
using config_items::InvalidConfigItem;
using config_items::ScalarConfigItem;
using test_support::AssertionCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt::plugin_util::SimplePluginConfig;

using BoolItem = config_items::SingleValueConfigItem<bool>;

void expectUnknownKeyAsserted(const AssertionCapture& assertions) {
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures().front().message, "key not found. config item does not exist.");
    EXPECT_EQ(assertions.failures().front().file, "lib/zelt_plugin_util/src/zeltpu_simple_plugin_config");
}

TEST(SimplePluginConfig, ListsItsKeysInTheOrderOfRegistration) {
    SimplePluginConfig config;
    config.addItem("b", BoolItem(true));
    config.addItem("a", BoolItem(false));
    EXPECT_THAT(config.getKeys(), ElementsAre("b", "a"));
    EXPECT_TRUE(config.hasItem("a"));
    EXPECT_FALSE(config.hasItem("A"));
}

TEST(SimplePluginConfig, StoresAValueUnderAKnownKey) {
    const AssertionCapture assertions;
    SimplePluginConfig config;
    config.addItem("a", BoolItem(false));
    EXPECT_TRUE(config.setItem("a", BoolItem(true)));
    EXPECT_EQ(asItem(config.getItem("a")).toString(), "1");
    EXPECT_THAT(assertions.expressions(), IsEmpty());
}

TEST(SimplePluginConfig, ReplacesTheAlternativeWhenTheValueHasAnother) {
    SimplePluginConfig config;
    config.addItem("a", BoolItem(false));
    EXPECT_TRUE(config.setItem("a", ScalarConfigItem(25, "Hz")));
    EXPECT_EQ(boost::get<ScalarConfigItem>(config.getItem("a")).toString(), "25 Hz");
}

TEST(SimplePluginConfig, AssertsAndStoresNothingUnderAnUnknownKey) {
    const AssertionCapture assertions;
    SimplePluginConfig config;
    EXPECT_FALSE(config.setItem("a", BoolItem(true)));
    expectUnknownKeyAsserted(assertions);
    EXPECT_FALSE(config.hasItem("a"));
    EXPECT_THAT(config.getKeys(), IsEmpty());
}

TEST(SimplePluginConfig, AssertsAndGivesAnInvalidItemForAnUnknownKey) {
    const AssertionCapture assertions;
    SimplePluginConfig config;
    const ConfigItemVariant item = config.getItem("a");
    EXPECT_EQ(boost::get<InvalidConfigItem>(item).toString(), "Invalid ConfigItem");
    expectUnknownKeyAsserted(assertions);
}

TEST(SimplePluginConfig, GivesTheConstraintsOfAKeyAndNoneForAnUnknownOne) {
    const AssertionCapture assertions;
    SimplePluginConfig config;
    const auto constraint = std::make_shared<channel_config::ReadOnlyConstraint>(true);
    config.addItem("a", BoolItem(true), {constraint});
    config.addItem("b", BoolItem(true));
    EXPECT_THAT(config.getConstraints("a"), ElementsAre(constraint));
    EXPECT_THAT(config.getConstraints("b"), IsEmpty());
    EXPECT_THAT(config.getConstraints("c"), IsEmpty());
    EXPECT_THAT(assertions.expressions(), IsEmpty());
}

TEST(SimplePluginConfig, GivesACopyOfItsConstraintList) {
    SimplePluginConfig config;
    config.addItem("a", BoolItem(true), {std::make_shared<channel_config::ReadOnlyConstraint>(true)});
    config.getConstraints("a").clear();
    config.getKeys().clear();
    EXPECT_EQ(config.getConstraints("a").size(), 1u);
    EXPECT_THAT(config.getKeys(), ElementsAre("a"));
}

TEST(SimplePluginConfig, TakesAKeyThatIsThereInItsOldPlace) {
    SimplePluginConfig config;
    config.addItem("a", BoolItem(true), {std::make_shared<channel_config::ReadOnlyConstraint>(true)});
    config.addItem("b", BoolItem(true));
    config.addItem("a", ScalarConfigItem(1));
    EXPECT_THAT(config.getKeys(), ElementsAre("a", "b"));
    EXPECT_EQ(config.getItem("a").which(), ConfigItemVariant(ScalarConfigItem(1)).which());
    EXPECT_THAT(config.getConstraints("a"), IsEmpty());
}

TEST(SimplePluginConfig, AdaptsNothingByItself) {
    SimplePluginConfig config;
    EXPECT_EQ(boost::get<ScalarConfigItem>(config.adaptItem("a", ScalarConfigItem(25, "Hz"))).toString(),
              "25 Hz");
}

/// Stores every value as its text with the key before it.
struct AdaptingConfig : SimplePluginConfig {
    ConfigItemVariant adaptItem(const std::string& key, const ConfigItemVariant& value) override {
        return config_items::SingleValueConfigItem<std::string>(key + "=" + asItem(value).toString());
    }
};

TEST(SimplePluginConfig, StoresWhatADerivedConfigurationMakesOfAValue) {
    AdaptingConfig config;
    config.addItem("a", BoolItem(false));
    EXPECT_EQ(asItem(config.getItem("a")).toString(), "0");
    EXPECT_TRUE(config.setItem("a", ScalarConfigItem(25, "Hz")));
    EXPECT_EQ(asItem(config.getItem("a")).toString(), "a=25 Hz");
}

}  // namespace
