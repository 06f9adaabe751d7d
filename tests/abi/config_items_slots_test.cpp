// Items and constraints, called by slot number.
#include <type_traits>
#include <typeinfo>

#include <gtest/gtest.h>

#include "channel_config_constraints.h"
#include "config_item_constraints.h"
#include "config_items.h"
#include "mirror.h"

namespace {

using channel_config::ChannelID;
using config_items::IfConfigItem;
using config_items::IfConfigItemConstraint;
using config_items::ScalarConfigItem;
using config_items::SingleValueConfigItem;
using slot_check::answered;
using slot_check::entryOf;
using slot_check::Mirror;
using slot_check::MirrorOf;
using slot_check::Operations;
using slot_check::recorded;

template <class Item>
class RecordingItem : public slot_check::EndOf<Item> {
  public:
    using slot_check::EndOf<Item>::EndOf;

    virtual std::string toString() const {
        answered("toString");
        return "a text longer than a short string";
    }
    virtual bool equals(const IfConfigItem& other) const {
        answered("equals");
        return &other == this;
    }

    static Operations operations() {
        return {{"toString", entryOf(&RecordingItem::toString)}, {"equals", entryOf(&RecordingItem::equals)}};
    }
};

void callItem(Mirror& mirror) {
    mirror.destroys(0);
    EXPECT_EQ(mirror.slot<std::string()>(1)(), "a text longer than a short string");
    EXPECT_TRUE(mirror.slot<bool(const IfConfigItem&)>(2)(mirror.as<IfConfigItem>()));
}

template <class Item, class... Args>
MirrorOf itemMirror(const std::string& name, Args... args) {
    return {name, [args...] { return recorded<RecordingItem<Item>>(args...); }, callItem};
}

using config_items::DecoratedNumberConfigItem;
using config_items::IfValueConfigItem;
using config_items::IfValueListConfigItem;
using config_items::RangeConfigItem;
using config_items::RationalScalarConfigItem;
using config_items::TupleValue;
using config_items::ValueListConfigItem;

const MirrorOf plainItems[] = {
    itemMirror<IfConfigItem>("config_items::IfConfigItem"),
    itemMirror<IfValueConfigItem>("config_items::IfValueConfigItem"),
    itemMirror<IfValueListConfigItem>("config_items::IfValueListConfigItem"),
    itemMirror<RationalScalarConfigItem>("config_items::RationalScalarConfigItem", 1, 2),
    itemMirror<RangeConfigItem<double>>("config_items::RangeConfigItem<double>", 1.0, 2.0),
    itemMirror<ValueListConfigItem<std::string>>("config_items::ValueListConfigItem<std::string>"),
    itemMirror<ValueListConfigItem<TupleValue<double, double>>>(
        "config_items::ValueListConfigItem<config_items::TupleValue<double, double>>"),
    itemMirror<ValueListConfigItem<ChannelID>>(
        "config_items::ValueListConfigItem<channel_config::ChannelID>"),
    itemMirror<config_items::GenericEnumConfigItem>("config_items::GenericEnumConfigItem",
                                                    std::string("name")),
    itemMirror<config_items::InvalidConfigItem>("config_items::InvalidConfigItem"),
};

template <class T>
class RecordingValueItem : public RecordingItem<SingleValueConfigItem<T>> {
  public:
    virtual bool equalsTyped(const SingleValueConfigItem<T>& other) const {
        answered("equalsTyped");
        return &other == this;
    }

