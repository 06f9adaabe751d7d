#include <stdexcept>
#include <type_traits>

#include <gtest/gtest.h>

#include "config_items.h"
#include "special_numbers.h"

namespace {

using namespace config_items;
using channel_config::ChannelID;
using test_support::kInf;
using test_support::kNan;

template <class T>
bool equal(T a, T b) {
    const SingleValueConfigItem<T> first(a);
    const SingleValueConfigItem<T> second(b);
    EXPECT_EQ(first.equals(second), first.equalsTyped(second));
    return first.equals(second);
}

TEST(ItemEquality, ComparesSingleValuesByValue) {
    EXPECT_TRUE(equal(true, true));
    EXPECT_FALSE(equal(true, false));
    EXPECT_TRUE(equal(-5, -5));
    EXPECT_FALSE(equal(-5, 5));
    EXPECT_TRUE(equal(5u, 5u));
    EXPECT_FALSE(equal(5u, 6u));
    EXPECT_TRUE(equal(std::string("a"), std::string("a")));
    EXPECT_FALSE(equal(std::string("a"), std::string("A")));
    EXPECT_TRUE(equal(ChannelID{1, 2}, ChannelID{1, 2}));
    EXPECT_FALSE(equal(ChannelID{1, 2}, ChannelID{1, 3}));
    EXPECT_FALSE(equal(ChannelID{1, 2}, ChannelID{3, 2}));
}

template <class E>
void expectComparedByValue() {
    EXPECT_TRUE(equal(static_cast<E>(3), static_cast<E>(3)));
    EXPECT_FALSE(equal(static_cast<E>(3), static_cast<E>(4)));
}

TEST(ItemEquality, ComparesEnumerationsByValue) {
    expectComparedByValue<channel_config::PhysicalQuantity>();
    expectComparedByValue<channel_config::UserScalingMode>();
    expectComparedByValue<channel_config::DAQSampleResolution>();
    expectComparedByValue<channel_config::SampleOccurrenceType>();
    expectComparedByValue<channel_config::DAQChannelType>();
}

TEST(ItemEquality, TakesNanForEqualToNanAndAnyInfinityForEqualToAnyOther) {
    EXPECT_TRUE(equal(0.5, 0.5));
    EXPECT_FALSE(equal(0.5, 0.5000001));
    EXPECT_TRUE(equal(0.0, -0.0));
    EXPECT_TRUE(equal(kNan, kNan));
    EXPECT_TRUE(equal(kInf, -kInf));
    EXPECT_TRUE(equal(kInf, kInf));
    EXPECT_FALSE(equal(kNan, kInf));
    EXPECT_FALSE(equal(kNan, 0.0));
    EXPECT_FALSE(equal(kInf, 1e308));
}

TEST(ItemEquality, IsFalseBetweenTypesThatHaveNothingInCommon) {
    const ScalarConfigItem scalar(1);
    const SingleValueConfigItem<std::string> text("1");
    const SingleValueConfigItem<int> number(1);
    const SingleValueConfigItem<unsigned int> positive(1);
    EXPECT_FALSE(scalar.equals(text));
    EXPECT_FALSE(text.equals(scalar));
    EXPECT_FALSE(number.equals(positive));
    EXPECT_FALSE(number.equals(RationalScalarConfigItem(1, 1)));
    EXPECT_FALSE(RationalScalarConfigItem(1, 1).equals(number));
    EXPECT_FALSE(DecoratedNumberConfigItem(1, "", "").equals(scalar));
    EXPECT_FALSE(scalar.equals(DecoratedNumberConfigItem(1, "", "")));
    EXPECT_FALSE(RangeConfigItem<double>(0, 1).equals(number));
    EXPECT_FALSE(ValueListConfigItem<std::string>({"1"}).equals(text));
    EXPECT_FALSE(ValueListConfigItem<std::string>().equals(ValueListConfigItem<ChannelID>()));
    EXPECT_FALSE(GenericEnumConfigItem("1").equals(text));
    EXPECT_FALSE(text.equals(InvalidConfigItem("1")));
}

TEST(ItemEquality, LetsAPlainDoubleEqualAScalarButNotTheReverse) {
    const SingleValueConfigItem<double> plain(25);
    const ScalarConfigItem scalar(25, "Hz");
    EXPECT_TRUE(plain.equals(scalar));
    EXPECT_FALSE(scalar.equals(plain));
}

TEST(ItemEquality, ComparesScalarsByValueAndUnit) {
    const ScalarConfigItem scalar(25, "Hz");
    EXPECT_TRUE(scalar.equals(ScalarConfigItem(25, "Hz")));
    EXPECT_FALSE(scalar.equals(ScalarConfigItem(25, "hz")));
    EXPECT_FALSE(scalar.equals(ScalarConfigItem(24, "Hz")));
    EXPECT_TRUE(ScalarConfigItem(kInf, "Hz").equals(ScalarConfigItem(-kInf, "Hz")));
    EXPECT_TRUE(ScalarConfigItem(kNan, "Hz").equals(ScalarConfigItem(kNan, "Hz")));
}

TEST(ItemEquality, ComparesWholeScalarsForThoseWhoHoldThemAndValuesForTheRest) {
    const ScalarConfigItem hertz(25, "Hz");
    const ScalarConfigItem frames(25, "fps");
    EXPECT_FALSE(hertz.equalsTyped(frames));
    const SingleValueConfigItem<double>& asDouble = hertz;
    EXPECT_TRUE(asDouble.equalsTyped(frames));
    const DecoratedNumberConfigItem first(25, "a", "b");
    const DecoratedNumberConfigItem second(25, "a", "c");
    EXPECT_FALSE(first.equalsTyped(second));
    const SingleValueConfigItem<double>& firstAsDouble = first;
    EXPECT_TRUE(firstAsDouble.equalsTyped(second));
}

TEST(ItemEquality, ComparesDecoratedNumbersByAllTheirParts) {
    const DecoratedNumberConfigItem item(1, "p", "s");
    EXPECT_TRUE(item.equals(DecoratedNumberConfigItem(1, "p", "s")));
    EXPECT_FALSE(item.equals(DecoratedNumberConfigItem(2, "p", "s")));
    EXPECT_FALSE(item.equals(DecoratedNumberConfigItem(1, "q", "s")));
    EXPECT_FALSE(item.equals(DecoratedNumberConfigItem(1, "p", "t")));
    EXPECT_TRUE(DecoratedNumberConfigItem(kNan, "p", "s").equals(DecoratedNumberConfigItem(kNan, "p", "s")));
}

TEST(ItemEquality, ComparesFractionsAsStored) {
    const RationalScalarConfigItem half(1, 2, "Hz");
    EXPECT_TRUE(half.equals(RationalScalarConfigItem(1, 2, "Hz")));
    EXPECT_FALSE(half.equals(RationalScalarConfigItem(2, 4, "Hz")));
    EXPECT_FALSE(half.equals(RationalScalarConfigItem(3, 2, "Hz")));
    EXPECT_FALSE(half.equals(RationalScalarConfigItem(1, 3, "Hz")));
    EXPECT_FALSE(half.equals(RationalScalarConfigItem(1, 2, "fps")));
}

TEST(ItemEquality, ComparesRangesByBothEndsAndBothUnits) {
    const RangeConfigItem<double> range(0, 1, "a", "b");
    EXPECT_TRUE(range.equals(RangeConfigItem<double>(0, 1, "a", "b")));
    EXPECT_FALSE(range.equals(RangeConfigItem<double>(2, 1, "a", "b")));
    EXPECT_FALSE(range.equals(RangeConfigItem<double>(0, 2, "a", "b")));
    EXPECT_FALSE(range.equals(RangeConfigItem<double>(0, 1, "c", "b")));
    EXPECT_FALSE(range.equals(RangeConfigItem<double>(0, 1, "a", "c")));
    EXPECT_TRUE(RangeConfigItem<double>(kNan, kInf).equals(RangeConfigItem<double>(kNan, -kInf)));
}

TEST(ItemEquality, ComparesListsElementByElementInOrder) {
    using Strings = ValueListConfigItem<std::string>;
    EXPECT_TRUE(Strings({"a", "b"}).equals(Strings({"a", "b"})));
    EXPECT_FALSE(Strings({"a", "b"}).equals(Strings({"b", "a"})));
    EXPECT_FALSE(Strings({"a", "b"}).equals(Strings({"a"})));
    EXPECT_FALSE(Strings({"a"}).equals(Strings({"a", "b"})));
    EXPECT_TRUE(Strings().equals(Strings()));
    using Ids = ValueListConfigItem<ChannelID>;
    EXPECT_TRUE(Ids({{1, 2}}).equals(Ids({{1, 2}})));
    EXPECT_FALSE(Ids({{1, 2}}).equals(Ids({{1, 3}})));
    EXPECT_FALSE(Ids({{1, 2}}).equals(Ids({{3, 2}})));
}

TEST(ItemEquality, ComparesPairsByTheRuleForDoublesOnBothMembers) {
    using Pair = TupleValue<double, double>;
    EXPECT_TRUE(Pair(kNan, kInf).equals(Pair(kNan, -kInf)));
    EXPECT_FALSE(Pair(1, 2).equals(Pair(1, 3)));
    EXPECT_FALSE(Pair(1, 2).equals(Pair(3, 2)));
    using Pairs = ValueListConfigItem<Pair>;
    EXPECT_TRUE(Pairs({Pair(kNan, kInf)}).equals(Pairs({Pair(kNan, -kInf)})));
    EXPECT_FALSE(Pairs({Pair(1, 2)}).equals(Pairs({Pair(1, 3)})));
}

TEST(ItemEquality, ComparesGenericEnumerationsByBothTexts) {
    const GenericEnumConfigItem item("a", "b");
    EXPECT_TRUE(item.equals(GenericEnumConfigItem("a", "b")));
    EXPECT_FALSE(item.equals(GenericEnumConfigItem("c", "b")));
    EXPECT_FALSE(item.equals(GenericEnumConfigItem("a", "c")));
}

TEST(InvalidConfigItem, EqualsEveryItem) {
    const InvalidConfigItem invalid("reason");
    EXPECT_TRUE(invalid.equals(InvalidConfigItem("another")));
    EXPECT_TRUE(invalid.equals(ScalarConfigItem(1, "Hz")));
    EXPECT_TRUE(invalid.equals(ValueListConfigItem<std::string>()));
}

template <class Item>
struct Throwing : Item {
    using Item::equalsTyped;
    using Item::Item;
    bool equalsTyped(const Item&) const override { throw std::runtime_error("comparison"); }
};

TEST(ItemEquality, IsFalseWhenTheComparisonThrows) {
    EXPECT_FALSE(Throwing<SingleValueConfigItem<int>>(1).equals(SingleValueConfigItem<int>(1)));
    EXPECT_FALSE(Throwing<ScalarConfigItem>(1, "Hz").equals(ScalarConfigItem(1, "Hz")));
    EXPECT_FALSE(
        Throwing<DecoratedNumberConfigItem>(1, "a", "b").equals(DecoratedNumberConfigItem(1, "a", "b")));
}

TEST(ItemTypes, FormTheDocumentedTree) {
    EXPECT_TRUE((std::is_base_of_v<IfConfigItem, IfValueConfigItem>));
    EXPECT_TRUE((std::is_base_of_v<IfConfigItem, IfValueListConfigItem>));
    EXPECT_TRUE((std::is_base_of_v<uni::Countable<IfConfigItem>, IfConfigItem>));
    EXPECT_TRUE((std::is_base_of_v<IfValueConfigItem, SingleValueConfigItem<std::string>>));
    EXPECT_TRUE((std::is_base_of_v<IfValueConfigItem, RationalScalarConfigItem>));
    EXPECT_TRUE((std::is_base_of_v<SingleValueConfigItem<double>, ScalarConfigItem>));
    EXPECT_TRUE((std::is_base_of_v<SingleValueConfigItem<double>, DecoratedNumberConfigItem>));
    EXPECT_TRUE((std::is_base_of_v<IfValueListConfigItem, ValueListConfigItem<ChannelID>>));
    EXPECT_FALSE((std::is_base_of_v<IfValueConfigItem, RangeConfigItem<double>>));
    EXPECT_FALSE((std::is_base_of_v<IfValueConfigItem, GenericEnumConfigItem>));
    EXPECT_FALSE((std::is_base_of_v<IfValueConfigItem, InvalidConfigItem>));
    EXPECT_FALSE((std::is_base_of_v<IfValueListConfigItem, RangeConfigItem<double>>));
    EXPECT_FALSE((std::is_base_of_v<IfValueListConfigItem, GenericEnumConfigItem>));
    EXPECT_FALSE((std::is_base_of_v<IfValueListConfigItem, InvalidConfigItem>));
}

}  // namespace
