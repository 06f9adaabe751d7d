#include <sstream>

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "generators.h"
#include "text_conversion.h"

namespace {

using namespace property_tests;
using channel_config::ChannelID;

/// Texts near to numbers: digits, signs, points, exponents, blanks, letters of "nan" and "inf".
rc::Gen<std::string> numberLike() {
    return rc::gen::container<std::string>(
        rc::gen::elementOf(std::string("0123456789019+-.eE naifNAIFxt,'()")));
}

rc::Gen<std::string> anySource() {
    return rc::gen::oneOf(
        numberLike(), anyText(),
        rc::gen::map(anyNumber<std::int64_t>(), [](auto n) { return std::to_string(n); }),
        rc::gen::map(anyDouble(), [](double d) { return boost::lexical_cast<std::string>(d); }));
}

template <class T>
class TextProperty : public ::testing::Test {};

using ValueTypes = ::testing::Types<bool, int, unsigned int, double, std::string, ChannelID,
                                    channel_config::PhysicalQuantity, channel_config::UserScalingMode,
                                    channel_config::DAQSampleResolution, channel_config::SampleOccurrenceType,
                                    channel_config::DAQChannelType>;
TYPED_TEST_SUITE(TextProperty, ValueTypes);

TYPED_TEST(TextProperty, AValueComesBackFromItsText) {
    EXPECT_TRUE(rc::check([] {
        const auto item = *anySingleValue<TypeParam>();
        const std::string text = item.toString();
        const auto back = SingleValueConfigItem<TypeParam>::fromText(text);
        RC_ASSERT(back.equals(item));
        RC_ASSERT(back.toString() == text);
    }));
}

TYPED_TEST(TextProperty, ATextIsConvertedOrRefusedAsTheLexicalCastDoes) {
    EXPECT_TRUE(rc::check([] { RC_ASSERT(conversionDifference<TypeParam>(*anySource()) == ""); }));
}

RC_GTEST_PROP(TextProperty, ADoublesTextIsThatOfTheLexicalCast, ()) {
    const double value = *anyDouble();
    RC_ASSERT(SingleValueConfigItem<double>(value).toString() == boost::lexical_cast<std::string>(value));
}

RC_GTEST_PROP(TextProperty, ARangeIsWrittenAsAClassicStreamDoes, ()) {
    const double min = *anyDouble();
    const double max = *anyDouble();
    std::ostringstream stream;
    stream << min << " .. " << max;
    RC_ASSERT(RangeConfigItem<double>(min, max).toString() == stream.str());
}

RC_GTEST_PROP(TextProperty, AUnitFollowsItsNumberAfterOneBlank, ()) {
    const ScalarConfigItem scalar = *anyScalar();
    const std::string number = SingleValueConfigItem<double>(scalar.m_value).toString();
    RC_ASSERT(scalar.toString() == (scalar.m_unit.empty() ? number : number + ' ' + scalar.m_unit));
}

RC_GTEST_PROP(TextProperty, AListJoinsTheTextsOfItsElements, ()) {
    const auto ids = *rc::gen::container<std::vector<ChannelID>>(anyChannelId());
    std::string joined;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (i > 0) joined += ", ";
        joined += SingleValueConfigItem<ChannelID>(ids[i]).toString();
    }
    RC_ASSERT(ValueListConfigItem<ChannelID>(ids).toString() == joined);
}

}  // namespace
