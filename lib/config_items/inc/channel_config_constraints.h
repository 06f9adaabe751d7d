/// Properties of a channel's settings.
#pragma once

#include <memory>

#include "config_item_constraints.h"

namespace channel_config {

/// True: the item may be changed while an acquisition runs.
class ZELT_BASE_API ConfigurableDuringAcquisitionConstraint : public config_items::BooleanConstraint {
  public:
    using BooleanConstraint::BooleanConstraint;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;
};

/// True: the item is read-only.
class ZELT_BASE_API ReadOnlyConstraint : public config_items::BooleanConstraint {
  public:
    using BooleanConstraint::BooleanConstraint;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;
};

/// The item does not depend on those of other channels.
class ZELT_BASE_API IndependentConfigItemConstraint : public config_items::BooleanConstraint {
  public:
    using BooleanConstraint::BooleanConstraint;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override = 0;
};

/// True: the channel's sample rate does not depend on those of other channels.
class ZELT_BASE_API FullyIndependentSampleRateConstraint : public IndependentConfigItemConstraint {
  public:
    using IndependentConfigItemConstraint::IndependentConfigItemConstraint;
    std::shared_ptr<config_items::IfConfigItemConstraint> clone() const override;
};

}  // namespace channel_config
