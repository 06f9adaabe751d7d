/// Options: the settings of a channel, each answering whether it is available, what its value is, whether it
/// takes a new one, and which constraints apply.
///
/// Options do not lock their values. What they are given (callables, flags) guards its own data, and
/// callables that tell the availability must not throw.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "channel_config_types.h"
#include "config_items.h"
#include "config_items_fwd.h"
#include "zeltpu_change_notifier.h"

namespace zelt::plugin_util {

/// Base of all options. The slot order of the virtual operations is part of the contract.
class ChannelConfigOption {
  public:
    using Constraints = std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>;

    explicit ChannelConfigOption(std::string key);
    ChannelConfigOption(const ChannelConfigOption&) = delete;
    ChannelConfigOption& operator=(const ChannelConfigOption&) = delete;

    virtual bool isAvailable() const = 0;
    virtual config_items::ConfigItemVariant getItem() const = 0;
    /// True when the value was accepted.
    virtual bool setItem(const config_items::ConfigItemVariant& value) = 0;
    /// Built anew on each call.
    virtual Constraints getConstraints() const = 0;
    virtual ~ChannelConfigOption();

    const std::string& getKey() const { return m_key; }

    /// Replaces the change callback. [any thread]
    void connect(SharedChangeCallback callback) { m_notifier.connect(std::move(callback)); }
    /// Tells the host through the callback connected that this setting changed, on the calling thread; what
    /// the callback throws passes on. [host] To be called with no lock held. No option calls it by itself.
    void notifyChanged() const { m_notifier.notify(m_key); }

  private:
    const std::string m_key;
    ChangeNotifier m_notifier;
};

/// A setting computed and applied by callables. T: bool, std::string, ScalarConfigItem or ConfigItemVariant.
template <class T>
class GenericOption : public ChannelConfigOption {
  public:
    /// Each may be empty. They run on host threads.
    struct Callables {
        /// Empty: always available.
        std::function<bool()> isAvailable = {};
        /// A standard exception, also that of calling an empty getter, becomes an InvalidConfigItem with its
        /// text. Any other exception would reach the host and must not be thrown.
        std::function<T()> get = {};
        /// Empty: no value is accepted. Whatever it throws counts as refused.
        std::function<bool(const T&)> set = {};
        /// Empty: no constraints.
        std::function<Constraints()> getConstraints = {};
    };

    GenericOption(std::string key, Callables callables);

    bool isAvailable() const override;
    config_items::ConfigItemVariant getItem() const override;
    /// Accepts only the alternative of T; for the union every alternative reaches the setter.
    bool setItem(const config_items::ConfigItemVariant& value) override;
    Constraints getConstraints() const override;

  private:
    const Callables m_callables;
};

extern template class GenericOption<bool>;
extern template class GenericOption<std::string>;
extern template class GenericOption<config_items::ScalarConfigItem>;
extern template class GenericOption<config_items::ConfigItemVariant>;

/// A fixed value, read-only. T: std::string, bool or an enumeration.
template <class T>
class ConstantGenericOption : public ChannelConfigOption {
  public:
    ConstantGenericOption(std::string key, T value);

    bool isAvailable() const override;
    config_items::ConfigItemVariant getItem() const override;
    bool setItem(const config_items::ConfigItemVariant& value) override;
    Constraints getConstraints() const override;

  private:
    const T m_value;
};

extern template class ConstantGenericOption<std::string>;
extern template class ConstantGenericOption<bool>;
extern template class ConstantGenericOption<channel_config::DAQChannelType>;
extern template class ConstantGenericOption<channel_config::SampleOccurrenceType>;
extern template class ConstantGenericOption<channel_config::DAQSampleResolution>;

/// A fixed range, read-only.
class ConstantRangeOption : public ChannelConfigOption {
  public:
    ConstantRangeOption(std::string key, config_items::RangeConfigItem<double> range);

    bool isAvailable() const override;
    config_items::ConfigItemVariant getItem() const override;
    bool setItem(const config_items::ConfigItemVariant& value) override;
    Constraints getConstraints() const override;

  private:
    const config_items::RangeConfigItem<double> m_range;
};

/// The channel's "used" switch. Current value first among the choices.
class ChannelUsedOption : public ChannelConfigOption {
  public:
    /// `used` is the channel's flag; it must be there whenever the option is used, not when it is destroyed.
    /// A locked switch accepts its current value only. The listener, if any, is told of every change after
    /// the flag was written; when it throws the flag stays and the value counts as refused. When several
    /// threads set, the flag tells the last value, the listener's argument may not.
    ChannelUsedOption(std::string key, std::atomic<bool>& used, bool locked,
                      std::function<void(bool)> listener = {});

    bool isAvailable() const override;
    config_items::ConfigItemVariant getItem() const override;
    bool setItem(const config_items::ConfigItemVariant& value) override;
    Constraints getConstraints() const override;

  private:
    std::atomic<bool>& m_used;
    const bool m_locked;
    const std::function<void(bool)> m_listener;
};

/// Base of options that hold their value: two properties, reported as constraints in this order.
class SimpleOptionBase : public ChannelConfigOption {
  public:
    SimpleOptionBase(std::string key, bool readOnly, bool configurableDuringAcquisition);

    Constraints getConstraints() const override;

  protected:
    bool isReadOnly() const { return m_read_only; }

  private:
    const bool m_read_only;
    const bool m_configurable_during_acquisition;
};

/// A stored text. The value is not guarded: one that is not read-only has no place in a configuration that
/// several threads use.
class SimpleStringOption : public SimpleOptionBase {
  public:
    using Listener = std::function<void(const std::string& key, const std::string& value)>;

    /// An empty availability callable: always available. The listener, if any, is told of every value set,
    /// after it was stored; when it throws the value stays and counts as refused.
    SimpleStringOption(std::string key, std::string value, bool readOnly, bool configurableDuringAcquisition,
                       std::function<bool()> availability = {}, Listener listener = {});

    bool isAvailable() const override;
    config_items::ConfigItemVariant getItem() const override;
    /// Refuses when read-only.
    bool setItem(const config_items::ConfigItemVariant& value) override;

  private:
    std::string m_value;
    const std::function<bool()> m_availability;
    const Listener m_listener;
};

/// A stored number with a fixed unit. What its constraints say is for the host to respect: neither the
/// writable flag nor the range is enforced here. The number is not guarded: such an option has no place in a
/// configuration that several threads use.
class SimpleScalarOption : public ChannelConfigOption {
  public:
    /// The unit is that of `value`, and the one of `min` and `max`; a writable option needs one.
    SimpleScalarOption(std::string key, config_items::ScalarConfigItem value, bool writable, double min,
                       double max);

    bool isAvailable() const override;
    config_items::ConfigItemVariant getItem() const override;
    /// Accepts every scalar. Asserts that it carries the option's own unit, which stays in any case.
    bool setItem(const config_items::ConfigItemVariant& value) override;
    /// Read-only or not; when writable, also the range, which asserts that the unit is not empty and that
    /// the bounds are in order.
    Constraints getConstraints() const override;

  private:
    double m_value;
    const std::string m_unit;
    const bool m_writable;
    const double m_min;
    const double m_max;
};

/// A fixed value; T as of ConstantGenericOption.
template <class T>
std::shared_ptr<ChannelConfigOption> constantOption(std::string key, T value) {
    return std::make_shared<ConstantGenericOption<T>>(std::move(key), std::move(value));
}

/// A text that stays as it is: read-only, and not configurable during an acquisition.
std::shared_ptr<ChannelConfigOption> readOnlyTextOption(std::string key, std::string text);

}  // namespace zelt::plugin_util