    static Operations operations() {
        Operations all = RecordingItem<SingleValueConfigItem<T>>::operations();
        all.push_back({"equalsTyped", entryOf(&RecordingValueItem::equalsTyped)});
        return all;
    }
};

template <class T>
MirrorOf valueMirror(const std::string& type) {
    using Item = SingleValueConfigItem<T>;
    return {"config_items::SingleValueConfigItem<" + type + ">", recorded<RecordingValueItem<T>>,
            [](Mirror& mirror) {
                callItem(mirror);
                EXPECT_TRUE(mirror.slot<bool(const Item&)>(3)(mirror.as<Item>()));
            }};
}

const MirrorOf valueItems[] = {
    valueMirror<bool>("bool"),
    valueMirror<int>("int"),
    valueMirror<unsigned int>("unsigned int"),
    valueMirror<double>("double"),
    valueMirror<std::string>("std::string"),
    valueMirror<ChannelID>("channel_config::ChannelID"),
    valueMirror<channel_config::PhysicalQuantity>("channel_config::PhysicalQuantity"),
    valueMirror<channel_config::UserScalingMode>("channel_config::UserScalingMode"),
    valueMirror<channel_config::DAQSampleResolution>("channel_config::DAQSampleResolution"),
    valueMirror<channel_config::SampleOccurrenceType>("channel_config::SampleOccurrenceType"),
    valueMirror<channel_config::DAQChannelType>("channel_config::DAQChannelType"),
};

// Two comparisons of one name: with the value alone and with the texts beside it.
template <class Item>
class RecordingNumberItem : public RecordingItem<Item> {
  public:
    using RecordingItem<Item>::RecordingItem;
    using ValueItem = SingleValueConfigItem<double>;

    virtual bool equalsTyped(const ValueItem& other) const {
        answered("equalsTyped(SingleValueConfigItem<double>)");
        return &other == this;
    }
    virtual bool equalsTyped(const Item& other) const {
        answered(kOwn);
        return &other == this;
    }

    static Operations operations() {
        using Self = RecordingNumberItem;
        Operations all = RecordingItem<Item>::operations();
        all.push_back({"equalsTyped(SingleValueConfigItem<double>)",
                       entryOf<bool (Self::*)(const ValueItem&) const>(&Self::equalsTyped)});
        all.push_back({kOwn, entryOf<bool (Self::*)(const Item&) const>(&Self::equalsTyped)});
        return all;
    }

  private:
    static constexpr const char* kOwn = std::is_same_v<Item, ScalarConfigItem>
                                            ? "equalsTyped(ScalarConfigItem)"
                                            : "equalsTyped(DecoratedNumberConfigItem)";
};

template <class Item>
void callNumberItem(Mirror& mirror) {
    using ValueItem = SingleValueConfigItem<double>;
    callItem(mirror);
    EXPECT_TRUE(mirror.slot<bool(const ValueItem&)>(3)(mirror.as<ValueItem>()));
    EXPECT_TRUE(mirror.slot<bool(const Item&)>(4)(mirror.as<Item>()));
}

const MirrorOf scalarItem(
    "config_items::ScalarConfigItem", [] { return recorded<RecordingNumberItem<ScalarConfigItem>>(1.0); },
    callNumberItem<ScalarConfigItem>);
const MirrorOf decoratedItem(
    "config_items::DecoratedNumberConfigItem",
    [] {
        const std::string none;
        return recorded<RecordingNumberItem<DecoratedNumberConfigItem>>(1.0, none, none);
    },
    callNumberItem<DecoratedNumberConfigItem>);

// Nothing can derive from a final class, so the real operation answers, and where its table ends is not seen.
const MirrorOf tupleValue(
    "config_items::TupleValue<double, double>",
    [] {
        using Tuple = TupleValue<double, double>;
        slot_check::Recorded result;
        slot_check::layOut(result, {{"equals", entryOf(&Tuple::equals)}}, 1, false);
        result.records = false;
        result.make = [] { return static_cast<void*>(new Tuple(1.0, 2.0)); };
        result.destroy = [](void* tuple) { delete static_cast<Tuple*>(tuple); };
        return result;
    },
    [](Mirror& mirror) {
        const auto equals = [&](const TupleValue<double, double>& other) {
            return mirror.slot<bool(const TupleValue<double, double>&)>(0)(other);
        };
        EXPECT_TRUE(equals({1.0, 2.0}));
        EXPECT_FALSE(equals({1.0, 3.0}));
    });

template <class Constraint>
class RecordingConstraint : public slot_check::EndOf<Constraint> {
  public:
    using slot_check::EndOf<Constraint>::EndOf;

