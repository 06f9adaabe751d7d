/// The names of the vendor's 58 functions.
#pragma once

#include <string_view>

namespace simulator {

bool isVendorFunction(std::string_view name);

}  // namespace simulator
