#include <limits>
#include <locale>
#include <sstream>

#include <gtest/gtest.h>

#include "config_items.h"

namespace {

using namespace config_items;
using channel_config::ChannelID;

struct GermanNumbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
    std::string do_truename() const override { return "wahr"; }
    std::string do_falsename() const override { return "falsch"; }
};

/// A host that writes numbers the German way.
class ItemsInAGermanHost : public ::testing::Test {
  protected:
    ItemsInAGermanHost()
        : m_previous(std::locale::global(std::locale(std::locale::classic(), new GermanNumbers))) {}
    ~ItemsInAGermanHost() override { std::locale::global(m_previous); }

  private:
    std::locale m_previous;
};

TEST_F(ItemsInAGermanHost, HaveAHostThatReallyWritesNumbersItsOwnWay) {
    std::ostringstream stream;
    stream << 1234567 << ' ' << 0.5;
    EXPECT_EQ(stream.str(), "1.234.567 0,5");
}

TEST_F(ItemsInAGermanHost, WriteSingleValuesAsEverywhere) {
    EXPECT_EQ(SingleValueConfigItem<int>(-1234567).toString(), "-1234567");
    EXPECT_EQ(SingleValueConfigItem<unsigned int>(1234567).toString(), "1234567");
    EXPECT_EQ(SingleValueConfigItem<double>(0.5).toString(), "0.5");
    EXPECT_EQ(SingleValueConfigItem<double>(1234567.5).toString(), "1234567.5");
    EXPECT_EQ(SingleValueConfigItem<ChannelID>(ChannelID{1, 2}).toString(), "4294967298");
    EXPECT_EQ(SingleValueConfigItem<bool>(true).toString(), "1");
    EXPECT_EQ(SingleValueConfigItem<channel_config::DAQChannelType>(
                  static_cast<channel_config::DAQChannelType>(12345))
                  .toString(),
              "12345");
}

TEST_F(ItemsInAGermanHost, WriteCompoundValuesAsEverywhere) {
    EXPECT_EQ(ScalarConfigItem(20000.5, "Hz").toString(), "20000.5 Hz");
    EXPECT_EQ(DecoratedNumberConfigItem(20000.5, "<", ">").toString(), "<20000.5>");
    EXPECT_EQ(RationalScalarConfigItem(30000, 1001, "Hz").toString(), "30000/1001 Hz");
    EXPECT_EQ(RangeConfigItem<double>(0.5, 2147483647, "a", "b").toString(), "0.5 a .. 2.14748e+09 b");
    EXPECT_EQ(RangeConfigItem<double>(1234, 56789).toString(), "1234 .. 56789");
    EXPECT_EQ((ValueListConfigItem<TupleValue<double, double>>({{0.5, 1234.5}}).toString()), "(0.5, 1234.5)");
    EXPECT_EQ(ValueListConfigItem<ChannelID>({{0, 1234}}).toString(), "1234");
}

TEST_F(ItemsInAGermanHost, ReadTextsAsEverywhere) {
    EXPECT_EQ(SingleValueConfigItem<double>::fromText("0.5").m_value, 0.5);
    EXPECT_EQ(SingleValueConfigItem<double>::fromText("1234567.5").m_value, 1234567.5);
    EXPECT_EQ(SingleValueConfigItem<double>::fromText("-INF").m_value,
              -std::numeric_limits<double>::infinity());
    EXPECT_EQ(SingleValueConfigItem<int>::fromText("-1234567").m_value, -1234567);
    EXPECT_EQ(SingleValueConfigItem<unsigned int>::fromText("-1").m_value, 4294967295u);
    EXPECT_EQ(SingleValueConfigItem<ChannelID>::fromText("4294967298").m_value, (ChannelID{1, 2}));
    EXPECT_EQ(SingleValueConfigItem<bool>::fromText("1").m_value, true);
    EXPECT_EQ(static_cast<int>(
                  SingleValueConfigItem<channel_config::DAQSampleResolution>::fromText("12345").m_value),
              12345);
}

TEST_F(ItemsInAGermanHost, RefuseGermanTexts) {
    EXPECT_THROW(SingleValueConfigItem<double>::fromText("0,5"), ConfigItemException);
    EXPECT_THROW(SingleValueConfigItem<double>::fromText("1.234,5"), ConfigItemException);
    EXPECT_THROW(SingleValueConfigItem<int>::fromText("1.234"), ConfigItemException);
    EXPECT_THROW(SingleValueConfigItem<unsigned int>::fromText("1.234"), ConfigItemException);
    EXPECT_THROW(SingleValueConfigItem<ChannelID>::fromText("1.234"), ConfigItemException);
    EXPECT_THROW(SingleValueConfigItem<bool>::fromText("wahr"), ConfigItemException);
}

}  // namespace
