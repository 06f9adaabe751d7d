#include <cmath>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "generators.h"

namespace {

using namespace property_tests;

constexpr int kDouble = 1;
constexpr int kScalar = 2;
constexpr int kDecorated = 9;
constexpr int kInvalid = 19;

bool equal(const ConfigItemVariant& a, const ConfigItemVariant& b) {
    return asItem(a).equals(asItem(b));
}

double valueOf(const ConfigItemVariant& item) {
    if (const auto* const scalar = boost::get<ScalarConfigItem>(&item)) return scalar->m_value;
    if (const auto* const decorated = boost::get<DecoratedNumberConfigItem>(&item)) return decorated->m_value;
    return boost::get<SingleValueConfigItem<double>>(item).m_value;
}

bool byTheDoubleRule(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b)) || (std::isinf(a) && std::isinf(b));
}

bool derivesFromDouble(int alternative) {
    return alternative == kScalar || alternative == kDecorated;
}

RC_GTEST_PROP(EqualityProperty, EveryItemEqualsItsCopy, ()) {
    const ConfigItemVariant item = *anyItem();
    const ConfigItemVariant copy = item;
    RC_ASSERT(equal(item, copy));
    RC_ASSERT(copy.which() == item.which());
    RC_ASSERT(asItem(copy).toString() == asItem(item).toString());
}

RC_GTEST_PROP(EqualityProperty, ItemsOfOneAlternativeAreEqualBothWaysOrNeither, ()) {
    const int alternative = *rc::gen::inRange(0, kAlternatives);
    const ConfigItemVariant a = *anyItemOf(alternative);
    const ConfigItemVariant b = *anyItemOf(alternative);
    RC_CLASSIFY(equal(a, b));
    RC_ASSERT(equal(a, b) == equal(b, a));
}

// The exceptions: an invalid item equals everything, nothing else equals it; a number takes those with a unit
// or decoration for its equals, which do not do so in return.
RC_GTEST_PROP(EqualityProperty, ItemsOfDifferentAlternativesDifferButForTwoOneSidedCases, ()) {
    const int first = *rc::gen::inRange(0, kAlternatives);
    const int second = *rc::gen::distinctFrom(rc::gen::inRange(0, kAlternatives), first);
    const ConfigItemVariant a = *anyItemOf(first);
    const ConfigItemVariant b = *anyItemOf(second);
    bool expected = first == kInvalid;
    if (first == kDouble && derivesFromDouble(second)) expected = byTheDoubleRule(valueOf(a), valueOf(b));
    RC_ASSERT(equal(a, b) == expected);
}

RC_GTEST_PROP(EqualityProperty, ANumberEqualsOneWithAUnitButNotTheOtherWayRound, ()) {
    const ScalarConfigItem scalar = *anyScalar();
    const SingleValueConfigItem<double> number(scalar.m_value);
    const DecoratedNumberConfigItem decorated(scalar.m_value, scalar.m_unit, "");
    RC_ASSERT(number.equals(scalar) && number.equals(decorated));
    RC_ASSERT(!scalar.equals(number) && !decorated.equals(number));
    RC_ASSERT(!scalar.equals(decorated) && !decorated.equals(scalar));
}

RC_GTEST_PROP(EqualityProperty, NumbersAreEqualByTheDoubleRule, ()) {
    const double a = *anyDouble();
    const double b = *anyDouble();
    const bool expected = byTheDoubleRule(a, b);
    RC_ASSERT(SingleValueConfigItem<double>(a).equals(SingleValueConfigItem<double>(b)) == expected);
    RC_ASSERT(ScalarConfigItem(a, "u").equals(ScalarConfigItem(b, "u")) == expected);
    RC_ASSERT(DecoratedNumberConfigItem(a, "p", "s").equals(DecoratedNumberConfigItem(b, "p", "s")) ==
              expected);
    RC_ASSERT(RangeConfigItem<double>(a, 1).equals(RangeConfigItem<double>(b, 1)) == expected);
    RC_ASSERT(RangeConfigItem<double>(1, a).equals(RangeConfigItem<double>(1, b)) == expected);
    using Tuple = TupleValue<double, double>;
    RC_ASSERT(Tuple(a, 1).equals(Tuple(b, 1)) == expected);
    RC_ASSERT(Tuple(1, a).equals(Tuple(1, b)) == expected);
}

RC_GTEST_PROP(EqualityProperty, EveryTextOfAnItemCounts, ()) {
    const std::string a = *anyText();
    const std::string b = *anyText();
    const bool expected = a == b;
    RC_ASSERT(ScalarConfigItem(1, a).equals(ScalarConfigItem(1, b)) == expected);
    RC_ASSERT(DecoratedNumberConfigItem(1, a, "x").equals(DecoratedNumberConfigItem(1, b, "x")) == expected);
    RC_ASSERT(DecoratedNumberConfigItem(1, "x", a).equals(DecoratedNumberConfigItem(1, "x", b)) == expected);
    RC_ASSERT(RationalScalarConfigItem(1, 2, a).equals(RationalScalarConfigItem(1, 2, b)) == expected);
    RC_ASSERT(RangeConfigItem<double>(0, 1, a, "x").equals(RangeConfigItem<double>(0, 1, b, "x")) ==
              expected);
    RC_ASSERT(RangeConfigItem<double>(0, 1, "x", a).equals(RangeConfigItem<double>(0, 1, "x", b)) ==
              expected);
    RC_ASSERT(GenericEnumConfigItem(a, "x").equals(GenericEnumConfigItem(b, "x")) == expected);
    RC_ASSERT(GenericEnumConfigItem("x", a).equals(GenericEnumConfigItem("x", b)) == expected);
}

RC_GTEST_PROP(EqualityProperty, FractionsAreComparedAsStored, ()) {
    const auto [a, b] = *rc::gen::pair(anyNumber<std::int64_t>(), anyNumber<std::int64_t>());
    const auto [c, d] = *rc::gen::pair(anyNumber<std::int64_t>(), anyNumber<std::int64_t>());
    RC_ASSERT(RationalScalarConfigItem(a, b).equals(RationalScalarConfigItem(c, d)) == (a == c && b == d));
}

RC_GTEST_PROP(EqualityProperty, ListsAreEqualElementByElement, ()) {
    const auto a = *rc::gen::container<std::vector<std::string>>(anyText());
    const auto b = *rc::gen::container<std::vector<std::string>>(anyText());
    using List = ValueListConfigItem<std::string>;
    RC_ASSERT(List(a).equals(List(b)) == (a == b));
    auto longer = a;
    longer.push_back("");
    RC_ASSERT(!List(a).equals(List(longer)) && !List(longer).equals(List(a)));
}

RC_GTEST_PROP(EqualityProperty, ItemsLiveExactlyAsLongAsTheirHolders, ()) {
    const std::int64_t before = IfConfigItem::getInstanceCount();
    {
        std::vector<ConfigItemVariant> items = *rc::gen::container<std::vector<ConfigItemVariant>>(anyItem());
        const auto copies = items;
        RC_ASSERT(IfConfigItem::getInstanceCount() >= before + 2 * std::int64_t(items.size()));
        for (std::size_t i = 1; i < items.size(); ++i) items[i] = copies[i - 1];
    }
    RC_ASSERT(IfConfigItem::getInstanceCount() == before);
}

}  // namespace
