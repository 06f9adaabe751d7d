#include "config_item_variant.h"

#include <boost/mpl/at.hpp>
#include <boost/mpl/size.hpp>
#include <gtest/gtest.h>

namespace {

using namespace config_items;
using namespace channel_config;

TEST(ConfigItemVariant, NumbersItsTwentyAlternativesInTheAgreedOrder) {
    using Pair = TupleValue<double, double>;
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<std::string>()).which(), 0);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<double>()).which(), 1);
    EXPECT_EQ(ConfigItemVariant(ScalarConfigItem(0)).which(), 2);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<int>()).which(), 3);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<unsigned int>()).which(), 4);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<bool>()).which(), 5);
    EXPECT_EQ(ConfigItemVariant(RangeConfigItem<double>(0, 1)).which(), 6);
    EXPECT_EQ(ConfigItemVariant(ValueListConfigItem<std::string>()).which(), 7);
    EXPECT_EQ(ConfigItemVariant(ValueListConfigItem<Pair>()).which(), 8);
    EXPECT_EQ(ConfigItemVariant(DecoratedNumberConfigItem(0, "", "")).which(), 9);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<UserScalingMode>()).which(), 10);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<DAQChannelType>()).which(), 11);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<SampleOccurrenceType>()).which(), 12);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<DAQSampleResolution>()).which(), 13);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<PhysicalQuantity>()).which(), 14);
    EXPECT_EQ(ConfigItemVariant(GenericEnumConfigItem("")).which(), 15);
    EXPECT_EQ(ConfigItemVariant(SingleValueConfigItem<ChannelID>()).which(), 16);
    EXPECT_EQ(ConfigItemVariant(RationalScalarConfigItem(0, 1)).which(), 17);
    EXPECT_EQ(ConfigItemVariant(ValueListConfigItem<ChannelID>()).which(), 18);
    EXPECT_EQ(ConfigItemVariant(InvalidConfigItem()).which(), 19);
    EXPECT_EQ(boost::mpl::size<ConfigItemVariant::types>::value, 20);
}

TEST(ConfigItemVariant, HoldsAnEmptyTextByDefault) {
    const ConfigItemVariant value;
    EXPECT_EQ(boost::get<SingleValueConfigItem<std::string>>(value).m_value, "");
}

TEST(ConfigItemVariant, ThrowsBoostsBadGetForAnotherAlternative) {
    const ConfigItemVariant value = SingleValueConfigItem<int>(1);
    EXPECT_THROW(boost::get<SingleValueConfigItem<std::string>>(value), boost::bad_get);
}

TEST(ConfigItemVariant, DoesNotTakeAScalarForThePlainDoubleThatItDerivesFrom) {
    const ConfigItemVariant value = ScalarConfigItem(1, "Hz");
    EXPECT_EQ(boost::get<SingleValueConfigItem<double>>(&value), nullptr);
}

TEST(AsItem, GivesTheItemThatIsHeldNotACopy) {
    const ConfigItemVariant value = ScalarConfigItem(20000, "Hz");
    EXPECT_EQ(&asItem(value), &boost::get<ScalarConfigItem>(value));
    EXPECT_EQ(asItem(value).toString(), "20000 Hz");
    EXPECT_EQ(asItem(ConfigItemVariant(InvalidConfigItem())).toString(), "Invalid ConfigItem");
}

}  // namespace
