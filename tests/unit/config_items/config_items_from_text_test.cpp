#include <cmath>
#include <cstdint>
#include <exception>
#include <limits>
#include <optional>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include "config_items.h"
#include "special_numbers.h"

namespace {

using namespace config_items;
using channel_config::ChannelID;
using test_support::kInf;
using test_support::kNan;

/// The value read, or nothing when the text was refused.
template <class T>
std::optional<T> read(const std::string& text) {
    try {
        return SingleValueConfigItem<T>::fromText(text).m_value;
    } catch (const ConfigItemException&) {
        return std::nullopt;
    }
}

template <class T>
std::optional<T> cast(const std::string& text) {
    try {
        return boost::lexical_cast<T>(text);
    } catch (const boost::bad_lexical_cast&) {
        return std::nullopt;
    }
}

TEST(FromText, ReadsBools) {
    EXPECT_EQ(read<bool>("1"), true);
    EXPECT_EQ(read<bool>("0"), false);
    EXPECT_EQ(read<bool>("+1"), true);
    EXPECT_EQ(read<bool>("01"), true);
    EXPECT_EQ(read<bool>("true"), std::nullopt);
    EXPECT_EQ(read<bool>("2"), std::nullopt);
    EXPECT_EQ(read<bool>(""), std::nullopt);
}

TEST(FromText, ReadsIntegers) {
    EXPECT_EQ(read<int>("-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(read<int>("+007"), 7);
    EXPECT_EQ(read<int>("2147483648"), std::nullopt);
    EXPECT_EQ(read<int>(" 1"), std::nullopt);
    EXPECT_EQ(read<int>("1 "), std::nullopt);
    EXPECT_EQ(read<int>("1.0"), std::nullopt);
    EXPECT_EQ(read<int>("0x10"), std::nullopt);
}

TEST(FromText, WrapsNegativeUnsignedNumbers) {
    EXPECT_EQ(read<unsigned int>("-1"), 4294967295u);
    EXPECT_EQ(read<unsigned int>("4294967295"), 4294967295u);
    EXPECT_EQ(read<unsigned int>("4294967296"), std::nullopt);
}

TEST(FromText, ReadsDoubles) {
    EXPECT_EQ(read<double>("0.5"), 0.5);
    EXPECT_EQ(read<double>("-1e-3"), -0.001);
    EXPECT_EQ(read<double>("inf"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(read<double>("-inf"), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(read<double>(" 1"), std::nullopt);
    EXPECT_EQ(read<double>("1 "), std::nullopt);
    EXPECT_EQ(read<double>("0,5"), std::nullopt);
    EXPECT_EQ(read<double>("1e400"), std::nullopt);
}

TEST(FromText, ReadsNanWithItsSign) {
    const auto plus = read<double>("nan");
    const auto minus = read<double>("-nan");
    ASSERT_TRUE(plus && minus);
    EXPECT_TRUE(std::isnan(*plus) && !std::signbit(*plus));
    EXPECT_TRUE(std::isnan(*minus) && std::signbit(*minus));
}

TEST(FromText, ReadsADoubleBackFromItsOwnText) {
    for (const double value : {0.1, -1.0 / 3.0, 1.7976931348623157e308, 4.9406564584124654e-324, -0.0}) {
        const auto again = read<double>(SingleValueConfigItem<double>(value).toString());
        ASSERT_TRUE(again);
        EXPECT_EQ(*again, value);
        EXPECT_EQ(std::signbit(*again), std::signbit(value));
    }
}

TEST(FromText, TakesStringsWhole) {
    EXPECT_EQ(read<std::string>(" a b "), " a b ");
    EXPECT_EQ(read<std::string>(""), "");
}

TEST(FromText, SplitsTheNumberOfAChannelId) {
    EXPECT_EQ(read<ChannelID>("4294967298"), (ChannelID{1, 2}));
    EXPECT_EQ(read<ChannelID>("18446744073709551615"), (ChannelID{0xFFFFFFFF, 0xFFFFFFFF}));
    EXPECT_EQ(read<ChannelID>("-1"), (ChannelID{0xFFFFFFFF, 0xFFFFFFFF}));
    EXPECT_EQ(read<ChannelID>("18446744073709551616"), std::nullopt);
    EXPECT_EQ(read<ChannelID>("x"), std::nullopt);
}

template <class E>
void expectReadAsInteger() {
    EXPECT_EQ(read<E>("15"), static_cast<E>(15));
    EXPECT_EQ(read<E>("-3"), static_cast<E>(-3));
    EXPECT_EQ(read<E>("2147483648"), std::nullopt);
    EXPECT_EQ(read<E>("Video"), std::nullopt);
}

TEST(FromText, ReadsEnumerationsAsIntegers) {
    expectReadAsInteger<channel_config::PhysicalQuantity>();
    expectReadAsInteger<channel_config::UserScalingMode>();
    expectReadAsInteger<channel_config::DAQSampleResolution>();
    expectReadAsInteger<channel_config::SampleOccurrenceType>();
    expectReadAsInteger<channel_config::DAQChannelType>();
}

template <class T>
std::string refusal(const std::string& text) {
    try {
        SingleValueConfigItem<T>::fromText(text);
    } catch (const ConfigItemException& error) {
        return error.getMessage();
    }
    return "no exception";
}

TEST(FromText, NamesTheTextAndTheTypeItCouldNotConvert) {
    EXPECT_EQ(refusal<int>("abc"), std::string("Can not convert 'abc' to type ") + typeid(int).name());
    EXPECT_EQ(refusal<bool>(""), std::string("Can not convert '' to type ") + typeid(bool).name());
    EXPECT_EQ(refusal<double>("1,5"), std::string("Can not convert '1,5' to type ") + typeid(double).name());
    EXPECT_EQ(refusal<ChannelID>("a b"),
              std::string("Can not convert 'a b' to type ") + typeid(ChannelID).name());
    EXPECT_EQ(
        refusal<channel_config::DAQChannelType>("Video"),
        std::string("Can not convert 'Video' to type ") + typeid(channel_config::DAQChannelType).name());
}

TEST(ConfigItemException, IsNoStandardException) {
    EXPECT_FALSE((std::is_base_of_v<std::exception, ConfigItemException>));
}

const std::vector<std::string>& texts() {
    static const std::vector<std::string> s_texts = {"",
                                                     "0",
                                                     "-0",
                                                     "+0",
                                                     "1",
                                                     "+1",
                                                     "01",
                                                     "-1",
                                                     "-01",
                                                     "00",
                                                     "10",
                                                     "2",
                                                     "9",
                                                     "--1",
                                                     "+-1",
                                                     "-+1",
                                                     "-",
                                                     "+",
                                                     "2147483647",
                                                     "2147483648",
                                                     "-2147483648",
                                                     "-2147483649",
                                                     "4294967295",
                                                     "4294967296",
                                                     "-4294967295",
                                                     "-4294967296",
                                                     "000000000000000000000000000001",
                                                     "18446744073709551615",
                                                     "18446744073709551616",
                                                     "-18446744073709551615",
                                                     " 1",
                                                     "1 ",
                                                     "\t1",
                                                     "1\n",
                                                     "1.0",
                                                     "1,000",
                                                     "1.000",
                                                     "1,000,000",
                                                     "0x10",
                                                     "1e3",
                                                     "abc",
                                                     "true",
                                                     "false",
                                                     "T",
                                                     "nan",
                                                     "NaN",
                                                     "NAN",
                                                     "-nan",
                                                     "+nan",
                                                     "nan(1)",
                                                     "nan()",
                                                     "nan(",
                                                     "nanx",
                                                     "inf",
                                                     "INF",
                                                     "-inf",
                                                     "+inf",
                                                     "infinity",
                                                     "-Infinity",
                                                     "INFINITY",
                                                     "infinit",
                                                     "in",
                                                     "n",
                                                     "i",
                                                     "+-inf",
                                                     "infx",
                                                     " inf",
                                                     "0.5",
                                                     ".5",
                                                     "5.",
                                                     "-.5",
                                                     "+.5",
                                                     "0,5",
                                                     ".",
                                                     "-.",
                                                     "1e400",
                                                     "-1e400",
                                                     "1e-400",
                                                     "4.9e-324",
                                                     "1e",
                                                     "1e+",
                                                     "1E5",
                                                     "1E-5",
                                                     "1e5 ",
                                                     "e5",
                                                     "0x1p3",
                                                     "1.7976931348623157e308",
                                                     "1.7976931348623159e308",
                                                     "0.1",
                                                     "1_000",
                                                     "1'000",
                                                     "1..2",
                                                     "1.2.3",
                                                     "1e5.5",
                                                     std::string("1\0", 2)};
    return s_texts;
}

/// Same value, same sign, same refusals as the lexical cast, which reads by the locale "C" here.
template <class T>
void expectSameAsLexicalCast() {
    for (const std::string& text : texts()) {
        const auto mine = read<T>(text);
        const auto theirs = cast<T>(text);
        ASSERT_EQ(mine.has_value(), theirs.has_value()) << '"' << text << '"';
        if (!mine) continue;
        if constexpr (std::is_same_v<T, double>) {
            EXPECT_EQ(std::signbit(*mine), std::signbit(*theirs)) << text;
            if (std::isnan(*mine) && std::isnan(*theirs)) continue;
        }
        EXPECT_EQ(*mine, *theirs) << text;
    }
}

TEST(FromText, ReadsAndRefusesWhatTheLexicalCastDoes) {
    expectSameAsLexicalCast<bool>();
    expectSameAsLexicalCast<int>();
    expectSameAsLexicalCast<unsigned int>();
    expectSameAsLexicalCast<double>();
    expectSameAsLexicalCast<std::string>();
}

TEST(FromText, ReadsChannelIdsWhereTheLexicalCastReadsA64BitNumber) {
    for (const std::string& text : texts()) {
        const auto mine = read<ChannelID>(text);
        const auto theirs = cast<std::uint64_t>(text);
        ASSERT_EQ(mine.has_value(), theirs.has_value()) << '"' << text << '"';
        if (!mine) continue;
        EXPECT_EQ((std::uint64_t{mine->first} << 32) | mine->second, *theirs) << text;
    }
}

TEST(ToString, WritesWhatTheLexicalCastDoes) {
    for (const double value : {0.0, -0.0, 0.1, 1e-5, 1e16, 1e17, 1e300, -2.5, 123456789.123456789, kNan,
                               std::copysign(kNan, -1.0), kInf, -kInf}) {
        EXPECT_EQ(SingleValueConfigItem<double>(value).toString(), boost::lexical_cast<std::string>(value));
    }
    for (const int value : {0, -1, 1234567, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(SingleValueConfigItem<int>(value).toString(), boost::lexical_cast<std::string>(value));
    }
}

}  // namespace
