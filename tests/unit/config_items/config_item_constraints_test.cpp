#include "config_item_constraints.h"

#include <typeinfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "channel_config_constraints.h"
#include "special_numbers.h"

namespace {

using namespace config_items;
using namespace channel_config;
using test_support::AssertionCapture;
using test_support::kInf;
using test_support::kNan;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Range = ValueRangeConstraint<double>;
using ScalarOption = OptionConstraint<ScalarConfigItem>;
using StringOption = OptionConstraint<SingleValueConfigItem<std::string>>;
using BoolOption = OptionConstraint<SingleValueConfigItem<bool>>;

StringOption textChoice(const std::string& text) {
    return StringOption(SingleValueConfigItem<std::string>(text));
}

BoolOption boolChoice(bool value) {
    return BoolOption(SingleValueConfigItem<bool>(value));
}

TEST(ValueRangeConstraint, TakesARangeOfOneValue) {
    const AssertionCapture assertions;
    const Range range(0, 0, "pixel");
    EXPECT_THAT(assertions.expressions(), IsEmpty());
    EXPECT_EQ(range.getMin(), 0.0);
    EXPECT_EQ(range.getMax(), 0.0);
}

TEST(ValueRangeConstraint, AssertsThatTheBoundsAreInOrderAndKeepsThem) {
    const AssertionCapture assertions;
    const Range range(1, 0, "pixel");
    ASSERT_THAT(assertions.expressions(), ElementsAre("min <= max"));
    const auto failure = assertions.failures().front();
    EXPECT_EQ(failure.message, "ValueRangeConstraint: min exceeds max.");
    EXPECT_EQ(failure.file, "lib/config_items/inc/config_item_constraints");
    EXPECT_EQ(range.getMin(), 1.0);
    EXPECT_EQ(range.getMax(), 0.0);
}

TEST(ValueRangeConstraint, AssertsThatThereIsAUnit) {
    const AssertionCapture assertions;
    const Range range(0, 1, "");
    ASSERT_THAT(assertions.expressions(), ElementsAre("!unit.empty()"));
    EXPECT_EQ(assertions.failures().front().message, std::nullopt);
    EXPECT_EQ(assertions.failures().front().file, "lib/config_items/inc/config_item_constraints");
    EXPECT_EQ(range.getMax(), 1.0);
}

TEST(ValueRangeConstraint, AssertsTheUnitBeforeTheBounds) {
    const AssertionCapture assertions;
    const Range range(1, 0, "");
    EXPECT_THAT(assertions.expressions(), ElementsAre("!unit.empty()", "min <= max"));
}

TEST(ValueRangeConstraint, AssertsForNanBounds) {
    const AssertionCapture assertions;
    const Range range(kNan, 1, "pixel");
    EXPECT_THAT(assertions.expressions(), ElementsAre("min <= max"));
}

TEST(ValueRangeConstraint, ComparesItsBoundsPlainlyAndIgnoresTheUnit) {
    const Range range(0, 1, "pixel");
    EXPECT_TRUE(range.equals(Range(0, 1, "frames")));
    EXPECT_FALSE(range.equals(Range(0, 2, "pixel")));
    EXPECT_FALSE(range.equals(Range(-1, 1, "pixel")));
    EXPECT_FALSE(Range(-kInf, 1, "pixel").equals(Range(1, 1, "pixel")));
    EXPECT_FALSE(Range(0, kInf, "pixel").equals(Range(0, 1, "pixel")));
    EXPECT_FALSE(Range(-kInf, -kInf, "pixel").equals(Range(-kInf, kInf, "pixel")));
}

TEST(ValueRangeConstraint, NeverEqualsWithNanBounds) {
    const AssertionCapture assertions;
    const Range range(kNan, kNan, "pixel");
    EXPECT_FALSE(range.equals(Range(kNan, kNan, "pixel")));
    EXPECT_FALSE(range.equals(range));
}

TEST(OptionConstraint, ComparesScalarsByValueAndUnit) {
    const ScalarOption option(ScalarConfigItem(25, "Hz"));
    EXPECT_TRUE(option.equals(ScalarOption(ScalarConfigItem(25, "Hz"))));
    EXPECT_FALSE(option.equals(ScalarOption(ScalarConfigItem(25, "fps"))));
    EXPECT_FALSE(option.equals(ScalarOption(ScalarConfigItem(24, "Hz"))));
    EXPECT_TRUE(ScalarOption(ScalarConfigItem(kNan)).equals(ScalarOption(ScalarConfigItem(kNan))));
    EXPECT_TRUE(ScalarOption(ScalarConfigItem(kInf)).equals(ScalarOption(ScalarConfigItem(-kInf))));
}

TEST(OptionConstraint, ComparesTextsAndBoolsByValue) {
    EXPECT_TRUE(textChoice("a").equals(textChoice("a")));
    EXPECT_FALSE(textChoice("a").equals(textChoice("A")));
    EXPECT_TRUE(boolChoice(true).equals(boolChoice(true)));
    EXPECT_FALSE(boolChoice(true).equals(boolChoice(false)));
}

TEST(OptionConstraint, HoldsACopyOfItsItem) {
    ScalarConfigItem item(25, "Hz");
    const ScalarOption option(item);
    item.m_value = 1;
    EXPECT_EQ(option.getItem().toString(), "25 Hz");
}

TEST(ConstraintEquality, IsFalseBetweenKinds) {
    const Range range(0, 1, "pixel");
    EXPECT_FALSE(range.equals(boolChoice(true)));
    EXPECT_FALSE(boolChoice(true).equals(range));
    EXPECT_FALSE(boolChoice(true).equals(textChoice("1")));
    EXPECT_FALSE(boolChoice(true).equals(BooleanConstraint(true)));
    EXPECT_FALSE(BooleanConstraint(true).equals(boolChoice(true)));
}

TEST(BooleanConstraint, EqualsEveryOtherPropertyWithTheSameFlag) {
    EXPECT_TRUE(ReadOnlyConstraint(true).equals(ConfigurableDuringAcquisitionConstraint(true)));
    EXPECT_TRUE(ConfigurableDuringAcquisitionConstraint(false).equals(ReadOnlyConstraint(false)));
    EXPECT_TRUE(FullyIndependentSampleRateConstraint(true).equals(BooleanConstraint(true)));
    EXPECT_TRUE(BooleanConstraint(true).equals(FullyIndependentSampleRateConstraint(true)));
    EXPECT_FALSE(ReadOnlyConstraint(true).equals(ReadOnlyConstraint(false)));
    EXPECT_FALSE(BooleanConstraint(false).equals(BooleanConstraint(true)));
}

TEST(BooleanConstraint, TellsItsFlag) {
    EXPECT_TRUE(ReadOnlyConstraint(true).getFlag());
    EXPECT_FALSE(ConfigurableDuringAcquisitionConstraint(false).getFlag());
    EXPECT_TRUE(FullyIndependentSampleRateConstraint(true).getFlag());
}

/// Expects that the clone is another object of the very same type that equals its origin.
void expectExactClone(const IfConfigItemConstraint& origin) {
    const std::shared_ptr<IfConfigItemConstraint> copy = origin.clone();
    const IfConfigItemConstraint& reference = *copy;
    EXPECT_NE(copy.get(), &origin);
    EXPECT_EQ(typeid(reference), typeid(origin));
    EXPECT_TRUE(copy->equals(origin));
    EXPECT_EQ(copy.use_count(), 1);
}

TEST(Clone, KeepsTheExactTypeAndTheContents) {
    expectExactClone(ReadOnlyConstraint(true));
    expectExactClone(ReadOnlyConstraint(false));
    expectExactClone(ConfigurableDuringAcquisitionConstraint(true));
    expectExactClone(FullyIndependentSampleRateConstraint(true));
    expectExactClone(BooleanConstraint(true));
    expectExactClone(Range(1, 2, "pixel"));
    expectExactClone(ScalarOption(ScalarConfigItem(25, "Hz")));
    expectExactClone(textChoice("a"));
    expectExactClone(boolChoice(true));
}

TEST(ValueType, IsTheItemOfAnOptionAndTheNumberOfARange) {
    EXPECT_EQ(ScalarOption(ScalarConfigItem(1)).getValueType(), typeid(ScalarConfigItem));
    EXPECT_EQ(textChoice("a").getValueType(), typeid(SingleValueConfigItem<std::string>));
    EXPECT_EQ(boolChoice(true).getValueType(), typeid(SingleValueConfigItem<bool>));
    EXPECT_EQ(Range(0, 1, "pixel").getValueType(), typeid(double));
}

TEST(ConstraintTypes, FormTheDocumentedTree) {
    EXPECT_TRUE((std::is_base_of_v<IfOptionConstraint, BoolOption>));
    EXPECT_TRUE((std::is_base_of_v<IfRangeConstraint, Range>));
    EXPECT_TRUE((std::is_base_of_v<BooleanConstraint, ReadOnlyConstraint>));
    EXPECT_TRUE((std::is_base_of_v<BooleanConstraint, ConfigurableDuringAcquisitionConstraint>));
    EXPECT_TRUE((std::is_base_of_v<BooleanConstraint, IndependentConfigItemConstraint>));
    EXPECT_TRUE((std::is_base_of_v<IndependentConfigItemConstraint, FullyIndependentSampleRateConstraint>));
    EXPECT_TRUE(std::is_abstract_v<IndependentConfigItemConstraint>);
    EXPECT_FALSE(std::is_abstract_v<BooleanConstraint>);
}

}  // namespace
