/// The closed set of all item types as one tagged union.
#pragma once

#include <string>

#include <boost/variant.hpp>

#include "config_items.h"

namespace config_items {

/// Any item. The order of the alternatives is the discriminator and part of the contract with the host. The
/// default value is an empty string item.
using ConfigItemVariant =
    boost::variant<SingleValueConfigItem<std::string>, SingleValueConfigItem<double>, ScalarConfigItem,
                   SingleValueConfigItem<int>, SingleValueConfigItem<unsigned int>,
                   SingleValueConfigItem<bool>, RangeConfigItem<double>, ValueListConfigItem<std::string>,
                   ValueListConfigItem<TupleValue<double, double>>, DecoratedNumberConfigItem,
                   SingleValueConfigItem<channel_config::UserScalingMode>,
                   SingleValueConfigItem<channel_config::DAQChannelType>,
                   SingleValueConfigItem<channel_config::SampleOccurrenceType>,
                   SingleValueConfigItem<channel_config::DAQSampleResolution>,
                   SingleValueConfigItem<channel_config::PhysicalQuantity>, GenericEnumConfigItem,
                   SingleValueConfigItem<channel_config::ChannelID>, RationalScalarConfigItem,
                   ValueListConfigItem<channel_config::ChannelID>, InvalidConfigItem>;

/// The item held, for its text and for comparing it; valid until `value` changes.
ZELT_BASE_API const IfConfigItem& asItem(const ConfigItemVariant& value) noexcept;

}  // namespace config_items