    virtual bool equals(const IfConfigItemConstraint& other) const {
        answered("equals");
        return &other == this;
    }
    virtual std::shared_ptr<IfConfigItemConstraint> clone() const {
        answered("clone");
        return std::make_shared<channel_config::ReadOnlyConstraint>(true);
    }

    static Operations operations() {
        return {{"equals", entryOf(&RecordingConstraint::equals)},
                {"clone", entryOf(&RecordingConstraint::clone)}};
    }
};

template <class Constraint>
class RecordingTypedConstraint : public RecordingConstraint<Constraint> {
  public:
    using RecordingConstraint<Constraint>::RecordingConstraint;

    virtual const std::type_info& getValueType() const {
        answered("getValueType");
        return typeid(ChannelID);
    }

    static Operations operations() {
        Operations all = RecordingConstraint<Constraint>::operations();
        all.push_back({"getValueType", entryOf(&RecordingTypedConstraint::getValueType)});
        return all;
    }
};

void callConstraint(Mirror& mirror) {
    mirror.destroys(0);
    EXPECT_TRUE(mirror.slot<bool(const IfConfigItemConstraint&)>(1)(mirror.as<IfConfigItemConstraint>()));
    const auto copy = mirror.slot<std::shared_ptr<IfConfigItemConstraint>()>(2)();
    EXPECT_NE(dynamic_cast<channel_config::ReadOnlyConstraint*>(copy.get()), nullptr);
}

void callTypedConstraint(Mirror& mirror) {
    callConstraint(mirror);
    EXPECT_EQ(mirror.slot<const std::type_info&()>(3)(), typeid(ChannelID));
}

template <class Constraint, class... Args>
MirrorOf constraintMirror(const std::string& name, Args... args) {
    return {name, [args...] { return recorded<RecordingConstraint<Constraint>>(args...); }, callConstraint};
}

template <class Constraint, class... Args>
MirrorOf typedMirror(const std::string& name, Args... args) {
    return {name, [args...] { return recorded<RecordingTypedConstraint<Constraint>>(args...); },
            callTypedConstraint};
}

using config_items::OptionConstraint;
using config_items::ValueRangeConstraint;
using BoolItem = SingleValueConfigItem<bool>;
using StringItem = SingleValueConfigItem<std::string>;

const MirrorOf constraints[] = {
    constraintMirror<IfConfigItemConstraint>("config_items::IfConfigItemConstraint"),
    constraintMirror<config_items::BooleanConstraint>("config_items::BooleanConstraint", true),
    constraintMirror<channel_config::ConfigurableDuringAcquisitionConstraint>(
        "channel_config::ConfigurableDuringAcquisitionConstraint", true),
    constraintMirror<channel_config::ReadOnlyConstraint>("channel_config::ReadOnlyConstraint", true),
    constraintMirror<channel_config::IndependentConfigItemConstraint>(
        "channel_config::IndependentConfigItemConstraint", true),
    constraintMirror<channel_config::FullyIndependentSampleRateConstraint>(
        "channel_config::FullyIndependentSampleRateConstraint", true),
    typedMirror<config_items::IfOptionConstraint>("config_items::IfOptionConstraint"),
    typedMirror<OptionConstraint<ScalarConfigItem>>(
        "config_items::OptionConstraint<config_items::ScalarConfigItem>", ScalarConfigItem(1.0)),
    typedMirror<OptionConstraint<StringItem>>(
        "config_items::OptionConstraint<config_items::SingleValueConfigItem<std::string>>", StringItem()),
    typedMirror<OptionConstraint<BoolItem>>(
        "config_items::OptionConstraint<config_items::SingleValueConfigItem<bool>>", BoolItem()),
    typedMirror<config_items::IfRangeConstraint>("config_items::IfRangeConstraint"),
    typedMirror<ValueRangeConstraint<double>>("config_items::ValueRangeConstraint<double>", 1.0, 2.0,
                                              std::string("Hz")),
};

}  // namespace
