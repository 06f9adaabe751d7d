#include "setting_text.h"

#include <limits>

#include <gmock/gmock.h>

using config_items::ConfigItemVariant;
using config_items::RationalScalarConfigItem;
using config_items::ScalarConfigItem;
using host::BadValue;
using testing::HasSubstr;
template <class T>
using Single = config_items::SingleValueConfigItem<T>;

namespace {

std::string complaint(const ConfigItemVariant& present, const std::string& text) {
    try {
        host::itemFromText(present, text);
    } catch (const BadValue& bad) {
        return bad.what();
    }
    return "accepted";
}

double number(const ConfigItemVariant& present, const std::string& text) {
    return host::itemNumber(host::itemFromText(present, text)).value();
}

TEST(Fraction, IsReadFromAQuotientAWholeNumberOrADecimal) {
    const auto read = [](const char* text) {
        const host::Fraction fraction = host::fractionFromText(text);
        return std::pair(fraction.numerator, fraction.denominator);
    };
    EXPECT_EQ(read("30000/1001"), std::pair(INT64_C(30000), INT64_C(1001)));
    EXPECT_EQ(read("50/100"), std::pair(INT64_C(1), INT64_C(2)));
    EXPECT_EQ(read("-6/4"), std::pair(INT64_C(-3), INT64_C(2)));
    EXPECT_EQ(read("0/5"), std::pair(INT64_C(0), INT64_C(1)));
    EXPECT_EQ(read("100"), std::pair(INT64_C(100), INT64_C(1)));
    EXPECT_EQ(read("29.97"), std::pair(INT64_C(2997), INT64_C(100)));
    EXPECT_EQ(read("0.5"), std::pair(INT64_C(1), INT64_C(2)));
    EXPECT_EQ(read("-0.25"), std::pair(INT64_C(-1), INT64_C(4)));
}

TEST(Fraction, IsRefusedWhenItIsNone) {
    for (const char* text : {"",
                             "/",
                             "1/",
                             "/2",
                             "a/2",
                             "1/b",
                             "1/0",
                             "1/-2",
                             "1.5/2",
                             "1/2/3",
                             " 1/2",
                             "1 /2",
                             "9223372036854775808",
                             "-9223372036854775808",
                             "-9223372036854775808/2",
                             "1.",
                             ".",
                             "1.2.3",
                             "0.1234567890123456789",
                             "+5",
                             "1e3",
                             "nan"}) {
        EXPECT_THROW(host::fractionFromText(text), BadValue) << text;
    }
}

TEST(SettingText, ShowsValueAndUnitApart) {
    const ConfigItemVariant width = ScalarConfigItem(640, "pixel");
    EXPECT_EQ(host::valueText(width), "640");
    EXPECT_EQ(host::unitText(width), "pixel");
    const ConfigItemVariant rate = RationalScalarConfigItem(30000, 1001, "fps");
    EXPECT_EQ(host::valueText(rate), "30000/1001");
    EXPECT_EQ(host::unitText(rate), "fps");
    EXPECT_EQ(host::valueText(Single<std::string>("Y800")), "Y800");
    EXPECT_EQ(host::unitText(Single<std::string>("Y800")), "");
    EXPECT_EQ(host::valueText(Single<bool>(true)), "1");
    EXPECT_EQ(host::valueText(Single<double>(0.1)), "0.1");
    EXPECT_EQ(host::valueText(config_items::InvalidConfigItem("no frequency")), "no frequency");
}

TEST(SettingText, WritesNumbersShortButExactly) {
    EXPECT_EQ(host::numberText(0.1), "0.1");
    EXPECT_EQ(host::numberText(15000), "15000");
    EXPECT_EQ(host::numberText(-2.5), "-2.5");
    EXPECT_EQ(host::numberText(1.0 / 3.0), "0.3333333333333333");
}

TEST(SettingText, ReadsANumberWithItsUnitOrWithout) {
    const ScalarConfigItem width(656, "pixel");
    for (const char* text : {"640", "640 pixel", "640pixel"}) {
        const ConfigItemVariant item = host::itemFromText(width, text);
        EXPECT_EQ(boost::get<ScalarConfigItem>(item).m_value, 640) << text;
        EXPECT_EQ(boost::get<ScalarConfigItem>(item).m_unit, "pixel") << text;
    }
    EXPECT_EQ(number(ScalarConfigItem(0), "-2.5"), -2.5);
    EXPECT_EQ(number(ScalarConfigItem(0), "1e3"), 1000);
    EXPECT_EQ(number(ScalarConfigItem(50, "fps"), "30000/1001 fps"), 30000.0 / 1001.0);
    EXPECT_EQ(number(Single<double>(0), "0.25"), 0.25);
}

TEST(SettingText, ReadsEveryKindThatCanBeGiven) {
    EXPECT_EQ(boost::get<Single<std::string>>(host::itemFromText(Single<std::string>(""), " a ")).m_value,
              " a ");
    EXPECT_EQ(boost::get<Single<int>>(host::itemFromText(Single<int>(0), "-7")).m_value, -7);
    EXPECT_EQ(boost::get<Single<unsigned>>(host::itemFromText(Single<unsigned>(0u), "7")).m_value, 7u);
    for (const auto& [text, value] : {std::pair("1", true), {"true", true}, {"0", false}, {"false", false}}) {
        EXPECT_EQ(boost::get<Single<bool>>(host::itemFromText(Single<bool>(!value), text)).m_value, value);
    }
    const auto rate = boost::get<RationalScalarConfigItem>(
        host::itemFromText(RationalScalarConfigItem(1, 1, "fps"), "60000/2002 fps"));
    EXPECT_EQ(rate.m_numerator, 30000);
    EXPECT_EQ(rate.m_denominator, 1001);
    EXPECT_EQ(rate.m_unit, "fps");
}

TEST(SettingText, SaysWhatIsWrongWithAValueAndWhatWouldBeRight) {
    const std::string help = "; a number is written like 640 or 0.5, a fraction like 30000/1001";
    for (const char* text : {"abc", "", "1,5", "0x10", "nan", "inf", "1e999"}) {
        EXPECT_EQ(complaint(ScalarConfigItem(0, "pixel"), text),
                  '"' + std::string(text) + "\" is no number" + help);
    }
    EXPECT_EQ(complaint(ScalarConfigItem(0, "pixel"), "12 mm"),
              "\"12 mm\" is no number; the unit is pixel: write 12 pixel");
    for (const char* text : {"5000 us", "5000\u00b5s"}) {
        EXPECT_EQ(complaint(ScalarConfigItem(0, ""), text),
                  '"' + std::string(text) + "\" is no number; this setting has no unit: write 5000");
    }
    EXPECT_EQ(complaint(ScalarConfigItem(0, "fps"), "30/0"),
              "\"30/0\" is no fraction; the number below the line must be greater than 0");
    EXPECT_EQ(complaint(RationalScalarConfigItem(1, 1), "30/x"),
              "\"30/x\" is no fraction of two whole numbers; it is written like 30000/1001");
    EXPECT_EQ(complaint(Single<bool>(true), "maybe"), "\"maybe\" is neither yes nor no; write 1 or 0");
    EXPECT_THAT(complaint(Single<int>(0), "1.5"), HasSubstr("is no number"));
    EXPECT_THAT(complaint(Single<unsigned>(0u), "-1"), HasSubstr("is no number"));
    EXPECT_EQ(complaint(config_items::InvalidConfigItem(), "1"),
              "the setting has no value now, so none can be given");
    EXPECT_EQ(complaint(Single<channel_config::DAQChannelType>(), "13"),
              "values of this kind cannot be given as text");
}

TEST(SettingText, KnowsTheNumberInAnItem) {
    EXPECT_EQ(host::itemNumber(RationalScalarConfigItem(1, 4)), 0.25);
    EXPECT_EQ(host::itemNumber(RationalScalarConfigItem(1, 0)), std::nullopt);
    EXPECT_EQ(host::itemNumber(Single<std::string>("4")), std::nullopt);
}

}  // namespace
