/// The item union, complete: all items it may hold, and access to the one it holds.
#pragma once

#include <boost/variant.hpp>

#include "config_items.h"
#include "config_items_fwd.h"

namespace config_items {

/// The item held, for its text and for comparing it; valid until `value` changes.
ZELT_BASE_API const IfConfigItem& asItem(const ConfigItemVariant& value) noexcept;

}  // namespace config_items
