#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "config_item_variant.h"
#include "constraints_in_words.h"
#include "zeltpu_simple_channel_config_options.h"

namespace {

using namespace zelt::plugin_util;
using config_items::ConfigItemVariant;
using config_items::RangeConfigItem;
using config_items::ScalarConfigItem;
using config_items::SingleValueConfigItem;
using test_support::AssertionCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kPath = "lib/zelt_plugin_util/src/zeltpu_simple_channel_config_options";

const ScalarConfigItem& scalarOf(const ConfigItemVariant& item) {
    return boost::get<ScalarConfigItem>(item);
}

const ConstantRangeOption& widthRange() {
    static const ConstantRangeOption option("Range", RangeConfigItem<double>(-1, 1936.5, "pixel", "px"));
    return option;
}

SimpleScalarOption rate(bool writable) {
    return {"SampleRate", ScalarConfigItem(25, "fps"), writable, 1, 64.5};
}

TEST(ConstantRangeOption, ShowsItsRangeUnderItsKeyAndIsAlwaysAvailable) {
    EXPECT_EQ(widthRange().getKey(), "Range");
    EXPECT_TRUE(widthRange().isAvailable());
    const ConfigItemVariant item = widthRange().getItem();
    const auto& range = boost::get<RangeConfigItem<double>>(item);
    EXPECT_EQ(range.m_min, -1);
    EXPECT_EQ(range.m_max, 1936.5);
    EXPECT_EQ(range.m_min_unit, "pixel");
    EXPECT_EQ(range.m_max_unit, "px");
}

TEST(ConstantRangeOption, RefusesEveryValueAndIsReadOnly) {
    ConstantRangeOption option("Range", RangeConfigItem<double>(0, 1));
    EXPECT_FALSE(option.setItem(RangeConfigItem<double>(0, 2)));
    EXPECT_FALSE(option.setItem(option.getItem()));
    EXPECT_EQ(boost::get<RangeConfigItem<double>>(option.getItem()).m_max, 1);
    EXPECT_THAT(inWords(option.getConstraints()), ElementsAre("read-only true"));
}

TEST(SimpleScalarOption, ShowsItsNumberWithItsUnitUnderItsKeyAndIsAlwaysAvailable) {
    const SimpleScalarOption option = rate(true);
    EXPECT_EQ(option.getKey(), "SampleRate");
    EXPECT_TRUE(option.isAvailable());
    EXPECT_EQ(scalarOf(option.getItem()).m_value, 25);
    EXPECT_EQ(scalarOf(option.getItem()).m_unit, "fps");
}

TEST(SimpleScalarOption, StoresAScalarOfItsUnit) {
    SimpleScalarOption option = rate(true);
    const AssertionCapture assertions;
    EXPECT_TRUE(option.setItem(ScalarConfigItem(30, "fps")));
    EXPECT_EQ(scalarOf(option.getItem()).toString(), "30 fps");
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST(SimpleScalarOption, AssertsTheUnitAndKeepsItsOwnWithTheNewNumber) {
    SimpleScalarOption option = rate(true);
    const AssertionCapture assertions;
    EXPECT_TRUE(option.setItem(ScalarConfigItem(30, "Hz")));
    EXPECT_EQ(scalarOf(option.getItem()).toString(), "30 fps");
    ASSERT_EQ(assertions.failures().size(), 1u);
    EXPECT_EQ(assertions.failures()[0].expression, "scalar.m_unit == m_unit");
    EXPECT_EQ(assertions.failures()[0].message, std::nullopt);
    EXPECT_EQ(assertions.failures()[0].file, kPath);
}

TEST(SimpleScalarOption, EnforcesNeitherItsRangeNorItsWritableFlag) {
    SimpleScalarOption writable = rate(true);
    EXPECT_TRUE(writable.setItem(ScalarConfigItem(1000, "fps")));
    EXPECT_EQ(scalarOf(writable.getItem()).m_value, 1000);
    SimpleScalarOption readOnly = rate(false);
    EXPECT_TRUE(readOnly.setItem(ScalarConfigItem(0.5, "fps")));
    EXPECT_EQ(scalarOf(readOnly.getItem()).m_value, 0.5);
}

TEST(SimpleScalarOption, RefusesOtherAlternativesAndKeepsItsNumber) {
    SimpleScalarOption option = rate(true);
    const AssertionCapture assertions;
    EXPECT_FALSE(option.setItem(SingleValueConfigItem<double>(30)));
    EXPECT_FALSE(option.setItem(SingleValueConfigItem<std::string>("30 fps")));
    EXPECT_FALSE(option.setItem(config_items::RationalScalarConfigItem(30, 1, "fps")));
    EXPECT_EQ(scalarOf(option.getItem()).m_value, 25);
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST(SimpleScalarOption, ReportsItsRangeOnlyWhenWritable) {
    EXPECT_THAT(inWords(rate(true).getConstraints()), ElementsAre("read-only false", "from 1 to 64.5"));
    EXPECT_THAT(inWords(rate(false).getConstraints()), ElementsAre("read-only true"));
}

TEST(SimpleScalarOption, AssertsUnitAndBoundsWhereItsRangeIsAskedFor) {
    const SimpleScalarOption odd("a", ScalarConfigItem(1), true, 2, 1);
    const SimpleScalarOption oddButReadOnly("a", ScalarConfigItem(1), false, 2, 1);
    const AssertionCapture assertions;
    EXPECT_THAT(inWords(oddButReadOnly.getConstraints()), ElementsAre("read-only true"));
    EXPECT_THAT(assertions.failures(), IsEmpty());
    EXPECT_THAT(inWords(odd.getConstraints()), ElementsAre("read-only false", "from 2 to 1"));
    EXPECT_THAT(assertions.expressions(), ElementsAre("!unit.empty()", "min <= max"));
}

TEST(NumberOptions, DeriveFromTheBaseOfAllOptionsDirectly) {
    EXPECT_TRUE((std::is_base_of_v<ChannelConfigOption, ConstantRangeOption>));
    EXPECT_TRUE((std::is_base_of_v<ChannelConfigOption, SimpleScalarOption>));
    EXPECT_FALSE((std::is_base_of_v<SimpleOptionBase, ConstantRangeOption>));
    EXPECT_FALSE((std::is_base_of_v<SimpleOptionBase, SimpleScalarOption>));
}

}  // namespace
