/// Constraints: what values an item may take and how it behaves. This library enforces nothing; the host and
/// the options read the list and act on it.
///
/// Constraints are immutable after construction and may be read from any thread. They are held by
/// std::shared_ptr, in lists whose order is the order of evaluation. The slot order of the virtual operations
/// is part of the contract with the host.
#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <utility>

#include "assertion.h"
#include "config_items.h"

namespace config_items {

/// Root of all constraints.
class ZELT_BASE_API IfConfigItemConstraint {
  public:
    virtual ~IfConfigItemConstraint();
    /// False when the constraints cannot be compared; never throws.
    virtual bool equals(const IfConfigItemConstraint& other) const = 0;
    /// A copy of the exact same type.
    virtual std::shared_ptr<IfConfigItemConstraint> clone() const = 0;

  protected:
    IfConfigItemConstraint() = default;
    IfConfigItemConstraint(const IfConfigItemConstraint&) = default;
    IfConfigItemConstraint& operator=(const IfConfigItemConstraint&) = delete;
};

/// One allowed choice, of whatever item type.
class ZELT_BASE_API IfOptionConstraint : public IfConfigItemConstraint {
  public:
    /// Type of the item that is allowed.
    virtual const std::type_info& getValueType() const = 0;
};

/// One allowed choice. A list of choices is one constraint for each, in the order of the list.
template <class Item>
class ZELT_BASE_API OptionConstraint : public IfOptionConstraint {
  public:
    explicit OptionConstraint(Item item) : m_item(std::move(item)) {}

    bool equals(const IfConfigItemConstraint& other) const override;
    std::shared_ptr<IfConfigItemConstraint> clone() const override;
    const std::type_info& getValueType() const override;

    const Item& getItem() const { return m_item; }

  private:
    Item m_item;
};

ZELT_BASE_TEMPLATE(class OptionConstraint<ScalarConfigItem>);
ZELT_BASE_TEMPLATE(class OptionConstraint<SingleValueConfigItem<std::string>>);
ZELT_BASE_TEMPLATE(class OptionConstraint<SingleValueConfigItem<bool>>);

/// A range of values, of whatever number type.
class ZELT_BASE_API IfRangeConstraint : public IfConfigItemConstraint {
  public:
    /// Type of the numbers that are bounded.
    virtual const std::type_info& getValueType() const = 0;
};

/// A range of values, both ends included. Bounds are equal by plain comparison: NaN equals nothing.
template <class T>
class ZELT_BASE_API ValueRangeConstraint : public IfRangeConstraint {
  public:
    /// Asserts that the unit is not empty and that the bounds are in order; the range is made in any case.
    /// The unit is not kept.
    ValueRangeConstraint(T min, T max, const std::string& unit) : m_min(min), m_max(max) {
        ZELT_ASSERT(!unit.empty());
        ZELT_ASSERT_AS(min <= max, "min <= max", "ValueRangeConstraint: min exceeds max.");
    }

    bool equals(const IfConfigItemConstraint& other) const override;
    std::shared_ptr<IfConfigItemConstraint> clone() const override;
    const std::type_info& getValueType() const override;

    T getMin() const { return m_min; }
    T getMax() const { return m_max; }

  private:
    T m_min;
    T m_max;
};

ZELT_BASE_TEMPLATE(class ValueRangeConstraint<double>);

/// A property that an item has or has not. Equality looks at the flag only, not at the property: any two
/// such constraints with the same flag are equal.
class ZELT_BASE_API BooleanConstraint : public IfConfigItemConstraint {
  public:
    explicit BooleanConstraint(bool flag);

    bool equals(const IfConfigItemConstraint& other) const override;
    std::shared_ptr<IfConfigItemConstraint> clone() const override;

    bool getFlag() const { return m_flag; }

  private:
    bool m_flag;
};

}  // namespace config_items
