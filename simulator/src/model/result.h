/// Outcome of an operation of the model; the numbers are those of the vendor's error codes.
#pragma once

#include <cstdint>

namespace simulator {

enum class Result : std::int32_t {
    Success = 0,
    InternalFault = -1,
    ApiNotStarted = -2,
    NotFound = -3,
    BadHandle = -4,
    DeviceNotOpen = -5,
    InvalidAccess = -6,
    BadParameter = -7,
    StructSize = -8,
    MoreData = -9,
    WrongType = -10,
    InvalidValue = -11,
    Timeout = -12,
    Other = -13,
    Resources = -14,
    InvalidCall = -15,
    Incomplete = -19,
};

}  // namespace simulator
