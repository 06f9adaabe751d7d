#include <cmath>
#include <typeinfo>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "assertion_capture.h"
#include "generators.h"

namespace {

using namespace property_tests;
using namespace channel_config;

using Constraint = std::shared_ptr<IfConfigItemConstraint>;
using Range = ValueRangeConstraint<double>;

template <class T, class... Arguments>
Constraint make(const Arguments&... arguments) {
    return std::make_shared<T>(arguments...);
}

constexpr int kKinds = 8;

Constraint anyConstraintOf(int kind) {
    const test_support::AssertionCapture unordered;  // bounds come in any order here
    const bool flag = *rc::gen::arbitrary<bool>();
    switch (kind) {
        case 0:
            return make<OptionConstraint<ScalarConfigItem>>(*anyScalar());
        case 1:
            return make<OptionConstraint<SingleValueConfigItem<std::string>>>(*anySingleValue<std::string>());
        case 2:
            return make<OptionConstraint<SingleValueConfigItem<bool>>>(*anySingleValue<bool>());
        case 3:
            return make<Range>(*anyDouble(), *anyDouble(), std::string("u"));
        case 4:
            return make<BooleanConstraint>(flag);
        case 5:
            return make<ConfigurableDuringAcquisitionConstraint>(flag);
        case 6:
            return make<ReadOnlyConstraint>(flag);
        default:
            return make<FullyIndependentSampleRateConstraint>(flag);
    }
}

Constraint anyConstraint() {
    return anyConstraintOf(*rc::gen::inRange(0, kKinds));
}

bool hasNanBound(const IfConfigItemConstraint& constraint) {
    const auto* const range = dynamic_cast<const Range*>(&constraint);
    return range != nullptr && (std::isnan(range->getMin()) || std::isnan(range->getMax()));
}

const std::type_info& typeOf(const IfConfigItemConstraint& constraint) {
    return typeid(constraint);
}

RC_GTEST_PROP(ConstraintProperty, ACloneIsOfTheSameTypeAndEqualUnlessABoundIsNaN, ()) {
    const Constraint constraint = anyConstraint();
    const Constraint clone = constraint->clone();
    RC_ASSERT(clone != constraint);
    RC_ASSERT(typeOf(*clone) == typeOf(*constraint));
    RC_ASSERT(constraint->equals(*clone) == !hasNanBound(*constraint));
    RC_ASSERT(clone->equals(*constraint) == !hasNanBound(*constraint));
}

RC_GTEST_PROP(ConstraintProperty, ClonesCompareAsTheirOriginalsDoBothWays, ()) {
    const Constraint a = anyConstraint();
    const Constraint b = anyConstraint();
    const bool equal = a->equals(*b);
    RC_ASSERT(b->equals(*a) == equal);
    RC_ASSERT(a->clone()->equals(*b->clone()) == equal);
}

RC_GTEST_PROP(ConstraintProperty, FlagsDecideAmongPropertiesWhateverTheirType, ()) {
    const Constraint a = anyConstraintOf(*rc::gen::inRange(4, kKinds));
    const Constraint b = anyConstraintOf(*rc::gen::inRange(4, kKinds));
    const auto flag = [](const Constraint& c) {
        return dynamic_cast<const BooleanConstraint&>(*c).getFlag();
    };
    RC_ASSERT(a->equals(*b) == (flag(a) == flag(b)));
}

RC_GTEST_PROP(ConstraintProperty, DifferentKindsDiffer, ()) {
    const int first = *rc::gen::inRange(0, 5);
    const int second = *rc::gen::distinctFrom(rc::gen::inRange(0, 5), first);
    RC_ASSERT(!anyConstraintOf(first)->equals(*anyConstraintOf(second)));
}

RC_GTEST_PROP(ConstraintProperty, ChoicesCompareAsTheirItemsDo, ()) {
    const ScalarConfigItem a = *anyScalar();
    const ScalarConfigItem b = *anyScalar();
    using Choice = OptionConstraint<ScalarConfigItem>;
    RC_ASSERT(Choice(a).equals(Choice(b)) == a.equals(b));
    RC_ASSERT(Choice(a).getItem().equals(a));
}

RC_GTEST_PROP(ConstraintProperty, RangesCompareByPlainComparison, ()) {
    const test_support::AssertionCapture unordered;
    const double values[] = {*anyDouble(), *anyDouble(), *anyDouble(), *anyDouble()};
    const Range a(values[0], values[1], "u");
    const Range b(values[2], values[3], "other");
    RC_ASSERT(a.equals(b) == (values[0] == values[2] && values[1] == values[3]));
    RC_ASSERT(Range(values[0], values[0], "u").equals(Range(values[0], values[0], "v")) ==
              !std::isnan(values[0]));
}

RC_GTEST_PROP(ConstraintProperty, ARangeAssertsItsUnitAndItsOrderAndNothingElse, ()) {
    const double min = *anyDouble();
    const double max = *anyDouble();
    const std::string unit = *anyText();
    const test_support::AssertionCapture assertions;
    const Range range(min, max, unit);
    std::vector<std::string> expected;
    if (unit.empty()) expected.push_back("!unit.empty()");
    if (!(min <= max)) expected.push_back("min <= max");
    RC_ASSERT(assertions.expressions() == expected);
}

}  // namespace
