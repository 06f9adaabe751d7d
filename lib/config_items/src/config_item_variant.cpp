#include "config_item_variant.h"

namespace config_items {

const IfConfigItem& asItem(const ConfigItemVariant& value) noexcept {
    return boost::apply_visitor([](const auto& item) -> const IfConfigItem& { return item; }, value);
}

}  // namespace config_items
