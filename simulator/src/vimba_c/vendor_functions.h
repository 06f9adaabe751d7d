/// The names of the vendor's 58 functions, and of its error codes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

bool isVendorFunction(std::string_view name);
std::vector<std::string> vendorFunctions();

/// As "VmbErrorTimeout".
std::vector<std::string> vendorErrors();
/// Of one of these.
std::int32_t vendorErrorCode(std::string_view name);

}  // namespace simulator
