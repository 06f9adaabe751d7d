#include "zeltpu_simple_channel_config_options.h"

#include <exception>
#include <type_traits>
#include <utility>

#include "assertion.h"
#include "channel_config_constraints.h"
#include "config_item_variant.h"

namespace zelt::plugin_util {
namespace {

using channel_config::ConfigurableDuringAcquisitionConstraint;
using channel_config::ReadOnlyConstraint;
using config_items::ConfigItemVariant;
using config_items::InvalidConfigItem;
using config_items::OptionConstraint;
using config_items::RangeConfigItem;
using config_items::ScalarConfigItem;
using config_items::SingleValueConfigItem;
using config_items::ValueRangeConstraint;

using BoolItem = SingleValueConfigItem<bool>;
using StringItem = SingleValueConfigItem<std::string>;

/// The item alternative that carries a value of type T.
template <class T>
struct OptionItem {
    using Type = SingleValueConfigItem<T>;
};
template <>
struct OptionItem<ScalarConfigItem> {
    using Type = ScalarConfigItem;
};
template <>
struct OptionItem<ConfigItemVariant> {
    using Type = ConfigItemVariant;
};

/// The value of type T that an item carries; null when it holds another alternative.
template <class T>
const T* valueIn(const ConfigItemVariant& item) {
    if constexpr (std::is_same_v<T, ConfigItemVariant>) {
        return &item;
    } else {
        const auto* const held = boost::get<typename OptionItem<T>::Type>(&item);
        if constexpr (std::is_same_v<T, typename OptionItem<T>::Type>) {
            return held;
        } else {
            return held != nullptr ? &held->m_value : nullptr;
        }
    }
}

}  // namespace

ChannelConfigOption::ChannelConfigOption(std::string key) : m_key(std::move(key)) {}

ChannelConfigOption::~ChannelConfigOption() = default;

template <class T>
GenericOption<T>::GenericOption(std::string key, Callables callables)
    : ChannelConfigOption(std::move(key)), m_callables(std::move(callables)) {}

template <class T>
bool GenericOption<T>::isAvailable() const {
    return !m_callables.isAvailable || m_callables.isAvailable();
}

template <class T>
ConfigItemVariant GenericOption<T>::getItem() const {
    try {
        return typename OptionItem<T>::Type(m_callables.get());
    } catch (const std::exception& error) {
        return InvalidConfigItem(error.what());
    }
}

template <class T>
bool GenericOption<T>::setItem(const ConfigItemVariant& value) {
    if (!m_callables.set) return false;
    const T* const wanted = valueIn<T>(value);
    if (wanted == nullptr) return false;
    try {
        return m_callables.set(*wanted);
    } catch (...) {
        return false;
    }
}

template <class T>
ChannelConfigOption::Constraints GenericOption<T>::getConstraints() const {
    return m_callables.getConstraints ? m_callables.getConstraints() : Constraints();
}

template class GenericOption<bool>;
template class GenericOption<std::string>;
template class GenericOption<config_items::ScalarConfigItem>;
template class GenericOption<ConfigItemVariant>;

template <class T>
ConstantGenericOption<T>::ConstantGenericOption(std::string key, T value)
    : ChannelConfigOption(std::move(key)), m_value(std::move(value)) {}

template <class T>
bool ConstantGenericOption<T>::isAvailable() const {
    return true;
}

template <class T>
ConfigItemVariant ConstantGenericOption<T>::getItem() const {
    return SingleValueConfigItem<T>(m_value);
}

template <class T>
bool ConstantGenericOption<T>::setItem(const ConfigItemVariant&) {
    return false;
}

template <class T>
ChannelConfigOption::Constraints ConstantGenericOption<T>::getConstraints() const {
    return {std::make_shared<ReadOnlyConstraint>(true)};
}

template class ConstantGenericOption<std::string>;
template class ConstantGenericOption<bool>;
template class ConstantGenericOption<channel_config::DAQChannelType>;
template class ConstantGenericOption<channel_config::SampleOccurrenceType>;
template class ConstantGenericOption<channel_config::DAQSampleResolution>;

ConstantRangeOption::ConstantRangeOption(std::string key, RangeConfigItem<double> range)
    : ChannelConfigOption(std::move(key)), m_range(std::move(range)) {}

bool ConstantRangeOption::isAvailable() const {
    return true;
}

ConfigItemVariant ConstantRangeOption::getItem() const {
    return m_range;
}

bool ConstantRangeOption::setItem(const ConfigItemVariant&) {
    return false;
}

ChannelConfigOption::Constraints ConstantRangeOption::getConstraints() const {
    return {std::make_shared<ReadOnlyConstraint>(true)};
}

ChannelUsedOption::ChannelUsedOption(std::string key, std::atomic<bool>& used, bool locked,
                                     std::function<void(bool)> listener)
    : ChannelConfigOption(std::move(key)), m_used(used), m_locked(locked), m_listener(std::move(listener)) {}

bool ChannelUsedOption::isAvailable() const {
    return true;
}

ConfigItemVariant ChannelUsedOption::getItem() const {
    return BoolItem(m_used.load());
}

bool ChannelUsedOption::setItem(const ConfigItemVariant& value) {
    const bool* const used = valueIn<bool>(value);
    if (used == nullptr) return false;
    if (*used == m_used) return true;
    if (m_locked) return false;
    m_used = *used;
    try {
        if (m_listener) m_listener(*used);
    } catch (...) {
        return false;
    }
    return true;
}

ChannelConfigOption::Constraints ChannelUsedOption::getConstraints() const {
    const bool used = m_used;
    Constraints constraints;
    constraints.push_back(std::make_shared<ConfigurableDuringAcquisitionConstraint>(false));
    constraints.push_back(std::make_shared<OptionConstraint<BoolItem>>(BoolItem(used)));
    if (m_locked) {
        constraints.push_back(std::make_shared<ReadOnlyConstraint>(true));
    } else {
        constraints.push_back(std::make_shared<OptionConstraint<BoolItem>>(BoolItem(!used)));
    }
    return constraints;
}

SimpleOptionBase::SimpleOptionBase(std::string key, bool readOnly, bool configurableDuringAcquisition)
    : ChannelConfigOption(std::move(key)),
      m_read_only(readOnly),
      m_configurable_during_acquisition(configurableDuringAcquisition) {}

ChannelConfigOption::Constraints SimpleOptionBase::getConstraints() const {
    return {std::make_shared<ReadOnlyConstraint>(m_read_only),
            std::make_shared<ConfigurableDuringAcquisitionConstraint>(m_configurable_during_acquisition)};
}

SimpleStringOption::SimpleStringOption(std::string key, std::string value, bool readOnly,
                                       bool configurableDuringAcquisition, std::function<bool()> availability,
                                       Listener listener)
    : SimpleOptionBase(std::move(key), readOnly, configurableDuringAcquisition),
      m_value(std::move(value)),
      m_availability(std::move(availability)),
      m_listener(std::move(listener)) {}

bool SimpleStringOption::isAvailable() const {
    return !m_availability || m_availability();
}

ConfigItemVariant SimpleStringOption::getItem() const {
    return StringItem(m_value);
}

bool SimpleStringOption::setItem(const ConfigItemVariant& value) {
    const std::string* const text = valueIn<std::string>(value);
    if (text == nullptr || isReadOnly()) return false;
    m_value = *text;
    try {
        if (m_listener) m_listener(getKey(), m_value);
    } catch (...) {
        return false;
    }
    return true;
}

SimpleScalarOption::SimpleScalarOption(std::string key, ScalarConfigItem value, bool writable, double min,
                                       double max)
    : ChannelConfigOption(std::move(key)),
      m_value(value.m_value),
      m_unit(std::move(value.m_unit)),
      m_writable(writable),
      m_min(min),
      m_max(max) {}

bool SimpleScalarOption::isAvailable() const {
    return true;
}

ConfigItemVariant SimpleScalarOption::getItem() const {
    return ScalarConfigItem(m_value, m_unit);
}

bool SimpleScalarOption::setItem(const ConfigItemVariant& value) {
    const auto* const wanted = valueIn<ScalarConfigItem>(value);
    if (wanted == nullptr) return false;
    const ScalarConfigItem& scalar = *wanted;
    ZELT_ASSERT(scalar.m_unit == m_unit);
    m_value = scalar.m_value;
    return true;
}

ChannelConfigOption::Constraints SimpleScalarOption::getConstraints() const {
    Constraints constraints{std::make_shared<ReadOnlyConstraint>(!m_writable)};
    if (m_writable) {
        constraints.push_back(std::make_shared<ValueRangeConstraint<double>>(m_min, m_max, m_unit));
    }
    return constraints;
}

std::shared_ptr<ChannelConfigOption> readOnlyTextOption(std::string key, std::string text) {
    return std::make_shared<SimpleStringOption>(std::move(key), std::move(text), /*readOnly=*/true,
                                                /*configurableDuringAcquisition=*/false);
}

}  // namespace zelt::plugin_util
