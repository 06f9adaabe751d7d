#include <cmath>
#include <limits>
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
std::string text(T value) {
    return SingleValueConfigItem<T>(value).toString();
}

TEST(SingleValueConfigItem, WritesABoolAsADigit) {
    EXPECT_EQ(text(true), "1");
    EXPECT_EQ(text(false), "0");
}

TEST(SingleValueConfigItem, WritesIntegersAsDecimals) {
    EXPECT_EQ(text(0), "0");
    EXPECT_EQ(text(-1234567), "-1234567");
    EXPECT_EQ(text(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(text(4294967295u), "4294967295");
}

TEST(SingleValueConfigItem, WritesADoubleWithSeventeenDigits) {
    EXPECT_EQ(text(0.1), "0.10000000000000001");
    EXPECT_EQ(text(20000.0), "20000");
    EXPECT_EQ(text(-0.5), "-0.5");
    EXPECT_EQ(text(-0.0), "-0");
    EXPECT_EQ(text(1.0 / 3.0), "0.33333333333333331");
    EXPECT_EQ(text(1e17), "1e+17");
    EXPECT_EQ(text(1e16), "10000000000000000");
    EXPECT_EQ(text(1e-5), "1.0000000000000001e-05");
    EXPECT_EQ(text(1.7976931348623157e308), "1.7976931348623157e+308");
}

TEST(SingleValueConfigItem, WritesNanAndInfinityWithTheSignOfTheSignBit) {
    EXPECT_EQ(text(kNan), "nan");
    EXPECT_EQ(text(std::copysign(kNan, -1.0)), "-nan");
    EXPECT_EQ(text(kInf), "inf");
    EXPECT_EQ(text(-kInf), "-inf");
}

TEST(SingleValueConfigItem, WritesAStringAsItIs) {
    EXPECT_EQ(text(std::string()), "");
    EXPECT_EQ(text(std::string(" a, b ")), " a, b ");
}

TEST(SingleValueConfigItem, WritesAChannelIdAsOneNumberWithTheFirstFieldOnTop) {
    EXPECT_EQ(text(ChannelID{0, 7}), "7");
    EXPECT_EQ(text(ChannelID{1, 2}), "4294967298");
    EXPECT_EQ(text(ChannelID{0xFFFFFFFF, 0xFFFFFFFF}), "18446744073709551615");
}

template <class E>
void expectDecimal() {
    EXPECT_EQ(text(static_cast<E>(13)), "13");
    EXPECT_EQ(text(static_cast<E>(-2)), "-2");
}

TEST(SingleValueConfigItem, WritesEnumerationsAsDecimals) {
    expectDecimal<channel_config::PhysicalQuantity>();
    expectDecimal<channel_config::UserScalingMode>();
    expectDecimal<channel_config::DAQSampleResolution>();
    expectDecimal<channel_config::SampleOccurrenceType>();
    expectDecimal<channel_config::DAQChannelType>();
}

TEST(SingleValueConfigItem, HoldsZeroOrNothingByDefault) {
    EXPECT_EQ(SingleValueConfigItem<bool>().toString(), "0");
    EXPECT_EQ(SingleValueConfigItem<int>().toString(), "0");
    EXPECT_EQ(SingleValueConfigItem<double>().toString(), "0");
    EXPECT_EQ(SingleValueConfigItem<std::string>().toString(), "");
    EXPECT_EQ(SingleValueConfigItem<ChannelID>().toString(), "0");
}

TEST(SingleValueConfigItem, DoesNotTakeALiteralForABool) {
    EXPECT_FALSE((std::is_constructible_v<SingleValueConfigItem<bool>, const char*>));
    EXPECT_TRUE((std::is_constructible_v<SingleValueConfigItem<std::string>, const char*>));
}

TEST(ScalarConfigItem, WritesValueBlankUnit) {
    EXPECT_EQ(ScalarConfigItem(20000, "Hz").toString(), "20000 Hz");
    EXPECT_EQ(ScalarConfigItem(0.1, "fps").toString(), "0.10000000000000001 fps");
}

TEST(ScalarConfigItem, WritesTheValueAloneWithoutAUnit) {
    EXPECT_EQ(ScalarConfigItem(20000, "").toString(), "20000");
    EXPECT_EQ(ScalarConfigItem(20000).toString(), "20000");
}

TEST(ScalarConfigItem, WritesNanBeforeItsUnitLikeAnyOtherNumber) {
    EXPECT_EQ(ScalarConfigItem(std::copysign(kNan, -1.0), "Hz").toString(), "-nan Hz");
}

TEST(DecoratedNumberConfigItem, WritesPrefixValueSuffixWithNothingBetween) {
    EXPECT_EQ(DecoratedNumberConfigItem(0.1, "<", ">").toString(), "<0.10000000000000001>");
    EXPECT_EQ(DecoratedNumberConfigItem(5, "", "").toString(), "5");
}

TEST(RationalScalarConfigItem, WritesTheNumeratorAloneOverOne) {
    EXPECT_EQ(RationalScalarConfigItem(25, 1, "Hz").toString(), "25 Hz");
    EXPECT_EQ(RationalScalarConfigItem(25, 1).toString(), "25");
}

TEST(RationalScalarConfigItem, WritesNumeratorSlashDenominatorUnreduced) {
    EXPECT_EQ(RationalScalarConfigItem(30000, 1001, "Hz").toString(), "30000/1001 Hz");
    EXPECT_EQ(RationalScalarConfigItem(2, 4).toString(), "2/4");
    EXPECT_EQ(RationalScalarConfigItem(1, -1).toString(), "1/-1");
    EXPECT_EQ(RationalScalarConfigItem(std::numeric_limits<std::int64_t>::min(), 0).toString(),
              "-9223372036854775808/0");
}

TEST(RangeConfigItem, WritesBothEndsWithTheirUnits) {
    EXPECT_EQ(RangeConfigItem<double>(0, 1936, "pixel", "pixel").toString(), "0 pixel .. 1936 pixel");
    EXPECT_EQ(RangeConfigItem<double>(0, 100, "", "").toString(), "0 .. 100");
    EXPECT_EQ(RangeConfigItem<double>(1, 2, "a", "").toString(), "1 a .. 2");
    EXPECT_EQ(RangeConfigItem<double>(1, 2, "", "b").toString(), "1 .. 2 b");
}

TEST(RangeConfigItem, WritesItsNumbersWithSixDigitsOnly) {
    EXPECT_EQ(RangeConfigItem<double>(0.1, 1.0 / 3.0).toString(), "0.1 .. 0.333333");
    EXPECT_EQ(RangeConfigItem<double>(0, 2147483647, "frames", "frames").toString(),
              "0 frames .. 2.14748e+09 frames");
}

TEST(ValueListConfigItem, JoinsItsElementsWithCommaAndBlank) {
    EXPECT_EQ(ValueListConfigItem<std::string>({"a", "b"}).toString(), "a, b");
    EXPECT_EQ(ValueListConfigItem<std::string>({"a"}).toString(), "a");
    EXPECT_EQ(ValueListConfigItem<std::string>({"", ""}).toString(), ", ");
    EXPECT_EQ(ValueListConfigItem<std::string>().toString(), "");
}

TEST(ValueListConfigItem, WritesChannelIdsAsNumbers) {
    EXPECT_EQ(ValueListConfigItem<ChannelID>({{0, 1}, {1, 0}}).toString(), "1, 4294967296");
}

TEST(ValueListConfigItem, WritesPairsInParentheses) {
    using Pair = TupleValue<double, double>;
    EXPECT_EQ(ValueListConfigItem<Pair>({Pair(0.1, 2), Pair(kInf, -3)}).toString(),
              "(0.10000000000000001, 2), (inf, -3)");
    EXPECT_EQ(ValueListConfigItem<Pair>({Pair()}).toString(), "(0, 0)");
}

TEST(GenericEnumConfigItem, WritesTheValueNameOnly) {
    EXPECT_EQ(GenericEnumConfigItem("name", "second").toString(), "name");
    EXPECT_EQ(GenericEnumConfigItem("", "second").toString(), "");
}

TEST(GenericEnumConfigItem, CopiesTheSecondTextWithTheItem) {
    const GenericEnumConfigItem item("name", "second");
    const GenericEnumConfigItem copy(item);
    EXPECT_EQ(copy.m_value_name, "name");
    EXPECT_EQ(copy.m_second_text, "second");
}

TEST(InvalidConfigItem, WritesItsMessageOrAFixedText) {
    EXPECT_EQ(InvalidConfigItem("no camera").toString(), "no camera");
    EXPECT_EQ(InvalidConfigItem("").toString(), "Invalid ConfigItem");
    EXPECT_EQ(InvalidConfigItem().toString(), "Invalid ConfigItem");
}

}  // namespace
