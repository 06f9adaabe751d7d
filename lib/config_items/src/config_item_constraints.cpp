#include "config_item_constraints.h"

#include "channel_config_constraints.h"

namespace config_items {
namespace {

// Runs a comparison; whatever it throws makes the constraints differ.
template <class Comparison>
bool noThrow(const Comparison& comparison) noexcept {
    try {
        return comparison();
    } catch (...) {
        return false;
    }
}

}  // namespace

IfConfigItemConstraint::~IfConfigItemConstraint() = default;

template <class Item>
bool OptionConstraint<Item>::equals(const IfConfigItemConstraint& other) const {
    return noThrow([&] {
        const auto* const same = dynamic_cast<const OptionConstraint*>(&other);
        if (same == nullptr) return false;
        const Item item = same->m_item;
        return m_item.equalsTyped(item);
    });
}

template <class Item>
std::shared_ptr<IfConfigItemConstraint> OptionConstraint<Item>::clone() const {
    return std::make_shared<OptionConstraint>(*this);
}

template <class Item>
const std::type_info& OptionConstraint<Item>::getValueType() const {
    return typeid(Item);
}

template class OptionConstraint<ScalarConfigItem>;
template class OptionConstraint<SingleValueConfigItem<std::string>>;
template class OptionConstraint<SingleValueConfigItem<bool>>;

template <class T>
bool ValueRangeConstraint<T>::equals(const IfConfigItemConstraint& other) const {
    const auto* const same = dynamic_cast<const ValueRangeConstraint*>(&other);
    return same != nullptr && m_min == same->m_min && m_max == same->m_max;
}

template <class T>
std::shared_ptr<IfConfigItemConstraint> ValueRangeConstraint<T>::clone() const {
    return std::make_shared<ValueRangeConstraint>(*this);
}

template <class T>
const std::type_info& ValueRangeConstraint<T>::getValueType() const {
    return typeid(T);
}

template class ValueRangeConstraint<double>;

BooleanConstraint::BooleanConstraint(bool flag) : m_flag(flag) {}

bool BooleanConstraint::equals(const IfConfigItemConstraint& other) const {
    const auto* const boolean = dynamic_cast<const BooleanConstraint*>(&other);
    return boolean != nullptr && m_flag == boolean->m_flag;
}

std::shared_ptr<IfConfigItemConstraint> BooleanConstraint::clone() const {
    return std::make_shared<BooleanConstraint>(*this);
}

}  // namespace config_items

namespace channel_config {

using config_items::IfConfigItemConstraint;

std::shared_ptr<IfConfigItemConstraint> ConfigurableDuringAcquisitionConstraint::clone() const {
    return std::make_shared<ConfigurableDuringAcquisitionConstraint>(*this);
}

std::shared_ptr<IfConfigItemConstraint> ReadOnlyConstraint::clone() const {
    return std::make_shared<ReadOnlyConstraint>(*this);
}

std::shared_ptr<IfConfigItemConstraint> FullyIndependentSampleRateConstraint::clone() const {
    return std::make_shared<FullyIndependentSampleRateConstraint>(*this);
}

}  // namespace channel_config
