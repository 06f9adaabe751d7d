/// Names of items, constraints and the item union, for sources that only pass them on. Whoever makes, copies
/// or reads an item includes config_item_variant.h; whoever reads a constraint, config_item_constraints.h.
#pragma once

#include <string>

#include <boost/variant/variant_fwd.hpp>

#include "channel_config_types.h"

namespace config_items {

class IfConfigItem;
class IfConfigItemConstraint;

template <class T>
class SingleValueConfigItem;
class ScalarConfigItem;
class DecoratedNumberConfigItem;
class RationalScalarConfigItem;
template <class T>
class RangeConfigItem;
template <class First, class Second>
class TupleValue;
template <class T>
class ValueListConfigItem;
class GenericEnumConfigItem;
class InvalidConfigItem;

/// The closed set of all item types as one tagged union. The order of the alternatives is the discriminator
/// and part of the contract with the host. The default value is an empty string item.
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

}  // namespace config_items
